#include "show/Dumps.h"

#include <cstddef>

namespace zolex::show {

namespace {

const char* textOf(const std::optional<CString>& text) {
    return text ? text->c_str() : "";
}

char arrayLetter(std::int64_t index) {
    return static_cast<char>('A' + index);
}

const char* writeCacheWord(std::int32_t code) {
    return code == write_cache::off ? "OFF" : code == write_cache::on ? "ON" : "AUTO";
}

void appendArray(CString& text, const RaidArray& array) {
    constexpr std::size_t drivesPerLine = 4;
    text.append("Drives in array (chan,sid):\n");
    std::size_t printed = 0;
    for (const DrivePosition& drive : array.drives()) {
        text.append(formatText("\t(%d,%d)", drive.channel, drive.id));
        if (++printed % drivesPerLine == 0) {
            text.append("\n");
        }
    }
    text.append("\n");
}

void appendLogicalDrive(CString& text, const LogicalDrive& drive) {
    text.append("Logical drive info:\n");
    if (drive.sizeMb == sizeFill) {
        text.append("\tsize=FILL\n");
    } else {
        text.append(formatText("\tsize=%ld\n", static_cast<long>(drive.sizeMb)));
    }
    text.append(formatText("\tarray = %c\n", arrayLetter(drive.arrayIndex)));
    text.append(formatText("\traidlevel = %s\n", raidLevelWord(drive.raidLevel)));
    text.append(formatText("\twritecache = %s\n", writeCacheWord(drive.writeCache)));
}

} // namespace

CString dumpText(const Hotspare& hotspare) {
    CString text = "Contents of Hotspare:\n";
    text.append(formatText("  Channel Number:    %d\n",
                           hotspare.enclosure.value_or(hotspare.channelNumber)));
    text.append(formatText("  ID:                %d\n", hotspare.id));
    text.append(formatText("  Disk Number:       %d\n", hotspare.diskNumber));
    return text;
}

CString dumpText(const RAIDConfiguration& configuration) {
    CString text = "#### START Configuration dump ####\n";
    text.append(formatText("RebuildRate   = %d\n", configuration.rebuildRate));
    text.append(formatText("StripeSize    = %d\n", configuration.stripeSize));
    text.append(formatText("ReadAhed      = %d\n", configuration.readAhead));
    text.append(formatText("Init          = %d\n", configuration.init));
    text.append(formatText("Policy used   = %s\n", configuration.policyName.c_str()));
    for (std::size_t i = 0; i < configuration.arrays().size(); ++i) {
        text.append(formatText("Array %c.  ", arrayLetter(static_cast<std::int64_t>(i))));
        appendArray(text, configuration.arrays()[i]);
    }
    for (std::size_t i = 0; i < configuration.logicalDrives().size(); ++i) {
        text.append(formatText("Logical drive %d.  ", static_cast<int>(i + 1)));
        appendLogicalDrive(text, configuration.logicalDrives()[i]);
    }
    for (std::size_t i = 0; i < configuration.hotspares().size(); ++i) {
        text.append(formatText("Hot-spare drive %d.  ", static_cast<int>(i + 1)));
        text.append(dumpText(configuration.hotspares()[i]));
    }
    text.append("\n#### END Configuration dump ####\n");
    return text;
}

CString dumpText(const RaidDisk& disk) {
    CString text = "Contents of RaidDisk:\n";
    text.append(formatText("  Channel Number:    %d\n", disk.channelNumber));
    text.append(formatText("  ID:                %d\n", disk.id));
    text.append(formatText("  Disk Number:       %d\n", disk.diskNumber));
    text.append(formatText("  Size:              %ld\n", static_cast<long>(disk.sizeMb)));
    text.append(formatText("  Serial Number:     %s\n", disk.serialNumber.c_str()));
    text.append(formatText("  Reported Location: %s\n", disk.reportedLocation.c_str()));
    text.append(formatText("  State:             %s\n", disk.state.c_str()));
    text.append(formatText("  Derived State:     %s\n\n", disk.derivedState.c_str()));
    return text;
}

CString dumpText(const RAIDController& controller, bool withConfiguration) {
    CString text = "***** DUMPING RAID CONTROLLER INFO *********\n";
    text.append(formatText("Type:       %d\n", controller.type()));
    text.append(formatText("BIOSVersion =%s \n", textOf(controller.biosVersion())));
    text.append(formatText("FirmwareVersion =%s \n", textOf(controller.firmwareVersion())));
    text.append(formatText("Scan order: %d\n", controller.scanOrder()));
    text.append(formatText("Number of Drives=%d\n", controller.numberOfDrives()));
    text.append("Drives:\nnth=(chan,sid,tid,type) size\n");
    int nth = 0;
    controller.forEachDrive([&](std::int32_t channel, std::int32_t id) {
        text.append(formatText("%2d(%2d,%2d,%2d,%4s) %ldMB\n", ++nth, channel, id,
                               controller.targetId(channel, id),
                               textOf(controller.driveType(channel, id)),
                               static_cast<long>(controller.size(channel, id))));
    });
    text.append("\n");
    if (withConfiguration && controller.captured() != nullptr) {
        text.append(dumpText(*controller.captured()));
    }
    text.append("\n");
    controller.forEachDrive([&](std::int32_t channel, std::int32_t id) {
        text.append(dumpText(controller.driveRecord(channel, id)));
    });
    return text;
}

} // namespace zolex::show

#include "controllers/Configuration.h"

#include "foundation/Printer.h"

#include <utility>

namespace zolex {

namespace {

template <typename Record>
bool addWithin(std::size_t limit, std::vector<Record>& records, Record record) {
    if (records.size() >= limit) {
        return false;
    }
    records.push_back(std::move(record));
    return true;
}

char arrayLetter(std::int64_t index) {
    return static_cast<char>('A' + index);
}

void dumpArray(Printer& printer, const RaidArray& array) {
    constexpr std::size_t drivesPerLine = 4;
    printer.printAlways("Drives in array (chan,sid):\n");
    std::size_t printed = 0;
    for (const DrivePosition& drive : array.drives()) {
        printer.printfAlways("\t(%d,%d)", drive.channel, drive.id);
        if (++printed % drivesPerLine == 0) {
            printer.printAlways("\n");
        }
    }
    printer.printAlways("\n");
}

const char* writeCacheDumpWord(std::int32_t code) {
    return code == write_cache::off ? "OFF" : code == write_cache::on ? "ON" : "AUTO";
}

void dumpLogicalDrive(Printer& printer, const LogicalDrive& drive) {
    printer.printAlways("Logical drive info:\n");
    if (drive.sizeMb == sizeFill) {
        printer.printAlways("\tsize=FILL\n");
    } else {
        printer.printfAlways("\tsize=%ld\n", static_cast<long>(drive.sizeMb));
    }
    printer.printfAlways("\tarray = %c\n", arrayLetter(drive.arrayIndex));
    printer.printfAlways("\traidlevel = %s\n", raidLevelWord(drive.raidLevel));
    printer.printfAlways("\twritecache = %s\n", writeCacheDumpWord(drive.writeCache));
}

} // namespace

bool RaidArray::addDrive(DrivePosition position) {
    return addWithin(maxDrives, drives_, position);
}

bool RaidArray::addDriveNumber(std::int32_t number) {
    return addWithin(maxDrives, driveNumbers_, number);
}

void Hotspare::dump(Printer& printer) const {
    printer.printAlways("Contents of Hotspare:\n");
    printer.printfAlways("  Channel Number:    %d\n", channelNumber);
    printer.printfAlways("  ID:                %d\n", id);
    printer.printfAlways("  Disk Number:       %d\n", diskNumber);
}

bool RAIDConfiguration::addArray(RaidArray array) {
    return addWithin(maxArrays, arrays_, std::move(array));
}

bool RAIDConfiguration::addLogicalDrive(LogicalDrive drive) {
    return addWithin(maxLogicalDrives, logicalDrives_, std::move(drive));
}

bool RAIDConfiguration::addHotspare(Hotspare hotspare) {
    return addWithin(maxHotspares, hotspares_, hotspare);
}

void RAIDConfiguration::dump(Printer& printer) const {
    printer.printAlways("#### START Configuration dump ####\n");
    printer.printfAlways("RebuildRate   = %d\n", rebuildRate);
    printer.printfAlways("StripeSize    = %d\n", stripeSize);
    printer.printfAlways("ReadAhed      = %d\n", readAhead);
    printer.printfAlways("Init          = %d\n", init);
    printer.printfAlways("Policy used   = %s\n", policyName.c_str());
    for (std::size_t i = 0; i < arrays_.size(); ++i) {
        printer.printfAlways("Array %c.  ", arrayLetter(static_cast<std::int64_t>(i)));
        dumpArray(printer, arrays_[i]);
    }
    for (std::size_t i = 0; i < logicalDrives_.size(); ++i) {
        printer.printfAlways("Logical drive %d.  ", static_cast<int>(i + 1));
        dumpLogicalDrive(printer, logicalDrives_[i]);
    }
    for (std::size_t i = 0; i < hotspares_.size(); ++i) {
        printer.printfAlways("Hot-spare drive %d.  ", static_cast<int>(i + 1));
        hotspares_[i].dump(printer);
    }
    printer.printAlways("\n#### END Configuration dump ####\n");
}

float usableFraction(std::int32_t raidLevel, std::size_t drives) {
    const auto n = static_cast<float>(drives);
    const auto allBut = [n](float redundant) { return n > 0.0F ? (n - redundant) / n : 0.0F; };
    switch (raidLevel) {
    case raid_level::raid1:
    case raid_level::raid1E:
    case raid_level::raid10:
        return 0.5F;
    case raid_level::raid5:
        return allBut(1.0F);
    case raid_level::raid5E:
    case raid_level::raid5EE:
    case raid_level::raid6:
    case raid_level::raid50:
        return allBut(2.0F);
    case raid_level::raid60:
        return allBut(4.0F);
    default:
        return 1.0F;
    }
}

} // namespace zolex

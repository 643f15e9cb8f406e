#include "policies/PolicyText.h"

#include "foundation/Text.h"
#include "model/TypeTraits.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

namespace zolex {

namespace {

/// A drive of a captured list; `known` is false when no drive stands at its position.
struct ListedDrive {
    DrivePosition position;
    bool known;
};

bool holdsDrive(const RAIDController& controller, DrivePosition position) {
    return position.channel >= RAIDController::firstChannel &&
           controller.size(position.channel, position.id) > 0;
}

/// The number, from 1, of a drive among the controller's drives in scan order.
int ordinalOf(const RAIDController& controller, DrivePosition position) {
    int ordinal = 1;
    for (std::int32_t channel = RAIDController::firstChannel; channel <= position.channel;
         ++channel) {
        const std::int32_t end = channel == position.channel ? position.id : RAIDController::ids;
        for (std::int32_t id = 0; id < end; ++id) {
            ordinal += holdsDrive(controller, {channel, id}) ? 1 : 0;
        }
    }
    return ordinal;
}

/// The drives as numbers or, when one of them is not known, all of them as positions.
CString drivesText(const RAIDController& controller, const std::vector<ListedDrive>& drives) {
    const bool numbers = std::all_of(drives.begin(), drives.end(),
                                     [](const ListedDrive& drive) { return drive.known; });
    CString text;
    for (const ListedDrive& drive : drives) {
        const DrivePosition& at = drive.position;
        text.append(text.isEmpty() ? "" : ",");
        text.append(numbers ? CString::fromInt(ordinalOf(controller, at))
                            : formatText("%d:%d", at.channel, at.id));
    }
    return text;
}

std::vector<ListedDrive> membersOf(const RAIDController& controller, const RaidArray& array) {
    std::vector<ListedDrive> drives;
    std::transform(array.drives().begin(), array.drives().end(), std::back_inserter(drives),
                   [&controller](const DrivePosition& position) {
                       return ListedDrive{position, holdsDrive(controller, position)};
                   });
    return drives;
}

/// Hot spares of type 12 are written by their enclosure: they are at the drive of that target id.
ListedDrive locateHotspare(const RAIDController& controller, const Hotspare& hotspare) {
    const std::int32_t channelOrEnclosure = hotspare.enclosure.value_or(hotspare.channelNumber);
    const DrivePosition captured = {channelOrEnclosure, hotspare.id};
    if (controller.type() != controller_type::megaRaid) {
        return {captured, holdsDrive(controller, captured)};
    }
    for (std::int32_t channel = RAIDController::firstChannel; channel < RAIDController::channels;
         ++channel) {
        const DrivePosition position = {channel, hotspare.id};
        if (holdsDrive(controller, position) &&
            controller.targetId(channel, hotspare.id) == channelOrEnclosure) {
            return {position, true};
        }
    }
    return {captured, false};
}

std::vector<ListedDrive> hotsparesOf(const RAIDController& controller) {
    std::vector<ListedDrive> drives;
    for (const Hotspare& hotspare : controller.captured()->hotspares()) {
        drives.push_back(locateHotspare(controller, hotspare));
    }
    return drives;
}

void appendEntry(CString& text, const char* keyword, std::string_view value) {
    text.append(keyword).append(" = ").append(value).append("\n");
}

void appendSettings(CString& text, const RAIDController& controller) {
    const RAIDConfiguration& configuration = *controller.captured();
    const WrittenSettings written = traitsOf(controller.type()).writes;
    const bool stripeSize = written.stripeSize && configuration.stripeSize != stripe::none;
    if (stripeSize) {
        appendEntry(text, "StripeSize", stripeSizeWord(configuration.stripeSize));
    }
    if (written.rebuildRate) {
        appendEntry(text, "RebuildRate", rebuildRateWord(configuration.rebuildRate));
    }
    if (written.readAhead) {
        appendEntry(text, "ReadAhead", readAheadWord(configuration.readAhead));
    }
    if (stripeSize || written.rebuildRate || written.readAhead) {
        text.append("\n");
    }
}

void appendArrays(CString& text, const RAIDController& controller) {
    appendEntry(text, "Array_Mode", "CUSTOM");
    char letter = 'A';
    for (const RaidArray& array : controller.captured()->arrays()) {
        const CString keyword = formatText("Array.%c", letter++);
        appendEntry(text, keyword.c_str(), drivesText(controller, membersOf(controller, array)));
    }
    text.append("\n");
}

const char* writeCacheWord(std::int32_t code) {
    return code == write_cache::off ? "OFF" : code == write_cache::on ? "ON" : "ERROR";
}

CString arrayLetterText(std::int32_t index) {
    const bool isLetter =
        index >= 0 && index < static_cast<std::int32_t>(RAIDConfiguration::maxArrays);
    return isLetter ? CString(static_cast<char>('A' + index), 1) : CString("ERROR");
}

CString logicalDriveText(const LogicalDrive& drive, bool explicitSizes, bool withWriteCache) {
    CString text = arrayLetterText(drive.arrayIndex);
    text.append(":");
    text.append(explicitSizes && drive.sizeMb > 0 ? CString::fromInt(drive.sizeMb)
                                                  : CString("FILL"));
    text.append(":").append(raidLevelWord(drive.raidLevel));
    if (withWriteCache && drive.writeCache != write_cache::notGiven) {
        text.append(":").append(writeCacheWord(drive.writeCache));
    }
    return text;
}

void appendLogicalDrives(CString& text, const CapturedFacts& facts,
                         const RAIDController& controller) {
    const bool withWriteCache = traitsOf(controller.type()).writes.writeCache;
    appendEntry(text, "Logical_Mode", "CUSTOM");
    int number = 0;
    for (const LogicalDrive& drive : controller.captured()->logicalDrives()) {
        const CString keyword = formatText("Logical.%d", ++number);
        appendEntry(text, keyword.c_str(),
                    logicalDriveText(drive, facts.explicitSizes, withWriteCache));
    }
    text.append("\n");
}

/// One specifier; nothing for an unknown letter.
std::optional<CString> specifierText(std::string_view item, const CapturedFacts& facts,
                                     const RAIDController& controller) {
    switch (item.size() == 1 ? text::lower(item[0]) : '\0') {
    case 'm':
        return "m:" + facts.machineType;
    case 's':
        return "s:" + facts.serialNumber;
    case 'c':
        return formatText("c:%d", facts.controllerNumber);
    case 'o':
        return formatText("o:%d", controller.scanOrder());
    case 't':
        return "t:" + facts.controllerType;
    case 'd':
        return formatText("d:%d", controller.numberOfDrives());
    default:
        return std::nullopt;
    }
}

} // namespace

CString policyHeaderText(const CapturedFacts& facts) {
    constexpr const char* dashes =
        "; *---------------------------------------------------------------*\n";
    const LocalTime& time = facts.time;
    CString text = "\n\n";
    text.append(dashes);
    text.append("; * ZOLEX auto-generated policy.\n");
    text.append(formatText("; * Captured on (mm/dd/yyyy): %02d/%02d/%02d\n", time.month, time.day,
                           time.year % 100));
    text.append(formatText("; * System time (hh:mm:ss):   %02d:%02d:%02d\n", time.hour, time.minute,
                           time.second));
    text.append("; * System machine type:      ").append(facts.machineType).append("\n");
    text.append("; * System serial number:     ").append(facts.serialNumber).append("\n");
    text.append(formatText("; * Controller number:        %d\n", facts.controllerNumber));
    text.append("; * Controller type:          ").append(facts.controllerType).append("\n");
    return text.append(dashes).append("\n");
}

std::optional<CString> appliesToText(std::string_view parameters, const CapturedFacts& facts,
                                     const RAIDController& controller) {
    CString result;
    for (const std::string_view item : policy_value::splitAndTrim(parameters, ',')) {
        const bool all = text::equalsNoCase(item, "ALL");
        const auto specifier =
            all ? std::optional<CString>("ALL") : specifierText(item, facts, controller);
        if (!specifier) {
            return std::nullopt;
        }
        result.append(result.isEmpty() ? "" : ",").append(*specifier);
        if (all) {
            break;
        }
    }
    return result;
}

CString policyBodyText(const CapturedFacts& facts, const CString& appliesTo,
                       const RAIDController& controller) {
    CString text = "[";
    text.append(facts.policyName).append("]\n\n");
    appendEntry(text, "AppliesTo.1", appliesTo);
    text.append("\n");
    appendSettings(text, controller);
    appendArrays(text, controller);
    const std::vector<ListedDrive> hotspares = hotsparesOf(controller);
    if (!hotspares.empty()) {
        appendEntry(text, "Hotspares", drivesText(controller, hotspares));
        text.append("\n");
    }
    appendLogicalDrives(text, facts, controller);
    return text;
}

} // namespace zolex

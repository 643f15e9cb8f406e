#include "readers/KXReader.h"

#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/TypeTraits.h"
#include "readers/ListingValues.h"
#include "readers/StateTranslation.h"

#include <array>
#include <span>
#include <utility>

namespace zolex {

namespace {

constexpr std::string_view separator = "--------";
/// What a continued list of members begins with.
constexpr std::string_view continuation = "              ";

constexpr std::array<std::string_view, 2> slotKeys = {"Slot", "Controller slot"};
constexpr std::array<std::string_view, 2> logicalDriveKeys = {"Logical drive number", "IR volume"};
constexpr std::array<std::string_view, 2> logicalDriveStatus = {"Status of volume",
                                                                "Status of logical drive"};
constexpr std::array<std::string_view, 2> unsupportedRaidLevels = {"10", "50"};

/// One line of the controller settings.
struct SettingRow {
    std::string_view key;
    std::span<const WordCode> words;
    std::int32_t RAIDConfiguration::*setting;
    const char* unknown;
};

// clang-format off
// Columns: the whole value of the family utility's "Controller type" line, the subtype. The order
// does not matter.
constexpr auto kestrixModels = std::to_array<WordCode>({
    {"Kestrix-A1", 1},
    {"Kestrix-A2", 2},
    {"Kestrix-A3", 3},
    {"Kestrix-A4", 4},
    {"Kestrix-A5", 5},
    {"Kestrix-A6", 6},
    {"Kestrix-A7", 7},
});
static_assert(kestrixModels.size() == 7 && hasDistinctWords<WordCode>(kestrixModels));
constexpr std::int32_t lsiScsiSubtype = 1;

// Columns: the whole value of a settings line, its code. The order does not matter.
constexpr auto rebuildRates = std::to_array<WordCode>({
    {"Low",    rebuild_rate::low},
    {"Medium", rebuild_rate::medium},
    {"High",   rebuild_rate::high},
});
static_assert(rebuildRates.size() == 3 && hasDistinctWords<WordCode>(rebuildRates));
constexpr auto readAheads = std::to_array<WordCode>({
    {"Disabled", read_ahead::off},
    {"Enabled",  read_ahead::on},
    {"Adaptive", read_ahead::adaptive},
});
static_assert(readAheads.size() == 3 && hasDistinctWords<WordCode>(readAheads));
constexpr auto stripeSizes = std::to_array<WordCode>({
    {"8 KB",  stripe::kb8},
    {"16 KB", stripe::kb16},
    {"32 KB", stripe::kb32},
    {"64 KB", stripe::kb64},
});
static_assert(stripeSizes.size() == 4 && hasDistinctWords<WordCode>(stripeSizes));

// Columns: the whole value of a "RAID level" line, the level's code. The order does not matter.
constexpr auto raidLevels = std::to_array<WordCode>({
    {"0",   raid_level::raid0},
    {"1",   raid_level::raid1},
    {"1E",  raid_level::raid1E},
    {"5",   raid_level::raid5},
    {"5E",  raid_level::raid5E},
    {"5EE", raid_level::raid5EE},
});
static_assert(raidLevels.size() == 6 && hasDistinctWords<WordCode>(raidLevels));

// Columns: the key, the words of its value, the setting that takes the word's code, the trace of a
// value that is none of the words (with that value). The first row of which the line holds the key
// is taken; a row's number, from 1, is that of the exit by which it fails.
constexpr std::array<SettingRow, 3> settingRows = {{
    {"Rebuild rate",            rebuildRates, &RAIDConfiguration::rebuildRate, "Rebuild rate not recognized:  %s\n"},
    {"Readahead cache setting", readAheads,   &RAIDConfiguration::readAhead,   "Read-cache mode not recognized:  %s\n"},
    {"Stripe-unit size",        stripeSizes,  &RAIDConfiguration::stripeSize,  "Stripe size not recognized:  %s\n"},
}};
// clang-format on

bool endsBlock(std::string_view line) {
    return line == endOfOutput || text::contains(line, separator);
}

} // namespace

bool KXReader::readConfiguration(RAIDController& controller, Listings listings) {
    report().trace("Entering KXReader::readConfiguration\n");
    if (detail().dumpRecords) {
        report().note(level::ungated, "kxread:Start readConfiguration \n");
    }
    begin(controller, listings);
    if (!nextLine(separator)) {
        report().trace("Exiting KXReader::readConfiguration, returning true\n");
        return true;
    }
    if (const Exit exit = readBlocks(); exit != success) {
        report().tracef("Exiting KXReader::readConfiguration, returning false(%d)\n", exit);
        return false;
    }
    if (!nextLine(separator)) {
        keepConfiguration();
        report().trace("Exiting KXReader::readConfiguration, returning true(2)\n");
        return true;
    }
    if (!getDrives()) {
        report().trace("Exiting KXReader::readConfiguration, returning false(8)\n");
        return false;
    }
    if (isCfggen_ && configuration() != nullptr) {
        locateMembers();
    }
    keepConfiguration();
    report().trace("Exiting KXReader::readConfiguration, returning true(3)\n");
    return true;
}

void KXReader::begin(RAIDController& controller, Listings listings) {
    beginListing(controller, listings);
    isCfggen_ = traitsOf(controller.type()).dialect == Dialect::cfggen;
    placesBySlot_ = isCfggen_ && controller.type() != controller_type::lsiScsi;
    array_.reset();
}

bool KXReader::nextLine(std::string_view ending, void (KXReader::*take)(std::string_view)) {
    for (std::string_view line = nextLine(); line != endOfOutput; line = nextLine()) {
        if (traces()) {
            report().tracef("KXReader::nextLine: %s\n", CString(line).c_str());
        }
        if (text::contains(line, ending)) {
            return true;
        }
        if (take != nullptr) {
            (this->*take)(line);
        }
    }
    report().trace("KXReader::nextLine, returning EOF\n");
    return false;
}

KXReader::Exit KXReader::readBlocks() {
    const bool capturing = configuration() != nullptr;
    if (!nextLine(separator)) {
        return 1;
    }
    if (!setControllerType()) {
        return 2;
    }
    if (capturing && !setControllerSettings()) {
        return 3;
    }
    if (!capturing && !nextLine(separator, &KXReader::readLocation)) {
        return 4;
    }
    if (!nextLine(separator)) {
        return 5;
    }
    if (capturing && !getArraysAndLogicalDrives()) {
        return 6;
    }
    if (!capturing && !nextLine(separator)) {
        return 7;
    }
    return success;
}

bool KXReader::setControllerType() {
    report().trace("Entering KXReader::setControllerType\n");
    for (std::string_view line = nextLine(); line != endOfOutput; line = nextLine()) {
        if (text::contains(line, "Controller type")) {
            if (!readControllerType(valueBetweenColons(line))) {
                report().trace("Exiting KXReader::setControllerType, returning false(1)\n");
                return false;
            }
        } else if (text::contains(line, "BIOS version")) {
            const CString version = valueBetweenColons(line);
            controller().setBiosVersion(version);
            report().tracef("Setting BIOS version = %s\n", version.c_str());
        } else if (text::contains(line, "Firmware version")) {
            const CString version = valueBetweenColons(line);
            controller().setFirmwareVersion(version);
            report().tracef("Setting Firmware version = %s\n", version.c_str());
        } else if (readSlot(line)) {
            continue;
        } else if (readBus(line)) {
            report().trace("Exiting KXReader::setControllerType, returning true(1)\n");
            return true;
        } else if (text::contains(line, "Controller name")) {
            report().trace("Exiting KXReader::setControllerType, returning true(2)\n");
            return true;
        } else if (text::contains(line, "Concurrent commands")) {
            report().trace("Exiting KXReader::setControllerType, returning true(3)\n");
            return true;
        }
    }
    report().trace("Exiting KXReader::setControllerType, returning false(2)\n");
    return false;
}

bool KXReader::readControllerType(const CString& value) {
    if (controller().type() == controller_type::family) {
        report().tracef("Found controller type KESTRIX, value = %s\n", value.c_str());
        const auto subtype = findCode(kestrixModels, value);
        if (!subtype) {
            report().tracef("Kestrix type not recognized:  %s\n", value.c_str());
            return false;
        }
        controller().setSubtype(*subtype);
    } else if (controller().type() == controller_type::lsiScsi) {
        report().tracef("Found controller type LSI-SCSI, value = %s\n", value.c_str());
        controller().setSubtype(lsiScsiSubtype);
    }
    return true;
}

bool KXReader::readSlot(std::string_view line) {
    if (!holdsAny(line, slotKeys)) {
        return false;
    }
    const CString slot = valueBetweenColons(line);
    controller().setSlotNumber(slot.toInt());
    report().tracef("Setting Slot number = %s\n", slot.c_str());
    return true;
}

bool KXReader::readBus(std::string_view line) {
    if (!text::contains(line, "Bus")) {
        return false;
    }
    const CString bus = valueBetweenColons(line);
    controller().setBusNumber(bus.toInt());
    report().tracef("Setting Bus number = %s\n", bus.c_str());
    return true;
}

void KXReader::readLocation(std::string_view line) {
    if (isCfggen_ && !readSlot(line)) {
        readBus(line);
    }
}

bool KXReader::setControllerSettings() {
    report().trace("Entering KXReader::setControllerSettings\n");
    for (std::string_view line = nextLine(); !endsBlock(line); line = nextLine()) {
        if (const Exit exit = readSetting(line); exit != success) {
            report().tracef("Exiting KXReader::setControllerSettings, returning false(%d)\n", exit);
            return false;
        }
        readLocation(line);
    }
    report().trace("Exiting KXReader::setControllerSettings, returning true\n");
    return true;
}

KXReader::Exit KXReader::readSetting(std::string_view line) {
    Exit exit = success;
    for (const SettingRow& row : settingRows) {
        ++exit;
        if (!text::contains(line, row.key)) {
            continue;
        }
        const CString value = valueBetweenColons(line);
        const auto code = findCode(row.words, value);
        if (!code) {
            report().tracef(row.unknown, value.c_str());
            return exit;
        }
        configuration()->*row.setting = *code;
        break;
    }
    return success;
}

bool KXReader::getArraysAndLogicalDrives() {
    report().trace("Entering KXReader::getArraysAndLogicalDrives\n");
    for (std::string_view line = nextLine(); !endsBlock(line); line = nextLine()) {
        if (const Exit exit = readLayoutLine(line); exit != success) {
            report().tracef("Exiting KXReader::getArraysAndLogicalDrives, returning false(%d)\n",
                            exit);
            return false;
        }
    }
    finishArray();
    finishLogicalDrive();
    report().trace("Exiting KXReader::getArraysAndLogicalDrives, returning true\n");
    return true;
}

KXReader::Exit KXReader::readLayoutLine(std::string_view line) {
    const CString value = valueBetweenColons(line);
    if (holdsAny(line, logicalDriveKeys)) {
        beginLogicalDrive();
    } else if (holdsAny(line, logicalDriveStatus)) {
        readLogicalDriveState(value);
    } else if (text::contains(line, "RAID level")) {
        return readRaidLevel(value);
    } else if (text::contains(line, "Size (in MB)")) {
        logicalDrive().sizeMb = value.toInt();
    } else if (text::contains(line, "Write cache status")) {
        logicalDrive().writeCache = value.contains("(WT)")   ? write_cache::off
                                    : value.contains("(WB)") ? write_cache::on
                                                             : write_cache::notGiven;
    } else if (text::contains(line, "Part of array")) {
        logicalDrive().arrayIndex = value.isEmpty() ? -1 : value.at(0) - 'A';
    } else if (text::contains(line, "Array ")) {
        finishArray();
        addMembers(array_.emplace(), parsePositions(value, ","));
    } else if (array_ && line.starts_with(continuation)) {
        addMembers(*array_, parsePositions(line, ","));
    } else if (text::contains(line, "Physical hard disks")) {
        readPhysicalHardDisks(value);
    }
    return success;
}

void KXReader::readLogicalDriveState(const CString& value) {
    logicalDrive().state = value;
    report().tracef("Found 'State', setting logical volume state=%s\n", value.c_str());
    logicalDrive().derivedState = value.contains("Degraded") ? badState : goodState;
    report().tracef("Setting logical volume derived state=%s\n",
                    logicalDrive().derivedState.c_str());
}

KXReader::Exit KXReader::readRaidLevel(const CString& value) {
    constexpr Exit cannotCreate = 1;
    constexpr Exit unknownLevel = 2;
    for (const std::string_view level : unsupportedRaidLevels) {
        if (value == level) {
            Fault fault = faultOf(FaultKind::listingLevelUnsupported);
            fault.wanted = value;
            report().fault(fault);
            return cannotCreate;
        }
    }
    const auto code = findCode(raidLevels, value);
    if (!code) {
        report().tracef("RAID level not recognized:  %s\n", value.c_str());
        return unknownLevel;
    }
    logicalDrive().raidLevel = *code;
    return success;
}

void KXReader::readPhysicalHardDisks(std::string_view value) {
    finishArray();
    RaidArray array;
    if (isCfggen_) {
        for (const std::string_view number : splitAtBlanks(value)) {
            addMemberNumber(array, text::leadingInt(number));
        }
    } else {
        addMembers(array, parsePositions(value, "/"));
    }
    addArrayOfDrive(std::move(array));
}

void KXReader::finishArray() {
    if (array_) {
        addArray(*configuration(), *std::move(array_));
        array_.reset();
    }
}

} // namespace zolex

#include "readers/IDEReader.h"

#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"
#include "readers/KeyFilter.h"
#include "readers/ListingValues.h"

#include <array>
#include <utility>

namespace zolex {

namespace {

constexpr std::size_t outputs = 3; ///< captured outputs that make the stream
constexpr std::int32_t channel = 1;
constexpr std::int32_t driveSizeMb = 38154;
constexpr std::string_view drivePresent = "0000";
constexpr std::string_view driveAbsent = "000a";

// clang-format off
// Columns: the whole value of a "RAID_MODE" line, the level's code. The order does not matter.
constexpr auto raidModes = std::to_array<WordCode>({
    {"MIRROR", raid_level::raid1},
    {"STRIPE", raid_level::raid0},
});
static_assert(raidModes.size() == 2 && hasDistinctWords<WordCode>(raidModes));

// Columns: the whole value of a "STRIPE_SIZE" line, the stripe size's code. The order does not
// matter.
constexpr auto stripeSizes = std::to_array<WordCode>({
    {"32KB",   stripe::kb32},
    {"64KB",   stripe::kb64},
    {"128KB",  stripe::kb128},
    {"256KB",  stripe::kb256},
    {"512KB",  stripe::kb512},
    {"1024KB", stripe::kb1024},
    {"2048KB", stripe::kb2048},
    {"4096KB", stripe::kb4096},
});
static_assert(stripeSizes.size() == 8 && hasDistinctWords<WordCode>(stripeSizes));
// clang-format on

/// The keys of a listing with its layout.
enum LayoutKey : std::size_t {
    cacheOn,
    cacheOff,
    spare,
    raidMode,
    stripeSize,
    driveCount,
    errorCode,
    logicalArray,
};
constexpr std::array<std::string_view, 8> layoutKeys = {
    "+WRITE_CACHE",          "-WRITE_CACHE",     "SPARE",        "RAID_MODE", "STRIPE_SIZE",
    "TOTAL_PHYSICAL_DRIVES", "Error Code (hex)", "LOGICAL_ARRAY"};

/// The text after the first ":" or "=" or, without one, after the key.
std::string_view valueOf(const KeyedLine& keyed, LayoutKey key) {
    const std::string_view line = keyed.text();
    const std::size_t mark = line.find_first_of(":=");
    if (mark != std::string_view::npos) {
        return text::trim(line.substr(mark + 1));
    }
    return text::trim(line.substr(line.find(layoutKeys[key]) + layoutKeys[key].size()));
}

} // namespace

bool IDEReader::readConfiguration(RAIDController& controller, Listings listings) {
    report().trace("Entering IDEReader::readConfiguration\n");
    beginController(controller);
    setListing(listings, 0);
    listings_ = listings;
    nextListing_ = 1;
    layout_ = {};
    if (!detail().layout) {
        readDrives();
    } else if (const Exit exit = readLayout(); exit != success) {
        layout_.configuration.reset();
        report().tracef("Exiting IDEReader::readConfiguration, returning false(%d)\n", exit);
        return false;
    }
    report().trace("Exiting IDEReader::readConfiguration, returning true\n");
    return true;
}

std::string_view IDEReader::nextLine() {
    std::string_view line = ConfigurationReader::nextLine();
    while (line == endOfOutput && nextListing_ < outputs) {
        setListing(listings_, nextListing_++);
        line = ConfigurationReader::nextLine();
    }
    return line;
}

void IDEReader::readDrives() {
    std::int32_t id = 0;
    for (std::string_view line = nextLine(); line != endOfOutput; line = nextLine()) {
        if (text::contains(line, drivePresent)) {
            storeDrive(id++);
        } else if (text::contains(line, driveAbsent)) {
            ++id;
        }
    }
}

IDEReader::Exit IDEReader::readLayout() {
    static const KeyFilter filter(layoutKeys);
    for (std::string_view line = nextLine(); line != endOfOutput; line = nextLine()) {
        const KeyedLine keyed(line, filter);
        if (keyed.holdsNone()) {
            continue;
        }
        if (!layout_.configuration && keyed.holds(logicalArray)) {
            layout_.configuration.emplace();
        } else if (const Exit exit = readLayoutLine(keyed); exit != success) {
            return exit;
        }
    }
    finishLayout();
    return success;
}

IDEReader::Exit IDEReader::readLayoutLine(const KeyedLine& keyed) {
    if (keyed.holds(cacheOn)) {
        layout_.drive.writeCache = write_cache::on;
    } else if (keyed.holds(cacheOff)) {
        layout_.drive.writeCache = write_cache::off;
    } else if (keyed.holds(spare)) {
        if (layout_.configuration) {
            addHotspare(*layout_.configuration, {.channelNumber = channel, .id = 1});
        }
    } else if (keyed.holds(raidMode) && !std::exchange(layout_.hasRaidMode, true)) {
        return readRaidMode(valueOf(keyed, raidMode));
    } else if (keyed.holds(stripeSize) && !std::exchange(layout_.hasStripeSize, true)) {
        return readStripeSize(valueOf(keyed, stripeSize));
    } else if (keyed.holds(driveCount) && !std::exchange(layout_.hasDriveCount, true)) {
        readDriveCount(valueOf(keyed, driveCount));
    } else if (keyed.holds(errorCode)) {
        readErrorCode(keyed);
    }
    return success;
}

IDEReader::Exit IDEReader::readRaidMode(const CString& value) {
    const auto code = findCode(raidModes, value);
    if (!code) {
        failWith(FaultKind::listingLevelUnknown, value);
        return 1;
    }
    layout_.drive.raidLevel = *code;
    return success;
}

IDEReader::Exit IDEReader::readStripeSize(const CString& value) {
    const auto code = findCode(stripeSizes, value);
    if (!code) {
        failWith(FaultKind::listingStripeUnknown, value);
        return 2;
    }
    layout_.stripeSize = *code;
    return success;
}

void IDEReader::failWith(FaultKind kind, const CString& value) const {
    Fault fault = faultOf(kind);
    fault.wanted = value;
    report().fault(fault);
}

void IDEReader::readDriveCount(const CString& value) {
    constexpr std::int32_t mostDrives = 2;
    for (std::int32_t id = 0; id < mostDrives && id < value.toInt(); ++id) {
        if (layout_.configuration) {
            addMember(layout_.array, {channel, id});
        }
        storeDrive(id);
    }
}

void IDEReader::readErrorCode(const KeyedLine& keyed) {
    ++layout_.errorCodes;
    if (layout_.errorCodes > 1 && !layout_.configuration &&
        text::contains(valueOf(keyed, errorCode), drivePresent)) {
        storeDrive(layout_.errorCodes - 2);
    }
}

void IDEReader::storeDrive(std::int32_t id) {
    if (checkPosition(channel, id)) {
        controller().setSize(channel, id, driveSizeMb);
    }
}

void IDEReader::finishLayout() {
    if (!layout_.configuration) {
        return;
    }
    layout_.drive.arrayIndex = 0;
    layout_.configuration->stripeSize = layout_.stripeSize;
    addArray(*layout_.configuration, std::move(layout_.array));
    addLogicalDrive(*layout_.configuration, layout_.drive);
    controller().setCaptured(std::move(layout_.configuration));
}

} // namespace zolex

#include "commands/ARCCommands.h"

#include "model/RAIDController.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zolex {

namespace {

/// RAID level code, fewest and most drives of the array, largest stripe-size code for them.
struct StripeLimit {
    std::int32_t raidLevel;
    std::size_t fewest;
    std::size_t most;
    std::int32_t largest;
};

constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

// clang-format off
constexpr std::array<StripeLimit, 6> stripeLimits = {{
    {raid_level::raid6,   5,         5, stripe::kb512},
    {raid_level::raid6,   6,         8, stripe::kb256},
    {raid_level::raid6,   9,        11, stripe::kb128},
    {raid_level::raid6,  12, anyNumber, stripe::kb64},
    {raid_level::raid60, 10,        10, stripe::kb512},
    {raid_level::raid60, 12, anyNumber, stripe::kb256},
}};
// clang-format on

} // namespace

const CommandGenerator::Traces& ARCCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering ARCCommands::doArraysAndLogicalDrives\n",
        "Exiting ARCCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting ARCCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& ARCCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering ARCCommands::doHotspareDrives\n",
        "Exiting ARCCommands::doHotspareDrives, returning true\n",
        "Exiting ARCCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

std::int32_t ARCCommands::stripeSize(const LogicalDrive& logical, const RaidArray& members) const {
    const std::int32_t code = configuration().stripeSize;
    const std::size_t drives = members.drives().size();
    const auto limit =
        std::find_if(stripeLimits.begin(), stripeLimits.end(), [&](const StripeLimit& row) {
            return row.raidLevel == logical.raidLevel && drives >= row.fewest && drives <= row.most;
        });
    if (limit == stripeLimits.end() || code > stripe::kb4096) {
        return code;
    }
    return std::min(code, limit->largest);
}

CString ARCCommands::initText(const LogicalDrive& logical) const {
    return isQuick(logical) ? formatText("Method %s ", "QUICK") : CString();
}

CString ARCCommands::sizeText(const LogicalDrive& logical) const {
    if (logical.sizeMb == sizeFill) {
        return "MAX ";
    }
    return formatText("%ld ", static_cast<long>(logical.sizeMb));
}

const char* ARCCommands::hotspareEnd() const {
    return "HSP";
}

void ARCCommands::addCacheCommands(std::size_t array, const LogicalDrive& logical) {
    const std::int32_t readAhead = configuration().readAhead;
    if (readAhead != read_ahead::adaptive && readAhead != read_ahead::on) {
        addCacheCommand(array, readAhead == read_ahead::off ? "roff" : "ron");
    }
    if (logical.writeCache != write_cache::notGiven) {
        addCacheCommand(array, writeCacheWord(logical.writeCache));
    }
}

void ARCCommands::addCacheCommand(std::size_t array, const char* mode) {
    const int logicalDriveNumber = static_cast<int>(array) + 1;
    CString line = formatText("%s SETCACHE %d LOGICALDRIVE %d ", prefix(), controller().scanOrder(),
                              logicalDriveNumber);
    line.append(formatText("%s ", mode));
    line.append("NOPROMPT ");
    addCommand(std::move(line));
}

const char* ARCCommands::writeCacheWord(std::int32_t code) const {
    if (code == write_cache::off) {
        return "wt";
    }
    if (code != write_cache::on) {
        return "wb";
    }
    const PlainWriteBack words = traitsOf(controller().type()).plainWriteBack;
    const bool plain = words == PlainWriteBack::always ||
                       (words == PlainWriteBack::ofSubtype1 && controller().subtype() == 1);
    return plain ? "wb" : "wbb";
}

FaultKind ARCCommands::secondLogicalDriveFault() const {
    return FaultKind::secondLogicalDrive;
}

} // namespace zolex

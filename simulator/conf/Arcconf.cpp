#include "conf/Conf.h"
#include "conf/Dialect.h"
#include "conf/Listing.h"

#include <array>

namespace zolex_sim::conf {
namespace {

constexpr Wording early = {
    .drive = "drive",
    .number = "number",
    .hotSpare = "Hot Spare",
    .failed = "Defunct",
    .critical = "Critical",
    .raid6 = "6",
    .spanned = "Spanned_volume",
    .placeMark = "",
    .namedPlaces = false,
    .settings = false,
};
constexpr Wording later = {
    .drive = "device",
    .number = "number",
    .hotSpare = "Hot-Spare",
    .failed = "Failed",
    .critical = "Critical",
    .raid6 = "6 Reed-Solomon",
    .spanned = "Spanned_volume",
    .placeMark = "(T:L)",
    .namedPlaces = true,
    .settings = false,
};
constexpr Wording newest = {
    .drive = "Device",
    .number = "Number",
    .hotSpare = "Hot-Spare",
    .failed = "Failed",
    .critical = "Critical",
    .raid6 = "6 Reed-Solomon",
    .spanned = "Spanned_volume",
    .placeMark = "(T:L)",
    .namedPlaces = true,
    .settings = true,
};

const Wording& wordingOf(Generation generation) {
    switch (generation) {
    case Generation::later:
        return later;
    case Generation::newest:
        return newest;
    case Generation::early:
        break;
    }
    return early;
}

std::string versionBlocks(const ControllerIdentity& identity) {
    return blockHeading("Controller Version Information") + line(3, "BIOS", identity.bios) +
           line(3, "Firmware", identity.firmware) + line(3, "Driver", identity.conf.driver) +
           line(3, "Boot Flash", identity.bootBlock) +
           blockHeading("Controller Battery Information") +
           line(3, "Status", identity.conf.battery);
}

std::string listing(const Controller& controller, std::size_t number) {
    const Wording& wording = wordingOf(controller.identity.generation);
    const std::string drive = wording.drive;
    return sectionHeading("Controller information") + controllerLines(controller, wording) +
           versionBlocks(controller.identity) + "\n" +
           sectionHeading("Logical " + drive + " information") +
           (controller.identity.conf.failover.empty() && !wording.settings
                ? logicalDrivesWithLists(controller, wording)
                : logicalDrivesWithSegments(controller, number, wording)) +
           "\n" + deviceSection(controller, "Physical Device information", wording, true);
}

// Columns: level, fewest drives, largest stripe size in KB. The last row that holds counts.
struct StripeLimit {
    RaidLevel level;
    std::size_t fewest;
    int largestKb;
};
// clang-format off
constexpr std::array<StripeLimit, 6> stripeLimits = {{
    {RaidLevel::raid6,   5, 512},
    {RaidLevel::raid6,   6, 256},
    {RaidLevel::raid6,   9, 128},
    {RaidLevel::raid6,  12,  64},
    {RaidLevel::raid60, 10, 512},
    {RaidLevel::raid60, 12, 256},
}};
// clang-format on

int largestStripeKb(RaidLevel level, std::size_t drives) {
    int largest = 0;
    for (const StripeLimit& limit : stripeLimits) {
        if (limit.level == level && drives >= limit.fewest) {
            largest = limit.largestKb;
        }
    }
    return largest;
}

constexpr std::array<std::string_view, 1> methods = {"QUICK"};
constexpr std::array<CreateOption, 1> createOptions = {{{"Method", methods}}};

constexpr Dialect dialect = {
    .utility = "ARCCONF",
    .createOptions = createOptions,
    .simpleVolumes = false,
    .removals = true,
    .largestStripeKb = largestStripeKb,
    .listing = listing,
};

} // namespace

PlayResult playArcconf(Server& server, const std::vector<std::string>& options) {
    return playConf(dialect, server, options);
}

} // namespace zolex_sim::conf

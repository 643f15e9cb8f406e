#include "conf/Conf.h"
#include "conf/Dialect.h"
#include "conf/Listing.h"

#include <array>

namespace zolex_sim::conf {
namespace {

constexpr Wording wording = {
    .drive = "drive",
    .number = "number",
    .hotSpare = "Hot Spare",
    .failed = "Defunct",
    .critical = "Degraded",
    .raid6 = "6",
    .spanned = "VOLUME",
    .placeMark = "",
    .namedPlaces = false,
    .settings = false,
};

/// Unlike ARCCONF, the utility tells the versions along with the logical drives.
std::string listing(const Controller& controller, std::size_t /*number*/) {
    const ControllerIdentity& identity = controller.identity;
    return sectionHeading("Controller information") + controllerLines(controller, wording) + "\n" +
           sectionHeading("Logical drive information") + line(3, "BIOS version", identity.bios) +
           line(3, "Firmware version", identity.firmware) +
           line(3, "Driver version", identity.conf.driver) +
           logicalDrivesWithLists(controller, wording) + "\n" +
           deviceSection(controller, "Physical device information", wording, false);
}

int noStripeLimit(RaidLevel /*level*/, std::size_t /*drives*/) {
    return 0;
}

constexpr std::array<std::string_view, 3> priorities = {"HIGH", "MED", "LOW"};
constexpr std::array<std::string_view, 1> methods = {"QUICK"};
constexpr std::array<CreateOption, 2> createOptions = {{
    {"Init_Priority", priorities},
    {"Init_Method", methods},
}};

constexpr Dialect dialect = {
    .utility = "HRCONF",
    .createOptions = createOptions,
    .simpleVolumes = true,
    .removals = false,
    .largestStripeKb = noStripeLimit,
    .listing = listing,
};

} // namespace

PlayResult playHrconf(Server& server, const std::vector<std::string>& options) {
    return playConf(dialect, server, options);
}

} // namespace zolex_sim::conf

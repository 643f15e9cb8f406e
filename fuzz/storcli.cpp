// Input: the listings of a controller. Whatever they are, what is told of them fits together, and
// no drive in a state that is not known can be planned with.

#include "companion/families/storcli/Storcli.h"
#include "companion/families/storcli/StorcliDecode.h"
#include "support/Check.h"
#include "support/Input.h"

#include <set>
#include <string>
#include <vector>

namespace zolex::fuzz {

namespace {

using companion::DriveFacts;
using companion::FamilyController;
using companion::Storcli;

void checkController(const FamilyController& controller) {
    const companion::Facts& facts = controller.facts;
    check(facts.listings.size() == controller.listings.size(), "a record of each listing");
    for (const companion::ListingReading& reading : facts.listings) {
        check(reading.blocksRead <= reading.blocks, "blocks read are blocks");
        check(reading.keysUsed <= reading.keys, "used keys are keys");
    }
    std::set<std::string> locations;
    const Storcli family;
    for (const DriveFacts& drive : facts.drives) {
        check(!drive.location.empty() && locations.insert(drive.location).second,
              "drives have locations of their own");
        check(drive.state != companion::DriveState::unknown || !family.whyNotUsable(drive).empty(),
              "a drive in an unknown state is not usable");
    }
    std::set<std::string> ids;
    for (const companion::LogicalDriveFacts& volume : facts.logicalDrives) {
        check(ids.insert(volume.id).second, "logical drives have ids of their own");
    }
    check(!controller.failed || !controller.findings.empty(), "a failure is told");
}

void readListings(Input input) {
    constexpr const char* calls[] = {
        "STORCLI /c0 show all J nolog", "STORCLI /c0/eall/sall show all J nolog",
        "STORCLI /c0/vall show all J nolog", "STORCLI /c0/fall show J nolog"};
    FamilyController controller;
    for (const char* const call : calls) {
        companion::FamilyListing listing;
        listing.command = call;
        listing.outcome = ChildOutcome::ended;
        listing.output = input.text();
        controller.listings.push_back(std::move(listing));
    }
    FamilyController again = controller;
    companion::decodeStorcli(controller);
    companion::decodeStorcli(again);
    check(controller.facts == again.facts, "reading twice gives the same");
    checkController(controller);
    for (const companion::FamilyListing& listing : controller.listings) {
        static_cast<void>(companion::storcliControllers(listing.output));
        static_cast<void>(companion::storcliAnswer(listing.output));
        static_cast<void>(Storcli().judge("STORCLI /c0/v0 del J nolog", 0, listing.output));
    }
}

} // namespace

} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readListings(zolex::fuzz::Input(data, size));
    return 0;
}

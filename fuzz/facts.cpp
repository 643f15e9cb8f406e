// Input: a byte for the controller type, then the listings. Whatever they are, what is told of them
// fits together, and can be held against what the planner's reader makes of them.

#include "companion/facts/CompareReadings.h"
#include "companion/facts/FactsReader.h"
#include "driver/Application.h"
#include "model/Codes.h"
#include "readers/ConfigurationReader.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace zolex::fuzz {

namespace {

using companion::Facts;

/// A line of a listing, counted from 1.
void checkLine(const std::string& listing, std::int32_t line) {
    check(line >= 1 && line <= std::count(listing.begin(), listing.end(), '\n') + 1,
          "a line that the listing has");
}

void checkListings(const Facts& facts, const std::vector<std::string>& listings) {
    check(facts.listings.size() == listings.size(), "a record of each listing");
    for (std::size_t i = 0; i < listings.size(); ++i) {
        const companion::ListingReading& reading = facts.listings[i];
        check(reading.blocksRead <= reading.blocks, "blocks read are blocks");
        std::size_t keys = reading.keysUsed;
        for (const auto& [key, unknown] : reading.unknownKeys) {
            checkLine(listings[i], unknown.line);
            check(unknown.count > 0 && key.size() <= 80, "an unknown key");
            keys += unknown.count;
        }
        check(keys <= reading.keys, "used and unknown keys are keys");
    }
    for (const companion::BrokenBlock& each : facts.broken) {
        check(each.place.listing < listings.size() && !each.what.empty(), "a broken block");
        checkLine(listings[each.place.listing], each.place.line);
    }
}

void checkRecords(const Facts& facts) {
    std::set<std::string> locations;
    for (const companion::DriveFacts& drive : facts.drives) {
        check(!drive.location.empty() && locations.insert(drive.location).second,
              "drives have locations of their own");
    }
    for (const companion::LogicalDriveFacts& drive : facts.logicalDrives) {
        check(!drive.array.empty(), "a logical drive lies on an array");
        for (const std::vector<std::string>& span : drive.spans) {
            check(std::find(span.begin(), span.end(), "") == span.end(), "members have names");
        }
    }
}

void readAndCompare(Input input) {
    const std::int32_t type =
        controller_type::first + input.choice() % static_cast<std::int32_t>(controller_type::last);
    std::vector<std::string> listings;
    constexpr std::size_t mostListings = 4;
    while (listings.size() < mostListings && !input.atEnd()) {
        listings.emplace_back(input.text());
    }
    const Facts facts = companion::readFacts(type, listings);
    check(companion::readFacts(type, listings) == facts, "reading twice gives the same");
    checkListings(facts, listings);
    checkRecords(facts);

    test::FakePlatform platform;
    Application application(platform);
    RAIDController controller;
    controller.setType(type);
    const auto reader = findReader(type)->create({.layout = true}, application.report());
    const bool isRead = reader->readConfiguration(controller, listings);
    for (const auto& each : companion::compareReadings(facts, controller, isRead)) {
        check(!each.subject.empty() && !each.what.empty(), "a difference says what it is");
    }
}

} // namespace

} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readAndCompare(zolex::fuzz::Input(data, size));
    return 0;
}

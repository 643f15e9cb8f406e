// Whatever becomes of a listing, reading it ends, and what is told of it fits together.

#include "companion/facts/CompareReadings.h"
#include "companion/facts/FactsReader.h"
#include "companion/facts/VirtualListings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zolex::companion {
namespace {

std::size_t below(std::mt19937& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
    }
    return lines;
}

/// The listing with a few lines left out, doubled, exchanged, cut or with other bytes.
std::string mutated(const std::string& listing, std::mt19937& random) {
    std::vector<std::string> lines = linesOf(listing);
    for (std::size_t edits = 1 + below(random, 6); edits > 0; --edits) {
        const std::size_t at = below(random, lines.size());
        std::string& line = lines[at];
        switch (below(random, 7)) {
        case 0:
            line.clear();
            break;
        case 1: {
            const std::string copy = line;
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), copy);
            break;
        }
        case 2:
            std::swap(line, lines[below(random, lines.size())]);
            break;
        case 3:
            line.resize(below(random, line.size() + 1));
            break;
        case 4:
            line.insert(below(random, line.size() + 1), 1 + below(random, 300),
                        static_cast<char>(below(random, 256)));
            break;
        case 5: // another value
            line.resize(std::min(line.find(':'), line.size()));
            line += ": " + std::to_string(random() % 1000);
            break;
        default:
            lines.resize(at + 1);
            break;
        }
    }
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

void expectConsistent(const Facts& facts, const std::vector<std::string>& listings) {
    ASSERT_EQ(facts.listings.size(), listings.size());
    std::vector<std::ptrdiff_t> linesIn;
    for (const std::string& listing : listings) {
        linesIn.push_back(std::count(listing.begin(), listing.end(), '\n') + 1);
    }
    for (std::size_t i = 0; i < listings.size(); ++i) {
        const ListingReading& reading = facts.listings[i];
        EXPECT_LE(reading.blocksRead, reading.blocks);
        EXPECT_LE(reading.keysUsed, reading.keys);
        std::size_t unknown = 0;
        for (const auto& [key, counted] : reading.unknownKeys) {
            EXPECT_TRUE(counted.line >= 1 && counted.line <= linesIn[i]);
            unknown += counted.count;
        }
        EXPECT_LE(unknown + reading.keysUsed, reading.keys);
    }
    for (const BrokenBlock& each : facts.broken) {
        ASSERT_LT(each.place.listing, listings.size());
        EXPECT_TRUE(each.place.line >= 1 && each.place.line <= linesIn[each.place.listing])
            << each.what;
        EXPECT_FALSE(each.what.empty());
    }
    std::set<std::string> locations;
    for (const DriveFacts& drive : facts.drives) {
        EXPECT_FALSE(drive.location.empty());
        EXPECT_TRUE(locations.insert(drive.location).second) << drive.location;
    }
    for (const LogicalDriveFacts& drive : facts.logicalDrives) {
        EXPECT_FALSE(drive.array.empty());
        for (const std::vector<std::string>& span : drive.spans) {
            EXPECT_EQ(std::count(span.begin(), span.end(), ""), 0);
        }
    }
}

TEST(MutatedListings, AreReadToTheirEndAndToldConsistently) {
    std::mt19937 random(1122);
    std::size_t broken = 0;
    for (int i = 0; i < 500 && !::testing::Test::HasFailure(); ++i) {
        zolex_sim::Server server = test::randomServer(random);
        const zolex_sim::Controller& controller = server.controllers.front();
        std::vector<std::string> listings = test::listingsOf(server, controller);
        std::string& changed = listings[below(random, listings.size())];
        changed = mutated(changed, random);
        SCOPED_TRACE(std::to_string(i) + " " + controller.identity.utility);
        const std::int32_t type = test::typeOf(controller);
        const Facts facts = readFacts(type, listings);
        expectConsistent(facts, listings);
        EXPECT_EQ(readFacts(type, listings), facts);
        broken += facts.broken.empty() ? 0 : 1;
        const test::CoreReading core = test::readByCore(type, listings);
        for (const ReadingDifference& each : compareReadings(facts, core.controller, core.isRead)) {
            EXPECT_FALSE(each.subject.empty());
            EXPECT_FALSE(each.what.empty());
        }
        EXPECT_EQ(corePositions(type, facts).size(), facts.drives.size());
    }
    EXPECT_GT(broken, 150U); // most changes hit a line that counts
}

} // namespace
} // namespace zolex::companion

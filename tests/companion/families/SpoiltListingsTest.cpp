// Whatever becomes of a listing, reading it ends, and what is told of it fits together.

#include "companion/families/StorcliListings.h"

#include <algorithm>
#include <random>
#include <set>

namespace zolex::companion {
namespace {

using namespace test; // NOLINT: the words of these tests

std::size_t below(std::mt19937& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

/// The text with some bytes left out, doubled, exchanged or others.
std::string spoilt(std::string text, std::mt19937& random) {
    constexpr const char* pieces[] = {"\"",
                                      ":",
                                      "{",
                                      "}",
                                      "[",
                                      "]",
                                      ",",
                                      "-",
                                      "null",
                                      "1e999",
                                      "18446744073709551616",
                                      "\xff",
                                      "\t",
                                      "\\u0000",
                                      "252:",
                                      "[0xffffffffffffffff Sectors]",
                                      "true",
                                      "-1",
                                      "/"};
    for (std::size_t edits = 1 + below(random, 4); edits > 0 && !text.empty(); --edits) {
        const std::size_t at = below(random, text.size());
        switch (below(random, 6)) {
        case 0:
            text.erase(at, 1 + below(random, 200));
            break;
        case 1:
            text.insert(at, text.substr(below(random, text.size()), below(random, 300)));
            break;
        case 2:
            text.insert(at, pieces[below(random, std::size(pieces))]);
            break;
        case 3:
            text[at] = static_cast<char>(below(random, 256));
            break;
        case 4: { // another value of a key
            const std::size_t colon = text.find(" : ", at);
            const std::size_t end = text.find_first_of(",\n", colon);
            if (end != std::string::npos) {
                text.replace(colon + 3, end - colon - 3, pieces[below(random, std::size(pieces))]);
            }
            break;
        }
        default: { // a line left out, or doubled
            const std::size_t begin = text.find('\n', at);
            const std::size_t end = text.find('\n', std::min(begin, text.size() - 1) + 1);
            if (end != std::string::npos && begin != std::string::npos) {
                const std::string line = text.substr(begin, end - begin);
                if (below(random, 2) == 0) {
                    text.erase(begin, line.size());
                } else {
                    text.insert(begin, line);
                }
            }
            break;
        }
        }
    }
    return text;
}

void expectConsistent(const FamilyController& controller) {
    const Facts& facts = controller.facts;
    ASSERT_EQ(facts.listings.size(), controller.listings.size());
    for (const ListingReading& reading : facts.listings) {
        EXPECT_LE(reading.blocksRead, reading.blocks);
        EXPECT_LE(reading.keysUsed, reading.keys);
    }
    std::set<std::string> locations;
    for (const DriveFacts& drive : facts.drives) {
        EXPECT_TRUE(locations.insert(drive.location).second) << drive.location;
        // What is not known for sure is never planned with.
        const bool isKnown = drive.state != DriveState::unknown;
        EXPECT_TRUE(isKnown || !Storcli().whyNotUsable(drive).empty());
    }
    std::set<std::string> ids;
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        EXPECT_TRUE(ids.insert(volume.id).second) << volume.id;
    }
    EXPECT_TRUE(!controller.failed || !controller.findings.empty());
    for (const FamilyFinding& finding : controller.findings) {
        EXPECT_FALSE(finding.code.empty() || finding.summary.empty());
    }
}

TEST(SpoiltListings, AreReadToTheirEndTenThousandTimes) {
    const ListedController whole;
    std::mt19937 random(20261122); // NOLINT: the same each time
    const std::vector<std::string> calls = {
        "STORCLI /c0 show all J", "STORCLI /c0/eall/sall show all J", "STORCLI /c0/vall show all J",
        "STORCLI /c0/fall show J"};
    std::size_t failed = 0;
    std::size_t read = 0;
    constexpr int rounds = 10000;
    for (int i = 0; i < rounds; ++i) {
        FamilyController controller;
        const std::size_t which = below(random, calls.size());
        for (std::size_t j = 0; j < calls.size(); ++j) {
            if (j != 0 && j != which) {
                continue; // the others are as they are elsewhere, and take time
            }
            FamilyListing listed;
            listed.command = calls[j];
            listed.outcome = ChildOutcome::ended;
            listed.output = whole.answers.at(calls[j]).output;
            if (j == which) {
                listed.output = spoilt(std::move(listed.output), random);
            }
            controller.listings.push_back(std::move(listed));
        }
        decodeStorcli(controller);
        ++(controller.failed ? failed : read);
        expectConsistent(controller);
        if (HasFailure()) {
            FAIL() << "round " << i << ":\n" << controller.listings.back().output;
        }
    }
    // The spoiling reaches both.
    EXPECT_GT(failed, rounds / 20U);
    EXPECT_GT(read, rounds / 20U);
}

} // namespace
} // namespace zolex::companion

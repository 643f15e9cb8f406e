// The facts of what the virtual server prints are those of the server itself.

#include "companion/facts/CompareReadings.h"
#include "companion/facts/FactsReader.h"
#include "companion/facts/VirtualListings.h"
#include "model/Operations.h"
#include "setup/Samples.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion {
namespace {

std::vector<std::string> contradictions(const std::vector<ReadingDifference>& differences) {
    std::vector<std::string> lines;
    for (const ReadingDifference& each : differences) {
        if (isContradiction(each.kind)) {
            lines.push_back(each.subject + ": " + each.what);
        }
    }
    return lines;
}

/// Names the lines that differ alone: there are many.
void expectLines(const std::vector<std::string>& found, const std::vector<std::string>& wanted) {
    EXPECT_EQ(found.size(), wanted.size());
    for (std::size_t i = 0; i < std::min(found.size(), wanted.size()); ++i) {
        EXPECT_EQ(found[i], wanted[i]);
    }
}

/// Reads the listings of the controller, and expects all that its definition says.
Facts expectFacts(zolex_sim::Server& server, const zolex_sim::Controller& controller) {
    const std::vector<std::string> listings = test::listingsOf(server, controller);
    const std::int32_t type = test::typeOf(controller);
    Facts facts = readFacts(type, listings);
    expectLines(test::describe(facts), test::describe(controller));
    EXPECT_EQ(test::brokenLines(facts), std::vector<std::string>());
    for (const ListingReading& listing : facts.listings) {
        EXPECT_EQ(listing.blocksRead, listing.blocks);
        for (const auto& [key, unknown] : listing.unknownKeys) {
            ADD_FAILURE() << "unknown key " << key << " in line " << unknown.line;
        }
    }
    const test::CoreReading core = test::readByCore(type, listings);
    EXPECT_EQ(contradictions(compareReadings(facts, core.controller, core.isRead)),
              std::vector<std::string>());
    return facts;
}

TEST(ServerFacts, EverySampleIsReadWhole) {
    for (const zolex_sim::Sample& sample : zolex_sim::samples()) {
        SCOPED_TRACE(std::string(sample.name));
        zolex_sim::Server server = test::sampleServer(sample.name);
        for (const zolex_sim::Controller& controller : server.controllers) {
            const Facts facts = expectFacts(server, controller);
            if (controller.identity.utility == "MEGACLI") {
                EXPECT_EQ(facts.serialNumber, controller.identity.serialNumber);
                EXPECT_EQ(facts.raidTypes.size(), controller.identity.levels.size());
            }
        }
    }
}

TEST(ServerFacts, ServersOfAnyKindAreReadWhole) {
    std::mt19937 random(20261122);
    for (int i = 0; i < 800 && !::testing::Test::HasFailure(); ++i) {
        zolex_sim::Server server = test::randomServer(random);
        const zolex_sim::Controller& controller = server.controllers.front();
        SCOPED_TRACE(std::to_string(i) + " " + controller.identity.utility);
        expectFacts(server, controller);
    }
}

} // namespace
} // namespace zolex::companion

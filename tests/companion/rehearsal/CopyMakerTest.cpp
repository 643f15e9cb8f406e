#include "companion/rehearsal/CopyMaker.h"

#include "companion/facts/VirtualListings.h"
#include "companion/layout/NormalForm.h"
#include "companion/machine/Capture.h"
#include "companion/rehearsal/Originals.h"
#include "companion/support/SimulatedPlatform.h"
#include "setup/Samples.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

Snapshot captured(const std::string& sample) {
    SimulatedPlatform platform(sample);
    return captureMachine(platform, {});
}

MadeCopy copied(const Snapshot& snapshot, std::size_t index) {
    const ControllerSnapshot& details = snapshot.details.at(index);
    return copyController(details, snapshot.controllers.controller(details.index)->type());
}

TEST(CopyMaker, EveryControllerOfEverySampleReadsBackAsItself) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        const Snapshot snapshot = captured(sample);
        for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
            SCOPED_TRACE(sample + " " + std::to_string(i + 1));
            const MadeCopy made = copied(snapshot, i);
            EXPECT_EQ(made.because, "");
            ASSERT_TRUE(made.copy);
            EXPECT_EQ(normalForm(made.facts), normalForm(snapshot.details[i].facts));
        }
    }
}

TEST(CopyMaker, RandomControllersReadBackAsThemselves) {
    std::map<std::string, int> because;
    for (unsigned seed = 0; seed < 600; ++seed) {
        std::mt19937 random(seed);
        zolex_sim::Server server = test::randomServer(random);
        const ControllerSnapshot original = test::originalOf(server);
        const MadeCopy made = test::copyOf(original, server.controllers.front());
        ++because[made.because];
        // HYPERWIN does not tell which drive is being rebuilt.
        if (made.copy && original.utility != "HYPERWIN") {
            ASSERT_EQ(test::layoutFacts(made.facts), test::layoutFacts(original.facts)) << seed;
        }
    }
    EXPECT_EQ(because, (std::map<std::string, int>{{"", 600}}));
}

TEST(CopyMaker, WhatChangesIsReadByItselfAsItIsReadInAll) {
    int changes = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        zolex_sim::Server server = test::randomServer(random);
        const ControllerSnapshot original = test::originalOf(server);
        MadeCopy made = test::copyOf(original, server.controllers.front());
        if (!made.copy) {
            continue;
        }
        Facts facts = made.facts;
        for (int step = 0; step < 20; ++step) {
            const CopyState before = made.copy->state();
            const std::vector<std::string> line = test::randomLine(facts, original.utility, random);
            made.copy->play(line);
            changes += made.copy->state() == before ? 0 : 1;
            facts = made.copy->capture(before, facts);
            const Facts whole = made.copy->capture();
            ASSERT_EQ(test::layoutFacts(facts), test::layoutFacts(whole))
                << seed << " " << line.at(2);
            ASSERT_EQ(normalForm(facts), normalForm(whole)) << seed;
        }
    }
    EXPECT_GT(changes, 1000);
}

} // namespace
} // namespace zolex::companion

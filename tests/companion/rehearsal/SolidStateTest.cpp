// Servers with solid-state drives and hard disks: captured, copied, planned and rehearsed.

#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/Originals.h"
#include "companion/rehearsal/Rehearse.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::PlannedServer;
using zolex_sim::Generation;
using Lines = std::vector<std::string>;

struct MixedServer {
    const char* name;
    const char* sample;
    Generation generation;
    const char* disks; ///< what the listing says of the hard disks
};

/// Every second drive is a solid-state drive.
void mixMedia(zolex_sim::Server& server, Generation generation) {
    zolex_sim::Controller& controller = server.controllers.front();
    controller.identity.generation = generation;
    for (std::size_t i = 0; i < controller.drives.size(); i += 2) {
        controller.drives[i].medium = zolex_sim::Medium::solidState;
    }
}

Lines mediaOf(const Facts& facts) {
    Lines media;
    for (const DriveFacts& drive : facts.drives) {
        media.push_back(drive.location + " " + drive.protocol + " " + drive.mediaType);
    }
    return media;
}

class SolidState : public testing::TestWithParam<MixedServer> {
  protected:
    SolidState() { mixMedia(server.platform.server, GetParam().generation); }

    PlannedServer server{GetParam().sample};
};

TEST_P(SolidState, IsCaptured) {
    const Snapshot snapshot = server.snapshot();
    const Facts& facts = snapshot.details.front().facts;
    ASSERT_GE(facts.drives.size(), 2U);
    for (std::size_t i = 0; i < facts.drives.size(); ++i) {
        const bool isMember = facts.drives[i].state == DriveState::member;
        const bool isNewest = GetParam().generation == Generation::newest;
        EXPECT_EQ(facts.drives[i].mediaType, i % 2 == 0             ? "SSD"
                                             : isNewest && isMember ? "HDD"
                                                                    : GetParam().disks)
            << i;
    }
}

TEST_P(SolidState, IsCopied) {
    const ControllerSnapshot original = test::originalOf(server.platform.server);
    MadeCopy made = test::copyOf(original, server.platform.server.controllers.front());
    EXPECT_EQ(made.because, "");
    ASSERT_TRUE(made.copy);
    EXPECT_EQ(mediaOf(made.copy->read()), mediaOf(original.facts));
}

TEST_P(SolidState, IsPlannedAndRehearsed) {
    for (const char* utility : {"ARCCONF"}) {
        for (zolex_sim::Controller& controller : server.platform.server.controllers) {
            controller.identity.defaultBatteryProtected &= controller.identity.utility != utility;
        }
    }
    const std::string policies = server.samplePolicies();
    const Snapshot snapshot = server.snapshot();
    MachinePlan plan = server.plan(policies, StrategyWish::rebuild);
    ASSERT_TRUE(plan.isApplicable());
    ASSERT_FALSE(plan.steps().empty());
    rehearse(snapshot, plan);
    EXPECT_EQ(plan.rehearsal.notDoneBecause, Lines{});
    EXPECT_TRUE(plan.rehearsal.done);
    EXPECT_TRUE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(server.carryOut(plan), Lines{});
    const MachinePlan again = server.plan(policies);
    EXPECT_EQ(again.controllers.front().disposition, Disposition::already);
}

INSTANTIATE_TEST_SUITE_P(
    All, SolidState,
    testing::Values(MixedServer{"MegacliEarly", "configured", Generation::early, "HDD"},
                    MixedServer{"MegacliLater", "configured", Generation::later, "HDD"},
                    MixedServer{"ArcconfEarly", "arcconf", Generation::early, ""},
                    MixedServer{"ArcconfLater", "arcconf", Generation::later, ""},
                    MixedServer{"ArcconfNewest", "arcconf", Generation::newest, ""},
                    MixedServer{"Cfggen", "cfggen", Generation::early, ""}),
    [](const auto& server) { return std::string(server.param.name); });

// Of drives that are told apart by their media each is where it was, or it is no copy.
TEST(SolidStateCopy, HasTheSameMedia) {
    for (const char* const sample : {"hrconf", "qtcsend", "cfggen-scsi", "hyperwin"}) {
        PlannedServer server(sample);
        ControllerSnapshot original = test::originalOf(server.platform.server);
        original.facts.drives.front().mediaType = "SSD";
        EXPECT_EQ(test::copyOf(original, server.platform.server.controllers.front()).because,
                  "drive " + original.facts.drives.front().location +
                      " of the copy has another medium");
    }
}

} // namespace
} // namespace zolex::companion

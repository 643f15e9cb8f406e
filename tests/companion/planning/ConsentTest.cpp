#include "companion/planning/Steps.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

const std::string identity = "9d1e000000000000000000000000000000000000000000000000000000000000";

Loss mirror() {
    Loss loss;
    loss.controller = 1;
    loss.kind = "logical_drive";
    loss.id = "0";
    loss.raidType = "RAID1";
    loss.drives = {"32:0", "32:1"};
    loss.capacityBytes = 72746008576;
    loss.status = "Optimal";
    return loss;
}

Loss spare() {
    Loss loss;
    loss.controller = 1;
    loss.kind = "hotspare";
    loss.id = "32:7";
    loss.drives = {"32:7"};
    loss.status = "Hotspare";
    return loss;
}

TEST(ConsentTest, NothingLostNeedsNoConsent) {
    EXPECT_EQ(consentCode(identity, {}), "");
}

// Made with an independent program over the text
// "IDENTITY\n1\tlogical_drive\t0\tRAID1\t32:0 32:1 \t72746008576\n" and so on.
TEST(ConsentTest, CodesAreTheFirstFortyBits) {
    EXPECT_EQ(consentCode(identity, {mirror()}), "E16A-KXSW");
    EXPECT_EQ(consentCode(identity, {mirror(), spare()}), "Y1N5-MAG8");
}

TEST(ConsentTest, OrderAndStateDoNotMatter) {
    Loss degraded = mirror();
    degraded.status = "Degraded";
    EXPECT_EQ(consentCode(identity, {spare(), degraded}),
              consentCode(identity, {mirror(), spare()}));
}

TEST(ConsentTest, AnythingElseMatters) {
    const std::string code = consentCode(identity, {mirror()});
    EXPECT_NE(consentCode("8" + identity.substr(1), {mirror()}), code);
    EXPECT_NE(consentCode(identity, {mirror(), spare()}), code);
    const auto changed = [](auto change) {
        Loss loss = mirror();
        change(loss);
        return consentCode(identity, {loss});
    };
    EXPECT_NE(changed([](Loss& loss) { loss.controller = 2; }), code);
    EXPECT_NE(changed([](Loss& loss) { loss.kind = "foreign"; }), code);
    EXPECT_EQ(changed([](Loss& loss) { loss.device = "/dev/sdb"; }), code);
    const std::string known = changed([](Loss& loss) { loss.uniqueId = "600aaa01"; });
    EXPECT_NE(known, code);
    EXPECT_NE(changed([](Loss& loss) { loss.uniqueId = "600aaa02"; }), known);
    EXPECT_NE(changed([](Loss& loss) {
                  loss.uniqueId = "600aaa01";
                  loss.name = "data";
              }),
              known);
    EXPECT_NE(changed([](Loss& loss) { loss.id = "1"; }), code);
    EXPECT_NE(changed([](Loss& loss) { loss.raidType = "RAID0"; }), code);
    EXPECT_NE(changed([](Loss& loss) { loss.drives.emplace_back("32:2"); }), code);
    EXPECT_NE(changed([](Loss& loss) { ++loss.capacityBytes; }), code);
}

} // namespace
} // namespace zolex::companion

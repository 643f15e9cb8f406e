// What plans of families warn of, as those of the other controllers do.

#include "FamilyServer.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

/// Of drives that are about to fail, and of sizes.
std::string warningsOfDrives(const MachinePlan& plan) {
    std::string text;
    for (const Finding& finding : plan.controllers.front().warnings) {
        if (finding.code == "ZX703" || finding.code == "ZX704") {
            text += std::string(severityWord(finding.severity)) + " " + finding.code + ": " +
                    finding.summary + "\n  help: " + finding.help.front() + "\n";
        }
    }
    return text;
}

TEST(FamilyWarnings, DrivesThatAreAboutToFail) {
    FamilyServer server;
    server.addDrives(6);
    server.driveAt(1).mediaErrorCount = 3;
    server.driveAt(2).mediaErrorCount = 1;
    server.driveAt(2).predictedFailureCount = 2;
    server.driveAt(3).predictedFailureCount = 1;
    server.driveAt(4).mediaErrorCount = 9; // in nothing
    const std::string entries = custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\nHotspares = 4\n");
    const MachinePlan plan = server.plan(entries);
    EXPECT_TRUE(plan.isApplicable());
    EXPECT_EQ(warningsOfDrives(plan),
              "warning ZX703: 252:1 has 3 media errors, and goes into array A\n"
              "  help: replace 252:1 before the array is made\n"
              "warning ZX703: 252:2 has 1 media error, 2 predicted failures, and goes into array "
              "A\n"
              "  help: replace 252:2 before the array is made\n"
              "warning ZX703: 252:3 has 1 predicted failure, and goes into the hot spares\n"
              "  help: replace 252:3 before the array is made\n");
    // Where it stands already, and something else is changed.
    server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000);
    EXPECT_EQ(warningsOfDrives(server.plan(entries)),
              "warning ZX703: 252:1 has 3 media errors, and is in array A\n"
              "  help: replace the drive while the others are well\n"
              "warning ZX703: 252:2 has 1 media error, 2 predicted failures, and is in array A\n"
              "  help: replace the drive while the others are well\n"
              "warning ZX703: 252:3 has 1 predicted failure, and goes into the hot spares\n"
              "  help: replace 252:3 before the array is made\n");
    server.makeSpare(3);
    const MachinePlan stands = server.plan(entries);
    EXPECT_EQ(dispositionWord(stands.controllers.front().disposition), "already");
    EXPECT_NE(warningsOfDrives(stands).find("252:3 has 1 predicted failure, and is in the hot "
                                            "spares\n"),
              std::string::npos);
}

TEST(FamilyWarnings, DrivesOfUnlikeSizes) {
    FamilyServer server;
    server.addDrives(2);
    server.add(252, 2, 1500);
    const std::string policies = custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n");
    EXPECT_EQ(warningsOfDrives(server.plan(policies)),
              "warning ZX704: array A leaves 500.0 GB of its drives unused\n"
              "  help: 252:0 has 1000.0 GB, 252:2 has 1.46 TB\n");
    server.driveAt(2).capacityBytes = std::uint64_t{1019} << 30U;
    EXPECT_EQ(warningsOfDrives(server.plan(policies)), "");
}

} // namespace
} // namespace zolex::companion

// Policies to Ironic's RAID configuration and back, by the real programs on the virtual server:
// what comes back is deployed, and is what the policies want but for the spare.

#include "PlannedServer.h"

#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::e2e {
namespace {

TEST(ConvertEndToEnd, ToIronicAndBackKeepsTheLayout) {
    PlannedServer server("single");
    server.write("web.ini", webPolicies);
    ASSERT_EQ(server.zolexctl({"record", "-o", "server.zrec"}).exitCode, 0);
    const ProgramRun to = server.zolexctl(
        {"convert", "--to", "ironic", "--machine", "server.zrec", "web.ini", "-o", "node7.json"});
    EXPECT_EQ(to.exitCode, 0) << to.error;
    EXPECT_EQ(to.output, "");
    expectPieces(to.error, {"web.ini:6:13: warning: ", "[ZX957]", "[ZX958]", "[ZX958]",
                            "node7.json: 2 logical disks; "});
    const std::string document = server.read("node7.json");
    companion::test::keepDocument("ironic-e2e", document);
    expectPieces(document, {"\"raid_level\": \"1\"", "\"MAX\"", "\"32:0\"", "\"32:1\"",
                            "\"raid_level\": \"5\"", "\"32:2\"", "\"32:6\""});

    const ProgramRun from = server.zolexctl(
        {"convert", "--from", "ironic", "node7.json", "--machine", "server.zrec", "-o", "n7.ini"});
    EXPECT_EQ(from.exitCode, 0) << from.error;
    EXPECT_EQ(from.error,
              "n7.ini: 1 policy, 2 arrays, 2 logical drives; spares: none (Ironic has none)\n");
    EXPECT_EQ(server.zolexctl({"check", "n7.ini", "--machine", "server.zrec"}).exitCode, 0);
    server.deploy("n7.ini");
    EXPECT_EQ(server.zolexctl({"diff", "n7.ini"}).exitCode, 0);
    const ProgramRun diff = server.zolexctl({"diff", "web.ini"});
    EXPECT_EQ(diff.exitCode, 1);
    expectPieces(diff.output, {"spare"});
}

TEST(ConvertEndToEnd, OfIronicNeedsNoServer) {
    PlannedServer server("single");
    server.write("node.json", "{\"logical_disks\": [{\"size_gb\": 100, \"raid_level\": \"1\", "
                              "\"disk_type\": \"ssd\"}]}");
    const ProgramRun run = server.zolexctl(
        {"convert", "--from", "ironic", "node.json", "--model", "LSI-MegaRAID-8480"});
    EXPECT_EQ(run.exitCode, 0);
    expectPieces(run.error, {"[ZX954]", "written as 102400 MB", "[ZX951]"});
    expectPieces(run.output, {"AppliesTo.1 = t:LSI-MegaRAID-8480\n", "Logical.1 = A:102400:1\n"});
    server.write("jbod.json",
                 "{\"logical_disks\": [{\"size_gb\": 100, \"raid_level\": \"JBOD\"}]}");
    server.write("kept.ini", "old");
    const ProgramRun refused = server.zolexctl({"convert", "--from", "ironic", "jbod.json",
                                                "--model", "LSI-MegaRAID-8480", "-o", "kept.ini"});
    EXPECT_EQ(refused.exitCode, 2);
    expectPieces(refused.error, {"jbod.json:1:51: error: ", "[ZX950]", "nothing was written"});
    EXPECT_EQ(server.read("kept.ini"), "old");
}

} // namespace
} // namespace zolex::e2e

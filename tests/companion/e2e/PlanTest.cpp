// plan and diff of the real program on the virtual server.

#include "PlannedServer.h"

#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

using companion::test::keepDocument;

class PlanOfASample : public testing::TestWithParam<std::string> {};

/// Before, plan tells what is to be done; when zolex has done it, there is nothing to do.
TEST_P(PlanOfASample, HasNothingToDoWhenZolexHasDeployed) {
    PlannedServer server(GetParam());
    ASSERT_EQ(server.zolex({"/r", "/y"}).exitCode, 0);
    const ProgramRun before = server.zolexctl(
        {"plan", "sample-policies.ini", "--exit-code", "-o", "before.json", "--width", "80"});
    EXPECT_EQ(before.exitCode, 1) << before.output << before.error;
    EXPECT_EQ(before.error, "");
    const std::string document = server.read("before.json");
    keepDocument("plan-blank-" + GetParam(), document);
    EXPECT_FALSE(valuesOf(document, "command").empty());
    EXPECT_NE(document.find("\"ends_as_planned\": true"), std::string::npos) << document;
    for (const std::string& line : linesAfter(before.output, "")) {
        EXPECT_LE(line.size(), 80U) << line;
    }
    const ProgramRun blank = server.zolexctl({"diff", "sample-policies.ini"});
    EXPECT_EQ(blank.exitCode, 1) << blank.output << blank.error;

    server.deploy("sample-policies.ini");
    const ProgramRun after =
        server.zolexctl({"plan", "sample-policies.ini", "--exit-code", "-o", "after.json"});
    EXPECT_EQ(after.exitCode, 0) << after.output << after.error;
    EXPECT_NE(after.output.find("Plan saved to after.json. Nothing to do."), std::string::npos)
        << after.output;
    keepDocument("plan-deployed-" + GetParam(), server.read("after.json"));
    EXPECT_TRUE(valuesOf(server.read("after.json"), "command").empty());
    for (const char* wanted : {"sample-policies.ini", "before.json", "after.json"}) {
        const ProgramRun diff = server.zolexctl({"diff", wanted});
        EXPECT_EQ(diff.exitCode, 0) << wanted << "\n" << diff.output << diff.error;
    }
    const ProgramRun json = server.zolexctl({"diff", "sample-policies.ini", "--format", "json"});
    EXPECT_EQ(json.exitCode, 0) << json.error;
    keepDocument("diff-deployed-" + GetParam(), json.output);
}

TEST_P(PlanOfASample, IsTheSameWhenItIsMadeTwice) {
    PlannedServer server(GetParam());
    const ProgramRun first = server.zolexctl({"plan", "sample-policies.ini", "--format", "json"});
    const ProgramRun second = server.zolexctl({"plan", "sample-policies.ini", "--format", "json"});
    EXPECT_EQ(first.exitCode, 0) << first.output << first.error;
    EXPECT_EQ(withoutTimesOfPlan(first.output), withoutTimesOfPlan(second.output));
    EXPECT_NE(first.output.find("\"format\": \"zolex-plan\""), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Samples, PlanOfASample, testing::ValuesIn(sampleNames()),
                         [](const testing::TestParamInfo<std::string>& name) {
                             std::string word = name.param;
                             word.erase(std::remove(word.begin(), word.end(), '-'), word.end());
                             return word;
                         });

#ifndef _WIN32
/// What zolex runs is what was planned: a wrapper before the utility writes each line down.
TEST(PlanEndToEnd, ListsTheCommandsThatZolexThenRuns) {
    for (const std::string& sample : sampleNames()) {
        SCOPED_TRACE(sample);
        PlannedServer server(sample);
        ASSERT_EQ(server.zolex({"/r", "/y"}).exitCode, 0);
        ASSERT_EQ(server.zolexctl({"plan", "sample-policies.ini", "-o", "p.json"}).exitCode, 0);
        fs::rename(server.folder() / "UTIL.BAT", server.folder() / "utility");
        server.write("UTIL.BAT", "#!/bin/sh\n"
                                 "echo \"UTIL.BAT $*\" >>lines\n"
                                 "exec ./utility \"$@\"\n");
        fs::permissions(server.folder() / "UTIL.BAT", fs::perms::owner_all);
        ASSERT_EQ(server.zolexctl({"show"}).exitCode, 0);
        const std::vector<std::string> reading = linesAfter(server.read("lines"), "");
        fs::remove(server.folder() / "lines");
        ASSERT_EQ(server.zolex({"/f:sample-policies.ini"}).exitCode, 0);
        std::vector<std::string> ran = linesAfter(server.read("lines"), "");
        std::erase_if(ran, [&reading](const std::string& line) {
            return std::find(reading.begin(), reading.end(), line) != reading.end();
        });
        EXPECT_EQ(ran, valuesOf(server.read("p.json"), "command"));
    }
}
#endif

TEST(PlanEndToEnd, DiffTellsAChangedStripSize) {
    PlannedServer server(megaServer(eightDrives));
    server.write("web.ini", webPolicies);
    server.deploy("web.ini");
    EXPECT_EQ(server.zolexctl({"diff", "web.ini"}).exitCode, 0);
    server.write("other.ini", with(webPolicies, "Array_Mode", "StripeSize = 128\nArray_Mode"));
    const ProgramRun diff = server.zolexctl({"diff", "other.ini"});
    EXPECT_EQ(diff.exitCode, 1);
    EXPECT_EQ(diff.error, "");
    EXPECT_EQ(diff.output,
              R"(Controller 1  LSI-MegaRAID-8480  Policy.web (other.ini:1)              different
  ~ LD 0   RAID1   67.8 GB  32:0 32:1
      strip size  policy 128 KB  machine 64 KB
  ~ LD 1   RAID5  271.0 GB  32:2-32:6
      strip size  policy 128 KB  machine 64 KB
  = spare                   32:7

The controller differs. This takes a rebuild: strip size. zolexctl plan
other.ini shows what it takes.
)");
    const ProgramRun json = server.zolexctl({"diff", "other.ini", "--format", "json"});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(valuesOf(json.output, "attribute"),
              (std::vector<std::string>{"strip_size_bytes", "strip_size_bytes"}));
    keepDocument("diff-strip-size", json.output);
    // Pictures of it.
    const ProgramRun svg = server.zolexctl({"diff", "other.ini", "--format", "svg", "-o", "d.svg"});
    EXPECT_EQ(svg.exitCode, 1);
    keepDocument("diff-strip-size.svg", server.read("d.svg"));
    const ProgramRun html = server.zolexctl({"diff", "other.ini", "--format", "html"});
    EXPECT_EQ(html.exitCode, 1);
    keepDocument("diff-strip-size.html", html.output);
}

/// Drive 4 of the RAID 5 is the spare now, and the spare stands in its place.
TEST(PlanEndToEnd, ASpareThatSteppedInIsEquivalent) {
    PlannedServer server(megaServer(eightDrives));
    server.write("first.ini", "[Policy.x]\n"
                              "AppliesTo.1 = ALL\n"
                              "Array_Mode = CUSTOM\n"
                              "Array.A = 1,2,5\n"
                              "Hotspares = 4\n"
                              "Logical_Mode = CUSTOM\n"
                              "Logical.1 = A:FILL:5:ON\n");
    server.deploy("first.ini");
    server.write("wanted.ini", with(with(server.read("first.ini"), "1,2,5", "1,2,4"),
                                    "Hotspares = 4", "Hotspares = 5"));
    const ProgramRun diff = server.zolexctl({"diff", "wanted.ini"});
    EXPECT_EQ(diff.exitCode, 0) << diff.output;
    expectPieces(diff.output, {"Policy.x (wanted.ini:1)", "equivalent\n"});
    const ProgramRun strict = server.zolexctl({"diff", "wanted.ini", "--strict"});
    EXPECT_EQ(strict.exitCode, 1) << strict.output;
    const ProgramRun plan = server.zolexctl({"plan", "wanted.ini", "--exit-code"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output;
    expectPieces(plan.output,
                 {"Controller 1  as the policy says, equivalent: the spare is 32:3 instead of "
                  "32:4\n",
                  "Nothing to do.\n"});
    const ProgramRun json = server.zolexctl({"diff", "wanted.ini", "--format", "json"});
    keepDocument("diff-equivalent", json.output);
}

TEST(PlanEndToEnd, WarnsOfADriveWithPredictedFailures) {
    PlannedServer server(megaServer(
        R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376},
           {"enclosure": 32, "slot": 3, "sizeMB": 69376, "mediaErrors": 12, "predictiveFailures": 1},
           {"enclosure": 32, "slot": 4, "count": 4, "sizeMB": 69376})"));
    server.write("web.ini", webPolicies);
    const ProgramRun plan = server.zolexctl({"plan", "web.ini"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    expectPieces(plan.output,
                 {"32:3 has 12 media errors, 1 predicted failure, and goes into Array.B [ZX703]"});
}

TEST(PlanEndToEnd, LimitsItselfToAController) {
    PlannedServer server("two-controllers");
    server.deploy("sample-policies.ini");
    // Other levels on both: the RAID 5 goes.
    server.write("other.ini",
                 with(with(server.read("sample-policies.ini"), ":5:", ":0:"), ":5:", ":0:"));
    const ProgramRun plan = server.zolexctl(
        {"plan", "other.ini", "--controller", "2", "-o", "p.json", "--record", "kept.zrec"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    const std::string document = server.read("p.json");
    for (const std::string& command : valuesOf(document, "command")) {
        EXPECT_NE(command.find("-a1"), std::string::npos) << command;
    }
    EXPECT_EQ(document.find("\"controller\": 1,"), std::string::npos) << document;
    EXPECT_EQ(plan.output.find("Controller 1"), std::string::npos) << plan.output;
    expectPieces(plan.output, {"Controller 2  Kestrix-D4", "- LD 1", "1 to destroy"});
    EXPECT_EQ(server.read("kept.zrec").find("-a0"), std::string::npos);
    keepDocument("plan-one-controller", document);
    const ProgramRun none = server.zolexctl({"plan", "other.ini", "--controller", "3"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.error, "error: there is no controller 3: this machine has 2\n"
                          "  help: zolexctl show lists those that there are\n");
}

TEST(PlanEndToEnd, KeepsThePlanByTheEndingOfItsName) {
    PlannedServer server("configured");
    for (const char* const name : {"p.json", "p.svg", "p.html", "p.txt"}) {
        const ProgramRun run = server.zolexctl({"plan", "sample-policies.ini", "-o", name});
        EXPECT_EQ(run.exitCode, 0) << run.error;
        const bool isPlan = std::string_view(name) == "p.json";
        const std::string kept = (isPlan ? "Plan saved to " : "Written to ") + std::string(name);
        EXPECT_NE(run.output.find(kept + ". Nothing to do.\n"), std::string::npos) << run.output;
    }
    EXPECT_TRUE(server.read("p.json").starts_with("{\n  \"format\": \"zolex-plan\",\n"));
    EXPECT_NE(server.read("p.svg").find("<svg "), std::string::npos);
    EXPECT_TRUE(server.read("p.html").starts_with("<!DOCTYPE html>"));
    EXPECT_TRUE(server.read("p.txt").starts_with("Machine 8837, serial KQ10Z7W"));
    // What was kept can be shown, and compared with.
    EXPECT_EQ(server.zolexctl({"show", "p.json", "--as", "json"}).output, server.read("p.json"));
    EXPECT_EQ(server.zolexctl({"show", "p.json", "--as", "svg"}).output, server.read("p.svg"));
    const ProgramRun odd = server.zolexctl({"plan", "sample-policies.ini", "-o", "p.xml"});
    EXPECT_EQ(odd.exitCode, 2);
    EXPECT_EQ(odd.error, "error: -o: \"p.xml\" ends with none of .json, .svg, .html, .txt\n"
                         "  help: zolexctl plan site.ini -o plan.json\n");
}

/// A plan that cannot be carried out leaves the old file, and is a document all the same.
TEST(PlanEndToEnd, LeavesAnOldPlanWhereTheNewOneIsRefused) {
    PlannedServer server(megaServer(eightDrives));
    server.write("bad.ini", with(webPolicies, "Hotspares = 8", "Hotspares = 7"));
    server.write("old.json", "old");
    const ProgramRun run =
        server.zolexctl({"plan", "bad.ini", "-o", "old.json", "--format", "json"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(server.read("old.json"), "old");
    EXPECT_EQ(run.error, "error: old.json is not written: the plan cannot be carried out\n"
                         "  help: mend what is told as error, and plan again\n");
    EXPECT_NE(run.output.find("\"ZX502\""), std::string::npos) << run.output;
    EXPECT_TRUE(valuesOf(run.output, "command").empty());
    keepDocument("plan-refused-run", run.output);
    // What only the utility would refuse can be let pass.
    const ProgramRun missing = server.zolexctl({"plan", "no.ini", "--format", "json"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.output.find("\"ZX001\""), std::string::npos) << missing.output;
    keepDocument("plan-without-policies", missing.output);
    const ProgramRun nowhere =
        server.zolexctl({"plan", "bad.ini", "--controller", "9", "--format", "json"});
    EXPECT_EQ(nowhere.exitCode, 2);
    keepDocument("plan-no-such-controller", nowhere.output);
    const ProgramRun diff = server.zolexctl({"diff", "no.ini", "--format", "json"});
    EXPECT_EQ(diff.exitCode, 2);
    keepDocument("diff-without-policies", diff.output);
}

TEST(PlanEndToEnd, OnARecordingGivesTheSamePlan) {
    PlannedServer server("two-controllers");
    ASSERT_EQ(server.zolexctl({"record", "-o", "a.zrec"}).exitCode, 0);
    const ProgramRun live = server.zolexctl({"plan", "sample-policies.ini", "--format", "json"});
    fs::rename(server.folder() / "UTIL.BAT", server.folder() / "gone.bat");
    fs::remove(server.folder() / "hwdetect.exe");
    const ProgramRun replayed = server.zolexctl(
        {"replay", "a.zrec", "--", "plan", "sample-policies.ini", "--format", "json"});
    EXPECT_EQ(replayed.exitCode, 0) << replayed.error;
    const auto withoutArguments = [](std::string text) {
        const std::size_t begin = text.find("\"argv\"");
        return text.erase(begin, text.find(']', begin) - begin);
    };
    EXPECT_EQ(withoutArguments(withoutTimesOfPlan(live.output)),
              withoutArguments(withoutTimesOfPlan(replayed.output)));
    // Its calls tell what is usual.
    const ProgramRun timed = server.zolexctl(
        {"plan", "sample-policies.ini", "--recording", "a.zrec", "--timings", "a.zrec"});
    EXPECT_EQ(timed.exitCode, 0) << timed.error;
    expectPieces(timed.output, {"Commands (6)", "usual time\n"});
    const ProgramRun untimed = server.zolexctl({"plan", "sample-policies.ini", "--recording",
                                                "a.zrec", "--timings", "sample-policies.ini"});
    EXPECT_EQ(untimed.exitCode, 2);
    EXPECT_EQ(untimed.output, "");
}

TEST(PlanEndToEnd, PlansTheDefaultsAsZolexDoesWithoutPolicies) {
    PlannedServer server("single");
    const ProgramRun before = server.zolexctl({"plan", "--default", "--exit-code"});
    EXPECT_EQ(before.exitCode, 1) << before.output << before.error;
    ASSERT_EQ(server.zolex({"/d"}).exitCode, 0);
    const ProgramRun after = server.zolexctl({"plan", "--default", "--exit-code"});
    EXPECT_EQ(after.exitCode, 0) << after.output << after.error;
}

/// Drives told by what they are: zolex refuses the file, and takes what it is converted to.
TEST(PlanEndToEnd, BindsDrivesThatAreToldByWhatTheyAre) {
    PlannedServer server("single");
    server.write("kinds.ini", "[Policy.kinds]\n"
                              "AppliesTo.1 = t:LSI-MegaRAID-8480\n"
                              "Drives.A = slots 32:0,32:1\n"
                              "Drives.B = rest of one size\n"
                              "Spares = 1 covering A,B\n"
                              "Level.B = 6 else 5\n");
    const ProgramRun plan = server.zolexctl({"plan", "kinds.ini", "-o", "p.json"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    expectPieces(plan.output, {"Drives.A = slots 32:0,32:1", "Level.B = 6 else 5",
                               "RAID 6 is not of", "+ Array A  drives 1,2  32:0 32:1"});
    keepDocument("plan-kinds", server.read("p.json"));
    EXPECT_EQ(server.zolexctl({"check", "kinds.ini"}).exitCode, 0);
    EXPECT_EQ(server.zolex({"/f:kinds.ini"}).exitCode, 5);
    ASSERT_EQ(server.zolexctl({"record", "-o", "s.zrec"}).exitCode, 0);
    const ProgramRun converted = server.zolexctl(
        {"convert", "--to", "policies", "--machine", "s.zrec", "kinds.ini", "-o", "plain.ini"});
    EXPECT_EQ(converted.exitCode, 0) << converted.error;
    server.deploy("plain.ini");
    for (const char* const wanted : {"kinds.ini", "plain.ini", "p.json"}) {
        const ProgramRun diff = server.zolexctl({"diff", wanted});
        EXPECT_EQ(diff.exitCode, 0) << wanted << "\n" << diff.output << diff.error;
    }
    const ProgramRun after = server.zolexctl({"plan", "kinds.ini", "--exit-code"});
    EXPECT_EQ(after.exitCode, 0) << after.output;
}

TEST(PlanEndToEnd, AsksForAddingOrRebuilding) {
    PlannedServer server(megaServer(eightDrives));
    server.write("web.ini", webPolicies);
    server.write("less.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
    server.deploy("less.ini");
    const ProgramRun add = server.zolexctl({"plan", "web.ini", "--strategy", "add"});
    EXPECT_EQ(add.exitCode, 2) << add.output;
    expectPieces(add.output, {"Nothing would run", "[ZP220]"});
    const ProgramRun rebuild =
        server.zolexctl({"plan", "less.ini", "--strategy", "rebuild", "--exit-code"});
    EXPECT_EQ(rebuild.exitCode, 1) << rebuild.output;
    expectPieces(rebuild.output, {"-CFGCLR", "This destroys 2 logical drives"});
    const ProgramRun quick = server.zolexctl({"plan", "web.ini", "--no-rehearsal"});
    EXPECT_EQ(quick.exitCode, 0) << quick.output;
    EXPECT_EQ(quick.output.find("Rehearsed on"), std::string::npos) << quick.output;
}

TEST(PlanEndToEnd, QuietlyTellsWhatIsWrongAlone) {
    PlannedServer server(megaServer(eightDrives));
    server.write("web.ini", webPolicies);
    const ProgramRun plan = server.zolexctl({"plan", "web.ini", "-q", "--exit-code"});
    EXPECT_EQ(plan.exitCode, 1);
    EXPECT_EQ(plan.output + plan.error, "");
    server.deploy("web.ini");
    const ProgramRun diff = server.zolexctl({"diff", "web.ini", "-q"});
    EXPECT_EQ(diff.exitCode, 0);
    EXPECT_EQ(diff.output + diff.error, "");
}

} // namespace
} // namespace zolex::e2e

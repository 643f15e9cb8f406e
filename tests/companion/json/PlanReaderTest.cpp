#include "companion/json/PlanDocument.h"

#include "companion/json/PlanDocuments.h"
#include "platform/CommandLineSplit.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {
namespace {

using test::agreedPlan;
using test::exampleFinding;
using test::exampleNothingToDoPlan;
using test::exampleRefusedPlan;
using test::fullPlan;
using test::planHead;

/// "read", or the error: "plan.json:3:7 ZP193 what".
std::string outcomeOf(std::string_view text) {
    const PlanReading reading = readPlanDocument(text, "plan.json");
    if (reading.plan) {
        return reading.findings.empty() ? "read" : "read, and " + reading.findings[0].summary;
    }
    if (reading.findings.size() != 1) {
        return std::to_string(reading.findings.size()) + " findings";
    }
    const Finding& finding = reading.findings[0];
    std::string place = finding.file;
    if (finding.start.line != 0) {
        place +=
            ":" + std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column);
    }
    const bool isError = finding.severity == Severity::error && !finding.help.empty();
    return place + " " + finding.code + (isError ? " " : " no error: ") + finding.summary;
}

/// The full plan with the first `old` behind `anchor` replaced.
std::string edited(const std::string& anchor, const std::string& old, const std::string& made) {
    std::string text = planDocument(fullPlan(), planHead());
    const std::size_t at = text.find(old, text.find(anchor));
    if (text.find(anchor) == std::string::npos || at == std::string::npos) {
        return "no " + anchor + " with " + old;
    }
    return text.replace(at, old.size(), made);
}

std::string written(const PlanReading& reading) {
    return reading.plan ? planDocument(*reading.plan, reading.head)
                        : "not read: " + reading.findings[0].summary;
}

void setCommand(PlanStep& step, const std::string& command) {
    step.command = command;
    step.argv = splitCommandLine(command);
}

/// The agreed plan for a controller of a family.
MachinePlan familyPlan() {
    MachinePlan plan = agreedPlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.controller.utility = "STORCLI";
    setCommand(planning.steps.at(0), "STORCLI /c0/v1 del J nolog");
    setCommand(planning.steps.at(1), "STORCLI /c0 add vd r5 drives=32:2,32:3,32:4,32:5,32:6 WB "
                                     "ra Strip=64 J nolog");
    setCommand(planning.steps.at(2), "STORCLI /c0/e32/s7 add hotsparedrive J nolog");
    return plan;
}

/// A spare and layouts of others go, and a setting comes.
MachinePlan clearingPlan() {
    MachinePlan plan = familyPlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.before.spares = {{"32:7", {}, false, false}};
    planning.before.foreignDrives = {"32:5", "32:6"};
    planning.losses.push_back({1, "hotspare", "32:7", "", {"32:7"}, 69376 * test::mb, "Hotspare"});
    planning.losses.push_back({1, "foreign", "32:5", "", {"32:5"}, 0, ""});
    planning.losses.push_back({1, "foreign", "32:6", "", {"32:6"}, 0, ""});
    PlanStep remove = planning.steps.at(0);
    remove.action = "remove-spare";
    remove.destroys = {"32:7"};
    setCommand(remove, "STORCLI /c0/e32/s7 delete hotsparedrive J nolog");
    PlanStep clear = remove;
    clear.step = 2;
    clear.action = "clear-foreign";
    clear.destroys = {"32:5", "32:6"};
    setCommand(clear, "STORCLI /c0/fall del J nolog");
    PlanStep rate = planning.steps.at(1);
    rate.step = 3;
    rate.action = "set";
    rate.creates.clear();
    setCommand(rate, "STORCLI /c0 set rebuildrate=60 J nolog");
    PlanStep cache = rate;
    cache.step = 4;
    setCommand(cache, "STORCLI /c0/v0 set wrcache=WB J nolog");
    planning.steps = {remove, clear, rate, cache};
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    return plan;
}

/// Only what the family itself writes for a step is run: nobody agreed to anything else.
TEST(PlanReader, StepsOfFamiliesHaveTheCommandsOfTheirFamily) {
    for (MachinePlan plan : {familyPlan(), clearingPlan()}) {
        ASSERT_EQ(outcomeOf(planDocument(plan, planHead())), "read");
        for (PlanStep& step : plan.controllers[0].steps) {
            const std::string own = step.command;
            for (const char* const other :
                 {"STORCLI /c0/v238 del J nolog",
                  "STORCLI /c0/vall del J nolog",
                  "STORCLI /c0/v238,239 del J nolog",
                  "STORCLI /c0/v1 del discardcache J nolog",
                  "STORCLI /c1/v1 del J nolog",
                  "STORCLI /c0/fall delete J nolog",
                  "STORCLI /c0/v1 start init Full J nolog",
                  "STORCLI /c0 set jbod=off J nolog",
                  "STORCLI /c0/e32/s0 set offline J nolog",
                  "STORCLI /c0/e32/s0 set good J nolog",
                  "STORCLI /c0/e32/s0 start erase simple J nolog",
                  "STORCLI /c0/e32/s6 delete hotsparedrive J nolog",
                  "STORCLI /c0/e32/s6 add hotsparedrive J nolog",
                  "STORCLI /c0 set factory defaults J nolog",
                  "STORCLI /c0 show J nolog",
                  "STORCLI /c0 set rebuildrate=100 J nolog",
                  "STORCLI /c0/v0 set wrcache=AWB J nolog",
                  "STORCLI /c0/v7 set wrcache=WB J nolog",
                  "STORCLI /c0 add vd r5 drives=32:2,32:3,32:4,32:5,32:6 AWB ra Strip=64 J nolog",
                  "STORCLI /c0 add vd r5 drives=32:2,32:3,32:4,32:5,32:0 WB ra Strip=64 J nolog",
                  "STORCLI /c0 add vd r0 drives=32:2,32:3,32:4,32:5,32:6 WB ra Strip=64 J nolog",
                  "STORCLI /c0 add vd r5 drives=32:2,32:3,32:4,32:5,32:6 WB ra Strip=64 J"}) {
                setCommand(step, other);
                const std::string outcome = outcomeOf(planDocument(plan, planHead()));
                EXPECT_TRUE(outcome.ends_with(" ZP194 steps[" + std::to_string(step.step - 1) +
                                              "].command is not what the step says that it does"))
                    << step.action << ": " << other << ": " << outcome;
            }
            setCommand(step, own);
            std::vector<std::string> names = {"32:7"};
            std::swap(step.destroys, names);
            if (step.action != "remove-spare") {
                EXPECT_NE(outcomeOf(planDocument(plan, planHead())), "read") << step.action;
            }
            std::swap(step.destroys, names);
        }
    }
}

/// What zolex does not know has no record of it, and mirrors of a kind of their own.
TEST(PlanReader, ControllersOfFamiliesHaveNoRecord) {
    const MachinePlan plan = familyPlan();
    const PlanReading reading = readPlanDocument(planDocument(plan, planHead()), "plan.json");
    ASSERT_TRUE(reading.plan) << reading.findings.at(0).summary;
    const ControllerPlanning& planning = reading.plan->controllers.at(0);
    EXPECT_EQ(planning.controller.index, ControllerSnapshot::noRecord);
    EXPECT_EQ(planning.before.deepMirrors, DeepMirrors::ofPairs);
    EXPECT_EQ(planning.after.deepMirrors, DeepMirrors::ofPairs);
    const PlanReading old = readPlanDocument(planDocument(agreedPlan(), planHead()), "plan.json");
    ASSERT_TRUE(old.plan);
    EXPECT_EQ(old.plan->controllers.at(0).controller.index, 0U);
    EXPECT_EQ(old.plan->controllers.at(0).after.deepMirrors, DeepMirrors::asRaid10);
}

TEST(PlanReader, WhatWasWrittenComesBackByteForByte) {
    MachinePlan blank = agreedPlan();
    blank.controllers[0].before = {};
    blank.controllers[0].losses.clear();
    blank.controllers[0].steps[0].destroys.clear();
    blank.consent.clear();
    MachinePlan defaults = agreedPlan();
    defaults.policiesFile.clear();
    defaults.policiesHash.clear();
    defaults.controllers[0].policy.clear();
    defaults.controllers[0].policyLine = 0;
    MachinePlan refused = exampleRefusedPlan();
    refused.policiesFindings = {exampleFinding("ZX101", Severity::error, "a fault")};
    refused.diagnostics = {exampleFinding("ZP120", Severity::error, "another fault"),
                           exampleFinding("ZX101", Severity::error, "a fault")};
    MachinePlan failed = exampleRefusedPlan();
    failed.controllers[0].controller.failed = true;
    MachinePlan none;
    none.diagnostics = {exampleFinding("ZP100", Severity::error, "there is no controller 9")};
    const std::map<std::string, MachinePlan> plans{
        {"example", agreedPlan()}, {"full", fullPlan()},   {"already", exampleNothingToDoPlan()},
        {"blank", blank},          {"defaults", defaults}, {"refused", refused},
        {"failed", failed},        {"none", none}};
    for (const auto& [name, plan] : plans) {
        const std::string text = planDocument(plan, planHead());
        EXPECT_EQ(text, written(readPlanDocument(text, "plan.json"))) << name;
    }
}

TEST(PlanReader, GivesThePlanThatWasWritten) {
    const MachinePlan plan = fullPlan();
    const PlanReading reading = readPlanDocument(planDocument(plan, planHead()), "plan.json");
    ASSERT_TRUE(reading.plan.has_value()) << reading.findings[0].summary;
    const MachinePlan& read = *reading.plan;
    EXPECT_EQ(plan.id, read.id);
    EXPECT_EQ(plan.fingerprint, read.fingerprint);
    EXPECT_EQ(plan.losses(), read.losses());
    EXPECT_EQ(plan.policiesFindings, read.policiesFindings);
    EXPECT_EQ(plan.diagnostics, read.diagnostics);
    EXPECT_TRUE(read.isApplicable());
    EXPECT_EQ(3U, read.steps().size());
    const ControllerPlanning& before = plan.controllers[0];
    const ControllerPlanning& after = read.controllers[0];
    EXPECT_EQ(before.before, after.before);
    EXPECT_EQ(before.comparison.differences, after.comparison.differences);
    EXPECT_EQ(before.warnings, after.warnings);
    EXPECT_EQ(before.steps[1].argv, after.steps[1].argv);
    EXPECT_EQ(before.steps[1].command, after.steps[1].command);
    EXPECT_EQ(before.steps[1].pauseBeforeSeconds, after.steps[1].pauseBeforeSeconds);
    EXPECT_EQ(before.controller.drives.size(), after.controller.drives.size());
    // The pictures and comparisons of a plan that was read have what they need of the controller.
    const Facts& facts = after.controller.facts;
    ASSERT_NE(nullptr, facts.drive("32:3"));
    EXPECT_EQ(before.controller.drives[3].facts.capacityBytes, facts.drive("32:3")->capacityBytes);
    EXPECT_EQ(2U, facts.logicalDrives.size());
    ASSERT_EQ(2U, after.controller.arrays.size());
    EXPECT_EQ("B", after.controller.arrays[1].letter);
    EXPECT_EQ(before.controller.arrays[1].drives, after.controller.arrays[1].drives);
    EXPECT_EQ(planHead().madeAt, reading.head.madeAt);
    EXPECT_EQ(planHead().argv, reading.head.argv);
}

TEST(PlanReader, LogicalDrivesAreToldApart) {
    MachinePlan plan = agreedPlan();
    ControllerPlanning& planning = plan.controllers[0];
    ASSERT_FALSE(planning.losses.empty());
    for (LayoutGroup& group : planning.before.groups) {
        for (LayoutVolume& volume : group.volumes) {
            volume.name = "data";
            volume.device = "/dev/sd" + volume.id;
            volume.uniqueId = "600aaa0" + volume.id;
        }
    }
    for (Loss& loss : planning.losses) {
        if (loss.kind == "logical_drive") {
            loss.name = "data";
            loss.device = "/dev/sd" + loss.id;
            loss.uniqueId = "600aaa0" + loss.id;
        }
    }
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    const std::string text = planDocument(plan, planHead());
    const PlanReading reading = readPlanDocument(text, "plan.json");
    ASSERT_TRUE(reading.plan) << outcomeOf(text);
    EXPECT_EQ(reading.plan->losses(), plan.losses());
    EXPECT_EQ(reading.plan->controllers[0].before, planning.before);
    EXPECT_EQ(reading.plan->controllers[0].controller.facts.logicalDrives[0].uniqueId,
              planning.before.groups[0].volumes[0].uniqueId);
    EXPECT_EQ(written(reading), text);
}

TEST(PlanReader, NamesThatALaterMinorVersionMayHaveAddedArePassedOver) {
    std::string text = edited("", "\"1.0\"", "\"1.7\"");
    for (const char* const name : {"\"machine_source\"", "\"captured\"", "\"location\"",
                                   "\"pause_before_seconds\"", "\"done\""}) {
        text.insert(text.find(name), "\"later\": {\"a\": [1, null, 2.5]}, ");
    }
    EXPECT_EQ("read", outcomeOf(text));
}

TEST(PlanReader, WhatIsNoPlanIsNamed) {
    EXPECT_EQ("plan.json:1:1 ZP193 this is no JSON: syntax error while parsing value - unexpected "
              "end of input; expected '[', '{', or a literal",
              outcomeOf(""));
    EXPECT_EQ("plan.json:2:9 ZP193 this is no JSON: syntax error while parsing object separator - "
              "unexpected string literal; expected ':'",
              outcomeOf("{\n  \"a\" \"b\"}"));
    EXPECT_EQ("plan.json ZP191 this is no plan: \"format\" is not \"zolex-plan\"", outcomeOf("[]"));
    EXPECT_EQ("plan.json ZP191 this is no plan: \"format\" is not \"zolex-plan\"",
              outcomeOf("{\"format\": \"terraform\"}"));
    EXPECT_EQ("plan.json ZP191 this is no plan but a document of the format zolex-machine",
              outcomeOf("{\"format\": \"zolex-machine\"}"));
    EXPECT_EQ("plan.json ZP192 this plan has format version 2.0, of which this program knows "
              "nothing: it reads version 1",
              outcomeOf("{\"format\": \"zolex-plan\", \"format_version\": \"2.0\"}"));
    EXPECT_EQ("plan.json ZP194 format_version is no version such as \"1.0\"",
              outcomeOf("{\"format\": \"zolex-plan\", \"format_version\": \"1\"}"));
    EXPECT_EQ("plan.json ZP194 format_version is missing",
              outcomeOf("{\"format\": \"zolex-plan\"}"));
    EXPECT_EQ("plan.json ZP194 a name stands twice in an object",
              outcomeOf(edited("", "\"plan_id\": ", "\"format\": \"zolex-plan\", \"plan_id\": ")));
}

/// What is edited, and what is said.
struct Edit {
    const char* anchor;
    const char* old;
    const char* made;
    const char* error;
};

TEST(PlanReader, AWrongValueIsToldWithItsPlace) {
    const std::vector<Edit> edits{
        {"\"policy\": {\n        \"name\": \"Policy.web\"", "\"line\": 17", "\"line\": \"17\"",
         "controllers[0].policy.line is no whole number from 1 to 2147483647"},
        {"\"location\": \"32:3\"", "\"location\": \"32:3\",", "",
         "controllers[0].drives[3].location is missing"},
        {"\"location\": \"32:3\"", "\"32:3\"", "3", "controllers[0].drives[3].location is no text"},
        {"\"location\": \"32:3\"", "\"capacity_bytes\": 72746008576", "\"capacity_bytes\": -1",
         "controllers[0].drives[3].capacity_bytes is no whole number from 0 to 9007199254740992"},
        {"\"location\": \"32:3\"", "\"capacity_bytes\": 72746008576", "\"capacity_bytes\": 1.5",
         "controllers[0].drives[3].capacity_bytes is no whole number from 0 to 9007199254740992"},
        {"\"location\": \"32:3\"", "\"foreign\": false", "\"foreign\": 0",
         "controllers[0].drives[3].foreign is neither true nor false"},
        {"\"location\": \"32:3\"", "\"drive_state\": \"member\"", "\"drive_state\": \"gone\"",
         "controllers[0].drives[3].drive_state is the unknown word \"gone\""},
        {"\"location\": \"32:3\"", "\"1:3\"", "\"1:03\"",
         "controllers[0].drives[3].policy_position is no channel and id such as \"1:3\""},
        {"", "\"outcome\": \"planned\"", "\"outcome\": null", "controllers[0].outcome is null"},
        {"", "\"p-5f1c", "\"p-5F1C", "plan_id is not \"p-\" and twelve hexadecimal digits"},
        {"", "\"zolex-fp-1\"", "\"zolex-fp-2\"",
         "fingerprint.algorithm is unknown: this program knows zolex-fp-1"},
        {"", "\"sha256\": \"1111", "\"sha256\": \"111",
         "fingerprint.identity.sha256 is no hash of 64 hexadecimal digits"},
        {"", "\"controllers\": [\n    {\n      \"number\": 1",
         "\"controllers\": [7, {\"number\": 1", "controllers[0] is no object"},
        {"", "\"accepted\": [", "\"accepted\": [7, ", "accepted[0] is no text"},
        {"", "\"accepted\": [", "\"accepted\": 7, \"old\": [", "accepted is no list"},
        {"\"argv\": [\n        \"UTIL", "\"-a0\"", "\"-a0\\u0000\"",
         "steps[0].argv[4] has a control character"},
        {"\"argv\": [\n        \"UTIL", "\"-a0\"", "\"-a0\\n\"",
         "steps[0].argv[4] has a control character"},
        {"\"argv\": [\n        \"UTIL", "\"-a0\"", "\"-a1\"",
         "steps[0].argv is not what \"command\" says"},
        {"\"argv\": [\n        \"UTIL", "\"UTIL.BAT\"", "\"rm\"",
         "steps[0].argv does not begin with UTIL.BAT and MEGACLI"},
        {"\"accepted_exit_codes\"", "0", "256",
         "steps[0].accepted_exit_codes[0] is no whole number from 0 to 255"},
        {"", "A message of the core.", "A\\u0000", "core_messages[0] has the character 0"},
        {"\"rehearsal\"", "\"bbbb", "\"xbbb",
         "rehearsal.layouts has a name that is no hash of 64 hexadecimal digits"},
    };
    for (const Edit& edit : edits) {
        EXPECT_EQ("plan.json ZP194 " + std::string(edit.error),
                  outcomeOf(edited(edit.anchor, edit.old, edit.made)))
            << edit.made;
    }
}

TEST(PlanReader, WhatOnePartSaysOfAnotherMustBeSo) {
    const std::vector<Edit> edits{
        {"\"captured\"", "\"location\": \"32:1\"", "\"location\": \"32:0\"",
         "controllers[0].drives has the location \"32:0\" twice"},
        {"\"after\"", "\"location\": \"32:0\"", "\"location\": \"32:9\"",
         "controllers[0].after.arrays[0].drives \"32:9\" is none of the controller's drives"},
        {"\"after\"", "\"location\": \"32:2\"", "\"location\": \"32:0\"",
         "controllers[0].after.arrays[1].drives \"32:0\" is planned for two things"},
        {"\"after\"", "\"id\": \"B\"", "\"id\": \"A\"",
         "controllers[0].after.arrays[1].id \"A\" is the id of two arrays"},
        {"\"after\"", "\"array\": \"B\"", "\"array\": \"C\"",
         "controllers[0].after.logical_drives[1].array \"C\" is none of the planned arrays"},
        {"\"after\"", "\"id\": \"Logical.2\"", "\"id\": \"Logical.1\"",
         "controllers[0].after.logical_drives[1].id \"Logical.1\" is the id of two logical drives"},
        {"\"after\"", "\"location\": \"32:7\"", "\"location\": \"32:6\"",
         "controllers[0].after.hotspares[0].location \"32:6\" is planned for two things"},
        {"\"covers\": [\n              \"A\"", "\"B\"", "\"X\"",
         "controllers[0].after.hotspares[0].covers \"X\" is none of the planned arrays"},
        {"\"bindings\"", "\"32:2\"", "\"33:2\"",
         "controllers[0].bindings[0].drives \"33:2\" is none of the controller's drives"},
        {"\"before\"", "\"array\": \"1\"", "\"array\": \"2\"",
         "controllers[0].before.logical_drives[1].array \"2\" is none of the arrays"},
        {"\"before\"", "\"32:1\"", "\"32:3\"",
         "controllers[0].before.arrays[0].drives are not those of the spans"},
        {"", "\"number\": 2", "\"number\": 1", "controllers has the number 1 twice"},
        {"\"items\"", "\"controller\": 1", "\"controller\": 3",
         "destroys.items[0].controller 3 is none of the plan's controllers"},
        {"\"items\"", "\"kind\": \"logical_drive\"", "\"kind\": \"drive\"",
         "destroys.items[0].kind is the unknown word \"drive\""},
        {"\"items\"", "\"id\": \"1\"", "\"id\": \"7\"",
         "destroys.items[0].id \"7\" is none of the logical drives that stand"},
        {"\"items\"", "\"id\": \"32:7\"", "\"id\": \"32:6\"",
         "destroys.items[1].id \"32:6\" is none of the hot spares that stand"},
        {"\"items\"", "\"id\": \"32:5\"", "\"id\": \"33:5\"",
         "destroys.items[2].id \"33:5\" is none of the controller's drives"},
        {"\"items\"", "\"capacity_bytes\": 145492017152", "\"capacity_bytes\": 0",
         "destroys.consent is not the code of what is lost"},
        {"\"steps\"", "\"step\": 2", "\"step\": 3", "steps[1].step is 3 instead of 2"},
        {"\"steps\"", "\"controller\": 1", "\"controller\": 3",
         "steps[0].controller 3 is none of the plan's controllers"},
        {"\"steps\"", "\"controller\": 1", "\"controller\": 2",
         "steps[0].controller is not in the order of the controllers"},
        {"\"steps\"", "\"create-array\"", "\"make-array\"",
         "steps[1].action is the unknown word \"make-array\""},
        {"\"steps\"", "        \"delete\"\n", "", "steps[0].actions lacks \"delete\""},
        {"\"create-spare\"", "\"create\"", "\"delete\"", "steps[2].actions has \"delete\""},
        {"\"steps\"", "\"Logical.2\"", "\"Logical.3\"",
         "steps[1].creates \"Logical.3\" is none of what is planned"},
        {"\"steps\"", "\"destroys\": [\n        \"1\"", "\"destroys\": [\n        \"0\"",
         "steps[0].destroys \"0\" is none of what is lost"},
        {"\"steps\"", "\"layout_sha256\": \"bbb", "\"layout_sha256\": \"abb",
         "steps[1].expected_after.layout_sha256 is none of rehearsal.layouts"},
        {"", "\"outcome\": \"planned\"", "\"outcome\": \"already\"",
         "steps[0].controller 1 is already, not planned"},
        {"", "\"outcome\": \"planned\"", "\"outcome\": \"refused\"",
         "steps stand in a plan that has faults"},
        {"", "\"steps\"", "\"stops\"", "steps is missing"},
        {"", "\"captured\": true", "\"captured\": false",
         "controllers[0].before stands at a controller that was not captured"},
    };
    for (const Edit& edit : edits) {
        EXPECT_EQ("plan.json ZP194 " + std::string(edit.error),
                  outcomeOf(edited(edit.anchor, edit.old, edit.made)))
            << edit.made;
    }
}

TEST(PlanReader, EverySizeIsBounded) {
    EXPECT_EQ("plan.json ZP195 the document is larger than 64 MB",
              outcomeOf(std::string(mostPlanBytes + 1, ' ')));
    EXPECT_EQ("plan.json:1:33 ZP195 the document is nested deeper than 32 levels",
              outcomeOf(std::string(1000, '[')));
    std::string many = "[0";
    for (std::size_t i = 0; i < std::size_t{2} << 20U; ++i) {
        many += ",0";
    }
    EXPECT_EQ("plan.json:1:4194303 ZP195 the document has more than 2097152 values",
              outcomeOf(many));
    std::string names = "{\"a\":0";
    for (int i = 0; i < 20000; ++i) {
        names += ",\"" + std::to_string(i) + "\":0";
    }
    EXPECT_NE(std::string::npos,
              outcomeOf(names + "}").find(" ZP195 an object of the document has too many names"));
    const std::string word(4097, 'x');
    EXPECT_EQ("plan.json ZP194 controllers[0].drives[3].location is longer than 4096 bytes",
              outcomeOf(edited("\"location\": \"32:3\"", "32:3", word)));
    EXPECT_EQ("plan.json ZP194 core_messages[0] is longer than 65536 bytes",
              outcomeOf(edited("", "A message of the core.", std::string(65537, 'x'))));
    std::string drives = "\"drives\": [";
    for (int i = 0; i < 4097; ++i) {
        drives += "{},";
    }
    EXPECT_EQ("plan.json ZP194 controllers[0].drives has more than 4096 elements",
              outcomeOf(edited("\"bindings\"",
                               "\"drives\": [\n        {\n          \"location\": "
                               "\"32:0\"",
                               drives + "{\"location\": \"32:0\"")));
}

TEST(PlanReader, AFileIsReadOrTold) {
    zolex::test::FakePlatform platform;
    auto& files = platform.fileFake.files;
    const std::string text = planDocument(agreedPlan(), planHead());
    files["plan.json"] = text;
    EXPECT_EQ(text, written(readPlanFile(platform.files(), "plan.json")));
    const PlanReading missing = readPlanFile(platform.files(), "other.json");
    ASSERT_EQ(1U, missing.findings.size());
    EXPECT_FALSE(missing.plan.has_value());
    EXPECT_EQ("ZP190", missing.findings[0].code);
    EXPECT_EQ("other.json", missing.findings[0].file);
    files["plan.json"] = std::string(mostPlanBytes + 1, ' ');
    const PlanReading large = readPlanFile(platform.files(), "plan.json");
    ASSERT_EQ(1U, large.findings.size());
    EXPECT_EQ("the document is larger than 64 MB", large.findings[0].summary);
}

/// Changes a text a little, in one of the ways in which files break.
class Mutator {
  public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    void change(std::string& text) {
        const std::size_t at = below(text.size());
        switch (below(6)) {
        case 0:
            text[at] = static_cast<char>(below(256));
            break;
        case 1:
            text.erase(at, 1 + below(40));
            break;
        case 2:
            text.insert(at, text.substr(below(text.size()), 1 + below(80)));
            break;
        case 3:
            replaceToken(text, at, "0123456789");
            break;
        case 4:
            replaceToken(text, at, "\"");
            break;
        default:
            dropLine(text, at);
        }
    }
    std::size_t below(std::size_t most) { return most == 0 ? 0 : random_() % most; }

  private:
    /// Puts another value in the place of the next number or text.
    void replaceToken(std::string& text, std::size_t at, std::string_view begin) {
        constexpr std::string_view values[] = {
            "null",        "true",        "-1",      "0",  "1",  "2",        "9007199254740993",
            "1e400",       "\"\"",        "\"1\"",   "[]", "{}", "\"32:0\"", "\"A\"",
            "\"refused\"", "\"\\u0000\"", "\"\xFF\""};
        const std::size_t from = text.find_first_of(begin, at);
        if (from != std::string::npos) {
            const std::size_t to = text.find_first_of(",\n:", from + 1);
            text.replace(from, to == std::string::npos ? to : to - from,
                         values[below(std::size(values))]);
        }
    }
    /// As when a name is missing; the comma before it stays.
    static void dropLine(std::string& text, std::size_t at) {
        const std::size_t from = text.find('\n', at);
        if (from != std::string::npos) {
            text.erase(from, text.find('\n', from + 1) - from);
        }
    }

    std::mt19937 random_;
};

TEST(PlanReader, TenThousandBrokenPlansAreReadOrRefused) {
    MachinePlan small = fullPlan();
    small.controllers.pop_back();
    const std::string text = planDocument(small, planHead());
    std::map<std::string, int> kinds;
    for (unsigned seed = 0; seed < 10000; ++seed) {
        Mutator mutator(seed);
        std::string broken = text;
        for (std::size_t i = mutator.below(3); i < 3; ++i) {
            mutator.change(broken);
        }
        const PlanReading reading = readPlanDocument(broken, "plan.json");
        if (reading.plan) {
            ++kinds["read"];
            ASSERT_TRUE(reading.findings.empty()) << seed;
            const std::string again = written(reading);
            ASSERT_EQ(again, written(readPlanDocument(again, "plan.json"))) << seed;
            continue;
        }
        ASSERT_EQ(1U, reading.findings.size()) << seed;
        const Finding& finding = reading.findings[0];
        ++kinds[finding.code];
        ASSERT_FALSE(finding.summary.empty()) << seed;
        ASSERT_LE(finding.start.byte, static_cast<std::int64_t>(broken.size())) << seed;
    }
    // Each kind is met, so that none is tested by its absence.
    EXPECT_GT(kinds["read"], 200);
    EXPECT_GT(kinds["ZP193"], 1000);
    EXPECT_GT(kinds["ZP194"], 1000);
}

TEST(PlanReader, APlanThatWasCutIsRefusedWhereverItWasCut) {
    const std::string text = planDocument(agreedPlan(), planHead());
    for (std::size_t size = 0; size + 2 < text.size(); size += 13) {
        const std::string outcome = outcomeOf(text.substr(0, size));
        ASSERT_NE(std::string::npos, outcome.find(" ZP193 this is no JSON: ")) << outcome;
    }
}

} // namespace
} // namespace zolex::companion

#include "companion/commands/Commands.h"
#include "companion/commands/FileKind.h"
#include "companion/json/CertificateDocument.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Sha256.h"
#include "companion/planning/Steps.h"
#include "companion/support/ExampleCertificate.h"
#include "companion/support/ExampleJournal.h"
#include "companion/support/ExamplePlan.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/SimulatedPlatform.h"
#include "foundation/FileSystem.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace zolex::companion {
namespace {

using namespace test;

struct Ran {
    int code = -1;
    std::string output;
    std::string error;
};

Ran runCommand(SimulatedPlatform& platform, Format format,
               const std::function<int(Context&)>& command) {
    for (const char* const folder : {"tools/", "tools\\"}) {
        for (const char* const program : {"UTIL.BAT", "hwdetect.exe"}) {
            platform.fileFake.files[std::string(folder) + program] = "";
        }
    }
    MachineOptions machine;
    machine.utilitiesFolder = "tools";
    platform.consoleFake.output.clear();
    platform.consoleFake.error.clear();
    Context context{platform, machine, format, "", {}, {}, false, false, {"show"}};
    Ran ran;
    ran.code = command(context);
    ran.output = platform.consoleFake.output;
    ran.error = platform.consoleFake.error;
    return ran;
}

Ran shown(SimulatedPlatform& platform, Format format, const std::string& file) {
    ShowOptions options;
    options.file = file;
    return runCommand(platform, format, [&](Context& context) { return show(context, options); });
}

Ran compared(SimulatedPlatform& platform, Format format, const std::string& file,
             bool strict = false) {
    DiffOptions options;
    options.file = file;
    options.strict = strict;
    return runCommand(platform, format, [&](Context& context) { return diff(context, options); });
}

TEST(FileKind, IsToldByTheBeginOfAFile) {
    const DocumentHead head{{"apply", "\"zolex-plan\""}, "2026-11-21T21:06:20+00:00"};
    EXPECT_EQ(fileKindOf(certificateDocument(exampleCertificate(), head)), FileKind::certificate);
    EXPECT_EQ(fileKindOf(exampleJournalText()), FileKind::journal);
    EXPECT_EQ(fileKindOf(exampleJournalText().substr(0, 30)), FileKind::journal);
    EXPECT_EQ(fileKindOf(planDocument(examplePlan(), head)), FileKind::plan);
    EXPECT_EQ(fileKindOf(""), FileKind::other);
    EXPECT_EQ(fileKindOf("[Policy.web]\n; \"zolex\"\n"), FileKind::other);
}

TEST(ShowJournal, ShowsTheStepsWithTheWordsOfThePlan) {
    SimulatedPlatform platform("single");
    MachinePlan plan = examplePlan();
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    const std::string document = planDocument(plan, {{"plan"}, "2026-11-21T21:05:00+00:00"});
    std::vector<JournalEvent> events = exampleJournalEvents();
    std::get<JournalBegin>(events[0]).planHash = sha256(document);
    platform.fileFake.files["kept"] = journalText(events);
    const Ran without = shown(platform, Format::text, "kept");
    EXPECT_EQ(without.code, exit_code::done);
    EXPECT_EQ(without.error, "");
    EXPECT_NE(without.output.find("Journal  kept\nPlan     p-5f1c09ab77e2 of plan.json, 3 steps\n"),
              std::string::npos)
        << without.output;
    EXPECT_NE(without.output.find("[1/3]     started\n"), std::string::npos) << without.output;
    platform.fileFake.files["plan.json"] = document;
    const Ran with = shown(platform, Format::text, "kept");
    EXPECT_EQ(with.output.find("[1/3]     started\n"), std::string::npos) << with.output;
    // One that was edited since tells nothing of the run.
    platform.fileFake.files["plan.json"] = document + " ";
    EXPECT_EQ(shown(platform, Format::text, "kept").output, without.output);
}

TEST(ShowJournal, AsJsonTheLinesStandAsTheyAre) {
    SimulatedPlatform platform("single");
    const std::string text = exampleJournalText();
    platform.fileFake.files["run.jsonl"] = text + R"({"seq":17,"at":)";
    const Ran ran = shown(platform, Format::json, "run.jsonl");
    EXPECT_EQ(ran.code, exit_code::done);
    EXPECT_EQ(ran.output, text);
}

TEST(ShowJournal, TellsTheLineOfAJournalThatWasChanged) {
    SimulatedPlatform platform("single");
    std::string text = exampleJournalText();
    text.replace(text.find("typed-serial"), 12, "TYPED-serial");
    platform.fileFake.files["run.jsonl"] = text;
    const Ran ran = shown(platform, Format::text, "run.jsonl");
    EXPECT_EQ(ran.code, exit_code::notPossible);
    EXPECT_EQ(ran.output, "");
    EXPECT_EQ(ran.error,
              R"(run.jsonl:3:1: error: this line is not the one that was written: line 4 has
               another SHA-256 of it [ZA186]
   help: look at what stands, and plan what is missing: zolexctl plan POLICIES
)");
    platform.fileFake.files["run.jsonl"] = text.substr(0, 100);
    EXPECT_EQ(shown(platform, Format::text, "run.jsonl").error,
              R"(run.jsonl: error: nothing was begun: the journal has not even one whole line
           [ZA187]
   help: remove the file, and apply the plan: zolexctl apply PLAN.json
)");
    EXPECT_EQ(shown(platform, Format::json, "run.jsonl").output.find("{\n  \"format\""), 0U);
    const Ran svg = shown(platform, Format::svg, "run.jsonl");
    EXPECT_EQ(svg.code, exit_code::notPossible);
    EXPECT_EQ(svg.error, "error: a journal can be shown as text and as json only\n"
                         "  help: leave --format and --as out\n");
}

/// The certificate of what stands on a virtual server.
std::string certified(SimulatedPlatform& platform) {
    Certificate certificate = certificateOf(captureMachine(platform, {}));
    const std::string document =
        certificateDocument(certificate, {{"apply", "plan.json"}, certificate.madeAt});
    // By the test: those that are run side by side keep theirs apart.
    const char* const test = testing::UnitTest::GetInstance()->current_test_info()->name();
    keepDocument("certificate-" + std::string(test), document);
    return document;
}

TEST(ShowCertificate, ShowsTheDocumentAndItsText) {
    SimulatedPlatform platform("configured");
    const std::string document = certified(platform);
    platform.fileFake.files["web"] = document;
    EXPECT_EQ(shown(platform, Format::json, "web").output, document);
    const Ran text = shown(platform, Format::text, "web");
    EXPECT_EQ(text.code, exit_code::done);
    EXPECT_EQ(text.output.find("Certificate  plan p-5f1c09ab77e2\n"), 0U) << text.output;
    platform.fileFake.files["web"] = document.substr(0, document.size() / 2);
    const Ran cut = shown(platform, Format::text, "web");
    EXPECT_EQ(cut.code, exit_code::notPossible);
    EXPECT_NE(cut.error.find("[ZA193]"), std::string::npos) << cut.error;
}

TEST(DiffCertificate, HoldsEveryServerAgainstItsOwnCertificate) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        platform.fileFake.files["web.json"] = certified(platform);
        const Ran ran = compared(platform, Format::text, "web.json");
        EXPECT_EQ(ran.code, exit_code::done) << sample << ran.output << ran.error;
        const Ran json = compared(platform, Format::json, "web.json");
        EXPECT_EQ(json.code, exit_code::done);
        EXPECT_NE(json.output.find("\"kind\": \"certificate\""), std::string::npos) << json.output;
        keepDocument("diff-certificate-" + sample, json.output);
        EXPECT_EQ(compared(platform, Format::svg, "web.json").code, exit_code::done);
        EXPECT_EQ(compared(platform, Format::html, "web.json").code, exit_code::done);
    }
}

TEST(DiffCertificate, ExitCodesAreThoseOfDiff) {
    SimulatedPlatform platform("configured");
    const std::string document = certified(platform);
    platform.fileFake.files["web.json"] = document;
    EXPECT_EQ(compared(platform, Format::text, "web.json", true).code, exit_code::done);
    // A drive was replaced: equivalent, and different with --strict.
    std::string replaced = document;
    const std::string name = "\"serial_number\": \"";
    const std::size_t at = replaced.find(name, replaced.find("\"location\"")) + name.size();
    replaced[at] = replaced[at] == 'Z' ? 'Y' : 'Z';
    platform.fileFake.files["web.json"] = replaced;
    const Ran equivalent = compared(platform, Format::text, "web.json");
    EXPECT_EQ(equivalent.code, exit_code::done) << equivalent.output;
    EXPECT_NE(equivalent.output.find("was replaced: serial number"), std::string::npos)
        << equivalent.output;
    EXPECT_EQ(compared(platform, Format::text, "web.json", true).code, exit_code::found);
    // Its level is another one.
    std::string other = document;
    const std::string level = "\"raid_type\": \"RAID5\"";
    other.replace(other.find(level), level.size(), "\"raid_type\": \"RAID6\"");
    platform.fileFake.files["web.json"] = other;
    EXPECT_EQ(compared(platform, Format::text, "web.json").code, exit_code::found);
    // Of another machine nothing can be told.
    SimulatedPlatform machine("single");
    machine.fileFake.files["web.json"] = document;
    const Ran none = compared(machine, Format::text, "web.json");
    EXPECT_EQ(none.code, exit_code::notPossible);
    EXPECT_NE(none.output.find("the certificate is of another machine"), std::string::npos)
        << none.output;
    // One that is broken is told, and nothing is captured.
    machine.fileFake.files["web.json"] = document.substr(0, 3000);
    const Ran broken = compared(machine, Format::text, "web.json");
    EXPECT_EQ(broken.code, exit_code::notPossible);
    EXPECT_NE(broken.error.find("[ZA193]"), std::string::npos) << broken.error;
}

} // namespace
} // namespace zolex::companion

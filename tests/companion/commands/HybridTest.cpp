// Machines with controllers of the time of zolex, of today, and with cards that two utilities
// drive.

#include "companion/commands/Commands.h"
#include "companion/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

struct HybridRan {
    int code = -1;
    std::string output;
    std::string error;
};

std::string definitionOf(const char* sample) {
    return std::string(zolex_sim::sampleNamed(sample)->definition);
}

std::string replacedIn(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/// What stands in the list of controllers of a definition.
std::string controllersOf(const std::string& definition) {
    const std::string begin = "\"controllers\": [";
    const std::size_t at = definition.find(begin) + begin.size();
    std::size_t end = at;
    for (int depth = 1; depth > 0; ++end) {
        depth += definition[end] == '[' ? 1 : definition[end] == ']' ? -1 : 0;
    }
    return definition.substr(at, end - 1 - at);
}

/// A card of MEGACLI on a low bus, and one of STORCLI.
std::string bothCards() {
    return replacedIn(definitionOf("storcli"), "\"controllers\": [",
                      "\"controllers\": [" + controllersOf(definitionOf("configured")) + ",");
}

/// The card of STORCLI is one that zolex knows, too.
std::string oneCardOfBoth() {
    return replacedIn(definitionOf("storcli"), "0x10e2", "0x0079");
}

const std::vector<std::string> ofBoth = {"UTIL.BAT", "hwdetect.exe", "storcli64", "storcli64.exe",
                                         "MegaCli64"};

HybridRan runHybrid(SimulatedPlatform& platform, const std::function<int(Context&)>& command,
                    std::map<std::string, std::string> utilities = {},
                    const std::vector<std::string>& programs = ofBoth) {
    for (const char* const folder : {"tools/", "tools\\"}) {
        for (const std::string& program : programs) {
            platform.fileFake.files[folder + program] = "";
        }
    }
    MachineOptions machine;
    machine.utilitiesFolder = "tools";
    machine.utilities = std::move(utilities);
    platform.consoleFake.output.clear();
    platform.consoleFake.error.clear();
    platform.children.clear();
    Context context{platform, machine, Format::text, "", {}, {}, false, false, {"show"}};
    HybridRan ran;
    ran.code = command(context);
    ran.output = platform.consoleFake.output;
    ran.error = platform.consoleFake.error;
    return ran;
}

HybridRan shownHybrid(SimulatedPlatform& platform) {
    return runHybrid(platform, [](Context& context) { return show(context, {}); });
}

HybridRan planned(SimulatedPlatform& platform, const std::string& policies) {
    platform.fileFake.files["site.ini"] = policies;
    PlanOptions options;
    options.file = "site.ini";
    return runHybrid(platform, [&](Context& context) { return plan(context, options); });
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool hasAsked(const SimulatedPlatform& platform, const std::string& utility) {
    return std::any_of(platform.children.begin(), platform.children.end(),
                       [&](const std::string& line) { return holds(line, utility); });
}

const char* const policiesOfBoth = R"(
[Policy.old]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1

[Policy.today]
AppliesTo.1 = t:STORCLI
Array_Mode = CUSTOM
Array.A = 13,14
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)";

TEST(Hybrid, EachCardHasItsUtility) {
    SimulatedPlatform platform(bothCards());
    const HybridRan ran = shownHybrid(platform);
    EXPECT_EQ(ran.code, exit_code::done) << ran.error;
    EXPECT_TRUE(holds(ran.output, "\nController 1  LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)"))
        << ran.output;
    EXPECT_TRUE(
        holds(ran.output, "\nController 2  MegaRAID N3916-16i 8GB (MegaRAID-N3916-16i-8GB)"))
        << ran.output;
    EXPECT_TRUE(hasAsked(platform, "MEGACLI"));
    EXPECT_TRUE(hasAsked(platform, "storcli64"));
}

TEST(Hybrid, DoctorLooksAtBoth) {
    SimulatedPlatform platform(bothCards());
    const HybridRan ran = runHybrid(platform, doctor);
    EXPECT_TRUE(holds(ran.output, "\nMEGACLI         ok      controller 1: ")) << ran.output;
    EXPECT_TRUE(holds(ran.output, "\nSTORCLI         ok      controller 2: ")) << ran.output;
    EXPECT_TRUE(holds(ran.output, "007.2507.0000.0000\n")) << ran.output;
    EXPECT_FALSE(holds(ran.output, "ZP140")) << ran.output;
    EXPECT_EQ(ran.code, exit_code::done) << ran.output;
}

TEST(Hybrid, OnePlanForBoth) {
    SimulatedPlatform platform(bothCards());
    const HybridRan ran = planned(platform, policiesOfBoth);
    EXPECT_EQ(ran.code, exit_code::done) << ran.output << ran.error;
    EXPECT_TRUE(holds(ran.output, "UTIL.BAT MEGACLI ")) << ran.output;
    EXPECT_TRUE(holds(ran.output, "STORCLI /c0 add vd r1 drives=252:12,252:13 ")) << ran.output;
}

TEST(Hybrid, StorcliDrivesACardThatBothDrive) {
    SimulatedPlatform platform(oneCardOfBoth());
    HybridRan ran = shownHybrid(platform);
    EXPECT_EQ(ran.code, exit_code::done) << ran.error;
    EXPECT_TRUE(holds(ran.output, "\nController 1  MegaRAID N3916-16i 8GB ")) << ran.output;
    EXPECT_FALSE(holds(ran.output, "Controller 2")) << ran.output;
    EXPECT_FALSE(hasAsked(platform, "MEGACLI"));
    ran = runHybrid(platform, doctor);
    EXPECT_EQ(ran.code, exit_code::done) << ran.output;
    EXPECT_TRUE(holds(ran.output,
                      "note: machine: controller 1 is driven by STORCLI and by MEGACLI: STORCLI is "
                      "used\n  [ZP140]\n  help: name the program of the one to be used: zolexctl "
                      "--utility\n        MEGACLI=/path/MegaCli64 doctor\n"))
        << ran.output;
    EXPECT_FALSE(hasAsked(platform, "MEGACLI"));
    ran = planned(platform, policiesOfBoth);
    EXPECT_EQ(ran.code, exit_code::done) << ran.output << ran.error;
    EXPECT_TRUE(holds(ran.output, "STORCLI /c0 add vd r1 ")) << ran.output;
    EXPECT_FALSE(hasAsked(platform, "MEGACLI"));
}

TEST(Hybrid, TheOneThatIsNamedDrivesIt) {
    SimulatedPlatform platform(oneCardOfBoth());
    const HybridRan ran = runHybrid(platform, doctor, {{"MEGACLI", "tools/MegaCli64"}});
    EXPECT_TRUE(hasAsked(platform, "MegaCli64"));
    EXPECT_TRUE(holds(ran.output,
                      "note: machine: controller 1 is driven by STORCLI and by MEGACLI: "
                      "MEGACLI is\n  used, because it was named [ZP140]\n"
                      "  help: to use STORCLI, name its program: zolexctl --utility\n"
                      "        STORCLI=/path/storcli64 doctor\n"))
        << ran.output;
}

TEST(Hybrid, TheNextGenerationAloneIsAsNoController) {
    SimulatedPlatform platform("storcli");
    platform.devices.front().deviceId = 0x00a5;
    const std::vector<std::string> programs = {"hwdetect.exe", "storcli2", "storcli2.exe"};
    HybridRan ran = runHybrid(
        platform, [](Context& context) { return show(context, {}); }, {}, programs);
    EXPECT_EQ(ran.code, exit_code::done);
    EXPECT_EQ(ran.error,
              "no supported RAID controller was found\n"
              "note: PCI 0000:c1:00.0: a RAID controller (1000:00a5:1000:4000) is on the "
              "bus, of the utility STORCLI2, which zolexctl does not drive yet\n");
    EXPECT_FALSE(hasAsked(platform, "storcli"));
    ran = runHybrid(platform, doctor, {}, programs);
    EXPECT_EQ(ran.code, exit_code::found);
    EXPECT_TRUE(holds(ran.output, "note: STORCLI2: ")) << ran.output;
    EXPECT_TRUE(holds(ran.output, " is there, and zolexctl does not drive it yet")) << ran.output;
    EXPECT_FALSE(hasAsked(platform, "storcli"));
    platform.fileFake.files["site.ini"] = policiesOfBoth;
    PlanOptions options;
    options.file = "site.ini";
    ran = runHybrid(
        platform, [&](Context& context) { return plan(context, options); }, {}, programs);
    EXPECT_EQ(ran.code, exit_code::notPossible);
    EXPECT_EQ(ran.error, "error: no supported RAID controller was found\n"
                         "  help: zolexctl doctor tells what is there\n");
    EXPECT_FALSE(hasAsked(platform, "storcli"));
}

TEST(Hybrid, GuardTellsOfControllersThatZolexDoesNotKnow) {
    SimulatedPlatform platform("storcli");
    platform.fileFake.files["./zolex"] = "";
    GuardOptions options;
    options.command = {"./zolex", "/r", "/y"};
    const HybridRan ran =
        runHybrid(platform, [&](Context& context) { return guard(context, options); });
    EXPECT_EQ(ran.code, exit_code::notPossible);
    EXPECT_EQ(ran.error, "error: zolex knows no RAID controller of this server: "
                         "MegaRAID-N3916-16i-8GB is driven by zolexctl alone\n"
                         "  help: zolexctl plan POLICIES, and then zolexctl apply PLAN\n");
}

} // namespace
} // namespace zolex::companion

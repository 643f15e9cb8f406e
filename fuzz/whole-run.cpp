#include "driver/ZOLEX.h"
#include "support/Check.h"
#include "support/ExitCodes.h"
#include "support/FakePlatform.h"
#include "support/Input.h"
#include "support/VirtualServer.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

constexpr const char* policiesName = "policies.ini";

// How the program is called. The last column: the run may append to the policies file.
struct RunMode {
    std::vector<const char*> arguments;
    bool writesPolicies;
};

const std::vector<RunMode>& runModes() {
    static const std::vector<RunMode> modes = {
        {{"/f:policies.ini"}, false},
        {{"/d"}, false},
        {{"/c", "/f:policies.ini"}, true},
        {{"/c:ALL", "/f:policies.ini"}, true},
        {{"/c:m,s,t,c,d,o", "/f:policies.ini"}, true},
        {{"/r", "/y"}, false},
        {{"/r", "/y", "/f:policies.ini"}, false},
        {{"/r:", "/y", "/c", "/f:policies.ini"}, true},
        {{"/fake", "/f:policies.ini"}, false},
        {{"/fake", "/c", "/f:policies.ini"}, true},
        {{"/controllers:definition.ini", "/f:policies.ini"}, false},
        {{"/controllers:definition.ini", "/d"}, false},
    };
    return modes;
}

// One bit of two choices each.
constexpr std::array<const char*, 12> flags = {
    "/e1",  "/e2",  "/e3",  "/debug",          "/noexecuteall",    "/noexecutecap",
    "/v:9", "/v:5", "/v:0", "/noexecutereset", "/noexecutedeploy", "/p:tools"};

std::vector<const char*> argumentsOf(const RunMode& mode, unsigned chosen) {
    std::vector<const char*> arguments = {"zolex"};
    arguments.insert(arguments.end(), mode.arguments.begin(), mode.arguments.end());
    bool hasVerbosity = false;
    for (std::size_t i = 0; i < flags.size(); ++i) {
        const bool isVerbosity = flags[i][1] == 'v';
        if (((chosen >> i) & 1U) != 0 && !(isVerbosity && hasVerbosity)) {
            arguments.push_back(flags[i]);
            hasVerbosity = hasVerbosity || isVerbosity;
        }
    }
    return arguments;
}

/// What a run may leave behind: nothing, or a longer policies file.
void checkFiles(const test::FakeFileSystem& files, const std::map<std::string, std::string>& before,
                const RunMode& mode, bool debug, int exitCode) {
    const auto find = [](const auto& where, const char* name) {
        const auto file = where.find(name);
        return file == where.end() ? std::string() : file->second;
    };
    const std::string policiesBefore = find(before, policiesName);
    const std::string policiesAfter = find(files.files, policiesName);
    if (mode.writesPolicies) {
        check(policiesAfter.starts_with(policiesBefore), "policies are appended alone");
        check(exitCode == 0 || policiesAfter == policiesBefore, "a failed capture appends nothing");
    } else {
        check(policiesAfter == policiesBefore, "the policies file is as it was");
        check(std::all_of(files.opened.begin(), files.opened.end(),
                          [](const std::string& call) {
                              return !call.ends_with(policiesName) || call.starts_with("r ");
                          }),
              "the policies file is opened for reading alone");
    }
    for (const auto& [name, content] : files.files) {
        check(before.count(name) != 0 || debug || (mode.writesPolicies && name == policiesName),
              "no file is left behind");
    }
}

/// Choices: mode, sample, flags (two); then texts: the script of the children's answers, the
/// policies ("-": no file; empty: those of the sample), the inventory (likewise the sample's), the
/// controller definition, and the texts that answers need.
void runProgram(Input input) {
    const RunMode& mode = runModes()[input.choice() % runModes().size()];
    const unsigned sample = input.choice();
    const unsigned chosen = input.choice() | static_cast<unsigned>(input.choice()) << 8U;
    const std::string_view script = input.text();
    const std::string policies(input.text());
    const std::string inventory(input.text());
    const std::string definition(input.text());

    VirtualServer server(sample, script, input);
    test::FakePlatform platform;
    auto& files = platform.fileFake.files;
    if (policies != "-") {
        files[policiesName] = policies.empty() ? server.policies() : policies;
    }
    files["contlist.ini"] = inventory.empty() ? server.inventory() : inventory;
    files["definition.ini"] = definition;
    platform.devices = server.devices();
    platform.consoleFake.answers = "y";
    platform.respond = [&server](std::string_view commandLine) { return server.run(commandLine); };

    const auto before = files;
    const std::vector<const char*> argv = argumentsOf(mode, chosen);
    const int exitCode = ZOLEX::run(static_cast<int>(argv.size()), argv.data(), platform);
    check(isExitCode(exitCode), "exit code");
    const bool debug =
        std::find(argv.begin(), argv.end(), std::string_view("/debug")) != argv.end();
    checkFiles(platform.fileFake, before, mode, debug, exitCode);
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::runProgram(zolex::fuzz::Input(data, size));
    return 0;
}

#include "driver/ZOLEX.h"
#include "support/Check.h"
#include "support/ExitCodes.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

/// The lines of the first text are arguments; the second text is the parameter file "params", the
/// third one the inventory.
void runCommandLine(Input input) {
    std::vector<std::string> arguments = {"zolex"};
    std::string line;
    for (const char c : input.text()) {
        if (c == '\n') {
            arguments.push_back(std::move(line));
            line.clear();
        } else if (c != '\0') {
            line += c;
        }
    }
    arguments.push_back(std::move(line));
    std::vector<const char*> argv;
    argv.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }

    test::FakePlatform platform;
    platform.fileFake.files["params"] = input.text();
    platform.fileFake.files["contlist.ini"] = input.rest();
    ZOLEX parsed(platform);
    const auto code =
        static_cast<unsigned>(parsed.parseCommandLine(static_cast<int>(argv.size()), argv.data()));
    check(code == 0 || code == 4, "result of the command line");
    const Settings& settings = parsed.settings;
    check(code != 0 || settings.captureParameters.isEmpty() || settings.capture,
          "capture parameters ask for capture");
    for (const CString& directory : {settings.commandPathPrefix, settings.tempDirectory}) {
        check(code != 0 || directory.isEmpty() || directory.endsWith("\\"), "end of a directory");
    }
    const std::int32_t verbosity = parsed.printer().verbosity();
    check(verbosity == level::unset || verbosity == level::always || verbosity == level::progress ||
              verbosity == level::detail || verbosity == level::traces,
          "verbosity");

    const int exitCode = ZOLEX::run(static_cast<int>(argv.size()), argv.data(), platform);
    check(isExitCode(exitCode), "exit code");
    check(code == 0 || exitCode == 4, "a command line that is refused ends the run");
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::runCommandLine(zolex::fuzz::Input(data, size));
    return 0;
}

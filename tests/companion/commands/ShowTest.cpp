#include "companion/commands/Commands.h"

#include "companion/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

/// What one run of `show` wrote.
struct Shown {
    int code = -1;
    std::string output;
    std::string error;
};

Shown run(SimulatedPlatform& platform, Format format, MachineOptions machine = {}) {
    for (const char* const folder : {"tools/", "tools\\"}) {
        for (const char* const program : {"UTIL.BAT", "hwdetect.exe"}) {
            platform.fileFake.files[std::string(folder) + program] = "";
        }
    }
    machine.utilitiesFolder = "tools";
    platform.consoleFake.output.clear();
    platform.consoleFake.error.clear();
    Context context{platform, std::move(machine), format, "", {}, {}, false, false, {"show"}};
    Shown shown;
    shown.code = show(context, {});
    shown.output = platform.consoleFake.output;
    shown.error = platform.consoleFake.error;
    return shown;
}

TEST(Show, TellsAServerAsText) {
    SimulatedPlatform platform("configured");
    const Shown shown = run(platform, Format::text);
    EXPECT_EQ(shown.code, exit_code::done);
    EXPECT_EQ(shown.error, "");
    EXPECT_EQ(shown.output, "");
}

} // namespace
} // namespace zolex::companion

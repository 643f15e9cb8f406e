#include "companion/cli/Main.h"

#include "companion/commands/Context.h"
#include "platform/Platform.h"

namespace zolex::companion {

int runProgram(int /*argc*/, const char* const* /*argv*/, Platform& platform) {
    platform.console().writeError("zolexctl: no command\n");
    return exit_code::notPossible;
}

} // namespace zolex::companion

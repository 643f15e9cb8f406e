#include "companion/commands/Commands.h"

#include "companion/commands/MachineAccess.h"
#include "companion/recording/ReplayPlatform.h"
#include "driver/ZOLEX.h"

#include <vector>

namespace zolex::companion {

int replay(Context& context, const ReplayOptions& options) {
    const std::optional<Recording> recording = loadRecording(context, options.file);
    if (!recording) {
        return exit_code::notPossible;
    }
    std::vector<const char*> arguments;
    arguments.reserve(options.command.size());
    for (const std::string& argument : options.command) {
        arguments.push_back(argument.c_str());
    }
    ReplayPlatform machine(*recording, context.platform);
    try {
        return ZOLEX::run(static_cast<int>(arguments.size()), arguments.data(), machine);
    } catch (const LackingCall& lacking) {
        return failWith(context, printable(lacking.what()),
                        "a recording answers only what was asked when it was made; nothing was "
                        "run on this server");
    }
}

} // namespace zolex::companion

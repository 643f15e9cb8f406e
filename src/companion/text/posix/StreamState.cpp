#include "companion/text/StreamState.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zolex::companion {

StreamState streamState(StandardStream stream) {
    const int descriptor = stream == StandardStream::input    ? STDIN_FILENO
                           : stream == StandardStream::output ? STDOUT_FILENO
                                                              : STDERR_FILENO;
    StreamState state;
    state.isTerminal = ::isatty(descriptor) == 1;
    if (!state.isTerminal || stream == StandardStream::input) {
        return state;
    }
    const char* const kind = std::getenv("TERM");
    state.takesColours = kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
    winsize size = {};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        state.columns = size.ws_col;
    }
    return state;
}

} // namespace zolex::companion

#include "companion/text/StreamState.h"

#include <windows.h>

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
constexpr DWORD ENABLE_VIRTUAL_TERMINAL_PROCESSING = 4;
#endif

namespace zolex::companion {

StreamState streamState(StandardStream stream) {
    HANDLE const handle = GetStdHandle(stream == StandardStream::input    ? STD_INPUT_HANDLE
                                       : stream == StandardStream::output ? STD_OUTPUT_HANDLE
                                                                          : STD_ERROR_HANDLE);
    StreamState state;
    DWORD mode = 0;
    state.isTerminal = GetConsoleMode(handle, &mode) != 0; // which only a console has
    if (!state.isTerminal || stream == StandardStream::input) {
        return state;
    }
    state.takesColours = (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 ||
                         SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    CONSOLE_SCREEN_BUFFER_INFO buffer = {};
    if (GetConsoleScreenBufferInfo(handle, &buffer) != 0) {
        // A line that fills the last column would be followed by an empty one.
        state.columns = buffer.srWindow.Right - buffer.srWindow.Left;
    }
    return state;
}

} // namespace zolex::companion

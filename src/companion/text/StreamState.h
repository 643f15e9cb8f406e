#pragma once

#include <cstdint>
#include <optional>

namespace zolex::companion {

enum class StandardStream { input, output, error };

/// What a standard stream of this process leads to.
struct StreamState {
    bool isTerminal = false;
    bool takesColours = false; ///< one to write on, that understands escape sequences
    std::optional<std::int32_t> columns;
};

/// Asks the system. On Windows this makes a console understand escape sequences where it can.
[[nodiscard]] StreamState streamState(StandardStream stream);

} // namespace zolex::companion

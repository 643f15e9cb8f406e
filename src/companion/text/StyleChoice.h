#pragma once

#include "companion/text/StreamState.h"
#include "companion/text/Terminal.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zolex::companion {

enum class ColourWish { automatic, always, never };

inline constexpr std::int32_t smallestWidth = 40;
inline constexpr std::int32_t largestWidth = 1000;
inline constexpr std::int32_t usualWidth = 80;

/// All that decides how texts are written.
struct StyleWishes {
    ColourWish colours = ColourWish::automatic;
    std::optional<std::int32_t> width; ///< of --width
    bool toFile = false;               ///< the texts go to a file and not to the stream
    StreamState stream;
    // Environment variables; nothing where there is none.
    std::optional<std::string> noColor;       ///< NO_COLOR
    std::optional<std::string> cliColorForce; ///< CLICOLOR_FORCE
    std::optional<std::string> columns;       ///< COLUMNS
};

/// Colours: what --color says; else none with NO_COLOR, then always with CLICOLOR_FORCE, then where
/// a terminal takes them. Width: what --width says, else the terminal's, else COLUMNS, else 80.
[[nodiscard]] TextStyle chooseStyle(const StyleWishes& wishes);

/// The value of an environment variable; nothing where there is none.
[[nodiscard]] std::optional<std::string> environmentVariable(const char* name);

} // namespace zolex::companion

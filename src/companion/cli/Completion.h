#pragma once

#include "companion/cli/Options.h"

#include <string>
#include <string_view>
#include <vector>

/// What a shell offers behind "zolexctl". All of it is made of the tables of commands and options,
/// when the program is built: the program itself holds none of it.
namespace zolex::companion {

enum class Shell : std::uint8_t { bash, zsh };

/// What can stand in a place of the command line.
enum class Offer : std::uint8_t {
    nothing, ///< a number, or a text that is not known here
    words,   ///< one of some words
    list,    ///< some of the words, with commas
    files,
    folders,
    paths ///< one of the words, "=" and a file
};

struct Offered {
    Offer kind = Offer::nothing;
    std::vector<std::string> words;

    bool operator==(const Offered&) const = default;
};

/// What stands behind an option of a command.
[[nodiscard]] Offered offeredValues(const OptionRow& option, const CommandRow& command);
/// What stands behind a command's name, beside options and before "--".
[[nodiscard]] Offered offeredWords(const CommandRow& command);

/// The file that a shell reads, whole lines.
[[nodiscard]] std::string completionScript(Shell shell);

} // namespace zolex::companion

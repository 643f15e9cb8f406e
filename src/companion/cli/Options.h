#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What zolexctl can be asked for: one row for each command and each option. The arguments are read
/// by it, and the help is made of it.
namespace zolex::companion {

enum class Command : std::uint8_t {
    none,
    plan,
    apply,
    reset,
    diff,
    show,
    check,
    doctor,
    record,
    replay,
    rehearse,
    convert,
    guard,
    explain
};
inline constexpr std::size_t commandCount = 14; ///< with none

/// A set of commands.
using CommandSet = std::uint32_t;
[[nodiscard]] constexpr CommandSet only(Command command) {
    return CommandSet{1} << static_cast<unsigned>(command);
}
inline constexpr CommandSet anyCommand = ~CommandSet{0};

struct CommandRow {
    Command command;
    std::string_view name;
    std::string_view usage;    ///< behind "zolexctl ", options first
    std::string_view summary;  ///< for the list of commands
    std::string_view purpose;  ///< one paragraph or more
    std::string_view formats;  ///< that it can give, the usual one first, between blanks
    std::string_view examples; ///< one line each
};

struct OptionRow {
    std::string_view name;      ///< "--width"
    std::string_view shortName; ///< "-o", or empty
    std::string_view value;     ///< what stands behind it: "N"; empty: nothing
    std::string_view text;      ///< what it does
    CommandSet commands;        ///< that know it
    bool repeats = false;       ///< may be given more than once
    /// Empty, or what is wrong with a value: "is no number from 40 to 1000". Null: all are right.
    std::string (*fault)(std::string_view value) = nullptr;
};

[[nodiscard]] std::span<const CommandRow> commandRows();
[[nodiscard]] std::span<const OptionRow> optionRows();

/// Null when there is no such command.
[[nodiscard]] const CommandRow* findCommand(std::string_view name);
/// The row of a command that there is.
[[nodiscard]] const CommandRow& rowOf(Command command);

} // namespace zolex::companion

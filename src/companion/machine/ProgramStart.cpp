#include "companion/machine/ProgramStart.h"

#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::string_view separators = " \t\r\n";

/// What the command interpreter would take as its own.
constexpr std::string_view interpreted = "&|<>^%\"!\r\n";

bool holdsAnyOf(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) != std::string_view::npos;
}

bool isBatchFile(std::string_view program) {
    constexpr std::size_t length = 4;
    if (program.size() < length) {
        return false;
    }
    const std::string_view ending = program.substr(program.size() - length);
    return text::equalsNoCase(ending, ".bat") || text::equalsNoCase(ending, ".cmd");
}

/// A backslash counts only before a double quote: there each is doubled.
std::string quotedForWindows(std::string_view argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') {
            quoted.append(backslashes + 1, '\\');
        }
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    quoted.append(backslashes, '\\');
    return quoted + '"';
}

/// The program itself ends at the next double quote, and a backslash in it is always one.
std::optional<std::string> quotedProgram(std::string_view program) {
    if (program.empty() || holdsAnyOf(program, "\"")) {
        return std::nullopt;
    }
    return holdsAnyOf(program, separators) ? '"' + std::string(program) + '"'
                                           : std::string(program);
}

std::optional<std::string> quotedArgument(std::string_view argument, Splitting splitting,
                                          bool isForBatch) {
    if (isForBatch && holdsAnyOf(argument, interpreted)) {
        return std::nullopt;
    }
    if (splitting == Splitting::plain && holdsAnyOf(argument, "\"")) {
        return std::nullopt;
    }
    // What parts the arguments of a batch file, and parentheses, which count inside its blocks.
    const std::string_view parting = isForBatch ? " \t,;=()" : " \t\r\n\v\"";
    if (!argument.empty() && !holdsAnyOf(argument, parting)) {
        return std::string(argument);
    }
    return splitting == Splitting::plain || isForBatch ? '"' + std::string(argument) + '"'
                                                       : quotedForWindows(argument);
}

} // namespace

Splitting systemSplitting() {
#ifdef _WIN32
    return Splitting::windows;
#else
    return Splitting::plain;
#endif
}

std::optional<std::string> commandLineOf(std::span<const std::string> arguments,
                                         Splitting splitting) {
    const bool hasNul =
        std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
            return argument.find('\0') != std::string::npos;
        });
    if (arguments.empty() || hasNul) {
        return std::nullopt;
    }
    const bool isForBatch = splitting == Splitting::windows && isBatchFile(arguments.front());
    // The interpreter would expand variables in the name of the batch file, too.
    if (isForBatch && holdsAnyOf(arguments.front(), interpreted)) {
        return std::nullopt;
    }
    std::optional<std::string> line = quotedProgram(arguments.front());
    for (const std::string& argument : arguments.subspan(1)) {
        const auto quoted = quotedArgument(argument, splitting, isForBatch);
        if (!line || !quoted) {
            return std::nullopt;
        }
        *line += ' ' + *quoted;
    }
    return line;
}

ChildResult runProgram(Platform& platform, std::span<const std::string> arguments, bool capture,
                       std::chrono::milliseconds limit, Splitting splitting) {
    const auto line = commandLineOf(arguments, splitting);
    return line ? platform.runChild(*line, capture, limit) : ChildResult();
}

} // namespace zolex::companion

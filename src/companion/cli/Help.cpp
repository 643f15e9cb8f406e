#include "companion/cli/Help.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::size_t width = 80;
constexpr std::size_t commandColumn = 11;
constexpr std::size_t optionColumn = 30;

/// The text in lines of `width` columns; each begins with `indent` blanks, the first as it is.
std::string wrapped(std::string first, std::string_view text, std::size_t indent) {
    std::string result;
    std::string line = std::move(first);
    bool isEmpty = true;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!isEmpty && line.size() + 1 + word.size() > width) {
            result += line + "\n";
            line.assign(indent, ' ');
            isEmpty = true;
        }
        line.append(isEmpty ? "" : " ").append(word);
        isEmpty = false;
    }
    return result + line + "\n";
}

std::string padded(std::string text, std::size_t column) {
    text.resize(std::max(text.size() + 1, column), ' ');
    return text;
}

/// Each line of the text.
template <typename Take>
void forEachLine(std::string_view text, const Take& take) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        take(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

std::string optionText(const OptionRow& row, const CommandRow* command) {
    if (row.name != "--format" || command == nullptr) {
        return std::string(row.text);
    }
    std::string formats;
    std::string_view rest = command->formats;
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        formats.append(formats.empty() ? "" : ", ").append(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return std::string(row.text) + ": " + formats;
}

std::string optionLines(const OptionRow& row, const CommandRow* command) {
    std::string names = "  ";
    names.append(row.shortName).append(row.shortName.empty() ? "" : ", ").append(row.name);
    names.append(row.value.empty() ? "" : " ").append(row.value);
    return wrapped(padded(std::move(names), optionColumn), optionText(row, command), optionColumn);
}

std::string optionBlock(std::string_view title, CommandSet commands, bool general,
                        const CommandRow* command) {
    std::string lines;
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & commands) != 0 && (row.commands == anyCommand) == general) {
            lines += optionLines(row, command);
        }
    }
    return lines.empty() ? lines : "\n" + std::string(title) + "\n" + lines;
}

std::string programHelp() {
    std::string text =
        "usage: zolexctl [OPTIONS] COMMAND [OPTIONS]\n\n" +
        wrapped(
            "",
            "Looks at the RAID controllers of a server and at policies for them, plans, and "
            "carries plans out. Only apply, reset and the zolex behind guard change anything on "
            "a server.",
            0) +
        "\ncommands:\n";
    for (const CommandRow& row : commandRows()) {
        text += wrapped(padded("  " + std::string(row.name), commandColumn), row.summary,
                        commandColumn);
    }
    text += optionBlock("options:", only(Command::none), false, nullptr);
    text += optionBlock("options of every command, before or behind its name:", anyCommand, true,
                        nullptr);
    return text +
           "\nFirst of all:\n  zolexctl show\nMore on a command:\n  zolexctl COMMAND --help\n";
}

} // namespace

std::string helpText(Command command) {
    if (command == Command::none) {
        return programHelp();
    }
    const CommandRow& row = rowOf(command);
    std::string text = "usage: zolexctl " + std::string(row.usage) + "\n";
    forEachLine(row.purpose,
                [&](std::string_view paragraph) { text += "\n" + wrapped("", paragraph, 0); });
    text += optionBlock("options:", only(command), false, &row);
    text += optionBlock("options of every command:", only(command), true, &row);
    text += "\nexamples:\n";
    forEachLine(row.examples,
                [&](std::string_view line) { text += "  " + std::string(line) + "\n"; });
    return text;
}

std::string versionText() {
    return "zolexctl " ZOLEX_VERSION "\n";
}

} // namespace zolex::companion

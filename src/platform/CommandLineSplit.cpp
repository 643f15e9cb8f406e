#include "platform/CommandLineSplit.h"

#include <utility>

namespace zolex {

std::vector<std::string> splitCommandLine(std::string_view commandLine) {
    constexpr std::string_view separators = " \t\r\n";
    std::vector<std::string> arguments;
    std::string argument;
    bool inArgument = false;
    bool inQuotes = false;
    for (const char c : commandLine) {
        if (c == '"') {
            inQuotes = !inQuotes;
            inArgument = true;
        } else if (!inQuotes && separators.find(c) != std::string_view::npos) {
            if (inArgument) {
                arguments.push_back(std::exchange(argument, {}));
            }
            inArgument = false;
        } else {
            argument += c;
            inArgument = true;
        }
    }
    if (inArgument) {
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

} // namespace zolex

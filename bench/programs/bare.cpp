// Runs the command lines of the file "commands" of the current directory, one after another, with
// the runner that zolex has, and throws their outputs away: what a capture cannot do without.

#include "platform/Platform.h"
#include "platform/Tool.h"

#include <cstdio>
#include <cstring>

int main() {
    const auto platform = zolex::makeSystemPlatform();
    std::FILE* const commands = std::fopen("commands", "r");
    if (commands == nullptr) {
        return 1;
    }
    int result = 0;
    char line[1024];
    while (std::fgets(line, sizeof line, commands) != nullptr) {
        line[std::strcspn(line, "\n")] = '\0';
        const zolex::ChildResult child = platform->runChild(line, true, zolex::Tool::defaultLimit);
        if (child.outcome != zolex::ChildOutcome::ended || child.exitCode != 0 ||
            child.output.empty()) {
            result = 1;
        }
    }
    std::fclose(commands);
    return result;
}

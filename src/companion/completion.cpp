#include "companion/cli/Completion.h"

#include <cstdio>
#include <string_view>

/// zolexctl-completion bash|zsh: prints what the shell reads. It runs when the program is built,
/// and is not shipped.
int main(int argc, char** argv) {
    using zolex::companion::Shell;
    const std::string_view name = argc == 2 ? argv[1] : "";
    if (name != "bash" && name != "zsh") {
        std::fputs("usage: zolexctl-completion bash|zsh\n", stderr);
        return 2;
    }
    const auto shell = name == "bash" ? Shell::bash : Shell::zsh;
    const std::string text = zolex::companion::completionScript(shell);
    return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
}

// Shows what it was called with: each argument in "<>", and on Windows the command line behind the
// program's name as it came. An argument "code=N" makes N the exit code.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#endif

int main(int argc, char** argv) {
    constexpr std::string_view code = "code=";
    int exitCode = 0;
    for (int i = 1; i < argc; ++i) {
        std::printf("<%s>", argv[i]);
        if (std::string_view(argv[i]).starts_with(code)) {
            exitCode = std::atoi(argv[i] + code.size());
        }
    }
    std::printf("\n");
#ifdef _WIN32
    const std::string_view line = GetCommandLineA();
    const std::string_view options = line.substr(line.find('"', 1) + 1);
    std::printf("%.*s\n", static_cast<int>(options.size()), options.data());
#endif
    return exitCode;
}

#include "Simulator.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <system_error>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

/// The executable file that runs. On POSIX systems a link to it that was called by its path stands
/// for itself: its folder is where the server is.
std::filesystem::path runningProgram() {
#ifdef _WIN32
    char name[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, name, MAX_PATH);
    return std::filesystem::path(std::string(name, length));
#else
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
#endif
}

std::filesystem::path serverFolder(const std::string& called,
                                   const std::filesystem::path& program) {
    if (const char* folder = std::getenv("ZOLEX_SIM_DIR"); folder != nullptr && *folder != '\0') {
        return folder;
    }
#ifdef _WIN32
    static_cast<void>(called);
    return program.parent_path();
#else
    const std::filesystem::path path(called);
    return path.has_parent_path() ? path.parent_path() : program.parent_path();
#endif
}

int run(int argc, char** argv) {
    std::vector<std::string> arguments(argv, argv + argc);
    const std::filesystem::path program = runningProgram();
    zolex_sim::Environment environment;
    environment.program = program;
    environment.folder = serverFolder(argc > 0 ? arguments.front() : std::string(), program);
    std::error_code error;
    environment.current = std::filesystem::current_path(error);
    environment.pause = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); };
#ifdef _WIN32
    // A program is often started without its folder and suffix.
    if (!arguments.empty()) {
        arguments.front() = program.string();
    }
#endif
    return zolex_sim::runSimulator(arguments, environment, std::cout, std::cerr);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "zolex-sim: " << error.what() << "\n";
    }
    return 1;
}

// A child for tests of what runs children on Windows. It does what its arguments say, in their
// order, and ends with 0 when they are used up:
//   text T     writes T to standard output, as it is; error T to standard error
//   lines N    writes N numbered lines that end in CR LF
//   pipes      writes how many pipes it has inherited
//   sleep MS   waits
//   leave MS   starts itself with "sleep MS", its standard streams inherited, and goes on
//   exit CODE  ends with the code
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace {

int inheritedPipes() {
    int pipes = 0;
    for (std::uintptr_t value = 4; value < 4096; value += 4) {
        DWORD flags = 0;
        auto* const handle = reinterpret_cast<HANDLE>(value);
        if (GetHandleInformation(handle, &flags) != 0 && GetFileType(handle) == FILE_TYPE_PIPE) {
            ++pipes;
        }
    }
    return pipes;
}

void leaveBehind(const std::string& program, const std::string& milliseconds) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    std::string command = "\"" + program + "\" sleep " + milliseconds;
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                   &started);
}

} // namespace

int main(int argc, char** argv) {
    _setmode(1, _O_BINARY);
    _setmode(2, _O_BINARY);
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::string value = i + 1 < argc ? argv[i + 1] : "";
        if (word == "text") {
            std::fwrite(value.data(), 1, value.size(), stdout);
        } else if (word == "error") {
            std::fwrite(value.data(), 1, value.size(), stderr);
        } else if (word == "lines") {
            for (long line = 0; line < std::atol(value.c_str()); ++line) {
                std::printf("%ld\r\n", line);
            }
        } else if (word == "pipes") {
            std::printf("%d", inheritedPipes());
            continue;
        } else if (word == "sleep") {
            Sleep(static_cast<DWORD>(std::atol(value.c_str())));
        } else if (word == "leave") {
            leaveBehind(argv[0], value);
        } else if (word == "exit") {
            std::fflush(stdout);
            ExitProcess(static_cast<UINT>(std::strtoul(value.c_str(), nullptr, 0)));
        }
        std::fflush(stdout);
        ++i;
    }
    return 0;
}

// A child for tests of what runs children on Windows. It does what its arguments say, in their
// order, and ends with 0 when they are used up:
//   text T     writes T to standard output, as it is; error T to standard error
//   lines N    writes N numbered lines that end in CR LF
//   bytes N    writes N bytes at once
//   forever    writes lines without an end, each at once
//   pipes      writes how many pipes it has inherited
//   pipe-size  writes the sizes of the buffers of the pipe that is its standard output
//   startup    writes whether it was given streams, and whether output and errors are one: "1 1"
//   input      writes "none" when it has no standard input, else "some"
//   variable N writes the variable of the environment
//   folder     writes the current directory
//   sleep MS   waits
//   signal E   sets the event, unless something could not be written to standard output
//   await E    goes on when the event is set; ends with 96 when it is not
//   until E    ends with 97, wherever it is by then, when the event is set
//   leave E    starts itself with "stay E", its standard streams inherited, and goes on when the
//              event E-here is set; ends with 99 or 98 when that comes to nothing
//   stay E     sets the event E-here when its standard output is a pipe; waits for the event E-end
//   exit CODE  ends with the code
// No event is waited for longer than a minute.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

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

constexpr DWORD longestWait = 60'000;

bool waitForEvent(const std::string& name, DWORD milliseconds) {
    HANDLE const event = OpenEventA(SYNCHRONIZE, FALSE, name.c_str());
    const bool isSet =
        event != nullptr && WaitForSingleObject(event, milliseconds) == WAIT_OBJECT_0;
    CloseHandle(event);
    return isSet;
}

void setEvent(const std::string& name) {
    HANDLE const event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name.c_str());
    SetEvent(event);
    CloseHandle(event);
}

void leaveBehind(const std::string& program, const std::string& event) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    std::string command = "\"" + program + "\" stay " + event;
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &started) == 0) {
        ExitProcess(99);
    }
    if (!waitForEvent(event + "-here", 30'000)) {
        ExitProcess(98);
    }
}

void stay(const std::string& event) {
    if (GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE) {
        setEvent(event + "-here");
    }
    waitForEvent(event + "-end", longestWait);
}

/// Ends this process from beside, as a write to a full pipe does not return.
void endAt(const std::string& event) {
    std::thread([event] {
        waitForEvent(event, longestWait);
        TerminateProcess(GetCurrentProcess(), 97);
    }).detach();
}

void writeLines(long count) {
    std::string lines;
    for (long line = 0; line < count; ++line) {
        lines += std::to_string(line) + "\r\n";
        if (lines.size() > 4000 || line + 1 == count) {
            std::fwrite(lines.data(), 1, lines.size(), stdout);
            std::fflush(stdout);
            lines.clear();
        }
    }
}

void writeForever() {
    while (std::puts("a line of a listing that has no end") >= 0 && std::fflush(stdout) == 0) {
    }
}

void writePipeSize() {
    DWORD outgoing = 0;
    DWORD incoming = 0;
    if (GetNamedPipeInfo(GetStdHandle(STD_OUTPUT_HANDLE), nullptr, &outgoing, &incoming, nullptr) !=
        0) {
        std::printf("%lu %lu", outgoing, incoming);
    }
}

void writeStartup() {
    STARTUPINFOA startup{};
    GetStartupInfoA(&startup);
    std::printf("%d %d", (startup.dwFlags & STARTF_USESTDHANDLES) != 0 ? 1 : 0,
                startup.hStdOutput == startup.hStdError ? 1 : 0);
}

void writeInput() {
    HANDLE const input = GetStdHandle(STD_INPUT_HANDLE);
    std::fputs(input == nullptr || input == INVALID_HANDLE_VALUE ? "none" : "some", stdout);
}

void writeVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    std::fputs(value != nullptr ? value : "(none)", stdout);
}

void writeFolder() {
    std::array<char, 1024> folder{};
    GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data());
    std::fputs(folder.data(), stdout);
}

/// Does what stands without a value; false when the word is none of these.
bool doWord(const std::string& word) {
    if (word == "forever") {
        writeForever();
    } else if (word == "pipes") {
        std::printf("%d", inheritedPipes());
    } else if (word == "pipe-size") {
        writePipeSize();
    } else if (word == "startup") {
        writeStartup();
    } else if (word == "input") {
        writeInput();
    } else if (word == "folder") {
        writeFolder();
    } else {
        return false;
    }
    std::fflush(stdout);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    _setmode(1, _O_BINARY);
    _setmode(2, _O_BINARY);
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::string value = i + 1 < argc ? argv[i + 1] : "";
        if (doWord(word)) {
            continue;
        }
        if (word == "text") {
            std::fwrite(value.data(), 1, value.size(), stdout);
        } else if (word == "error") {
            std::fwrite(value.data(), 1, value.size(), stderr);
        } else if (word == "lines") {
            writeLines(std::atol(value.c_str()));
        } else if (word == "bytes") {
            const std::string bytes(std::strtoul(value.c_str(), nullptr, 10), 'x');
            std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        } else if (word == "variable") {
            writeVariable(value);
        } else if (word == "sleep") {
            Sleep(static_cast<DWORD>(std::atol(value.c_str())));
        } else if (word == "signal" && std::ferror(stdout) == 0) {
            setEvent(value);
        } else if (word == "await") {
            if (!waitForEvent(value, longestWait)) {
                ExitProcess(96);
            }
        } else if (word == "until") {
            endAt(value);
        } else if (word == "leave") {
            leaveBehind(argv[0], value);
        } else if (word == "stay") {
            stay(value);
        } else if (word == "exit") {
            std::fflush(stdout);
            ExitProcess(static_cast<UINT>(std::strtoul(value.c_str(), nullptr, 0)));
        }
        std::fflush(stdout);
        ++i;
    }
    return 0;
}

// What zolex starts in the cases of tests/same-as: UTIL.BAT, hwdetect.exe and fakeraid in one. It
// notes how it was called and answers what the case has prepared. Linked statically and without
// streams, because it is started hundreds of thousands of times.
//
// SAME_AS_LOG names the file that gets one line a call: the arguments, and what the process was
// given (standard input, other descriptors, ignored signals). SAME_AS_ANSWERS names a folder:
//   calls     a line for each call in its order: exit code, letters, name of the answer ("-": by
//             the arguments). Further calls end with 0 and answer by the arguments.
//   the rest  answers, named by the arguments after the program with "_" for what is no letter,
//             digit, "." or "-".
// Letters: e writes a line to standard error, f writes 100,000 bytes first, k ends by a signal,
// h stays longer than any limit of a case, n prints nothing, s writes in two pieces.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string contentOf(int file) {
    std::string content;
    char buffer[65536];
    for (ssize_t n = read(file, buffer, sizeof buffer); n > 0;
         n = read(file, buffer, sizeof buffer)) {
        content.append(buffer, static_cast<std::size_t>(n));
    }
    return content;
}

void writeAll(int file, const char* data, std::size_t length) {
    while (length > 0) {
        const ssize_t n = write(file, data, length);
        if (n <= 0) {
            return;
        }
        data += n;
        length -= static_cast<std::size_t>(n);
    }
}

/// What zolex has handed down: the device on standard input, open descriptors, ignored signals.
std::string inheritance() {
    struct stat null = {};
    struct stat input = {};
    stat("/dev/null", &null);
    std::string text;
    text += fstat(0, &input) == 0 && input.st_rdev == null.st_rdev ? " null" : " input";
    for (int descriptor = 3; descriptor < 16; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0) {
            text += " fd" + std::to_string(descriptor);
        }
    }
    for (const int number : {SIGPIPE, SIGXFSZ, SIGCHLD, SIGINT}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) {
            text += " ignores" + std::to_string(number);
        }
    }
    return text;
}

/// Notes the call and returns how many there were before it.
long note(int argc, char** argv) {
    std::string line;
    for (int i = 0; i < argc; ++i) {
        line += '{';
        for (const char* c = argv[i]; *c != '\0'; ++c) {
            line += *c == '\n' ? '~' : *c;
        }
        line += '}';
    }
    line += inheritance() + "\n";
    const int log = open(std::getenv("SAME_AS_LOG"), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    long calls = 0;
    for (const char c : contentOf(log)) {
        calls += c == '\n' ? 1 : 0;
    }
    writeAll(log, line.data(), line.size());
    return calls;
}

std::string nameOf(int argc, char** argv) {
    std::string name;
    for (int i = 1; i < argc; ++i) {
        name += i > 1 ? "_" : "";
        for (const char* c = argv[i]; *c != '\0'; ++c) {
            const bool plain = (*c >= 'a' && *c <= 'z') || (*c >= 'A' && *c <= 'Z') ||
                               (*c >= '0' && *c <= '9') || *c == '.' || *c == '-';
            name += plain ? *c : '_';
        }
    }
    return name.substr(0, 200);
}

} // namespace

int main(int argc, char** argv) {
    const long call = note(argc, argv);
    if (chdir(std::getenv("SAME_AS_ANSWERS")) != 0) {
        return 99;
    }
    int code = 0;
    char letters[16] = "-";
    char answer[256] = "-";
    if (std::FILE* calls = std::fopen("calls", "r")) {
        for (long i = 0; i <= call; ++i) {
            if (std::fscanf(calls, "%d %15s %255s", &code, letters, answer) != 3) {
                code = 0;
                std::strcpy(letters, "-");
                std::strcpy(answer, "-");
                break;
            }
        }
        std::fclose(calls);
    }
    const std::string name = std::strcmp(answer, "-") == 0 ? nameOf(argc, argv) : answer;
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    const std::string text = file >= 0 ? contentOf(file) : "Done.\n";
    const auto has = [&letters](char letter) { return std::strchr(letters, letter) != nullptr; };
    if (has('e')) {
        writeAll(2, "A line on standard error.\n", 26);
    }
    if (has('f')) {
        std::string filler;
        for (int i = 0; i < 2000; ++i) {
            filler += "a line of filler, which tells nothing to nobody. \n";
        }
        writeAll(1, filler.data(), filler.size());
    }
    if (!has('n')) {
        const std::size_t first = has('s') ? text.size() / 2 : text.size();
        writeAll(1, text.data(), first);
        if (has('s')) {
            usleep(2000);
        }
        writeAll(1, text.data() + first, text.size() - first);
    }
    if (has('h')) {
        usleep(3000000);
    }
    if (has('k')) {
        std::raise(SIGTERM);
    }
    return code;
}

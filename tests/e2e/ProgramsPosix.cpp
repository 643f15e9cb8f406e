#ifndef _WIN32

#include "Programs.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zolex::e2e {

namespace {

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return result + "'";
}

/// What starts the tests may ignore or block signals, and what they start would inherit that: a
/// program that is asked to end would never do so.
const bool signalsAreUsual = [] {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) {
        static_cast<void>(::signal(signal, SIG_DFL));
    }
    sigset_t none;
    ::sigemptyset(&none);
    return ::sigprocmask(SIG_SETMASK, &none, nullptr) == 0;
}();

} // namespace

int runProgram(const ProgramStart& start) {
    std::string command = "cd " + quoted(start.folder.string()) + " && ";
    for (const auto& [name, value] : start.environment) {
        command += name + "=" + quoted(value) + " ";
    }
    if (::geteuid() == 0) {
        // A file that is read-only is so for users; root would write it all the same.
        command += "setpriv --bounding-set=-dac_override --inh-caps=-dac_override ";
    }
    command += quoted(start.program);
    for (const std::string& argument : start.arguments) {
        command += " " + quoted(argument);
    }
    command += " < " + quoted(start.input.string()) + " > " + quoted(start.output.string()) +
               " 2> " + quoted(start.error.string());
    for (const char stream : start.closed) {
        command += std::string(" ") + stream + (stream == '0' ? "<&-" : ">&-");
    }
    const int status = std::system(command.c_str()); // NOLINT(cert-env33-c)
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int processId() {
    return ::getpid();
}

LockedFile::LockedFile(const std::filesystem::path& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    locked_ = file_ >= 0 && ::flock(static_cast<int>(file_), LOCK_EX | LOCK_NB) == 0;
}

LockedFile::~LockedFile() {
    ::close(static_cast<int>(file_));
}

} // namespace zolex::e2e

#endif

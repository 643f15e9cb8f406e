#include "platform/posix/ProcessStart.h"

#include "foundation/EndingFiles.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zolex::posix {

namespace {

constexpr std::array<int, 2> ignoredSignals{SIGPIPE, SIGXFSZ};
constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

/// Those of ignoredSignals that had their default action. Dispositions belong to the process, and
/// so does what is known of them.
sigset_t& madeIgnored() {
    static sigset_t signals = [] {
        sigset_t none;
        ::sigemptyset(&none);
        return none;
    }();
    return signals;
}

bool hasDefaultAction(int signal) {
    struct sigaction action = {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

// Handlers call nothing that is not safe in them: unlink, stat, raise.

void removeFile(const char* name, EndingFile::Goes goes) {
    struct stat status = {};
    if (goes == EndingFile::Goes::always ||
        (::stat(name, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0)) {
        ::unlink(name);
    }
}

extern "C" void endBySignal(int signal) {
    EndingFile::forEach(removeFile);
    ::raise(signal); // with its default action again, once this handler has returned
}

void openStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) {
            continue;
        }
        // The lowest free descriptor, which this one is by now. What cannot be written takes its
        // place where there are no devices.
        const int access = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        if (::open("/dev/null", access) < 0) {
            ::open("/", O_RDONLY | O_DIRECTORY);
        }
    }
}

} // namespace

void prepareProcess() {
    openStandardStreams();
    for (const int signal : ignoredSignals) {
        if (hasDefaultAction(signal)) {
            ::sigaddset(&madeIgnored(), signal);
            struct sigaction action = {};
            action.sa_handler = SIG_IGN;
            ::sigaction(signal, &action, nullptr);
        }
    }
    struct sigaction action = {};
    action.sa_handler = endBySignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : endingSignals) {
        ::sigaddset(&action.sa_mask, signal);
    }
    for (const int signal : endingSignals) {
        if (hasDefaultAction(signal)) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

sigset_t signalsOfChildren() {
    return madeIgnored();
}

} // namespace zolex::posix

#include "companion/execution/posix/Processes.h"
#include "companion/execution/SystemParts.h"

#include "platform/posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace zolex::companion::system_execution {

namespace {

using zolex::posix::FileDescriptor;

/// The front of a file of the system; empty when it cannot be read.
std::string frontOf(const std::string& name) {
    const FileDescriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> buffer{};
    ssize_t taken = -1;
    do {
        taken = file.isOpen() ? ::read(file.get(), buffer.data(), buffer.size()) : -1;
    } while (taken < 0 && file.isOpen() && errno == EINTR);
    return taken > 0 ? std::string(buffer.data(), static_cast<std::size_t>(taken)) : std::string();
}

std::string_view firstWord(std::string_view text) {
    return text.substr(0, text.find_first_of(" \n"));
}

/// What tells this run of the system from others: a number since the start is counted anew in the
/// next one. Empty when the system does not tell.
std::string startOfSystem() {
    const std::string id = frontOf("/proc/sys/kernel/random/boot_id");
    return std::string(firstWord(id));
}

/// The columns of /proc/PID/stat that count here. The name of the program, in parentheses, may
/// itself hold blanks and parentheses.
constexpr std::size_t stateColumn = 3;
constexpr std::size_t threadsColumn = 20;
constexpr std::size_t startColumn = 22;

std::string_view column(std::string_view stat, std::size_t number) {
    const std::size_t name = stat.rfind(") ");
    if (name == std::string_view::npos) {
        return {};
    }
    stat.remove_prefix(name + 2);
    for (std::size_t i = stateColumn; i < number; ++i) {
        const std::size_t blank = stat.find(' ');
        if (blank == std::string_view::npos) {
            return {};
        }
        stat.remove_prefix(blank + 1);
    }
    return firstWord(stat);
}

/// A process that has ended and has not been asked for its exit code; one whose first thread alone
/// has ended goes on.
bool hasEnded(std::string_view stat) {
    const std::string_view state = column(stat, stateColumn);
    const std::string_view threads = column(stat, threadsColumn);
    return (state == "Z" || state == "X") && (threads == "0" || threads == "1");
}

std::string statOf(std::uint64_t pid) {
    return frontOf("/proc/" + std::to_string(pid) + "/stat");
}

std::string startOf(std::string_view stat) {
    const std::string_view start = column(stat, startColumn);
    return start.empty() ? std::string() : std::string(start) + "@" + startOfSystem();
}

} // namespace

ProcessIdentity identityOf(pid_t pid) {
    const auto number = static_cast<std::uint64_t>(pid);
    return {number, startOf(statOf(number))};
}

ProcessIdentity ownProcess() {
    return identityOf(::getpid());
}

bool isRunning(const ProcessIdentity& process) {
    // 0 and what is no number of a process would be groups.
    if (process.pid == 0 || process.pid > std::numeric_limits<pid_t>::max()) {
        return false;
    }
    const std::string stat = statOf(process.pid);
    if (stat.empty()) {
        // It may be hidden; then it is better taken to run.
        return ::kill(static_cast<pid_t>(process.pid), 0) == 0 || errno == EPERM;
    }
    const std::string start = startOf(stat);
    const bool isOther = !process.startedAt.empty() && !start.empty() && start != process.startedAt;
    return !isOther && !hasEnded(stat);
}

} // namespace zolex::companion::system_execution

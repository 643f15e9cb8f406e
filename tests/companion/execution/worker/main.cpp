// A process of the tests of makeSystemExecution. It does what its arguments say, in their order,
// and tells each result in a line of its own:
//   text T, error T    writes T to standard output or standard error, as it is
//   bytes N            writes N bytes
//   lines N MS         writes N numbered lines, MS milliseconds before each
//   exit CODE          ends with the code
//   heed, unheed       makes the ExecutionSystem, ends it
//   start LINE OUT     starts "UTIL.BAT WORKER LINE": "child PID START" or "not started"
//   wait MS            waits for it: "runs", or "ended CODE"
//   sleep MS           sleeps: "slept early" or "slept"
//   interrupted        "asked" or "none"
//   interrupt, interrupt-in MS  interrupts this process, at once or from beside
//   signal N           sends itself the signal
//   lock NAME          "locked", "locked after PID child PID", "held by PID child PID", "fault: F"
//   note PID           notes a child that is a process of this number
//   unlock             ends the lock
//   contend NAME N     locks N times, waiting for the others, and tells when two had it: "done"
//   without-locks      takes files as none that can be locked from here on
//   ending FILE        enters a file that goes when a signal ends the process
//   make FILE          makes an empty file
//   until FILE         waits until it is there
//   stay               waits to be killed
#include "companion/execution/SystemExecution.h"
#include "companion/execution/SystemParts.h"
#include "companion/machine/Utilities.h"
#include "foundation/EndingFiles.h"
#include "platform/Platform.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#endif

namespace {

using namespace zolex;
using namespace zolex::companion;
using std::chrono::milliseconds;

void interrupt() {
#ifdef _WIN32
    // What the system calls in a thread of its own for Ctrl+Break; emulators have no console here.
    auto* const routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernelbase.dll"), "CtrlRoutine")));
    HANDLE const thread = routine == nullptr
                              ? nullptr
                              : CreateThread(nullptr, 0, routine,
                                             reinterpret_cast<void*>(CTRL_BREAK_EVENT), 0, nullptr);
    if (thread == nullptr) {
        std::puts("cannot interrupt");
        return;
    }
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
#else
    std::raise(SIGTERM);
#endif
}

class Worker {
  public:
    explicit Worker(const char* program) : platform_(makeSystemPlatform()) {
        utilities_.named["WORKER"] = program;
    }

    int run(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            const std::string word = words[i];
            const std::string first = i + 1 < count ? words[i + 1] : "";
            const std::string second = i + 2 < count ? words[i + 2] : "";
            if (word == "exit") {
                return std::atoi(first.c_str());
            }
            if (doWord(word)) {
            } else if (doWordOfOne(word, first)) {
                i += 1;
            } else if (doWordOfTwo(word, first, second)) {
                i += 2;
            } else {
                std::printf("what is %s?\n", word.c_str());
                return 99;
            }
            std::fflush(stdout);
            std::fflush(stderr);
        }
        return 0;
    }

  private:
    static long numberOf(const std::string& text) { return std::atol(text.c_str()); }

    LockAnswer lock(const std::string& name) { return system_execution::takeLock(name, locks_); }

    bool doWord(const std::string& word) {
        if (word == "heed") {
            system_ = makeSystemExecution(*platform_, utilities_);
        } else if (word == "unheed") {
            system_.reset();
        } else if (word == "interrupted") {
            std::puts(system_->interruption() == Interruption::asked ? "asked" : "none");
        } else if (word == "interrupt") {
            interrupt();
        } else if (word == "unlock") {
            held_.lock.reset();
        } else if (word == "without-locks") {
            locks_ = system_execution::FileLocks::none;
        } else if (word == "stay") {
            std::fflush(stdout);
            std::fflush(stderr);
            std::this_thread::sleep_for(std::chrono::minutes(1));
        } else {
            return false;
        }
        return true;
    }

    bool doWordOfOne(const std::string& word, const std::string& value) {
        if (word == "text") {
            std::fputs(value.c_str(), stdout);
        } else if (word == "error") {
            std::fputs(value.c_str(), stderr);
        } else if (word == "bytes") {
            const std::string bytes(static_cast<std::size_t>(numberOf(value)), 'x');
            std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        } else if (word == "wait") {
            wait(milliseconds(numberOf(value)));
        } else if (word == "sleep") {
            const milliseconds time(numberOf(value));
            const milliseconds start = system_->elapsed();
            system_->sleep(time);
            std::puts(system_->elapsed() - start < time ? "slept early" : "slept");
        } else if (word == "interrupt-in") {
            std::thread([time = milliseconds(numberOf(value))] {
                std::this_thread::sleep_for(time);
                interrupt();
            }).detach();
        } else if (word == "signal") {
            std::raise(static_cast<int>(numberOf(value)));
        } else if (word == "lock") {
            held_ = lock(value);
            tellLock();
        } else if (word == "note") {
            held_.lock->note({std::strtoull(value.c_str(), nullptr, 10), {}});
        } else if (word == "make") {
            if (std::FILE* const made = std::fopen(value.c_str(), "w"); made != nullptr) {
                std::fclose(made);
            }
        } else if (word == "until") {
            waitForFile(value);
        } else if (word == "ending") {
            ending_.enter(value, EndingFile::Goes::always);
        } else {
            return false;
        }
        return true;
    }

    bool doWordOfTwo(const std::string& word, const std::string& first, const std::string& second) {
        if (word == "lines") {
            for (long line = 1; line <= numberOf(first); ++line) {
                std::this_thread::sleep_for(milliseconds(numberOf(second)));
                std::printf("%ld\n", line);
                std::fflush(stdout);
            }
        } else if (word == "start") {
            child_ = system_->start("UTIL.BAT WORKER " + first, second);
            const ProcessIdentity process = child_ ? child_->identity() : ProcessIdentity();
            std::printf(child_ ? "child %llu %s\n" : "not started\n",
                        static_cast<unsigned long long>(process.pid), process.startedAt.c_str());
        } else if (word == "contend") {
            contend(first, numberOf(second));
        } else {
            return false;
        }
        return true;
    }

    static void waitForFile(const std::string& name) {
        std::fflush(stdout);
        constexpr int aMinute = 6000;
        for (int i = 0; i < aMinute; ++i) {
            if (std::FILE* const file = std::fopen(name.c_str(), "r"); file != nullptr) {
                std::fclose(file);
                return;
            }
            std::this_thread::sleep_for(milliseconds(10));
        }
    }

    void wait(milliseconds limit) {
        const auto result = child_->wait(limit);
        if (!result) {
            std::puts("runs");
        } else {
            std::printf("%s %lu\n", result->outcome == ChildOutcome::ended ? "ended" : "lost",
                        static_cast<unsigned long>(result->exitCode));
        }
    }

    void tellLock() const {
        const auto holder = static_cast<unsigned long long>(held_.holder.pid);
        const auto child = static_cast<unsigned long long>(held_.child.pid);
        if (!held_.fault.empty()) {
            std::printf("fault: %s\n", held_.fault.c_str());
        } else if (!held_.lock) {
            std::printf("held by %llu child %llu\n", holder, child);
        } else if (holder != 0) {
            std::printf("locked after %llu child %llu\n", holder, child);
        } else {
            std::puts("locked");
        }
    }

    /// While one has the lock, a folder stands that nobody else can make.
    void contend(const std::string& name, long times) {
        const std::string inside = name + ".inside";
        for (long done = 0; done < times;) {
            const LockAnswer answer = lock(name);
            if (!answer.fault.empty()) {
                std::printf("fault: %s\n", answer.fault.c_str());
                return;
            }
            if (answer.lock) {
                std::FILE* const made = std::fopen(inside.c_str(), "wx");
                if (made == nullptr) {
                    std::puts("two have it");
                    return;
                }
                std::fclose(made);
                std::this_thread::sleep_for(std::chrono::microseconds(200));
                std::remove(inside.c_str());
                ++done;
            }
        }
        std::puts("done");
    }

    std::unique_ptr<Platform> platform_;
    Utilities utilities_;
    std::unique_ptr<ExecutionSystem> system_;
    std::unique_ptr<StartedChild> child_;
    LockAnswer held_;
    EndingFile ending_;
    system_execution::FileLocks locks_ = system_execution::FileLocks::ofSystem;
};

} // namespace

int main(int argc, char** argv) {
#ifdef _WIN32
    _setmode(1, _O_BINARY);
    _setmode(2, _O_BINARY);
    // A group of its own does not heed Ctrl+C; this is to be as one that a user has started.
    SetConsoleCtrlHandler(nullptr, FALSE);
#endif
    return Worker(argv[0]).run(argc, argv);
}

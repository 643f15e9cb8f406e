#pragma once

#include "companion/execution/ExecutionSystem.h"
#include "companion/families/Family.h"
#include "companion/support/SimulatedPlatform.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion::test {

/// The process has been killed. No exception of the program's: nothing but a test catches it.
struct Killed {};

/// What becomes of the children that run when their parent is killed.
enum class ChildFate {
    done,  ///< they have done their work by then
    gone,  ///< the machine lost its power before they did it
    later, ///< they are still at work
};

/// A system in memory over a virtual server, with a clock of its own: time passes only where
/// somebody waits. The process can be killed at any moment of its work; files, locks and children
/// stay as they are, and the next process finds them.
class SimulatedSystem : public ExecutionSystem {
  public:
    using Milliseconds = std::chrono::milliseconds;

    explicit SimulatedSystem(SimulatedPlatform& platform) : platform_(platform) {}

    // What a test sets.

    Milliseconds childTakes{700}; ///< each child
    std::string hanging;          ///< a child whose line has this never ends by itself
    std::string notStarted;       ///< a child whose line has this cannot be started
    std::string throwing;         ///< starting a child whose line has this throws bad_alloc
    bool isFolderLost = false;    ///< locks cannot be made
    std::function<ChildResult(const std::string& line)> work; ///< of a child; else the server's
    /// Told of each moment: "write begin", "written begin", "start LINE", "started", "wait",
    /// "ended", "sleep", "listing LINE". It may interrupt, change the server, throw.
    std::function<void(const std::string& moment)> onMoment;
    std::size_t killAt = 0; ///< number of the moment, from 1; 0: none
    ChildFate fate = ChildFate::done;
    bool isInterrupted = false;
    bool tellsStart = true; ///< when processes were started

    // What a test looks at.

    std::size_t moments = 0;
    std::vector<std::string> started; ///< command lines
    std::vector<Milliseconds> pauses; ///< what was slept
    bool ranWhenKilled = false;       ///< a child was at work when the process was killed

    std::set<std::string> folders; ///< of children that leave files, by their outputs

    struct LockFile {
        bool isHeld = false;
        ProcessIdentity holder;
        ProcessIdentity child;
    };
    std::map<std::string, LockFile> locks;

    /// A moment of the process.
    void moment(const std::string& what) {
        ++moments;
        if (onMoment) {
            const auto told = onMoment; // it may replace itself
            told(what);
        }
        if (moments == killAt) {
            kill();
        }
    }

    /// The process ends here.
    [[noreturn]] void kill() {
        isKilled_ = true;
        ranWhenKilled = !running().empty();
        for (Child& child : children_) {
            if (child.isRunning && fate == ChildFate::done) {
                finish(child);
            } else if (child.isRunning && fate == ChildFate::gone) {
                child.isRunning = false;
            }
        }
        for (auto& [name, lock] : locks) {
            lock.isHeld = lock.isHeld && lock.holder != own_;
        }
        throw Killed();
    }

    /// Another process begins.
    void restart() {
        isKilled_ = false;
        killAt = 0;
        moments = 0;
        isInterrupted = false;
        ++own_.pid;
        own_.startedAt = timeText();
    }

    /// Lets time pass.
    void pass(Milliseconds time) {
        const Milliseconds until = now_ + time;
        for (;;) {
            Child* next = nullptr;
            for (Child& child : children_) {
                if (child.isRunning && child.endsAt <= until &&
                    (next == nullptr || child.endsAt < next->endsAt)) {
                    next = &child;
                }
            }
            if (next == nullptr) {
                break;
            }
            now_ = std::max(now_, next->endsAt);
            finish(*next);
        }
        now_ = until;
    }

    /// A child that never ends by itself comes to its end all the same.
    void endHanging() {
        for (Child& child : children_) {
            if (child.isRunning && child.endsAt == Milliseconds::max()) {
                child.endsAt = now_;
            }
        }
        pass(Milliseconds(0));
    }

    /// The lines of the children that run.
    [[nodiscard]] std::vector<std::string> running() const {
        std::vector<std::string> lines;
        for (const Child& child : children_) {
            if (child.isRunning) {
                lines.push_back(child.line);
            }
        }
        return lines;
    }

    // ExecutionSystem.

    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        const std::string line(commandLine);
        moment("start " + line);
        if (!throwing.empty() && line.find(throwing) != std::string::npos) {
            throw std::bad_alloc();
        }
        if (!notStarted.empty() && line.find(notStarted) != std::string::npos) {
            return nullptr;
        }
        Child child;
        child.identity = {nextPid_++, timeText()};
        child.line = line;
        child.output = output;
        const bool hangs = !hanging.empty() && line.find(hanging) != std::string::npos;
        child.endsAt = hangs ? Milliseconds::max() : now_ + childTakes;
        auto handle = std::make_unique<Handle>(*this, children_.size());
        platform_.fileFake.files[output] = "";
        if (const Family* const family = findFamily(line);
            family != nullptr && family->leavesFiles(line)) {
            folders.insert(output);
        }
        children_.reserve(children_.size() + 1);
        started.push_back(line);
        children_.push_back(std::move(child)); // it runs from now on
        moment("started");
        return handle;
    }
    void removeFolder(const std::string& output) override { folders.erase(output); }
    [[nodiscard]] ProcessIdentity ownProcess() override { return own_; }
    [[nodiscard]] bool isRunning(const ProcessIdentity& process) override {
        return process == own_ ||
               std::any_of(children_.begin(), children_.end(), [&](const Child& child) {
                   return child.isRunning && child.identity == process;
               });
    }
    [[nodiscard]] Interruption interruption() override {
        return isInterrupted ? Interruption::asked : Interruption::none;
    }
    void sleep(Milliseconds time) override {
        moment("sleep");
        pauses.push_back(time);
        pass(time);
    }
    [[nodiscard]] Milliseconds elapsed() override { return now_; }
    [[nodiscard]] std::string timestamp() override { return "2026-11-21T21:05:00+01:00"; }
    [[nodiscard]] std::string userName() override { return "operator"; }

    LockAnswer lock(const std::string& name) override {
        moment("lock " + name);
        LockAnswer answer;
        if (isFolderLost) {
            answer.fault = "no such folder";
            return answer;
        }
        if (const auto file = locks.find(name); file != locks.end()) {
            answer.holder = file->second.holder;
            answer.child = file->second.child;
            if (file->second.isHeld) {
                return answer;
            }
        }
        answer.lock = std::make_unique<Lock>(*this, name);
        locks[name] = {true, own_, {}};
        return answer;
    }

    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        moment("make " + name);
        if (platform_.fileFake.exists(name)) {
            return nullptr;
        }
        platform_.fileFake.files[name] = "";
        return std::make_unique<Durable>(*this, name);
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        moment("reopen " + name);
        if (!platform_.fileFake.exists(name)) {
            return nullptr;
        }
        platform_.fileFake.files[name].resize(keep);
        return std::make_unique<Durable>(*this, name);
    }
    [[nodiscard]] std::string commonFolder() override { return "/tmp"; }
    [[nodiscard]] bool isLostAtRestart(const std::string& /*file*/) override { return false; }

    bool failsAppend = false; ///< nothing can be appended to files any more

  private:
    struct Child {
        ProcessIdentity identity;
        std::string line;
        std::string output; ///< file
        Milliseconds endsAt{0};
        bool isRunning = true;
        ChildResult result;
    };

    class Handle : public StartedChild {
      public:
        Handle(SimulatedSystem& system, std::size_t index) : system_(system), index_(index) {}
        [[nodiscard]] ProcessIdentity identity() const override { return child().identity; }
        [[nodiscard]] std::optional<ChildResult> wait(Milliseconds limit) override {
            system_.moment("wait");
            const Milliseconds left = child().endsAt - system_.now_;
            system_.pass(std::min(limit, left));
            if (child().isRunning) {
                return std::nullopt;
            }
            system_.moment("ended");
            return child().result;
        }
        [[nodiscard]] std::string outputSoFar(std::size_t most) override {
            return system_.platform_.fileFake.files[child().output].substr(0, most);
        }

      private:
        [[nodiscard]] const Child& child() const { return system_.children_[index_]; }
        SimulatedSystem& system_;
        std::size_t index_;
    };

    class Lock : public RunLock {
      public:
        Lock(SimulatedSystem& system, std::string name) : system_(system), name_(std::move(name)) {}
        ~Lock() override {
            const auto file = system_.locks.find(name_);
            if (system_.isKilled_ || file == system_.locks.end()) {
                return;
            }
            file->second.isHeld = false;
            if (file->second.child.pid == 0) {
                system_.locks.erase(file);
            }
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        void note(const ProcessIdentity& child) override { system_.locks[name_].child = child; }

      private:
        SimulatedSystem& system_;
        std::string name_;
    };

    class Durable : public DurableFile {
      public:
        Durable(SimulatedSystem& system, std::string name)
            : system_(system), name_(std::move(name)) {}
        [[nodiscard]] bool append(std::string_view bytes) override {
            system_.moment("append");
            if (system_.failsAppend) {
                return false;
            }
            system_.platform_.fileFake.files[name_] += bytes;
            system_.moment("appended");
            return true;
        }

      private:
        SimulatedSystem& system_;
        std::string name_;
    };

    void finish(Child& child) {
        child.isRunning = false;
        child.result = work ? work(child.line) : platform_.play(child.line);
        platform_.fileFake.files[child.output] = child.result.output;
    }
    [[nodiscard]] std::string timeText() const {
        return tellsStart ? "at " + std::to_string(now_.count()) : "";
    }

    SimulatedPlatform& platform_;
    Milliseconds now_{1000};
    bool isKilled_ = false;
    ProcessIdentity own_{100, "at 0"};
    std::uint64_t nextPid_ = 4711;
    std::vector<Child> children_;
};

} // namespace zolex::companion::test

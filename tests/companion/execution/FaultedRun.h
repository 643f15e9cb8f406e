#pragma once

#include "companion/execution/Apply.h"
#include "companion/json/JournalFile.h"
#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/Rehearse.h"
#include "foundation/AllocationFaults.h"
#include "support/FaultPlatform.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion::test {

/// What a run asks of the system that changes a machine, and what may fail there.
enum class SystemOperation {
    start,       ///< a command cannot be started
    refuse,      ///< it ends with an exit code that nobody accepts, and has done nothing
    refuseDone,  ///< the same, and it has done its work
    lie,         ///< it ends with 0, and has done nothing
    lose,        ///< nobody learns how it ended: its limit is over
    lock,        ///< a lock cannot be had
    make,        ///< a file cannot be made durable
    append,      ///< nothing of a line reaches the disk
    appendInPart ///< half of it does
};
inline constexpr std::size_t systemOperations = 9;

struct SystemFault {
    SystemOperation operation = SystemOperation::start;
    int number = 0;       ///< from 1; 0: none fails
    bool lasting = false; ///< the calls of this kind after it fail too
};

/// A system over a virtual server whose calls are counted and fail on demand. Its files are in
/// memory; time passes when somebody waits.
class FaultedSystem : public ExecutionSystem {
  public:
    FaultedSystem(SimulatedPlatform& machine, SystemFault fault)
        : machine_(machine), fault_(fault) {}

    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        const zolex::test::UncountedAllocations uncounted;
        if (fails(SystemOperation::start)) {
            return nullptr;
        }
        const std::string line(commandLine);
        started.push_back(line);
        ChildResult result;
        if (fails(SystemOperation::refuse)) {
            result = zolex::test::FakePlatform::ended(zolex::test::refusedExitCode, "busy\n");
        } else if (fails(SystemOperation::lie)) {
            result = zolex::test::FakePlatform::ended(0, "");
        } else {
            result = machine_.play(line);
            if (fails(SystemOperation::refuseDone)) {
                result.exitCode = zolex::test::refusedExitCode;
            }
        }
        machine_.fileFake.files[output] = result.output;
        running_ = {++lastPid_, "then"};
        return std::make_unique<Child>(*this, std::move(result), running_);
    }

    void removeFolder(const std::string& /*output*/) override {}
    ProcessIdentity ownProcess() override { return {4700, "now"}; }
    /// What nobody has waited for ends some seconds later.
    bool isRunning(const ProcessIdentity& process) override {
        return process == running_ && --secondsLeft_ > 0;
    }
    Interruption interruption() override { return Interruption::none; }
    void sleep(std::chrono::milliseconds time) override { now_ += time; }
    std::chrono::milliseconds elapsed() override { return now_; }
    std::string timestamp() override { return "2026-11-21T21:05:00+00:00"; }
    std::string userName() override { return "root"; }

    LockAnswer lock(const std::string& name) override {
        LockAnswer answer;
        if (fails(SystemOperation::lock)) {
            answer.fault = "no space is left";
            return answer;
        }
        const zolex::test::UncountedAllocations uncounted;
        answer.lock = std::make_unique<Lock>();
        (void)name;
        return answer;
    }
    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        const zolex::test::UncountedAllocations uncounted;
        if (fails(SystemOperation::make) || durable.count(name) != 0) {
            return nullptr;
        }
        durable[name];
        return std::make_unique<File>(*this, name);
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        const zolex::test::UncountedAllocations uncounted;
        if (fails(SystemOperation::make) || durable.count(name) == 0) {
            return nullptr;
        }
        durable[name].resize(keep);
        return std::make_unique<File>(*this, name);
    }
    std::string commonFolder() override { return "/tmp"; }
    bool isLostAtRestart(const std::string& file) override {
        (void)file;
        return false;
    }

    [[nodiscard]] int calls(SystemOperation operation) const {
        return calls_[static_cast<std::size_t>(operation)];
    }

    std::map<std::string, std::string> durable; ///< the files
    std::vector<std::string> started;           ///< command lines, in order

  private:
    class Child : public StartedChild {
      public:
        Child(FaultedSystem& system, ChildResult result, ProcessIdentity identity)
            : system_(system), result_(std::move(result)), identity_(std::move(identity)),
              isLost_(system.fails(SystemOperation::lose)) {}
        [[nodiscard]] ProcessIdentity identity() const override { return identity_; }
        std::optional<ChildResult> wait(std::chrono::milliseconds limit) override {
            const zolex::test::UncountedAllocations uncounted;
            system_.now_ += isLost_ ? limit : std::chrono::milliseconds(1);
            if (isLost_) {
                return std::nullopt;
            }
            system_.running_ = {};
            return result_;
        }
        std::string outputSoFar(std::size_t most) override {
            const zolex::test::UncountedAllocations uncounted;
            return result_.output.substr(0, most);
        }

      private:
        FaultedSystem& system_;
        ChildResult result_;
        ProcessIdentity identity_;
        bool isLost_;
    };

    class Lock : public RunLock {
      public:
        void note(const ProcessIdentity& child) override { (void)child; }
    };

    class File : public DurableFile {
      public:
        File(FaultedSystem& system, std::string name) : system_(system), name_(std::move(name)) {}
        bool append(std::string_view bytes) override {
            const zolex::test::UncountedAllocations uncounted;
            const bool inPart = system_.fails(SystemOperation::appendInPart);
            if (inPart) {
                system_.durable[name_] += bytes.substr(0, bytes.size() / 2);
            }
            if (inPart || system_.fails(SystemOperation::append)) {
                return false;
            }
            system_.durable[name_] += bytes;
            return true;
        }

      private:
        FaultedSystem& system_;
        std::string name_;
    };

    bool fails(SystemOperation operation) {
        const int call = ++calls_[static_cast<std::size_t>(operation)];
        return fault_.number > 0 && operation == fault_.operation &&
               (call == fault_.number || (fault_.lasting && call > fault_.number));
    }

    SimulatedPlatform& machine_;
    SystemFault fault_;
    std::array<int, systemOperations> calls_{};
    std::chrono::milliseconds now_{0};
    std::uint64_t lastPid_ = 4710;
    ProcessIdentity running_;
    int secondsLeft_ = 3;
};

/// Agrees to everything, and keeps what it is told.
class AgreeingListener : public ApplyListener {
  public:
    void isAsPlannedFor(const Snapshot& guard) override { (void)guard; }
    ConsentAnswer askConsent(const MachinePlan& plan, const std::vector<Loss>& losses) override {
        (void)plan;
        (void)losses;
        ++asked;
        return {true, "any", {}, {}};
    }
    void happened(const JournalEvent& event) override { (void)event; }
    void stillWaiting(const PlanStep& step, const ProcessIdentity& child,
                      std::chrono::milliseconds since) override {
        (void)step;
        (void)child;
        (void)since;
    }
    void note(const std::string& text) override { (void)text; }

    int asked = 0;
};

inline constexpr const char* journalName = "plan.journal.jsonl";

/// A journal whose writing needs no memory of the run: what makes its lines ends the process where
/// there is none, as a kill does.
class UncountedJournal : public JournalKeeper {
  public:
    explicit UncountedJournal(std::unique_ptr<JournalKeeper> journal)
        : journal_(std::move(journal)) {}
    bool write(const JournalEvent& event) override {
        const zolex::test::UncountedAllocations uncounted;
        return journal_->write(event);
    }

  private:
    std::unique_ptr<JournalKeeper> journal_;
};

/// A virtual server with a plan for it, applied and gone on with.
class FaultedRun {
  public:
    /// `policies` of the server's samples; what stands before is made by `before`.
    explicit FaultedRun(std::string_view sample) : server(sample) {}

    /// Plans, and rehearses.
    void plan(const std::string& policies, StrategyWish wish) {
        const Snapshot snapshot = server.snapshot();
        plan_ = server.plan(policies, wish);
        rehearse(snapshot, plan_);
    }
    [[nodiscard]] const MachinePlan& plan() const { return plan_; }
    void setPlan(const MachinePlan& plan) { plan_ = plan; }

    ApplyEnd apply(FaultedSystem& system, Platform& machine) {
        AgreeingListener listener;
        ApplyTerms terms = termsOf(system);
        terms.openJournal = [&system]() -> std::unique_ptr<JournalKeeper> {
            auto file = system.makeDurable(journalName);
            const zolex::test::UncountedAllocations uncounted;
            return file == nullptr
                       ? nullptr
                       : std::make_unique<UncountedJournal>(std::make_unique<JournalFile>(
                             std::move(file), [&system] { return system.timestamp(); }));
        };
        terms.dropJournal = [&system] { system.durable.erase(journalName); };
        return applyPlan(machine, {}, system, plan_, terms, listener);
    }

    /// Nothing, when the journal has no whole line.
    std::optional<ApplyEnd> resume(FaultedSystem& system, Platform& machine) {
        JournalReading reading = readJournal(system.durable[journalName], journalName);
        if (!reading.journal) {
            unreadable = reading.findings.empty() ? "?" : reading.findings.front().summary;
            return std::nullopt;
        }
        const JournalHistory history = std::move(*reading.journal);
        AgreeingListener listener;
        ApplyTerms terms = termsOf(system);
        terms.openJournal = [&system, &history]() -> std::unique_ptr<JournalKeeper> {
            auto file = system.reopenDurable(journalName, history.bytes);
            return file == nullptr
                       ? nullptr
                       : std::make_unique<JournalFile>(
                             std::move(file), [&system] { return system.timestamp(); }, history);
        };
        return resumePlan(machine, {}, system, plan_, history, terms, listener);
    }

    /// What stands on the server, for comparing, in whatever order it was made.
    [[nodiscard]] std::string stands() const {
        std::string text;
        std::vector<std::string> volumes;
        for (const zolex_sim::Controller& controller : server.platform.server.controllers) {
            for (const zolex_sim::Drive& drive : controller.drives) {
                text += toText(drive.location) + " " + std::string(statusWord(drive.status)) + "\n";
            }
            for (const zolex_sim::LogicalDrive& drive : controller.logicalDrives) {
                std::string volume = "LD " + std::to_string(static_cast<int>(drive.level)) + " " +
                                     std::to_string(drive.sizeMb) + " " +
                                     std::to_string(drive.stripeKb);
                for (const auto& span : controller.arrays[drive.array].spans) {
                    volume += " " + toText(span);
                }
                volumes.push_back(volume + "\n");
            }
        }
        std::sort(volumes.begin(), volumes.end());
        for (const std::string& volume : volumes) {
            text += volume;
        }
        return text;
    }

    PlannedServer server;
    std::string unreadable; ///< why the journal could not be read

  private:
    [[nodiscard]] ApplyTerms termsOf(FaultedSystem& system) const {
        (void)system;
        ApplyTerms terms;
        terms.planHash = std::string(64, '5');
        terms.planFile = "plan.json";
        terms.toolVersion = "1.0";
        terms.journalFile = journalName;
        terms.lockFile = "plan.json.lock";
        terms.settle = std::chrono::milliseconds(0);
        return terms;
    }

    MachinePlan plan_;
};

} // namespace zolex::companion::test

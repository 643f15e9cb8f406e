#pragma once

#include "companion/execution/Apply.h"
#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/support/SimulatedSystem.h"
#include "foundation/AllocationFaults.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zolex::companion::test {

using Lines = std::vector<std::string>;

// Policies files of the runs.
inline constexpr const char* onePolicy = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n";
inline constexpr const char* twoArrays = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                         "Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 6\n"
                                         "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n"
                                         "Logical.2 = B:FILL:5\n";
inline constexpr const char* otherArrays = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                           "Array.A = 1,2,3\nArray.B = 4,5\nHotspares = 6\n"
                                           "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:5\n"
                                           "Logical.2 = B:FILL:1\n";

/// A journal in memory, as it stands on the disk.
struct JournalDisk {
    std::vector<JournalEntry> entries;
    bool isThere = false;

    [[nodiscard]] JournalHistory history() const {
        JournalHistory history;
        history.file = "plan.journal.jsonl";
        history.entries = entries;
        return history;
    }
};

/// How the writing of an event fails.
enum class WriteFault { none, refused, thrown };

/// An event for eyes: "step-ended 2 accepted".
inline std::string eventText(const JournalEvent& event) {
    std::string text(journalEventWord(event));
    if (const auto* captured = std::get_if<JournalCaptured>(&event)) {
        text += " " + std::string(capturePurposeWord(captured->purpose));
    } else if (const auto* started = std::get_if<JournalStepStarted>(&event)) {
        text += " " + std::to_string(started->step) +
                (started->attempt > 1 ? " attempt " + std::to_string(started->attempt) : "");
    } else if (const auto* child = std::get_if<JournalChild>(&event)) {
        text += " " + std::to_string(child->step);
    } else if (const auto* ended = std::get_if<JournalStepEnded>(&event)) {
        text += " " + std::to_string(ended->step) +
                (ended->outcome == ChildOutcome::stillRunning ? " not seen"
                 : ended->outcome == ChildOutcome::notStarted ? " not started"
                 : ended->accepted                            ? " accepted"
                                   : " refused " + std::to_string(ended->exitCode));
    } else if (const auto* found = std::get_if<JournalStepFoundDone>(&event)) {
        text += " " + std::to_string(found->step);
    } else if (const auto* verified = std::get_if<JournalVerified>(&event)) {
        text += " " + std::string(verifiedWord(verified->result));
    } else if (const auto* end = std::get_if<JournalEnd>(&event)) {
        text += " " + std::to_string(end->exitCode);
    }
    return text;
}

/// Everything that a run is told.
class ListenerFake : public ApplyListener {
  public:
    void isAsPlannedFor(const Snapshot& /*guard*/) override { log.emplace_back("as planned for"); }
    ConsentAnswer askConsent(const MachinePlan& /*plan*/,
                             const std::vector<Loss>& losses) override {
        log.push_back("asked: " + std::to_string(losses.size()));
        if (whenAsked) {
            whenAsked();
        }
        return answer;
    }
    void happened(const JournalEvent& event) override {
        if (const auto* started = std::get_if<JournalStepStarted>(&event)) {
            steps.push_back(started->step);
        }
        if (throwsAt == journalEventWord(event)) {
            throw std::bad_alloc();
        }
    }
    void stillWaiting(const PlanStep& step, const ProcessIdentity& child,
                      std::chrono::milliseconds since) override {
        log.push_back("still waiting: step " + std::to_string(step.step) + ", pid " +
                      std::to_string(child.pid) + ", " + std::to_string(since.count()) + " ms");
    }
    void note(const std::string& text) override { log.push_back(text); }

    ConsentAnswer answer{true, "option", "", {}};
    std::function<void()> whenAsked; ///< what happens meanwhile
    Lines log;
    std::vector<std::int32_t> steps; ///< that were begun
    std::string throwsAt;            ///< word of an event
};

/// A virtual server, a plan for it, and runs of that plan.
class ApplyBench {
  public:
    explicit ApplyBench(std::string_view sample) : server(sample), system(server.platform) {
        const auto play = server.platform.respond;
        server.platform.respond = [this, play](const std::string& line) {
            system.moment("listing " + line);
            const zolex::test::UncountedAllocations uncounted;
            return play(line);
        };
        system.work = [this](const std::string& line) {
            const zolex::test::UncountedAllocations uncounted;
            return server.platform.play(line);
        };
        terms.planHash = "hash of the plan";
        terms.planFile = "plan.json";
        terms.toolVersion = "1";
        terms.journalFile = "plan.journal.jsonl";
        terms.lockFile = "plan.json.lock";
        terms.openJournal = [this]() -> std::unique_ptr<JournalKeeper> {
            system.moment("open");
            if (isJournalRefused) {
                return nullptr;
            }
            auto keeper = std::make_unique<Keeper>(*this);
            disk.isThere = true;
            return keeper;
        };
        terms.dropJournal = [this] { disk = {}; };
        capture = server.request();
        capture.limit = std::chrono::seconds(300);
    }
    ApplyBench(const ApplyBench&) = delete;
    ApplyBench& operator=(const ApplyBench&) = delete;

    /// Plans for the server as it stands; rehearsed, unless told otherwise.
    void makePlan(const std::string& policies, StrategyWish wish = StrategyWish::automatic,
                  bool isRehearsed = true) {
        const Snapshot snapshot = server.snapshot();
        plan = server.plan(policies, wish);
        if (isRehearsed) {
            rehearse(snapshot, plan);
        }
        plan.id = "p-000000000001";
        plan.command = "zolexctl plan site.ini";
        system.moments = 0;
        server.platform.children.clear();
    }

    ApplyEnd apply() { return applyPlan(server.platform, capture, system, plan, terms, listener); }
    ApplyEnd resume() {
        const JournalHistory history = disk.history();
        return resumePlan(server.platform, capture, system, plan, history, terms, listener);
    }

    [[nodiscard]] Lines events() const {
        Lines lines;
        for (const JournalEntry& entry : disk.entries) {
            lines.push_back(eventText(entry.event));
        }
        return lines;
    }
    template <typename Event>
    [[nodiscard]] std::vector<Event> eventsOf() const {
        std::vector<Event> found;
        for (const JournalEntry& entry : disk.entries) {
            if (const auto* event = std::get_if<Event>(&entry.event)) {
                found.push_back(*event);
            }
        }
        return found;
    }

    /// "controller 1: RAID1 fill: 32:0 32:1": what stands.
    [[nodiscard]] Lines layout() {
        Lines lines;
        const auto held = std::exchange(system.onMoment, nullptr);
        const std::size_t kill = std::exchange(system.killAt, 0);
        const Snapshot snapshot = server.snapshot();
        for (const ControllerSnapshot& controller : snapshot.details) {
            for (const std::string& line : layoutLines(capturedLayout(controller.facts))) {
                lines.push_back("controller " + std::to_string(controller.number) + ": " + line);
            }
        }
        system.onMoment = held;
        system.killAt = kill;
        return lines;
    }

    PlannedServer server;
    SimulatedSystem system;
    ListenerFake listener;
    ApplyTerms terms;
    CaptureRequest capture;
    MachinePlan plan;
    JournalDisk disk;
    bool isJournalRefused = false;
    std::size_t writesUntilFault = 0; ///< 1: the next write fails; 0: none
    WriteFault fault = WriteFault::refused;

  private:
    class Keeper : public JournalKeeper {
      public:
        explicit Keeper(ApplyBench& bench) : bench_(bench) {}
        [[nodiscard]] bool write(const JournalEvent& event) override {
            const std::string text = eventText(event);
            bench_.system.moment("write " + text);
            if (bench_.writesUntilFault > 0 && --bench_.writesUntilFault == 0) {
                if (bench_.fault == WriteFault::thrown) {
                    throw std::bad_alloc();
                }
                return false;
            }
            std::vector<JournalEntry>& entries = bench_.disk.entries;
            entries.push_back({entries.size() + 1, bench_.system.timestamp(), event});
            bench_.system.moment("written " + text);
            return true;
        }

      private:
        ApplyBench& bench_;
    };
};

/// What a run ended with: exit code, what, details, help, results.
inline Lines endLines(const ApplyEnd& end) {
    Lines lines = {std::to_string(end.exitCode) + ": " + end.what};
    for (const std::string& detail : end.details) {
        lines.push_back("  " + detail);
    }
    for (const std::string& help : end.help) {
        lines.push_back("help: " + help);
    }
    for (const ControllerResult& result : end.results) {
        std::string line = "controller " + std::to_string(result.number) + ": " +
                           std::string(controllerResultWord(result.result));
        if (result.result == ControllerResult::Result::failed) {
            line += " step " + std::to_string(result.step) + " of " + std::to_string(result.of);
        }
        lines.push_back(line + (result.reason.empty() ? "" : ": " + result.reason));
    }
    return lines;
}

} // namespace zolex::companion::test

// Every call that a run makes of the system fails once, and from then on: the run ends with a
// documented exit code, nothing was changed that the journal does not tell, and going on ends as
// planned or says why not.

#include "companion/execution/FaultedRun.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using test::FaultedRun;
using test::FaultedSystem;
using test::SystemFault;
using test::SystemOperation;
using zolex::test::FaultPlatform;
using zolex::test::Operation;

/// Servers of all utilities; what stands before is what zolex makes without policies.
class ApplyFaults : public testing::TestWithParam<const char*> {
  protected:
    ApplyFaults() {
        FaultedRun whole(GetParam());
        policies = whole.server.samplePolicies();
        whole.server.platform.server = start();
        before = whole.stands();
        whole.plan(policies, StrategyWish::rebuild);
        plan = whole.plan();
        FaultedSystem system(whole.server.platform, {});
        FaultPlatform machine(whole.server.platform, {});
        const ApplyEnd end = whole.apply(system, machine);
        EXPECT_EQ(end.exitCode, 0) << end.what;
        planned = whole.stands();
        journal = system.durable[test::journalName];
    }

    /// The server as it is before the run.
    [[nodiscard]] zolex_sim::Server start() const {
        test::PlannedServer server(GetParam());
        const char* const words[] = {"zolex", "/r", "/y", "/d"};
        EXPECT_EQ(ZOLEX::run(4, words, server.platform), 0);
        return server.platform.server;
    }

    struct Counted {
        bool struck = false;
        int exitCode = -1;
    };

    /// Runs with this fault, and looks at all that is left.
    Counted runWith(SystemFault systemFault, zolex::test::Fault platformFault) {
        FaultedRun run(GetParam());
        run.server.platform.server = first_;
        run.setPlan(plan);
        FaultedSystem system(run.server.platform, systemFault);
        FaultPlatform machine(run.server.platform, platformFault);
        const ApplyEnd end = run.apply(system, machine);
        Counted counted;
        counted.struck = systemFault.number > 0
                             ? system.calls(systemFault.operation) >= systemFault.number
                             : machine.calls(platformFault.operation) >= platformFault.number;
        counted.exitCode = end.exitCode;
        expectTrue(run, system, end);
        return counted;
    }

    /// What the end says is so.
    void expectTrue(FaultedRun& run, FaultedSystem& system, const ApplyEnd& end) {
        const std::string stands = run.stands();
        const bool hasJournal = system.durable.count(test::journalName) != 0;
        const std::string& text = system.durable[test::journalName];
        std::size_t told = 0;
        for (std::size_t at = text.find("\"step-started\""); at != std::string::npos;
             at = text.find("\"step-started\"", at + 1)) {
            ++told;
        }
        EXPECT_LE(system.started.size(), told) << "a command that the journal does not tell";
        switch (end.exitCode) {
        case 0:
            EXPECT_EQ(stands, planned);
            EXPECT_TRUE(end.isVerified);
            return;
        case 2:
        case 3:
            EXPECT_EQ(stands, before);
            EXPECT_TRUE(system.started.empty()) << "something was started";
            EXPECT_FALSE(end.changedSomething);
            EXPECT_FALSE(hasJournal && !text.empty()) << text;
            break;
        case 4:
        case 5:
            EXPECT_TRUE(hasJournal);
            break;
        default:
            ADD_FAILURE() << "exit code " << end.exitCode;
        }
        EXPECT_FALSE(end.what.empty());
        if (end.what.find("memory") == std::string::npos) {
            EXPECT_FALSE(end.help.empty()) << end.what;
        }
        if (end.exitCode >= 4) {
            goOn(run, system);
        }
    }

    /// Without faults it goes on to the planned layout, or says why not, and a new plan leads
    /// there.
    void goOn(FaultedRun& run, FaultedSystem& system) {
        FaultedSystem sound(run.server.platform, {});
        sound.durable = system.durable;
        FaultPlatform machine(run.server.platform, {});
        const std::optional<ApplyEnd> end = run.resume(sound, machine);
        ASSERT_TRUE(end) << run.unreadable << "\n" << sound.durable[test::journalName];
        if (end->exitCode == 0) {
            EXPECT_EQ(run.stands(), planned);
            ++resumed_;
            return;
        }
        EXPECT_TRUE(end->exitCode == 4 || end->exitCode == 5) << end->exitCode << end->what;
        EXPECT_FALSE(end->what.empty());
        EXPECT_FALSE(end->help.empty()) << end->what;
        ++told_;
        FaultedRun anew(GetParam());
        anew.server.platform.server = run.server.platform.server;
        anew.plan(policies, StrategyWish::automatic);
        if (anew.plan().steps().empty()) {
            EXPECT_EQ(anew.stands(), planned);
            return;
        }
        FaultedSystem next(anew.server.platform, {});
        FaultPlatform nextMachine(anew.server.platform, {});
        const ApplyEnd last = anew.apply(next, nextMachine);
        EXPECT_EQ(last.exitCode, 0) << last.what;
        EXPECT_EQ(anew.stands(), planned);
    }

    void SetUp() override { first_ = start(); }
    void tell(const char* what, int count) const {
        std::printf("%s: %d %s faults, %d gone on with, %d told\n", GetParam(), count, what,
                    resumed_, told_);
        EXPECT_GT(count, 0);
    }

    std::string policies;
    std::string before;
    std::string planned;
    std::string journal;
    MachinePlan plan;
    zolex_sim::Server first_;
    int resumed_ = 0;
    int told_ = 0;
};

constexpr SystemOperation systemKinds[] = {
    SystemOperation::start, SystemOperation::refuse, SystemOperation::refuseDone,
    SystemOperation::lie,   SystemOperation::lose,   SystemOperation::lock,
    SystemOperation::make,  SystemOperation::append, SystemOperation::appendInPart};

TEST_P(ApplyFaults, OfTheSystemThatChangesAMachine) {
    int faults = 0;
    for (const bool lasting : {false, true}) {
        for (const SystemOperation operation : systemKinds) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(GetParam()) + ", operation " +
                             std::to_string(static_cast<int>(operation)) + ", call " +
                             std::to_string(n) + (lasting ? " and all behind it" : ""));
                const Counted counted = runWith({operation, n, lasting}, {});
                if (!counted.struck) {
                    EXPECT_EQ(counted.exitCode, 0);
                    EXPECT_GT(n, 1);
                    break;
                }
                ++faults;
                // Nothing was lost where a command that was not run had nothing to do.
                if (operation != SystemOperation::lie) {
                    EXPECT_NE(counted.exitCode, 0);
                }
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    tell("system", faults);
}

TEST_P(ApplyFaults, OfCapturesAndFiles) {
    int faults = 0;
    for (const bool lasting : {false, true}) {
        for (const Operation operation :
             {Operation::start, Operation::limit, Operation::exitCode, Operation::pipe,
              Operation::handles, Operation::open, Operation::read, Operation::remove}) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(GetParam()) + ", platform's operation " +
                             std::to_string(static_cast<int>(operation)) + ", call " +
                             std::to_string(n) + (lasting ? " and all behind it" : ""));
                const Counted counted = runWith({}, {operation, n, lasting});
                if (!counted.struck) {
                    EXPECT_EQ(counted.exitCode, 0);
                    break;
                }
                ++faults;
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    tell("platform", faults);
}

/// Requests for memory, as many as ZOLEX_ALLOCATIONS says (all, when it is 0).
TEST_P(ApplyFaults, OfAllocations) {
    const char* const wanted = std::getenv("ZOLEX_ALLOCATIONS");
    const std::size_t most = wanted == nullptr ? 60 : std::strtoul(wanted, nullptr, 10);
    std::size_t step = 1;
    int faults = 0;
    for (std::size_t n = 1;; n += step) {
        SCOPED_TRACE(std::string(GetParam()) + ", request " + std::to_string(n));
        FaultedRun run(GetParam());
        run.server.platform.server = first_;
        run.server.platform.respond = [&run](const std::string& line) {
            const zolex::test::UncountedAllocations uncounted;
            return run.server.platform.play(line);
        };
        run.setPlan(plan);
        FaultedSystem system(run.server.platform, {});
        FaultPlatform machine(run.server.platform, {});
        zolex::test::failAllocation(zolex::test::Allocation::throwing, faults == 0 ? 0 : n);
        const ApplyEnd end = run.apply(system, machine);
        const std::size_t asked = zolex::test::allocationsAsked(zolex::test::Allocation::throwing);
        zolex::test::failAllocation(zolex::test::Allocation::throwing, 0);
        if (faults == 0) { // to know how many there are
            EXPECT_EQ(end.exitCode, 0) << end.what;
            step = most == 0 ? 1 : std::max<std::size_t>(1, asked / most);
            n = 0;
            ++faults;
            continue;
        }
        expectTrue(run, system, end);
        if (asked < n) {
            EXPECT_EQ(end.exitCode, 0);
            break;
        }
        ++faults;
        if (HasFailure()) {
            std::printf("%d %s\n", end.exitCode, end.what.c_str());
            return;
        }
    }
    tell("allocation", faults - 1);
}

/// The journal loses its last two lines byte by byte, as a disk without power leaves it, when the
/// run was ended behind each of its events.
TEST_P(ApplyFaults, OfTheJournalsLastTwoLines) {
    // An append that fails ends the run with what stands behind the event before.
    int cuts = 0;
    int ends[6] = {};
    for (int n = 2;; ++n) {
        FaultedRun run(GetParam());
        run.server.platform.server = first_;
        run.setPlan(plan);
        FaultedSystem system(run.server.platform, {SystemOperation::append, n, true});
        FaultPlatform machine(run.server.platform, {});
        (void)run.apply(system, machine);
        const std::string text = system.durable[test::journalName];
        if (system.calls(SystemOperation::append) < n) {
            break;
        }
        if (text.empty()) {
            continue;
        }
        std::size_t from = text.rfind('\n', text.size() - 2);
        from = from == std::string::npos || from == 0 ? 0 : text.rfind('\n', from - 1);
        from = from == std::string::npos ? 0 : from + 1;
        const zolex_sim::Server state = run.server.platform.server;
        for (std::size_t at = from; at < text.size(); ++at) {
            SCOPED_TRACE(std::string(GetParam()) + ", event " + std::to_string(n - 1) + ", byte " +
                         std::to_string(at));
            // Between two bytes of one line nothing is different but the first and the last.
            const bool isEdge = text[at] == '\n' || (at > 0 && text[at - 1] == '\n') ||
                                at + 1 == text.size() || at % 997 == 0;
            if (!isEdge && at % 5 != 0 && std::getenv("ZOLEX_ALL_CUTS") == nullptr) {
                continue;
            }
            const JournalReading reading = readJournal(text.substr(0, at), test::journalName);
            ++cuts;
            const std::size_t lines = static_cast<std::size_t>(
                std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
            if (!reading.journal) {
                EXPECT_EQ(lines, 0U) << reading.findings.front().summary;
                continue;
            }
            EXPECT_EQ(reading.journal->entries.size(), lines);
            if (!isEdge) {
                continue;
            }
            run.server.platform.server = state;
            FaultedSystem sound(run.server.platform, {});
            sound.durable[test::journalName] = text.substr(0, at);
            FaultPlatform soundMachine(run.server.platform, {});
            const std::optional<ApplyEnd> end = run.resume(sound, soundMachine);
            ASSERT_TRUE(end);
            ASSERT_TRUE(end->exitCode == 0 || end->exitCode == 4) << end->exitCode << end->what;
            ++ends[end->exitCode];
            if (end->exitCode == 0) {
                EXPECT_EQ(run.stands(), planned);
            } else {
                EXPECT_FALSE(end->what.empty());
                EXPECT_FALSE(end->help.empty());
            }
            EXPECT_TRUE(readJournal(sound.durable[test::journalName], "j").journal);
            if (HasFailure()) {
                return;
            }
        }
    }
    std::printf("%s: %d cuts; %d runs were gone on with to the planned end, %d were told\n",
                GetParam(), cuts, ends[0], ends[4]);
    EXPECT_GT(cuts, 100);
    EXPECT_GT(ends[0], 10);
}

INSTANTIATE_TEST_SUITE_P(Samples, ApplyFaults,
                         testing::Values("single", "arcconf", "hrconf", "qtcsend", "cfggen",
                                         "cfggen-scsi", "hyperwin", "two-controllers"),
                         [](const testing::TestParamInfo<const char*>& name) {
                             std::string word = name.param;
                             std::erase(word, '-');
                             return word;
                         });

} // namespace
} // namespace zolex::companion

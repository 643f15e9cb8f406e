// Plans for the arrays of Linux itself are carried out on a machine that is made up: the process
// is killed at every moment of its work, and mdadm in the midst of its own; arrays are stopped.

#include "companion/execution/ApplyBench.h"
#include "companion/families/md/MdHost.h"
#include "companion/machine/Utilities.h"
#include "companion/planning/FamilyLines.h"
#include "companion/planning/ResetPlan.h"
#include "companion/support/MadeUpDisks.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::ChildFate;
using test::Killed;
using test::Lines;
using test::MadeUpFiles;

constexpr std::uint64_t driveBytes = 2 * test::madeUpGibibyte;
constexpr std::string_view halfAnArray =
    "ZX701 Array.A counts drives, and a drive of an array is missing: the numbers behind it are "
    "others";
constexpr std::size_t endless = std::numeric_limits<std::size_t>::max();

/// mdadm over drives that are made up. It may be cut off behind any of the things that it does.
class MadeUpMdadm {
  public:
    MadeUpFiles files;
    std::size_t deedsLeft = endless; ///< superblocks written or zeroed, arrays started or stopped
    std::size_t deeds = 0;
    Lines lines; ///< what it was run with to change something

    ChildResult run(const std::string& line) {
        FamilyMachine machine;
        machine.program = "/sbin/mdadm";
        machine.start = [this](const Lines& arguments, std::chrono::milliseconds) {
            ChildResult result;
            result.outcome = ChildOutcome::ended;
            if (!play({arguments.begin() + 1, arguments.end()}, result)) {
                result = {};
            }
            return result;
        };
        return md::MdHost(machine, &files).run(line, std::chrono::seconds(1));
    }

    void makeArray(const std::string& name, const Lines& drives, const Lines& spares, int level) {
        const char uuid = static_cast<char>('a' + made_++ % 20);
        const auto raidDisks = static_cast<unsigned>(drives.size());
        unsigned role = 0;
        for (const Lines& part : {drives, spares}) {
            for (const std::string& drive : part) {
                if (!isDone()) {
                    return;
                }
                std::string& head = files.drives.at(drive).head;
                head = test::superblockHead(name, uuid, level, raidDisks, role++);
                constexpr std::size_t componentAt = 4096 + 80;
                test::put(head, componentAt, driveBytes / 512, 8);
            }
        }
        if (isDone()) {
            startArray(name);
        }
    }

    /// As the system does of what the superblocks tell.
    void startArray(const std::string& name) {
        Lines members;
        Lines spares;
        int level = 0;
        for (const auto& [drive, content] : files.drives) {
            const auto superblock = superblockOf(drive);
            if (superblock && superblock->name == name) {
                level = superblock->level;
                (superblock->role ? members : spares).push_back(drive);
            }
        }
        std::string node;
        for (int number = 127; node.empty(); --number) {
            const std::string free = "md" + std::to_string(number);
            node = files.files.contains("/sys/block/" + free + "/size") ? "" : free;
        }
        files.addArray(node, "raid" + std::to_string(level), members);
        const std::size_t data = level == 1 ? 1 : members.size() - 1;
        files.files["/sys/block/" + node + "/size"] = std::to_string(data * driveBytes / 512);
        for (const std::string& spare : spares) {
            const std::string folder = "/sys/block/" + node + "/md/dev-" + spare;
            files.files[folder + "/state"] = "spare\n";
            files.files[folder + "/slot"] = "none\n";
            files.files["/sys/block/" + spare + "/holders/" + node] = "";
            files.files["/sys/block/" + node + "/slaves/" + spare] = "";
        }
        files.links["/dev/md/" + name] = "/dev/" + node;
    }

    /// All that do not run, as far as their drives are there: "mdadm --assemble --scan".
    void startAll() {
        std::set<std::string> names;
        for (const auto& [drive, content] : files.drives) {
            const auto superblock = superblockOf(drive);
            if (superblock && superblock->name.starts_with(md::ownPrefix) &&
                nodeOf(superblock->name).empty()) {
                names.insert(superblock->name);
            }
        }
        for (const std::string& name : names) {
            startArray(name);
        }
    }

    void stopArray(const std::string& node) {
        std::erase_if(files.files, [&node](const auto& file) {
            return file.first.starts_with("/sys/block/" + node + "/") ||
                   file.first.ends_with("/holders/" + node);
        });
        std::erase_if(files.links,
                      [&node](const auto& link) { return link.second == "/dev/" + node; });
    }

    /// The kernel's name of the running array.
    std::string nodeOf(const std::string& name) {
        const std::string device = files.resolved("/dev/md/" + name);
        return device.substr(std::min(device.size(), std::string("/dev/").size()));
    }

  private:
    bool isDone() {
        if (deedsLeft == 0) {
            return false;
        }
        ++deeds;
        --deedsLeft;
        return true;
    }

    std::optional<md::Superblock> superblockOf(const std::string& drive) {
        const MadeUpFiles::Drive& content = files.drives.at(drive);
        return md::superblockOf({content.head, content.tail, content.bytes});
    }

    /// Of the running array of a device.
    std::string nameOf(const std::string& device) {
        const auto link =
            std::find_if(files.links.begin(), files.links.end(), [&device](const auto& each) {
                return each.first.starts_with("/dev/md/") && each.second == device;
            });
        return link->first.substr(std::string("/dev/md/").size());
    }

    std::string driveOf(const std::string& path) {
        const std::string link = files.resolved(path);
        const std::string& device = link.empty() ? path : link;
        return device.substr(device.rfind('/') + 1);
    }

    /// False where it was cut off.
    bool play(const Lines& words, ChildResult& result) {
        const std::string& verb = words.at(0);
        if (verb == "--version") {
            result.output = "mdadm - v4.2\n";
            return true;
        }
        if (verb == "--detail" || verb == "--examine") {
            const std::string name = words.at(2).substr(std::string("/dev/").size());
            for (const auto& [drive, content] : files.drives) {
                const bool isOfIt =
                    drive == name ||
                    files.files.contains("/sys/block/" + name + "/md/dev-" + drive + "/slot");
                const auto superblock = isOfIt ? superblockOf(drive) : std::nullopt;
                if (superblock) {
                    result.output =
                        "MD_UUID=" + superblock->uuid + "\nMD_NAME=" + superblock->name + "\n";
                }
            }
            return true;
        }
        std::string line;
        for (const std::string& word : words) {
            line += (line.empty() ? "" : " ") + word;
        }
        if (verb == "--wait-clean") {
            return true;
        }
        lines.push_back(line);
        if (verb == "--create") {
            create(words);
        } else if (verb == "--stop" && isDone()) {
            stopArray(words.at(1).substr(std::string("/dev/").size()));
        } else if (verb == "--manage" && words.at(2) == "--add-spare" && isDone()) {
            addSpare(nameOf(words.at(1)), driveOf(words.at(3)));
        } else if (verb == "--manage" && words.at(2) == "--remove" && isDone()) {
            const std::string node = words.at(1).substr(std::string("/dev/").size());
            const std::string spare = driveOf(words.at(3));
            std::erase_if(files.files, [&](const auto& file) {
                return file.first.starts_with("/sys/block/" + node + "/md/dev-" + spare + "/") ||
                       file.first == "/sys/block/" + spare + "/holders/" + node ||
                       file.first == "/sys/block/" + node + "/slaves/" + spare;
            });
        } else if (verb == "--zero-superblock") {
            for (std::size_t i = 1; i < words.size() && isDone(); ++i) {
                files.drives.at(driveOf(words[i])).head = test::zeros();
            }
        }
        return deedsLeft > 0;
    }

    void addSpare(const std::string& name, const std::string& spare) {
        for (const auto& [drive, content] : files.drives) {
            const auto superblock = superblockOf(drive);
            if (superblock && superblock->name == name) {
                std::string head = content.head;
                constexpr std::size_t roleAt = 4096 + 160;
                test::put(head, roleAt, superblock->raidDisks, 4);
                files.drives.at(spare).head = head;
                break;
            }
        }
        stopArray(nodeOf(name));
        startArray(name);
    }

    void create(const Lines& words) {
        std::size_t raidDisks = 0;
        int level = 0;
        Lines drives;
        for (std::size_t i = 2; i < words.size(); ++i) {
            const std::string value = words[i].substr(words[i].find('=') + 1);
            if (words[i].starts_with("--raid-devices=")) {
                raidDisks = std::stoul(value);
            } else if (words[i].starts_with("--level=")) {
                level = std::stoi(value);
            } else if (!words[i].starts_with("--")) {
                drives.push_back(driveOf(words[i]));
            }
        }
        const auto firstSpare = drives.begin() + static_cast<std::ptrdiff_t>(raidDisks);
        makeArray(words.at(1).substr(std::string("/dev/md/").size()), {drives.begin(), firstSpare},
                  {firstSpare, drives.end()}, level);
    }

    int made_ = 0;
};

/// A machine, a plan for it, and runs of that plan.
struct MdBench : ApplyBench {
    MadeUpMdadm mdadm;
    Utilities utilities;
    std::string policies;
    StrategyWish wish;

    explicit MdBench(int drives, StrategyWish wished)
        : ApplyBench(R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": []})"),
          wish(wished) {
        for (int i = 0; i < drives; ++i) {
            mdadm.files.addDrive("sd" + std::string(1, static_cast<char>('a' + i)), i);
        }
        const auto others = server.platform.respond;
        server.platform.respond = [this, others](const std::string& line) {
            if (!line.starts_with("MD ")) {
                return others(line);
            }
            system.moment("listing " + line);
            const zolex::test::UncountedAllocations uncounted;
            return mdadm.run(line);
        };
        system.work = [this](const std::string& line) {
            const zolex::test::UncountedAllocations uncounted;
            return mdadm.run(line);
        };
        utilities.programs["MD"] = "/sbin/mdadm";
        capture.asksFamilies = true;
        capture.families = {"MD"};
        capture.utilities = &utilities;
    }

    Snapshot look() {
        const std::size_t kill = std::exchange(system.killAt, 0);
        const auto held = std::exchange(system.onMoment, nullptr);
        Snapshot snapshot = captureMachine(server.platform, capture);
        system.killAt = kill;
        system.onMoment = held;
        return snapshot;
    }

    void makePlans(const std::string& entries) {
        policies = "[Policy.md]\nAppliesTo.1 = t:MD\nArray_Mode = CUSTOM\n"
                   "Logical_Mode = CUSTOM\n" +
                   entries;
        planAgain();
    }

    void planAgain() {
        PlanRequest request;
        request.policiesFile = "site.ini";
        request.policiesText = policies;
        request.strategy = wish;
        plan = planMachine(look(), request);
        plan.id = "p-000000000001";
        plan.command = "zolexctl plan site.ini";
        system.moments = 0;
    }

    [[nodiscard]] Lines stands() {
        Lines lines;
        for (const ControllerSnapshot& controller : look().details) {
            for (const std::string& line : layoutLines(capturedLayout(controller.facts))) {
                lines.push_back(line);
            }
            for (const LogicalDriveFacts& volume : controller.facts.logicalDrives) {
                lines.push_back(volume.id + " " + volume.reportedState);
            }
        }
        return lines;
    }
};

struct MdKillCase {
    std::string name;
    int drives = 0;
    StrategyWish wish = StrategyWish::automatic;
    std::string policies;
    Lines old;     ///< drives of an array that is there before
    Lines spares;  ///< of it
    Lines outside; ///< that the plan does not name
    std::size_t commands = 1;
    bool makes = true; ///< an array
};

void PrintTo(const MdKillCase& each, std::ostream* stream) {
    *stream << each.name;
}

std::string nameOfMdKill(const testing::TestParamInfo<MdKillCase>& info) {
    return info.param.name;
}

class MdKilledRun : public testing::TestWithParam<MdKillCase> {
  protected:
    MdKilledRun() : bench_(GetParam().drives, GetParam().wish) {
        const MdKillCase& each = GetParam();
        if (!each.old.empty()) {
            bench_.mdadm.makeArray("zolex-old", each.old, each.spares, 1);
        }
        // Somebody's own array that does not run, at the end.
        MadeUpFiles::Drive& last = bench_.mdadm.files.drives.at(each.outside.back());
        last.head = test::superblockHead("srv:data", 'z', 1, 2, 0);
        bench_.makePlans(each.policies);
        plan_ = bench_.plan;
        initial_ = bench_.mdadm.files;
    }

    void reset(ChildFate fate, std::size_t deeds) {
        bench_.mdadm.files = initial_;
        bench_.mdadm.deedsLeft = deeds;
        bench_.mdadm.deeds = 0;
        bench_.mdadm.lines.clear();
        bench_.plan = plan_;
        bench_.server.platform.fileFake.files.clear();
        bench_.disk = {};
        bench_.system.locks.clear();
        bench_.system.restart();
        bench_.system.fate = fate;
    }

    bool isKilled(std::size_t moment) {
        bench_.system.killAt = moment;
        try {
            const ApplyEnd end = bench_.apply();
            EXPECT_EQ(end.exitCode, 0) << end.what;
            return false;
        } catch (const Killed&) {
            ++kills_;
        }
        return true;
    }

    /// Begins anew, goes on, or plans again, as it is told to.
    ApplyEnd goOn() {
        if (bench_.disk.entries.empty()) {
            bench_.disk = {};
            return bench_.apply();
        }
        if (const auto history = bench_.disk.history();
            history.end() != nullptr && history.end()->exitCode == 0) {
            EXPECT_EQ(bench_.resume().exitCode, 3);
            bench_.system.locks.clear();
            return {};
        }
        ApplyEnd end = bench_.resume();
        for (int advice = 0; advice < 3 && end.exitCode != 0; ++advice) {
            end = followed(end);
        }
        return end;
    }

    /// Does what the end of a run says, word by word.
    ApplyEnd followed(const ApplyEnd& end) {
        if (!end.help.empty() && end.help.front() == "start it: mdadm --assemble --scan") {
            ++starts_;
            bench_.mdadm.startAll();
            return bench_.resume();
        }
        EXPECT_GE(end.exitCode, 4) << testing::PrintToString(test::endLines(end));
        EXPECT_EQ(end.help, Lines{"zolexctl plan site.ini plans from what is there"});
        ++plansAgain_;
        bench_.planAgain();
        bench_.disk = {};
        const Lines faults = test::faultsOf(bench_.plan);
        const bool isOffline = faults.size() == 2 && faults[1].starts_with("ZX702 LD ") &&
                               faults[1].find("is offline") != std::string::npos;
        if (!faults.empty() && faults[0] == halfAnArray && (faults.size() == 1 || isOffline)) {
            // Numbers are not to be trusted: what is there is taken away first.
            ++resets_;
            bench_.plan = planReset(bench_.look(), {}, "zolexctl reset");
            bench_.plan.id = "p-000000000002";
            EXPECT_EQ(bench_.apply().exitCode, 0);
            bench_.disk = {};
            bench_.planAgain();
        }
        EXPECT_EQ(test::faultsOf(bench_.plan), Lines{});
        return bench_.apply();
    }

    void expectPlanned(const ApplyEnd& end, const std::string& where) {
        EXPECT_EQ(end.exitCode, 0) << where << "\n" << testing::PrintToString(test::endLines(end));
        EXPECT_EQ(bench_.stands(), planned_) << where;
        EXPECT_TRUE(bench_.system.locks.empty()) << where;
        for (const std::string& drive : GetParam().outside) {
            EXPECT_EQ(bench_.mdadm.files.drives.at(drive).head, initial_.drives.at(drive).head);
            for (const std::string& line : bench_.mdadm.lines) {
                EXPECT_EQ(line.find("S-" + drive), std::string::npos) << where << "\n" << line;
                EXPECT_EQ(line.find("/dev/" + drive), std::string::npos) << where << "\n" << line;
            }
        }
    }

    /// Kills a run at this moment and goes on; false: it came to its end before.
    bool killAndGoOn(std::size_t moment, ChildFate fate, std::size_t deeds) {
        reset(fate, deeds);
        if (!isKilled(moment)) {
            return false;
        }
        const std::string where = "moment " + std::to_string(moment) + ", fate " +
                                  std::to_string(static_cast<int>(fate)) + ", deeds " +
                                  std::to_string(deeds) + ", " +
                                  testing::PrintToString(bench_.events());
        bench_.mdadm.deedsLeft = endless;
        bench_.system.restart();
        expectPlanned(goOn(), where);
        return true;
    }

    /// The machine loses its power while mdadm works, behind each of the things that it does.
    void cutOff(std::size_t moment) {
        reset(ChildFate::gone, endless);
        EXPECT_TRUE(isKilled(moment));
        const std::size_t before = bench_.mdadm.deeds;
        reset(ChildFate::done, endless);
        EXPECT_TRUE(isKilled(moment));
        const std::size_t after = bench_.mdadm.deeds;
        for (std::size_t deeds = before + 1; deeds < after; ++deeds) {
            killAndGoOn(moment, ChildFate::done, deeds);
        }
    }

    MdBench bench_;
    MachinePlan plan_;
    MadeUpFiles initial_;
    Lines planned_;
    std::size_t kills_ = 0;
    std::size_t plansAgain_ = 0;
    std::size_t starts_ = 0;
    std::size_t resets_ = 0;
};

TEST_P(MdKilledRun, EndsAsPlannedAndTouchesNoOtherDrive) {
    ASSERT_EQ(test::faultsOf(plan_), Lines{});
    ASSERT_EQ(test::commandsOf(plan_).size(), GetParam().commands)
        << testing::PrintToString(test::commandsOf(plan_));
    reset(ChildFate::later, endless);
    const ApplyEnd whole = bench_.apply();
    ASSERT_EQ(whole.exitCode, 0) << testing::PrintToString(test::endLines(whole));
    planned_ = bench_.stands();
    bool ranBefore = false;
    for (std::size_t moment = 1; killAndGoOn(moment, ChildFate::later, endless); ++moment) {
        // What becomes of a child matters only where one was at work.
        const bool ran = bench_.system.ranWhenKilled;
        if (ran) {
            killAndGoOn(moment, ChildFate::done, endless);
            killAndGoOn(moment, ChildFate::gone, endless);
        }
        if (ran && !ranBefore) {
            cutOff(moment); // once for each child
        }
        ranBefore = ran;
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(kills_, 30U);
    EXPECT_EQ(plansAgain_ > 0, GetParam().makes); // an array of which mdadm has made a part
    RecordProperty("kills", static_cast<int>(kills_));
    EXPECT_EQ(starts_ > 0, GetParam().makes); // or not started
    RecordProperty("plans", static_cast<int>(plansAgain_));
    RecordProperty("starts", static_cast<int>(starts_));
    RecordProperty("resets", static_cast<int>(resets_));
}

std::vector<MdKillCase> mdKillCases() {
    return {{"MadeWithASpare",
             5,
             StrategyWish::automatic,
             "Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:1\n",
             {},
             {},
             {"sdd", "sde"}},
            {"ReplacedByAnother",
             5,
             StrategyWish::automatic,
             "Array.A = 1,2,3\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:5\n",
             {"sda", "sdb"},
             {},
             {"sdd", "sde"},
             2},
            {"WithoutTheSpare",
             5,
             StrategyWish::automatic,
             "Array.A = 1,2\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:1\n",
             {"sda", "sdb"},
             {"sdc"},
             {"sdd", "sde"},
             1,
             false}};
}

INSTANTIATE_TEST_SUITE_P(All, MdKilledRun, testing::ValuesIn(mdKillCases()), nameOfMdKill);

struct MdStopped : testing::Test {
    MdBench bench{3, StrategyWish::automatic};
    std::string array; ///< that the plan makes

    MdStopped() {
        bench.makePlans("Array.A = 1,2\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:1\n");
        const std::string command = bench.plan.steps().at(0).command;
        const std::size_t name = command.find("zolex-");
        array = command.substr(name, command.find(' ', name) - name);
    }
    void stop() { bench.mdadm.stopArray(bench.mdadm.nodeOf(array)); }
};

TEST_F(MdStopped, AnArrayThatIsMadeAndDoesNotRunIsNotAsPlanned) {
    bench.system.onMoment = [this](const std::string& moment) {
        if (moment == "write step-ended 1 accepted") {
            stop();
        }
    };
    const Lines stopped = {"5: what stands on controller 1 now is not what was planned",
                           "  LD " + array + ", state: planned is active; found is stopped",
                           "help: start it: mdadm --assemble --scan",
                           "help: zolexctl apply --resume plan.journal.jsonl verifies it again",
                           "controller 1: failed step 1 of 1: what stands is not what was planned"};
    const ApplyEnd end = bench.apply();
    EXPECT_EQ(test::endLines(end), stopped);
    EXPECT_EQ(end.code, "ZA114");
    EXPECT_FALSE(end.isVerified);
    ASSERT_GE(bench.eventsOf<JournalVerified>().size(), 1U);
    EXPECT_EQ(bench.eventsOf<JournalVerified>()[0].result, JournalVerified::Result::different);
    EXPECT_EQ(bench.eventsOf<JournalVerified>()[0].lines,
              Lines{"controller 1: LD " + array + ", state: planned is active; found is stopped"});
    bench.system.onMoment = nullptr;
    EXPECT_EQ(test::endLines(bench.resume()), stopped);
    bench.mdadm.startArray(array);
    const ApplyEnd started = bench.resume();
    EXPECT_EQ(started.exitCode, 0) << testing::PrintToString(test::endLines(started));
    EXPECT_TRUE(started.isVerified);
    EXPECT_EQ(bench.mdadm.lines.size(), 1U); // it is not made again
}

/// While the first array goes somebody makes the second one anew. Plans that do not tell the UUID
/// are carried out as they were.
TEST(MdReset, AnArrayThatWasMadeAnewUnderItsNameStays) {
    for (const bool tellsUuid : {true, false}) {
        MdBench bench{4, StrategyWish::automatic};
        bench.mdadm.makeArray("zolex-a", {"sda", "sdb"}, {}, 1);
        bench.mdadm.makeArray("zolex-b", {"sdc", "sdd"}, {}, 1);
        bench.plan = planReset(bench.look(), {}, "zolexctl reset");
        bench.plan.id = "p-000000000001";
        ASSERT_EQ(bench.plan.steps().size(), 2U);
        if (!tellsUuid) {
            for (PlanStep& step : bench.plan.controllers.at(0).steps) {
                const std::size_t uuid = step.command.find(" --uuid=");
                ASSERT_NE(uuid, std::string::npos);
                step.command.erase(uuid, step.command.find(' ', uuid + 1) - uuid);
                EXPECT_TRUE(isLineOfStep(*findFamily("MD"), bench.plan.controllers[0], step));
            }
        }
        bench.system.moments = 0;
        bench.system.onMoment = [&bench](const std::string& moment) {
            if (moment == "write step-ended 1 accepted") {
                bench.mdadm.stopArray(bench.mdadm.nodeOf("zolex-b"));
                bench.mdadm.makeArray("zolex-b", {"sdc", "sdd"}, {}, 1);
            }
        };
        const ApplyEnd end = bench.apply();
        EXPECT_EQ(end.exitCode == 0, !tellsUuid) << testing::PrintToString(test::endLines(end));
        EXPECT_EQ(bench.mdadm.files.drives.at("sdc").head == test::zeros(), !tellsUuid);
        EXPECT_EQ(bench.mdadm.files.drives.at("sda").head, test::zeros());
        if (tellsUuid) {
            const std::string text = testing::PrintToString(test::endLines(end));
            EXPECT_NE(text.find("zolex-b is not touched: it is another array of this name now."),
                      std::string::npos)
                << text;
            EXPECT_EQ(end.help.at(0), "See what it is, and plan again: zolexctl show --family md");
        }
    }
}

/// Nobody is told that nothing stands, or to clear a drive, while a drive at work cannot be read.
TEST_F(MdStopped, AnArrayOfADriveThatCannotBeReadStays) {
    ASSERT_EQ(bench.apply().exitCode, 0);
    bench.mdadm.files.drives.at("sda").head.clear();
    const MachinePlan reset = planReset(bench.look(), {}, "zolexctl reset");
    EXPECT_EQ(test::faultsOf(reset),
              Lines{"ZP221 LD " + array + " stays: ata-DISK_S-sda: it cannot be read"});
    bench.planAgain();
    ASSERT_EQ(test::faultsOf(bench.plan),
              Lines{"ZX702 Array.A names ata-DISK_S-sda: it cannot be read"});
    EXPECT_EQ(
        bench.plan.controllers.at(0).diagnostics.at(0).help.at(0),
        "look at what its utility tells of it, and wait until the controller is done with it: a "
        "policy without it deletes array A");
}

TEST_F(MdStopped, NorIsOneThatIsThereAlready) {
    ASSERT_EQ(bench.apply().exitCode, 0);
    bench.disk = {};
    stop();
    bench.planAgain();
    ASSERT_EQ(bench.plan.steps().size(), 0U);
    const Lines stopped = {"5: what stands on controller 1 now is not what was planned",
                           "  LD " + array + ", state: planned is active; found is stopped",
                           "help: start it: mdadm --assemble --scan",
                           "help: zolexctl plan site.ini plans from what is there",
                           "controller 1: failed step 0 of 0: what stands is not what was planned"};
    const ApplyEnd end = bench.apply();
    Lines told = test::endLines(end);
    EXPECT_EQ(told, stopped);
    EXPECT_FALSE(end.isVerified);
    EXPECT_FALSE(end.changedSomething);
    bench.mdadm.startArray(array);
    bench.planAgain();
    EXPECT_EQ(bench.apply().exitCode, 0);
}

} // namespace
} // namespace zolex::companion

// Copies of controllers that STORCLI drives: read back they are the originals, and do what these
// do.

#include "companion/layout/NormalForm.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/Originals.h"
#include "companion/rehearsal/RandomStorcli.h"

#include <gtest/gtest.h>

#include <map>

namespace zolex::companion {
namespace {

using test::StorcliServer;

constexpr std::array<const char*, 3> samples = {"storcli", "storcli-blank", "percli"};

/// All that is told, without where it stood, and without what no copy needs.
Facts bare(Facts facts) {
    for (DriveFacts& drive : facts.drives) {
        drive.place = {};
    }
    for (LogicalDriveFacts& volume : facts.logicalDrives) {
        volume.place = {};
    }
    for (std::string& line : facts.foreignConfigurations) {
        line = "some";
    }
    facts.listings.clear();
    return facts;
}

/// Fails where the copy, read back, tells anything else than the original.
void expectSame(const ControllerSnapshot& original) {
    MadeCopy made = copyController(original, 0);
    EXPECT_EQ(made.because, "");
    ASSERT_TRUE(made.copy);
    EXPECT_EQ(made.facts.drives, original.facts.drives);
    EXPECT_EQ(made.facts.foreignConfigurations, original.facts.foreignConfigurations);
    EXPECT_EQ(normalForm(made.facts), normalForm(original.facts));
    const Facts found = bare(made.copy->read());
    const Facts wanted = bare(original.facts);
    for (std::size_t i = 0; i < wanted.drives.size(); ++i) {
        ASSERT_EQ(found.drives.at(i), wanted.drives[i]) << wanted.drives[i].location;
    }
    ASSERT_EQ(test::layoutFacts(found), test::layoutFacts(wanted));
    ASSERT_EQ(found.logicalDrives, wanted.logicalDrives);
    ASSERT_TRUE(found == wanted);
}

TEST(StorcliCopy, EverySampleReadsBackAsItself) {
    for (const char* const sample : samples) {
        SCOPED_TRACE(sample);
        StorcliServer server(sample);
        const Snapshot snapshot = server.snapshot();
        ASSERT_EQ(snapshot.details.size(), 1U);
        expectSame(snapshot.details.front());
    }
}

TEST(StorcliCopy, RandomControllersReadBackAsThemselves) {
    std::map<std::string, int> seen;
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        StorcliServer server("storcli-blank");
        test::makeRandom(server, random);
        const Snapshot snapshot = server.snapshot();
        ASSERT_EQ(snapshot.details.size(), 1U);
        const ControllerSnapshot& original = snapshot.details.front();
        ASSERT_FALSE(original.failed);
        expectSame(original);
        for (const LogicalDriveFacts& volume : original.facts.logicalDrives) {
            ++seen[volume.raidType];
            seen["with one missing"] += volume.spans.front().front() == "Missing" ? 1 : 0;
        }
        for (const DriveFacts& drive : original.facts.drives) {
            ++seen[drive.isForeign ? "foreign" : drive.reportedState];
        }
    }
    // Each of these was among them.
    for (const char* const kind : {"RAID0",  "RAID00", "RAID1",  "RAID10",  "RAID5",
                                   "RAID50", "RAID6",  "RAID60", "UGood",   "UBad",
                                   "JBOD",   "Onln",   "Rbld",   "Cpybck",  "Offln",
                                   "Failed", "GHS",    "DHS",    "foreign", "with one missing"}) {
        EXPECT_GT(seen[kind], 0) << kind;
    }
}

TEST(StorcliCopy, DoesWhatTheOriginalDoes) {
    int changes = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        StorcliServer server("storcli-blank");
        test::makeRandom(server, random);
        // The copy does not know what number is next on a controller without logical drives.
        auto& controller = server.platform.server.storcliControllers.front();
        controller.numbersUp = controller.numbersUp && !controller.volumes.empty();
        Snapshot snapshot = server.snapshot();
        MadeCopy made = copyController(snapshot.details.front(), 0);
        ASSERT_TRUE(made.copy) << seed << " " << made.because;
        for (int step = 0; step < 8; ++step) {
            const std::string line =
                "STORCLI " +
                test::randomStorcliLine(server.platform.server.storcliControllers.front(), random) +
                " J";
            const CopyState before = made.copy->state();
            const ChildResult result = server.platform.play(line);
            const PlayedLine played = made.copy->play(splitCommandLine(line));
            ASSERT_EQ(played.exitCode, static_cast<std::int32_t>(result.exitCode))
                << seed << " " << line << "\n"
                << result.output << played.output;
            changes += made.copy->state() == before ? 0 : 1;
            snapshot = server.snapshot();
            ASSERT_EQ(normalForm(made.copy->capture()), normalForm(snapshot.details.front().facts))
                << seed << " " << line;
        }
    }
    EXPECT_GT(changes, 50);
}

TEST(StorcliCopy, AnswersUnderTheNumberOfItsOriginal) {
    StorcliServer server(R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [
        {"utility": "STORCLI", "pci": {"bus": 5}, "drives": []},
        {"utility": "STORCLI", "pci": {"bus": 9}, "drives": [
            {"enclosure": 252, "slot": 0, "count": 2, "sectors": 41943040}]}]})");
    const Snapshot snapshot = server.snapshot();
    ASSERT_EQ(snapshot.details.size(), 2U);
    MadeCopy made = copyController(snapshot.details[1], 0);
    ASSERT_TRUE(made.copy) << made.because;
    const auto play = [&made](const char* line) {
        return made.copy->play(splitCommandLine(line)).why;
    };
    EXPECT_EQ(play("STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog"),
              "RAID level is not supported. (error 255)");
    EXPECT_EQ(play("STORCLI /c1 add vd r1 drives=252:0,252:1 J nolog"), "");
    EXPECT_EQ(made.copy->capture().logicalDrives.size(), 1U);
}

/// Why there is no copy once the facts have been changed.
template <typename Change>
std::string refusedCopy(Change change) {
    StorcliServer server("storcli");
    Snapshot snapshot = server.snapshot();
    change(snapshot.details.front());
    const MadeCopy made = copyController(snapshot.details.front(), 0);
    EXPECT_FALSE(made.copy);
    return made.because;
}

TEST(StorcliCopy, SaysWhatCannotBeCopied) {
    using Original = ControllerSnapshot;
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.logicalDrives[1].raidType.clear(); }),
              "LD 238 has a RAID level that is not known, \"RAID5\"");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.logicalDrives[1].writeCache.clear(); }),
              "the cache modes of LD 238 are not known");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.logicalDrives[1].array = "4"; }),
              "the drive groups are not numbered from 0 on: there is no group 1");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.logicalDrives[1].capacityBytes.reset(); }),
              "LD 238 has no size");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.logicalDrives[1].spans.clear(); }),
              "the spans of LD 238 are not told");
    EXPECT_EQ(refusedCopy(
                  [](Original& it) { it.facts.logicalDrives[1].spans.front().front() = "252:99"; }),
              "a member of LD 238 is no drive that is listed, \"252:99\"");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.drives[3].capacityBytes.reset(); }),
              "drive 252:3 has no size");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.drives[11].covers = {"7"}; }),
              "the hot spare 252:11 is told to be of a drive group that there is not, \"7\"");
    EXPECT_EQ(refusedCopy([](Original& it) { it.facts.drives[18].isForeign = false; }),
              "a foreign layout is told, and no drive that it is on");
    EXPECT_EQ(refusedCopy([](Original& it) { it.failed = true; }), "it was not captured");
    EXPECT_EQ(refusedCopy([](Original& it) { it.utility = "MD"; }),
              "controllers of MD are not copied");
}

TEST(StorcliCopy, TellsADriveInAnUnknownStateAsItWasCaptured) {
    StorcliServer server("storcli");
    Snapshot snapshot = server.snapshot();
    DriveFacts& drive = snapshot.details.front().facts.drives[12];
    drive.reportedState = "Zzzz";
    drive.state = DriveState::unknown;
    drive.barred = "its state is not known: Zzzz";
    const MadeCopy made = copyController(snapshot.details.front(), 0);
    EXPECT_EQ(made.because, "");
    EXPECT_EQ(made.facts.drives, snapshot.details.front().facts.drives);
}

} // namespace
} // namespace zolex::companion

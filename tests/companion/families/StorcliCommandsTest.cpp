#include "companion/families/storcli/Commands.h"
#include "companion/families/storcli/Errors.h"
#include "companion/families/storcli/Limits.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

constexpr std::uint64_t mb = std::uint64_t{1} << 20U;

VolumeWish wishOf(const char* level, std::vector<std::vector<std::string>> spans) {
    VolumeWish wish;
    wish.raidType = level;
    wish.spans = std::move(spans);
    return wish;
}

TEST(StorcliCommands, CreateWithNothingGiven) {
    EXPECT_EQ(storcli::createVolume(0, wishOf("RAID5", {{"252:0", "252:1", "253:4"}})),
              "STORCLI /c0 add vd r5 drives=252:0,252:1,253:4 J nolog");
}

TEST(StorcliCommands, CreateWithAllGiven) {
    VolumeWish wish = wishOf("RAID10", {{"252:0", "252:1"}, {"252:2", "252:3"}});
    wish.capacityBytes = 1000 * mb + 5;
    wish.stripSizeBytes = 64 * 1024;
    wish.writeCache = "UnprotectedWriteBack";
    wish.readCache = "AdaptiveReadAhead";
    wish.name = "data of the web server";
    wish.spares = {"252:7"};
    EXPECT_EQ(storcli::createVolume(2, wish),
              "STORCLI /c2 add vd r10 Size=1000MB name=data_of_the_web "
              "drives=252:0,252:1,252:2,252:3 PDperArray=2 WB ra Strip=64 Spares=252:7 J nolog");
}

TEST(StorcliCommands, NamesHave15BytesAndNoQuotesOrBlanks) {
    const auto named = [](const char* name) {
        VolumeWish wish = wishOf("RAID1", {{"252:0", "252:1"}});
        wish.name = name;
        const std::string line = storcli::createVolume(0, wish);
        const std::size_t begin = line.find("name=");
        return begin == std::string::npos ? "" : line.substr(begin, line.find(' ', begin) - begin);
    };
    EXPECT_EQ(named("123456789012345"), "name=123456789012345");
    EXPECT_EQ(named("1234567890123456"), "name=123456789012345");
    EXPECT_EQ(named("a \"b\" 'c',d"), "name=a__b___c__d");
    EXPECT_EQ(named("\xc3\xbc-12345678901234"), "name=__-123456789012"); // bytes, not letters
    EXPECT_EQ(named(""), "");
}

TEST(StorcliCommands, SpansAreAlwaysToldWhereALevelHasThem) {
    for (const char* const level : {"RAID00", "RAID10", "RAID50", "RAID60"}) {
        const std::string line =
            storcli::createVolume(0, wishOf(level, {{"1:0", "1:1", "1:2", "1:3"}, {"1:4"}}));
        EXPECT_NE(line.find(" PDperArray=4 "), std::string::npos) << line;
    }
    EXPECT_EQ(storcli::createVolume(0, wishOf("RAID1", {{":0", ":1"}})),
              "STORCLI /c0 add vd r1 drives=:0,:1 J nolog");
}

TEST(StorcliCommands, NoLevelThatTheUtilityLacks) {
    for (const char* const level : {"RAID1E", "RAID5E", "RAID5EE", "None", ""}) {
        EXPECT_EQ(storcli::createVolume(0, wishOf(level, {{"1:0", "1:1", "1:2"}})), "") << level;
    }
}

TEST(StorcliCommands, NeverAwbAndNeverForce) {
    VolumeWish wish = wishOf("RAID0", {{"1:0"}});
    for (const char* const mode : {"WriteThrough", "ProtectedWriteBack", "UnprotectedWriteBack"}) {
        wish.writeCache = mode;
        const std::string line = storcli::createVolume(0, wish);
        EXPECT_EQ(line.find("AWB"), std::string::npos) << line;
        EXPECT_EQ(line.find("force"), std::string::npos) << line;
    }
}

TEST(StorcliCommands, DeleteAndSetByTheNumber) {
    LogicalDriveFacts volume;
    volume.id = "239";
    EXPECT_EQ(storcli::deleteVolume(1, volume), "STORCLI /c1/v239 del J nolog");
    EXPECT_EQ(storcli::setCache(1, volume, "write_cache_policy", "WriteThrough"),
              "STORCLI /c1/v239 set wrcache=WT J nolog");
    EXPECT_EQ(storcli::setCache(1, volume, "write_cache_policy", "UnprotectedWriteBack"),
              "STORCLI /c1/v239 set wrcache=WB J nolog");
    EXPECT_EQ(storcli::setCache(1, volume, "read_cache_policy", "Off"),
              "STORCLI /c1/v239 set rdcache=NoRA J nolog");
    EXPECT_EQ(storcli::setCache(1, volume, "read_cache_policy", "ReadAhead"),
              "STORCLI /c1/v239 set rdcache=RA J nolog");
    EXPECT_EQ(storcli::setCache(1, volume, "strip_size_bytes", "65536"), "");
    volume.id = "data";
    EXPECT_EQ(storcli::deleteVolume(1, volume), "");
}

TEST(StorcliCommands, Spares) {
    EXPECT_EQ(storcli::addSpare(0, "252:3", {}), "STORCLI /c0/e252/s3 add hotsparedrive J nolog");
    EXPECT_EQ(storcli::addSpare(0, "252:3", {"0", "2"}),
              "STORCLI /c0/e252/s3 add hotsparedrive DGs=0,2 J nolog");
    EXPECT_EQ(storcli::removeSpare(0, ":3"), "STORCLI /c0/s3 delete hotsparedrive J nolog");
}

TEST(StorcliCommands, ForeignAndRebuildRate) {
    EXPECT_EQ(storcli::clearForeign(3), "STORCLI /c3/fall del J nolog");
    EXPECT_EQ(storcli::setRebuildRate(0, "HIGH"), "STORCLI /c0 set rebuildrate=60 J nolog");
    EXPECT_EQ(storcli::setRebuildRate(0, "MEDIUM"), "STORCLI /c0 set rebuildrate=30 J nolog");
    EXPECT_EQ(storcli::setRebuildRate(0, "LOW"), "STORCLI /c0 set rebuildrate=15 J nolog");
    EXPECT_EQ(storcli::setRebuildRate(0, ""), "");
}

/// An answer of the utility.
std::string answer(const std::string& status, const std::string& description,
                   const std::string& details = "") {
    return "{\n\"Controllers\":[\n{\n\t\"Command Status\" : {\n\t\t\"Controller\" : 0,\n"
           "\t\t\"Status \" : \"" +
           status + "\",\n\t\t\"Description\" : \"" + description + "\"" +
           (details.empty() ? "" : ",\n\t\t\"Detailed Status\" : [" + details + "]") +
           "\n\t}\n}\n]\n}\n";
}

std::string verdictText(const FamilyVerdict& verdict) {
    std::string text = verdict.isDone ? "done" : "refused: " + verdict.why;
    for (const std::string& help : verdict.help) {
        text += "\nhelp: " + help;
    }
    return text + (verdict.instead.empty() ? "" : "\ninstead: " + verdict.instead);
}

std::string judged(std::uint32_t exitCode, const std::string& output) {
    return verdictText(
        storcli::judge("STORCLI /c0 add vd r0 drives=1:0 J nolog", exitCode, output));
}

TEST(StorcliJudge, Success) {
    EXPECT_EQ(judged(0, answer("Success", "Add VD Succeeded.")), "done");
    EXPECT_EQ(judged(0, answer("Success", "None",
                               R"({"Ctrl":0,"Status":"Success","ErrCd":0,"ErrMsg":"-"})")),
              "done");
}

TEST(StorcliJudge, WordsAndDashesMoveWithTheVersions) {
    for (const char* const words : {"Add VD Succeeded.", "Add VD succeeded", "None", "-"}) {
        EXPECT_EQ(judged(0, answer("Success", words)), "done") << words;
    }
    EXPECT_EQ(judged(0, answer("Success", "None",
                               R"({"VD":239,"Status":"Success","ErrCd":"-","ErrMsg":"-"})")),
              "done");
    // A refused capacity has no row of details that tells a message.
    EXPECT_EQ(judged(13, answer("Failure", "disk doesn't have enough capacity",
                                R"({"VD":"0 KB","ErrCd":13,"Status":"Failed",)"
                                R"("Description":"disk doesn't have enough capacity"})")),
              "refused: disk doesn't have enough capacity (error 13)\n"
              "help: plan for what is there: zolexctl plan POLICIES");
}

TEST(StorcliJudge, AFailureWithExitCode0IsARefusal) {
    EXPECT_EQ(judged(0, answer("Failure", "Operation not allowed.")),
              "refused: Operation not allowed.\n"
              "help: a drive is in use, or the controller does not do this: zolexctl show");
}

TEST(StorcliJudge, ARowOfDetailsIsEnough) {
    EXPECT_EQ(judged(0, answer("Success", "None",
                               R"({"VD":239,"Status":"Failed","ErrCd":"13","ErrMsg":"-"})")),
              "refused: the drives are too small (error 13)\n"
              "help: plan for what is there: zolexctl plan POLICIES");
}

TEST(StorcliJudge, TheExitCodeIsEnough) {
    EXPECT_EQ(judged(46, answer("Success", "None")),
              "refused: a drive does not answer (error 46)\n"
              "help: pull the drive or wait, and go on: --resume");
}

TEST(StorcliJudge, OneControllerOfSeveral) {
    EXPECT_EQ(judged(0, R"({"Controllers":[{"Command Status":{"Status":"Success"}},
{"Command Status":{"Status":"Failure","Description":"un"}}]})"),
              "refused: un");
}

TEST(StorcliJudge, AnAnswerOfAnotherControllerIsNone) {
    const std::string own = answer("Success", "Add VD Succeeded.");
    const std::size_t at = own.find("\"Controller\" : 0");
    ASSERT_NE(at, std::string::npos);
    const std::string other = std::string(own).replace(at, 16, "\"Controller\" : 1");
    EXPECT_EQ(judged(0, other), "refused: the answer is of controller 1");
    EXPECT_TRUE(storcli::judge("STORCLI /c1/v239 del J nolog", 0, other).isDone);
    EXPECT_FALSE(storcli::judge("STORCLI /c11/v239 del J nolog", 0, other).isDone);
    EXPECT_TRUE(storcli::judge("STORCLI show J nolog", 0, other).isDone); // of no controller
}

TEST(StorcliJudge, OfTwoEqualKeysTheFirstCountsAsInACapture) {
    EXPECT_EQ(
        judged(0, R"({"Controllers":[{"Command Status":{"Status":"Failure","Status ":"Success",
"Description":"not now","Description":"-"}}]})"),
        "refused: not now");
    EXPECT_EQ(judged(0, R"({"Controllers":[{"Command Status":{"Status":"Failure",
"Description":"not now"}}],"Controllers":[{"Command Status":{"Status":"Success"}}]})"),
              "refused: not now");
}

TEST(StorcliJudge, BytesThatNoJsonMayHoldAreNoReasonNotToReadIt) {
    EXPECT_EQ(judged(0, answer("Success", "Add\tVD \xff")), "done");
    EXPECT_EQ(judged(0, "Loader\n" + answer("Failure", "not\tnow \xff") + "Bye\n"),
              "refused: not now ?");
}

TEST(StorcliJudge, NumbersAreTextsAndTextsNumbers) {
    for (const char* const code : {"50", "\"50\"", "\" 50 \""}) {
        EXPECT_EQ(judged(0, answer("Success", "None",
                                   R"({"VD":239,"Status":"-","ErrMsg":"no","ErrCd ":)" +
                                       std::string(code) + "}")),
                  "refused: no (error 50)\n"
                  "help: a drive is in use, foreign or bad: zolexctl show")
            << code;
    }
    EXPECT_EQ(judged(0, answer("Success", "None",
                               R"({"VD":239,"Status":"N/A","ErrCd":"N/A","ErrMsg":"N/A"})")),
              "done");
    // A code that is no number is none of success.
    EXPECT_EQ(judged(0, answer("Success", "None",
                               R"({"VD":239,"Status":"-","ErrCd":"0x32","ErrMsg":"no"})")),
              "refused: no");
}

TEST(StorcliJudge, NoAnswer) {
    EXPECT_EQ(judged(0, ""), "refused: it printed no answer that can be read");
    EXPECT_EQ(judged(0, "{\"Controllers\":[{\"Command Sta"),
              "refused: it printed no answer that can be read");
    EXPECT_EQ(judged(0, "{\"Controllers\":[]}"), "refused: it ended with exit code 0");
}

TEST(StorcliJudge, TextInThePlaceOfJson) {
    EXPECT_EQ(judged(0, "CLI Version = 007\nStatus = Success\nDescription = Add VD Succeeded.\n"),
              "done");
    EXPECT_EQ(judged(255, "Status = Failure\nDescription = syntax error, unexpected TOKEN_JBOD\n"),
              "refused: syntax error, unexpected TOKEN_JBOD (error 255)");
}

TEST(StorcliJudge, WithoutNologWhereItIsNotKnown) {
    EXPECT_EQ(judged(255, answer("Failure", "Un-supported Command")),
              "refused: Un-supported Command (error 255)\n"
              "instead: STORCLI /c0 add vd r0 drives=1:0 J");
}

TEST(StorcliJudge, AVolumeOfTheSystemStays) {
    EXPECT_EQ(judged(255, answer("Failure", "Delete VD failed",
                                 R"({"VD":0,"Status":"Failed","ErrCd":255,)"
                                 R"("ErrMsg":"VD has OS/FS, use force"})")),
              "refused: VD has OS/FS, use force (error 255)\n"
              "help: the system has files there; move them, or delete it by hand");
}

TEST(StorcliJudge, EveryRowHasATextAndTheyAreInOrder) {
    std::int32_t last = 0;
    for (const storcli::ErrorRow& row : storcli::errorRows()) {
        EXPECT_GT(row.code, last);
        EXPECT_FALSE(row.text.empty());
        last = row.code;
    }
}

DriveFacts driveOf(DriveState state, const char* word) {
    DriveFacts drive;
    drive.state = state;
    drive.reportedState = word;
    drive.capacityBytes = 1000 * mb;
    return drive;
}

TEST(StorcliLimits, WhyADriveIsNotUsable) {
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::free, "UGood")), "");
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::member, "Onln")), "");
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::hotspare, "GHS")), "");
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::jbod, "JBOD")),
              "it is a JBOD drive: the system has it as it is");
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::failed, "UBad")),
              "it is UBad, which is no good drive");
    EXPECT_EQ(storcli::whyNotUsable(driveOf(DriveState::unknown, "Tmrw")),
              "its state is not known: Tmrw");
    DriveFacts locked = driveOf(DriveState::free, "UGood");
    locked.barred = "locked by its encryption";
    EXPECT_EQ(storcli::whyNotUsable(locked), "locked by its encryption");
}

TEST(StorcliLimits, AsToldElseUsual) {
    Facts facts;
    EXPECT_EQ(storcli::limits(facts).mostDrivesPerSpan, 32U);
    EXPECT_EQ(storcli::limits(facts).mostSpans, 8U);
    EXPECT_FALSE(storcli::limits(facts).mixesMedia);
    facts.abilities.mostSpans = 4;
    facts.abilities.mixesMedia = true;
    facts.maxStripSizeBytes = 256 * 1024;
    facts.raidTypes = {"RAID0", "RAID1"};
    EXPECT_EQ(storcli::limits(facts).mostSpans, 4U);
    EXPECT_TRUE(storcli::limits(facts).mixesMedia);
    EXPECT_EQ(storcli::limits(facts).mostStripBytes, 256U * 1024U);
    EXPECT_EQ(storcli::limits(facts).raidTypes, (std::vector<std::string>{"RAID0", "RAID1"}));
}

} // namespace
} // namespace zolex::companion

#include "companion/machine/ReadOnlyPlatform.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using std::chrono::seconds;

TEST(ReadOnlyPlatform, ReadingLinesOfEveryUtilityGoThrough) {
    for (const char* const line :
         {"UTIL.BAT MEGACLI -LdPdInfo -a0 \n", "UTIL.BAT MEGACLI -pdList -a14",
          "UTIL.BAT MEGACLI -adpallinfo -a3\r\n", "UTIL.BAT ARCCONF GETCONFIG 1 AL\n",
          "UTIL.BAT HRCONF GETCONFIG 15 AL", "UTIL.BAT QTCSEND GETCONFIG 2 AL",
          "UTIL.BAT CFGGEN 0 DISPLAY \n", "UTIL.BAT CFGGEN1.02.02 1 DISPLAY",
          "UTIL.BAT HYPERWIN /L /D00 \n", "UTIL.BAT HYPERWIN /L /D20", "hwdetect.exe /i",
          "UTIL.BAT MEGACLI -ZOLEXCTL-NO-SUCH-VERB",
          "UTIL.BAT CFGGEN1.02.02 -ZOLEXCTL-NO-SUCH-VERB"}) {
        zolex::test::FakePlatform system;
        ReadOnlyPlatform platform(system);
        EXPECT_TRUE(isReadingLine(line)) << line;
        EXPECT_EQ(platform.runChild(line, true, seconds(1)).outcome, ChildOutcome::ended);
        EXPECT_EQ(system.children, std::vector<std::string>{line});
    }
}

TEST(ReadOnlyPlatform, AllElseThrowsAndReachesNothing) {
    for (const char* const line : {"",
                                   "UTIL.BAT",
                                   "UTIL.BAT MEGACLI",
                                   "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
                                   "UTIL.BAT MEGACLI -pdList -a0 -CFGCLR",
                                   "UTIL.BAT MEGACLI -pdList -a0 & format c:",
                                   "UTIL.BAT MEGACLI -pdList -a0\nUTIL.BAT MEGACLI -CFGCLR -A0",
                                   " UTIL.BAT MEGACLI -pdList -a0",
                                   "UTIL.BAT MEGACLI  -pdList -a0",
                                   "util.bat MEGACLI -pdList -a0",
                                   "UTIL.BAT MEGACLI -pdList -a15",
                                   "UTIL.BAT MEGACLI -pdList -a-1",
                                   "UTIL.BAT ARCCONF GETCONFIG 0 AL",
                                   "UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT",
                                   "UTIL.BAT ARCCONF DELETE 1 ARRAY ALL",
                                   "UTIL.BAT CFGGEN 0 DELETE NOPROMPT",
                                   "UTIL.BAT HYPERWIN /Ea",
                                   "UTIL.BAT HYPERWIN /L /D30",
                                   "hwdetect.exe",
                                   "hwdetect.exe /i /x",
                                   "UTIL.BAT MEGACLI -ZOLEXCTL-NO-SUCH-VERB -CFGCLR",
                                   "-ZOLEXCTL-NO-SUCH-VERB",
                                   "UTIL.BAT FORMAT -ZOLEXCTL-NO-SUCH-VERB",
                                   "X:\\UTIL.BAT MEGACLI -pdList -a0"}) {
        zolex::test::FakePlatform system;
        ReadOnlyPlatform platform(system);
        EXPECT_FALSE(isReadingLine(line)) << line;
        EXPECT_THROW(static_cast<void>(platform.runChild(line, true, seconds(1))), NotForReading)
            << line;
        EXPECT_TRUE(system.children.empty()) << line;
    }
}

TEST(ReadOnlyPlatform, FilesAreOpenedForReadingButForTheOutputs) {
    zolex::test::FakePlatform system;
    system.fileFake.files["policies.ini"] = "x";
    ReadOnlyPlatform platform(system, {"out.json", ""});
    FileSystem& files = platform.files();
    EXPECT_TRUE(files.isFile("policies.ini"));
    EXPECT_NE(files.open("policies.ini", "r"), nullptr);
    EXPECT_NE(files.open("policies.ini", "rb"), nullptr);
    for (const char* const mode : {"w", "a", "r+", "w+", "a+", "rb+"}) {
        EXPECT_THROW(static_cast<void>(files.open("policies.ini", mode)), NotForReading) << mode;
    }
    constexpr auto kept = FileSystem::WhenInterrupted::kept;
    EXPECT_THROW(static_cast<void>(files.create("policies.ini", "", kept)), NotForReading);
    EXPECT_THROW(static_cast<void>(files.remove("policies.ini")), NotForReading);
    EXPECT_THROW(static_cast<void>(files.lock("policies.ini", seconds(0))), NotForReading);
    EXPECT_THROW(static_cast<void>(files.discard(nullptr, "policies.ini")), NotForReading);
    EXPECT_THROW(static_cast<void>(files.create("out.jsonx", "", kept)), NotForReading);
    EXPECT_THROW(static_cast<void>(files.create("", "", kept)), NotForReading);
    EXPECT_THROW(static_cast<void>(files.create(".x", "", kept)), NotForReading);
    EXPECT_EQ(system.fileFake.files.size(), 1U);
    EXPECT_EQ(system.fileFake.files["policies.ini"], "x");
    EXPECT_NE(files.create("out.json", "", kept), nullptr);
    EXPECT_NE(files.create("out.json.new", "", kept), nullptr);
    EXPECT_TRUE(files.remove("out.json"));
}

} // namespace
} // namespace zolex::companion

#include "platform/ProgramLookup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zolex {
namespace {

using List = std::vector<std::string>;

/// The path found where `programs` exist; "-" for none. `asked` gets the paths that were looked at.
std::string found(std::string_view name, const ProgramPlaces& places, const List& programs,
                  List* asked = nullptr) {
    const auto path = findProgram(name, places, [&](const std::string& candidate) {
        if (asked != nullptr) {
            asked->push_back(candidate);
        }
        return std::find(programs.begin(), programs.end(), candidate) != programs.end();
    });
    return path.value_or("-");
}

const ProgramPlaces places{"/opt/z", "/bin:/usr/bin"};

TEST(ProgramLookup, LooksBesideTheProgramThenHereThenAlongThePath) {
    List asked;
    EXPECT_EQ(found("hwdetect.exe", places, {}, &asked), "-");
    EXPECT_EQ(asked, (List{"/opt/z/hwdetect.exe", "./hwdetect.exe", "/bin/hwdetect.exe",
                           "/usr/bin/hwdetect.exe"}));
}

TEST(ProgramLookup, TakesTheFirstThatIsAProgram) {
    List left{"/opt/z/u", "./u", "/bin/u", "/usr/bin/u"};
    while (!left.empty()) {
        EXPECT_EQ(found("u", places, left), left.front());
        left.erase(left.begin());
    }
}

TEST(ProgramLookup, ANameWithASlashStandsAsItIs) {
    for (const char* name : {"/x/u", "./u", "sub/u", "u/"}) {
        List asked;
        EXPECT_EQ(found(name, places, {}, &asked), name);
        EXPECT_TRUE(asked.empty());
    }
}

TEST(ProgramLookup, ABackslashCountsAsASlash) {
    EXPECT_EQ(found("tools\\UTIL.BAT", places, {}), "tools/UTIL.BAT");
    EXPECT_EQ(found(".\\UTIL.BAT", places, {}), "./UTIL.BAT");
    EXPECT_EQ(found("\\a/b\\c", places, {}), "/a/b/c");
}

TEST(ProgramLookup, LetterCaseStandsAsGiven) {
    EXPECT_EQ(found("UTIL.BAT", places, {"./util.bat"}), "-");
    EXPECT_EQ(found("util.bat", places, {"./util.bat"}), "./util.bat");
}

TEST(ProgramLookup, PlacesMayBeEmptyOrEndInASlash) {
    struct {
        ProgramPlaces places;
        List expected;
    } const rows[] = {
        {{"", ""}, {"./u"}},
        {{"/opt/z/", ""}, {"/opt/z/u", "./u"}},
        {{"", ":/bin"}, {"./u", "./u", "/bin/u"}},
        {{"", "/bin::/a/"}, {"./u", "/bin/u", "./u", "/a/u"}},
        {{"/", "/"}, {"/u", "./u", "/u"}},
    };
    for (const auto& row : rows) {
        List asked;
        EXPECT_EQ(found("u", row.places, {}, &asked), "-");
        EXPECT_EQ(asked, row.expected) << row.places.searchPath;
    }
}

TEST(ProgramLookup, AnEmptyNameIsNoProgram) {
    List asked;
    EXPECT_EQ(found("", places, {"./", "/bin/"}, &asked), "-");
    EXPECT_TRUE(asked.empty());
}

} // namespace
} // namespace zolex

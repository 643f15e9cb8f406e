#include "foundation/IniFile.h"

#include "foundation/IniSupport.h"
#include "foundation/Text.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {
namespace {

using namespace std::literals;

using test::absentValue;
using test::iniName;
using test::linesOf;

/// One file in memory, loaded.
class Loaded {
  public:
    explicit Loaded(const std::string& content) {
        files.files[iniName] = content;
        ini = std::make_unique<IniFile>(files, iniName, true);
    }
    std::string read(const char* section, const char* key) {
        return std::string(ini->readString(section, key, absentValue).view());
    }
    std::int32_t number(const char* section, const char* key, std::int32_t defaultValue) {
        return ini->readInteger(section, key, defaultValue);
    }

    test::FakeFileSystem files;
    std::unique_ptr<IniFile> ini;
};

using Lines = std::vector<std::string>;

TEST(IniFile, LoadsEveryLineTrimmedAndKeepsBlankOnes) {
    Loaded file("\n [System] \r\n\tKey = value \t\n\n; comment\nno newline ");
    EXPECT_EQ(linesOf(*file.ini),
              (Lines{"", "[System]", "Key = value", "", "; comment", "no newline"}));
    EXPECT_EQ(file.files.opened, Lines{"r contlist.ini"});
    EXPECT_TRUE(file.ini->isOpen());
    EXPECT_FALSE(file.ini->isModified());
    EXPECT_TRUE(file.ini->name() == iniName);
    EXPECT_TRUE(file.ini->lastValue().isEmpty());
}

TEST(IniFile, AFileThatCannotBeOpenedHasNoLines) {
    test::FakeFileSystem files;
    IniFile ini(files, "absent.ini", false);
    EXPECT_TRUE(ini.lines().empty());
    EXPECT_FALSE(ini.isOpen());
    EXPECT_TRUE(ini.name() == "absent.ini");
    EXPECT_TRUE(ini.readString("System", "Key", "default") == "default");
    EXPECT_EQ(ini.readInteger("System", "Key", -1), -1);
}

TEST(IniFile, TheFileIsReadOnceHoweverMuchIsLookedUp) {
    Loaded file("[A]\nx=1\n");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(file.read("A", "x"), "1");
    }
    EXPECT_EQ(file.files.opened.size(), 1U);
}

TEST(IniFile, SectionsAndKeysIgnoreLetterCase) {
    for (const char* section : {"Controller.1", "controller.1", "CONTROLLER.1"}) {
        for (const char* key : {"Type", "TYPE", "type"}) {
            EXPECT_EQ(Loaded("[Controller.1]\nType=3\n").read(section, key), "3");
            EXPECT_EQ(Loaded("[controller.1]\nTYPE = 3\n").read(section, key), "3");
        }
    }
    EXPECT_EQ(Loaded("[Controller.10]\nType=3\n").read("Controller.1", "Type"), absentValue);
    EXPECT_EQ(Loaded("[Controller.1]\nType1=3\n").read("Controller.1", "Type"), absentValue);
}

TEST(IniFile, AKeyBeforeAnySectionIsFoundOnlyWithoutASectionName) {
    Loaded file("Early=1\n[A]\nEarly=2\nLate=3\n");
    EXPECT_EQ(file.read("", "Early"), "1");
    EXPECT_EQ(file.read("A", "Early"), "2");
    EXPECT_EQ(file.read("", "Late"), absentValue);
    EXPECT_EQ(file.read("B", "Early"), absentValue);
    // A header without a name ends the keys before the first section like any other.
    EXPECT_EQ(Loaded("[]\nx=1\n").read("", "x"), absentValue);
    EXPECT_EQ(Loaded("a=0\n[ ]\nx=1\n").read("", "x"), absentValue);
}

TEST(IniFile, AnEmptyValueIsNotTheDefault) {
    Loaded file("[A]\nKey=\nOther=  \t\n");
    EXPECT_EQ(file.read("A", "Key"), "");
    EXPECT_EQ(file.read("A", "Other"), "");
    EXPECT_EQ(file.number("A", "Key", 7), 0);
}

TEST(IniFile, TheValueStandsAfterTheFirstEqualsSign) {
    Loaded file("[A]\nKey=a=b\n  Spaced  =  a  b  \n=nameless\n");
    EXPECT_EQ(file.read("A", "Key"), "a=b");
    EXPECT_EQ(file.read("A", "Spaced"), "a  b");
    EXPECT_EQ(file.read("A", ""), "nameless");
}

TEST(IniFile, TheSectionDecidesAmongEqualKeys) {
    Loaded file("[A]\nKey=1\n[B]\nKey=2\n[C]\n");
    EXPECT_EQ(file.read("A", "Key"), "1");
    EXPECT_EQ(file.read("B", "Key"), "2");
    EXPECT_EQ(file.read("C", "Key"), absentValue);
}

TEST(IniFile, TheFirstSectionAndTheFirstKeyOfANameWin) {
    Loaded file("[A]\nKey=1\nKEY=2\n[B]\nx=3\n[a]\nKey=4\nOnly=5\n[B]\nx=6\n");
    EXPECT_EQ(file.read("A", "Key"), "1");
    EXPECT_EQ(file.read("A", "Only"), absentValue);
    EXPECT_EQ(file.read("B", "x"), "3");
}

TEST(IniFile, CommentsAndLinesWithoutAnEqualsSignAreSkipped) {
    Loaded file("[A]\n; Type=9\n;Type=8\nType\n\n  ;Type=7\nType=3\nx=1;2\n");
    EXPECT_EQ(file.read("A", "Type"), "3");
    EXPECT_EQ(file.read("A", "; Type"), absentValue);
    EXPECT_EQ(file.read("A", "x"), "1;2");
    EXPECT_EQ(Loaded("; [A]\nType=3\n").read("A", "Type"), absentValue);
}

TEST(IniFile, AHeaderEndsAtTheFirstBracketOrAtTheEndOfTheLine) {
    EXPECT_EQ(Loaded("[ A\t]\nx=1\n").read("A", "x"), "1");
    EXPECT_EQ(Loaded("[A] ; about A\nx=1\n").read("A", "x"), "1");
    EXPECT_EQ(Loaded("[A]B]\nx=1\n").read("A", "x"), "1");
    EXPECT_EQ(Loaded("[A\nx=1\n").read("A", "x"), "1");
    EXPECT_EQ(Loaded("[ A B \nx=1\n").read("A B", "x"), "1");
    EXPECT_EQ(Loaded("[[A]\nx=1\n").read("[A", "x"), "1");
    EXPECT_EQ(Loaded("[A=1]\nx=1\n").read("A=1", "x"), "1");
    EXPECT_EQ(Loaded("[x=1\ny=2\n").read("x=1", "y"), "2");
    // The name asked for is taken as it is.
    EXPECT_EQ(Loaded("[ A ]\nx=1\n").read(" A ", "x"), absentValue);
    EXPECT_EQ(Loaded("[A]\n x =1\n").read("A", " x "), absentValue);
}

TEST(IniFile, IntegersAreLeadingOnesAndTheDefaultIsForMissingKeys) {
    Loaded file("[A]\nabc=abc\nmixed=12x\nnegative=-5\nplus=+6\nblank=\nlong=99999999999\n"
                "short=-99999999999\n");
    EXPECT_EQ(file.number("A", "abc", 9), 0);
    EXPECT_EQ(file.number("A", "mixed", 9), 12);
    EXPECT_EQ(file.number("A", "negative", 9), -5);
    EXPECT_EQ(file.number("A", "plus", 9), 6);
    EXPECT_EQ(file.number("A", "blank", 9), 0);
    EXPECT_EQ(file.number("A", "long", 9), 2147483647);
    EXPECT_EQ(file.number("A", "short", 9), std::numeric_limits<std::int32_t>::min());
    constexpr std::int32_t defaults[] = {-1, 0, 42, std::numeric_limits<std::int32_t>::min(),
                                         std::numeric_limits<std::int32_t>::max()};
    for (const std::int32_t value : defaults) {
        EXPECT_EQ(file.number("A", "missing", value), value);
    }
}

TEST(IniFile, KeepsTheLastValue) {
    Loaded file("[A]\nx= one \n");
    file.read("A", "x");
    EXPECT_TRUE(file.ini->lastValue() == "one");
    file.read("A", "y");
    EXPECT_TRUE(file.ini->lastValue() == absentValue);
    file.number("A", "y", -7);
    EXPECT_TRUE(file.ini->lastValue() == "-7");
    const CString copy = file.ini->readString("A", "x", "");
    file.read("A", "y");
    EXPECT_TRUE(copy == "one");
}

TEST(IniFile, AnAddedLineIsTrimmedAndFoundLikeTheOthers) {
    Loaded file("[A]\nx=1\n");
    EXPECT_TRUE(file.ini->addLine("\t y = 2 \n"));
    EXPECT_TRUE(file.ini->addLine("x=3"));
    EXPECT_TRUE(file.ini->addLine(" [B] "));
    EXPECT_TRUE(file.ini->addLine("z=4"));
    EXPECT_TRUE(file.ini->addLine("  "));
    EXPECT_EQ(linesOf(*file.ini), (Lines{"[A]", "x=1", "y = 2", "x=3", "[B]", "z=4", ""}));
    EXPECT_EQ(file.read("A", "y"), "2");
    EXPECT_EQ(file.read("A", "x"), "1");
    EXPECT_EQ(file.read("B", "z"), "4");
    EXPECT_EQ(file.read("A", "z"), absentValue);
}

// Any bytes

/// The look-up, done by walking the lines.
std::optional<std::string> walk(const Lines& lines, const std::string& section,
                                const std::string& key) {
    bool inSection = section.empty();
    for (const std::string& line : lines) {
        if (line.empty() || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            if (inSection) {
                return std::nullopt;
            }
            const std::size_t end = line.find(']');
            const std::string header =
                line.substr(1, end == std::string::npos ? std::string::npos : end - 1);
            inSection = text::equalsNoCase(text::trim(header), section);
        } else if (inSection && line.find('=') != std::string::npos) {
            const std::size_t equals = line.find('=');
            if (text::equalsNoCase(text::trim(line.substr(0, equals)), key)) {
                return std::string(text::trim(std::string_view(line).substr(equals + 1)));
            }
        }
    }
    return std::nullopt;
}

TEST(IniFile, AnyBytesGiveWhatAWalkOfTheLinesGives) {
    std::mt19937 random(36);
    const auto anyOf = [&random](std::string_view set) { return set[random() % set.size()]; };
    int found = 0;
    for (int run = 0; run < 1200; ++run) {
        std::string content;
        for (std::size_t n = random() % 120; n > 0; --n) {
            content += random() % 20 == 0 ? static_cast<char>(random() % 256)
                                          : anyOf("[[]AaBb==; \t\n\n\n\r1"sv);
        }
        Loaded file(content);
        const Lines lines = linesOf(*file.ini);
        for (const char* section : {"", "A", "b", "aB", "=", "A]"}) {
            for (const char* key : {"", "a", "B", "AB", "1", ";", "[a"}) {
                const auto expected = walk(lines, section, key);
                found += expected ? 1 : 0;
                ASSERT_EQ(file.read(section, key), expected.value_or(absentValue))
                    << "run " << run << ", section " << section << ", key " << key << "\n"
                    << content;
            }
        }
    }
    EXPECT_GT(found, 500);
}

} // namespace
} // namespace zolex

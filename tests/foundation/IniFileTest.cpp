#include "foundation/IniFile.h"

#include "foundation/AllocationFaults.h"
#include "foundation/StandardError.h"
#include "foundation/Text.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
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

constexpr const char* name = "contlist.ini";
constexpr const char* absent = "<absent>";

/// One file in memory, loaded.
class Loaded {
  public:
    explicit Loaded(const std::string& content) {
        files.files[name] = content;
        ini = std::make_unique<IniFile>(files, name, true);
    }
    std::string read(const char* section, const char* key) {
        return std::string(ini->readString(section, key, absent).view());
    }
    std::int32_t number(const char* section, const char* key, std::int32_t defaultValue) {
        return ini->readInteger(section, key, defaultValue);
    }

    test::FakeFileSystem files;
    std::unique_ptr<IniFile> ini;
};

std::vector<std::string> linesOf(const IniFile& ini) {
    std::vector<std::string> lines;
    for (const CString& line : ini.lines()) {
        lines.emplace_back(line.view());
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(IniFile, LoadsEveryLineTrimmedAndKeepsBlankOnes) {
    Loaded file("\n [System] \r\n\tKey = value \t\n\n; comment\nno newline ");
    EXPECT_EQ(linesOf(*file.ini),
              (Lines{"", "[System]", "Key = value", "", "; comment", "no newline"}));
    EXPECT_EQ(file.files.opened, Lines{"r contlist.ini"});
    EXPECT_TRUE(file.ini->isOpen());
    EXPECT_FALSE(file.ini->isModified());
    EXPECT_TRUE(file.ini->name() == name);
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
    EXPECT_EQ(Loaded("[Controller.10]\nType=3\n").read("Controller.1", "Type"), absent);
    EXPECT_EQ(Loaded("[Controller.1]\nType1=3\n").read("Controller.1", "Type"), absent);
}

TEST(IniFile, AKeyBeforeAnySectionIsFoundOnlyWithoutASectionName) {
    Loaded file("Early=1\n[A]\nEarly=2\nLate=3\n");
    EXPECT_EQ(file.read("", "Early"), "1");
    EXPECT_EQ(file.read("A", "Early"), "2");
    EXPECT_EQ(file.read("", "Late"), absent);
    EXPECT_EQ(file.read("B", "Early"), absent);
    // A header without a name ends the keys before the first section like any other.
    EXPECT_EQ(Loaded("[]\nx=1\n").read("", "x"), absent);
    EXPECT_EQ(Loaded("a=0\n[ ]\nx=1\n").read("", "x"), absent);
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
    EXPECT_EQ(file.read("C", "Key"), absent);
}

TEST(IniFile, TheFirstSectionAndTheFirstKeyOfANameWin) {
    Loaded file("[A]\nKey=1\nKEY=2\n[B]\nx=3\n[a]\nKey=4\nOnly=5\n[B]\nx=6\n");
    EXPECT_EQ(file.read("A", "Key"), "1");
    EXPECT_EQ(file.read("A", "Only"), absent);
    EXPECT_EQ(file.read("B", "x"), "3");
}

TEST(IniFile, CommentsAndLinesWithoutAnEqualsSignAreSkipped) {
    Loaded file("[A]\n; Type=9\n;Type=8\nType\n\n  ;Type=7\nType=3\nx=1;2\n");
    EXPECT_EQ(file.read("A", "Type"), "3");
    EXPECT_EQ(file.read("A", "; Type"), absent);
    EXPECT_EQ(file.read("A", "x"), "1;2");
    EXPECT_EQ(Loaded("; [A]\nType=3\n").read("A", "Type"), absent);
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
    EXPECT_EQ(Loaded("[ A ]\nx=1\n").read(" A ", "x"), absent);
    EXPECT_EQ(Loaded("[A]\n x =1\n").read("A", " x "), absent);
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
    EXPECT_TRUE(file.ini->lastValue() == absent);
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
    EXPECT_EQ(file.read("A", "z"), absent);
}

TEST(IniFile, NothingIsWrittenUnlessModified) {
    test::FakeFileSystem files;
    files.files[name] = " a = 1 \n";
    {
        IniFile ini(files, name, true);
        ini.addLine("b=2");
        EXPECT_FALSE(ini.isModified());
    }
    EXPECT_EQ(files.files[name], " a = 1 \n");
    EXPECT_EQ(files.opened, Lines{"r contlist.ini"});
    {
        IniFile ini(files, name, true);
        ini.setModified(true);
        ini.setModified(false);
    }
    EXPECT_EQ(files.files[name], " a = 1 \n");
}

TEST(IniFile, AModifiedFileIsWrittenBackWithItsLinesTrimmed) {
    test::FakeFileSystem files;
    files.files[name] = "; head\r\n\r\n [A] \r\n  x = 1  \r\n";
    {
        IniFile ini(files, name, true);
        ini.addLine(" y=2 ");
        ini.setModified(true);
        EXPECT_TRUE(ini.isModified());
    }
    EXPECT_EQ(files.files[name], "; head\n\n[A]\nx = 1\ny=2\n");
    EXPECT_EQ(files.opened, (Lines{"r contlist.ini", "w+ contlist.ini"}));
}

TEST(IniFile, WritingBackMakesAFileThatWasAbsent) {
    test::FakeFileSystem files;
    {
        IniFile ini(files, name, true);
        ini.addLine("[A]");
        ini.setModified(true);
    }
    EXPECT_EQ(files.files[name], "[A]\n");
}

TEST(IniFile, ADeviceThatFailsEndsTheWritingBackAndNothingElse) {
    const std::string whole = "[A]\nx=1\ny=2\n";
    for (long long space = 0; space <= static_cast<long long>(whole.size()); ++space) {
        test::FakeFileSystem files;
        files.files[name] = whole;
        {
            IniFile ini(files, name, true);
            ini.setModified(true);
            files.spaceLeft = space;
        }
        // What fitted stands there; no line follows one that was cut.
        EXPECT_EQ(files.files[name], whole.substr(0, static_cast<std::size_t>(space)));
    }
    {
        test::FakeFileSystem files;
        files.files[name] = whole;
        files.failClose = true;
        IniFile(files, name, true).setModified(true);
        EXPECT_EQ(files.files[name], whole);
    }
    {
        test::FakeFileSystem files;
        files.files[name] = whole;
        files.refused = {"w+ contlist.ini"};
        IniFile(files, name, true).setModified(true);
        EXPECT_EQ(files.files[name], whole);
    }
}

// Memory

constexpr int saysFalse = 7;

/// Adds `line` while the n-th request for memory fails; ends the process with what it answered.
[[noreturn]] void addLineShortOfMemory(const CString& line, std::size_t n) {
    test::FakeFileSystem files;
    files.files[name] = "[A]\nx=1\n";
    IniFile ini(files, name, true);
    const CString text(line);
    test::failAllocation(test::Allocation::throwing, n);
    const bool added = ini.addLine(text);
    test::failAllocation(test::Allocation::throwing, 0);
    // The line is held and found, or neither; what was there stays.
    const bool held = linesOf(ini).size() == 3;
    const bool found = ini.readString("A", "a key longer than any short buffer", absent) == "2";
    const bool kept = ini.readString("A", "x", absent) == "1";
    if (held != added || found != added || !kept) {
        std::exit(9);
    }
    std::exit(added ? 0 : saysFalse);
}

TEST(IniFileDeathTest, ALineWithoutMemoryIsReportedAndTheProgramGoesOn) {
    const CString line("a key longer than any short buffer=2");
    test::FakeFileSystem files;
    files.files[name] = "[A]\nx=1\n";
    IniFile ini(files, name, true);
    test::failAllocation(test::Allocation::throwing, 0);
    ASSERT_TRUE(ini.addLine(line));
    const std::size_t requests = test::allocationsAsked(test::Allocation::throwing);
    ASSERT_GE(requests, 1U);
    for (std::size_t n = 1; n <= requests; ++n) {
        EXPECT_EXIT(addLineShortOfMemory(line, n), testing::ExitedWithCode(saysFalse),
                    test::StandardErrorIs(test::memoryReport("IniFile.AddLine()")))
            << n;
    }
    EXPECT_EXIT(addLineShortOfMemory(line, requests + 1), testing::ExitedWithCode(0),
                test::StandardErrorIs(""));
}

/// A file whose bytes arrive together with a shortage of memory.
class ShortFile : public File {
  public:
    explicit ShortFile(std::size_t failing) : failing_(failing) {}
    std::size_t read(std::span<char> bytes) override {
        constexpr std::string_view content = "[A]\nx=1\ny=2\nz=3\n";
        if (done_) {
            return 0;
        }
        done_ = true;
        std::copy(content.begin(), content.end(), bytes.begin());
        test::failAllocation(test::Allocation::throwing, failing_);
        return content.size();
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    bool failed() const override { return false; }
    bool rewind() override { return false; }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    std::size_t failing_;
    bool done_ = false;
};

class ShortFileSystem : public FileSystem {
  public:
    explicit ShortFileSystem(std::size_t failing) : failing_(failing) {}
    std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
        return std::make_unique<ShortFile>(failing_);
    }
    bool remove(std::string_view /*name*/) override { return false; }

  private:
    std::size_t failing_;
};

/// Ends the process with the number of lines that were loaded, checked to be the first ones.
[[noreturn]] void loadShortOfMemory(std::size_t n) {
    ShortFileSystem files(n);
    const IniFile ini(files, name, true);
    test::failAllocation(test::Allocation::throwing, 0);
    const Lines all = {"[A]", "x=1", "y=2", "z=3"};
    const Lines loaded = linesOf(ini);
    const bool isStart =
        loaded.size() <= all.size() && std::equal(loaded.begin(), loaded.end(), all.begin());
    std::exit(isStart ? static_cast<int>(loaded.size()) : 99);
}

TEST(IniFileDeathTest, TheLoadStopsAtTheFirstLineWithoutMemory) {
    EXPECT_EXIT(loadShortOfMemory(0), testing::ExitedWithCode(4), test::StandardErrorIs(""));
    int stopped = 0;
    const auto stopsEarly = [&stopped](int status) {
        int lines = 0;
        while (lines <= 4 && !testing::ExitedWithCode(lines)(status)) {
            ++lines;
        }
        stopped = lines;
        return lines < 4;
    };
    int previous = 0;
    for (std::size_t n = 1; n <= 4; ++n) {
        EXPECT_EXIT(loadShortOfMemory(n), stopsEarly,
                    test::StandardErrorIs(test::memoryReport("IniFile.AddLine()")))
            << n;
        EXPECT_GE(stopped, previous) << n;
        previous = stopped;
    }
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
                ASSERT_EQ(file.read(section, key), expected.value_or(absent))
                    << "run " << run << ", section " << section << ", key " << key << "\n"
                    << content;
            }
        }
    }
    EXPECT_GT(found, 500);
}

} // namespace
} // namespace zolex

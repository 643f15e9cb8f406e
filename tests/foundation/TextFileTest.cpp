#include "foundation/TextFile.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex {
namespace {

using namespace std::literals;

constexpr const char* textName = "contlist.ini";

/// Every line of `content`, as they are read.
std::vector<std::string> readLines(const std::string& content) {
    test::FakeFileSystem files;
    files.files[textName] = content;
    TextFile file(files);
    EXPECT_TRUE(file.open(textName, "r"));
    std::vector<std::string> lines;
    CString line;
    while (file.readLine(line)) {
        lines.emplace_back(line.view());
    }
    EXPECT_TRUE(file.atEnd());
    EXPECT_TRUE(line.isEmpty());
    return lines;
}

/// What readLines must give, computed one byte at a time.
std::vector<std::string> linesOfText(const std::string& content) {
    std::vector<std::string> lines(1);
    for (const char c : content) {
        lines.back() += c;
        if (c == '\n') {
            lines.emplace_back();
        }
    }
    for (std::string& line : lines) {
        if (line.ends_with("\r\n")) {
            line.erase(line.size() - 2, 1);
        }
        std::erase(line, '\0');
    }
    if (lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(TextFile, ReadsLinesUpToAndIncludingTheNewline) {
    EXPECT_EQ(readLines(""), Lines{});
    EXPECT_EQ(readLines("a"), Lines{"a"});
    EXPECT_EQ(readLines("a\n"), Lines{"a\n"});
    EXPECT_EQ(readLines("\n"), Lines{"\n"});
    EXPECT_EQ(readLines("\n\na\n\n"), (Lines{"\n", "\n", "a\n", "\n"}));
    EXPECT_EQ(readLines(" a \nb"), (Lines{" a \n", "b"}));
}

TEST(TextFile, DropsTheCarriageReturnOfALineEnd) {
    EXPECT_EQ(readLines("a\r\n\r\nb\r\n"), (Lines{"a\n", "\n", "b\n"}));
    EXPECT_EQ(readLines("a\rb\r\r\n"), Lines{"a\rb\r\n"});
    EXPECT_EQ(readLines("a\r"), Lines{"a\r"});
    EXPECT_EQ(readLines("\r"), Lines{"\r"});
}

// Symptom: a line that began with a NUL byte ended the reading of the whole file.
TEST(TextFile, DropsNulBytes) {
    EXPECT_EQ(readLines("a\0b\n\0c\n\0\nd\n"s), (Lines{"ab\n", "c\n", "\n", "d\n"}));
    EXPECT_EQ(readLines("a\n\0\0"s), Lines{"a\n"});
}

TEST(TextFile, LinesLongerThanItsBufferStayWhole) {
    for (const std::size_t length :
         {4093U, 4094U, 4095U, 4096U, 4097U, 8191U, 8192U, 8193U, 50000U}) {
        const std::string line(length, 'x');
        EXPECT_EQ(readLines(line), Lines{line}) << length;
        EXPECT_EQ(readLines(line + "\nend"), (Lines{line + "\n", "end"})) << length;
        EXPECT_EQ(readLines(line + "\r\nend\r\n"), (Lines{line + "\n", "end\n"})) << length;
    }
}

TEST(TextFile, ReadsAnyBytes) {
    std::mt19937 random(12);
    for (int run = 0; run < 100; ++run) {
        std::string content(random() % 10000, ' ');
        for (char& c : content) {
            c = random() % 20 == 0 ? "\n\r\0 "[random() % 4] : static_cast<char>(random() % 256);
        }
        ASSERT_EQ(readLines(content), linesOfText(content)) << "run " << run;
    }
}

TEST(TextFile, TheEndIsMetWhenNoByteFollows) {
    test::FakeFileSystem files;
    files.files["with"] = "a\n";
    files.files["without"] = "a";
    TextFile file(files);
    CString line;
    ASSERT_TRUE(file.open("with", "r"));
    EXPECT_FALSE(file.atEnd());
    EXPECT_TRUE(file.readLine(line));
    EXPECT_FALSE(file.atEnd());
    EXPECT_FALSE(file.readLine(line));
    EXPECT_TRUE(file.atEnd());
    ASSERT_TRUE(file.open("without", "r"));
    EXPECT_FALSE(file.atEnd());
    EXPECT_TRUE(file.readLine(line));
    EXPECT_TRUE(line == "a");
    EXPECT_TRUE(file.atEnd());
    EXPECT_FALSE(file.readLine(line));
}

TEST(TextFile, OpensInTheModeAskedForAndKeepsTheName) {
    test::FakeFileSystem files;
    files.files["a.txt"] = "first\nsecond\n";
    TextFile file(files);
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.name().isEmpty());
    EXPECT_FALSE(file.open("absent.txt", "r"));
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.name() == "absent.txt");
    CString line;
    EXPECT_TRUE(file.open("a.txt", "r"));
    EXPECT_TRUE(file.isOpen());
    EXPECT_TRUE(file.readLine(line));
    // Opening again starts at the front.
    EXPECT_TRUE(file.open("a.txt", "r"));
    EXPECT_TRUE(file.readLine(line));
    EXPECT_TRUE(line == "first\n");
    EXPECT_TRUE(file.open("b.txt", "w+"));
    EXPECT_EQ(files.opened, (Lines{"r absent.txt", "r a.txt", "r a.txt", "w+ b.txt"}));
}

TEST(TextFile, WritesLines) {
    test::FakeFileSystem files;
    files.files[textName] = "old\n";
    TextFile file(files);
    ASSERT_TRUE(file.open(textName, "w"));
    EXPECT_TRUE(file.writeLine("[System]"));
    EXPECT_TRUE(file.writeLine(""));
    EXPECT_TRUE(file.writeLine("a=1"));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(files.files[textName], "[System]\n\na=1\n");
    ASSERT_TRUE(file.open(textName, "a"));
    EXPECT_TRUE(file.writeLine("b=2"));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(files.files[textName], "[System]\n\na=1\nb=2\n");
}

TEST(TextFile, AFullDeviceIsAWriteErrorAtEveryByte) {
    for (long long space = 0; space <= 6; ++space) {
        test::FakeFileSystem files;
        files.spaceLeft = space;
        TextFile file(files);
        ASSERT_TRUE(file.open(textName, "w+"));
        EXPECT_EQ(file.writeLine("ab"), space >= 3) << space;
        EXPECT_EQ(file.writeLine("cd"), space >= 6) << space;
    }
}

TEST(TextFile, AFileThatIsNotOpenForItGivesAndTakesNothing) {
    test::FakeFileSystem files;
    files.files[textName] = "a\n";
    TextFile file(files);
    CString line("kept");
    EXPECT_FALSE(file.readLine(line));
    EXPECT_TRUE(line.isEmpty());
    EXPECT_FALSE(file.writeLine("x"));
    EXPECT_TRUE(file.close());
    ASSERT_TRUE(file.open(textName, "r"));
    EXPECT_FALSE(file.writeLine("x"));
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.readLine(line));
    EXPECT_FALSE(file.writeLine("x"));
    EXPECT_EQ(files.files[textName], "a\n");
}

TEST(TextFile, ClosingTellsWhenBufferedTextIsLost) {
    test::FakeFileSystem files;
    TextFile file(files);
    ASSERT_TRUE(file.open(textName, "w"));
    files.failClose = true;
    EXPECT_FALSE(file.close());
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.close());
}

/// A file that counts how often it is asked, and fails after a number of bytes.
class CountedFile : public File {
  public:
    CountedFile(std::string content, int& reads) : content_(std::move(content)), reads_(reads) {}
    std::size_t read(std::span<char> bytes) override {
        ++reads_;
        const std::size_t n = std::min(bytes.size(), content_.size());
        std::copy_n(content_.data(), n, bytes.data());
        content_.erase(0, n);
        return n;
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    bool failed() const override { return false; }
    bool rewind() override { return false; }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    std::string content_;
    int& reads_;
};

class CountedFileSystem : public FileSystem {
  public:
    std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
        return std::make_unique<CountedFile>(content, reads);
    }
    bool remove(std::string_view /*name*/) override { return false; }

    std::string content;
    int reads = 0;
};

TEST(TextFile, ReadsBlocksNotBytes) {
    CountedFileSystem files;
    for (int i = 0; i < 10000; ++i) {
        files.content += "Channel.1=1\n";
    }
    TextFile file(files);
    ASSERT_TRUE(file.open(textName, "r"));
    CString line;
    int lines = 0;
    while (file.readLine(line)) {
        ++lines;
    }
    EXPECT_EQ(lines, 10000);
    EXPECT_LE(files.reads, 120000 / 4096 + 2);
}

// Symptom: a file without line ends was read into memory without bound.
TEST(TextFile, ALineMayHave16MiBAndNoMore) {
    const std::string longest(longestLine, 'x');
    EXPECT_EQ(readLines("a\n" + longest + "\nb"), (Lines{"a\n", longest + "\n", "b"}));
    EXPECT_EQ(readLines(longest + "\r\n"), Lines{longest + "\n"});
    EXPECT_EQ(readLines(longest), Lines{longest});
    for (const char* rest : {"x\nb\n", "x", "xxxx"}) {
        test::FakeFileSystem files;
        files.files[textName] = "a\n" + longest + rest;
        TextFile file(files);
        ASSERT_TRUE(file.open(textName, "r"));
        CString line;
        EXPECT_TRUE(file.readLine(line));
        EXPECT_FALSE(file.failed());
        for (int i = 0; i < 2; ++i) { // and nothing after it
            EXPECT_FALSE(file.readLine(line));
            EXPECT_TRUE(line.isEmpty());
            EXPECT_TRUE(file.failed());
        }
        files.files[textName] = "a\n";
        ASSERT_TRUE(file.open(textName, "r"));
        EXPECT_FALSE(file.failed());
        EXPECT_TRUE(file.readLine(line));
    }
}

} // namespace
} // namespace zolex

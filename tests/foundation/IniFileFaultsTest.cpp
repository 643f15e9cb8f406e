#include "foundation/IniFile.h"

#include "foundation/AllocationFaults.h"
#include "foundation/IniSupport.h"
#include "foundation/StandardError.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {
namespace {

using namespace std::literals;

using test::absentValue;
using test::iniName;
using test::linesOf;

using Lines = std::vector<std::string>;

TEST(IniFile, NothingIsWrittenUnlessModified) {
    test::FakeFileSystem files;
    files.files[iniName] = " a = 1 \n";
    {
        IniFile ini(files, iniName, true);
        ini.addLine("b=2");
        EXPECT_FALSE(ini.isModified());
    }
    EXPECT_EQ(files.files[iniName], " a = 1 \n");
    EXPECT_EQ(files.opened, Lines{"r contlist.ini"});
    {
        IniFile ini(files, iniName, true);
        ini.setModified(true);
        ini.setModified(false);
    }
    EXPECT_EQ(files.files[iniName], " a = 1 \n");
}

TEST(IniFile, AModifiedFileIsWrittenBackWithItsLinesTrimmed) {
    test::FakeFileSystem files;
    files.files[iniName] = "; head\r\n\r\n [A] \r\n  x = 1  \r\n";
    {
        IniFile ini(files, iniName, true);
        ini.addLine(" y=2 ");
        ini.setModified(true);
        EXPECT_TRUE(ini.isModified());
    }
    EXPECT_EQ(files.files[iniName], "; head\n\n[A]\nx = 1\ny=2\n");
    EXPECT_EQ(files.opened, (Lines{"r contlist.ini", "w+ contlist.ini"}));
}

TEST(IniFile, WritingBackMakesAFileThatWasAbsent) {
    test::FakeFileSystem files;
    {
        IniFile ini(files, iniName, true);
        ini.addLine("[A]");
        ini.setModified(true);
    }
    EXPECT_EQ(files.files[iniName], "[A]\n");
}

TEST(IniFile, ADeviceThatFailsEndsTheWritingBackAndNothingElse) {
    const std::string whole = "[A]\nx=1\ny=2\n";
    for (long long space = 0; space <= static_cast<long long>(whole.size()); ++space) {
        test::FakeFileSystem files;
        files.files[iniName] = whole;
        {
            IniFile ini(files, iniName, true);
            ini.setModified(true);
            files.spaceLeft = space;
        }
        // What fitted stands there; no line follows one that was cut.
        EXPECT_EQ(files.files[iniName], whole.substr(0, static_cast<std::size_t>(space)));
    }
    {
        test::FakeFileSystem files;
        files.files[iniName] = whole;
        files.failClose = true;
        IniFile(files, iniName, true).setModified(true);
        EXPECT_EQ(files.files[iniName], whole);
    }
    {
        test::FakeFileSystem files;
        files.files[iniName] = whole;
        files.refused = {"w+ contlist.ini"};
        IniFile(files, iniName, true).setModified(true);
        EXPECT_EQ(files.files[iniName], whole);
    }
}

/// Files whose n-th write fails, and that one only.
class FaultyFileSystem : public FileSystem {
  public:
    explicit FaultyFileSystem(int failing) : failing_(failing) {}
    std::unique_ptr<File> open(std::string_view /*name*/, const char* mode) override {
        return mode == "w+"sv ? std::make_unique<FaultyFile>(*this) : nullptr;
    }
    bool remove(std::string_view /*name*/) override { return false; }

    std::string written;
    int writes = 0;

  private:
    class FaultyFile : public File {
      public:
        explicit FaultyFile(FaultyFileSystem& owner) : owner_(owner) {}
        std::size_t read(std::span<char> /*bytes*/) override { return 0; }
        std::size_t write(std::string_view bytes) override {
            if (++owner_.writes == owner_.failing_) {
                return 0;
            }
            owner_.written += bytes;
            return bytes.size();
        }
        bool failed() const override { return false; }
        bool rewind() override { return true; }
        bool flush() override { return true; }
        bool close() override { return true; }

      private:
        FaultyFileSystem& owner_;
    };

    int failing_;
};

TEST(IniFile, TheFirstWriteThatFailsIsTheLast) {
    const Lines pieces = {"[A]", "\n", "x=1", "\n", "y=2", "\n"};
    std::string before;
    for (std::size_t n = 1; n <= pieces.size() + 1; ++n) {
        FaultyFileSystem files(static_cast<int>(n));
        IniFile ini(files, iniName, true);
        for (const char* line : {"[A]", "x=1", "y=2"}) {
            ASSERT_TRUE(ini.addLine(line));
        }
        ini.setModified(true);
        const bool succeeds = n > pieces.size();
        EXPECT_EQ(ini.writeBack(), succeeds) << n;
        EXPECT_EQ(ini.isModified(), !succeeds) << n;
        EXPECT_EQ(files.written, before) << n;
        ini.setModified(false);
        before += succeeds ? "" : pieces[n - 1];
    }
}

TEST(IniFile, WritingBackClearsTheModifiedFlagOnlyWhenItSucceeds) {
    test::FakeFileSystem files;
    files.files[iniName] = " x = 1 \n";
    IniFile ini(files, iniName, true);
    ini.setModified(true);
    files.refused = {"w+ contlist.ini"};
    EXPECT_FALSE(ini.writeBack());
    EXPECT_TRUE(ini.isModified());
    files.refused.clear();
    files.failClose = true;
    EXPECT_FALSE(ini.writeBack());
    EXPECT_TRUE(ini.isModified());
    files.failClose = false;
    EXPECT_TRUE(ini.writeBack());
    EXPECT_FALSE(ini.isModified());
    EXPECT_EQ(files.files[iniName], "x = 1\n");
}

// Memory

constexpr int saysFalse = 7;

/// Adds `line` while the n-th request for memory fails; ends the process with what it answered.
[[noreturn]] void addLineShortOfMemory(const CString& line, std::size_t n) {
    test::FakeFileSystem files;
    files.files[iniName] = "[A]\nx=1\n";
    IniFile ini(files, iniName, true);
    test::failAllocation(test::Allocation::throwing, n);
    const bool added = ini.addLine(line);
    test::failAllocation(test::Allocation::throwing, 0);
    // The line is held and found, or neither; what was there stays.
    const bool held = linesOf(ini).size() == 3;
    const bool found =
        ini.readString("A", "a key longer than any short buffer", absentValue) == "2";
    const bool kept = ini.readString("A", "x", absentValue) == "1";
    if (held != added || found != added || !kept) {
        std::exit(9);
    }
    std::exit(added ? 0 : saysFalse);
}

TEST(IniFileDeathTest, ALineWithoutMemoryIsReportedAndTheProgramGoesOn) {
    const CString line("a key longer than any short buffer=2");
    test::FakeFileSystem files;
    files.files[iniName] = "[A]\nx=1\n";
    IniFile ini(files, iniName, true);
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
    const IniFile ini(files, iniName, true);
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

} // namespace
} // namespace zolex

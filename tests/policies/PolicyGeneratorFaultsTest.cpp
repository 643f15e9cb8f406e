#include "policies/PolicyGenerator.h"

#include "policies/GeneratorTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace zolex {
namespace {

using namespace test;

const std::string noTempSpace =
    errorBlock("Could not write to temp space.  ZOLEX requires temp space to run.\n");
const std::string partialData =
    errorBlock("Error writing to policies file.\nWarning: Partial data may have been written.\n");

std::string progressAnd(const std::string& message) {
    return std::string(checkingLine) + noPoliciesLine + generatingLine + message;
}

TEST(PolicyGeneratorFaultsTest, NoTempFile) {
    Generation run;
    run.platform.fileFake.refused = {std::string("w+ ") + temporaryFile};
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_EQ(run.output(), progressAnd(noTempSpace));
    EXPECT_FALSE(run.platform.fileFake.exists("p.ini"));
}

TEST(PolicyGeneratorFaultsTest, PoliciesFileCannotBeOpenedForWriting) {
    for (const bool debug : {false, true}) {
        Generation run;
        run.application.settings.debug = debug;
        run.platform.fileFake.refused = {"a p.ini"};
        fillMegaRaid(run.add(12, 2));
        EXPECT_FALSE(run.run());
        EXPECT_EQ(run.output(),
                  progressAnd(errorBlock("Could not open policies file for writing:  p.ini")));
        EXPECT_EQ(run.platform.fileFake.exists(temporaryFile), debug);
    }
}

TEST(PolicyGeneratorFaultsTest, TheTempFileIsKeptForDebugging) {
    Generation run;
    run.application.settings.debug = true;
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    ASSERT_TRUE(run.platform.fileFake.exists(temporaryFile));
    EXPECT_EQ(run.platform.fileFake.files[temporaryFile], run.file());
    EXPECT_TRUE(run.platform.fileFake.removed.empty());
}

TEST(PolicyGeneratorFaultsTest, AnEmptyTempFileIsNotKept) {
    Generation run;
    run.application.settings.debug = true;
    run.add(12, 2).setCaptured(std::nullopt);
    ASSERT_TRUE(run.run());
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
}

TEST(PolicyGeneratorFaultsTest, ATempFileThatCannotBeFlushedIsKeptForDebuggingEmptyOrNot) {
    for (const bool configured : {false, true}) {
        for (const bool debug : {false, true}) {
            Generation run;
            run.application.settings.debug = debug;
            run.platform.fileFake.failFlush = true;
            if (configured) {
                fillMegaRaid(run.add(12, 2));
            } else {
                run.add(12, 2).setCaptured(std::nullopt);
            }
            EXPECT_FALSE(run.run());
            EXPECT_TRUE(run.output().ends_with(noTempSpace));
            EXPECT_FALSE(run.platform.fileFake.exists("p.ini"));
            EXPECT_EQ(run.platform.fileFake.exists(temporaryFile), debug) << configured;
        }
    }
}

TEST(PolicyGeneratorFaultsTest, AFullDeviceIsReportedWhereverItFillsUp) {
    Generation whole;
    fillMegaRaid(whole.add(12, 2));
    ASSERT_TRUE(whole.run());
    const auto size = static_cast<long long>(whole.file().size());
    // The text is written twice: to the temp file and to the policies file.
    for (long long space = 0; space <= 2 * size; ++space) {
        Generation run;
        run.platform.fileFake.files["p.ini"] = "; mine\n";
        run.platform.fileFake.spaceLeft = space;
        fillMegaRaid(run.add(12, 2));
        const bool done = run.run();
        EXPECT_EQ(done, space == 2 * size) << space;
        EXPECT_EQ(run.output(), progressAnd(space < size ? noTempSpace
                                            : done       ? ""
                                                         : partialData))
            << space;
        const auto copied = static_cast<std::size_t>(std::max(space - size, 0LL));
        EXPECT_EQ(run.file(), "; mine\n" + whole.file().substr(0, copied)) << space;
        EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile)) << space;
    }
}

// A full device that is noticed only when the file is closed was taken for success.
TEST(PolicyGeneratorFaultsTest, AFailingCloseIsReported) {
    Generation run;
    run.platform.fileFake.failClose = true;
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_EQ(run.output(), progressAnd(partialData));
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
}

TEST(PolicyGeneratorFaultsTest, ATempFileThatCannotBeReadAgainIsReported) {
    Generation run;
    run.platform.fileFake.failRewind = true;
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_EQ(run.output(), progressAnd(noTempSpace));
    EXPECT_EQ(run.file(), "");
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
}

TEST(PolicyGeneratorFaultsTest, ATempFileThatCannotBeRemovedIsNoFailure) {
    Generation run;
    run.platform.fileFake.failRemove = true;
    fillMegaRaid(run.add(12, 2));
    EXPECT_TRUE(run.run());
}

/// Counts the operations of files; from the n-th on they fail.
struct Countdown {
    int left = -1; ///< operations that still succeed; negative: all
    int used = 0;

    bool fails() {
        ++used;
        return left >= 0 && used > left;
    }
};

class CountedFile : public File {
  public:
    CountedFile(std::unique_ptr<File> file, Countdown& countdown)
        : file_(std::move(file)), countdown_(countdown) {}

    std::size_t read(std::span<char> bytes) override {
        return note(countdown_.fails()) ? 0 : file_->read(bytes);
    }
    std::size_t write(std::string_view bytes) override {
        return note(countdown_.fails()) ? 0 : file_->write(bytes);
    }
    bool failed() const override { return failed_ || file_->failed(); }
    bool rewind() override { return !note(countdown_.fails()) && file_->rewind(); }
    bool flush() override { return !note(countdown_.fails()) && file_->flush(); }
    bool close() override { return !note(countdown_.fails()) && file_->close(); }

  private:
    bool note(bool fails) {
        failed_ = failed_ || fails;
        return fails;
    }

    std::unique_ptr<File> file_;
    Countdown& countdown_;
    bool failed_ = false;
};

class CountedFiles : public FileSystem {
  public:
    CountedFiles(FileSystem& files, Countdown& countdown) : files_(files), countdown_(countdown) {}

    std::unique_ptr<File> open(std::string_view name, const char* mode) override {
        if (countdown_.fails()) {
            return nullptr;
        }
        auto file = files_.open(name, mode);
        return file ? std::make_unique<CountedFile>(std::move(file), countdown_) : nullptr;
    }
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override {
        if (countdown_.fails()) {
            return nullptr;
        }
        auto file = files_.create(name, other, interrupted);
        return file ? std::make_unique<CountedFile>(std::move(file), countdown_) : nullptr;
    }
    LockResult lock(std::string_view name, std::chrono::milliseconds wait) override {
        if (countdown_.fails()) {
            LockResult busy;
            busy.isBusy = true;
            return busy;
        }
        return files_.lock(name, wait);
    }
    bool remove(std::string_view name) override { return files_.remove(name); }

  private:
    FileSystem& files_;
    Countdown& countdown_;
};

class CountedPlatform : public FakePlatform {
  public:
    FileSystem& files() override { return counted; }
    Countdown countdown;
    CountedFiles counted{fileFake, countdown};
};

const std::string before = "[Policy.mine]\nAppliesTo.1=ALL\n";

/// A capture of one controller whose file operations fail from the n-th on.
struct FaultyGeneration {
    explicit FaultyGeneration(int operations) {
        platform.countdown.left = operations;
        platform.fileFake.files["p.ini"] = before;
        application.settings.policiesFile = "p.ini";
        application.settings.capture = true;
        application.printer().setVerbosity(level::always);
        RAIDController& controller = *controllers.add(*makeController(12, 2));
        controller.setSizeAndTarget(1, 0, 1000, 8);
        controller.captured()->addArray(makeArray({{1, 0}}));
        done = makeGenerator(application).generatePolicies(controllers);
    }

    CountedPlatform platform;
    Application application{platform};
    ControllerList controllers;
    bool done = false;
};

TEST(PolicyGeneratorFaultsTest, WhicheverFileOperationFailsTheRunEndsWithAReport) {
    const FaultyGeneration whole(-1);
    ASSERT_TRUE(whole.done);
    const std::string complete = whole.platform.fileFake.files.at("p.ini");
    const int operations = whole.platform.countdown.used;
    ASSERT_GT(operations, 15);
    for (int n = 0; n < operations; ++n) {
        const FaultyGeneration run(n);
        const std::string output = run.platform.consoleFake.output;
        const std::string content = run.platform.fileFake.files.at("p.ini");
        const bool partial = output.find("Partial data may have been written") != std::string::npos;
        EXPECT_EQ(run.done, output.empty()) << n << output;
        EXPECT_EQ(content.rfind(before, 0), 0U) << n;
        EXPECT_EQ(run.platform.fileFake.exists("ZOLEXM~~.TMP"), false) << n;
        if (run.done) {
            EXPECT_EQ(content.size() > before.size(), true) << n;
        } else if (!partial) {
            EXPECT_EQ(content, before) << n << output;
        }
    }
}

// Symptom: two captures at once into one file chose the same names.
TEST(PolicyGeneratorFaultsTest, ThePoliciesFileIsLockedFromItsReadingToTheEndOfTheAppend) {
    class Watch : public FakePlatform {
      public:
        class Files : public FakeFileSystem {
          public:
            std::unique_ptr<File> open(std::string_view name, const char* mode) override {
                EXPECT_EQ(locked, "p.ini") << mode << name;
                return FakeFileSystem::open(name, mode);
            }
        };
        FileSystem& files() override { return watched; }
        Files watched;
    };
    for (const bool isThere : {false, true}) {
        Watch platform;
        if (isThere) {
            platform.watched.files["p.ini"] = before;
        }
        Application application(platform);
        application.settings.policiesFile = "p.ini";
        application.settings.capture = true;
        ControllerList controllers;
        fillMegaRaid(*controllers.add(*makeController(12, 2)));
        EXPECT_TRUE(makeGenerator(application).generatePolicies(controllers));
        EXPECT_EQ(platform.watched.opened.size(), 3U);
        EXPECT_EQ(platform.watched.lockCalls, std::vector<std::string>{"p.ini 10000"});
        EXPECT_EQ(platform.watched.locked, "");
    }
}

TEST(PolicyGeneratorFaultsTest, APoliciesFileThatAnotherRunHasCannotBeOpened) {
    Generation run;
    run.platform.fileFake.files["p.ini"] = before;
    run.platform.fileFake.busy = true;
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_EQ(run.output(), checkingLine + errorBlock("Could not open policies file:  p.ini\n"));
    EXPECT_EQ(run.file(), before);
    EXPECT_TRUE(run.platform.fileFake.opened.empty());
}

TEST(PolicyGeneratorFaultsTest, AFileThatWasMadeToBeLockedGoesWithTheFailure) {
    Generation run;
    run.application.settings.captureParameters = "z";
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_FALSE(run.platform.fileFake.exists("p.ini"));
    Generation empty;
    empty.add(12, 2).setCaptured(std::nullopt);
    EXPECT_TRUE(empty.run());
    EXPECT_FALSE(empty.platform.fileFake.exists("p.ini"));
}

TEST(PolicyGeneratorFaultsTest, ThePoliciesFileIsNotTheTempFile) {
    Generation run;
    run.application.settings.policiesFile = temporaryFile;
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_NE(run.output().find(noTempSpace), std::string::npos);
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
}

TEST(PolicyGeneratorFaultsTest, TheTempFileOutlastsASignalForDebuggingOnly) {
    for (const bool debug : {false, true}) {
        Generation run;
        run.application.settings.debug = debug;
        fillMegaRaid(run.add(12, 2));
        EXPECT_TRUE(run.run());
        EXPECT_EQ(run.platform.fileFake.interrupted,
                  debug ? FileSystem::WhenInterrupted::kept : FileSystem::WhenInterrupted::removed);
    }
}

} // namespace
} // namespace zolex

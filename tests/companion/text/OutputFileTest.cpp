#include "companion/text/OutputFile.h"

#include "foundation/FileSystem.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace zolex::companion {
namespace {

TEST(OutputFile, OneFileHasManyNames) {
    using output_file::areOne;
    EXPECT_TRUE(areOne("none.json", "none.json"));
    EXPECT_TRUE(areOne("none.json", "./none.json"));
    EXPECT_TRUE(areOne("./none.json", ".//none.json"));
    EXPECT_FALSE(areOne("none.json", "none.jso"));
    EXPECT_FALSE(areOne("none.json", "../none.json"));
    EXPECT_FALSE(areOne("a/none.json", "b/none.json")) << "folders that are not there";
}

using test::TemporaryDirectory;

std::vector<std::string> namesHere() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

/// A file whose device is full behind some bytes, or that cannot be flushed or closed.
class FailingFile : public File {
  public:
    FailingFile(std::unique_ptr<File> file, const std::string& fails)
        : file_(std::move(file)), fails_(fails) {}
    std::size_t read(std::span<char> bytes) override { return file_->read(bytes); }
    std::size_t write(std::string_view bytes) override {
        return file_->write(fails_ == "write" ? bytes.substr(0, 3) : bytes);
    }
    bool failed() const override { return file_->failed(); }
    bool rewind() override { return file_->rewind(); }
    bool flush() override { return file_->flush() && fails_ != "flush"; }
    bool close() override { return file_->close() && fails_ != "close"; }

  private:
    std::unique_ptr<File> file_;
    const std::string& fails_;
};

class FailingFiles : public StandardFileSystem {
  public:
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override {
        return std::make_unique<FailingFile>(StandardFileSystem::create(name, other, interrupted),
                                             fails);
    }
    bool discard(std::unique_ptr<File> file, std::string_view name) override {
        file.reset();
        return remove(name);
    }
    std::string fails;
};

TEST(OutputFile, MakesAFileAndReplacesIt) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    EXPECT_EQ(replaceFile(files, "a.txt", "first\n"), "");
    EXPECT_EQ(replaceFile(files, "a.txt", "2\n"), "");
#ifdef _WIN32
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "2\r\n");
#else
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "2\n");
#endif
    EXPECT_EQ(replaceFile(files, "a.txt", ""), "");
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "");
    directory.write("folder/b.txt", "old");
    EXPECT_EQ(replaceFile(files, "folder/b.txt", "new"), "");
    EXPECT_EQ(TemporaryDirectory::read("folder/b.txt"), "new");
    EXPECT_EQ(namesHere().size(), 2U);
}

TEST(OutputFile, WhatWasThereStaysWhenAnythingFails) {
    const TemporaryDirectory directory;
    for (const char* const fails : {"write", "flush", "close"}) {
        FailingFiles files;
        files.fails = fails;
        directory.write("a.txt", "old");
        EXPECT_EQ(replaceFile(files, "a.txt", "much that is new").substr(0, 7), "a.txt: ") << fails;
        EXPECT_EQ(TemporaryDirectory::read("a.txt"), "old");
        EXPECT_EQ(namesHere(), std::vector<std::string>{"a.txt"});
        EXPECT_NE(replaceFile(files, "b.txt", "much that is new"), "");
        EXPECT_EQ(namesHere(), std::vector<std::string>{"a.txt"}) << fails;
    }
}

TEST(OutputFile, RefusesWhatIsNoFile) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    directory.write("folder/b.txt", "old");
    EXPECT_EQ(replaceFile(files, "folder", "x"), "folder: it is a folder");
    EXPECT_EQ(replaceFile(files, "none/a.txt", "x"), "none/a.txt: there is no such file or folder");
    EXPECT_EQ(replaceFile(files, "", "x"), ": no file has such a name");
    EXPECT_EQ(replaceFile(files, std::string_view("a\0b", 3), "x"),
              std::string("a\0b: no file has such a name", 28));
    EXPECT_EQ(namesHere(), std::vector<std::string>{"folder"});
}

TEST(OutputFile, RefusesAProtectedFile) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    directory.write("a.txt", "old");
    using std::filesystem::perms;
    std::filesystem::permissions("a.txt", perms::owner_read | perms::group_read);
    // To root nothing is protected on some systems.
    if (output_file::standing("a.txt") == output_file::Standing::protectedFile) {
        EXPECT_EQ(replaceFile(files, "a.txt", "x"), "a.txt: writing it is not allowed");
        EXPECT_EQ(TemporaryDirectory::read("a.txt"), "old");
    }
    std::filesystem::permissions("a.txt", perms::owner_all);
}

TEST(OutputFile, LeavesOtherFilesAlone) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    const std::string taken =
        "a.txt.zolexctl-" + std::to_string(output_file::processNumber()) + "-0";
    directory.write(taken, "somebody's");
    EXPECT_EQ(replaceFile(files, "a.txt", "new"), "");
    EXPECT_EQ(TemporaryDirectory::read(taken), "somebody's");
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "new");
}

#ifndef _WIN32
TEST(OutputFile, PosixRefusesASymbolicLinkAndKeepsWhatItLeadsTo) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    directory.write("a.txt", "old");
    std::filesystem::create_symlink("a.txt", "link");
    EXPECT_EQ(replaceFile(files, "link", "new"),
              "link: it is a symbolic link, which would be lost; name the file itself");
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "old");
    EXPECT_TRUE(std::filesystem::is_symlink("link"));
}

TEST(OutputFile, PosixTakesALinkToADeviceForTheDevice) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    std::filesystem::create_symlink("/dev/null", "device");
    std::filesystem::create_symlink(".", "folder");
    std::filesystem::create_symlink("missing", "lost");
    using output_file::Standing;
    EXPECT_EQ(output_file::standing("device"), Standing::device);
    EXPECT_EQ(output_file::standing("folder"), Standing::link);
    EXPECT_EQ(output_file::standing("lost"), Standing::link);
    EXPECT_EQ(output_file::standing("/dev/stdout"), Standing::device);
    EXPECT_EQ(replaceFile(files, "device", "new"), "");
    EXPECT_TRUE(std::filesystem::is_symlink("device"));
}

TEST(OutputFile, PosixKeepsTheRightsOfTheFile) {
    const TemporaryDirectory directory;
    StandardFileSystem files;
    using std::filesystem::perms;
    directory.write("a.txt", "old");
    std::filesystem::permissions("a.txt", perms::owner_read | perms::owner_write);
    EXPECT_EQ(replaceFile(files, "a.txt", "new"), "");
    EXPECT_EQ(std::filesystem::status("a.txt").permissions(),
              perms::owner_read | perms::owner_write);
    EXPECT_EQ(TemporaryDirectory::read("a.txt"), "new");
}

TEST(OutputFile, PosixWritesADeviceAsItIs) {
    StandardFileSystem files;
    EXPECT_EQ(replaceFile(files, "/dev/full", "x"), "/dev/full: no space is left on the device");
    EXPECT_EQ(replaceFile(files, "/dev/null", "x"), "");
    EXPECT_EQ(output_file::standing("/dev/null"), output_file::Standing::device);
}
#endif

} // namespace
} // namespace zolex::companion

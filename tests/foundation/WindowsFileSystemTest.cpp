#ifdef _WIN32

#include "foundation/FileSystem.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <windows.h>

namespace zolex {
namespace {

class WindowsFiles : public ::testing::Test {
  protected:
    std::string read(const std::string& name) {
        const auto file = files.open(name, "r");
        if (!file) {
            return "(not opened)";
        }
        std::array<char, 256> bytes{};
        return {bytes.data(), file->read(bytes)};
    }

    bool write(const std::string& name, const std::string& text, const char* mode = "w") {
        const auto file = files.open(name, mode);
        return file && file->write(text) == text.size() && file->close();
    }

    test::TemporaryDirectory directory;
    StandardFileSystem files;
};

/// The text in the code page of file names.
std::string inActiveCodePage(const std::wstring& text) {
    std::string bytes(4 * text.size(), '\0');
    const int length =
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

TEST_F(WindowsFiles, LineEndsAreWrittenAsCrLfAndReadAsLf) {
    ASSERT_TRUE(write("p.ini", "[Policy.a]\nx = 1\n"));
    EXPECT_EQ(directory.read("p.ini"), "[Policy.a]\r\nx = 1\r\n");
    ASSERT_TRUE(write("p.ini", "y = 2\n", "a"));
    EXPECT_EQ(directory.read("p.ini"), "[Policy.a]\r\nx = 1\r\ny = 2\r\n");
    EXPECT_EQ(read("p.ini"), "[Policy.a]\nx = 1\ny = 2\n");
    directory.write("mixed.ini", "a\r\nb\nc");
    EXPECT_EQ(read("mixed.ini"), "a\nb\nc");
}

TEST_F(WindowsFiles, NamesWithBlanksAndLettersOfTheActiveCodePage) {
    const std::string letters = inActiveCodePage(L"Gr\u00f6\u00dfe \u00e9");
    ASSERT_EQ(letters.find('?'), std::string::npos);
    ASSERT_EQ(CreateDirectoryA(letters.c_str(), nullptr), TRUE);
    const std::string name = letters + "\\my policies " + letters + ".ini";
    ASSERT_TRUE(write(name, "x\n"));
    EXPECT_TRUE(files.isFile(name));
    EXPECT_EQ(read(name), "x\n");
    EXPECT_EQ(read(letters + "/my policies " + letters + ".ini"), "x\n");
    EXPECT_EQ(
        GetFileAttributesW(L"Gr\u00f6\u00dfe \u00e9\\my policies Gr\u00f6\u00dfe \u00e9.ini") &
            FILE_ATTRIBUTE_DIRECTORY,
        0U);
    EXPECT_TRUE(files.remove(name));
    EXPECT_FALSE(files.isFile(name));
}

TEST_F(WindowsFiles, AReadOnlyFileIsReadButNotWritten) {
    ASSERT_TRUE(write("p.ini", "as it was\n"));
    ASSERT_NE(SetFileAttributesA("p.ini", FILE_ATTRIBUTE_READONLY), 0);
    EXPECT_FALSE(write("p.ini", "x", "a"));
    EXPECT_FALSE(write("p.ini", "x", "w"));
    EXPECT_FALSE(files.remove("p.ini"));
    EXPECT_EQ(read("p.ini"), "as it was\n");
    SetFileAttributesA("p.ini", FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFiles, AFileThatAnotherProgramHoldsIsNotOpened) {
    const HANDLE held = CreateFileA("p.ini", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(files.open("p.ini", "r"), nullptr);
    EXPECT_EQ(files.open("p.ini", "a"), nullptr);
    EXPECT_TRUE(files.isFile("p.ini"));
    CloseHandle(held);
    EXPECT_NE(files.open("p.ini", "a"), nullptr);
}

TEST_F(WindowsFiles, AFolderIsNoFile) {
    ASSERT_EQ(CreateDirectoryA("folder", nullptr), TRUE);
    EXPECT_EQ(files.open("folder", "r"), nullptr);
    EXPECT_EQ(files.open("folder", "a"), nullptr);
    EXPECT_FALSE(files.isFile("folder"));
}

} // namespace
} // namespace zolex

#endif

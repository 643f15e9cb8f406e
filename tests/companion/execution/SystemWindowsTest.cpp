#ifdef _WIN32

#include "companion/execution/SystemExecutionFixture.h"

#include <array>

// What only Windows has; SystemExecutionTest.cpp has what every system has.

namespace zolex::companion {
namespace {

using SystemWindows = test::SystemExecutionTest;

TEST_F(SystemWindows, AChildInheritsItsStreamsAlone) {
    SECURITY_ATTRIBUTES inheritable{};
    inheritable.nLength = sizeof inheritable;
    inheritable.bInheritHandle = TRUE;
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    ASSERT_NE(CreatePipe(&reading, &writing, &inheritable, 0), 0);
    const auto child = started("text here stay");
    outputWith(*child, "here");
    CloseHandle(writing);
    DWORD waiting = 0;
    EXPECT_EQ(PeekNamedPipe(reading, nullptr, 0, nullptr, &waiting, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BROKEN_PIPE}) << "nobody else can write";
    CloseHandle(reading);
    kill(child->identity());
}

TEST_F(SystemWindows, AFileThatAProgramKeepsFromOthersIsNoLock) {
    HANDLE const kept = CreateFileA("L", GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(kept, INVALID_HANDLE_VALUE);
    const LockAnswer answer = system->lock("L");
    EXPECT_EQ(answer.lock, nullptr);
    EXPECT_EQ(answer.fault, "another process has it and does not say which");
    CloseHandle(kept);
    EXPECT_NE(system->lock("L").lock, nullptr);
}

/// The key of a system that runs from memory. It is not kept.
class KeyOfTheMemorySystem {
  public:
    KeyOfTheMemorySystem() {
        isMade_ = RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, REG_OPTION_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key_, nullptr) == ERROR_SUCCESS;
    }
    KeyOfTheMemorySystem(const KeyOfTheMemorySystem&) = delete;
    KeyOfTheMemorySystem& operator=(const KeyOfTheMemorySystem&) = delete;
    ~KeyOfTheMemorySystem() {
        if (isMade_) {
            RegCloseKey(key_);
            RegDeleteKeyA(HKEY_LOCAL_MACHINE, name);
        }
    }
    [[nodiscard]] bool isMade() const { return isMade_; }

  private:
    static constexpr const char* name = "SYSTEM\\CurrentControlSet\\Control\\MiniNT";
    HKEY key_ = nullptr;
    bool isMade_ = false;
};

TEST_F(SystemWindows, TheDriveOfASystemInMemoryIsLostAtARestart) {
    std::array<char, MAX_PATH> windows{};
    ASSERT_GT(GetWindowsDirectoryA(windows.data(), static_cast<UINT>(windows.size())), 2U);
    const std::string drive(windows.data(), 2);
    const std::string other = drive.starts_with('D') ? "E:" : "D:";
    EXPECT_FALSE(system->isLostAtRestart(drive + "\\journal"));
    {
        const KeyOfTheMemorySystem key;
        if (!key.isMade()) {
            GTEST_SKIP() << "the registry must not be written";
        }
        EXPECT_TRUE(system->isLostAtRestart(drive + "\\journal"));
        EXPECT_FALSE(system->isLostAtRestart(other + "\\journal"));
    }
    EXPECT_FALSE(system->isLostAtRestart(drive + "\\journal"));
}

} // namespace
} // namespace zolex::companion

#endif

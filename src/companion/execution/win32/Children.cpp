#include "companion/execution/SystemParts.h"
#include "companion/execution/win32/OpenedFile.h"
#include "companion/execution/win32/Processes.h"
#include "companion/machine/System.h"
#include "platform/ChildOutput.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zolex::companion::system_execution {

namespace {

using std::chrono::milliseconds;
using win32::Handle;

/// Bytes of a file behind `from`, at most as many as there is room for; 0 at its end.
std::size_t readAt(HANDLE file, std::size_t from, char* room, std::size_t size) {
    constexpr unsigned wordBits = 32;
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(from);
    place.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(from) >> wordBits);
    DWORD taken = 0;
    return ReadFile(file, room, static_cast<DWORD>(size), &taken, &place) != 0 ? taken : 0;
}

/// The first bytes of a file, at most `most`; fewer where there is no memory for them.
std::string frontOf(HANDLE file, std::size_t most) {
    constexpr std::size_t step = std::size_t{64} << 10U;
    std::string bytes;
    try {
        while (bytes.size() < most) {
            const std::size_t had = bytes.size();
            bytes.resize(had + std::min(step, most - had));
            const std::size_t taken = readAt(file, had, bytes.data() + had, bytes.size() - had);
            bytes.resize(had + taken);
            if (taken == 0) {
                break;
            }
        }
        giveBackUnused(bytes);
    } catch (const std::bad_alloc&) {
        // What has been read counts: the child's end must not be lost for it.
    } catch (const std::length_error&) {
    }
    return bytes;
}

/// A file that children inherit.
Handle openInherited(const std::string& name, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inheritable{};
    inheritable.nLength = sizeof inheritable;
    inheritable.bInheritHandle = TRUE;
    HANDLE const file = CreateFileA(name.c_str(), access, shareAll, &inheritable, creation,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    return Handle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

/// Removes a file, or a link; one that a program still has open gives its name up first.
void removeFile(const std::string& name) {
    const DWORD attributes = GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return;
    }
    const std::string aside = name + "." + std::to_string(GetCurrentProcessId());
    const bool isAside = MoveFileExA(name.c_str(), aside.c_str(), 0) != 0;
    DeleteFileA((isAside ? aside : name).c_str());
}

/// What a child inherits: these handles and no other, so that nobody waits for the end of a stream
/// of this process that a child still has.
class Inheritance {
  public:
    explicit Inheritance(std::array<HANDLE, 2> handles) : handles_(handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
        if (size == 0 || InitializeProcThreadAttributeList(list, 1, 0, &size) == 0) {
            return;
        }
        list_ = list;
        isReady_ =
            UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                      sizeof handles_, nullptr, nullptr) != 0;
    }
    Inheritance(const Inheritance&) = delete;
    Inheritance& operator=(const Inheritance&) = delete;
    ~Inheritance() {
        if (list_ != nullptr) {
            DeleteProcThreadAttributeList(list_);
        }
    }

    /// Null where the system has no such list.
    [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST get() const { return isReady_ ? list_ : nullptr; }

  private:
    std::array<HANDLE, 2> handles_;
    std::vector<char> memory_;
    LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
    bool isReady_ = false;
};

/// In a console of its own that has no window: Ctrl+Break and the end of this one do not reach it.
constexpr DWORD apart = CREATE_NEW_PROCESS_GROUP | CREATE_NO_WINDOW;

/// False, and the last error, when it cannot be started.
bool startApart(std::string_view commandLine, HANDLE input, HANDLE output,
                const std::string& folder, PROCESS_INFORMATION& started) {
    const Inheritance inheritance({input, output});
    STARTUPINFOEXA startup{};
    startup.lpAttributeList = inheritance.get();
    startup.StartupInfo.cb =
        startup.lpAttributeList != nullptr ? sizeof startup : sizeof startup.StartupInfo;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input;
    startup.StartupInfo.hStdOutput = output;
    startup.StartupInfo.hStdError = output;
    const DWORD flags =
        apart | (startup.lpAttributeList != nullptr ? EXTENDED_STARTUPINFO_PRESENT : 0);
    // A job that ends its processes with this one must not end the child, if it lets it go.
    for (const DWORD job : {DWORD{CREATE_BREAKAWAY_FROM_JOB}, DWORD{0}}) {
        std::string writable(commandLine);
        if (CreateProcessA(nullptr, writable.data(), nullptr, nullptr, TRUE, flags | job, nullptr,
                           folder.empty() ? nullptr : folder.c_str(), &startup.StartupInfo,
                           &started) != 0) {
            return true;
        }
        if (GetLastError() != ERROR_ACCESS_DENIED) {
            break;
        }
    }
    return false;
}

class WindowsChild : public StartedChild {
  public:
    explicit WindowsChild(std::shared_ptr<Interruptions> waits) : waits_(std::move(waits)) {}

    bool start(std::string_view commandLine, const std::string& output, const std::string& folder) {
        removeFile(output);
        const Handle writing = openInherited(output, GENERIC_WRITE, CREATE_NEW);
        if (writing.get() == nullptr) {
            return false;
        }
        output_ = openFile(output, GENERIC_READ, shareAll, OPEN_EXISTING);
        const Handle input = openInherited("NUL", GENERIC_READ, OPEN_EXISTING);
        PROCESS_INFORMATION started{};
        if (output_.get() == nullptr || input.get() == nullptr ||
            !startApart(commandLine, input.get(), writing.get(), folder, started)) {
            const DWORD error = GetLastError();
            output_.close();
            DeleteFileA(output.c_str());
            SetLastError(error);
            return false;
        }
        process_ = Handle(started.hProcess);
        CloseHandle(started.hThread);
        identity_.pid = started.dwProcessId;
        try {
            identity_ = identityOf(process_.get(), started.dwProcessId);
        } catch (const std::bad_alloc&) {
            // The child runs: its number alone is told.
        }
        return true;
    }

    [[nodiscard]] ProcessIdentity identity() const override { return identity_; }

    std::optional<ChildResult> wait(milliseconds limit) override {
        const milliseconds start = system::elapsed();
        for (;;) {
            if (WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0) {
                return result();
            }
            const milliseconds passed = system::elapsed() - start;
            if (passed >= limit) {
                return std::nullopt;
            }
            const auto awaited =
                waits_->await(reinterpret_cast<std::intptr_t>(process_.get()), limit - passed);
            if (awaited == Interruptions::Awaited::interruption &&
                WaitForSingleObject(process_.get(), 0) != WAIT_OBJECT_0) {
                return std::nullopt;
            }
        }
    }

    std::string outputSoFar(std::size_t most) override { return frontOf(output_.get(), most); }

  private:
    ChildResult result() {
        constexpr std::uint32_t unknown = 0xFFFFFFFF; // no utility ends with it
        DWORD code = 0;
        ChildResult result{ChildOutcome::ended, unknown, {}};
        if (GetExitCodeProcess(process_.get(), &code) != 0) {
            result.exitCode = code;
        }
        result.output = outputSoFar(mostChildOutput);
        return result;
    }

    std::shared_ptr<Interruptions> waits_;
    Handle process_;
    Handle output_;
    ProcessIdentity identity_;
};

} // namespace

std::unique_ptr<StartedChild> startProgram(std::string_view commandLine, const std::string& output,
                                           std::shared_ptr<Interruptions> waits,
                                           const std::string& folder) {
    if (commandLine.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    auto child = std::make_unique<WindowsChild>(std::move(waits));
    if (!child->start(commandLine, output, folder)) {
        const DWORD error = GetLastError();
        child.reset();
        SetLastError(error);
    }
    return child;
}

} // namespace zolex::companion::system_execution

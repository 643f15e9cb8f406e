#include "companion/execution/LockHolding.h"
#include "companion/execution/LockText.h"
#include "companion/execution/SystemParts.h"
#include "companion/execution/win32/OpenedFile.h"
#include "companion/text/OutputFile.h"

#include <utility>

namespace zolex::companion::system_execution {

namespace {

using win32::Handle;

/// The front of the file; nothing, and the last error, when it cannot be read.
std::optional<std::string> readFront(HANDLE file) {
    LockText text{};
    OVERLAPPED begin{};
    DWORD taken = 0;
    if (ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &taken, &begin) == 0 &&
        GetLastError() != ERROR_HANDLE_EOF) {
        return std::nullopt;
    }
    return std::string(text.data(), taken);
}

/// False, and the last error, when it is not written whole.
bool writeText(HANDLE file, const LockText& text) {
    OVERLAPPED begin{};
    DWORD written = 0;
    if (WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, &begin) == 0) {
        return false;
    }
    if (written != text.size()) {
        SetLastError(ERROR_DISK_FULL);
    }
    return written == text.size();
}

/// The file goes when nobody has it open any more; until then nobody can open it.
void remove(HANDLE file) {
    FILE_DISPOSITION_INFO gone{};
    gone.DeleteFile = TRUE;
    SetFileInformationByHandle(file, FileDispositionInfo, &gone, sizeof gone);
}

/// Held as long as the file is open: nobody else can open it to write meanwhile.
class WindowsRunLock : public RunLock {
  public:
    explicit WindowsRunLock(LockHolder holder) : holder_(std::move(holder)) {}
    WindowsRunLock(const WindowsRunLock&) = delete;
    WindowsRunLock& operator=(const WindowsRunLock&) = delete;
    ~WindowsRunLock() override {
        // Whoever comes next is to know of a child that is left.
        if (file_.get() != nullptr && !leavesChild(holder_)) {
            remove(file_.get());
        }
    }

    void note(const ProcessIdentity& child) override {
        holder_.child = child;
        writeText(file_.get(), lockTextOf(holder_));
    }

    /// The child of a holder that is gone stays noted: it may still run when this process is gone.
    void keepChild(ProcessIdentity child) { holder_.child = std::move(child); }
    [[nodiscard]] LockText text() const { return lockTextOf(holder_); }
    void hold(Handle file) { file_ = std::move(file); }

  private:
    LockHolder holder_;
    Handle file_;
};

/// What one attempt came to.
enum class Attempt { answered, again };

/// One that asks for the lock of a name.
class LockTaker {
  public:
    explicit LockTaker(const std::string& name)
        : name_(name), lock_(std::make_unique<WindowsRunLock>(LockHolder{ownProcess(), {}})) {}

    LockAnswer take() {
        // Others may make and remove the file again and again, and write it a moment after that.
        constexpr int attempts = 100;
        constexpr DWORD pause = 20;
        for (int i = 0; i < attempts; ++i) {
            if (attempt() == Attempt::answered) {
                return std::move(answer_);
            }
            Sleep(pause);
        }
        answer_.fault = "another process has it and does not say which";
        return std::move(answer_);
    }

  private:
    Attempt fail(std::string fault) {
        answer_ = {};
        answer_.fault = std::move(fault);
        return Attempt::answered;
    }

    Attempt attempt() {
        const DWORD attributes = GetFileAttributesA(name_.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            return fail("it is no file");
        }
        SetLastError(NO_ERROR);
        Handle file =
            openFile(name_, GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ, OPEN_ALWAYS);
        const DWORD error = GetLastError();
        if (file.get() == nullptr) {
            if (error == ERROR_SHARING_VIOLATION) {
                return isHeld();
            }
            // One that is removed and still open lets nobody in. What is not allowed stays so.
            if (error == ERROR_ACCESS_DENIED && attributes == INVALID_FILE_ATTRIBUTES) {
                return Attempt::again;
            }
            return fail(lastSystemError());
        }
        const bool isMade = error != ERROR_ALREADY_EXISTS;
        BY_HANDLE_FILE_INFORMATION about{};
        if (GetFileType(file.get()) != FILE_TYPE_DISK) {
            return fail("it is no file");
        }
        if (GetFileInformationByHandle(file.get(), &about) == 0) {
            return fail(lastSystemError());
        }
        if ((about.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
            return fail("it is a symbolic link");
        }
        if (about.nNumberOfLinks > 1) {
            return fail("it has other names, too");
        }
        const auto front = readFront(file.get());
        if (!front || !mayBeLockText(*front)) {
            return fail(front ? "it is not a lock" : lastSystemError());
        }
        return hold(std::move(file), isMade, lockHolderOf(*front));
    }

    Attempt isHeld() {
        const Handle file = openFile(name_, GENERIC_READ, shareAll, OPEN_EXISTING);
        const auto front = file.get() != nullptr ? readFront(file.get()) : std::nullopt;
        auto holder = front ? lockHolderOf(*front) : std::nullopt;
        return tellHolder(std::move(holder), answer_) ? Attempt::answered : Attempt::again;
    }

    void keepWhatRuns(LockHolder before) {
        if (auto child = takeOver(std::move(before), answer_)) {
            lock_->keepChild(std::move(*child));
        }
    }

    /// The lock is had: writes who has it, and tells who had it and is gone.
    Attempt hold(Handle file, bool isMade, std::optional<LockHolder> before) {
        if (before) {
            keepWhatRuns(std::move(*before));
        }
        if (!writeText(file.get(), lock_->text())) {
            std::string fault = lastSystemError();
            if (isMade) {
                remove(file.get());
            }
            return fail(std::move(fault));
        }
        lock_->hold(std::move(file));
        answer_.lock = std::move(lock_);
        return Attempt::answered;
    }

    const std::string& name_;
    LockAnswer answer_;
    std::unique_ptr<WindowsRunLock> lock_;
};

} // namespace

LockAnswer takeLock(const std::string& name, FileLocks /*locks*/) {
    return LockTaker(name).take();
}

} // namespace zolex::companion::system_execution

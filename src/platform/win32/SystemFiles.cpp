#include "foundation/SystemFiles.h"

#include <algorithm>
#include <fcntl.h>
#include <io.h>
#include <utility>
#include <windows.h>

namespace zolex::system_files {

namespace {

constexpr DWORD slice = 20; ///< milliseconds
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// An open file; closed on destruction.
class OpenFile {
  public:
    OpenFile() = default;
    explicit OpenFile(HANDLE file) : file_(file) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { close(); }

    bool open(const std::string& name, DWORD access, DWORD sharing, DWORD creation,
              DWORD flags = FILE_ATTRIBUTE_NORMAL) {
        close();
        file_ = CreateFileA(name.c_str(), access, sharing, nullptr, creation, flags, nullptr);
        return isOpen();
    }
    void close() {
        if (isOpen()) {
            CloseHandle(release());
        }
    }
    HANDLE release() { return std::exchange(file_, INVALID_HANDLE_VALUE); }
    [[nodiscard]] HANDLE get() const { return file_; }
    [[nodiscard]] bool isOpen() const { return file_ != INVALID_HANDLE_VALUE; }

  private:
    HANDLE file_ = INVALID_HANDLE_VALUE;
};

/// What tells one file from all others; false without a file.
bool identify(const std::string& name, DWORD flags, BY_HANDLE_FILE_INFORMATION& identity) {
    OpenFile file;
    return file.open(name, 0, shareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags) &&
           GetFileInformationByHandle(file.get(), &identity) != 0;
}

/// Whether `name` itself, a link not followed, is what `other` leads to.
bool isOther(const std::string& name, const std::string& other) {
    BY_HANDLE_FILE_INFORMATION a{};
    BY_HANDLE_FILE_INFORMATION b{};
    return identify(name, FILE_FLAG_OPEN_REPARSE_POINT, a) && identify(other, 0, b) &&
           a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

/// Whether the time that began at this count of milliseconds is over. The count starts anew after
/// 49 days, which the difference of two does not see.
bool isOver(DWORD start, DWORD wait) {
    return GetTickCount() - start >= wait;
}

/// Makes the new file. While another run has the name, which it gives up when its own file is
/// copied, this waits.
bool makeNew(const std::string& name, OpenFile& file) {
    constexpr DWORD longestWait = 10000;
    const DWORD start = GetTickCount();
    for (;;) {
        DWORD error = DeleteFileA(name.c_str()) != 0 ? NO_ERROR : GetLastError();
        if (file.open(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                      CREATE_NEW)) {
            return true;
        }
        // One that is removed but still open keeps its name, to which then nothing has access.
        error = error == NO_ERROR ? GetLastError() : error;
        const bool mayEnd = error == ERROR_SHARING_VIOLATION || error == ERROR_FILE_EXISTS ||
                            (error == ERROR_ACCESS_DENIED &&
                             GetFileAttributesA(name.c_str()) == INVALID_FILE_ATTRIBUTES &&
                             GetLastError() == ERROR_ACCESS_DENIED);
        if (!mayEnd || isOver(start, longestWait)) {
            return false;
        }
        Sleep(slice);
    }
}

/// A byte behind the end of any file: what is locked can be neither read nor written by others, and
/// a deployment may read the policies meanwhile.
constexpr DWORD lockedLow = 0;
constexpr DWORD lockedHigh = 0x40000000;

class WindowsLock : public FileLock {
  public:
    explicit WindowsLock(std::string name) : name_(std::move(name)) {}
    WindowsLock(const WindowsLock&) = delete;
    WindowsLock& operator=(const WindowsLock&) = delete;
    ~WindowsLock() override {
        if (!file_.isOpen()) {
            return;
        }
        const bool goes = made_ && isEmpty();
        if (locked_) {
            UnlockFile(file_.get(), lockedLow, lockedHigh, 1, 0);
        }
        file_.close();
        // Nobody else has it open, so that nobody can have written it before it goes.
        if (goes && file_.open(name_, GENERIC_READ, FILE_SHARE_DELETE, OPEN_EXISTING) &&
            isEmpty()) {
            DeleteFileA(name_.c_str());
        }
    }
    [[nodiscard]] bool madeFile() const override { return made_; }

    LockResult take(DWORD wait) {
        LockResult result;
        const DWORD start = GetTickCount();
        if (!open()) {
            return result;
        }
        while (LockFile(file_.get(), lockedLow, lockedHigh, 1, 0) == 0) {
            result.isBusy = GetLastError() == ERROR_LOCK_VIOLATION;
            if (!result.isBusy || isOver(start, wait)) {
                made_ = made_ && !result.isBusy;
                return result;
            }
            Sleep(slice);
        }
        locked_ = true;
        result.isBusy = false;
        // Somebody else may have been faster and have written it.
        made_ = made_ && isEmpty();
        return result;
    }
    [[nodiscard]] bool isLocked() const { return locked_; }

  private:
    /// Opens the file, or makes it; false when it is none that can be locked.
    bool open() {
        constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
        made_ = file_.open(name_, GENERIC_READ | GENERIC_WRITE, sharing, CREATE_NEW);
        return (made_ || file_.open(name_, GENERIC_READ | GENERIC_WRITE, sharing, OPEN_EXISTING) ||
                file_.open(name_, GENERIC_READ, sharing, OPEN_EXISTING)) &&
               GetFileType(file_.get()) == FILE_TYPE_DISK;
    }

    [[nodiscard]] bool isEmpty() const {
        DWORD high = 0;
        return GetFileSize(file_.get(), &high) == 0 && high == 0;
    }

    std::string name_;
    OpenFile file_;
    bool made_ = false;
    bool locked_ = false;
};

} // namespace

std::FILE* create(const std::string& name, const std::string& other, EndingFile* ending) {
    if (isOther(name, other)) {
        return nullptr;
    }
    OpenFile file;
    if (!makeNew(name, file)) {
        return nullptr;
    }
    // Until here another run may have had the name.
    if (ending != nullptr) {
        ending->enter(name, EndingFile::Goes::always);
    }
    std::FILE* stream = nullptr;
    if (!isOther(name, other)) {
        const int descriptor =
            _open_osfhandle(reinterpret_cast<intptr_t>(file.get()), _O_RDWR | _O_BINARY);
        if (descriptor >= 0) {
            file.release(); // the descriptor has it
            stream = _fdopen(descriptor, "w+b");
            if (stream == nullptr) {
                _close(descriptor);
            }
        }
    }
    if (stream == nullptr) {
        file.close();
        DeleteFileA(name.c_str());
        if (ending != nullptr) {
            ending->forget();
        }
    }
    return stream;
}

bool discard(std::FILE* stream, const std::string& name) {
    // While it is open, the name is no other file's.
    const bool removed = DeleteFileA(name.c_str()) != 0;
    std::fclose(stream);
    // Another run may have removed it already, to make its own.
    return removed || GetFileAttributesA(name.c_str()) == INVALID_FILE_ATTRIBUTES;
}

LockResult lock(const std::string& name, std::chrono::milliseconds wait) {
    auto lock = std::make_unique<WindowsLock>(name); // has all its memory before a file is made
    LockResult result = lock->take(static_cast<DWORD>(std::max<long long>(wait.count(), 0)));
    if (lock->isLocked()) {
        result.lock = std::move(lock);
    }
    return result;
}

} // namespace zolex::system_files

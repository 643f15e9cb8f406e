#include "companion/execution/SystemParts.h"
#include "companion/execution/win32/OpenedFile.h"

#include <utility>

namespace zolex::companion::system_execution {

namespace {

using win32::Handle;

/// Makes `size` the end of the file, and the place where it is written next.
bool cutTo(HANDLE file, std::uint64_t size) {
    constexpr unsigned wordBits = 32;
    LONG high = static_cast<LONG>(size >> wordBits);
    return (SetFilePointer(file, static_cast<LONG>(size & 0xFFFFFFFFU), &high, FILE_BEGIN) !=
                INVALID_SET_FILE_POINTER ||
            GetLastError() == NO_ERROR) &&
           SetEndOfFile(file) != 0;
}

class WindowsDurableFile : public DurableFile {
  public:
    /// The entry in the folder comes to the disk with the file itself.
    bool make(const std::string& name) {
        file_ = openFile(name, GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW);
        if (file_.get() == nullptr) {
            return false;
        }
        if (FlushFileBuffers(file_.get()) != 0) {
            return true;
        }
        const DWORD error = GetLastError();
        file_.close();
        DeleteFileA(name.c_str());
        SetLastError(error);
        return false;
    }

    bool reopen(const std::string& name, std::uint64_t keep) {
        file_ = openFile(name, GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
        BY_HANDLE_FILE_INFORMATION about{};
        LARGE_INTEGER size{};
        if (file_.get() == nullptr || GetFileInformationByHandle(file_.get(), &about) == 0 ||
            GetFileSizeEx(file_.get(), &size) == 0) {
            return false;
        }
        if (GetFileType(file_.get()) != FILE_TYPE_DISK ||
            (about.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ||
            keep > static_cast<std::uint64_t>(size.QuadPart)) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return false;
        }
        size_ = keep;
        return cutTo(file_.get(), size_) && FlushFileBuffers(file_.get()) != 0;
    }

    bool append(std::string_view bytes) override {
        if (isBroken_) {
            SetLastError(ERROR_WRITE_FAULT);
            return false;
        }
        if (!write(bytes)) {
            // What is written in part would be in the way of what comes next.
            const DWORD error = GetLastError();
            isBroken_ = !cutTo(file_.get(), size_);
            SetLastError(error);
            return false;
        }
        size_ += bytes.size();
        // What is on the disk is not known then, nor would be by asking again.
        isBroken_ = FlushFileBuffers(file_.get()) == 0;
        return !isBroken_;
    }

  private:
    bool write(std::string_view bytes) {
        DWORD written = 0;
        if (WriteFile(file_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                      nullptr) == 0) {
            return false;
        }
        if (written != bytes.size()) {
            SetLastError(ERROR_DISK_FULL);
        }
        return written == bytes.size();
    }

    Handle file_;
    std::uint64_t size_ = 0;
    bool isBroken_ = false;
};

/// The file, or nothing and the error that was.
std::unique_ptr<DurableFile> handOver(std::unique_ptr<WindowsDurableFile> file, bool isReady) {
    if (!isReady) {
        const DWORD error = GetLastError();
        file.reset();
        SetLastError(error);
    }
    return file;
}

} // namespace

std::unique_ptr<DurableFile> makeDurable(const std::string& name) {
    auto file = std::make_unique<WindowsDurableFile>();
    const bool isReady = file->make(name);
    return handOver(std::move(file), isReady);
}

std::unique_ptr<DurableFile> reopenDurable(const std::string& name, std::uint64_t keep) {
    auto file = std::make_unique<WindowsDurableFile>();
    const bool isReady = file->reopen(name, keep);
    return handOver(std::move(file), isReady);
}

} // namespace zolex::companion::system_execution

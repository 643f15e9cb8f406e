#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace zolex {

/// An open file. Closing happens at the latest on destruction.
class File {
  public:
    virtual ~File() = default;
    /// Reads up to bytes.size() bytes; fewer only at the end of the file or on an error.
    virtual std::size_t read(std::span<char> bytes) = 0;
    /// Writes `bytes`; the number written, less than asked when the device is full or fails. What
    /// was written may still stand in a buffer: flush or close tells.
    virtual std::size_t write(std::string_view bytes) = 0;
    /// Whether a read or a write failed since the file was opened.
    virtual bool failed() const = 0;
    /// Back to the first byte; false when the position could not be set.
    virtual bool rewind() = 0;
    /// Hands buffered bytes to the system; false when that failed.
    virtual bool flush() = 0;
    /// Closes the file; false when buffered bytes could not be written. A second call is true.
    virtual bool close() = 0;
};

/// Bytes of the longest line that is read of any file, its line end not counted. A file with a
/// longer one cannot be read: without this an endless line would take all memory.
inline constexpr std::size_t longestLine = std::size_t{16} << 20U;

/// A file that no other run of the program has locked meanwhile. The lock ends on destruction; a
/// file that was made for it and is still empty then goes too.
class FileLock {
  public:
    virtual ~FileLock() = default;
    /// Whether the file was missing: it was made, empty, to be locked.
    [[nodiscard]] virtual bool madeFile() const = 0;
};

/// What came of locking a file.
struct LockResult {
    std::unique_ptr<FileLock> lock; ///< null when the file is not locked
    bool isBusy = false;            ///< it is not, because another run has it locked
};

/// The files that the program reads and writes. What is written has the line ends of the system; on
/// Windows a carriage return before a line feed is dropped in what is read. All other bytes, 0x1A
/// too, are bytes like any other. Names are shown as they were given; on systems
/// other than Windows a "\" in a name is taken as "/" when the file is opened or removed.
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    /// Opens `name` in a C runtime mode ("r", "w", "a", "w+"); null when that fails.
    virtual std::unique_ptr<File> open(std::string_view name, const char* mode) = 0;
    /// Whether a file that was created goes when a signal ends the process.
    enum class WhenInterrupted { removed, kept };
    /// Makes `name` a new file, opened for writing and reading. What has the name is removed first,
    /// and no link is followed. Null when that fails, and when the file is `other` under whatever
    /// name, which then is as it was.
    virtual std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                         WhenInterrupted interrupted);
    /// Closes a file that `create` has made and removes it; false when it could not be removed.
    /// When another file has the name by now, that one stays. A null `file` is one closed before.
    virtual bool discard(std::unique_ptr<File> file, std::string_view name) {
        file.reset();
        return remove(name);
    }
    /// Locks `name` against other runs of the program, waiting up to `wait` while one has it
    /// locked. A file that is missing is made. What cannot be locked (no regular file, a folder
    /// without rights, a file system without locks) is not: opening it will tell.
    virtual LockResult lock(std::string_view name, std::chrono::milliseconds wait);
    /// Removes `name`; false when it could not be removed.
    virtual bool remove(std::string_view name) = 0;
    /// Whether there is a file of this name, which need not be readable; a folder is none.
    virtual bool isFile(std::string_view name) { return open(name, "r") != nullptr; }
};

/// Files through the C runtime's streams. What is appended to a file goes to the system in one
/// piece (up to 256 KB between two flushes), so that a process which is ended meanwhile has
/// appended all of it or nothing.
class StandardFileSystem : public FileSystem {
  public:
    std::unique_ptr<File> open(std::string_view name, const char* mode) override;
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override;
    bool discard(std::unique_ptr<File> file, std::string_view name) override;
    LockResult lock(std::string_view name, std::chrono::milliseconds wait) override;
    bool remove(std::string_view name) override;
    bool isFile(std::string_view name) override;
};

} // namespace zolex

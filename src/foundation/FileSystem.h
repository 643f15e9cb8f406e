#pragma once

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

/// The files that the program reads and writes. Names are shown as they were given; on systems
/// other than Windows a "\" in a name is taken as "/" when the file is opened or removed.
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    /// Opens `name` in a C runtime mode ("r", "w", "a", "w+", text mode); null when that fails.
    virtual std::unique_ptr<File> open(std::string_view name, const char* mode) = 0;
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
    bool remove(std::string_view name) override;
    bool isFile(std::string_view name) override;
};

} // namespace zolex

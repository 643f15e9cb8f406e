#include "foundation/FileSystem.h"

#include "foundation/CrLfStream.h"
#include "foundation/EndingFiles.h"
#include "foundation/SystemFiles.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace zolex {

namespace {

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

/// The name as the system takes it; nothing for a name with a NUL, which no file has.
std::optional<std::string> systemName(std::string_view name) {
    if (name.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    std::string own(name);
#ifndef _WIN32
    std::replace(own.begin(), own.end(), '\\', '/');
#endif
    return own;
}

/// Whether the stream stands on a directory: some systems open one for reading.
bool isDirectory([[maybe_unused]] std::FILE* stream) {
#ifdef _WIN32
    return false;
#else
    struct stat status = {};
    return ::fstat(::fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
#endif
}

// The line ends of the system are made here and not by its text streams, which would take 0x1A for
// the end of a file.
#ifdef _WIN32
constexpr bool linesEndInCrLf = true;
#else
constexpr bool linesEndInCrLf = false;
#endif

/// A stream's own buffer takes a few kilobytes.
constexpr std::size_t appendBufferSize = std::size_t{256} * 1024;

class StandardFile : public File {
  public:
    /// Has all the memory that it needs before a file is made.
    explicit StandardFile(bool appends)
        : buffer_(appends ? std::make_unique_for_overwrite<char[]>(appendBufferSize) : nullptr) {}

    bool create(std::string name, const std::string& other, bool staysInterrupted) {
        stream_.reset(system_files::create(name, other, staysInterrupted ? nullptr : &ending_));
        name_ = std::move(name);
        return stream_ != nullptr;
    }

    bool open(const std::string& name, const std::string& mode) {
        stream_.reset(std::fopen(name.c_str(), (mode + 'b').c_str()));
        if (!stream_ || isDirectory(stream_.get())) {
            return false;
        }
        if (buffer_) {
            std::setvbuf(stream_.get(), buffer_.get(), _IOFBF, appendBufferSize);
        }
        return true;
    }

    std::size_t read(std::span<char> bytes) override {
        if (!stream_) {
            failed_ = true;
            return 0;
        }
        const std::size_t n = linesEndInCrLf
                                  ? crlf::read(bytes, stream_.get())
                                  : std::fread(bytes.data(), 1, bytes.size(), stream_.get());
        // Not every runtime marks an error when the mode does not allow the call.
        failed_ = failed_ || (n < bytes.size() && std::feof(stream_.get()) == 0);
        return n;
    }

    std::size_t write(std::string_view bytes) override {
        if (!stream_) {
            failed_ = true;
            return 0;
        }
        const std::size_t n = linesEndInCrLf
                                  ? crlf::write(bytes, stream_.get())
                                  : std::fwrite(bytes.data(), 1, bytes.size(), stream_.get());
        failed_ = failed_ || n < bytes.size();
        return n;
    }

    bool failed() const override { return failed_; }

    bool rewind() override { return stream_ && std::fseek(stream_.get(), 0, SEEK_SET) == 0; }

    bool flush() override { return stream_ && std::fflush(stream_.get()) == 0; }

    bool close() override { return !stream_ || std::fclose(stream_.release()) == 0; }

    /// FileSystem::discard for a file that was created; needs no memory.
    bool discard() {
        return stream_ ? system_files::discard(stream_.release(), name_)
                       : std::remove(name_.c_str()) == 0;
    }

  private:
    std::string name_;
    EndingFile ending_;
    std::unique_ptr<char[]> buffer_; ///< of the stream: it lives longer
    Stream stream_;
    bool failed_ = false;
};

} // namespace

std::unique_ptr<File> FileSystem::create(std::string_view name, std::string_view /*other*/,
                                         WhenInterrupted /*interrupted*/) {
    return open(name, "w+");
}

LockResult FileSystem::lock(std::string_view /*name*/, std::chrono::milliseconds /*wait*/) {
    return {};
}

std::unique_ptr<File> StandardFileSystem::open(std::string_view name, const char* mode) {
    const auto own = systemName(name);
    auto file = std::make_unique<StandardFile>(mode[0] == 'a');
    return own && file->open(*own, mode) ? std::move(file) : nullptr;
}

std::unique_ptr<File> StandardFileSystem::create(std::string_view name, std::string_view other,
                                                 WhenInterrupted interrupted) {
    auto own = systemName(name);
    const auto ownOther = systemName(other);
    auto file = std::make_unique<StandardFile>(false);
    const bool stays = interrupted == WhenInterrupted::kept;
    return own && file->create(std::move(*own), ownOther.value_or(""), stays) ? std::move(file)
                                                                              : nullptr;
}

bool StandardFileSystem::discard(std::unique_ptr<File> file, std::string_view name) {
    return file ? static_cast<StandardFile&>(*file).discard() : remove(name);
}

LockResult StandardFileSystem::lock(std::string_view name, std::chrono::milliseconds wait) {
    const auto own = systemName(name);
    return own ? system_files::lock(*own, wait) : LockResult{};
}

bool StandardFileSystem::remove(std::string_view name) {
    const auto own = systemName(name);
    return own && std::remove(own->c_str()) == 0;
}

bool StandardFileSystem::isFile(std::string_view name) {
    const auto own = systemName(name);
    if (!own) {
        return false;
    }
#ifdef _WIN32
    const DWORD attributes = GetFileAttributesA(own->c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
#else
    struct stat status = {};
    return ::stat(own->c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
#endif
}

} // namespace zolex

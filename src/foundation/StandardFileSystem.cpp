#include "foundation/FileSystem.h"

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

/// A stream's own buffer takes a few kilobytes.
constexpr std::size_t appendBufferSize = std::size_t{256} * 1024;

class StandardFile : public File {
  public:
    /// Has all the memory that it needs before a file is made.
    explicit StandardFile(bool appends)
        : buffer_(appends ? std::make_unique_for_overwrite<char[]>(appendBufferSize) : nullptr) {}

    bool open(const std::string& name, const char* mode) {
        stream_.reset(std::fopen(name.c_str(), mode));
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
        const std::size_t n = std::fread(bytes.data(), 1, bytes.size(), stream_.get());
        // Not every runtime marks an error when the mode does not allow the call.
        failed_ = failed_ || (n < bytes.size() && std::feof(stream_.get()) == 0);
        return n;
    }

    std::size_t write(std::string_view bytes) override {
        if (!stream_) {
            failed_ = true;
            return 0;
        }
        const std::size_t n = std::fwrite(bytes.data(), 1, bytes.size(), stream_.get());
        failed_ = failed_ || n < bytes.size();
        return n;
    }

    bool failed() const override { return failed_; }

    bool rewind() override { return stream_ && std::fseek(stream_.get(), 0, SEEK_SET) == 0; }

    bool flush() override { return stream_ && std::fflush(stream_.get()) == 0; }

    bool close() override { return !stream_ || std::fclose(stream_.release()) == 0; }

  private:
    std::unique_ptr<char[]> buffer_; ///< of the stream: it lives longer
    Stream stream_;
    bool failed_ = false;
};

} // namespace

std::unique_ptr<File> StandardFileSystem::open(std::string_view name, const char* mode) {
    const auto own = systemName(name);
    auto file = std::make_unique<StandardFile>(mode[0] == 'a');
    return own && file->open(*own, mode) ? std::move(file) : nullptr;
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

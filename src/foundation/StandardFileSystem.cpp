#include "foundation/FileSystem.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#ifndef _WIN32
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

class StandardFile : public File {
  public:
    explicit StandardFile(Stream stream) : stream_(std::move(stream)) {}

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
    Stream stream_;
    bool failed_ = false;
};

} // namespace

std::unique_ptr<File> StandardFileSystem::open(std::string_view name, const char* mode) {
    const auto own = systemName(name);
    Stream stream(own ? std::fopen(own->c_str(), mode) : nullptr);
    if (!stream || isDirectory(stream.get())) {
        return nullptr;
    }
    return std::make_unique<StandardFile>(std::move(stream));
}

bool StandardFileSystem::remove(std::string_view name) {
    const auto own = systemName(name);
    return own && std::remove(own->c_str()) == 0;
}

} // namespace zolex

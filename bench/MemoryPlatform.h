#pragma once

#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zolex::bench {

/// A file in memory, read from front to back.
class MemoryFile : public File {
  public:
    explicit MemoryFile(std::string_view content) : content_(content), rest_(content) {}
    std::size_t read(std::span<char> bytes) override {
        const std::size_t n = rest_.copy(bytes.data(), bytes.size());
        rest_.remove_prefix(n);
        return n;
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    bool failed() const override { return false; }
    bool rewind() override {
        rest_ = content_;
        return true;
    }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    std::string_view content_;
    std::string_view rest_;
};

/// A platform whose every file has the same content; it prints nothing and starts nothing.
class MemoryPlatform : public Platform, Console, FileSystem {
  public:
    explicit MemoryPlatform(std::string content = {}) : content_(std::move(content)) {}

    Console& console() override { return *this; }
    FileSystem& files() override { return *this; }
    ChildResult runChild(std::string_view /*commandLine*/, bool /*capture*/,
                         std::chrono::milliseconds /*limit*/) override {
        return {};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return nullptr; }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return {}; }

    void writeOutput(std::string_view /*text*/) override {}
    void writeError(std::string_view /*text*/) override {}
    int readCharacter() override { return -1; }

    std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
        return std::make_unique<MemoryFile>(content_);
    }
    bool remove(std::string_view /*name*/) override { return false; }

  private:
    std::string content_;
};

} // namespace zolex::bench

// Reading and validating a policies file of the largest legal size.

#include "controllers/Application.h"
#include "platform/Platform.h"
#include "policies/PolicyReader.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace zolex {
namespace {

class MemoryFile : public File {
  public:
    explicit MemoryFile(const std::string& content) : content_(content) {}

    std::size_t read(std::span<char> bytes) override {
        const std::size_t n = std::min(bytes.size(), content_.size() - position_);
        std::memcpy(bytes.data(), content_.data() + position_, n);
        position_ += n;
        return n;
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    bool failed() const override { return false; }
    bool rewind() override {
        position_ = 0;
        return true;
    }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    const std::string& content_;
    std::size_t position_ = 0;
};

class MemoryFiles : public FileSystem {
  public:
    std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
        return std::make_unique<MemoryFile>(content);
    }
    bool remove(std::string_view /*name*/) override { return false; }

    std::string content;
};

class SilentConsole : public Console {
  public:
    void writeOutput(std::string_view /*text*/) override {}
    void writeError(std::string_view /*text*/) override {}
    int readCharacter() override { return -1; }
};

/// A platform that holds one policies file and does nothing else.
class PolicyPlatform : public Platform {
  public:
    Console& console() override { return console_; }
    FileSystem& files() override { return files_; }
    ChildResult runChild(std::string_view /*commandLine*/, bool /*capture*/,
                         std::chrono::milliseconds /*limit*/) override {
        return {};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return nullptr; }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return {}; }

    void setContent(std::string content) { files_.content = std::move(content); }

  private:
    SilentConsole console_;
    MemoryFiles files_;
};

constexpr std::size_t lineLength = 255;

/// A line of 255 characters: `head` and as many repetitions of `item` as fit, padded with blanks.
std::string fullLine(std::string head, const std::string& item = {}) {
    while (!item.empty() && head.size() + item.size() < lineLength) {
        head += item;
    }
    head.resize(lineLength, ' ');
    return head + "\n";
}

/// 50 entries.
std::string entries() {
    std::string text;
    for (int i = 1; i <= 25; ++i) {
        text += fullLine("AppliesTo." + std::to_string(i) + " = ALL", ",t:Kestrix-D4");
    }
    for (char letter = 'A'; letter <= 'H'; ++letter) {
        text += fullLine(std::string("Array.") + letter + " = 1:1", ",4:35");
    }
    for (int i = 1; i <= 9; ++i) {
        text += fullLine("Logical." + std::to_string(i) + " = H:10%:SIMPLE VOLUME:AUTO");
    }
    for (const char* line :
         {"RebuildRate = LOW", "ReadAhead = OFF", "StripeSize = 4096", "Init = BUILD",
          "Array_Mode = CUSTOM", "Array_Defaults = 100%:2", "Logical_Mode = CUSTOM",
          "Hotspares = 4:1,4:2,4:3,4:4,4:5,4:6,4:7,4:8,4:9,4:10,4:11,4:12,4:13,4:14,4:15,4:16"}) {
        text += fullLine(line);
    }
    return text;
}

std::string largestFile() {
    std::string text;
    for (int policy = 1; policy <= 100; ++policy) {
        text += fullLine("[Policy." + std::to_string(policy) + "]") + entries();
    }
    return text;
}

void readLargestPoliciesFile(benchmark::State& state) {
    PolicyPlatform platform;
    const std::string content = largestFile();
    platform.setContent(content);
    Application application(platform);
    application.settings.policiesFile = "policies.ini";
    application.printer().setVerbosity(level::progress);
    for (auto _ : state) {
        PolicyReader reader(application);
        if (!reader.read() || reader.policies()->count() != 100) {
            state.SkipWithError("the file was refused");
            break;
        }
        benchmark::DoNotOptimize(reader.policies());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(content.size()));
}
BENCHMARK(readLargestPoliciesFile)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex

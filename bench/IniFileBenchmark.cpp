#include "controllers/Application.h"
#include "controllers/ControllerList.h"
#include "foundation/IniFile.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace {

/// A file in memory, read from front to back.
class MemoryFile : public zolex::File {
  public:
    explicit MemoryFile(std::string_view content) : rest_(content) {}
    std::size_t read(std::span<char> bytes) override {
        const std::size_t n = rest_.copy(bytes.data(), bytes.size());
        rest_.remove_prefix(n);
        return n;
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    bool failed() const override { return false; }
    bool rewind() override { return false; }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    std::string_view rest_;
};

/// A platform that has one file, prints nothing and starts nothing.
class MemoryPlatform : public zolex::Platform, zolex::Console, zolex::FileSystem {
  public:
    explicit MemoryPlatform(std::string_view content) : content_(content) {}

    zolex::Console& console() override { return *this; }
    zolex::FileSystem& files() override { return *this; }
    zolex::ChildResult runChild(std::string_view /*commandLine*/, bool /*capture*/,
                                std::chrono::milliseconds /*limit*/) override {
        return {};
    }
    std::unique_ptr<zolex::PCI_DevList_VC> pciDevices() override { return nullptr; }
    void pauseOneSecond() override {}
    zolex::LocalTime localTime() override { return {}; }

    void writeOutput(std::string_view /*text*/) override {}
    void writeError(std::string_view /*text*/) override {}
    int readCharacter() override { return -1; }

    std::unique_ptr<zolex::File> open(std::string_view /*name*/, const char* /*mode*/) override {
        return std::make_unique<MemoryFile>(content_);
    }
    bool remove(std::string_view /*name*/) override { return false; }

  private:
    std::string_view content_;
};

void appendEntry(std::string& text, const char* key, std::int64_t number, std::int64_t value) {
    text.append(key).append(".").append(std::to_string(number)).append("=");
    text.append(std::to_string(value)).append("\n");
}

/// An inventory of `controllers` controllers with 144 drives each.
std::string inventoryOf(std::int64_t controllers) {
    std::string text = "[System]\nTotal_Number_Of_Controllers=";
    text.append(std::to_string(controllers)).append("\n");
    for (std::int64_t n = 1; n <= controllers; ++n) {
        const std::string section = "[RAIDController." + std::to_string(n);
        text.append(section).append("]\nModel=Kestrix-C1\nBIOSVersion=MT25\n");
        text.append(section).append(".Array]\nTotal_Number_Of_Arrays=0\n");
        text.append(section).append(".Physical]\nTotal_Number_Of_Physicals=144\n");
        for (std::int64_t drive = 0; drive < 144; ++drive) {
            appendEntry(text, "Channel", drive + 1, 1 + drive / 36);
            appendEntry(text, "ID", drive + 1, drive % 36);
            appendEntry(text, "Size", drive + 1, 69618);
            appendEntry(text, "Type", drive + 1, 15000);
        }
    }
    return text;
}

/// Reads the whole inventory into the controller list. The time must grow with the file, not with
/// its square.
void readInventory(benchmark::State& state) {
    const std::string content = inventoryOf(state.range(0));
    MemoryPlatform platform(content);
    zolex::Application application(platform);
    for (auto _ : state) {
        zolex::IniFile inventory(platform.files(), "contlist.ini", true);
        zolex::ControllerList list;
        if (!list.initialize(inventory, application) ||
            list.controller(list.count() - 1)->numberOfDrives() != 144) {
            state.SkipWithError("the inventory was not read");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(content.size()) *
                            static_cast<std::int64_t>(state.iterations()));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(readInventory)
    ->Arg(1)
    ->Arg(6)
    ->Arg(12)
    ->Arg(24)
    ->Arg(36)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace

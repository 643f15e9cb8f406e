// The inventory file contlist.ini. The time must grow with the file, not with its square.

#include "CpuTime.h"
#include "MemoryPlatform.h"

#include "driver/Application.h"
#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>

namespace zolex::bench {
namespace {

constexpr std::int64_t drives = 144;
constexpr std::int64_t drivesPerChannel = 36;
constexpr std::array<const char*, 4> driveKeys = {"Channel.", "ID.", "Size.", "Type."};

void appendEntry(std::string& text, const char* key, std::int64_t number, std::int64_t value) {
    text.append(key).append(std::to_string(number)).append("=");
    text.append(std::to_string(value)).append("\n");
}

/// An inventory of so many controllers with 144 drives each.
std::string inventoryOf(std::int64_t controllers) {
    std::string text = "[System]\nTotal_Number_Of_Controllers=";
    text.append(std::to_string(controllers)).append("\n");
    for (std::int64_t n = 1; n <= controllers; ++n) {
        const std::string section = "[RAIDController." + std::to_string(n);
        text.append(section).append("]\nModel=Kestrix-C1\nBIOSVersion=MT25\n");
        text.append(section).append(".Array]\nTotal_Number_Of_Arrays=0\n");
        text.append(section).append(".Physical]\nTotal_Number_Of_Physicals=144\n");
        for (std::int64_t drive = 0; drive < drives; ++drive) {
            appendEntry(text, driveKeys[0], drive + 1, 1 + drive / drivesPerChannel);
            appendEntry(text, driveKeys[1], drive + 1, drive % drivesPerChannel);
            appendEntry(text, driveKeys[2], drive + 1, 69618);
            appendEntry(text, driveKeys[3], drive + 1, 15000);
        }
    }
    return text;
}

/// Looks every drive entry up; how many were found.
std::int64_t lookUpAll(IniFile& inventory, std::int64_t controllers) {
    std::int64_t found = 0;
    for (std::int64_t n = 1; n <= controllers; ++n) {
        const CString section = formatText("RAIDController.%d.Physical", static_cast<int>(n));
        for (std::int64_t drive = 1; drive <= drives; ++drive) {
            for (const char* const key : driveKeys) {
                found += inventory.readInteger(section, key + CString::fromInt(drive), -1) >= 0;
            }
        }
    }
    return found;
}

// Bound by the index of the entries: a hash and a comparison for each line and each look-up.
void lookUpInInventory(benchmark::State& state) {
    const std::string content = inventoryOf(state.range(0));
    MemoryPlatform platform(content);
    const std::int64_t entries =
        state.range(0) * drives * static_cast<std::int64_t>(driveKeys.size());
    for (auto _ : state) {
        const CpuTime time(state);
        IniFile inventory(platform.files(), inventoryFileName, true);
        if (lookUpAll(inventory, state.range(0)) != entries) {
            state.SkipWithError("entries are missing");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(content.size()) *
                            static_cast<std::int64_t>(state.iterations()));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(lookUpInInventory)
    ->Arg(18)
    ->Arg(36)
    ->Arg(72)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Bound by the look-ups above, and the key that is written for each of them.
void readInventory(benchmark::State& state) {
    const std::string content = inventoryOf(state.range(0));
    MemoryPlatform platform(content);
    Application application(platform);
    for (auto _ : state) {
        const CpuTime time(state);
        IniFile inventory(platform.files(), inventoryFileName, true);
        ControllerList list;
        if (!list.initialize(inventory, application.report()) ||
            list.controller(list.count() - 1)->numberOfDrives() != drives) {
            state.SkipWithError("the inventory was not read");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(content.size()) *
                            static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(readInventory)->Arg(36)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench

// Scanning and validating policies files, up to the largest that is legal.

#include "CpuTime.h"
#include "MemoryPlatform.h"

#include "driver/Application.h"
#include "driver/PolicyArguments.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace zolex::bench {
namespace {

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

std::string fileOf(std::int64_t policies) {
    std::string text;
    for (std::int64_t policy = 1; policy <= policies; ++policy) {
        text += fullLine("[Policy." + std::to_string(policy) + "]") + entries();
    }
    return text;
}

// Bound by the bytes of the file, taken one by one, and the model names, each looked up in a table.
void readPolicies(benchmark::State& state) {
    const std::string content = fileOf(state.range(0));
    MemoryPlatform platform(content);
    Application application(platform);
    application.settings.policiesFile = "policies.ini";
    application.printer().setVerbosity(level::progress);
    for (auto _ : state) {
        const CpuTime time(state);
        PolicyReader reader(platform.files(), application.catalogue(), application.report());
        if (!reader.read(policySource(application.settings)) ||
            reader.policies()->count() != static_cast<std::size_t>(state.range(0))) {
            state.SkipWithError("the file was refused");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(content.size()));
}
BENCHMARK(readPolicies)->Arg(1)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench

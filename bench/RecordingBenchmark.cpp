#include "CpuTime.h"
#include "Listings.h"
#include "MemoryPlatform.h"
#include "companion/json/RecordingFile.h"
#include "companion/recording/Redaction.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>

// Reading and redacting recordings of many controllers with 144 drives each.

namespace zolex::bench {
namespace {

using namespace companion;

constexpr int drives = 144;

/// A recording of so many controllers.
Recording recordingOf(int controllers) {
    const char* const options[] = {"-LdPdInfo", "-pdList", "-adpallinfo"};
    Recording recording;
    for (int number = 0; number < controllers; ++number) {
        std::size_t listing = 0;
        for (std::string& output : megaCliListings(drives, number)) {
            ChildCall call;
            call.command = "UTIL.BAT MEGACLI ";
            call.command.append(options[listing++]).append(" -a").append(std::to_string(number));
            call.result = {ChildOutcome::ended, 0, std::move(output)};
            recording.calls.push_back({std::move(call), 0});
        }
    }
    return recording;
}

void setBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    state.counters["megabytes"] = static_cast<double>(bytes) / 1e6;
}

// Bound by the hash over every byte; then by finding the escapes of each line end.
void readRecordingFile(benchmark::State& state) {
    const std::string text = recordingText(recordingOf(static_cast<int>(state.range(0))));
    MemoryPlatform platform(text);
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const RecordingReading reading =
            companion::readRecordingFile(platform.files(), "server.zrec");
        if (!reading.recording || !reading.findings.empty()) {
            state.SkipWithError("the recording is not read");
            break;
        }
        benchmark::DoNotOptimize(reading.recording->calls.data());
    }
    setBytes(state, text.size());
}
BENCHMARK(readRecordingFile)->Arg(1)->Arg(36)->UseManualTime()->Unit(benchmark::kMillisecond);

// Bound by the look at each byte whether a secret begins there.
void redactRecording(benchmark::State& state) {
    const Recording recording = recordingOf(static_cast<int>(state.range(0)));
    Secrets secrets;
    addRecordedSecrets(recording.calls, secrets);
    const Redactor redactor(secrets, "key");
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        Recording redacted = recording;
        const CpuTime time(state);
        redact(redacted, redactor);
        bytes = 0;
        for (const RecordedCall& call : redacted.calls) {
            bytes += std::get<ChildCall>(call.call).result.output.size();
        }
    }
    setBytes(state, bytes);
}
BENCHMARK(redactRecording)->Arg(1)->Arg(36)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench

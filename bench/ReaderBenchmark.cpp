// How fast each family's listing is read, in bytes of listing a second of processor time. The
// configurations are captured too: a deploy run reads less.

#include "CpuTime.h"
#include "Listings.h"
#include "MemoryPlatform.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ConfigurationReader.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

/// Reads the listings of a controller of this type as a run does, and looks whether as many drives
/// and arrays were found as are `expected`.
void read(benchmark::State& state, std::int32_t type, const std::vector<std::string>& listings,
          std::pair<std::int32_t, std::size_t> expected) {
    MemoryPlatform platform;
    Application application(platform);
    std::size_t bytes = 0;
    for (const std::string& listing : listings) {
        bytes += listing.size();
    }
    const ReaderEntry* const entry = findReader(type);
    std::pair<std::int32_t, std::size_t> found;
    bool isRead = true;
    for (auto _ : state) {
        RAIDController controller;
        controller.setType(type);
        {
            const CpuTime time(state);
            const auto reader = entry->create({.layout = true}, application.report());
            isRead = reader->readConfiguration(controller, listings) && isRead;
        }
        const RAIDConfiguration* const configuration = controller.captured();
        found = {controller.numberOfDrives(),
                 configuration == nullptr ? 0 : configuration->arrays().size()};
    }
    if (!isRead || found != expected) {
        state.SkipWithError("drives or arrays are missing");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes));
}

/// Looks for line ends in the same bytes, and for nothing else: no reader can be faster.
void findLineEnds(benchmark::State& state, const std::vector<std::string>& listings) {
    std::size_t bytes = 0;
    for (const std::string& listing : listings) {
        bytes += listing.size();
    }
    for (auto _ : state) {
        const CpuTime time(state);
        std::size_t lines = 0;
        for (const std::string& listing : listings) {
            const char* at = listing.data();
            const char* const end = at + listing.size();
            while (const void* newline =
                       std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
                at = static_cast<const char*>(newline) + 1;
                ++lines;
            }
        }
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes));
}

int drivesOf(const benchmark::State& state) {
    return static_cast<int>(state.range(0));
}

/// The drives of which there are places on four channels, and arrays of 16.
std::pair<std::int32_t, std::size_t> allOf(const benchmark::State& state) {
    const int drives = std::min(drivesOf(state), 144);
    return {drives, static_cast<std::size_t>(std::clamp(drives / 16, 1, 8))};
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(144)->Arg(5000)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

// Bound by finding the newline of each of some 50 lines a drive and the looks whether it holds a
// key.
void readMegacli(benchmark::State& state) {
    read(state, controller_type::megaRaid, megaCliListings(drivesOf(state)), allOf(state));
}
BENCHMARK(readMegacli)->Apply(sizes);

void lineEndsOfMegacli(benchmark::State& state) {
    findLineEnds(state, megaCliListings(drivesOf(state)));
}
BENCHMARK(lineEndsOfMegacli)->Apply(sizes);

// Bound by the looks and searches in 16 lines a drive, half of which hold a key, taking their
// values apart, and the texts kept of a drive.
void readArcconf(benchmark::State& state) {
    read(state, controller_type::arcconf11, {arcconfListing(drivesOf(state))}, allOf(state));
}
BENCHMARK(readArcconf)->Apply(sizes);

void lineEndsOfArcconf(benchmark::State& state) {
    findLineEnds(state, {arcconfListing(drivesOf(state))});
}
BENCHMARK(lineEndsOfArcconf)->Apply(sizes);

// Bound by the looks and searches in 15 lines a drive, half of which hold a key, taking their
// values apart, and the texts kept of a drive.
void readHrconf(benchmark::State& state) {
    read(state, controller_type::hrconf8, {hrconfListing(drivesOf(state))}, allOf(state));
}
BENCHMARK(readHrconf)->Apply(sizes);

void lineEndsOfHrconf(benchmark::State& state) {
    findLineEnds(state, {hrconfListing(drivesOf(state))});
}
BENCHMARK(lineEndsOfHrconf)->Apply(sizes);

// Bound by the looks and searches in 7 lines a drive, half of which hold a key, taking their values
// apart, and the texts kept of a drive.
void readQtcsend(benchmark::State& state) {
    read(state, controller_type::family, {qtcsendListing(drivesOf(state))}, allOf(state));
}
BENCHMARK(readQtcsend)->Apply(sizes);

void lineEndsOfQtcsend(benchmark::State& state) {
    findLineEnds(state, {qtcsendListing(drivesOf(state))});
}
BENCHMARK(lineEndsOfQtcsend)->Apply(sizes);

// Bound by the looks and searches in 12 lines a drive, half of which hold a key, taking their
// values apart, and the texts kept of a drive.
void readCfggen(benchmark::State& state) {
    read(state, controller_type::lsiSas, {cfggenListing(drivesOf(state))}, {allOf(state).first, 1});
}
BENCHMARK(readCfggen)->Apply(sizes);

void lineEndsOfCfggen(benchmark::State& state) {
    findLineEnds(state, {cfggenListing(drivesOf(state))});
}
BENCHMARK(lineEndsOfCfggen)->Apply(sizes);

// Bound by the looks and the search in each line; there is little to keep.
void readHyperwin(benchmark::State& state) {
    read(state, controller_type::lsiIde, hyperwinListings(drivesOf(state)), {2, 1});
}
BENCHMARK(readHyperwin)->Apply(sizes);

void lineEndsOfHyperwin(benchmark::State& state) {
    findLineEnds(state, hyperwinListings(drivesOf(state)));
}
BENCHMARK(lineEndsOfHyperwin)->Apply(sizes);

} // namespace
} // namespace zolex::bench

// How fast zolexctl's own reading of the listings is, in bytes of listing a second of processor
// time: the same bytes that ReaderBenchmark gives to the planner's readers.

#include "CpuTime.h"
#include "Listings.h"

#include "companion/facts/FactsReader.h"
#include "model/Codes.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace zolex::bench {
namespace {

std::size_t bytesOf(const std::vector<std::string>& listings) {
    std::size_t bytes = 0;
    for (const std::string& listing : listings) {
        bytes += listing.size();
    }
    return bytes;
}

/// Reads the listings of a controller of this type, and looks whether as many drives and logical
/// drives were found as there are.
void readFactsOf(benchmark::State& state, std::int32_t type,
                 const std::vector<std::string>& listings, std::size_t drives,
                 std::size_t logicalDrives) {
    bool isRead = true;
    for (auto _ : state) {
        companion::Facts facts;
        {
            const CpuTime time(state);
            facts = companion::readFacts(type, listings);
        }
        isRead =
            isRead && facts.drives.size() == drives && facts.logicalDrives.size() == logicalDrives;
    }
    if (!isRead) {
        state.SkipWithError("drives or logical drives are missing");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytesOf(listings)));
}

int drivesOf(const benchmark::State& state) {
    return static_cast<int>(state.range(0));
}

/// Of drives at one place the first counts: there are 144 places.
std::size_t placesOf(const benchmark::State& state) {
    return static_cast<std::size_t>(std::min(drivesOf(state), 144));
}

std::size_t arraysOf(const benchmark::State& state) {
    return static_cast<std::size_t>(std::clamp(drivesOf(state) / 16, 1, 8));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(144)->Arg(5000)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

// Bound by finding the line ends, the colons and the keys of some 45 lines a drive.
void factsMegacli(benchmark::State& state) {
    readFactsOf(state, controller_type::megaRaid, megaCliListings(drivesOf(state)), placesOf(state),
                arraysOf(state));
}
BENCHMARK(factsMegacli)->Apply(sizes);

// Bound by the keys of 16 lines a drive and the texts kept of it.
void factsArcconf(benchmark::State& state) {
    readFactsOf(state, controller_type::arcconf11, {arcconfListing(drivesOf(state))},
                placesOf(state), arraysOf(state));
}
BENCHMARK(factsArcconf)->Apply(sizes);

void factsHrconf(benchmark::State& state) {
    readFactsOf(state, controller_type::hrconf8, {hrconfListing(drivesOf(state))}, placesOf(state),
                arraysOf(state));
}
BENCHMARK(factsHrconf)->Apply(sizes);

void factsQtcsend(benchmark::State& state) {
    readFactsOf(state, controller_type::family, {qtcsendListing(drivesOf(state))}, placesOf(state),
                arraysOf(state));
}
BENCHMARK(factsQtcsend)->Apply(sizes);

void factsCfggen(benchmark::State& state) {
    readFactsOf(state, controller_type::lsiSas, {cfggenListing(drivesOf(state))}, placesOf(state),
                1);
}
BENCHMARK(factsCfggen)->Apply(sizes);

// There are two drives at most.
void factsHyperwin(benchmark::State& state) {
    readFactsOf(state, controller_type::lsiIde, hyperwinListings(2), 2, 1);
}
BENCHMARK(factsHyperwin)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// A large server: 36 controllers of 144 drives each.
void factsOfServer(benchmark::State& state) {
    constexpr int controllers = 36;
    constexpr int drives = 144;
    std::vector<std::vector<std::string>> server;
    std::size_t bytes = 0;
    for (int i = 0; i < controllers; ++i) {
        server.push_back(megaCliListings(drives, i));
        bytes += bytesOf(server.back());
    }
    for (auto _ : state) {
        std::vector<companion::Facts> facts;
        {
            const CpuTime time(state);
            for (const std::vector<std::string>& listings : server) {
                facts.push_back(companion::readFacts(controller_type::megaRaid, listings));
            }
        }
        if (facts.back().drives.size() != drives) {
            state.SkipWithError("drives are missing");
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes));
}
BENCHMARK(factsOfServer)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench

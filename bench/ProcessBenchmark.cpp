// The program as a whole, from its start to its end, against what it cannot do without. The times
// are those of the clock on the wall; "ratio" compares runs that were made in turn.

#include "Listings.h"
#include "Processes.h"

#include "foundation/CString.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zolex::bench {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& file, const std::string& content) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

/// A folder of its own that is the current one while this object lives.
class WorkingFolder {
  public:
    WorkingFolder() : before_(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "zolex-bench-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
        fs::current_path(path_);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
        fs::remove_all(path_, ignored);
    }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    fs::path before_;
    fs::path path_;
};

void addPciFunction(int bus, const char* vendor, const char* device, const char* subsystemVendor,
                    const char* subsystem) {
    const fs::path folder = formatText("pci/0000:%02x:00.0", static_cast<unsigned>(bus)).c_str();
    write(folder / "vendor", vendor);
    write(folder / "device", device);
    write(folder / "subsystem_vendor", subsystemVendor);
    write(folder / "subsystem_device", subsystem);
    write(folder / "class", "0x010400\n");
    write(folder / "revision", "0x00\n");
}

constexpr int controllersOfOneUtility = 15;
constexpr int otherControllers = 6;

/// Lays out, in the current folder, a server of 36 controllers with so many drives each: 15 of
/// MEGACLI, 15 of ARCCONF, 6 of HRCONF. Its utilities type prepared listings.
void layOutServer(int drives) {
    for (const char* const program : {"UTIL.BAT", "hwdetect.exe"}) {
        fs::copy_file(ZOLEX_BENCH_TYPIST, program);
    }
    write("listings/-i", "Machine_Type=8837\nSerial_Number=KX1\n");
    const std::string arcconf = arcconfListing(drives);
    const std::string hrconf = hrconfListing(drives);
    constexpr std::array<const char*, 3> megaCli = {"-LdPdInfo", "-pdList", "-adpallinfo"};
    int bus = 1;
    for (int i = 0; i < controllersOfOneUtility; ++i) {
        addPciFunction(bus++, "0x1000\n", "0x0411\n", "0x1000\n", "0x1002\n");
        const std::vector<std::string> listings = megaCliListings(drives, i);
        for (std::size_t k = 0; k < megaCli.size(); ++k) {
            write(formatText("listings/MEGACLI_%s_-a%d", megaCli[k], i).c_str(), listings[k]);
        }
        addPciFunction(bus++, "0x9005\n", "0x0286\n", "0x9005\n", "0x0001\n");
        write(formatText("listings/ARCCONF_GETCONFIG_%d_AL", i + 1).c_str(), arcconf);
    }
    for (int i = 0; i < otherControllers; ++i) {
        addPciFunction(bus++, "0x9005\n", "0x043f\n", "0x9005\n", "0x0001\n");
        write(formatText("listings/HRCONF_GETCONFIG_%d_AL", i + 1).c_str(), hrconf);
    }
}

Run capture(const char* output = "/dev/null") {
    fs::remove("captured.ini");
    return run({ZOLEX_BENCH_PROGRAM, "/c", "/f:captured.ini"}, output);
}

/// Writes the command lines that a capture runs to the file "commands"; how many there are.
std::size_t recordCommands() {
    capture("transcript");
    constexpr std::string_view mark = "Executing:";
    std::ifstream transcript("transcript");
    std::ofstream commands("commands");
    commands << "hwdetect.exe /i\n";
    std::size_t count = 1;
    for (std::string line; std::getline(transcript, line);) {
        if (line.starts_with(mark)) {
            commands << line.substr(mark.size()) << '\n';
            ++count;
        }
    }
    return count;
}

/// Whether the policies of all controllers were captured, each with its last array.
bool isCaptureWhole() {
    std::ifstream file("captured.ini");
    int policies = 0;
    int lastArrays = 0;
    for (std::string line; std::getline(file, line);) {
        policies += line.starts_with("[Policy.AUTO-") ? 1 : 0;
        lastArrays += line.starts_with("Array_Mode") ? 1 : 0;
    }
    constexpr int all = 2 * controllersOfOneUtility + otherControllers;
    return policies == all && lastArrays == all;
}

// Bound by the start of a process; /bin/true loads the C library, the program loads nothing.
void usageAgainstTrue(benchmark::State& state) {
    Pairs pairs;
    for (auto _ : state) {
        const Run usage = run({ZOLEX_BENCH_PROGRAM, "/?"});
        const Run nothing = run({"/bin/true"});
        if (usage.exitCode != 0 || nothing.exitCode != 0) {
            state.SkipWithError("a program failed");
            return;
        }
        state.SetIterationTime(usage.seconds);
        pairs.add(usage, nothing);
    }
    pairs.report(state);
}
BENCHMARK(usageAgainstTrue)->Iterations(200)->UseManualTime()->Unit(benchmark::kMillisecond);

// With children that print at once, bound by their start and, with 144 drives, by the reading of
// the 7 MB that they print; with children that take their time, by that. The parameters are the
// drives of a controller and the milliseconds of a child.
void captureAgainstRunner(benchmark::State& state) {
    const WorkingFolder folder;
    layOutServer(static_cast<int>(state.range(0)));
    ::setenv("ZOLEX_PCI_ROOT", (folder.path() / "pci").c_str(), 1);
    ::unsetenv("ZOLEX_BENCH_DELAY");
    constexpr std::size_t children = 1 + 4 * controllersOfOneUtility + otherControllers;
    if (recordCommands() != children || !isCaptureWhole()) {
        state.SkipWithError("the capture is not whole");
        return;
    }
    if (state.range(1) > 0) {
        ::setenv("ZOLEX_BENCH_DELAY", std::to_string(state.range(1)).c_str(), 1);
    }
    Pairs pairs;
    for (auto _ : state) {
        const Run whole = capture();
        const Run runner = run({ZOLEX_BENCH_RUNNER});
        if (whole.exitCode != 0 || runner.exitCode != 0) {
            state.SkipWithError("a program failed");
            return;
        }
        state.SetIterationTime(whole.seconds);
        pairs.add(whole, runner);
    }
    pairs.report(state);
}
BENCHMARK(captureAgainstRunner)
    ->ArgNames({"drives", "ms"})
    ->Args({10, 0})
    ->Args({36, 0})
    ->Args({144, 0})
    ->Iterations(30)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(captureAgainstRunner)
    ->ArgNames({"drives", "ms"})
    ->Args({36, 20})
    ->Iterations(10)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench

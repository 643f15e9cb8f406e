#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace zolex::bench {

/// What one run of a program cost, from its start to its end.
struct Run {
    int exitCode = -1; ///< -1 when it could not be started
    double seconds = 0;
    double cpuSeconds = 0; ///< processor time of the program and of its children
    /// Of the program itself; the system counts this process in, from which it is started, so that
    /// it is never less than the peak of this one.
    double peakMegabytes = 0;
};

/// Runs a program, named by its path, with its output and errors written to `output`.
Run run(const std::vector<std::string>& arguments, const char* output = "/dev/null");

/// Compares runs of two programs, made in turn so that both meet the machine in the same state.
class Pairs {
  public:
    void add(const Run& run, const Run& other);
    /// Sets the counters "least_ms" and "other_ms" (the least times of either), "ratio" (median of
    /// the pairs), "ratio_of_least", "cpu_ratio" (median of the pairs, of processor time) and
    /// "peak_MB" (largest).
    void report(benchmark::State& state) const;

  private:
    std::vector<Run> runs_;
    std::vector<Run> others_;
};

} // namespace zolex::bench

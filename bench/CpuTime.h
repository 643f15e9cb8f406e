#pragma once

#include <benchmark/benchmark.h>

#include <ctime>

namespace zolex::bench {

/// Times one iteration by the processor time that this process takes, from construction to
/// destruction: what a benchmark prepares before does not count. For benchmarks with UseManualTime.
class CpuTime {
  public:
    explicit CpuTime(benchmark::State& state) : state_(state), start_(now()) {}
    CpuTime(const CpuTime&) = delete;
    CpuTime& operator=(const CpuTime&) = delete;
    ~CpuTime() { state_.SetIterationTime(now() - start_); }

  private:
    static double now() {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }

    benchmark::State& state_;
    double start_;
};

} // namespace zolex::bench

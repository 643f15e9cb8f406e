#include "Processes.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zolex::bench {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double leastSeconds(const std::vector<Run>& runs) {
    return std::min_element(runs.begin(), runs.end(),
                            [](const Run& a, const Run& b) { return a.seconds < b.seconds; })
        ->seconds;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

Run run(const std::vector<std::string>& arguments, const char* output) {
    std::vector<std::string> own = arguments;
    std::vector<char*> pointers;
    for (std::string& argument : own) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output,
                                       O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    pid_t child = -1;
    const int error =
        ::posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), ::environ);
    int status = -1;
    rusage usage{};
    const bool ended = error == 0 && ::wait4(child, &status, 0, &usage) == child;
    Run result;
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    ::posix_spawn_file_actions_destroy(&actions);
    result.exitCode = ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    constexpr double kilobytesPerMegabyte = 1024;
    result.peakMegabytes = static_cast<double>(usage.ru_maxrss) / kilobytesPerMegabyte;
    return result;
}

void Pairs::add(const Run& run, const Run& other) {
    runs_.push_back(run);
    others_.push_back(other);
}

void Pairs::report(benchmark::State& state) const {
    if (runs_.empty()) {
        return;
    }
    std::vector<double> ratios;
    std::vector<double> cpuRatios;
    double peak = 0;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        ratios.push_back(runs_[i].seconds / others_[i].seconds);
        cpuRatios.push_back(runs_[i].cpuSeconds / others_[i].cpuSeconds);
        peak = std::max(peak, runs_[i].peakMegabytes);
    }
    constexpr double millisecondsPerSecond = 1000;
    state.counters["least_ms"] = leastSeconds(runs_) * millisecondsPerSecond;
    state.counters["other_ms"] = leastSeconds(others_) * millisecondsPerSecond;
    state.counters["ratio"] = median(ratios);
    state.counters["cpu_ratio"] = median(cpuRatios);
    state.counters["ratio_of_least"] = leastSeconds(runs_) / leastSeconds(others_);
    state.counters["peak_MB"] = peak;
}

} // namespace zolex::bench

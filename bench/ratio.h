#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace bench {

template <typename Work>
double seconds_of(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Processor time of this thread, or of all with another clock.
inline double processor_seconds(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// For work that never waits: excludes other programs on the machine.
template <typename Work>
double processor_seconds_of(Work&& work, clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    const double start = processor_seconds(clock);
    work();
    return processor_seconds(clock) - start;
}

/// The statistic over all rounds.
enum class typical {
    median,  ///< for work with the disk, whose times vary by themselves
    least,   ///< for work of the processor alone: short rounds escape other programs
};

/// Times a floor and the measured work in turn, so that both meet the same machine. The counter `ratio` is the quotient of
/// their typical times, `goal` its limit, and the label names the floor. Finish with `report`.
class ratio {
public:
    ratio(benchmark::State& state, double goal, typical which = typical::median)
        : state_(state), goal_(goal), which_(which) {}

    void add(double floor_seconds, double seconds) {
        floor_.push_back(floor_seconds);
        measured_.push_back(seconds);
        state_.SetIterationTime(seconds);
    }

    void report(const std::string& floor) {
        state_.SetLabel(floor);
        state_.counters["ratio"] = value();
        state_.counters["goal"] = goal_;
    }

    [[nodiscard]] double value() { return typical_of(measured_) / typical_of(floor_); }

private:
    double typical_of(std::vector<double>& values) const {
        if (which_ == typical::least) return *std::ranges::min_element(values);
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::ranges::nth_element(values, middle);
        return *middle;
    }

    benchmark::State& state_;
    double goal_;
    typical which_;
    std::vector<double> floor_;
    std::vector<double> measured_;
};

}  // namespace bench

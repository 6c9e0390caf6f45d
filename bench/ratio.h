#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

template <typename Work>
double seconds_of(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times a floor and what is compared with it, one after the other, so that both meet the same machine; the counter `ratio`
/// is the quotient of their medians, `goal` what it should not exceed. To be finished with `report`.
class ratio {
public:
    ratio(benchmark::State& state, double goal) : state_(state), goal_(goal) {}

    void add(double floor_seconds, double seconds) {
        floor_.push_back(floor_seconds);
        measured_.push_back(seconds);
        state_.SetIterationTime(seconds);
    }

    void report() {
        state_.counters["ratio"] = median(measured_) / median(floor_);
        state_.counters["goal"] = goal_;
    }

private:
    static double median(std::vector<double>& values) {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::ranges::nth_element(values, middle);
        return *middle;
    }

    benchmark::State& state_;
    double goal_;
    std::vector<double> floor_;
    std::vector<double> measured_;
};

}  // namespace bench

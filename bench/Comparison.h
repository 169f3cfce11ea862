#ifndef BENCH_COMPARISON_H
#define BENCH_COMPARISON_H

/// \file
/// Compares two ways of doing the same in one run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

/// The time that `work` takes, in seconds.
template <class Work> double seconds(const Work &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs in each iteration `library`, `plain`, `plain`, `library`, so that both see the same machine whatever
/// else it does, and each what the other leaves behind. Each returns the seconds it took; what it prepares
/// before does not count.
///
/// Reports the medians of the times, and as `ratio` the median of the iterations' ratios.
/// \param bound the largest ratio that is right; above it the program ends with an error
/// \param repeats how often `library` and `plain` do their work: the times are for once
template <class Library, class Plain>
void compare(benchmark::State &state, double bound, const Library &library, const Plain &plain,
             int repeats = 1)
{
    library();
    plain();
    std::vector<double> libraryTimes, plainTimes, ratios;
    for (auto _ : state) {
        double libraryTime = library();
        double plainTime = plain();
        plainTime += plain();
        libraryTime += library();
        state.SetIterationTime(libraryTime + plainTime);
        libraryTimes.push_back(libraryTime / 2);
        plainTimes.push_back(plainTime / 2);
        ratios.push_back(libraryTime / plainTime);
    }
    state.counters["library_us"] = median(libraryTimes) / repeats * 1e6;
    state.counters["plain_us"] = median(plainTimes) / repeats * 1e6;
    state.counters["ratio"] = median(ratios);
    state.counters["bound"] = bound;
}

#endif

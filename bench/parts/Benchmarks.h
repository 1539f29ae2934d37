// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

/// Ends the run with status 1 if an assumption of the measurement does not hold.
inline void require(bool holds, char const* expectation)
{
    if (holds)
        return;
    std::fprintf(stderr, "usage-meter-benchmarks: this does not hold: %s\n", expectation);
    // Not exit(), since the program's threads may still be running.
    std::_Exit(EXIT_FAILURE);
}

/// Adds a wall-clock benchmark named "<figure>/<subject>". The subject is "ours", or "bare" for the library calls or
/// system calls alone.
template <typename Function> benchmark::internal::Benchmark* add(std::string const& name, Function&& run)
{
    return benchmark::RegisterBenchmark(name.c_str(), std::forward<Function>(run))
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
}

void addReportBenchmarks();
void addPresentationBenchmarks();
void addKeyListBenchmarks();
void addCacheBenchmarks();
void addRefreshBenchmarks();
void addStatusIconBenchmark();

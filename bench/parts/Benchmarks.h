// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

/// Ends the run with status 1 where what is to be measured is not what it is taken for.
inline void require(bool holds, char const* expectation)
{
    if (holds)
        return;
    std::fprintf(stderr, "usage-meter-benchmarks: this does not hold: %s\n", expectation);
    // Not exit(): threads of the program's may be running.
    std::_Exit(EXIT_FAILURE);
}

/// Adds a benchmark on the wall clock, named "<figure>/<subject>". The subject is "ours", or "bare" for the library
/// calls or system calls alone.
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

// Timing shared by the benchmarks: thread CPU time per call (so the figures
// hold on a machine that other jobs share) and the per-frame memory floor
// that every other figure is set against (BM_Floor, driver_bench.cpp).
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace ispdsp_bench {

inline double threadCpuNs() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) * 1e9 + double(ts.tv_nsec);
}

// CPU ns of one floor iteration, the median of BM_Floor's repetitions so far;
// 0 until BM_Floor ran.
inline double gFloorNs = 0;
inline std::vector<double> gFloorRuns;

// Runs body once per iteration and reports ns_per_call (CPU time) and, once
// the floor is known, x_floor (ns_per_call over the floor's). Returns ns_per_call.
template <class Body>
double runTimed(benchmark::State& state, Body&& body) {
    const double t0 = threadCpuNs();
    for (auto _ : state) body();
    const double cpuNs = threadCpuNs() - t0;
    const double perCall = state.iterations() ? cpuNs / double(state.iterations()) : 0;
    state.counters["ns_per_call"] = perCall;
    if (gFloorNs > 0) state.counters["x_floor"] = perCall / gFloorNs;
    return perCall;
}

inline void recordFloor(double perCall) {
    if (perCall <= 0) return;
    gFloorRuns.push_back(perCall);
    std::vector<double> sorted = gFloorRuns;
    std::sort(sorted.begin(), sorted.end());
    const size_t n = sorted.size();
    gFloorNs = n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
}

}  // namespace ispdsp_bench

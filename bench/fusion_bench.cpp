// Per-frame fusion work against a plain copy of the sixteen stored records:
//   BM_FusionCopyBaseline   memcpy of the 8704-byte record array
//   BM_FusionCalculate      DRV_dspCalculateFusion (26 scalars + 511 curve points)
//   BM_FusionDoubleCalculate DRV_dspDoubleCalculateFusion
//   BM_FusionSetMessage     DRV_dspOpSetFusion into a callback that does nothing
// ns_per_call is CPU time per call; x_copy is that over the baseline's.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <memory>

#include "ispdsp/fusion.h"

namespace {

struct FusionInput {
    std::unique_ptr<DSP_FusionCalculateParam> calc = std::make_unique<DSP_FusionCalculateParam>();
    DRV_gainInterParam gain{};
    std::array<uint8_t, FUSION_NIR_POINTS> curve{}, colourCurve{}, monoCurve{};
    DSP_FusionV2722 out{}, colour{}, mono{};

    FusionInput() {
        uint32_t x = 1;
        auto* bytes = reinterpret_cast<uint8_t*>(calc.get());
        for (size_t i = 0; i < sizeof *calc; ++i) {
            x = x * 1664525u + 1013904223u;
            bytes[i] = uint8_t(x >> 24);
        }
        calc->gainInterParam = &gain;
        gain.gainStartIndex = 4;
        gain.gainEndIndex = 5;
        gain.interCoff = 0.37f;
        out.fusionParam.w_nir = curve.data();
        colour.fusionParam.w_nir = colourCurve.data();
        mono.fusionParam.w_nir = monoCurve.data();
        for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
            colourCurve[i] = uint8_t(i * 7);
            monoCurve[i] = uint8_t(i * 13);
        }
    }
};

// CPU time of this thread, so the figures hold on a busy machine too.
double threadCpuNs() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) * 1e9 + double(ts.tv_nsec);
}

double gCopyNs = 0;  // the baseline's CPU time per call, once measured

// Sets ns_per_call and, once the baseline ran, x_copy (time over the copy's).
void report(benchmark::State& state, double cpuNs) {
    const double perCall = state.iterations() ? cpuNs / double(state.iterations()) : 0;
    state.counters["ns_per_call"] = perCall;
    if (gCopyNs > 0) state.counters["x_copy"] = perCall / gCopyNs;
}

void BM_FusionCopyBaseline(benchmark::State& state) {
    FusionInput in;
    auto copy = std::make_unique<std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS>>();
    const double t0 = threadCpuNs();
    for (auto _ : state) {
        std::memcpy(copy->data(), in.calc->fusionParam, sizeof *copy);
        benchmark::DoNotOptimize(copy->data());
        benchmark::ClobberMemory();
    }
    const double cpuNs = threadCpuNs() - t0;
    if (state.iterations()) gCopyNs = cpuNs / double(state.iterations());
    state.counters["ns_per_call"] = gCopyNs;
}
BENCHMARK(BM_FusionCopyBaseline);

void BM_FusionCalculate(benchmark::State& state) {
    FusionInput in;
    const double t0 = threadCpuNs();
    for (auto _ : state) {
        benchmark::DoNotOptimize(DRV_dspCalculateFusion(in.calc.get(), &in.out));
        benchmark::ClobberMemory();
    }
    report(state, threadCpuNs() - t0);
}
BENCHMARK(BM_FusionCalculate);

void BM_FusionDoubleCalculate(benchmark::State& state) {
    FusionInput in;
    DSP_DoubleFusionCalculateParam dbl{0, &in.colour, &in.mono};
    const double t0 = threadCpuNs();
    for (auto _ : state) {
        benchmark::DoNotOptimize(DRV_dspDoubleCalculateFusion(&dbl, &in.out));
        benchmark::ClobberMemory();
    }
    report(state, threadCpuNs() - t0);
}
BENCHMARK(BM_FusionDoubleCalculate);

Int32 acceptMessage(DRV_dspIspCfgOpsCtrl*, Ptr message) {
    benchmark::DoNotOptimize(message);
    return 0;
}

void BM_FusionSetMessage(benchmark::State& state) {
    FusionInput in;
    DRV_dspIspHandle handle{};
    handle.dspIspCfgOps.OpSetDspConfig = acceptMessage;
    handle.dspIspCfgOps.OpGetDspConfig = acceptMessage;
    const double t0 = threadCpuNs();
    for (auto _ : state) {
        benchmark::DoNotOptimize(DRV_dspOpSetFusion(&in.out, &handle));
    }
    report(state, threadCpuNs() - t0);
}
BENCHMARK(BM_FusionSetMessage);

}  // namespace

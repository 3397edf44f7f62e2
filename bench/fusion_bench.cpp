// The stages of one OpSetFusion, each on its own through the public ABI, in
// the order the per-frame update runs them:
//   BM_StageReadBack         DRV_dspOpGetFusion from a callback that answers 0
//   BM_StageCalculate        DRV_dspCalculateFusion (26 scalars + 511 curve points)
//   BM_StageSwitchMessage    DRV_dspOpSetFSSWITCH into a callback that does nothing
//   BM_StageDoubleCalculate  DRV_dspDoubleCalculateFusion
//   BM_StageFusionMessage    DRV_dspOpSetFusion into a callback that does nothing
//   BM_StageInfoLine         the one "pswitch" line through the cheap log service
// ns_per_call is CPU time per call, x_floor that over BM_Floor's.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

#include "bench_clock.h"
#include "ispdsp/fusion.h"
#include "ispdsp/osa.h"

namespace {

using ispdsp_bench::runTimed;

struct FusionInput {
    std::unique_ptr<DSP_FusionCalculateParam> calc = std::make_unique<DSP_FusionCalculateParam>();
    DRV_gainInterParam gain{};
    std::array<uint8_t, FUSION_NIR_POINTS> curve{}, colourCurve{}, monoCurve{};
    DSP_FusionV2722 out{}, colour{}, mono{};
    DRV_dspIspHandle handle{};

    static Int32 acceptMessage(DRV_dspIspCfgOpsCtrl*, Ptr message) {
        benchmark::DoNotOptimize(message);
        return 0;
    }

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
        handle.dspIspCfgOps.OpSetDspConfig = acceptMessage;
        handle.dspIspCfgOps.OpGetDspConfig = acceptMessage;
    }
};

void BM_StageReadBack(benchmark::State& state) {
    FusionInput in;
    runTimed(state, [&] { benchmark::DoNotOptimize(DRV_dspOpGetFusion(&in.out, &in.handle)); });
}
BENCHMARK(BM_StageReadBack);

void BM_StageCalculate(benchmark::State& state) {
    FusionInput in;
    runTimed(state, [&] {
        benchmark::DoNotOptimize(DRV_dspCalculateFusion(in.calc.get(), &in.out));
        benchmark::ClobberMemory();
    });
}
BENCHMARK(BM_StageCalculate);

void BM_StageSwitchMessage(benchmark::State& state) {
    FusionInput in;
    runTimed(state, [&] { benchmark::DoNotOptimize(DRV_dspOpSetFSSWITCH(&in.out, &in.handle)); });
}
BENCHMARK(BM_StageSwitchMessage);

void BM_StageDoubleCalculate(benchmark::State& state) {
    FusionInput in;
    DSP_DoubleFusionCalculateParam dbl{0, &in.colour, &in.mono};
    runTimed(state, [&] {
        benchmark::DoNotOptimize(DRV_dspDoubleCalculateFusion(&dbl, &in.out));
        benchmark::ClobberMemory();
    });
}
BENCHMARK(BM_StageDoubleCalculate);

void BM_StageFusionMessage(benchmark::State& state) {
    FusionInput in;
    runTimed(state, [&] { benchmark::DoNotOptimize(DRV_dspOpSetFusion(&in.out, &in.handle)); });
}
BENCHMARK(BM_StageFusionMessage);

void BM_StageInfoLine(benchmark::State& state) {
    Int32 pSwitch = 1;
    runTimed(state, [&] {
        benchmark::DoNotOptimize(pSwitch);
        OSA_logWrite(2, 2, "[DSP_DRV] pswitch=%d\n", pSwitch);
    });
}
BENCHMARK(BM_StageInfoLine);

}  // namespace

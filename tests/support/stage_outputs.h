// Every calculation of the library on one table, as a host runs them on the
// records of the current table: the twelve stage payloads, the fusion blend at
// a colour and a mono gain position, and their combination. Header-only and
// free of GoogleTest: the concurrency suite compares the outputs across
// threads, the fuzz targets run it on tables straight from their input.
#pragma once

#include <cstring>
#include <memory>

#include "ispdsp/ispdsp.h"

// The stages whose calculation takes one table record and gives one payload:
// X(Name, payload version, field), the field naming both the calculation's
// input (field##Param) and the member of StageOutputs; the table's record is
// isp##Name##Param and the message function DRV_dspOpSet##Name.
#define ISPDSP_TEST_STAGES(X)  \
    X(Dlae, V101, dlae)        \
    X(Dlcfa, V101, dlcfa)      \
    X(Fg2c, V102, fg2c)        \
    X(Lle, V203, lle)          \
    X(Lsm, V112, lsm)          \
    X(Sade, V113, sade)        \
    X(Sbm3d, V113, sbm3d)      \
    X(Yuv2yuv, V100, yuv2yuv)  \
    X(Lae, V209, lae)          \
    X(Y2d, V5118, y2d)         \
    X(Ylwdr, V102, ylwdr)      \
    X(FusionPlate, V1001, fusionPlate)

namespace ispdsp_test {

struct StageOutputs {
#define ISPDSP_TEST_MEMBER(Name, Ver, field) DSP_##Name##Ver field;
    ISPDSP_TEST_STAGES(ISPDSP_TEST_MEMBER)
#undef ISPDSP_TEST_MEMBER
    DSP_FusionV2722 fusion[3];  // colour, mono, both; their curves point into `curves`
    Uint8 curves[3][FUSION_NIR_POINTS];
    Int32 stageFailures;   // stage calculations that refused their record
    Int32 fusionFailures;  // fusion calculations that failed
};

// Fills `out` (zeroed first, padding included, so outputs compare bytewise).
inline void calculateStages(const CFG_DspIspCfgParam& table, DRV_gainInterParam colour, DRV_gainInterParam mono,
                            Int32 pSwitch, StageOutputs& out) {
    std::memset(&out, 0, sizeof out);
#define ISPDSP_TEST_CALCULATE(Name, Ver, field)                                         \
    {                                                                                   \
        DSP_##Name##CalculateParam in{};                                                \
        std::memcpy(&in.field##Param, &table.isp##Name##Param, sizeof in.field##Param); \
        out.stageFailures += DRV_dspCalculate##Name(&in, &out.field) != 0;              \
    }
    ISPDSP_TEST_STAGES(ISPDSP_TEST_CALCULATE)
#undef ISPDSP_TEST_CALCULATE
    auto in = std::make_unique<DSP_FusionCalculateParam>();  // zeroed; 8.7 KB, kept off the stack
    std::memcpy(in->fusionParam, table.ispFusionParam, sizeof in->fusionParam);
    in->pSwitch = pSwitch;
    for (int k = 0; k < 3; ++k) out.fusion[k].fusionParam.w_nir = out.curves[k];
    in->gainInterParam = &colour;
    out.fusionFailures += DRV_dspCalculateFusion(in.get(), &out.fusion[0]) != 0;
    in->gainInterParam = &mono;
    out.fusionFailures += DRV_dspCalculateFusion(in.get(), &out.fusion[1]) != 0;
    DSP_DoubleFusionCalculateParam pair{0, &out.fusion[0], &out.fusion[1]};
    out.fusionFailures += DRV_dspDoubleCalculateFusion(&pair, &out.fusion[2]) != 0;
}

// A gain blend between two steps of the table.
inline DRV_gainInterParam gainBetween(Int32 start, Int32 end, float interCoff) {
    DRV_gainInterParam gain{};
    gain.gainStartIndex = start;
    gain.gainEndIndex = end;
    gain.interCoff = interCoff;
    return gain;
}

}  // namespace ispdsp_test

// The fusion plate stage under the enhancement stage contract: the weight held
// to 1..100 by the calculation and the debug setter, the print line and the
// null pointers. Its message and no-op get are in dsp_message_test.cpp.
#include "ispdsp/fusion.h"
#include "stage_cases.h"

namespace stage_test {
namespace {

StageCase fusionPlate() {
    using In = DSP_FusionPlateCalculateParam;
    using Out = DSP_FusionPlateV1001;
    using Rec = CFG_DSP_FusionPlateV1001;
    return StageCase{
        STAGE_API(FusionPlate, V1001, "fusionPlateCalParam", "cfgFusionPlateParam"),
        // A signed weight: negative inputs are below the range, not above it.
        {calcRow(STAGE_AT(In, fusionPlateParam.fuse_weight), STAGE_AT(Out, fusionPlateParam.fuse_weight),
                 {{0, 1},
                  {1, 1},
                  {55, 55},
                  {100, 100},
                  {101, 100},
                  {250, 100},
                  {0x7FFFFFFFu, 100},
                  {0x80000000u, 1},
                  {0xFFFFFFFCu, 1},
                  {0xFFFFFFFFu, 1}})},
        {between(0, STAGE_AT(Rec, fuse_weight), 1, 100, "[DSP_DRV] fusionPlate weight is %u\n",
                 {{55, 55}, {250, 100}, {-4, 1}})},
        1,
        {},
        {{{STAGE_AT(In, fusionPlateParam.fuse_weight), 250}}, {}},  // the calculation logs nothing
        // Printed as stored, not clamped.
        {{{STAGE_AT(Rec, fuse_weight), 250}}, {"[DSP_DRV] [cfg FUSION_PLATE]weight=250\n"}},
    };
}

INSTANTIATE_TEST_SUITE_P(FusionPlate, StageContract, testing::Values(fusionPlate()), stageName);

}  // namespace
}  // namespace stage_test

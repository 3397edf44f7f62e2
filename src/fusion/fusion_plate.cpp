// The fusion plate stage: one fusion weight, held to 1..100 on its way to the DSP.
#include <algorithm>

#include "common/log.h"
#include "fusion/fusion_plate_rules.h"
#include "ispdsp/fusion.h"

namespace {

using ispdsp::fusion_plate::kFuseWeightMax;
using ispdsp::fusion_plate::kFuseWeightMin;

// Upper bound first, then lower bound.
constexpr Int32 clampFuseWeight(Int32 value) {
    return std::max(std::min(value, kFuseWeightMax), kFuseWeightMin);
}

}  // namespace

extern "C" {

ISPDSP_API Int32 DRV_dspCalculateFusionPlate(DSP_FusionPlateCalculateParam* fusionPlateCalParam,
                                             DSP_FusionPlateV1001* param) {
    ISP_CHECK_PTR(fusionPlateCalParam, "fusionPlateCalParam");
    ISP_CHECK_PTR(param, "param");
    // Only the weight is written; the reserved words keep what the caller cleared.
    param->fusionPlateParam.fuse_weight = clampFuseWeight(fusionPlateCalParam->fusionPlateParam.fuse_weight);
    return 0;
}

ISPDSP_API Int32 DRV_dspdbgFusionPlate(CFG_DSP_FusionPlateV1001* cfgFusionPlateParam, Int32 pcmd_id, Int32 value) {
    ISP_CHECK_PTR(cfgFusionPlateParam, "cfgFusionPlateParam");
    if (pcmd_id != 0) {
        return 0;  // the weight is the stage's only field
    }
    cfgFusionPlateParam->fuse_weight = clampFuseWeight(value);
    ISP_LOG_INFO("fusionPlate weight is %u\n", static_cast<Uint32>(cfgFusionPlateParam->fuse_weight));
    return 0;
}

ISPDSP_API Int32 DRV_dspdbgFusionPlatePrint(CFG_DSP_FusionPlateV1001* cfgFusionPlateParam) {
    ISP_CHECK_PTR(cfgFusionPlateParam, "cfgFusionPlateParam");
    ISP_LOG_INFO("[cfg FUSION_PLATE]weight=%d\n", cfgFusionPlateParam->fuse_weight);
    return 0;
}

}  // extern "C"

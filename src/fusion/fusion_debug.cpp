// Fusion debug setter and print: change one scalar of the two stored records
// that the current gain blends, or print both records side by side.
#include "common/log.h"
#include "fusion/fusion_fields.h"
#include "ispdsp/fusion.h"

using namespace ispdsp::fusion;

namespace {

inline Uint8* recordBytes(CFG_DSP_FusionV2722* records, Int32 index) {
    return reinterpret_cast<Uint8*>(&records[index]);
}

}  // namespace

Int32 DRV_dspdbgFusion(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam, Int32 pcmd_id,
                       Int32 value) {
    ISP_CHECK_PTR(cfgFusionParam, "cfgFusionParam");
    ISP_CHECK_PTR(gainInterParam, "gainInterParam");
    if (pcmd_id < 0 || pcmd_id >= kScalarFieldCount) {
        return 0;
    }
    // Indexes outside the sixteen records are refused rather than clamped: a
    // command must never land in a record the engineer did not mean.
    if (!gainIndexesValid(*gainInterParam)) {
        ISP_LOG_ERROR("gain index out of range: start %d, end %d\n", gainInterParam->gainStartIndex,
                      gainInterParam->gainEndIndex);
        return -1;
    }

    const ScalarField& field = kScalarFields[pcmd_id];
    const Int32 stored = clampToRange(field, value);
    Uint8* start = recordBytes(cfgFusionParam, gainInterParam->gainStartIndex);
    storeField(field, start, stored);
    storeField(field, recordBytes(cfgFusionParam, gainInterParam->gainEndIndex), stored);

    // Signed fields are widened with their sign, so -1 prints as 4294967295.
    OSA_logWrite(ispdsp::kLogInfoLevel, ispdsp::kLogInfoCategory, field.confirmFormat,
                 static_cast<Uint32>(loadField(field, start)));
    return 0;
}

Int32 DRV_dspdbgFusionPrint(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam) {
    ISP_CHECK_PTR(cfgFusionParam, "cfgFusionParam");
    ISP_CHECK_PTR(gainInterParam, "gainInterParam");
    if (!gainIndexesValid(*gainInterParam)) {
        ISP_LOG_ERROR("gain index out of range: start %d, end %d\n", gainInterParam->gainStartIndex,
                      gainInterParam->gainEndIndex);
        return -1;
    }

    const Uint8* s = recordBytes(cfgFusionParam, gainInterParam->gainStartIndex);
    const Uint8* e = recordBytes(cfgFusionParam, gainInterParam->gainEndIndex);
    // Field k of the start record, then of the end record, with its sign.
#define PAIR(k) loadField(kScalarFields[k], s), loadField(kScalarFields[k], e)
    ISP_LOG_INFO("[cfg fusion]ep_delta=[%d,%d], fusion_hf_ratio=[%d,%d], fwmin_wt=[%d,%d], nir_k=[%d,%d], "
                 "hf_zoom=[%d,%d], dark_inner=[%d,%d], high_lum_thr=[%d,%d]\n",
                 PAIR(0), PAIR(1), PAIR(2), PAIR(3), PAIR(4), PAIR(5), PAIR(6));
    ISP_LOG_INFO("[cfg fusion]fwmin_limit=[%d,%d], fwmax_limit=[%d,%d], copy_en=[%d,%d], nir_a=[%d,%d], "
                 "vis_b=[%d,%d], nir_min=[%d,%d]\n",
                 PAIR(7), PAIR(8), PAIR(9), PAIR(10), PAIR(11), PAIR(12));
    ISP_LOG_INFO("[cfg fusion]uv_coef=[%d,%d], uv_diff_thr=[%d,%d], uv_diff_min=[%d,%d], uv_diff_max=[%d,%d], "
                 "uv_vlight_min=[%d,%d], uv_vlight_max=[%d,%d], uv_sat_limit=[%d,%d]\n",
                 PAIR(13), PAIR(14), PAIR(15), PAIR(16), PAIR(17), PAIR(18), PAIR(19));
    ISP_LOG_INFO("[cfg fusion]uv_rsmooth=[%d,%d], uv_gsmooth=[%d,%d], uv_bsmooth=[%d,%d], uv_wmin=[%d,%d], "
                 "uv_wmax=[%d,%d], uv_w=[%d,%d]\n",
                 PAIR(20), PAIR(21), PAIR(22), PAIR(23), PAIR(24), PAIR(25));
#undef PAIR
    return 0;
}

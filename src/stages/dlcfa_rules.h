// DLCFA: calculation map, debug ids and log lines.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"

namespace ispdsp::stages::dlcfa {

ISPDSP_STAGE_TYPES(Dlcfa, V101);

inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_ee_level), INPUT(dlcfaParam.ee_level), 511),
    cap(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_gamma), INPUT(dlcfaParam.gamma), 6),
    cap(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_luma_contrast), INPUT(dlcfaParam.luma_contrast), 11),
    cap(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_denoise), INPUT(dlcfaParam.denoise), 4),
    cap(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_fusion_weight), INPUT(dlcfaParam.fusion_weight), 7),
    flag(PAYLOAD(dlcfaParam.vorn_hi_dlcfa_debug_pin), INPUT(debug_pin)),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set DLCFA]ee_level=%d,gamma=%d,luma_contrast=%d,denoise=%d,fusion_weight=%d,debug_pin=%d!\n",
         PAYLOAD(dlcfaParam.vorn_hi_dlcfa_ee_level), PAYLOAD(dlcfaParam.vorn_hi_dlcfa_gamma),
         PAYLOAD(dlcfaParam.vorn_hi_dlcfa_luma_contrast), PAYLOAD(dlcfaParam.vorn_hi_dlcfa_denoise),
         PAYLOAD(dlcfaParam.vorn_hi_dlcfa_fusion_weight), PAYLOAD(dlcfaParam.vorn_hi_dlcfa_debug_pin)),
};

// Ids 2 and 3 have no historical confirmation wording. They log a line in the
// manner of the other ids, so that every stored value is confirmed.
inline constexpr DebugId kIds[] = {
    between(RECORD(ee_level), 0, 511, "[DSP_DRV] dlcfa ee_level is %u!\n"),
    between(RECORD(gamma), 0, 6, "[DSP_DRV] dlcfa gamma is %u!\n"),
    between(RECORD(luma_contrast), 0, 11, "[DSP_DRV] dlcfa luma_contrast is %u!\n"),
    between(RECORD(denoise), 0, 4, "[DSP_DRV] dlcfa denoise is %u!\n"),
    between(RECORD(fusion_weight), 0, 7, "[DSP_DRV] dlcfa fusion_weight is %u!\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg DLCFA]ee_level=%d,gamma=%d,luma_contrast=%d,denoise=%d,fusion_weight=%d!\n",
         RECORD(ee_level), RECORD(gamma), RECORD(luma_contrast), RECORD(denoise), RECORD(fusion_weight)),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::dlcfa

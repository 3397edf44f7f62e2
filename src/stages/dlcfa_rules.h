// DLCFA: calculation map, debug ids and log lines.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

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

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(ee_level, "level", "edge enhancement strength"),
    STORED(gamma, "index", "gamma curve"),
    STORED(luma_contrast, "level", "luma contrast"),
    STORED(denoise, "level", "denoise strength"),
    STORED(fusion_weight, "weight", "weight of the enhanced image in the output"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("vorn_hi_dlcfa_ee_level", dlcfaParam.vorn_hi_dlcfa_ee_level),
    WIRE("vorn_hi_dlcfa_gamma", dlcfaParam.vorn_hi_dlcfa_gamma),
    WIRE("vorn_hi_dlcfa_luma_contrast", dlcfaParam.vorn_hi_dlcfa_luma_contrast),
    WIRE("vorn_hi_dlcfa_denoise", dlcfaParam.vorn_hi_dlcfa_denoise),
    WIRE("vorn_hi_dlcfa_fusion_weight", dlcfaParam.vorn_hi_dlcfa_fusion_weight),
    WIRE("vorn_hi_dlcfa_debug_pin", dlcfaParam.vorn_hi_dlcfa_debug_pin),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::dlcfa

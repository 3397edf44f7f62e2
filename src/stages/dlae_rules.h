// DLAE: calculation map, debug ids and log lines.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::dlae {

ISPDSP_STAGE_TYPES(Dlae, V101);

inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(dlaeParam.vorn_hi_dlae_fusion_weight), INPUT(dlaeParam.fusion_weight), 8),
    flag(PAYLOAD(dlaeParam.vorn_hi_dlae_debug_pin), INPUT(debug_pin)),
    range(PAYLOAD(dlaeParam.vorn_hi_dlae_window_gain), INPUT(dlaeParam.window_gain), 128, 512),
    cap(PAYLOAD(dlaeParam.vorn_hi_dlae_gamma), INPUT(dlaeParam.gamma), 6),
    cap(PAYLOAD(dlaeParam.vorn_hi_dlae_edge), INPUT(dlaeParam.edge), 12),
    cap(PAYLOAD(dlaeParam.vorn_hi_dlae_denoise), INPUT(dlaeParam.denoise), 5),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set DLAE]fusion_weight=%d,window_gain=%d,gamma=%d,edge=%d,denoise=%d,debug_pin=%d!\n",
         PAYLOAD(dlaeParam.vorn_hi_dlae_fusion_weight), PAYLOAD(dlaeParam.vorn_hi_dlae_window_gain),
         PAYLOAD(dlaeParam.vorn_hi_dlae_gamma), PAYLOAD(dlaeParam.vorn_hi_dlae_edge),
         PAYLOAD(dlaeParam.vorn_hi_dlae_denoise), PAYLOAD(dlaeParam.vorn_hi_dlae_debug_pin)),
};

// The ids follow the payload's field order: id 1 is the debug_pin slot, which
// the record does not have, so it is accepted and does nothing.
inline constexpr DebugId kIds[] = {
    between(RECORD(fusion_weight), 0, 8, "[DSP_DRV] dlae fusion_weight is %u!\n"),
    noField(),
    between(RECORD(window_gain), 128, 512, "[DSP_DRV] dlae window_gain is %u!\n"),
    between(RECORD(gamma), 0, 6, "[DSP_DRV] dlae gamma is %u!\n"),
    between(RECORD(edge), 0, 12, "[DSP_DRV] dlae edge is %u!\n"),
    between(RECORD(denoise), 0, 5, "[DSP_DRV] dlae denoise is %u!\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg DLAE]fusion_weight=%d,window_gain=%d,gamma=%d,edge=%d,denoise=%d!\n",
         RECORD(fusion_weight), RECORD(window_gain), RECORD(gamma), RECORD(edge), RECORD(denoise)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(fusion_weight, "weight", "weight of the enhanced image in the output"),
    STORED(window_gain, "gain", "brightening gain"),
    STORED(gamma, "index", "gamma curve"),
    STORED(edge, "level", "edge enhancement strength"),
    STORED(denoise, "level", "denoise strength"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("vorn_hi_dlae_fusion_weight", dlaeParam.vorn_hi_dlae_fusion_weight),
    WIRE("vorn_hi_dlae_debug_pin", dlaeParam.vorn_hi_dlae_debug_pin),
    WIRE("vorn_hi_dlae_window_gain", dlaeParam.vorn_hi_dlae_window_gain),
    WIRE("vorn_hi_dlae_gamma", dlaeParam.vorn_hi_dlae_gamma), WIRE("vorn_hi_dlae_edge", dlaeParam.vorn_hi_dlae_edge),
    WIRE("vorn_hi_dlae_denoise", dlaeParam.vorn_hi_dlae_denoise),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::dlae

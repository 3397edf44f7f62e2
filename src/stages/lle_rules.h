// LLE: calculation map, debug ids and log lines.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::lle {

ISPDSP_STAGE_TYPES(Lle, V203);

inline constexpr CalcStep kCalc[] = {
    range(PAYLOAD(lleParam.vorn_hi_lle_window_gain), INPUT(lleParam.window_gain), 128, 512),
    cap(PAYLOAD(lleParam.vorn_hi_lle_gamma), INPUT(lleParam.gamma), 6),
    cap(PAYLOAD(lleParam.vorn_hi_lle_edge), INPUT(lleParam.edge), 32),
    cap(PAYLOAD(lleParam.vorn_hi_lle_denoise), INPUT(lleParam.denoise), 5),
    cap(PAYLOAD(lleParam.vorn_hi_lle_fusion_weight), INPUT(lleParam.fusion_weight), 7),
    flag(PAYLOAD(lleParam.vorn_hi_lle_debug_pin), INPUT(debug_pin)),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set LLE]window_gain=%d,gamma=%d,edge=%d,denoise=%d,fusion_weight=%d,debug_pin=%d\n",
         PAYLOAD(lleParam.vorn_hi_lle_window_gain), PAYLOAD(lleParam.vorn_hi_lle_gamma),
         PAYLOAD(lleParam.vorn_hi_lle_edge), PAYLOAD(lleParam.vorn_hi_lle_denoise),
         PAYLOAD(lleParam.vorn_hi_lle_fusion_weight), PAYLOAD(lleParam.vorn_hi_lle_debug_pin)),
};

// Ids 1 to 4 have an upper bound only: -1 stores 255 (and the calculation then sends the cap).
inline constexpr DebugId kIds[] = {
    between(RECORD(window_gain), 128, 512, "[DSP_DRV] lle window_gain is %u\n"),
    atMost(RECORD(gamma), 6, "[DSP_DRV] lle gamma is %u\n"),
    atMost(RECORD(edge), 32, "[DSP_DRV] lle edge is %u\n"),
    atMost(RECORD(denoise), 5, "[DSP_DRV] lle denoise is %u\n"),
    atMost(RECORD(fusion_weight), 7, "[DSP_DRV] lle fusion_weight is %u\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg LLE]window_gain=%d,gamma=%d,edge=%d,denoise=%d,fusion_weight=%d\n",
         RECORD(window_gain), RECORD(gamma), RECORD(edge), RECORD(denoise), RECORD(fusion_weight)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(window_gain, "gain", "low-light brightening gain"),
    STORED(gamma, "index", "low-light gamma curve"),
    STORED(edge, "level", "edge enhancement strength"),
    STORED(denoise, "level", "denoise strength"),
    STORED(fusion_weight, "weight", "weight of the enhanced image in the output"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("vorn_hi_lle_window_gain", lleParam.vorn_hi_lle_window_gain),
    WIRE("vorn_hi_lle_gamma", lleParam.vorn_hi_lle_gamma), WIRE("vorn_hi_lle_edge", lleParam.vorn_hi_lle_edge),
    WIRE("vorn_hi_lle_denoise", lleParam.vorn_hi_lle_denoise),
    WIRE("vorn_hi_lle_fusion_weight", lleParam.vorn_hi_lle_fusion_weight),
    WIRE("vorn_hi_lle_debug_pin", lleParam.vorn_hi_lle_debug_pin),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::lle

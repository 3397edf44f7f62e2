// SBM3D: calculation map, debug id and log line. No set line.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::sbm3d {

ISPDSP_STAGE_TYPES(Sbm3d, V113);

// Both payload words are signed 32-bit on the wire; the values written
// (0..16384, 0 or 1) have the same bits as unsigned. `ver` is the host's.
inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(sbm3dParam.sbm3d_thr), INPUT(sbm3dParam.sbm3d_threshold), 16384),
    flag(PAYLOAD(sbm3dParam.debug_pin), INPUT(debug_pin)),
};

inline constexpr DebugId kIds[] = {
    between(RECORD(sbm3d_threshold), 0, 16384, "[DSP_DRV] sbm3d sbm3d_threshold is %u\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg SBM3D]sbm3d_threshold=%d\n", RECORD(sbm3d_threshold)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(sbm3d_threshold, "level", "3D block-matching denoise strength"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("sbm3d_thr", sbm3dParam.sbm3d_thr), WIRE("debug_pin", sbm3dParam.debug_pin), WIRE("ver", sbm3dParam.ver),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::sbm3d

// YUV2YUV: a single enable word. The payload is that word itself (no firmware
// block); the message carries it in the scalar area.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::yuv2yuv {

ISPDSP_STAGE_TYPES(Yuv2yuv, V100);

inline constexpr CalcStep kCalc[] = {
    flag(PAYLOAD(enable), INPUT(yuv2yuvParam.enable)),
};

inline constexpr DebugId kIds[] = {
    onOff(RECORD(enable), "[DSP_DRV] yuv2yuv enable is %u\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg YUV2YUV]enable=%d\n", RECORD(enable)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(enable, "0/1", "1 turns the colour space conversion on"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("cscEnable", enable),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::yuv2yuv

// FG2C: calculation map, debug ids and log lines. No set line.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::fg2c {

ISPDSP_STAGE_TYPES(Fg2c, V102);

inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(fg2cParam.vorn_hi_fg2c_need_win_enhence), INPUT(fg2cParam.need_win_enhence), 2),
    cap(PAYLOAD(fg2cParam.vorn_hi_fg2c_win_fusion_weight), INPUT(fg2cParam.win_fusion_weight), 8),
    cap(PAYLOAD(fg2cParam.vorn_hi_fg2c_face_fusion_weight), INPUT(fg2cParam.face_fusion_weight), 8),
    cap(PAYLOAD(fg2cParam.vorn_hi_fg2c_face_fusion_pad), INPUT(fg2cParam.face_fusion_pad), 20),
    flag(PAYLOAD(fg2cParam.vorn_hi_fg2c_debug_pin), INPUT(debug_pin)),
};

inline constexpr DebugId kIds[] = {
    between(RECORD(need_win_enhence), 0, 2, "[DSP_DRV] fg2c need_win_enhence is %u\n"),
    between(RECORD(win_fusion_weight), 0, 8, "[DSP_DRV] fg2c win_fusion_weight is %u\n"),
    between(RECORD(face_fusion_weight), 0, 8, "[DSP_DRV] fg2c face_fusion_weight is %u\n"),
    between(RECORD(face_fusion_pad), 0, 20, "[DSP_DRV] fg2c face_fusion_pad is %u\n"),
};

// Ends with a full stop, not "!".
inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg FG2C]need_win_enhence=%d,win_fusion_weight=%d,face_fusion_weight=%d,face_fusion_pad=%d.\n",
         RECORD(need_win_enhence), RECORD(win_fusion_weight), RECORD(face_fusion_weight), RECORD(face_fusion_pad)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(need_win_enhence, "mode", "window enhancement mode"),
    STORED(win_fusion_weight, "weight", "fusion weight inside windows"),
    STORED(face_fusion_weight, "weight", "fusion weight on faces"),
    STORED(face_fusion_pad, "pixels", "margin added around each face"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("vorn_hi_fg2c_need_win_enhence", fg2cParam.vorn_hi_fg2c_need_win_enhence),
    WIRE("vorn_hi_fg2c_win_fusion_weight", fg2cParam.vorn_hi_fg2c_win_fusion_weight),
    WIRE("vorn_hi_fg2c_face_fusion_weight", fg2cParam.vorn_hi_fg2c_face_fusion_weight),
    WIRE("vorn_hi_fg2c_face_fusion_pad", fg2cParam.vorn_hi_fg2c_face_fusion_pad),
    WIRE("vorn_hi_fg2c_debug_pin", fg2cParam.vorn_hi_fg2c_debug_pin),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::fg2c

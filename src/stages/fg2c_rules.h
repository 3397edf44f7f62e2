// FG2C: calculation map, debug ids and log lines. No set line.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"

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

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::fg2c

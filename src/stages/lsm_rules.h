// LSM: calculation map, debug ids and log lines. No debug switch, no set line.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"

namespace ispdsp::stages::lsm {

ISPDSP_STAGE_TYPES(Lsm, V112);

// Only the four thresholds are computed. aw_wr .. rep_center_y (payload bytes
// 8 to 29) are carried to the DSP as the host left them.
inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(lsmParam.aw_left_thr), INPUT(lsmParam.aw_left_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_right_thr), INPUT(lsmParam.aw_right_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_top_thr), INPUT(lsmParam.aw_top_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_bottom_thr), INPUT(lsmParam.aw_bottom_thr), 1024),
};

inline constexpr DebugId kIds[] = {
    between(RECORD(aw_left_thr), 0, 1024, "[DSP_DRV] lsm aw_left_thr is %u\n"),
    between(RECORD(aw_right_thr), 0, 1024, "[DSP_DRV] lsm aw_right_thr is %u\n"),
    between(RECORD(aw_top_thr), 0, 1024, "[DSP_DRV] lsm aw_top_thr is %u\n"),
    between(RECORD(aw_bottom_thr), 0, 1024, "[DSP_DRV] lsm aw_bottom_thr is %u\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg lsm]aw_left_thr=%d,aw_right_thr=%d,aw_top_thr=%d,aw_bottom_thr=%d\n",
         RECORD(aw_left_thr), RECORD(aw_right_thr), RECORD(aw_top_thr), RECORD(aw_bottom_thr)),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::lsm

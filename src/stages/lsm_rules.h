// LSM: calculation map, debug ids and log lines. No debug switch, no set line.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

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

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(aw_left_thr, "pixels", "left edge of the active window"),
    STORED(aw_right_thr, "pixels", "right edge of the active window"),
    STORED(aw_top_thr, "pixels", "top edge of the active window"),
    STORED(aw_bottom_thr, "pixels", "bottom edge of the active window"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("aw_left_thr", lsmParam.aw_left_thr), WIRE("aw_right_thr", lsmParam.aw_right_thr),
    WIRE("aw_top_thr", lsmParam.aw_top_thr), WIRE("aw_bottom_thr", lsmParam.aw_bottom_thr),
    WIRE("aw_wr", lsmParam.aw_wr), WIRE("aw_hr", lsmParam.aw_hr),
    WIRE("rep_left", lsmParam.rep_left), WIRE("rep_right", lsmParam.rep_right),
    WIRE("rep_top", lsmParam.rep_top), WIRE("rep_bottom", lsmParam.rep_bottom),
    WIRE("center_x", lsmParam.center_x), WIRE("center_y", lsmParam.center_y),
    WIRE("center_xy", lsmParam.center_xy), WIRE("rep_center_x", lsmParam.rep_center_x),
    WIRE("rep_center_y", lsmParam.rep_center_y),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::lsm

// LSM: calculation map, debug ids and log lines. No debug switch, no set line.
#include "stages/stage_engine.h"

namespace {
using namespace ispdsp::stages;
ISPDSP_STAGE_TYPES(Lsm, V112);

// Only the four thresholds are computed. aw_wr .. rep_center_y (payload bytes
// 8 to 29) are carried to the DSP as the host left them.
constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(lsmParam.aw_left_thr), INPUT(lsmParam.aw_left_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_right_thr), INPUT(lsmParam.aw_right_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_top_thr), INPUT(lsmParam.aw_top_thr), 1024),
    cap(PAYLOAD(lsmParam.aw_bottom_thr), INPUT(lsmParam.aw_bottom_thr), 1024),
};

constexpr DebugId kIds[] = {
    between(RECORD(aw_left_thr), 0, 1024, "[DSP_DRV] lsm aw_left_thr is %u\n"),
    between(RECORD(aw_right_thr), 0, 1024, "[DSP_DRV] lsm aw_right_thr is %u\n"),
    between(RECORD(aw_top_thr), 0, 1024, "[DSP_DRV] lsm aw_top_thr is %u\n"),
    between(RECORD(aw_bottom_thr), 0, 1024, "[DSP_DRV] lsm aw_bottom_thr is %u\n"),
};

constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg lsm]aw_left_thr=%d,aw_right_thr=%d,aw_top_thr=%d,aw_bottom_thr=%d\n",
         RECORD(aw_left_thr), RECORD(aw_right_thr), RECORD(aw_top_thr), RECORD(aw_bottom_thr)),
};
}  // namespace

ISPDSP_DEFINE_STAGE(Lsm, V112, lsmCalParam, cfgLsmParam, kCalc, {}, kIds, kPrintLines)

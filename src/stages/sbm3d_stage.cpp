// SBM3D: calculation map, debug id and log line. No set line.
#include "stages/stage_engine.h"

namespace {
using namespace ispdsp::stages;
ISPDSP_STAGE_TYPES(Sbm3d, V113);

// Both payload words are signed 32-bit on the wire; the values written
// (0..16384, 0 or 1) have the same bits as unsigned. `ver` is the host's.
constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(sbm3dParam.sbm3d_thr), INPUT(sbm3dParam.sbm3d_threshold), 16384),
    flag(PAYLOAD(sbm3dParam.debug_pin), INPUT(debug_pin)),
};

constexpr DebugId kIds[] = {
    between(RECORD(sbm3d_threshold), 0, 16384, "[DSP_DRV] sbm3d sbm3d_threshold is %u\n"),
};

constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg SBM3D]sbm3d_threshold=%d\n", RECORD(sbm3d_threshold)),
};
}  // namespace

ISPDSP_DEFINE_STAGE(Sbm3d, V113, sbm3dCalParam, cfgSbm3dParam, kCalc, {}, kIds, kPrintLines)

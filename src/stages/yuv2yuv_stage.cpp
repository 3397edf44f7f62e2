// YUV2YUV: a single enable word. The payload is that word itself (no firmware
// block); the message carries it in the scalar area.
#include "stages/stage_engine.h"

namespace {
using namespace ispdsp::stages;
ISPDSP_STAGE_TYPES(Yuv2yuv, V100);

constexpr CalcStep kCalc[] = {
    flag(PAYLOAD(enable), INPUT(yuv2yuvParam.enable)),
};

constexpr DebugId kIds[] = {
    onOff(RECORD(enable), "[DSP_DRV] yuv2yuv enable is %u\n"),
};

constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg YUV2YUV]enable=%d\n", RECORD(enable)),
};
}  // namespace

ISPDSP_DEFINE_STAGE(Yuv2yuv, V100, yuv2yuvCalParam, cfgYuv2yuvParam, kCalc, {}, kIds, kPrintLines)

// YUV2YUV: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of yuv2yuv_rules.h.
#include "stages/yuv2yuv_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Yuv2yuv, V100, yuv2yuvCalParam, cfgYuv2yuvParam, ::ispdsp::stages::yuv2yuv)

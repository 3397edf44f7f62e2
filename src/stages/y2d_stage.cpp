// Y2D: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of y2d_rules.h.
#include "stages/y2d_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Y2d, V5118, y2dCalParam, cfgY2dParam, ::ispdsp::stages::y2d)

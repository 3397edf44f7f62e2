// FG2C: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of fg2c_rules.h.
#include "stages/fg2c_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Fg2c, V102, fg2cCalParam, cfgFg2cParam, ::ispdsp::stages::fg2c)

// LSM: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of lsm_rules.h.
#include "stages/lsm_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Lsm, V112, lsmCalParam, cfgLsmParam, ::ispdsp::stages::lsm)

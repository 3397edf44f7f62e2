// YLWDR: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of ylwdr_rules.h.
#include "stages/ylwdr_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Ylwdr, V102, ylwdrCalParam, cfgYlwdrParam, ::ispdsp::stages::ylwdr)

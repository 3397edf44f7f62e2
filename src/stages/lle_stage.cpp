// LLE: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of lle_rules.h.
#include "stages/lle_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Lle, V203, lleCalParam, cfgLleParam, ::ispdsp::stages::lle)

// LAE: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of lae_rules.h.
#include "stages/lae_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Lae, V209, laeCalParam, cfgLaeParam, ::ispdsp::stages::lae)

// SADE: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of sade_rules.h.
#include "stages/sade_rules.h"
#include "stages/stage_engine.h"

// The record parameter is spelled with a lowercase "s" in the public ABI.
ISPDSP_DEFINE_STAGE(Sade, V113, sadeCalParam, cfgsadeParam, ::ispdsp::stages::sade)

// DLAE: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of dlae_rules.h.
#include "stages/dlae_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Dlae, V101, dlaeCalParam, cfgDlaeParam, ::ispdsp::stages::dlae)

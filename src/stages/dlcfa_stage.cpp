// DLCFA: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of dlcfa_rules.h.
#include "stages/dlcfa_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Dlcfa, V101, dlcfaCalParam, cfgDlcfaParam, ::ispdsp::stages::dlcfa)

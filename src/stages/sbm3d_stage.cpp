// SBM3D: the exported calculation, debug setter and print, carried out by the
// stage engine on the tables of sbm3d_rules.h.
#include "stages/sbm3d_rules.h"
#include "stages/stage_engine.h"

ISPDSP_DEFINE_STAGE(Sbm3d, V113, sbm3dCalParam, cfgSbm3dParam, ::ispdsp::stages::sbm3d)

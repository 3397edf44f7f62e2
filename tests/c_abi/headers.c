/* The public headers compile as strict C11, together and one by one (the build
 * also compiles each header alone in its own unit), and a C caller sees the
 * same records and signatures as the library. */
#include "ispdsp/ispdsp.h"

#include "ispdsp/dsp_blocks.h"
#include "ispdsp/dsp_config.h"
#include "ispdsp/fusion.h"
#include "ispdsp/osa.h"
#include "ispdsp/param_file.h"
#include "ispdsp/param_table.h"
#include "ispdsp/registration.h"
#include "ispdsp/rlr.h"
#include "ispdsp/stages.h"
#include "ispdsp/types.h"

#include <stddef.h>

/* Signatures as a C caller sees them; _Generic does not evaluate its operand,
 * so nothing here needs the functions to be linked. */
#define SAME_TYPE(expr, type) _Generic((expr), type: 1, default: 0)

_Static_assert(sizeof(Bool) == 1 && sizeof(Char) == 1, "8-bit Bool and Char");
_Static_assert(sizeof(Handle) == 8 && sizeof(OSA_FileHandle) == 8, "64-bit handles");
_Static_assert(OSA_FILE_MODE_READ == 0 && OSA_FILE_MODE_WRITE == 1, "file modes");
_Static_assert(OSA_SEEK_SET == 0 && OSA_SEEK_CUR == 1 && OSA_SEEK_END == 2, "seek origins");
_Static_assert(DSP_AEW_CFG_TYPE_LSM == 0 && DSP_AEW_CFG_TYPE_SADE == 17, "stage ids 0 to 17");
_Static_assert(sizeof(DSP_AEW_CFG_TYPE) == 4, "32-bit stage ids");
_Static_assert(sizeof(DSP_AEW_CFG_S) == 4168, "message size");
_Static_assert(offsetof(DSP_AEW_CFG_S, dspArgs) == 72, "payload offset");
_Static_assert(sizeof(((DSP_AEW_CFG_S*)0)->dspArgs) == 4096, "payload area");
_Static_assert(sizeof(DRV_dspIspHandle) == 40, "transport handle");

_Static_assert(SAME_TYPE(&OSA_fileOpen, Int32 (*)(const Char*, Int32, OSA_FileHandle*)), "OSA_fileOpen");
_Static_assert(SAME_TYPE(&OSA_fgets, Int32 (*)(Char*, Int32, OSA_FileHandle)), "OSA_fgets");
_Static_assert(SAME_TYPE(&OSA_memUCallocAlign, Ptr (*)(Uint32, Uint32)), "OSA_memUCallocAlign");
_Static_assert(SAME_TYPE(&DRV_ispCfgLoad, Int32 (*)(const Char*, Float32, CFG_IspParamTable*, Ptr*)),
               "DRV_ispCfgLoad");
_Static_assert(SAME_TYPE(&DRV_loadRlrCfg, Int32 (*)(Ptr*)), "DRV_loadRlrCfg");
_Static_assert(SAME_TYPE(&DRV_dspOpSetFusion, Int32 (*)(DSP_FusionV2722*, DRV_dspIspHandle*)),
               "DRV_dspOpSetFusion");
_Static_assert(SAME_TYPE(&DRV_dspCalculateDlae, Int32 (*)(DSP_DlaeCalculateParam*, DSP_DlaeV101*)),
               "stage macro: calculation");
_Static_assert(SAME_TYPE(&DRV_dspdbgYlwdrPrint, Int32 (*)(CFG_DSP_YlwdrV102*)), "stage macro: print");

int main(void) { return 0; }

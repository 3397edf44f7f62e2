// Set and Get message functions of the enhancement stages and the fusion plate,
// one pair per stage of the table stage list. Each Set names its row of the
// stage table; the transport does the rest.
#include "dsp/dsp_transport.h"
#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"
#include "tuning/stage_list.h"

// The DSP is never asked for these stages' current values: the Gets touch
// neither argument and always succeed, null arguments included.
#define ISPDSP_STAGE_MESSAGES(Name, Ver, rules, display, Msg, member, transportRow, debugIds) \
    ISPDSP_API Int32 DRV_dspOpSet##Name(DSP_##Name##Ver* param, DRV_dspIspHandle* dspOps) { \
        return ISPDSP_DSP_SEND(transportRow, param, dspOps);                             \
    }                                                                                    \
    ISPDSP_API Int32 DRV_dspOpGet##Name(DSP_##Name##Ver*, DRV_dspIspHandle*) { return 0; }

extern "C" {
ISPDSP_TABLE_STAGES(ISPDSP_STAGE_MESSAGES)
}  // extern "C"

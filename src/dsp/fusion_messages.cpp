// Fusion, output-switch, IR and calibration messages, and the fusion read-back.
#include <cstring>

#include "dsp/dsp_transport.h"
#include "ispdsp/fusion.h"

extern "C" {

ISPDSP_API Int32 DRV_dspOpSetFusion(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageFusion, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetFSSWITCH(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageFsSwitch, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetIr(DSP_IrParam* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageIr, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetCal(DSP_IrParam* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageCal, param, dspOps);
}

// Reads the DSP's current fusion scalars back into `param`; the switch, the
// curve address and everything behind uv_w stay as they were.
ISPDSP_API Int32 DRV_dspOpGetFusion(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps) {
    // Deliberate safety addition: the read-back's contract has no argument
    // checks, but a null here would crash the host's frame loop. Null arguments
    // are reported like the Set functions' (param first) and return -1.
    if (param == nullptr) {
        ispdsp::dspPrintNullPointer({__func__, __LINE__}, "param");
        return -1;
    }
    if (dspOps == nullptr) {
        ispdsp::dspPrintNullPointer({__func__, __LINE__}, "dspOps");
        return -1;
    }

    DRV_dspIspCfgOpsCtrl ctrl;
    DSP_AEW_CFG_S message;
    std::memset(&ctrl, 0, sizeof ctrl);
    std::memset(&message, 0, sizeof message);
    ctrl.nId = dspOps->nId;
    message.u32Type = DSP_AEW_CFG_TYPE_FUSION;

    const OpDspIspCfgctl fetch = dspOps->dspIspCfgOps.OpGetDspConfig;
    if (fetch == nullptr) {
        ispdsp::dspPrintGetMissing({__func__, __LINE__});
        return -1;
    }
    const Int32 result = fetch(&ctrl, &message);
    if (result != 0) {
        ispdsp::dspPrintGetError({__func__, __LINE__});
        return result;
    }
    std::memcpy(&param->fusionParam, &message.dspArgs.stFusionArgs.fusion_param_v2_7_22,
                FUSION_PARAM_V2_7_22_SCALAR_BYTES);
    return 0;
}

}  // extern "C"

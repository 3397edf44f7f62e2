// Set and Get message functions of the enhancement stages and the fusion plate.
// Each Set names its row of the stage table; the transport does the rest.
#include "dsp/dsp_transport.h"
#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"

extern "C" {

ISPDSP_API Int32 DRV_dspOpSetLsm(DSP_LsmV112* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageLsm, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetLae(DSP_LaeV209* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageLae, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetSbm3d(DSP_Sbm3dV113* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageSbm3d, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetYuv2yuv(DSP_Yuv2yuvV100* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageCsc, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetFusionPlate(DSP_FusionPlateV1001* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageFusionPlate, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetFg2c(DSP_Fg2cV102* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageFg2c, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetLle(DSP_LleV203* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageLle, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetYlwdr(DSP_YlwdrV102* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageYlwdr, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetY2d(DSP_Y2dV5118* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageY2d, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetDlae(DSP_DlaeV101* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageDlae, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetDlcfa(DSP_DlcfaV101* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageDlcfa, param, dspOps);
}
ISPDSP_API Int32 DRV_dspOpSetSade(DSP_SadeV113* param, DRV_dspIspHandle* dspOps) {
    return ISPDSP_DSP_SEND(kDspStageSade, param, dspOps);
}

// The DSP is never asked for these stages' current values: the Gets touch
// neither argument and always succeed, null arguments included.
ISPDSP_API Int32 DRV_dspOpGetLsm(DSP_LsmV112*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetLae(DSP_LaeV209*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetSbm3d(DSP_Sbm3dV113*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetYuv2yuv(DSP_Yuv2yuvV100*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetFusionPlate(DSP_FusionPlateV1001*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetFg2c(DSP_Fg2cV102*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetLle(DSP_LleV203*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetYlwdr(DSP_YlwdrV102*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetY2d(DSP_Y2dV5118*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetDlae(DSP_DlaeV101*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetDlcfa(DSP_DlcfaV101*, DRV_dspIspHandle*) { return 0; }
ISPDSP_API Int32 DRV_dspOpGetSade(DSP_SadeV113*, DRV_dspIspHandle*) { return 0; }

}  // extern "C"

// The per-frame fusion update behind OpSetFusion: IR and calibration messages
// on change, the DSP read-back, this pipe's gain blend with its output-switch
// message, and the colour/mono combination sent as the fusion message.
#include <cstdio>
#include <cstring>

#include "common/log.h"
#include "tuning/device_paths.h"
#include "driver/driver_instance.h"
#include "driver/registration.h"
#include "fusion/fusion_calc.h"
#include "ispdsp/fusion.h"

namespace ispdsp {
namespace {

constexpr const Char* kCalibrationFileName = tuning::kRegistrationFileName;

// Zoom and calibration change state, once per process and shared by every
// instance (the registration data is process-wide too). The first pipe that
// sees a change sends the message; nothing ever resets these values. Written
// without a lock: the host keeps fusion operations from overlapping.
Int32 lastZoom = -1;         // zoom position seen at the last lookup
Int32 curZoomIndex = 255;    // index into zoomX found at the last lookup
Int32 lastZoomIndex = 255;   // index last sent in an IR message
Int32 lastregisterFlag = 0;  // registerFlag for which the CAL message was last sent

// The first calibrated zoom position at or above `zoom`; beyond the last one
// the previous index stays.
void lookUpZoomIndex(Int32 zoom) {
    const DRV_RegistrateParam& registration = drvRegistrateParam;
    if (registration.zoomX == nullptr) return;  // nothing registered (zoomNum is then 0 too)
    for (Int32 i = 0; i < registration.zoomNum; ++i) {
        if (zoom <= registration.zoomX[i]) {
            curZoomIndex = i;
            return;
        }
    }
}

// Steps taken only for an instance that found a registration file.
Int32 sendRegistrationChanges(DRV_ispOpsParams* ispOps, DRV_aewIspHandleDSP* handle) {
    Int32 ret = 0;
    const Int32 zoom = ispOps->runParam.ptzUpdateParam.zoom;
    if (zoom != lastZoom) {
        lastZoom = zoom;
        lookUpZoomIndex(zoom);
    }
    if (curZoomIndex != lastZoomIndex) {
        lastZoomIndex = curZoomIndex;
        handle->pstIrParam.zoomIndex = curZoomIndex;
        ret = DRV_dspOpSetIr(&handle->pstIrParam, &handle->dspHandle);
    }
    if (handle->registerFlag != lastregisterFlag) {
        lastregisterFlag = handle->registerFlag;
        const Char* dir = DRV_ispRegistratePlaceDir(handle->registerFlag);
        std::snprintf(handle->pstIrParam.cfg_path, sizeof(handle->pstIrParam.cfg_path), "%s%s",
                      dir != nullptr ? dir : "", kCalibrationFileName);
        ret |= DRV_dspOpSetCal(&handle->pstIrParam, &handle->dspHandle);
    }
    return ret;
}

}  // namespace
}  // namespace ispdsp

using namespace ispdsp;

Int32 DRV_ispSetFusionParam(DRV_ispOpsParams* ispOps) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    CFG_DspIspCfgParam* curParam = DRV_getCurParam(ispOps);
    ISP_CHECK_PTR(curParam, "curParam");
    if (curParam->ispFusionFlag == 0) return 0;

    Int32 ret = 0;
    if (handle->registerFlag != 0) ret = sendRegistrationChanges(ispOps, handle);
    ret |= DRV_dspOpGetFusion(&handle->pstFusionParam, &handle->dspHandle);

    handle->pstFusionParam.fusionParam.w_nir = handle->w_nir1;
    handle->pstDoubleFusionParam.fusionParam.w_nir = handle->w_nir2;

    auto* otherIspHandle = static_cast<DRV_aewIspHandleDSP*>(handle->refPipeParams.refXHndl);
    ISP_CHECK_PTR(otherIspHandle, "otherIspHandle");

    DSP_DoubleFusionCalculateParam doubleFusionCalParam;
    std::memset(&doubleFusionCalParam, 0, sizeof(doubleFusionCalParam));
    doubleFusionCalParam.aewPipeId = handle->aewPipeId;
    // The switch always comes from the mono pipe's sensor-standby result.
    Int32 pSwitch;
    switch (handle->refPipeParams.fusionType) {
        case DRV_ISP_FUSION_COLOR:  // the reference pipe is the colour pipe
            doubleFusionCalParam.pstColorFusionParam = &otherIspHandle->pstFusionParam;
            doubleFusionCalParam.pstMonoFusionParam = &handle->pstFusionParam;
            pSwitch = handle->moduleResults.sensorStandbyParam.pSwitch;
            break;
        case DRV_ISP_FUSION_MONO:  // the reference pipe is the mono pipe
            doubleFusionCalParam.pstColorFusionParam = &handle->pstFusionParam;
            doubleFusionCalParam.pstMonoFusionParam = &otherIspHandle->pstFusionParam;
            pSwitch = otherIspHandle->moduleResults.sensorStandbyParam.pSwitch;
            break;
        default:
            ISP_LOG_ERROR("error fusionType:%d \n", static_cast<Int32>(handle->refPipeParams.fusionType));
            return 0;
    }
    ISP_LOG_INFO("pswitch=%d\n", pSwitch);

    // The blend of DRV_dspCalculateFusion, read straight from the current
    // table's sixteen records: no 8.7 KB copy into a calculation record on
    // this frame's stack. Its other inputs cannot be null here (the curve
    // buffers are allocated at creation).
    // Each message goes out even when the calculation before it failed; the
    // calls are sequenced one statement each (the operands of | are not).
    Int32 r1 = fusion::blendGainSteps(curParam->ispFusionParam, ispOps->runParam.gainInterParam, pSwitch,
                                      &handle->pstFusionParam);
    r1 |= DRV_dspOpSetFSSWITCH(&handle->pstFusionParam, &handle->dspHandle);
    Int32 r2 = DRV_dspDoubleCalculateFusion(&doubleFusionCalParam, &handle->pstDoubleFusionParam);
    r2 |= DRV_dspOpSetFusion(&handle->pstDoubleFusionParam, &handle->dspHandle);
    return r1 | r2 | ret;
}

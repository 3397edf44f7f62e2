// The small operations of the host table: start, stop, reload, gain flags,
// delete, module results, reference pipe and instance lookup.
#include <cstring>

#include "common/log.h"
#include "driver/driver_instance.h"

using namespace ispdsp;

Int32 DRV_ispStartX(DRV_ispOpsParams* ispOps) {
    ISP_LOG_INFO("start in successful\n");
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    // The host links the pipes again after every start.
    handle->refPipeParams.refXHndl = nullptr;
    DRV_ispControlModuleFlag(ispOps, ISP_SET_FUSION, 1);
    return 0;
}

Int32 DRV_ispStopX(DRV_ispOpsParams* ispOps) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    ISP_CHECK_PTR(instanceOf(ispOps), "ispOps->ispXHndl");
    DRV_ispControlModuleFlag(ispOps, ISP_SET_FUSION, 0);
    return 0;
}

// Reloads nothing: it only asks the host to run the fusion operation again.
// A missing instance is reported by the flag function, and the result stays 0.
Int32 DRV_ispReloadCfg(DRV_ispOpsParams* ispOps) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_ispControlModuleFlag(ispOps, ISP_SET_FUSION, 1);
    return 0;
}

Int32 DRV_ispInterGainFlagsX(DRV_ispOpsParams* ispOps) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    if (handle->quickStart == 0) DRV_ispControlModuleFlag(ispOps, ISP_SET_FUSION, 1);
    return 0;
}

// Releases the instance with its parameter block and NIR buffers. The table
// keeps its slots, but hIsp, ispParam and ispXHndl are cleared so that a late
// call through the table is refused instead of touching released memory.
Int32 DRV_ispDeleteX(DRV_ispOpsParams* ispOps) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    releaseInstance(privateOf(handle));
    ispOps->hIsp = nullptr;
    ispOps->ispParam = nullptr;
    ispOps->ispXHndl = nullptr;
    return 0;
}

Int32 DRV_ispSetModuleResultsX(DRV_ispOpsParams* ispOps, DRV_ispModuleResults* moduleResults) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    ISP_CHECK_PTR(moduleResults, "moduleResults");
    std::memcpy(&handle->moduleResults, moduleResults, sizeof(handle->moduleResults));
    return 0;
}

Int32 DRV_ispSetRefPipeParamsX(DRV_ispOpsParams* ispOps, DRV_RefPipeParams* refPipeParams) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    // A null record is refused like a record without an instance in it.
    ISP_CHECK_PTR(refPipeParams, "refPipeParams");
    ISP_CHECK_PTR(refPipeParams->refXHndl, "refPipeParams->refXHndl");
    std::memcpy(&handle->refPipeParams, refPipeParams, sizeof(handle->refPipeParams));
    return 0;
}

Int32 DRV_ispGetXHndlX(DRV_ispOpsParams* ispOps, Ptr* xHndl) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    // A null out-pointer is refused rather than written through.
    ISP_CHECK_PTR(xHndl, "xHndl");
    *xHndl = ispOps->ispXHndl;
    return 0;
}

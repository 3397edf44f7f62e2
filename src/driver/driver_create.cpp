// Creation of a driver instance: the instance record, the host's table, the
// parameter file, the registration file and the two NIR weight buffers.
#include <cstdio>
#include <cstring>

#include "common/log.h"
#include "driver/driver_instance.h"
#include "driver/registration.h"
#include "ispdsp/param_file.h"
#include "ispdsp/param_table.h"
#include "tuning/device_paths.h"

namespace ispdsp {
namespace {

using tuning::kParamFileDir;
using tuning::kParamFileName;
// Path buffers hold 32 bytes and are written with a limit of 31, so at most
// 30 characters of a path are kept.
constexpr size_t kParamPathSize = 32;
constexpr size_t kParamPathLimit = 31;

void attachToTable(DRV_ispOpsParams* ispOps, DRV_aewIspHandleDSP* handle) {
    ispOps->hIsp = handle->IspDev;
    ispOps->OpReloadCfg = DRV_ispReloadCfg;
    ispOps->OpStart = DRV_ispStartX;
    ispOps->OpStop = DRV_ispStopX;
    ispOps->OpDelete = DRV_ispDeleteX;
    ispOps->OpSetModuleResults = DRV_ispSetModuleResultsX;
    ispOps->OpInterGainFlags = DRV_ispInterGainFlagsX;
    ispOps->OpRefreshCfg = DRV_ispRefreshCfgX;
    ispOps->OpSetFusion = DRV_ispSetFusionParam;
    ispOps->OpSetRefPipeParams = DRV_ispSetRefPipeParamsX;
    ispOps->OpGetXHndl = DRV_ispGetXHndlX;
    ispOps->OpSetDbgDspParam = DRV_ispSetDbgDspParam;
    ispOps->ispXHndl = handle;
}

Uint8* allocNirBuffer() {
    auto* buffer = static_cast<Uint8*>(OSA_memUAllocAlign(DRV_ISP_NIR_BUFFER_SIZE, 0));
    if (buffer != nullptr) std::memset(buffer, 0, DRV_ISP_NIR_BUFFER_SIZE);
    return buffer;
}

// A creation that fails after the instance exists releases everything it took
// and leaves no pointer into the released block in the table. (Left attached,
// the instance could neither be used, since it has no tables, nor released by
// a host that treats the failure as "no instance", and a host re-creating
// pipes would leak it.) The slots stay filled: with a null ispXHndl every one
// of them refuses with the missing-instance error.
Int32 abandonCreation(DRV_ispOpsParams* ispOps, DspIspInstance* instance) {
    releaseInstance(instance);
    ispOps->hIsp = nullptr;
    ispOps->ispParam = nullptr;
    ispOps->ispXHndl = nullptr;
    return -1;
}

}  // namespace

void releaseInstance(DspIspInstance* instance) {
    if (instance == nullptr) return;
    if (instance->paramBuffer != nullptr) OSA_memUFree(instance->paramBuffer);
    if (instance->handle.w_nir1 != nullptr) OSA_memUFree(instance->handle.w_nir1);
    if (instance->handle.w_nir2 != nullptr) OSA_memUFree(instance->handle.w_nir2);
    OSA_memUFree(instance);
}

}  // namespace ispdsp

using namespace ispdsp;

Int32 DRV_ispCommTable2TableX(DRV_ispOpsParams* ispOps, CFG_IspParamTable* commTable, Ptr specParam, Ptr* ispParam) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    ISP_CHECK_PTR(commTable, "commTable");
    ISP_CHECK_PTR(specParam, "specParam");
    ISP_CHECK_PTR(ispParam, "ispParam");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");

    if (DRV_ispCommonTable2DspTable(commTable, specParam, handle->dspCfgTables.paramTables) != 0) {
        ISP_LOG_ERROR("Failed to transfer cfg %s failed!\n", kParamFileDir);
        return -1;
    }
    *ispParam = &handle->dspCfgTables;
    return 0;
}

Int32 DRV_dspIspCreateX(const DRV_ispXCreateParams* pCreateParams, DRV_ispOpsParams* ispOps) {
    ISP_LOG_INFO("DRV_dspIspCreateX In successful!\n");
    ISP_CHECK_PTR(pCreateParams, "pCreateParams");
    ISP_CHECK_PTR(ispOps, "ispOps");

    // The host's contract keeps ispNum within ISP_MAX_DEV_NUM. A larger value
    // is refused before anything is allocated or written into the table.
    if (pCreateParams->ispNum > ISP_MAX_DEV_NUM) {
        ISP_LOG_ERROR("ispNum %u is above ISP_MAX_DEV_NUM %d!\n", pCreateParams->ispNum, ISP_MAX_DEV_NUM);
        return -1;
    }

    // The public record first, then the driver's private state (see DspIspInstance).
    auto* instance = static_cast<DspIspInstance*>(OSA_memUAllocAlign(sizeof(DspIspInstance), 0));
    if (instance == nullptr) {
        ISP_LOG_ERROR("Failed to malloc for DSP drv isp!\n");
        return -1;
    }
    std::memset(instance, 0, sizeof(*instance));
    DRV_aewIspHandleDSP* handle = &instance->handle;

    handle->aewPipeId = pCreateParams->aewPipeId;
    handle->ispNum = pCreateParams->ispNum;
    std::memcpy(handle->IspDev, pCreateParams->ispIds, sizeof(handle->IspDev));
    handle->OpSetDrvFlag = pCreateParams->OpSetDrvFlag;
    handle->privData = pCreateParams->privData;
    handle->dspHandle.dspIspCfgOps.OpGetDspConfig = pCreateParams->dspOps.OpGetDspConfig;
    handle->dspHandle.dspIspCfgOps.OpSetDspConfig = pCreateParams->dspOps.OpSetDspConfig;

    attachToTable(ispOps, handle);

    // Parameter file: the common path first, then the pipe's own directory.
    // The second load reuses the header and buffer as the first left them.
    CFG_IspParamTable header;
    std::memset(&header, 0, sizeof(header));
    Char path[kParamPathSize] = {};
    std::snprintf(path, kParamPathLimit, "%sdsp_%s", kParamFileDir, kParamFileName);
    Int32 loaded = DRV_ispCfgLoad(path, ISPDSP_PARAM_FILE_VERSION, &header, &instance->paramBuffer);
    if (loaded != 0) {
        ISP_LOG_INFO("DRV_ispCfgLoad %s failed!\n", path);
        std::snprintf(path, kParamPathLimit, "%s%d/dsp_%s", kParamFileDir, static_cast<Int32>(handle->aewPipeId),
                      kParamFileName);
        loaded = DRV_ispCfgLoad(path, ISPDSP_PARAM_FILE_VERSION, &header, &instance->paramBuffer);
        if (loaded != 0) {
            ISP_LOG_ERROR("DRV_ispCfgLoad %s failed!\n", path);
            return abandonCreation(ispOps, instance);
        }
    }

    // The tables are used in place: the block stays with the instance.
    if (DRV_ispCommTable2TableX(ispOps, &header, instance->paramBuffer, &ispOps->ispParam) != 0) {
        ISP_LOG_ERROR("DRV_ispCommTable2TableX failed!\n");
        return abandonCreation(ispOps, instance);
    }

    // The registration file is optional: without it no IR or CAL message is sent.
    const Int32 place = DRV_ispRegistrateCfgLoad();
    if (place > 0) {
        handle->registerFlag = place;
        ISP_LOG_INFO("DRV_ispRegistrateCfgLoad sucess!\n");
    } else {
        handle->registerFlag = 0;
        ISP_LOG_ERROR("DRV_ispRegistrateCfgLoad failed!\n");
    }

    handle->w_nir1 = allocNirBuffer();
    if (handle->w_nir1 == nullptr) {
        ISP_LOG_ERROR("Failed to malloc for w_nir!\r\n");
        return abandonCreation(ispOps, instance);
    }
    handle->w_nir2 = allocNirBuffer();
    if (handle->w_nir2 == nullptr) {
        ISP_LOG_ERROR("Failed to malloc for w_nir!\r\n");
        return abandonCreation(ispOps, instance);
    }
    return 0;
}

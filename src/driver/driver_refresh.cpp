// Configuration refresh: the current table is chosen again from the host's
// run state, and the host learns whether the choice changed.
#include "common/log.h"
#include "driver/driver_instance.h"
#include "ispdsp/param_table.h"

using namespace ispdsp;

CFG_DspIspCfgParam* DRV_getCurParam(DRV_ispOpsParams* ispOps) { return instanceOf(ispOps)->dspCfgTables.curTable; }

Int32 DRV_ispRefreshCfgX(DRV_ispOpsParams* ispOps, Int32* cfgChanged) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    // A table without an instance (creation failed, or the pipe was deleted) is refused.
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");

    CFG_ispParamCondition condition = {};
    condition.realDncMode = ispOps->runParam.dncMode;
    condition.hdrMode = ispOps->runParam.hdrMode;
    condition.imageScene = ispOps->runParam.imageScene;
    // sceneMode stays 0, not runParam.sceneMode: kept for compatibility with
    // existing tuning files, which were made on devices that never choose the
    // night tables through the refresh.
    condition.sceneMode = 0;

    CFG_DspIspCfgTables* tables = &handle->dspCfgTables;
    if (DRV_ispChooseCurParamDSP(&condition, tables) != 0) {
        ISP_LOG_ERROR("DRV_ispChooseCurParam Failed!\n");
        return -1;
    }
    // The change is reported against the row last reported, so a refresh
    // without a flag variable leaves the change for the next one to report.
    if (cfgChanged != nullptr) {
        *cfgChanged = (tables->curTableIdx != tables->lastTableIdx) ? 1 : 0;
        tables->lastTableIdx = tables->curTableIdx;
    }
    return 0;
}

// The flag protocol: the driver asks the host to run or stop one of its
// operations through the callback that the creation record supplied.
#include "common/log.h"
#include "driver/driver_instance.h"

using namespace ispdsp;

// The driver keeps no record of the flag last sent: every call sends it again.
Int32 DRV_ispControlModuleFlag(DRV_ispOpsParams* ispOps, Int32 cmdType, Uint32 flag) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");

    DRV_ispSetDrvFlagParam flagParam = {};
    flagParam.privData = handle->privData;
    flagParam.cmdType = cmdType;
    flagParam.flag = flag;
    // The callback's result is not looked at: the host decides what the flag means.
    if (handle->OpSetDrvFlag != nullptr) handle->OpSetDrvFlag(&flagParam);
    return 0;
}

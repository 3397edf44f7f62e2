// The driver instance behind a host operation table: the private record that
// creation allocates, and the functions that creation writes into the slots.
#pragma once

#include <cstddef>
#include <type_traits>

#include "ispdsp/driver.h"

namespace ispdsp {

// The public record DRV_aewIspHandleDSP is shared with the host and with the
// other pipe's instance, so its layout is fixed. State that only this library
// needs lives behind it in one allocation: the host and the reference pipe see
// the public record at the start of the block and nothing else.
struct DspIspInstance {
    DRV_aewIspHandleDSP handle;
    // The parameter file's block: the 120 table pointers of handle.dspCfgTables
    // point into it, so it lives exactly as long as the instance.
    Ptr paramBuffer;
};
static_assert(std::is_standard_layout_v<DspIspInstance>);
static_assert(offsetof(DspIspInstance, handle) == 0, "ispXHndl must point at the public record");

// The instance behind a table, or null; the table itself must not be null.
inline DRV_aewIspHandleDSP* instanceOf(DRV_ispOpsParams* ispOps) {
    return static_cast<DRV_aewIspHandleDSP*>(ispOps->ispXHndl);
}

// The private block that starts with a public record created by this library.
inline DspIspInstance* privateOf(DRV_aewIspHandleDSP* handle) { return reinterpret_cast<DspIspInstance*>(handle); }

// Releases an instance with everything it owns (parameter block, NIR buffers).
void releaseInstance(DspIspInstance* instance);

}  // namespace ispdsp

// Slot functions (the OpGetXHndl slot is the exported DRV_ispGetXHndlX).
Int32 DRV_ispReloadCfg(DRV_ispOpsParams* ispOps);
Int32 DRV_ispStartX(DRV_ispOpsParams* ispOps);
Int32 DRV_ispStopX(DRV_ispOpsParams* ispOps);
Int32 DRV_ispDeleteX(DRV_ispOpsParams* ispOps);
Int32 DRV_ispSetModuleResultsX(DRV_ispOpsParams* ispOps, DRV_ispModuleResults* moduleResults);
Int32 DRV_ispInterGainFlagsX(DRV_ispOpsParams* ispOps);
Int32 DRV_ispRefreshCfgX(DRV_ispOpsParams* ispOps, Int32* cfgChanged);
Int32 DRV_ispSetFusionParam(DRV_ispOpsParams* ispOps);
Int32 DRV_ispSetRefPipeParamsX(DRV_ispOpsParams* ispOps, DRV_RefPipeParams* refPipeParams);
Int32 DRV_ispSetDbgDspParam(DRV_ispOpsParams* ispOps, DRV_ispCmdParam* cmd_param, Int32 langue);

// Tells the host through the instance's flag callback to run (flag 1) or stop
// (flag 0) the operation cmdType. Nobody looks at the result.
Int32 DRV_ispControlModuleFlag(DRV_ispOpsParams* ispOps, Int32 cmdType, Uint32 flag);

// Creation step: registers the loaded block's tables in the instance's table
// set and points *ispParam at it.
Int32 DRV_ispCommTable2TableX(DRV_ispOpsParams* ispOps, CFG_IspParamTable* commTable, Ptr specParam, Ptr* ispParam);

// The instance's current table (null until a refresh has chosen one). The
// caller has checked the table and the instance.
CFG_DspIspCfgParam* DRV_getCurParam(DRV_ispOpsParams* ispOps);

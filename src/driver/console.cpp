// The debug console: matches the host's arguments against the command table,
// changes the current table's fusion records through the fusion debug setters
// and asks the host to run the fusion operation again after every change.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/log.h"
#include "driver/console.h"
#include "driver/driver_instance.h"
#include "ispdsp/fusion.h"

namespace ispdsp {
namespace {

// Argument i, or null past the host's count or the record's 33 entries: the
// console never reads beyond the argument array, whatever argc says.
const char* argumentAt(const DRV_ispCmdParam* cmdParam, Int32 i) {
    if (i < 0 || i >= cmdParam->argc || i >= DRV_ISP_CMD_MAX_ARGS) return nullptr;
    return cmdParam->argp[i].pointer;
}

// A value as strtol reads it in base 10 (leading blanks, optional sign, digits
// up to the first other character; no digits give 0). Values beyond the 32-bit
// range saturate instead of wrapping; the setters clamp to the field's range.
Int32 readDecimal(const char* text) {
    return static_cast<Int32>(std::clamp<long>(std::strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}

// The first entry from `position` on whose name is `name`, or the end entry.
size_t findCommand(const char* name, size_t position) {
    while (drvIspParam[position].name != nullptr && std::strcmp(drvIspParam[position].name, name) != 0) ++position;
    return position;
}

Int32 printRunParams(DRV_ispOpsParams* ispOps, DRV_aewIspHandleDSP* handle, CFG_DspIspCfgParam* curParam) {
    const DRV_ispRunParams& run = ispOps->runParam;
    ISP_LOG_INFO("[dsp]drv isp run param:\n");
    ISP_LOG_INFO("curTableIdx=%d,curTableType=%d\n", static_cast<Int32>(handle->dspCfgTables.curTableIdx),
                 static_cast<Int32>(handle->dspCfgTables.curTableType));
    ISP_LOG_INFO("dncMode=%d,hdrMode=%d,imageScene=%d,sceneMode=%d\n", run.dncMode, run.hdrMode,
                 static_cast<Int32>(run.imageScene), static_cast<Int32>(run.sceneMode));
    ISP_LOG_INFO("gainStartIndex=%d,gainEndIndex=%d\n", run.gainInterParam.gainStartIndex,
                 run.gainInterParam.gainEndIndex);
    return DRV_dspdbgFusionPrint(curParam->ispFusionParam, &ispOps->runParam.gainInterParam);
}

// Runs the setter of a fusion command (ids 46 to 72) with its value.
Int32 applySetter(DRV_ispOpsParams* ispOps, CFG_DspIspCfgParam* curParam, Int32 id, Int32 value) {
    if (id == kCmdFusionNir)
        return DRV_dspdbgFusionNir(curParam->ispFusionParam, &ispOps->runParam.gainInterParam, id - kCmdFusionNir,
                                   value);
    return DRV_dspdbgFusion(curParam->ispFusionParam, &ispOps->runParam.gainInterParam, id - kCmdFusionFirst,
                            value);
}

}  // namespace
}  // namespace ispdsp

using namespace ispdsp;

Int32 DRV_ispPrintDbgMenu(const CMD_DrvIspTable* cmd, Int32 langue) {
    ISP_CHECK_PTR(cmd, "cmd");
    ISP_LOG_INFO("Usage: aewDebug [cmd1][cmd2]=[cmd3]:[cmd4] ... \r\n");
    for (; cmd->name != nullptr; ++cmd) {
        Char name[32];
        std::snprintf(name, sizeof name - 1, "%s", cmd->name);  // at most 30 characters of a name
        const char* text = (langue == kConsoleLangChinese && cmd->long_name != nullptr) ? cmd->long_name : cmd->descrip;
        ISP_LOG_INFO("\n%-10s%-2c%s\r\n", name, ':', text != nullptr ? text : "");
    }
    return 0;
}

Int32 DRV_ispSetDbgDspParam(DRV_ispOpsParams* ispOps, DRV_ispCmdParam* cmd_param, Int32 langue) {
    ISP_CHECK_PTR(ispOps, "ispOps");
    ISP_CHECK_PTR(cmd_param, "cmd_param");
    DRV_aewIspHandleDSP* handle = instanceOf(ispOps);
    ISP_CHECK_PTR(handle, "ispOps->ispXHndl");
    CFG_DspIspCfgParam* curParam = DRV_getCurParam(ispOps);
    ISP_CHECK_PTR(curParam, "curParam");

    // The table position is not reset between the commands of one call: each
    // search starts at the entry the previous command matched, so commands
    // must follow the table's order.
    size_t position = 0;
    Int32 i = 0;
    // The list ends at argc, at the array's end or at a null entry inside the count.
    while (const char* name = argumentAt(cmd_param, i)) {
        position = findCommand(name, position);
        const CMD_DrvIspTable& entry = drvIspParam[position];
        if (entry.name == nullptr) {
            ISP_LOG_WARN("%s, %s\r\n", name, entry.descrip);
            DRV_ispPrintDbgMenu(drvIspParam, langue);
            return -1;
        }

        const char* valueText = argumentAt(cmd_param, i + 1);
        if (valueText == nullptr) {
            ISP_LOG_WARN("%s need parm\r\n", name);
            break;  // a missing value ends the list: nothing follows it
        }

        if (entry.id == kCmdRunParam) {
            // The value is required but not used; nothing changes, so no flag.
            if (printRunParams(ispOps, handle, curParam) != 0) ISP_LOG_WARN("[dsp]DRV_dspdbgFusionPrint failed\n");
        } else {  // every other command of the table is a fusion setter (ids 46 to 72)
            if (applySetter(ispOps, curParam, entry.id, readDecimal(valueText)) == 0)
                DRV_ispControlModuleFlag(ispOps, ISP_SET_FUSION, 1);
            else
                ISP_LOG_WARN("[dsp]DRV_dspdbgFusion failed\n");
        }
        i += 2;
    }
    return 0;
}

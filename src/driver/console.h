// The debug console behind OpSetDbgDspParam: the host's "aewDebug" command
// line, split into arguments, tunes the current table's fusion records.
#pragma once

#include <cstddef>

#include "ispdsp/driver.h"

namespace ispdsp {

// 28 commands and the end entry (null name).
inline constexpr size_t kConsoleTableEntries = 29;

// Command ids, which select the action.
inline constexpr Int32 kCmdRunParam = 0;
inline constexpr Int32 kCmdFusionFirst = 46;  // id - 46 is DRV_dspdbgFusion's field id
inline constexpr Int32 kCmdFusionNir = 72;  // id - 72 is DRV_dspdbgFusionNir's id

// Menu language: 1 prints the Chinese descriptions, anything else the English ones.
inline constexpr Int32 kConsoleLangChinese = 1;

}  // namespace ispdsp

// The constant command table, in the order in which commands of one call must come.
extern const CMD_DrvIspTable drvIspParam[ispdsp::kConsoleTableEntries];

// Logs the usage line and one line per entry of `cmd` up to its end entry.
Int32 DRV_ispPrintDbgMenu(const CMD_DrvIspTable* cmd, Int32 langue);

// Internal parts of the table set: the constant state map, the fallback rules and the
// helpers of the current-table choice. Both tables are built at compile time from the
// tuning description (tuning/table_types.h, tuning/fallback_rules.h).
#pragma once

#include <array>

#include "ispdsp/param_table.h"
#include "tuning/fallback_rules.h"
#include "tuning/table_types.h"

inline constexpr Uint32 kTypeMapRows = ispdsp::tuning::kStateMapRows;  // 156; also "no row matched"
inline constexpr Int32 kSuitableRuleEntries = ispdsp::tuning::kFallbackScanLimit;

// The constant state map: row -> camera state and the table type it selects.
inline constexpr std::array<Table_TYPE_MAP, kTypeMapRows> kStateMap = ispdsp::tuning::buildStateMap();
// The two constant fallback rules, tried in order.
inline constexpr std::array<DRV_SuitableParam, ispdsp::tuning::kFallbackRules> kFallbackRuleTable =
    ispdsp::tuning::buildFallbackRules();

// Row of kStateMap that matches the camera state, or kTypeMapRows (156) when none does.
Uint32 getCurState(CFG_ispParamCondition* condition);

// 1 with the first position of `type` in typeArray[0 .. min(typeArraySize, 120) - 1], else 0.
// (typeArray is const: the rules it scans are constant.)
Bool isTypeMatch(PARAM_TABLE_TYPE type, const Int32* typeArray, Uint32 typeArraySize, Int32* typeArrayIndex);

// Replaces *pType by an existing table type through the fallback rules; 0, or -1 (logged) when
// neither rule finds a table.
Int32 getLessSuitableType(CFG_DspIspCfgTables* dspCfgTables, PARAM_TABLE_TYPE* pType);

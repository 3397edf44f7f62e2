// The table set: registration of the block's scene tables (in place) and the choice of the
// current table from the camera state, with the fallback rules.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "cfg/param_table_internal.h"
#include "common/log.h"

static_assert(sizeof(Int32) + sizeof(CFG_DspIspCfgParam) == CFG_TABLE_ENTRY_SIZE, "entry = type word + table");
// Entries are whole multiples of the table alignment, so every table of an aligned block is aligned.
static_assert(CFG_TABLE_ENTRY_SIZE % alignof(CFG_DspIspCfgParam) == 0, "entries keep tables aligned");
static_assert(sizeof(Int32) % alignof(CFG_DspIspCfgParam) == 0, "tables start aligned inside entries");

// Names the source file, the function and the line after the usual prefix.
#define NO_SUITABLE_PARAM_TEXT \
    "%s::%s:%d We failed to find other suitable param instead! The program should be terminated!\n"

namespace {

constexpr Int32 kTypeCount = PARAM_TABLE_TYPE_NUM;

bool tableExists(const CFG_DspIspCfgTables* tables, Int32 type) {
    return type >= 0 && type < kTypeCount && tables->paramTables[type] != nullptr;
}

// How many entries of a rule array are scanned: the declared size, never below 0 nor above 120.
Uint32 scanLength(Int32 declaredSize) {
    return static_cast<Uint32>(std::clamp(declaredSize, 0, kSuitableRuleEntries));
}

}  // namespace

Int32 DRV_ispCommonTable2DspTable(CFG_IspParamTable* commTable, Ptr specParam, CFG_DspIspCfgParam** dspIspParam) {
    if (specParam == nullptr || commTable == nullptr || dspIspParam == nullptr) {
        ISP_LOG_ERROR("[Line:%d] dspIspParam is NULL or commTable is NULL!\n", __LINE__);
        return -1;
    }
    const Uint32 totalSize = commTable->cfg_specParam.size;
    if (totalSize == 0) {
        return 0;
    }
    // Tables are used where they lie; a block from the host allocator is always aligned enough,
    // any other address would make every table access misaligned.
    if (reinterpret_cast<uintptr_t>(specParam) % alignof(CFG_DspIspCfgParam) != 0) {
        ISP_LOG_ERROR("[Line:%d] specParam %p is not aligned for its tables!\n", __LINE__, specParam);
        return -1;
    }

    auto* block = static_cast<Uint8*>(specParam);
    for (Uint32 readSize = 0; readSize < totalSize; readSize += CFG_TABLE_ENTRY_SIZE) {
        // A block that is not cut into whole entries comes from a writer with another table
        // layout: its last entry (possibly not even a whole type word) would reach past the block.
        // It fails like an invalid type does; the entries before it stay registered.
        const Uint32 left = totalSize - readSize;
        if (left < CFG_TABLE_ENTRY_SIZE) {
            ISP_LOG_ERROR("[Line:%d] table entry at %u is incomplete: %u bytes left!\n", __LINE__, readSize, left);
            return -1;
        }
        Int32 index;
        std::memcpy(&index, block + readSize, sizeof index);
        if (index < 0 || index >= kTypeCount) {
            ISP_LOG_ERROR("[Line:%d] index is invalid:%d!\n", __LINE__, index);
            return -1;
        }
        // A later entry of the same type replaces the earlier one.
        dspIspParam[index] = reinterpret_cast<CFG_DspIspCfgParam*>(block + readSize + sizeof(Int32));
    }
    return 0;
}

Uint32 getCurState(CFG_ispParamCondition* condition) {
    if (condition == nullptr) {
        return kTypeMapRows;
    }
    const ispdsp::tuning::RowPattern state =
        ispdsp::tuning::rowPatternOf(condition->realDncMode, condition->hdrMode, condition->sceneMode);
    const auto imageScene = static_cast<Uint32>(condition->imageScene);

    for (Uint32 row = 0; row < kTypeMapRows; ++row) {
        const Table_TYPE_MAP& r = kStateMap[row];
        if (r.isBlackWhite == state.isBlackWhite && r.isHDR == state.isHDR && r.isWDR == state.isWDR &&
            r.sceneMode == state.sceneMode && r.imageScene == imageScene) {
            return row;
        }
    }
    return kTypeMapRows;
}

Bool isTypeMatch(PARAM_TABLE_TYPE type, const Int32* typeArray, Uint32 typeArraySize, Int32* typeArrayIndex) {
    if (typeArray == nullptr) {
        return 0;
    }
    const Uint32 n = std::min<Uint32>(typeArraySize, kSuitableRuleEntries);
    for (Uint32 i = 0; i < n; ++i) {
        if (typeArray[i] == static_cast<Int32>(type)) {
            if (typeArrayIndex != nullptr) {
                *typeArrayIndex = static_cast<Int32>(i);
            }
            return 1;
        }
    }
    return 0;
}

Int32 getLessSuitableType(CFG_DspIspCfgTables* dspCfgTables, PARAM_TABLE_TYPE* pType) {
    ISP_CHECK_PTR(dspCfgTables, "dspCfgTables");
    ISP_CHECK_PTR(pType, "pType");

    for (const DRV_SuitableParam& rule : kFallbackRuleTable) {
        Int32 pos = 0;
        if (!isTypeMatch(*pType, rule.srcArray, scanLength(rule.srcArraySize), &pos)) {
            continue;
        }
        // The replacement that stands against the missing type, then the rule's preference list.
        if (tableExists(dspCfgTables, rule.dstArray[pos])) {
            *pType = static_cast<PARAM_TABLE_TYPE>(rule.dstArray[pos]);
            return 0;
        }
        const Uint32 m = scanLength(rule.dstArraySize);
        for (Uint32 k = 0; k < m; ++k) {
            if (tableExists(dspCfgTables, rule.dstArray[k])) {
                *pType = static_cast<PARAM_TABLE_TYPE>(rule.dstArray[k]);
                return 0;
            }
        }
    }
    // Despite its words nothing is terminated: the selection fails and keeps its previous choice.
    // One line: the prefix's line and the repeated __LINE__ must agree.
    ISP_LOG_ERROR(NO_SUITABLE_PARAM_TEXT, __FILE__, __func__, __LINE__);
    return -1;
}

Int32 DRV_ispChooseCurParamDSP(CFG_ispParamCondition* cfgConditon, CFG_DspIspCfgTables* dspCfgTables) {
    if (cfgConditon == nullptr || dspCfgTables == nullptr) {
        ISP_LOG_ERROR("[Line:%d] cfgConditon is NULL or dspCfgTables is NULL!\n", __LINE__);
        return -1;
    }
    const Uint32 row = getCurState(cfgConditon);
    if (row >= kTypeMapRows) {
        ISP_LOG_ERROR("Failed to get current adj state!\n");
        return -1;
    }
    PARAM_TABLE_TYPE type = kStateMap[row].tableType;
    if (dspCfgTables->paramTables[type] == nullptr && getLessSuitableType(dspCfgTables, &type) != 0) {
        return -1;
    }
    dspCfgTables->curTableType = static_cast<Uint32>(type);
    dspCfgTables->curTable = dspCfgTables->paramTables[type];
    dspCfgTables->curTableIdx = row;
    return 0;
}

// Internal parts of the table set: the constant state map, the fallback rules and the
// helpers of the current-table choice.
//
// Both tables are built at compile time from short per-scene lists, so the data below reads like
// the format description and the 156 map rows cannot drift from it.
#pragma once

#include <array>

#include "ispdsp/param_table.h"

inline constexpr Uint32 kSceneBlocks = 13;
inline constexpr Uint32 kRowsPerScene = 12;
inline constexpr Uint32 kTypeMapRows = kSceneBlocks * kRowsPerScene;  // 156; also "no row matched"
inline constexpr Int32 kSuitableRuleEntries = PARAM_TABLE_TYPE_NUM;     // every rule scan stops here
inline constexpr Uint32 kSuitableRules = 2;

namespace ispdsp::cfg_detail {

// Attributes shared by the twelve rows of every scene block.
struct RowPattern {
    Uint32 isBlackWhite, isHDR, isWDR, sceneMode;
};
inline constexpr std::array<RowPattern, kRowsPerScene> kRowPattern = {{
    {0, 0, 0, 0}, {1, 0, 0, 0},  // linear day: colour, black-and-white
    {0, 1, 1, 0}, {1, 1, 1, 0},  // HDR day
    {0, 0, 1, 0}, {1, 0, 1, 0},  // WDR day
    {0, 0, 0, 2}, {1, 0, 0, 2},  // linear night (black-and-white keeps its day type)
    {0, 1, 1, 2}, {1, 1, 1, 2},  // HDR night
    {0, 0, 1, 2}, {1, 0, 1, 2},  // WDR night
}};

// One block of the map: the imageScene value and the table type of each of its twelve rows.
struct SceneTypes {
    Uint32 imageScene;
    std::array<Int32, kRowsPerScene> types;
};
// Blocks in map order (no block for imageScene 3; IVS is scene 4 but its types follow PEDESTIAN).
inline constexpr std::array<SceneTypes, kSceneBlocks> kSceneTypes = {{
    {0, {0, 1, 2, 3, 4, 5, 6, 1, 8, 3, 10, 5}},                            // base
    {1, {12, 13, 14, 15, 16, 17, 18, 13, 19, 15, 20, 17}},                 // TRAFFIC
    {2, {21, 22, 23, 24, 25, 26, 27, 22, 28, 24, 29, 26}},                 // FACE
    {4, {66, 67, 68, 69, 70, 71, 72, 67, 73, 69, 74, 71}},                 // IVS
    {5, {30, 31, 32, 33, 34, 35, 36, 31, 37, 33, 38, 35}},                 // STROBE
    {6, {39, 40, 41, 42, 43, 44, 45, 40, 46, 42, 47, 44}},                 // POLICE
    {7, {48, 49, 50, 51, 52, 53, 54, 49, 55, 51, 56, 53}},                 // COMITY
    {8, {57, 58, 59, 60, 61, 62, 63, 58, 64, 60, 65, 62}},                 // PEDESTIAN
    {9, {75, 76, 77, 78, 79, 80, 81, 76, 82, 78, 83, 80}},                 // ECOTRAFFIC
    {10, {84, 85, 86, 87, 88, 89, 90, 85, 91, 87, 92, 89}},                // ECOPOLICE
    {11, {93, 94, 95, 96, 97, 98, 99, 94, 100, 96, 101, 98}},              // ENTRANCE_FLASH
    {12, {102, 103, 104, 105, 106, 107, 108, 103, 109, 105, 110, 107}},    // ENTRANCE_STROBE
    {13, {111, 112, 113, 114, 115, 116, 117, 112, 118, 114, 119, 116}},    // EVENT
}};

constexpr std::array<Table_TYPE_MAP, kTypeMapRows> buildTypeMap() {
    std::array<Table_TYPE_MAP, kTypeMapRows> map{};
    for (Uint32 block = 0; block < kSceneBlocks; ++block) {
        for (Uint32 row = 0; row < kRowsPerScene; ++row) {
            const RowPattern& p = kRowPattern[row];
            map[block * kRowsPerScene + row] = Table_TYPE_MAP{
                p.isBlackWhite, p.isHDR, p.isWDR, p.sceneMode, kSceneTypes[block].imageScene,
                static_cast<PARAM_TABLE_TYPE>(kSceneTypes[block].types[row])};
        }
    }
    return map;
}

// Rule 0 lists 129 entries in its size fields; only the 120 stored ones are ever scanned.
inline constexpr Int32 kRule0DeclaredSize = 129;
// Head of rule 0: the base types in preference order (7, 9 and 11 are not listed).
inline constexpr std::array<Int32, 9> kRule0BaseHead = {0, 1, 2, 3, 4, 6, 10, 8, 5};
// Replacements of the IVS types 66 to 74: their base-scene partners.
inline constexpr std::array<Int32, 9> kIvsPartners = {0, 1, 2, 1, 4, 1, 0, 2, 4};

constexpr std::array<DRV_SuitableParam, kSuitableRules> buildSuitableRules() {
    std::array<DRV_SuitableParam, kSuitableRules> rules{};

    // Rule 0: every listed type stands against itself, except the IVS types; the last three
    // of the 120 entries stay 0.
    DRV_SuitableParam& r0 = rules[0];
    r0.srcArraySize = kRule0DeclaredSize;
    r0.dstArraySize = kRule0DeclaredSize;
    Int32 n = 0;
    for (Int32 type : kRule0BaseHead) {
        r0.srcArray[n] = type;
        r0.dstArray[n] = type;
        ++n;
    }
    for (Int32 type = PARAM_TRAFFIC; type < PARAM_TABLE_TYPE_NUM; ++type) {
        r0.srcArray[n] = type;
        const bool isIvs = type >= PARAM_IVS && type <= PARAM_WDR_IVS_NIGHT;
        r0.dstArray[n] = isIvs ? kIvsPartners[type - PARAM_IVS] : type;
        ++n;
    }

    // Rule 1: a missing PARAM_WDR_TRAFFIC falls to PARAM_WDR_MULTICOLOR, then PARAM_MULTICOLOR.
    DRV_SuitableParam& r1 = rules[1];
    r1.srcArraySize = 1;
    r1.srcArray[0] = PARAM_WDR_TRAFFIC;
    r1.dstArraySize = 2;
    r1.dstArray[0] = PARAM_WDR_MULTICOLOR;
    r1.dstArray[1] = PARAM_MULTICOLOR;
    return rules;
}

}  // namespace ispdsp::cfg_detail

// The constant state map: row -> camera state and the table type it selects.
inline constexpr std::array<Table_TYPE_MAP, kTypeMapRows> sg_typeMap = ispdsp::cfg_detail::buildTypeMap();
// The two constant fallback rules, tried in order.
inline constexpr std::array<DRV_SuitableParam, kSuitableRules> gs_suitableParam =
    ispdsp::cfg_detail::buildSuitableRules();

// Row of sg_typeMap that matches the camera state, or kTypeMapRows (156) when none does.
Uint32 getCurState(CFG_ispParamCondition* cfgConditon);

// 1 with the first position of `type` in typeArray[0 .. min(typeArraySize, 120) - 1], else 0.
// (typeArray is const: the rules it scans are constant.)
Bool isTypeMatch(PARAM_TABLE_TYPE type, const Int32* typeArray, Uint32 typeArraySize, Int32* typeArrayIndex);

// Replaces *pType by an existing table type through the fallback rules; 0, or -1 (logged) when
// neither rule finds a table.
Int32 getLessSuitableType(CFG_DspIspCfgTables* dspCfgTables, PARAM_TABLE_TYPE* pType);

// The 120 table types and the state map that picks one for a camera state.
//
// The map has a block of twelve rows per application scene; every block uses
// the same twelve camera states (row patterns) and names one table type per
// row. A type's name is built from the row that names it: "HDR_"/"WDR_", the
// scene's stem (MULTICOLOR/BLACKWHITE for the base scene), "_BLACKWHITE" for a
// black-and-white row of a scene, "_NIGHT" for a night row.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "ispdsp/param_table.h"

namespace ispdsp::tuning {

inline constexpr Uint32 kRowsPerScene = 12;
inline constexpr Uint32 kSceneBlocks = 13;
inline constexpr Uint32 kStateMapRows = kSceneBlocks * kRowsPerScene;  // 156; also "no row matched"
inline constexpr Int32 kTableTypes = PARAM_TABLE_TYPE_NUM;

// The camera state of one row of every scene block. sceneMode 2 is night.
struct RowPattern {
    Uint32 isBlackWhite, isHDR, isWDR, sceneMode;
};
inline constexpr std::array<RowPattern, kRowsPerScene> kRowPatterns = {{
    {0, 0, 0, 0}, {1, 0, 0, 0},  // linear day: colour, black-and-white
    {0, 1, 1, 0}, {1, 1, 1, 0},  // HDR day
    {0, 0, 1, 0}, {1, 0, 1, 0},  // WDR day
    {0, 0, 0, 2}, {1, 0, 0, 2},  // linear night (black-and-white keeps its day type)
    {0, 1, 1, 2}, {1, 1, 1, 2},  // HDR night
    {0, 0, 1, 2}, {1, 0, 1, 2},  // WDR night
}};

// The row pattern of a camera state as the host reports it: realDncMode 0 is black-and-white;
// hdrMode 0 is linear, 4 alone WDR, any other value HDR (which the map also counts as WDR);
// only sceneMode 2 is night.
inline constexpr Int32 kWdrHdrMode = 4;
constexpr RowPattern rowPatternOf(Int32 realDncMode, Int32 hdrMode, Uint32 sceneMode) {
    return RowPattern{realDncMode == 0 ? 1u : 0u, (hdrMode & ~kWdrHdrMode) != 0 ? 1u : 0u, hdrMode != 0 ? 1u : 0u,
                      sceneMode == 2 ? 2u : 0u};
}

// One block of the map: the imageScene value, its names and the type of each row.
struct SceneBlock {
    Uint32 imageScene;
    const char* name;      // as scenarios spell it: "base", "traffic", "pedestrian"
    const char* typeStem;  // as type names spell it: "TRAFFIC", "PEDESTIAN"; "" for the base scene
    std::array<Int32, kRowsPerScene> types;
};
// Blocks in map order (no block for imageScene 3; IVS is scene 4 but its types follow PEDESTIAN).
inline constexpr std::array<SceneBlock, kSceneBlocks> kSceneBlocksInMapOrder = {{
    {0, "base", "", {0, 1, 2, 3, 4, 5, 6, 1, 8, 3, 10, 5}},
    {1, "traffic", "TRAFFIC", {12, 13, 14, 15, 16, 17, 18, 13, 19, 15, 20, 17}},
    {2, "face", "FACE", {21, 22, 23, 24, 25, 26, 27, 22, 28, 24, 29, 26}},
    {4, "ivs", "IVS", {66, 67, 68, 69, 70, 71, 72, 67, 73, 69, 74, 71}},
    {5, "strobe", "STROBE", {30, 31, 32, 33, 34, 35, 36, 31, 37, 33, 38, 35}},
    {6, "police", "POLICE", {39, 40, 41, 42, 43, 44, 45, 40, 46, 42, 47, 44}},
    {7, "comity", "COMITY", {48, 49, 50, 51, 52, 53, 54, 49, 55, 51, 56, 53}},
    {8, "pedestrian", "PEDESTIAN", {57, 58, 59, 60, 61, 62, 63, 58, 64, 60, 65, 62}},
    {9, "ecotraffic", "ECOTRAFFIC", {75, 76, 77, 78, 79, 80, 81, 76, 82, 78, 83, 80}},
    {10, "ecopolice", "ECOPOLICE", {84, 85, 86, 87, 88, 89, 90, 85, 91, 87, 92, 89}},
    {11, "entrance_flash", "ENTRANCE_FLASH", {93, 94, 95, 96, 97, 98, 99, 94, 100, 96, 101, 98}},
    {12, "entrance_strobe", "ENTRANCE_STROBE", {102, 103, 104, 105, 106, 107, 108, 103, 109, 105, 110, 107}},
    {13, "event", "EVENT", {111, 112, 113, 114, 115, 116, 117, 112, 118, 114, 119, 116}},
}};

// The base scene has a type for each of the twelve states; every other scene nine
// (its black-and-white night rows reuse the day types).
inline constexpr Int32 kBaseSceneTypes = kRowsPerScene;
inline constexpr Int32 kTypesPerScene = 9;

constexpr std::array<Table_TYPE_MAP, kStateMapRows> buildStateMap() {
    std::array<Table_TYPE_MAP, kStateMapRows> map{};
    for (Uint32 block = 0; block < kSceneBlocks; ++block) {
        for (Uint32 row = 0; row < kRowsPerScene; ++row) {
            const RowPattern& p = kRowPatterns[row];
            map[block * kRowsPerScene + row] =
                Table_TYPE_MAP{p.isBlackWhite, p.isHDR, p.isWDR, p.sceneMode, kSceneBlocksInMapOrder[block].imageScene,
                               static_cast<PARAM_TABLE_TYPE>(kSceneBlocksInMapOrder[block].types[row])};
        }
    }
    return map;
}

// The index of the scene block that owns `type`; none for a value outside 0..119. An index,
// not a pointer: GCC's sanitizers make a pointer compared with null no longer a constant.
constexpr std::optional<Uint32> sceneOfType(Int32 type) {
    if (type >= 0 && type < kBaseSceneTypes) return 0u;
    for (Uint32 block = 0; block < kSceneBlocks; ++block) {
        const SceneBlock& b = kSceneBlocksInMapOrder[block];
        if (b.imageScene != 0 && type >= b.types[0] && type < b.types[0] + kTypesPerScene) return block;
    }
    return std::nullopt;
}

// "PARAM_HDR_TRAFFIC_BLACKWHITE"; empty for a value outside 0..119.
inline constexpr char kLongestTypeName[] = "PARAM_WDR_ENTRANCE_STROBE_BLACKWHITE";
struct TypeName {
    char text[sizeof kLongestTypeName] = {};
};
constexpr void append(TypeName& n, const char* part) {
    std::size_t at = 0;
    while (n.text[at] != '\0') ++at;
    for (; *part != '\0'; ++part) n.text[at++] = *part;
}
constexpr TypeName tableTypeName(Int32 type) {
    TypeName n;
    const std::optional<Uint32> block = sceneOfType(type);
    if (!block) return n;
    const SceneBlock* scene = &kSceneBlocksInMapOrder[*block];
    Uint32 row = static_cast<Uint32>(type);  // base types are numbered like the rows
    if (scene->imageScene != 0) {
        row = 0;
        while (scene->types[row] != type) ++row;
    }
    const RowPattern& p = kRowPatterns[row];
    append(n, "PARAM_");
    append(n, p.isHDR ? "HDR_" : p.isWDR ? "WDR_" : "");
    if (scene->imageScene == 0) {
        append(n, p.isBlackWhite ? "BLACKWHITE" : "MULTICOLOR");
    } else {
        append(n, scene->typeStem);
        append(n, p.isBlackWhite ? "_BLACKWHITE" : "");
    }
    append(n, p.sceneMode == 2 ? "_NIGHT" : "");
    return n;
}

constexpr bool sameText(const char* a, const char* b) { return std::string_view(a) == b; }
// The built names follow the enumeration of the public header.
static_assert(sameText(tableTypeName(PARAM_WDR_BLACKWHITE_NIGHT).text, "PARAM_WDR_BLACKWHITE_NIGHT"));
static_assert(sameText(tableTypeName(PARAM_HDR_TRAFFIC_BLACKWHITE).text, "PARAM_HDR_TRAFFIC_BLACKWHITE"));
static_assert(sameText(tableTypeName(PARAM_WDR_IVS_NIGHT).text, "PARAM_WDR_IVS_NIGHT"));
static_assert(sameText(tableTypeName(PARAM_WDR_EVENT_NIGHT).text, "PARAM_WDR_EVENT_NIGHT"));
static_assert(sameText(tableTypeName(PARAM_WDR_ENTRANCE_STROBE_BLACKWHITE).text, kLongestTypeName));
static_assert(kTableTypes == 120 && tableTypeName(kTableTypes).text[0] == '\0');

}  // namespace ispdsp::tuning

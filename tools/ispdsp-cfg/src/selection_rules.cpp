#include "selection_rules.h"

#include <algorithm>

#include "type_names.h"

namespace ispcfg {
namespace {

struct RowPattern {
    uint32_t isBlackWhite, isHDR, isWDR, sceneMode;
};
// The twelve rows of every scene block.
constexpr std::array<RowPattern, 12> kPattern = {{
    {0, 0, 0, 0},
    {1, 0, 0, 0},
    {0, 1, 1, 0},
    {1, 1, 1, 0},
    {0, 0, 1, 0},
    {1, 0, 1, 0},
    {0, 0, 0, 2},
    {1, 0, 0, 2},
    {0, 1, 1, 2},
    {1, 1, 1, 2},
    {0, 0, 1, 2},
    {1, 0, 1, 2},
}};

struct SceneBlock {
    uint32_t imageScene;
    const char* name;
    std::array<int32_t, 12> types;
};
// Map order; no block for imageScene 3.
constexpr std::array<SceneBlock, 13> kBlocks = {{
    {0, "base", {0, 1, 2, 3, 4, 5, 6, 1, 8, 3, 10, 5}},
    {1, "TRAFFIC", {12, 13, 14, 15, 16, 17, 18, 13, 19, 15, 20, 17}},
    {2, "FACE", {21, 22, 23, 24, 25, 26, 27, 22, 28, 24, 29, 26}},
    {4, "IVS", {66, 67, 68, 69, 70, 71, 72, 67, 73, 69, 74, 71}},
    {5, "STROBE", {30, 31, 32, 33, 34, 35, 36, 31, 37, 33, 38, 35}},
    {6, "POLICE", {39, 40, 41, 42, 43, 44, 45, 40, 46, 42, 47, 44}},
    {7, "COMITY", {48, 49, 50, 51, 52, 53, 54, 49, 55, 51, 56, 53}},
    {8, "PEDESTIAN", {57, 58, 59, 60, 61, 62, 63, 58, 64, 60, 65, 62}},
    {9, "ECOTRAFFIC", {75, 76, 77, 78, 79, 80, 81, 76, 82, 78, 83, 80}},
    {10, "ECOPOLICE", {84, 85, 86, 87, 88, 89, 90, 85, 91, 87, 92, 89}},
    {11, "ENTRANCE_FLASH", {93, 94, 95, 96, 97, 98, 99, 94, 100, 96, 101, 98}},
    {12, "ENTRANCE_STROBE", {102, 103, 104, 105, 106, 107, 108, 103, 109, 105, 110, 107}},
    {13, "EVENT", {111, 112, 113, 114, 115, 116, 117, 112, 118, 114, 119, 116}},
}};

// One fallback rule: src[k] missing is replaced by dst[k]; dst is also the preference list.
// Only the first 120 entries are scanned whatever the declared sizes say.
struct Rule {
    int32_t srcSize;
    std::vector<int32_t> src;
    int32_t dstSize;
    std::vector<int32_t> dst;
};

std::array<Rule, 2> buildRules() {
    Rule r0;
    r0.srcSize = r0.dstSize = 129;  // declared; the scans stop at 120
    for (int32_t t : {0, 1, 2, 3, 4, 6, 10, 8, 5}) {
        r0.src.push_back(t);
        r0.dst.push_back(t);
    }
    constexpr std::array<int32_t, 9> ivsPartners = {0, 1, 2, 1, 4, 1, 0, 2, 4};  // for types 66..74
    for (int32_t t = 12; t < kTableTypes; ++t) {
        r0.src.push_back(t);
        r0.dst.push_back(t >= 66 && t <= 74 ? ivsPartners[static_cast<size_t>(t - 66)] : t);
    }
    r0.src.resize(120, 0);
    r0.dst.resize(120, 0);
    Rule r1{1, {16}, 2, {4, 0}};
    r1.src.resize(120, 0);
    r1.dst.resize(120, 0);
    return {r0, r1};
}

const std::array<Rule, 2>& rules() {
    static const std::array<Rule, 2> r = buildRules();
    return r;
}

size_t scanned(int32_t declared) { return static_cast<size_t>(std::clamp(declared, 0, kTableTypes)); }

bool exists(const std::array<bool, 120>& present, int32_t t) {
    return t >= 0 && t < kTableTypes && present[static_cast<size_t>(t)];
}

}  // namespace

const std::array<MapRow, kMapRows>& stateMap() {
    static const std::array<MapRow, kMapRows> map = [] {
        std::array<MapRow, kMapRows> m{};
        for (size_t b = 0; b < kBlocks.size(); ++b) {
            for (size_t r = 0; r < kPattern.size(); ++r) {
                const RowPattern& p = kPattern[r];
                m[b * 12 + r] = {p.isBlackWhite,     p.isHDR, p.isWDR, p.sceneMode, kBlocks[b].imageScene,
                                 kBlocks[b].types[r]};
            }
        }
        return m;
    }();
    return map;
}

CameraState stateOfRow(uint32_t row) {
    const MapRow& r = stateMap()[row];
    CameraState s;
    s.realDncMode = r.isBlackWhite ? 0 : 1;
    s.hdrMode = r.isHDR ? 1 : (r.isWDR ? 4 : 0);
    s.sceneMode = r.sceneMode;
    s.imageScene = static_cast<int32_t>(r.imageScene);
    return s;
}

std::string sceneName(int32_t imageScene) {
    for (const SceneBlock& b : kBlocks) {
        if (static_cast<int64_t>(b.imageScene) == imageScene) return b.name;
    }
    return "";
}

Selection explainSelection(const CameraState& state, const std::array<bool, 120>& present) {
    Selection s;
    const uint32_t isBlackWhite = state.realDncMode == 0 ? 1 : 0;
    const uint32_t isHDR = (state.hdrMode & ~4) != 0 ? 1 : 0;
    const uint32_t isWDR = state.hdrMode != 0 ? 1 : 0;
    const uint32_t sceneMode = state.sceneMode == 2 ? 2 : 0;
    const auto imageScene = static_cast<uint32_t>(state.imageScene);
    s.steps.push_back("state: " + std::string(isBlackWhite ? "black-and-white" : "colour") + ", " +
                      (isHDR   ? "HDR"
                       : isWDR ? "WDR"
                               : "linear") +
                      ", " + (sceneMode == 2 ? "night" : "day") + ", imageScene " + std::to_string(state.imageScene) +
                      (sceneName(state.imageScene).empty() ? "" : " (" + sceneName(state.imageScene) + ")"));

    for (uint32_t row = 0; row < kMapRows; ++row) {
        const MapRow& r = stateMap()[row];
        if (r.isBlackWhite == isBlackWhite && r.isHDR == isHDR && r.isWDR == isWDR && r.sceneMode == sceneMode &&
            r.imageScene == imageScene) {
            s.rowFound = true;
            s.row = row;
            break;
        }
    }
    if (!s.rowFound) {
        s.steps.push_back(
            "no map row matches this state (imageScene must be 0..13 without 3): the driver "
            "keeps its previous table");
        return s;
    }
    s.mappedType = stateMap()[s.row].tableType;
    s.mappedPresent = exists(present, s.mappedType);
    s.steps.push_back("map row " + std::to_string(s.row) + " names " + tableTypeName(s.mappedType) + " (" +
                      std::to_string(s.mappedType) + "): " + (s.mappedPresent ? "present" : "missing from the file"));
    if (s.mappedPresent) {
        s.chosen = true;
        s.chosenType = s.mappedType;
        return s;
    }

    for (int rule = 0; rule < 2; ++rule) {
        const Rule& r = rules()[static_cast<size_t>(rule)];
        const size_t n = scanned(r.srcSize);
        const auto it = std::find(r.src.begin(), r.src.begin() + static_cast<std::ptrdiff_t>(n), s.mappedType);
        const std::string name = "fallback rule " + std::to_string(rule);
        if (it == r.src.begin() + static_cast<std::ptrdiff_t>(n)) {
            s.steps.push_back(name + ": does not list " + tableTypeName(s.mappedType));
            continue;
        }
        const auto pos = static_cast<size_t>(it - r.src.begin());
        const int32_t replacement = r.dst[pos];
        if (exists(present, replacement)) {
            s.steps.push_back(name + ": " + tableTypeName(s.mappedType) + " stands against " +
                              tableTypeName(replacement) + " (position " + std::to_string(pos) + "), present");
            s.chosen = true;
            s.chosenType = replacement;
            s.rule = rule;
            return s;
        }
        s.steps.push_back(name + ": " +
                          (replacement == s.mappedType
                               ? "lists " + tableTypeName(s.mappedType) + " against itself"
                               : "its replacement " + tableTypeName(replacement) + " is missing too") +
                          " (position " + std::to_string(pos) + "); scanning the preference list");
        const size_t m = scanned(r.dstSize);
        for (size_t k = 0; k < m; ++k) {
            if (exists(present, r.dst[k])) {
                s.steps.push_back(name + ": first present entry of the preference list: " + tableTypeName(r.dst[k]) +
                                  " (position " + std::to_string(k) + ")");
                s.chosen = true;
                s.chosenType = r.dst[k];
                s.rule = rule;
                s.viaPreferenceList = true;
                return s;
            }
        }
        s.steps.push_back(name + ": no entry of the preference list is present");
    }
    s.steps.push_back("no suitable table: the selection fails and the driver keeps its previous table");
    return s;
}

}  // namespace ispcfg

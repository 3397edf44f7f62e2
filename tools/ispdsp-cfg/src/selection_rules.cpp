#include "selection_rules.h"

#include <algorithm>

#include "tuning/fallback_rules.h"
#include "tuning/table_types.h"
#include "type_names.h"

namespace ispdsp::tools::cfg {
namespace {

using ispdsp::tuning::kSceneBlocksInMapOrder;

// The driver's own fallback rules (tuning/fallback_rules.h), whose lists are scanned here step
// by step to explain them.
const std::array<DRV_SuitableParam, ispdsp::tuning::kFallbackRules>& rules() {
    static constexpr std::array<DRV_SuitableParam, ispdsp::tuning::kFallbackRules> r =
        ispdsp::tuning::buildFallbackRules();
    return r;
}

size_t scanned(int32_t declared) {
    return static_cast<size_t>(std::clamp(declared, 0, ispdsp::tuning::kFallbackScanLimit));
}

bool exists(const std::array<bool, 120>& present, int32_t t) {
    return t >= 0 && t < kTableTypes && present[static_cast<size_t>(t)];
}

}  // namespace

const std::array<MapRow, kMapRows>& stateMap() {
    static const std::array<MapRow, kMapRows> map = [] {
        constexpr auto driverMap = ispdsp::tuning::buildStateMap();
        std::array<MapRow, kMapRows> m{};
        for (size_t row = 0; row < kMapRows; ++row) {
            const Table_TYPE_MAP& r = driverMap[row];
            m[row] = {r.isBlackWhite, r.isHDR, r.isWDR, r.sceneMode, r.imageScene, static_cast<int32_t>(r.tableType)};
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
    for (const ispdsp::tuning::SceneBlock& b : kSceneBlocksInMapOrder) {
        if (static_cast<int64_t>(b.imageScene) == imageScene) return b.typeStem[0] != '\0' ? b.typeStem : b.name;
    }
    return "";
}

std::array<bool, 120> presentTypes(const ParamFileImage& image) {
    std::array<bool, 120> present{};
    for (const TableEntry& e : image.entries) {
        if (e.type >= 0 && e.type < kTableTypes) present[static_cast<size_t>(e.type)] = true;
    }
    return present;
}

Selection explainSelection(const CameraState& state, const std::array<bool, 120>& present) {
    Selection s;
    const auto [isBlackWhite, isHDR, isWDR, sceneMode] =
        ispdsp::tuning::rowPatternOf(state.realDncMode, state.hdrMode, state.sceneMode);
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

    for (int rule = 0; rule < static_cast<int>(rules().size()); ++rule) {
        const DRV_SuitableParam& r = rules()[static_cast<size_t>(rule)];
        const size_t n = scanned(r.srcArraySize);
        const int32_t* const src = r.srcArray;
        const auto it = std::find(src, src + n, s.mappedType);
        const std::string name = "fallback rule " + std::to_string(rule);
        if (it == src + n) {
            s.steps.push_back(name + ": does not list " + tableTypeName(s.mappedType));
            continue;
        }
        const auto pos = static_cast<size_t>(it - src);
        const int32_t replacement = r.dstArray[pos];
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
        const size_t m = scanned(r.dstArraySize);
        for (size_t k = 0; k < m; ++k) {
            if (exists(present, r.dstArray[k])) {
                s.steps.push_back(name + ": first present entry of the preference list: " + tableTypeName(r.dstArray[k]) +
                                  " (position " + std::to_string(k) + ")");
                s.chosen = true;
                s.chosenType = r.dstArray[k];
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

}  // namespace ispdsp::tools::cfg

// The driver's table choice explained step by step, on the driver's own state map and fallback
// rules (tuning/table_types.h, tuning/fallback_rules.h). `select` asks the library for the
// actual choice and compares it with this explanation.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "param_file_image.h"
#include "tuning/table_types.h"

namespace ispdsp::tools::cfg {

inline constexpr uint32_t kMapRows = ispdsp::tuning::kStateMapRows;

struct MapRow {
    uint32_t isBlackWhite, isHDR, isWDR, sceneMode, imageScene;
    int32_t tableType;
};

// The camera state as the driver receives it.
struct CameraState {
    int32_t realDncMode = 1;  // 0: black-and-white
    int32_t hdrMode = 0;      // 0 linear, 4 WDR, other nonzero HDR
    uint32_t sceneMode = 0;   // 2: night
    int32_t imageScene = 0;
};

const std::array<MapRow, kMapRows>& stateMap();
// A state that selects exactly this row.
CameraState stateOfRow(uint32_t row);
// "TRAFFIC" for imageScene 1, "base" for 0, "" for no scene.
std::string sceneName(int32_t imageScene);

struct Selection {
    bool rowFound = false;
    uint32_t row = kMapRows;
    int32_t mappedType = -1;  // the type the row names
    bool mappedPresent = false;
    bool chosen = false;  // a table was found (directly or by fallback)
    int32_t chosenType = -1;
    int rule = -1;                   // fallback rule used (0 or 1), -1 when none
    bool viaPreferenceList = false;  // found by scanning the rule's list, not its direct replacement
    std::vector<std::string> steps;  // human-readable reasoning, one line each
};

// Types the image has (a later entry of a type replaces an earlier one, as in the driver).
std::array<bool, 120> presentTypes(const ParamFileImage& image);

// present[t]: the file has a table of type t (the last entry of a type counts).
Selection explainSelection(const CameraState& state, const std::array<bool, 120>& present);

}  // namespace ispdsp::tools::cfg

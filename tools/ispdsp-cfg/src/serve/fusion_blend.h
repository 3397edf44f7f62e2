// The gain control of the fusion view, computed by the library itself: the blend of two stored
// gain steps (DRV_dspCalculateFusion) and, for a colour/mono pair, the record the DSP receives
// (DRV_dspDoubleCalculateFusion). Curves are drawn by the renderer of `plot`.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

struct GainControl {
    int startStep = 0;
    int endStep = 1;
    float coefficient = 0.0f;
};

// {"values": {field: blended value}, "svg": the two steps' curves and the blend}; {"error"}
// when the library refuses the control.
nlohmann::json blendView(const TableEntry& table, const GainControl& control);

// Both pipes blended with the same control, then combined: the colour, mono and DSP values of
// every scalar, the ones outside the DSP's range marked and explained, and the three curves.
nlohmann::json pairView(const TableEntry& colour, const TableEntry& mono, const GainControl& control);

}  // namespace ispdsp::tools::cfg::serve

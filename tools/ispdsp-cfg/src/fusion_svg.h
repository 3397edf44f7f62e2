// The fusion charts as SVG, drawn in one place: `plot` writes them to a file and the
// workbench (`serve`) sends them to the page, so a chart looks the same wherever it is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispdsp::tools::cfg {

// One weight curve of 511 points (0..255).
struct CurveLine {
    const uint8_t* points;
    std::string colour;
    std::string label;
    double strokeWidth = 1.5;
};

// Blue (gain step 0) through green to red (gain step 15), neighbours in alternating lightness.
std::string stepColour(size_t step);

// A table's fusion parameters: a small chart per scalar over the sixteen gain steps, then the
// sixteen NIR weight curves in one chart.
std::string fusionTableSvg(const TableEntry& table, const std::string& heading, const std::string& subtitle);

// One chart of weight curves, with a legend entry per curve.
std::string weightCurvesSvg(const std::string& title, const std::vector<CurveLine>& curves);

}  // namespace ispdsp::tools::cfg

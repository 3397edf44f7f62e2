// The charts as SVG, drawn in one place: `plot` writes them to a file and the workbench
// (`serve`) sends them to the page, so a chart looks the same wherever it is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

// A value per frame (the simulator's messages): one line per series; a marked point is ringed
// in its mark's colour, and each mark is explained in the legend.
struct PointMark {
    std::string colour;
    std::string label;
};
struct FramePoint {
    int64_t frame;
    int64_t value;
    int mark = -1;  // index into the marks, -1 for none
};
struct FrameSeries {
    std::string label;
    std::string colour;
    std::vector<FramePoint> points;
    bool dashed = false;  // drawn over a series it may cover
};
struct ValueBand {
    int64_t low, high;
    std::string label;
};
std::string frameSeriesSvg(const std::string& title, const std::vector<FrameSeries>& series,
                           const std::vector<PointMark>& marks, const std::optional<ValueBand>& band);

}  // namespace ispdsp::tools::cfg

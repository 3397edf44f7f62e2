// The NIR weight curve (w_nir, 511 points of 0..255) in the JSON source. Four forms:
//
//   [v0, v1, ..., v510]                  every point
//   {"constant": v}                      all points v
//   {"ramp": [from, to]}                 straight line from point 0 to point 510
//   {"knots": [[x, y], ...]}             piecewise linear through the knots: x strictly rising
//                                        in 0..510, y in 0..255; flat before the first and
//                                        after the last knot
//
// Between knots a point is y0 + (y1 - y0) * (x - x0) / (x1 - x0), rounded half away from zero
// (integer arithmetic, so every machine builds the same bytes). `dump` writes the shortest of
// these forms that reproduces the stored curve exactly, so build(dump(file)) is byte-identical.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "field_table.h"
#include "json_source.h"

namespace ispdsp::tools {

using Curve = std::array<uint8_t, kNirPoints>;
using Knot = std::pair<int, int>;  // (x, y)

// The curve through the knots (knots valid: rising x in 0..510, y in 0..255, at least one).
Curve curveThroughKnots(const std::vector<Knot>& knots);

std::optional<Curve> decodeCurve(const Json& value, const std::string& where, Diagnostics& diag);
OrderedJson encodeCurve(const Curve& curve);

}  // namespace ispdsp::tools

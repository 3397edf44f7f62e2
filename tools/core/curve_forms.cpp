#include "curve_forms.h"

namespace ispdsp::tools {
namespace {

constexpr int kLastPoint = static_cast<int>(kNirPoints) - 1;
// Beyond this many knots the plain point list is easier to read and edit.
constexpr size_t kMaxDumpedKnots = 24;

// y0 + (y1 - y0) * (x - x0) / (x1 - x0), half away from zero; y values are 0..255.
int interpolate(const Knot& a, const Knot& b, int x) {
    const int den = b.first - a.first;
    const int num = a.second * den + (b.second - a.second) * (x - a.first);  // >= 0
    return (2 * num + den) / (2 * den);
}

bool segmentReproduces(const Curve& c, int from, int to) {
    const Knot a{from, c[static_cast<size_t>(from)]};
    const Knot b{to, c[static_cast<size_t>(to)]};
    for (int x = from + 1; x < to; ++x) {
        if (interpolate(a, b, x) != c[static_cast<size_t>(x)]) return false;
    }
    return true;
}

// Knots at 0, 510 and, from each knot, at the farthest point whose straight line reproduces
// every point in between (the rounding makes nearer end points fail where farther ones fit, so
// the search runs from the far end). Stops once more than `limit` knots would be needed.
std::vector<Knot> exactKnots(const Curve& c, size_t limit) {
    std::vector<Knot> knots{{0, c[0]}};
    int from = 0;
    while (from < kLastPoint && knots.size() <= limit) {
        int to = kLastPoint;
        while (to > from + 1 && !segmentReproduces(c, from, to)) --to;
        knots.emplace_back(to, c[static_cast<size_t>(to)]);
        from = to;
    }
    return knots;
}

}  // namespace

Curve curveThroughKnots(const std::vector<Knot>& knots) {
    Curve c{};
    size_t k = 0;
    for (int x = 0; x <= kLastPoint; ++x) {
        while (k + 1 < knots.size() && knots[k + 1].first <= x) ++k;
        int y;
        if (x <= knots.front().first)
            y = knots.front().second;
        else if (k + 1 >= knots.size())
            y = knots.back().second;
        else
            y = interpolate(knots[k], knots[k + 1], x);
        c[static_cast<size_t>(x)] = static_cast<uint8_t>(y);
    }
    return c;
}

std::optional<Curve> decodeCurve(const Json& value, const std::string& where, Diagnostics& diag) {
    if (value.is_array()) {
        if (value.size() != kNirPoints) {
            diag.error(where,
                       "expected " + std::to_string(kNirPoints) + " points, found " + std::to_string(value.size()));
            return std::nullopt;
        }
        Curve c{};
        bool ok = true;
        for (size_t i = 0; i < kNirPoints; ++i) {
            int64_t v = 0;
            ok = readInteger(value[i], Scalar::U8, where + "[" + std::to_string(i) + "]", diag, v) && ok;
            c[i] = static_cast<uint8_t>(v);
        }
        return ok ? std::optional(c) : std::nullopt;
    }
    if (!value.is_object() || value.size() != 1) {
        diag.error(where,
                   "expected " + std::to_string(kNirPoints) +
                       " points or one of {\"constant\": v}, {\"ramp\": [from, to]}, "
                       "{\"knots\": [[x, y], ...]}; found " +
                       jsonKind(value));
        return std::nullopt;
    }
    const auto member = value.begin();
    const std::string form = member.key();
    const Json& arg = member.value();
    const std::string at = where + "." + form;
    int64_t a = 0, b = 0;
    if (form == "constant") {
        if (!readInteger(arg, Scalar::U8, at, diag, a)) return std::nullopt;
        return curveThroughKnots({{0, static_cast<int>(a)}});
    }
    if (form == "ramp") {
        if (!arg.is_array() || arg.size() != 2) {
            diag.error(at, "expected [from, to]");
            return std::nullopt;
        }
        if (!readInteger(arg[0], Scalar::U8, at + "[0]", diag, a) |
            !readInteger(arg[1], Scalar::U8, at + "[1]", diag, b)) {
            return std::nullopt;
        }
        return curveThroughKnots({{0, static_cast<int>(a)}, {kLastPoint, static_cast<int>(b)}});
    }
    if (form == "knots") {
        if (!arg.is_array() || arg.empty()) {
            diag.error(at, "expected a list of [x, y] knots");
            return std::nullopt;
        }
        std::vector<Knot> knots;
        bool ok = true;
        for (size_t i = 0; i < arg.size(); ++i) {
            const std::string k = at + "[" + std::to_string(i) + "]";
            if (!arg[i].is_array() || arg[i].size() != 2) {
                diag.error(k, "expected [x, y]");
                ok = false;
                continue;
            }
            if (!readIntegerIn(arg[i][0], 0, kLastPoint, k + "[0]", diag, a) |
                !readInteger(arg[i][1], Scalar::U8, k + "[1]", diag, b)) {
                ok = false;
                continue;
            }
            if (!knots.empty() && a <= knots.back().first) {
                diag.error(k, "x = " + std::to_string(a) + " does not rise above the previous knot's " +
                                  std::to_string(knots.back().first));
                ok = false;
                continue;
            }
            knots.emplace_back(static_cast<int>(a), static_cast<int>(b));
        }
        return ok ? std::optional(curveThroughKnots(knots)) : std::nullopt;
    }
    diag.error(joinPath(where, form), "unknown curve form (use constant, ramp or knots, or list all " + std::to_string(kNirPoints) + " points)");
    return std::nullopt;
}

OrderedJson encodeCurve(const Curve& curve) {
    const std::vector<Knot> knots = exactKnots(curve, kMaxDumpedKnots);
    if (knots.size() == 2 && knots[0].second == knots[1].second) {
        return OrderedJson{{"constant", knots[0].second}};
    }
    if (knots.size() == 2) {
        return OrderedJson{{"ramp", {knots[0].second, knots[1].second}}};
    }
    if (knots.size() <= kMaxDumpedKnots && knots.back().first == kLastPoint) {
        OrderedJson list = OrderedJson::array();
        for (const Knot& k : knots) list.push_back({k.first, k.second});
        return OrderedJson{{"knots", list}};
    }
    OrderedJson points = OrderedJson::array();
    for (uint8_t v : curve) points.push_back(v);
    return points;
}

}  // namespace ispdsp::tools

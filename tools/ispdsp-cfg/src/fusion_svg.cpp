// The charts: one scalar panel per field over the gain steps, weight-curve charts, and values per
// frame from the simulator.
#include "fusion_svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace ispdsp::tools::cfg {
namespace {

constexpr int kColumns = 6;
constexpr double kPanelW = 196, kPanelH = 124, kGap = 8, kMargin = 20, kTop = 56;
constexpr double kPlotLeft = 40, kPlotRight = 10, kPlotTop = 22, kPlotBottom = 20;

std::string escapeXml(const std::string& s) {
    std::string out;
    for (char c : s) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

std::string num(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", v);
    return text;
}

void text(std::ostringstream& s, double x, double y, const std::string& t, const char* extra = "") {
    s << "<text x=\"" << num(x) << "\" y=\"" << num(y) << "\" " << extra << ">" << escapeXml(t) << "</text>\n";
}

void scalarPanel(std::ostringstream& s, const FieldDef& f, const TableEntry& table, double x0, double y0) {
    std::array<int64_t, kGainSteps> v{};
    for (size_t step = 0; step < kGainSteps; ++step) {
        v[step] = loadField(table.bytes.data() + tableOffsetOf(f, step), f.type);
    }
    int64_t lo = *std::min_element(v.begin(), v.end());
    int64_t hi = *std::max_element(v.begin(), v.end());
    const bool flat = lo == hi;
    if (flat) {
        --lo;
        ++hi;
    }
    const double px = x0 + kPlotLeft, pw = kPanelW - kPlotLeft - kPlotRight;
    const double py = y0 + kPlotTop, ph = kPanelH - kPlotTop - kPlotBottom;
    s << "<rect x=\"" << num(x0) << "\" y=\"" << num(y0) << "\" width=\"" << num(kPanelW) << "\" height=\""
      << num(kPanelH) << "\" class=\"panel\"/>\n";
    text(s, x0 + 6, y0 + 15, f.name, "class=\"title\"");
    s << "<rect x=\"" << num(px) << "\" y=\"" << num(py) << "\" width=\"" << num(pw) << "\" height=\"" << num(ph)
      << "\" class=\"plot\"/>\n";
    if (f.dspLow != minOf(f.type) || f.dspHigh != maxOf(f.type)) {
        text(s, x0 + kPanelW - 6, y0 + 15, "DSP " + std::to_string(f.dspLow) + ".." + std::to_string(f.dspHigh),
             "class=\"tick\" text-anchor=\"end\"");
    }
    if (flat) {  // one value: label it where the line runs
        text(s, px - 4, py + ph / 2 + 4, std::to_string(v[0]), "class=\"tick\" text-anchor=\"end\"");
    } else {
        text(s, px - 4, py + 8, std::to_string(hi), "class=\"tick\" text-anchor=\"end\"");
        text(s, px - 4, py + ph, std::to_string(lo), "class=\"tick\" text-anchor=\"end\"");
    }
    text(s, px, py + ph + 13, "0", "class=\"tick\"");
    text(s, px + pw, py + ph + 13, "15", "class=\"tick\" text-anchor=\"end\"");
    text(s, px + pw / 2, py + ph + 13, "gain step", "class=\"tick\" text-anchor=\"middle\"");
    std::string points;
    for (size_t step = 0; step < kGainSteps; ++step) {
        const double x = px + pw * static_cast<double>(step) / (kGainSteps - 1);
        const double y = py + ph - ph * static_cast<double>(v[step] - lo) / static_cast<double>(hi - lo);
        points += num(x) + "," + num(y) + " ";
        s << "<circle cx=\"" << num(x) << "\" cy=\"" << num(y) << "\" r=\"2\" fill=\"" << stepColour(step) << "\"/>\n";
    }
    s << "<polyline points=\"" << points << "\" class=\"line\"/>\n";
}

void curvePanel(std::ostringstream& s, const std::string& title, const std::vector<CurveLine>& curves, double x0,
                double y0, double w, double h) {
    const double px = x0 + 50, pw = w - 50 - 150, py = y0 + 30, ph = h - 30 - 40;
    s << "<rect x=\"" << num(x0) << "\" y=\"" << num(y0) << "\" width=\"" << num(w) << "\" height=\"" << num(h)
      << "\" class=\"panel\"/>\n";
    text(s, x0 + 8, y0 + 20, title, "class=\"title\"");
    s << "<rect x=\"" << num(px) << "\" y=\"" << num(py) << "\" width=\"" << num(pw) << "\" height=\"" << num(ph)
      << "\" class=\"plot\"/>\n";
    for (int yv : {0, 64, 128, 192, 255}) {
        const double y = py + ph - ph * yv / 255.0;
        s << "<line x1=\"" << num(px) << "\" y1=\"" << num(y) << "\" x2=\"" << num(px + pw) << "\" y2=\"" << num(y)
          << "\" class=\"grid\"/>\n";
        text(s, px - 6, y + 4, std::to_string(yv), "class=\"tick\" text-anchor=\"end\"");
    }
    for (int xv : {0, 128, 256, 384, 510}) {
        const double x = px + pw * xv / 510.0;
        s << "<line x1=\"" << num(x) << "\" y1=\"" << num(py) << "\" x2=\"" << num(x) << "\" y2=\"" << num(py + ph)
          << "\" class=\"grid\"/>\n";
        text(s, x, py + ph + 15, std::to_string(xv), "class=\"tick\" text-anchor=\"middle\"");
    }
    text(s, px + pw / 2, py + ph + 32, "curve point", "class=\"tick\" text-anchor=\"middle\"");
    for (size_t n = 0; n < curves.size(); ++n) {
        const CurveLine& c = curves[n];
        std::string points;
        for (size_t i = 0; i < kNirPoints; ++i) {
            points += num(px + pw * static_cast<double>(i) / 510.0) + "," + num(py + ph - ph * c.points[i] / 255.0) + " ";
        }
        s << "<polyline points=\"" << points << "\" fill=\"none\" stroke=\"" << c.colour << "\" stroke-width=\""
          << num(c.strokeWidth) << "\"/>\n";
        const double ly = py + 8 + static_cast<double>(n) * 16;
        s << "<line x1=\"" << num(px + pw + 20) << "\" y1=\"" << num(ly) << "\" x2=\"" << num(px + pw + 44)
          << "\" y2=\"" << num(ly) << "\" stroke=\"" << c.colour << "\" stroke-width=\"3\"/>\n";
        text(s, px + pw + 50, ly + 4, c.label, "class=\"tick\"");
    }
}

void svgHead(std::ostringstream& s, double width, double height) {
    s << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << num(width) << "\" height=\"" << num(height)
      << "\" viewBox=\"0 0 " << num(width) << " " << num(height) << "\" font-family=\"sans-serif\">\n"
      << "<style>.panel{fill:#fafafa;stroke:#ccc}.plot{fill:#fff;stroke:#999}.grid{stroke:#e4e4e4}"
         ".line{fill:none;stroke:#555;stroke-width:1.2}.title{font-size:13px;font-weight:bold;fill:#222}"
         ".tick{font-size:10px;fill:#555}.legend{font-size:12px;fill:#222}.heading{font-size:17px;font-weight:bold;fill:#111}</style>\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
}

std::vector<CurveLine> stepCurves(const TableEntry& table) {
    std::vector<CurveLine> curves;
    for (size_t step = 0; step < kGainSteps; ++step) {
        curves.push_back({table.bytes.data() + nirCurveOffset(step), stepColour(step), "gain step " + std::to_string(step)});
    }
    return curves;
}

constexpr const char* kStepCurvesTitle = "w_nir: NIR weight curves (points 0..510, weights 0..255), one per gain step";

}  // namespace

std::string stepColour(size_t step) {
    // The hue runs from blue through green to red; the lightness alternates so that neighbouring
    // steps, whose hues are close, still tell apart.
    const double hue = 240.0 * (1.0 - static_cast<double>(step) / static_cast<double>(kGainSteps - 1));
    const double light = step % 2 == 0 ? 0.30 : 0.47, saturation = 0.85;
    const double chroma = (1 - std::fabs(2 * light - 1)) * saturation;
    const double h = hue / 60.0, x = chroma * (1 - std::fabs(std::fmod(h, 2.0) - 1));
    double rgb[3] = {0, 0, 0};
    const int sector = std::min(static_cast<int>(h), 5);
    const int order[6][2] = {{0, 1}, {1, 0}, {1, 2}, {2, 1}, {2, 0}, {0, 2}};  // (chroma, x) channels per sector
    rgb[order[sector][0]] = chroma;
    rgb[order[sector][1]] = x;
    char text[16];
    const auto byte = [&](double c) { return static_cast<int>(std::lround(255 * (c + light - chroma / 2))); };
    std::snprintf(text, sizeof text, "#%02x%02x%02x", byte(rgb[0]), byte(rgb[1]), byte(rgb[2]));
    return text;
}

std::string fusionTableSvg(const TableEntry& table, const std::string& heading, const std::string& subtitle) {
    const auto fields = fusionFields();
    const int rows = static_cast<int>((fields.size() + kColumns - 1) / kColumns);
    const double width = 2 * kMargin + kColumns * kPanelW + (kColumns - 1) * kGap;
    const double curveTop = kTop + rows * (kPanelH + kGap) + 10;
    const double curveH = 440;
    const double height = curveTop + curveH + kMargin;

    std::ostringstream s;
    svgHead(s, width, height);
    text(s, kMargin, 28, heading, "class=\"heading\"");
    text(s, kMargin, 45, subtitle, "class=\"tick\"");
    for (size_t i = 0; i < fields.size(); ++i) {
        const double x = kMargin + static_cast<double>(i % kColumns) * (kPanelW + kGap);
        const double y = kTop + static_cast<double>(i / kColumns) * (kPanelH + kGap);
        scalarPanel(s, fields[i], table, x, y);
    }
    curvePanel(s, kStepCurvesTitle, stepCurves(table), kMargin, curveTop, width - 2 * kMargin, curveH);
    s << "</svg>\n";
    return s.str();
}

std::string weightCurvesSvg(const std::string& title, const std::vector<CurveLine>& curves) {
    const double width = 900, height = std::max(440.0, 110.0 + 16.0 * static_cast<double>(curves.size()));
    std::ostringstream s;
    svgHead(s, width, height);
    curvePanel(s, title, curves, 0, 0, width, height);
    s << "</svg>\n";
    return s.str();
}

std::string frameSeriesSvg(const std::string& title, const std::vector<FrameSeries>& series,
                           const std::vector<PointMark>& marks, const std::optional<ValueBand>& band) {
    int64_t lo = INT64_MAX, hi = INT64_MIN, lastFrame = 1;
    for (const FrameSeries& line : series)
        for (const FramePoint& p : line.points) {
            lo = std::min(lo, p.value);
            hi = std::max(hi, p.value);
            lastFrame = std::max(lastFrame, p.frame);
        }
    if (lo > hi) lo = hi = 0;
    // Round ticks (1, 2 or 5 times a power of ten) that take in every value.
    const double raw = std::max(1.0, static_cast<double>(hi - lo) / 6.0), power = std::pow(10.0, std::floor(std::log10(raw)));
    const double fraction = raw / power;
    const auto tick = static_cast<int64_t>(std::llround((fraction <= 1 ? 1 : fraction <= 2 ? 2 : fraction <= 5 ? 5 : 10) * power));
    lo = (lo >= 0 ? lo / tick : -((-lo + tick - 1) / tick)) * tick;
    hi = (hi >= 0 ? (hi + tick - 1) / tick : -(-hi / tick)) * tick;
    if (lo == hi) hi += tick;
    const double width = 900, legendTop = 360, height = legendTop + 18.0 * static_cast<double>(series.size() + marks.size() + (band ? 1 : 0)) + 14;
    const double px = 70, pw = width - px - 24, py = 40, ph = legendTop - py - 46;
    const auto xOf = [&](int64_t frame) { return px + pw * static_cast<double>(frame) / static_cast<double>(lastFrame); };
    const auto yOf = [&](double v) { return py + ph - ph * (v - static_cast<double>(lo)) / static_cast<double>(hi - lo); };
    std::ostringstream s;
    svgHead(s, width, height);
    text(s, 12, 24, title, "class=\"title\"");
    s << "<rect x=\"" << num(px) << "\" y=\"" << num(py) << "\" width=\"" << num(pw) << "\" height=\"" << num(ph)
      << "\" class=\"plot\"/>\n";
    if (band && band->high >= lo && band->low <= hi) {  // the part of the DSP range the values reach
        const double top = yOf(static_cast<double>(std::min(band->high, hi))), bottom = yOf(static_cast<double>(std::max(band->low, lo)));
        s << "<rect x=\"" << num(px) << "\" y=\"" << num(top) << "\" width=\"" << num(pw) << "\" height=\""
          << num(bottom - top) << "\" fill=\"#e3f1e3\"/>\n";
    }
    for (int64_t v = lo; v <= hi; v += tick) {
        const double y = yOf(static_cast<double>(v));
        s << "<line x1=\"" << num(px) << "\" y1=\"" << num(y) << "\" x2=\"" << num(px + pw) << "\" y2=\"" << num(y)
          << "\" class=\"grid\"/>\n";
        text(s, px - 6, y + 4, std::to_string(v), "class=\"tick\" text-anchor=\"end\"");
    }
    const int64_t every = std::max<int64_t>(1, (lastFrame + 15) / 16);
    for (int64_t f = 0; f <= lastFrame; f += every)
        text(s, xOf(f), py + ph + 15, std::to_string(f), "class=\"tick\" text-anchor=\"middle\"");
    text(s, px + pw / 2, py + ph + 32, "frame", "class=\"tick\" text-anchor=\"middle\"");
    for (const FrameSeries& line : series) {
        std::string points;
        for (const FramePoint& p : line.points) points += num(xOf(p.frame)) + "," + num(yOf(static_cast<double>(p.value))) + " ";
        s << "<polyline points=\"" << points << "\" fill=\"none\" stroke=\"" << line.colour << "\" stroke-width=\""
          << (line.dashed ? "1.5\" stroke-dasharray=\"6 4" : "3") << "\"/>\n";
        for (const FramePoint& p : line.points) {
            s << "<circle cx=\"" << num(xOf(p.frame)) << "\" cy=\"" << num(yOf(static_cast<double>(p.value))) << "\" r=\"2.5\" fill=\""
              << line.colour << "\"/>\n";
            if (p.mark >= 0 && static_cast<size_t>(p.mark) < marks.size())
                s << "<circle cx=\"" << num(xOf(p.frame)) << "\" cy=\"" << num(yOf(static_cast<double>(p.value)))
                  << "\" r=\"6\" fill=\"none\" stroke-width=\"2\" stroke=\"" << marks[static_cast<size_t>(p.mark)].colour << "\"/>\n";
        }
    }
    double ly = legendTop;
    for (const FrameSeries& line : series) {
        s << "<line x1=\"" << num(px) << "\" y1=\"" << num(ly) << "\" x2=\"" << num(px + 24) << "\" y2=\"" << num(ly)
          << "\" stroke=\"" << line.colour << "\" stroke-width=\"" << (line.dashed ? "2\" stroke-dasharray=\"6 4" : "3") << "\"/>\n";
        text(s, px + 32, ly + 4, line.label, "class=\"legend\"");
        ly += 18;
    }
    for (const PointMark& m : marks) {
        s << "<circle cx=\"" << num(px + 12) << "\" cy=\"" << num(ly) << "\" r=\"6\" fill=\"none\" stroke-width=\"2\" stroke=\""
          << m.colour << "\"/>\n";
        text(s, px + 32, ly + 4, m.label, "class=\"legend\"");
        ly += 18;
    }
    if (band) {
        s << "<rect x=\"" << num(px) << "\" y=\"" << num(ly - 6) << "\" width=\"24\" height=\"12\" fill=\"#e3f1e3\"/>\n";
        text(s, px + 32, ly + 4, band->label, "class=\"legend\"");
    }
    s << "</svg>\n";
    return s.str();
}

}  // namespace ispdsp::tools::cfg

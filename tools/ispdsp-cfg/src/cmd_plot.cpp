// plot: one table's fusion parameters as an SVG: a small chart per scalar field over the
// sixteen gain steps, and the sixteen NIR weight curves in one chart, coloured by gain step.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "commands.h"
#include "param_file_image.h"
#include "type_names.h"

namespace ispcfg {
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

// Blue (step 0) through violet to red (step 15).
std::string stepColour(size_t step) {
    const double t = static_cast<double>(step) / static_cast<double>(kGainSteps - 1);
    const int r = static_cast<int>(std::lround(33 + t * (200 - 33)));
    const int g = static_cast<int>(std::lround(102 - t * (102 - 40)));
    const int b = static_cast<int>(std::lround(196 - t * (196 - 50)));
    char text[16];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", r, g, b);
    return text;
}

void text(std::ostringstream& s, double x, double y, const std::string& t, const char* extra = "") {
    s << "<text x=\"" << num(x) << "\" y=\"" << num(y) << "\" " << extra << ">" << escapeXml(t) << "</text>\n";
}

void scalarPanel(std::ostringstream& s, const FieldDef& f, const TableEntry& table, double x0, double y0) {
    std::array<int64_t, kGainSteps> v{};
    for (size_t step = 0; step < kGainSteps; ++step) {
        v[step] = loadField(table.bytes.data() + kFusionOffset + step * kStepBytes + f.offset, f.type);
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

void curvePanel(std::ostringstream& s, const TableEntry& table, double x0, double y0, double w, double h) {
    const double px = x0 + 50, pw = w - 50 - 150, py = y0 + 30, ph = h - 30 - 40;
    s << "<rect x=\"" << num(x0) << "\" y=\"" << num(y0) << "\" width=\"" << num(w) << "\" height=\"" << num(h)
      << "\" class=\"panel\"/>\n";
    text(s, x0 + 8, y0 + 20, "w_nir: NIR weight curves (points 0..510, weights 0..255), one per gain step",
         "class=\"title\"");
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
    for (size_t step = 0; step < kGainSteps; ++step) {
        const uint8_t* c = table.bytes.data() + kFusionOffset + step * kStepBytes + kNirOffset;
        std::string points;
        for (size_t i = 0; i < kNirPoints; ++i) {
            points += num(px + pw * static_cast<double>(i) / 510.0) + "," + num(py + ph - ph * c[i] / 255.0) + " ";
        }
        s << "<polyline points=\"" << points << "\" fill=\"none\" stroke=\"" << stepColour(step)
          << "\" stroke-width=\"1.5\"/>\n";
        const double ly = py + 8 + static_cast<double>(step) * 16;
        s << "<line x1=\"" << num(px + pw + 20) << "\" y1=\"" << num(ly) << "\" x2=\"" << num(px + pw + 44)
          << "\" y2=\"" << num(ly) << "\" stroke=\"" << stepColour(step) << "\" stroke-width=\"3\"/>\n";
        text(s, px + pw + 50, ly + 4, "gain step " + std::to_string(step), "class=\"tick\"");
    }
}

}  // namespace

int runPlot(const PlotOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<LoadedParamFile> loaded = loadParamFileFor(o.input, err);
    if (!loaded) return kExitError;
    const bool rejected = reportRejection(o.input, *loaded, err);
    if (!loaded->file) return kExitFindings;
    const std::optional<ParsedFile>& file = loaded->file;
    const auto type = tableTypeFromName(o.table);
    if (!type) {
        reportError(err, {}, "\"" + o.table + "\" is not a PARAM_TABLE_TYPE name");
        return kExitError;
    }
    const TableEntry* table = nullptr;  // the last entry of the type: the one the driver uses
    for (const TableEntry& e : file->image.entries) {
        if (e.type == *type) table = &e;
    }
    if (table == nullptr) {
        reportError(err, o.input, "has no " + o.table + " table");
        return kExitError;
    }

    const auto fields = fusionFields();
    const int rows = static_cast<int>((fields.size() + kColumns - 1) / kColumns);
    const double width = 2 * kMargin + kColumns * kPanelW + (kColumns - 1) * kGap;
    const double curveTop = kTop + rows * (kPanelH + kGap) + 10;
    const double curveH = 440;
    const double height = curveTop + curveH + kMargin;

    std::ostringstream s;
    s << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << num(width) << "\" height=\"" << num(height)
      << "\" viewBox=\"0 0 " << num(width) << " " << num(height) << "\" font-family=\"sans-serif\">\n"
      << "<style>.panel{fill:#fafafa;stroke:#ccc}.plot{fill:#fff;stroke:#999}.grid{stroke:#e4e4e4}"
         ".line{fill:none;stroke:#555;stroke-width:1.2}.title{font-size:13px;font-weight:bold;fill:#222}"
         ".tick{font-size:10px;fill:#555}.heading{font-size:17px;font-weight:bold;fill:#111}</style>\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
    const uint32_t flag = static_cast<uint32_t>(loadField(table->bytes.data(), Scalar::U32));
    text(s, kMargin, 28, o.table + ": fusion parameters over the 16 gain steps", "class=\"heading\"");
    text(s, kMargin, 45, o.input + " (ispFusionFlag " + std::to_string(flag) + ")", "class=\"tick\"");
    for (size_t i = 0; i < fields.size(); ++i) {
        const double x = kMargin + static_cast<double>(i % kColumns) * (kPanelW + kGap);
        const double y = kTop + static_cast<double>(i / kColumns) * (kPanelH + kGap);
        scalarPanel(s, fields[i], *table, x, y);
    }
    curvePanel(s, *table, kMargin, curveTop, width - 2 * kMargin, curveH);
    s << "</svg>\n";

    if (!writeOutput(o.output, s.str(), out, err, {o.input}, o.force)) return kExitError;
    (o.output == "-" ? err : out) << o.output << ": " << o.table << " plotted\n";
    return rejected ? kExitFindings : kExitOk;
}

}  // namespace ispcfg

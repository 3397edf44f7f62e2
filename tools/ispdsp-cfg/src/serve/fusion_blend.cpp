#include "fusion_blend.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "fusion/fusion_fields.h"
#include "fusion_svg.h"
#include "ispdsp/fusion.h"
#include "ispdsp_host/scoped.h"

namespace ispdsp::tools::cfg::serve {

namespace {

static_assert(sizeof(CFG_DSP_FusionV2722) == kStepBytes);

// A calculated record with its own curve buffer.
struct Calculated {
    DSP_FusionV2722 record{};
    std::array<uint8_t, kNirPoints> curve{};
    Calculated() { record.fusionParam.w_nir = curve.data(); }
    Calculated(const Calculated&) = delete;
    int64_t value(const FieldDef& f) const {
        return loadField(reinterpret_cast<const uint8_t*>(&record.fusionParam) + f.offset, f.type);
    }
};

void collectLog(void* ctx, int32_t, int32_t, const char* text) { *static_cast<std::string*>(ctx) += text; }

// DRV_dspCalculateFusion on the table's sixteen stored records; the library's complaint in `error`.
bool calculate(const TableEntry& table, const GainControl& control, Calculated& out, std::string& error) {
    DRV_gainInterParam gain{};
    gain.interCoff = control.coefficient;
    gain.gainStartIndex = control.startStep;
    gain.gainEndIndex = control.endStep;
    DSP_FusionCalculateParam in{};
    in.pSwitch = 1;
    std::memcpy(in.fusionParam, table.bytes.data() + kFusionOffset, sizeof in.fusionParam);
    in.gainInterParam = &gain;
    const ispdsp::host::ScopedLogSink capture(&collectLog, &error);
    if (DRV_dspCalculateFusion(&in, &out.record) == 0) return true;
    if (error.empty()) error = "the library refused the gain control";
    return false;
}

std::string controlText(const GainControl& c) {
    char text[96];
    std::snprintf(text, sizeof text, "gain steps %d -> %d at coefficient %.3f", c.startStep, c.endStep,
                  static_cast<double>(c.coefficient));
    return text;
}

const std::string kBlendColour = "#111111";

}  // namespace

nlohmann::json blendView(const TableEntry& table, const GainControl& control) {
    Calculated blend;
    std::string error;
    if (!calculate(table, control, blend, error)) return {{"error", error}};
    nlohmann::json values = nlohmann::json::object();
    for (const FieldDef& f : fusionFields()) values[f.name] = blend.value(f);
    const auto curveOf = [&](int step) { return table.bytes.data() + nirCurveOffset(static_cast<size_t>(step)); };
    const std::vector<CurveLine> curves = {
        {curveOf(control.startStep), stepColour(static_cast<size_t>(control.startStep)),
         "gain step " + std::to_string(control.startStep)},
        {curveOf(control.endStep), stepColour(static_cast<size_t>(control.endStep)),
         "gain step " + std::to_string(control.endStep)},
        {blend.curve.data(), kBlendColour, "blend (library)", 3.0}};
    return {{"values", values}, {"svg", weightCurvesSvg("w_nir blended: " + controlText(control), curves)}};
}

nlohmann::json pairView(const TableEntry& colour, const TableEntry& mono, const GainControl& control) {
    Calculated c, m, dsp;
    std::string error;
    if (!calculate(colour, control, c, error) || !calculate(mono, control, m, error)) return {{"error", error}};
    DSP_DoubleFusionCalculateParam pair{};
    pair.pstColorFusionParam = &c.record;
    pair.pstMonoFusionParam = &m.record;
    {
        const ispdsp::host::ScopedLogSink capture(&collectLog, &error);
        if (DRV_dspDoubleCalculateFusion(&pair, &dsp.record) != 0) return {{"error", error}};
    }
    nlohmann::json rows = nlohmann::json::array();
    const auto fields = fusionFields();
    for (size_t i = 0; i < fields.size(); ++i) {
        const FieldDef& f = fields[i];
        const int64_t v = dsp.value(f);
        const bool outside = v < f.dspLow || v > f.dspHigh;
        std::string why;
        if (outside) {
            const bool absDiff = ispdsp::fusion::kScalarFields[i].combine == ispdsp::fusion::Combine::AbsDiff;
            const std::string monoText = m.value(f) < 0 ? "(" + std::to_string(m.value(f)) + ")" : std::to_string(m.value(f));
            const std::string formed = std::to_string(c.value(f)) + " - " + monoText;
            why = (absDiff ? "|" + formed + "|" : formed + " as " + typeName(f.type)) + " = " + std::to_string(v) +
                  ", outside " + std::to_string(f.dspLow) + " to " + std::to_string(f.dspHigh) +
                  ": by design, the DSP receives the difference of the two pipes";
        }
        rows.push_back({{"name", f.name},
                        {"colour", c.value(f)},
                        {"mono", m.value(f)},
                        {"dsp", v},
                        {"low", f.dspLow},
                        {"high", f.dspHigh},
                        {"outside", outside},
                        {"why", why}});
    }
    const std::vector<CurveLine> curves = {{c.curve.data(), "#2166c4", "colour pipe blend"},
                                           {m.curve.data(), "#888888", "mono pipe blend"},
                                           {dsp.curve.data(), kBlendColour, "to the DSP |c - m|", 3.0}};
    return {{"rows", rows}, {"svg", weightCurvesSvg("w_nir the DSP receives: " + controlText(control), curves)}};
}

}  // namespace ispdsp::tools::cfg::serve

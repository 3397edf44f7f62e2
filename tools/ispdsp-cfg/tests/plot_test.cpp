// plot: an SVG with a chart per fusion scalar and the sixteen NIR curves of the chosen table.
#include <gtest/gtest.h>

#include "commands.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

size_t count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

TEST(Plot, DrawsEveryScalarAndSixteenCurves) {
    const RunResult r = run([&](auto& out, auto& err) {
        return runPlot({sampleBinaryPath(), "PARAM_MULTICOLOR_NIGHT", "-"}, out, err);
    });
    ASSERT_EQ(r.status, kExitOk) << r.err;
    const std::string& svg = r.out;
    EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
    for (const FieldDef& f : fusionFields()) {
        EXPECT_NE(svg.find(std::string(">") + f.name + "</text>"), std::string::npos) << f.name;
    }
    EXPECT_NE(svg.find("DSP 1..16383"), std::string::npos);
    EXPECT_EQ(count(svg, "<polyline"), fusionFields().size() + kGainSteps);
    EXPECT_EQ(count(svg, ">gain step 15</text>"), 1u);  // the curve legend
    EXPECT_EQ(count(svg, "<text"), count(svg, "</text>"));
}

}  // namespace

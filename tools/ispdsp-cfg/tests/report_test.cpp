// What check, diff and plot report about a file: a value outside its DSP range is a warning
// naming the table, the gain step and the field; diff names the table and field of each
// change; plot draws every fusion scalar and the sixteen NIR curves. (Damaged files and
// checksums: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "tool_test_support.h"

namespace {

using namespace ispdsp::tools;
using namespace ispdsp::tools::cfg;
using namespace ispcfg_test;

struct Seeded {
    int32_t type;
    const char* record;
    int step;
    const char* name;
    int64_t value;
    const char* expected;
};

// clang-format off
const Seeded kSeeded[] = {
    {PARAM_TRAFFIC, "fusion", 3, "ep_delta", 0, "PARAM_TRAFFIC fusion[3].ep_delta = 0 (DSP range 1..16383)"},
    {PARAM_FACE, "fusion", 15, "high_lum_thr", 3, "PARAM_FACE fusion[15].high_lum_thr = 3 (DSP range -256..-1)"},
    {PARAM_IVS, "fusion", 7, "nir_a", -2, "PARAM_IVS fusion[7].nir_a = -2 (DSP range -1..1)"},
    {PARAM_BLACKWHITE, "ispLaeParam.windowLaeParam", -1, "gbce_level", 0, "PARAM_BLACKWHITE ispLaeParam.windowLaeParam.gbce_level = 0 (DSP range 1..10)"},
    {PARAM_HDR_MULTICOLOR, "ispDlaeParam", -1, "window_gain", 600, "PARAM_HDR_MULTICOLOR ispDlaeParam.window_gain = 600 (DSP range 128..512)"},
    {PARAM_WDR_MULTICOLOR, "ispYlwdrParam", -1, "hist_thr", 65536, "PARAM_WDR_MULTICOLOR ispYlwdrParam.hist_thr = 65536 (DSP range 0..65535)"},
    {PARAM_MULTICOLOR_NIGHT, "ispFusionPlateParam", -1, "fuse_weight", -4, "PARAM_MULTICOLOR_NIGHT ispFusionPlateParam.fuse_weight = -4 (DSP range 1..100)"},
};
// clang-format on

TEST(Check, EachValueOutsideItsRangeIsAWarningWithItsPlace) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    for (const Seeded& s : kSeeded) setField(tableOf(image, s.type), s.record, s.step, s.name, s.value);
    dir.write("seeded.bin", serializeParamFile(image));
    const RunResult r = run([&](auto& out, auto& err) { return runCheck(dir.path("seeded.bin"), out, err); });
    EXPECT_EQ(r.status, kExitFindings);
    for (const Seeded& s : kSeeded)
        EXPECT_NE(r.out.find("\nwarning: " + dir.path("seeded.bin") + ": " + s.expected + "\n"), std::string::npos) << s.expected;
    EXPECT_NE(r.out.find(": 0 errors, 7 warnings\n"), std::string::npos) << r.out;
}

TEST(Diff, NamesTheTableAndFieldOfEachChange) {
    TempDir dir;
    ParamFileImage a = sampleImage();
    setField(tableOf(a, PARAM_TRAFFIC), "fusion", 3, "ep_delta", 700);
    ParamFileImage b = a;
    setField(tableOf(b, PARAM_TRAFFIC), "fusion", 3, "ep_delta", 705);
    b.header.pdtName = {'n', 'e', 'w'};
    b.entries.erase(b.entries.begin() + 8);  // PARAM_FACE
    b.entries.push_back(a.entries[0]);
    b.entries.back().type = PARAM_EVENT;
    b.entries[0].bytes[kFusionOffset + 2 * kStepBytes + kNirOffset + 100] ^= 0x10;
    dir.write("a.bin", serializeParamFile(a));
    dir.write("b.bin", serializeParamFile(b));
    const RunResult r = run([&](auto& out, auto& err) { return runDiff(dir.path("a.bin"), dir.path("b.bin"), out, err); });
    EXPECT_EQ(r.status, kExitFindings);
    for (const std::string& line :
         {std::string("PARAM_TRAFFIC fusion[3].ep_delta: 700 -> 705\n"),
          std::string("header.pdtName: \"dual-sensor-nir-bullet\" -> \"new\"\n"),
          "only in " + dir.path("a.bin") + ": PARAM_FACE\n", "only in " + dir.path("b.bin") + ": PARAM_EVENT\n",
          std::string("PARAM_MULTICOLOR fusion[2].w_nir: 1 of 511 points differ (first [100]")})
        EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
}

size_t count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

TEST(Plot, DrawsEveryScalarAndSixteenCurves) {
    const RunResult r =
        run([&](auto& out, auto& err) { return runPlot({sampleBinaryPath(), "PARAM_MULTICOLOR_NIGHT", "-"}, out, err); });
    ASSERT_EQ(r.status, kExitOk) << r.err;
    EXPECT_EQ(r.out.rfind("<?xml", 0), 0u);
    for (const FieldDef& f : fusionFields()) EXPECT_NE(r.out.find(std::string(">") + f.name + "</text>"), std::string::npos) << f.name;
    EXPECT_NE(r.out.find("DSP 1..16383"), std::string::npos);
    EXPECT_EQ(count(r.out, "<polyline"), fusionFields().size() + kGainSteps);
    EXPECT_EQ(count(r.out, ">gain step 15</text>"), 1u);  // the curve legend
    EXPECT_EQ(count(r.out, "<text"), count(r.out, "</text>"));
    EXPECT_NE(r.out.find("</svg>"), std::string::npos);
}

}  // namespace

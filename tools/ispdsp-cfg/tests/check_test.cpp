// check: a value outside its DSP range is a warning that names the table, the gain step and
// the field. (Damaged files: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

struct Seeded {
    int32_t type;
    const char* record;
    int step;
    const char* name;
    int64_t value;
    const char* expected;
};

const Seeded kSeeded[] = {
    {PARAM_TRAFFIC, "fusion", 3, "ep_delta", 0, "PARAM_TRAFFIC fusion[3].ep_delta = 0 (DSP range 1..16383)"},
    {PARAM_FACE, "fusion", 15, "high_lum_thr", 3, "PARAM_FACE fusion[15].high_lum_thr = 3 (DSP range -256..-1)"},
    {PARAM_MULTICOLOR, "fusion", 0, "fwmin_wt", 257, "PARAM_MULTICOLOR fusion[0].fwmin_wt = 257 (DSP range 0..256)"},
    {PARAM_IVS, "fusion", 7, "nir_a", -2, "PARAM_IVS fusion[7].nir_a = -2 (DSP range -1..1)"},
    {PARAM_BLACKWHITE, "ispLaeParam.windowLaeParam", -1, "gbce_level", 0,
     "PARAM_BLACKWHITE ispLaeParam.windowLaeParam.gbce_level = 0 (DSP range 1..10)"},
    {PARAM_HDR_MULTICOLOR, "ispDlaeParam", -1, "window_gain", 600,
     "PARAM_HDR_MULTICOLOR ispDlaeParam.window_gain = 600 (DSP range 128..512)"},
    {PARAM_WDR_MULTICOLOR, "ispYlwdrParam", -1, "hist_thr", 65536,
     "PARAM_WDR_MULTICOLOR ispYlwdrParam.hist_thr = 65536 (DSP range 0..65535)"},
    {PARAM_MULTICOLOR_NIGHT, "ispFusionPlateParam", -1, "fuse_weight", -4,
     "PARAM_MULTICOLOR_NIGHT ispFusionPlateParam.fuse_weight = -4 (DSP range 1..100)"},
    {PARAM_TRAFFIC_BLACKWHITE, "ispY2dParam", -1, "win_size", 1,
     "PARAM_TRAFFIC_BLACKWHITE ispY2dParam.win_size = 1 (DSP range 2..3)"},
};

TEST(Check, EachValueOutsideItsRangeIsAWarningWithItsPlace) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    for (const Seeded& s : kSeeded) setField(tableOf(image, s.type), s.record, s.step, s.name, s.value);
    writeBytes(dir.path("seeded.bin"), serializeParamFile(image));
    const RunResult r = run([&](auto& out, auto& err) { return runCheck(dir.path("seeded.bin"), out, err); });
    EXPECT_EQ(r.status, kExitFindings);
    for (const Seeded& s : kSeeded) {
        EXPECT_NE(r.out.find(std::string("\nwarning: ") + s.expected + "\n"), std::string::npos) << s.expected;
    }
    EXPECT_NE(r.out.find(": 0 errors, 9 warnings\n"), std::string::npos) << r.out;
}

// The padding the codecs zero is exactly the records' padding bytes.
TEST(FieldTable, PaddingIsTheRecordsPadding) {
    std::vector<size_t> padding;
    for (size_t i = 0; i < kTableBytes; ++i) {
        if (paddingMask()[i]) padding.push_back(i);
    }
    const size_t lae = offsetof(CFG_DspIspCfgParam, ispLaeParam);
    const size_t dlae = offsetof(CFG_DspIspCfgParam, ispDlaeParam);
    const size_t y2d = offsetof(CFG_DspIspCfgParam, ispY2dParam);
    std::vector<size_t> expected = {lae + 7,  lae + 13, lae + 19, 8738, 8739, 8758, 8759,
                                    y2d + 13, dlae + 1, dlae + 7, 8817, 8818, 8819};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(padding, expected);
}

}  // namespace

// Fusion debug setters, the two-record print and the NIR curve command through
// the public ABI (the curve file's format is nir_file_test.cpp's subject).
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/fusion.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::Sandbox;

// The sixteen stored records of a table, each byte a recognisable pattern, and
// the interpolation state that picks two of them.
struct Records {
    std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> rec{};
    DRV_gainInterParam gain{};

    Records(int start, int end) {
        for (int r = 0; r < FUSION_GAIN_STEPS; ++r) {
            auto* bytes = reinterpret_cast<uint8_t*>(&rec[r]);
            for (size_t i = 0; i < sizeof(CFG_DSP_FusionV2722); ++i) bytes[i] = uint8_t(r * 16 + i * 3);
        }
        gain.gainStartIndex = start;
        gain.gainEndIndex = end;
    }
    int32_t set(int32_t id, int32_t value) { return DRV_dspdbgFusion(rec.data(), &gain, id, value); }
    int32_t print() { return DRV_dspdbgFusionPrint(rec.data(), &gain); }
    int32_t loadNir(int32_t id = 0) { return DRV_dspdbgFusionNir(rec.data(), &gain, id, 0); }
};

// A well-formed curve file: point i is i (255 from 255 on).
std::string countingCurveFile() {
    std::string text;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) text += std::to_string(i) + (i == 510 ? "\n" : i % 13 == 12 ? ",\n" : ",");
    return text;
}

// Indexes far outside 0..15 are refused by the setter, the print and the curve
// command (the edges -1 and 16: validity_boundary_test.cpp); null arguments are
// named. Either way -1, nothing touched.
TEST(FusionDebug, RefusalsAreNamedAndTouchNothing) {
    Sandbox sandbox;
    sandbox.writeFile("/tmp/nir.txt", countingCurveFile());
    const char* functions[] = {"DRV_dspdbgFusion", "DRV_dspdbgFusionPrint", "DRV_dspdbgFusionNir"};
    for (auto [start, end] : {std::pair{INT32_MAX, INT32_MIN}}) {
        Records r(start, end);
        const auto before = r.rec;
        LogCapture log;
        EXPECT_EQ(r.set(0, 100), -1);
        EXPECT_EQ(r.print(), -1);
        EXPECT_EQ(r.loadNir(), -1);
        const std::string message =
            "gain index out of range: start " + std::to_string(start) + ", end " + std::to_string(end) + "\n";
        for (const char* function : functions) EXPECT_EQ(log.count(LogKind::Error, function, message), 1u) << function;
        EXPECT_EQ(std::memcmp(r.rec.data(), before.data(), sizeof before), 0);
    }
    Records r(0, 1);
    using Call = int32_t (*)(CFG_DSP_FusionV2722*, DRV_gainInterParam*);
    const Call calls[] = {[](auto* c, auto* g) { return DRV_dspdbgFusion(c, g, 0, 1); },
                          [](auto* c, auto* g) { return DRV_dspdbgFusionPrint(c, g); },
                          [](auto* c, auto* g) { return DRV_dspdbgFusionNir(c, g, 0, 0); }};
    for (int k = 0; k < 3; ++k) {
        MemGuard mem;
        LogCapture log;
        EXPECT_EQ(calls[k](nullptr, &r.gain), -1);
        EXPECT_EQ(calls[k](r.rec.data(), nullptr), -1);
        EXPECT_EQ(log.count(LogKind::Error, functions[k], "Input NULL POINT cfgFusionParam!\n"), 1u);
        EXPECT_EQ(log.count(LogKind::Error, functions[k], "Input NULL POINT gainInterParam!\n"), 1u);
        EXPECT_EQ(mem.allocCalls(), 0u);
    }
}

// Each field's range and confirmation line are checked command by command
// through the console (driver_console_test.cpp). Equal indexes change that one
// record; unknown ids and other curve ids change nothing and say nothing (the
// curve file is not even looked for); without the curve file its command fails.
TEST(FusionDebug, EqualIndexesChangeOneRecordOtherIdsNone) {
    Sandbox sandbox;
    Records r(5, 5);
    auto expected = r.rec;
    expected[5].nir_k = 77;
    LogCapture log;
    ASSERT_EQ(r.set(3, 77), 0);
    for (int32_t id : {46, INT32_MIN, INT32_MAX}) EXPECT_EQ(r.set(id, 5), 0) << id;
    for (int32_t id : {72}) EXPECT_EQ(r.loadNir(id), 0) << id;
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(r.loadNir(0), -1);
    EXPECT_TRUE(log.has(LogKind::Warn, "DRV_ispGetNirCfg", "/tmp/nir.txt open failed\n"));
    EXPECT_EQ(std::memcmp(r.rec.data(), expected.data(), sizeof expected), 0);
}

TEST(FusionDebug, PrintShowsStartThenEndForEveryField) {
    Records r(4, 11);
    r.rec[4] = CFG_DSP_FusionV2722{1,  2,  3,  4,  5,  65025, -7, 8,  9,  1,  -1, 1,  13, 14,
                                   15, 16, 17, 18, 19, 20,    21, 22, 23, 24, 25, 26, {}};
    r.rec[11] = CFG_DSP_FusionV2722{16383, 256, 256, 256, 2047, 6,   -256, 255, 254, 0,   1,   -1,  253, 252,
                                    251,   250, 249, 248, 247,  246, 245,  244, 243, 242, 241, 240, {}};
    LogCapture log;
    ASSERT_EQ(r.print(), 0);
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{
                  "[DSP_DRV] [cfg fusion]ep_delta=[1,16383], fusion_hf_ratio=[2,256], fwmin_wt=[3,256], "
                  "nir_k=[4,256], hf_zoom=[5,2047], dark_inner=[65025,6], high_lum_thr=[-7,-256]\n",
                  "[DSP_DRV] [cfg fusion]fwmin_limit=[8,255], fwmax_limit=[9,254], copy_en=[1,0], nir_a=[-1,1], "
                  "vis_b=[1,-1], nir_min=[13,253]\n",
                  "[DSP_DRV] [cfg fusion]uv_coef=[14,252], uv_diff_thr=[15,251], uv_diff_min=[16,250], "
                  "uv_diff_max=[17,249], uv_vlight_min=[18,248], uv_vlight_max=[19,247], uv_sat_limit=[20,246]\n",
                  "[DSP_DRV] [cfg fusion]uv_rsmooth=[21,245], uv_gsmooth=[22,244], uv_bsmooth=[23,243], "
                  "uv_wmin=[24,242], uv_wmax=[25,241], uv_w=[26,240]\n"}));
}

// The curve command writes the curve of both blended records, nothing else,
// and prints it 13 points to a line.
TEST(FusionNir, LoadsTheCurveIntoBothRecordsAndPrintsIt) {
    Sandbox sandbox;
    sandbox.writeFile("/tmp/nir.txt", countingCurveFile());
    Records r(6, 13);
    auto expected = r.rec;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) expected[6].w_nir[i] = expected[13].w_nir[i] = uint8_t(std::min(i, 255));
    LogCapture log;
    ASSERT_EQ(r.loadNir(), 0);
    EXPECT_EQ(std::memcmp(r.rec.data(), expected.data(), sizeof expected), 0);
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 41u);
    EXPECT_EQ(texts[0], "[DSP_DRV] DRV_dspdbgFusionNir w_nir:\n");
    EXPECT_EQ(texts[1], "[DSP_DRV]    0    1    2    3    4    5    6    7    8    9   10   11   12  \n");
    EXPECT_EQ(texts[20], "[DSP_DRV]  247  248  249  250  251  252  253  254  255  255  255  255  255  \n");
    EXPECT_EQ(texts[40], "[DSP_DRV]  255  255  255  255  \n");
    EXPECT_EQ(log.count(LogKind::Info), 41u);
}

}  // namespace

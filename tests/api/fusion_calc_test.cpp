// Fusion gain blend (DRV_dspCalculateFusion) and colour/mono combination
// (DRV_dspDoubleCalculateFusion) through the public ABI.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "ispdsp/fusion.h"
#include "fusion_fields.h"
#include "support/log_capture.h"

namespace {

using ispdsp_test::LogCapture;
using namespace fusion_test;

float floatBits(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

// ---- An independent model of the blend and the combination ----


// s + c * (e - s) as one single-precision FMA, half away from zero through
// double, saturated into Int32 (NaN gives 0).
int32_t modelBlend(int32_t s, int32_t e, float c) {
    const float v = std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
    const double d = v;
    const double t = v >= 0 ? std::trunc(d + 0.5) : std::trunc(d - 0.5);
    if (std::isnan(t)) return 0;
    if (t >= 2147483647.0) return std::numeric_limits<int32_t>::max();
    if (t <= -2147483648.0) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(t);
}

struct ModelOutput {
    std::array<int32_t, 26> scalars;
    std::array<uint8_t, FUSION_NIR_POINTS> curve;
};

ModelOutput modelCalculate(const CFG_DSP_FusionV2722& s, const CFG_DSP_FusionV2722& e, float c) {
    ModelOutput out{};
    for (size_t k = 0; k < 26; ++k) {
        const FieldModel& f = kFields[k];
        int32_t v = keepWidth(f, modelBlend(readField(f, &s), readField(f, &e), c));
        out.scalars[k] = std::min(std::max(v, f.lo), f.hi);
    }
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) out.curve[i] = uint8_t(modelBlend(s.w_nir[i], e.w_nir[i], c));
    return out;
}

// ---- Fixtures ----

// A calculation input with its interpolation state and an output whose curve
// buffer carries guard bytes on both sides.
struct CalcRig {
    std::unique_ptr<DSP_FusionCalculateParam> in = std::make_unique<DSP_FusionCalculateParam>();
    DRV_gainInterParam gain{};
    DSP_FusionV2722 out{};
    std::array<uint8_t, FUSION_NIR_POINTS + 32> curveStorage{};

    static constexpr uint8_t kGuard = 0x5A;

    CalcRig() {
        std::memset(in.get(), 0, sizeof *in);
        in->gainInterParam = &gain;
        curveStorage.fill(kGuard);
        out.fusionParam.w_nir = curve();
    }
    uint8_t* curve() { return curveStorage.data() + 16; }
    CFG_DSP_FusionV2722& rec(int i) { return in->fusionParam[i]; }
    void blend(int start, int end, float c) {
        gain.gainStartIndex = start;
        gain.gainEndIndex = end;
        gain.interCoff = c;
    }
    int32_t run() { return DRV_dspCalculateFusion(in.get(), &out); }
    int32_t outField(const char* name) const { return readField(fieldNamed(name), &out.fusionParam); }
    bool guardsIntact() const {
        for (int i = 0; i < 16; ++i) {
            if (curveStorage[i] != kGuard || curveStorage[16 + FUSION_NIR_POINTS + i] != kGuard) return false;
        }
        return true;
    }
};

// Scalars (of a stored record or a DSP block) inside their DSP ranges.
void fillScalarsInRange(void* record, int seed) {
    for (const FieldModel& f : kFields) {
        writeField(f, record, f.lo + (seed * 7 + int(f.offset) * 3) % (f.hi - f.lo + 1));
    }
}

void fillInRange(CFG_DSP_FusionV2722& r, int seed) {
    fillScalarsInRange(&r, seed);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) r.w_nir[i] = uint8_t(seed * 31 + i * 5);
}

// Parameterised cases are named by their index and field.
template <class Case>
std::string caseName(const ::testing::TestParamInfo<Case>& info) {
    return std::to_string(info.index) + "_" + info.param.field;
}

// ---- DRV_dspCalculateFusion ----

TEST(FusionCalc, NullInputsAreNamedInOrderAndWriteNothing) {
    struct Case {
        const char* name;
        int which;
    };
    for (const Case& c : {Case{"fusionCalParam", 0}, Case{"param", 1}, Case{"fusionCalParam->gainInterParam", 2},
                          Case{"w_nir", 3}}) {
        CalcRig rig;
        rig.out.pSwtich = 77;
        rig.in->pSwitch = 5;
        DSP_FusionCalculateParam* in = rig.in.get();
        DSP_FusionV2722* out = &rig.out;
        if (c.which == 0) in = nullptr;
        if (c.which == 1) out = nullptr;
        if (c.which == 2) rig.in->gainInterParam = nullptr;
        if (c.which == 3) rig.out.fusionParam.w_nir = nullptr;
        LogCapture log;
        EXPECT_EQ(DRV_dspCalculateFusion(in, out), -1) << c.name;
        ASSERT_EQ(log.lines().size(), 1u) << c.name;
        EXPECT_EQ(log.lines()[0].text.rfind("[DSP_DRV] ERROR  (DRV_dspCalculateFusion|", 0), 0u)
            << log.lines()[0].text;
        EXPECT_TRUE(log.contains(std::string("): Input NULL POINT ") + c.name + "!\n")) << c.name;
        EXPECT_EQ(log.lines()[0].level, 0);
        EXPECT_EQ(log.lines()[0].category, 1);
        EXPECT_EQ(rig.out.pSwtich, 77u);
        EXPECT_TRUE(rig.guardsIntact());
    }
}

// Coefficient 0 and 1 give the end records; equal indexes give that record for any finite coefficient.
TEST(FusionCalc, EndCoefficientsAndEqualIndexesCopyTheRecord) {
    CalcRig rig;
    fillInRange(rig.rec(3), 1);
    fillInRange(rig.rec(9), 2);
    struct Case {
        int start, end;
        float c;
        int want;
    };
    for (const Case& k : {Case{3, 9, 0.0f, 3}, Case{3, 9, 1.0f, 9}, Case{9, 9, 0.3f, 9}, Case{9, 9, 0.5f, 9},
                          Case{9, 9, -4.0f, 9}, Case{9, 9, 9.5f, 9}, Case{9, 9, 3e38f, 9}}) {
        rig.blend(k.start, k.end, k.c);
        ASSERT_EQ(rig.run(), 0);
        EXPECT_EQ(std::memcmp(&rig.out.fusionParam, &rig.rec(k.want), FUSION_PARAM_V2_7_22_SCALAR_BYTES), 0) << k.c;
        EXPECT_EQ(std::memcmp(rig.curve(), rig.rec(k.want).w_nir, FUSION_NIR_POINTS), 0) << k.c;
    }
}

struct BlendCase {
    const char* field;  // "w_nir" for curve point 100
    int32_t start, end;
    float c;
    int32_t expected;
};

class FusionBlendValue : public ::testing::TestWithParam<BlendCase> {};

TEST_P(FusionBlendValue, RoundsHalfAwayFromZeroWithOneRounding) {
    const BlendCase& bc = GetParam();
    CalcRig rig;
    fillInRange(rig.rec(0), 0);
    fillInRange(rig.rec(1), 0);
    if (std::string(bc.field) == "w_nir") {
        rig.rec(0).w_nir[100] = uint8_t(bc.start);
        rig.rec(1).w_nir[100] = uint8_t(bc.end);
    } else {
        writeField(fieldNamed(bc.field), &rig.rec(0), bc.start);
        writeField(fieldNamed(bc.field), &rig.rec(1), bc.end);
    }
    rig.blend(0, 1, bc.c);
    ASSERT_EQ(rig.run(), 0);
    const int32_t got = std::string(bc.field) == "w_nir" ? rig.curve()[100] : rig.outField(bc.field);
    EXPECT_EQ(got, bc.expected) << bc.field << " " << bc.start << "->" << bc.end << " at " << bc.c;
    EXPECT_TRUE(rig.guardsIntact());
}

// 0x3f3fffff = 0.74999994: 1 + c * 10 is 8.4999994 exactly and stays below 8.5
// with one rounding; a separate multiply rounds c * 10 up to 7.5 and gives 9.
// Likewise 0x3ebfffff with 1 -> 21, and 0x3f2e8ba2 with 1 -> 12.
INSTANTIATE_TEST_SUITE_P(
    Examples, FusionBlendValue,
    ::testing::Values(BlendCase{"uv_coef", 10, 13, 0.5f, 12}, BlendCase{"uv_coef", 13, 10, 0.5f, 12},
                      BlendCase{"ep_delta", 10, 13, 0.5f, 12}, BlendCase{"high_lum_thr", -10, -13, 0.5f, -12},
                      BlendCase{"high_lum_thr", -13, -10, 0.5f, -12}, BlendCase{"w_nir", 0, 255, 0.5f, 128},
                      BlendCase{"w_nir", 255, 0, 0.5f, 128}, BlendCase{"nir_a", -1, 1, 0.5f, 0},
                      BlendCase{"vis_b", 1, -1, 0.5f, 0}, BlendCase{"dark_inner", 100, 200, 0.25f, 125},
                      BlendCase{"w_nir", 100, 200, 0.25f, 125}, BlendCase{"dark_inner", 0, 65025, 0.5f, 32513},
                      BlendCase{"high_lum_thr", -256, -1, 0.5f, -129},
                      BlendCase{"uv_coef", 1, 11, floatBits(0x3f3fffff), 8},
                      BlendCase{"w_nir", 1, 11, floatBits(0x3f3fffff), 8},
                      BlendCase{"uv_w", 1, 21, floatBits(0x3ebfffff), 8},
                      BlendCase{"w_nir", 1, 12, floatBits(0x3f2e8ba2), 8},
                      BlendCase{"w_nir", 1, 11, 0.75f, 9}),
    caseName<BlendCase>);

struct LimitCase {
    const char* field;
    int32_t stored;  // in both records
    int32_t expected;
};

class FusionOutputLimit : public ::testing::TestWithParam<LimitCase> {};

TEST_P(FusionOutputLimit, HoldsTheBlendToTheDspRange) {
    const LimitCase& lc = GetParam();
    CalcRig rig;
    fillInRange(rig.rec(4), 1);
    fillInRange(rig.rec(5), 1);
    writeField(fieldNamed(lc.field), &rig.rec(4), lc.stored);
    writeField(fieldNamed(lc.field), &rig.rec(5), lc.stored);
    rig.blend(4, 5, 0.5f);
    ASSERT_EQ(rig.run(), 0);
    EXPECT_EQ(rig.outField(lc.field), lc.expected) << lc.field << " " << lc.stored;
}

INSTANTIATE_TEST_SUITE_P(
    Table, FusionOutputLimit,
    ::testing::Values(LimitCase{"ep_delta", 0, 1}, LimitCase{"ep_delta", 16384, 16383},
                      LimitCase{"ep_delta", 65535, 16383}, LimitCase{"ep_delta", 16383, 16383},
                      LimitCase{"fusion_hf_ratio", 257, 256}, LimitCase{"fwmin_wt", 300, 256},
                      LimitCase{"nir_k", 65535, 256}, LimitCase{"nir_k", 256, 256}, LimitCase{"hf_zoom", 2048, 2047},
                      LimitCase{"dark_inner", 65535, 65025}, LimitCase{"dark_inner", 65026, 65025},
                      LimitCase{"high_lum_thr", 5, -1}, LimitCase{"high_lum_thr", 0, -1},
                      LimitCase{"high_lum_thr", -300, -256}, LimitCase{"high_lum_thr", 32767, -1},
                      LimitCase{"high_lum_thr", -32768, -256}, LimitCase{"copy_en", 7, 1},
                      LimitCase{"copy_en", 255, 1}, LimitCase{"copy_en", 0, 0}, LimitCase{"nir_a", 5, 1},
                      LimitCase{"nir_a", -5, -1}, LimitCase{"vis_b", 127, 1}, LimitCase{"vis_b", -128, -1},
                      LimitCase{"uv_diff_thr", 0, 1}, LimitCase{"uv_sat_limit", 0, 1},
                      LimitCase{"uv_rsmooth", 0, 1}, LimitCase{"uv_gsmooth", 0, 1}, LimitCase{"uv_bsmooth", 0, 1},
                      LimitCase{"uv_coef", 0, 0}, LimitCase{"fwmin_limit", 0, 0}, LimitCase{"uv_w", 255, 255},
                      LimitCase{"nir_min", 255, 255}),
    caseName<LimitCase>);

// Coefficients outside 0..1 extrapolate; the integer saturates to Int32 (NaN
// gives 0) before the field keeps its low bits and the DSP limit applies.
constexpr float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    OutOfRange, FusionBlendValue,
    ::testing::Values(BlendCase{"uv_coef", 0, 200, 3.0f, 600 & 0xFF},
                      BlendCase{"uv_coef", 10, 20, -1.0f, 0}, BlendCase{"w_nir", 10, 20, -2.0f, 246},
                      BlendCase{"ep_delta", 100, 200, 2.0f, 300},
                      BlendCase{"dark_inner", 0, 65025, 2.0f, (130050 & 0xFFFF)},
                      BlendCase{"w_nir", 0, 255, 1e10f, 255}, BlendCase{"w_nir", 0, 255, -1e10f, 0},
                      BlendCase{"w_nir", 0, 255, kInf, 255}, BlendCase{"w_nir", 0, 255, -kInf, 0},
                      BlendCase{"w_nir", 7, 255, kNaN, 0}, BlendCase{"uv_coef", 7, 9, kNaN, 0},
                      BlendCase{"ep_delta", 7, 9, kNaN, 1}, BlendCase{"uv_rsmooth", 7, 9, kNaN, 1},
                      BlendCase{"high_lum_thr", -2, -1, 1e12f, -1},
                      BlendCase{"high_lum_thr", -2, -1, -1e12f, -1},
                      BlendCase{"high_lum_thr", -2, -1, -300.0f, -256},
                      BlendCase{"nir_a", -1, 1, 2.0f, 1}, BlendCase{"nir_a", -1, 1, -2.0f, -1},
                      // 199 keeps 0xC7 (-57) and -201 keeps 0x37 (55) before the limit.
                      BlendCase{"nir_a", -1, 1, 100.0f, -1}, BlendCase{"nir_a", -1, 1, -100.0f, 1},
                      BlendCase{"w_nir", 0, 1, floatBits(0x7f7fffff), 255}),
    caseName<BlendCase>);

TEST(FusionCalc, GainIndexOutsideTheSixteenRecordsIsRefused) {
    for (auto [start, end] : {std::pair{-1, 0}, std::pair{0, 16}, std::pair{16, 16}, std::pair{INT32_MIN, 3},
                              std::pair{2, INT32_MAX}}) {
        CalcRig rig;
        rig.out.pSwtich = 9;
        rig.in->pSwitch = 1;
        rig.blend(start, end, 0.5f);
        LogCapture log;
        EXPECT_EQ(rig.run(), -1) << start << " " << end;
        EXPECT_EQ(rig.out.pSwtich, 9u);
        EXPECT_EQ(rig.curve()[0], CalcRig::kGuard);
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_EQ(log.lines()[0].level, 0);
        EXPECT_NE(log.lines()[0].text.find("[DSP_DRV] ERROR  (DRV_dspCalculateFusion|"), std::string::npos);
        EXPECT_NE(log.lines()[0].text.find("gain index out of range"), std::string::npos);
    }
}

TEST(FusionCalc, WritesOnlySwitchScalarsAndCurve) {
    CalcRig rig;
    fillInRange(rig.rec(2), 4);
    fillInRange(rig.rec(6), 5);
    std::memset(&rig.out, 0xA5, sizeof rig.out);
    rig.out.fusionParam.w_nir = rig.curve();
    rig.in->pSwitch = -5;
    rig.blend(2, 6, 0.4f);
    LogCapture log;
    ASSERT_EQ(rig.run(), 0);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(rig.out.pSwtich, 0xFFFFFFFBu);
    EXPECT_EQ(rig.out.fusionParam.w_nir, rig.curve());
    for (uint8_t b : rig.out.fusionParam.reserved1) EXPECT_EQ(b, 0xA5);
    for (uint8_t b : rig.out.fusionParam.reserved) EXPECT_EQ(b, 0xA5);
    EXPECT_TRUE(rig.guardsIntact());
    uint8_t gap[4];
    std::memcpy(gap, reinterpret_cast<const uint8_t*>(&rig.out) + 4, 4);  // padding before fusionParam
    for (uint8_t b : gap) EXPECT_EQ(b, 0xA5);
}

TEST(FusionCalc, IgnoresDebugPinAndTheOtherInterpolationMembers) {
    CalcRig a, b;
    for (int i = 0; i < 16; ++i) {
        fillInRange(a.rec(i), i);
        fillInRange(b.rec(i), i);
    }
    a.blend(1, 8, 0.37f);
    b.blend(1, 8, 0.37f);
    b.in->debug_pin = 0xFFFFFFFF;
    b.gain.avgGain = 123.0f;
    b.gain.interUpFlag = 1;
    b.gain.gainFixIndex = 99;
    b.gain.avgSenGain = 7.0f;
    b.gain.senInterCoff = 0.9f;
    b.gain.senGainStartIndex = -3;
    b.gain.senGainEndIndex = 40;
    b.gain.senGainFixIndex = 17;
    std::memset(b.gain.reserved, 0xFF, sizeof b.gain.reserved);
    ASSERT_EQ(a.run(), 0);
    ASSERT_EQ(b.run(), 0);
    EXPECT_EQ(std::memcmp(&a.out.fusionParam, &b.out.fusionParam, FUSION_PARAM_V2_7_22_SCALAR_BYTES), 0);
    EXPECT_EQ(std::memcmp(a.curve(), b.curve(), FUSION_NIR_POINTS), 0);
}

// A curve buffer placed inside the input records (a caller fault) still gives
// the element-wise result and never writes past the 511 points.
TEST(FusionCalc, CurveBufferInsideTheStartRecordStillBlendsPointByPoint) {
    CalcRig rig;
    fillInRange(rig.rec(0), 6);
    fillInRange(rig.rec(1), 7);
    const ModelOutput want = modelCalculate(rig.rec(0), rig.rec(1), 0.61f);
    const CFG_DSP_FusionV2722 rec2 = rig.rec(2);
    rig.out.fusionParam.w_nir = rig.rec(0).w_nir;
    rig.blend(0, 1, 0.61f);
    ASSERT_EQ(rig.run(), 0);
    EXPECT_EQ(std::memcmp(rig.rec(0).w_nir, want.curve.data(), FUSION_NIR_POINTS), 0);
    EXPECT_EQ(std::memcmp(&rig.rec(2), &rec2, sizeof rec2), 0);
}

// ---- DRV_dspDoubleCalculateFusion ----

struct DoubleRig {
    DSP_FusionV2722 colour{}, mono{}, out{};
    std::array<uint8_t, FUSION_NIR_POINTS> colourCurve{}, monoCurve{};
    std::array<uint8_t, FUSION_NIR_POINTS + 32> outStorage{};
    DSP_DoubleFusionCalculateParam in{};

    DoubleRig() {
        colour.fusionParam.w_nir = colourCurve.data();
        mono.fusionParam.w_nir = monoCurve.data();
        outStorage.fill(0x5A);
        out.fusionParam.w_nir = outCurve();
        in.aewPipeId = 1;
        in.pstColorFusionParam = &colour;
        in.pstMonoFusionParam = &mono;
    }
    uint8_t* outCurve() { return outStorage.data() + 16; }
    int32_t run() { return DRV_dspDoubleCalculateFusion(&in, &out); }
    int32_t outField(const char* name) const { return readField(fieldNamed(name), &out.fusionParam); }
};

TEST(FusionDouble, NullInputsAreNamedInOrderAndWriteNothing) {
    const char* names[] = {"doubleFusionCalParam", "param", "pstColorFusionParam", "pstMonoFusionParam",
                           "w_nirColor", "w_nirMono", "w_nir"};
    for (int which = 0; which < 7; ++which) {
        DoubleRig rig;
        rig.colour.fusionParam.ep_delta = 5;
        std::memset(&rig.out.fusionParam, 0xA5, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
        DSP_DoubleFusionCalculateParam* in = &rig.in;
        DSP_FusionV2722* out = &rig.out;
        switch (which) {
            case 0: in = nullptr; break;
            case 1: out = nullptr; break;
            case 2: rig.in.pstColorFusionParam = nullptr; break;
            case 3: rig.in.pstMonoFusionParam = nullptr; break;
            case 4: rig.colour.fusionParam.w_nir = nullptr; break;
            case 5: rig.mono.fusionParam.w_nir = nullptr; break;
            case 6: rig.out.fusionParam.w_nir = nullptr; break;
        }
        LogCapture log;
        EXPECT_EQ(DRV_dspDoubleCalculateFusion(in, out), -1) << names[which];
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_EQ(log.lines()[0].text.rfind("[DSP_DRV] ERROR  (DRV_dspDoubleCalculateFusion|", 0), 0u);
        EXPECT_TRUE(log.contains(std::string("): Input NULL POINT ") + names[which] + "!\n")) << names[which];
        EXPECT_EQ(rig.out.fusionParam.ep_delta, 0xA5A5);
        EXPECT_EQ(rig.outStorage[16], 0x5A);
    }
}

struct CombineCase {
    const char* field;
    int32_t colour, mono, expected;
};

class FusionCombine : public ::testing::TestWithParam<CombineCase> {};

TEST_P(FusionCombine, FollowsTheFieldRule) {
    const CombineCase& cc = GetParam();
    DoubleRig rig;
    writeField(fieldNamed(cc.field), &rig.colour.fusionParam, cc.colour);
    writeField(fieldNamed(cc.field), &rig.mono.fusionParam, cc.mono);
    ASSERT_EQ(rig.run(), 0);
    EXPECT_EQ(rig.outField(cc.field), cc.expected) << cc.field << " " << cc.colour << " " << cc.mono;
}

INSTANTIATE_TEST_SUITE_P(
    Table, FusionCombine,
    ::testing::Values(CombineCase{"ep_delta", 100, 300, 200}, CombineCase{"ep_delta", 300, 100, 200},
                      CombineCase{"dark_inner", 0, 65535, 65535}, CombineCase{"high_lum_thr", -1, -256, 255},
                      CombineCase{"high_lum_thr", -256, -1, -255}, CombineCase{"high_lum_thr", 32767, -32768, -1},
                      CombineCase{"uv_diff_thr", 2, 1, 1}, CombineCase{"uv_diff_thr", 1, 2, 255},
                      CombineCase{"nir_a", -1, 1, 2}, CombineCase{"vis_b", 1, -1, 2},
                      CombineCase{"nir_a", 127, -128, -1}, CombineCase{"copy_en", 0, 1, 1},
                      CombineCase{"uv_rsmooth", 9, 9, 0}, CombineCase{"uv_w", 0, 255, 255},
                      CombineCase{"fwmin_limit", 200, 10, 190}),
    caseName<CombineCase>);

// Every point and field against the model: FusionBitIdentity. Here the ends of the byte
// range, and what the combination must leave alone.
TEST(FusionDouble, CurveIsTheByteDifferenceAndSwitchAndReservedStay) {
    DoubleRig rig;
    rig.colourCurve[0] = 10;
    rig.monoCurve[0] = 250;
    rig.colourCurve[510] = 255;
    rig.monoCurve[510] = 0;
    rig.colour.pSwtich = 3;
    rig.mono.pSwtich = 4;
    rig.out.pSwtich = 0xDEAD;
    std::memset(rig.out.fusionParam.reserved1, 0xA5, sizeof rig.out.fusionParam.reserved1);
    std::memset(rig.out.fusionParam.reserved, 0xA5, sizeof rig.out.fusionParam.reserved);
    ASSERT_EQ(rig.run(), 0);
    EXPECT_EQ(rig.outCurve()[0], 240);
    EXPECT_EQ(rig.outCurve()[510], 255);
    EXPECT_EQ(rig.out.pSwtich, 0xDEADu);
    EXPECT_EQ(rig.out.fusionParam.w_nir, rig.outCurve());
    for (uint8_t b : rig.out.fusionParam.reserved1) EXPECT_EQ(b, 0xA5);
    for (uint8_t b : rig.out.fusionParam.reserved) EXPECT_EQ(b, 0xA5);
    EXPECT_EQ(rig.outStorage[15], 0x5A);
    EXPECT_EQ(rig.outStorage[16 + FUSION_NIR_POINTS], 0x5A);
}

// The output may be one of the inputs (record and curve): the combination
// still uses the original values of every field and point.
TEST(FusionDouble, OutputThatIsTheColourRecordCombinesOriginalValues) {
    DoubleRig rig;
    rig.colour.fusionParam.high_lum_thr = -1;
    rig.mono.fusionParam.high_lum_thr = -256;
    rig.colour.fusionParam.uv_w = 3;
    rig.mono.fusionParam.uv_w = 10;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        rig.colourCurve[i] = uint8_t(i);
        rig.monoCurve[i] = uint8_t(3 * i);
    }
    ASSERT_EQ(DRV_dspDoubleCalculateFusion(&rig.in, &rig.colour), 0);
    EXPECT_EQ(rig.colour.fusionParam.high_lum_thr, 255);
    EXPECT_EQ(rig.colour.fusionParam.uv_w, 7);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        EXPECT_EQ(rig.colourCurve[i], std::abs(int(uint8_t(i)) - int(uint8_t(3 * i)))) << i;
    }
}

// ---- Bit identity: the same bytes on every build and architecture ----

struct Lcg {
    uint32_t state;
    uint32_t next() {
        state = state * 1664525u + 1013904223u;
        return state;
    }
    float unit() { return float(next() >> 8) * (1.0f / 16777216.0f); }  // [0, 1)
};

struct Fnv1a {
    uint64_t h = 0xcbf29ce484222325ull;
    void add(const void* data, size_t n) {
        const auto* p = static_cast<const uint8_t*>(data);
        for (size_t i = 0; i < n; ++i) h = (h ^ p[i]) * 0x100000001b3ull;
    }
};

// Coefficients: the ends, values a few ulps around .5 crossings of small
// blends, out-of-range and non-finite values, and many fixed-seed randoms.
std::vector<float> sweepCoefficients() {
    std::vector<float> cs = {0.0f, -0.0f, 1.0f, 0.5f, 0.25f, 0.75f, 0.125f, 1.0f / 3.0f, 2.0f / 3.0f, 0.1f, 0.9f,
                             -0.5f, 1.5f, 2.0f, -1.0f, 1e6f, -1e6f, 3e9f, -3e9f, 1e30f, -1e30f, 1e-30f,
                             floatBits(1), floatBits(0x80000001u), kInf, -kInf, kNaN, floatBits(0x7f7fffff)};
    for (int d = 1; d <= 40; ++d) {
        for (int k = 0; k < d; ++k) {
            const float c = float((k + 0.5) / d);
            uint32_t bits;
            std::memcpy(&bits, &c, 4);
            for (int u = -2; u <= 2; ++u) cs.push_back(floatBits(bits + uint32_t(u)));
        }
    }
    Lcg lcg{20240601u};
    for (int i = 0; i < 1500; ++i) cs.push_back(lcg.unit());
    for (int i = 0; i < 200; ++i) cs.push_back(floatBits(lcg.next()));  // any bit pattern
    return cs;
}

// Sixteen records of random bytes: every field anywhere in its full width.
void fillRandom(DSP_FusionCalculateParam& in, Lcg& lcg) {
    for (int r = 0; r < FUSION_GAIN_STEPS; ++r) {
        auto* bytes = reinterpret_cast<uint8_t*>(&in.fusionParam[r]);
        for (size_t i = 0; i < sizeof(CFG_DSP_FusionV2722); ++i) bytes[i] = uint8_t(lcg.next() >> 24);
    }
    // Small values and near-equal neighbours make half-way results common.
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        in.fusionParam[0].w_nir[i] = uint8_t(i % 13);
        in.fusionParam[1].w_nir[i] = uint8_t(i % 13 + i % 7);
    }
}

// Golden FNV-1a 64 of every output byte of the sweep below. A change here
// means the library no longer produces the same DSP parameters: do not update
// it without knowing why the numbers moved.
constexpr uint64_t kGoldenSweepHash = 0x9b0fffccfa8ff8fdull;

TEST(FusionBitIdentity, SweepMatchesTheModelAndTheGoldenHash) {
    CalcRig rig;
    Lcg lcg{0xC0FFEEu};
    fillRandom(*rig.in, lcg);
    const std::vector<float> cs = sweepCoefficients();
    const std::pair<int, int> pairs[] = {{0, 1}, {1, 0}, {2, 3}, {15, 4}, {7, 7}, {9, 14}, {3, 12}, {11, 5}};

    Fnv1a hash;
    size_t mismatches = 0;
    for (const auto& [start, end] : pairs) {
        for (float c : cs) {
            rig.blend(start, end, c);
            ASSERT_EQ(rig.run(), 0);
            hash.add(&rig.out.pSwtich, sizeof rig.out.pSwtich);
            hash.add(&rig.out.fusionParam, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
            hash.add(rig.curve(), FUSION_NIR_POINTS);

            const ModelOutput want = modelCalculate(rig.rec(start), rig.rec(end), c);
            for (size_t k = 0; k < 26; ++k) {
                if (readField(kFields[k], &rig.out.fusionParam) != want.scalars[k] && ++mismatches < 10) {
                    ADD_FAILURE() << kFields[k].name << " " << start << "->" << end << " c=" << c;
                }
            }
            if (std::memcmp(rig.curve(), want.curve.data(), FUSION_NIR_POINTS) != 0 && ++mismatches < 10) {
                ADD_FAILURE() << "curve " << start << "->" << end << " c=" << c;
            }
        }
        rig.in->pSwitch = int32_t(lcg.next());
    }
    EXPECT_TRUE(rig.guardsIntact());

    // Colour/mono combinations of random calculated records.
    DoubleRig d;
    for (int i = 0; i < 2000; ++i) {
        auto* cb = reinterpret_cast<uint8_t*>(&d.colour.fusionParam);
        auto* mb = reinterpret_cast<uint8_t*>(&d.mono.fusionParam);
        for (int k = 0; k < FUSION_PARAM_V2_7_22_SCALAR_BYTES; ++k) {
            cb[k] = uint8_t(lcg.next() >> 24);
            mb[k] = uint8_t(lcg.next() >> 24);
        }
        for (int k = 0; k < FUSION_NIR_POINTS; ++k) {
            d.colourCurve[k] = uint8_t(lcg.next() >> 24);
            d.monoCurve[k] = uint8_t(lcg.next() >> 24);
        }
        ASSERT_EQ(d.run(), 0);
        hash.add(&d.out.fusionParam, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
        hash.add(d.outCurve(), FUSION_NIR_POINTS);
        for (const FieldModel& f : kFields) {
            const int32_t diff = readField(f, &d.colour.fusionParam) - readField(f, &d.mono.fusionParam);
            const int32_t want = keepWidth(f, f.wrapDiff ? diff : std::abs(diff));
            if (readField(f, &d.out.fusionParam) != want && ++mismatches < 10) ADD_FAILURE() << f.name;
        }
        for (int k = 0; k < FUSION_NIR_POINTS; ++k) {
            if (d.outCurve()[k] != std::abs(int(d.colourCurve[k]) - int(d.monoCurve[k])) && ++mismatches < 10) {
                ADD_FAILURE() << "curve point " << k;
            }
        }
    }
    EXPECT_EQ(mismatches, 0u);
    EXPECT_EQ(hash.h, kGoldenSweepHash) << std::hex << "sweep hash 0x" << hash.h;
}

}  // namespace

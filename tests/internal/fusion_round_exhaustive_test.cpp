// The gain blend rounds in single precision when the coefficient lies in
// [0, 1]. Checked against the blend written out the plain way (one float FMA,
// then half away from zero through double): every start/end curve pair 0..255
// x 0..255 through DRV_dspCalculateFusion's vector loop, over a dense
// coefficient grid, the coefficients that put the blend one ulp either side of
// a half, and those near every half-way crossing of each difference; and the
// scalar form on 16-bit and signed values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "fusion/fusion_blend.h"
#include "ispdsp/fusion.h"
#include "support/fp_environment.h"

namespace {

using ispdsp_test::FpEnvironment;

// Emulated, every float operation is interpreted: a quarter of the coefficient
// grid and every fourth crossing of the differences above 64 keep the five
// environments within seconds; the native run checks them all.
#if defined(ISPDSP_TESTS_EMULATED)
constexpr int kGridSteps = 256, kCrossingStride = 4;
#else
constexpr int kGridSteps = 1024, kCrossingStride = 1;
#endif

class FusionRoundExhaustive : public testing::TestWithParam<FpEnvironment> {
protected:
    ispdsp_test::ScopedFpEnvironment environment_{GetParam()};
};

int32_t oracle(int32_t s, int32_t e, float c) {
    const double v = std::fmaf(c, float(e - s), float(s));
    return int32_t(v >= 0 ? std::floor(v + 0.5) : std::ceil(v - 0.5));
}

// c moved n ulps, towards 0 for n < 0.
float ulpsAway(float c, int n) {
    for (; n < 0; ++n) c = std::nextafter(c, 0.0f);
    for (; n > 0; --n) c = std::nextafter(c, 2.0f);
    return c;
}

// Up to 511 start/end pairs in the curves of records 0 and 1, blended by each coefficient.
class CurveRig {
public:
    CurveRig() {
        std::memset(in_.get(), 0, sizeof *in_);
        in_->gainInterParam = &gain_;
        gain_.gainStartIndex = 0;
        gain_.gainEndIndex = 1;
        out_.fusionParam.w_nir = curve_;
    }
    void load(const std::vector<std::pair<int, int>>& pairs) {
        pairs_ = pairs;
        for (int i = 0; i < FUSION_NIR_POINTS; ++i) {  // points beyond the pairs repeat the first
            const auto [s, e] = pairs[i < int(pairs.size()) ? i : 0];
            in_->fusionParam[0].w_nir[i] = uint8_t(s);
            in_->fusionParam[1].w_nir[i] = uint8_t(e);
        }
    }
    // Counts the points that differ from the oracle (reports the first few).
    size_t mismatches(float c) {
        gain_.interCoff = c;
        if (DRV_dspCalculateFusion(in_.get(), &out_) != 0) return pairs_.size();
        size_t bad = 0;
        for (size_t i = 0; i < pairs_.size(); ++i) {
            const auto [s, e] = pairs_[i];
            if (curve_[i] != uint8_t(oracle(s, e, c)) && ++bad <= 3) {
                ADD_FAILURE() << s << "->" << e << " c=" << std::hexfloat << c << ": " << int(curve_[i]);
            }
        }
        return bad;
    }

private:
    std::unique_ptr<DSP_FusionCalculateParam> in_ = std::make_unique<DSP_FusionCalculateParam>();
    DRV_gainInterParam gain_{};
    DSP_FusionV2722 out_{};
    uint8_t curve_[FUSION_NIR_POINTS] = {};
    std::vector<std::pair<int, int>> pairs_;
};

TEST_P(FusionRoundExhaustive, EveryCurvePairOverADenseGridAndOneUlpAroundAHalf) {
    std::vector<float> cs;
    for (int i = 0; i <= kGridSteps; ++i) cs.push_back(float(i) / float(kGridSteps));
    // 0.5 and one ulp of each binade of n + 0.5 either side: the blend of n
    // and n + 1 lands exactly on the half or one ulp beside it (0.49999997 for n = 0).
    cs.push_back(0.5f);
    cs.push_back(std::ldexp(1.0f, -149));  // a denormal coefficient: flushed or not, the blend stays s
    for (int j = 16; j <= 25; ++j) {
        cs.push_back(0.5f - std::ldexp(1.0f, -j));
        cs.push_back(0.5f + std::ldexp(1.0f, -j));
    }
    CurveRig rig;
    size_t bad = 0;
    for (int first = 0; first < 256 * 256; first += FUSION_NIR_POINTS) {
        std::vector<std::pair<int, int>> pairs;
        for (int i = first; i < std::min(first + FUSION_NIR_POINTS, 256 * 256); ++i) pairs.emplace_back(i / 256, i % 256);
        rig.load(pairs);
        for (float c : cs) bad += rig.mismatches(c);
    }
    EXPECT_EQ(bad, 0u);
}

// For every difference d the blend crosses a half at c = (k + 0.5) / d: that
// coefficient and two ulps either side, over all pairs with that difference.
TEST_P(FusionRoundExhaustive, EveryHalfWayCrossingOfEachDifference) {
    CurveRig rig;
    size_t bad = 0;
    for (int d = 1; d <= 255; ++d) {
        std::vector<std::pair<int, int>> pairs;
        for (int s = 0; s + d <= 255; ++s) {
            pairs.emplace_back(s, s + d);
            pairs.emplace_back(s + d, s);
        }
        rig.load(pairs);
        for (int k = 0; k < d; k += d > 64 ? kCrossingStride : 1) {
            const float c = float((k + 0.5) / d);
            for (int u = -2; u <= 2; ++u) bad += rig.mismatches(ulpsAway(c, u));
        }
    }
    EXPECT_EQ(bad, 0u);
}

// The scalar fields: 16-bit and signed values, same crossings (the unsigned
// form for values that are never negative).
TEST_P(FusionRoundExhaustive, ScalarFormOnWideAndSignedValues) {
    const int32_t values[] = {-32768, -32767, -300, -256, -255, -129, -128, -2, -1, 0, 1, 2, 127, 128, 255, 256,
                              1023, 2047, 16383, 16384, 32767, 65024, 65025, 65534, 65535};
    size_t bad = 0;
    for (int32_t s : values) {
        for (int32_t e : values) {
            const int d = std::abs(e - s);
            // Crossings of the first and last 64 halves, and a grid.
            std::vector<float> cs;
            for (int k = 0; k < d && k < 64; ++k) {
                for (int kk : {k, d - 1 - k}) {
                    const float c = float((kk + 0.5) / d);
                    for (int u = -2; u <= 2; ++u) cs.push_back(ulpsAway(c, u));
                }
            }
            for (int i = 0; i <= 256; ++i) cs.push_back(float(i) / 256.0f);
            for (float c : cs) {
                const int32_t want = oracle(s, e, c);
                const bool unsignedToo = s >= 0 && e >= 0;
                if ((ispdsp::fusion::blendRoundInRange(s, e, c) != want ||
                     (unsignedToo && ispdsp::fusion::blendRoundUnsignedInRange(s, e, c) != want)) &&
                    ++bad <= 3) {
                    ADD_FAILURE() << s << "->" << e << " c=" << std::hexfloat << c;
                }
            }
        }
    }
    EXPECT_EQ(bad, 0u);
}

// Ties and exact blends through the public calculation, scalar lanes and
// curve alike: the product is exact, so the mode cannot move them.
TEST_P(FusionRoundExhaustive, ExactBlendsGiveTheSameIntegersInEveryMode) {
    auto in = std::make_unique<DSP_FusionCalculateParam>();
    std::memset(in.get(), 0, sizeof *in);
    DRV_gainInterParam gain{};
    gain.gainStartIndex = 10;
    gain.gainEndIndex = 13;
    in->gainInterParam = &gain;
    uint8_t curve[FUSION_NIR_POINTS] = {};
    DSP_FusionV2722 out{};
    out.fusionParam.w_nir = curve;
    CFG_DSP_FusionV2722& s = in->fusionParam[10];
    CFG_DSP_FusionV2722& e = in->fusionParam[13];
    s.hf_zoom = 10, e.hf_zoom = 13;
    s.uv_coef = 13, e.uv_coef = 10;
    s.high_lum_thr = -10, e.high_lum_thr = -13;
    s.nir_a = -1, e.nir_a = 1;
    s.dark_inner = 100, e.dark_inner = 200;
    s.ep_delta = 1000, e.ep_delta = 1003;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) s.w_nir[i] = uint8_t(i), e.w_nir[i] = uint8_t(255 - i);

    gain.interCoff = 0.5f;
    ASSERT_EQ(DRV_dspCalculateFusion(in.get(), &out), 0);
    const FUSION_PARAM_V2_7_22& p = out.fusionParam;
    EXPECT_EQ(p.hf_zoom, 12);
    EXPECT_EQ(p.uv_coef, 12);
    EXPECT_EQ(p.high_lum_thr, -12);
    EXPECT_EQ(p.nir_a, 0);
    EXPECT_EQ(p.dark_inner, 150);
    EXPECT_EQ(p.ep_delta, 1002);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) ASSERT_EQ(curve[i], 128) << i;  // (i + 255 - i) / 2 = 127.5

    gain.interCoff = 0.25f;
    ASSERT_EQ(DRV_dspCalculateFusion(in.get(), &out), 0);
    EXPECT_EQ(p.dark_inner, 125);
    EXPECT_EQ(p.uv_coef, 12);        // 12.25
    EXPECT_EQ(p.high_lum_thr, -11);  // -10.75
    EXPECT_EQ(curve[1], 64);         // 1 + 63.25

    // Outside [0, 1] the blend extrapolates through the double-based rounding.
    gain.interCoff = 1.5f;
    ASSERT_EQ(DRV_dspCalculateFusion(in.get(), &out), 0);
    EXPECT_EQ(p.hf_zoom, 15);         // 14.5
    EXPECT_EQ(p.high_lum_thr, -15);   // -14.5
    EXPECT_EQ(curve[0], 383 - 256);   // 0 -> 255: 382.5, kept to 8 bits
}

INSTANTIATE_TEST_SUITE_P(FpEnvironments, FusionRoundExhaustive, testing::ValuesIn(ispdsp_test::fpEnvironments()),
                         [](const testing::TestParamInfo<FpEnvironment>& info) { return info.param.name; });

}  // namespace

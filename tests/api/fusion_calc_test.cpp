// Fusion gain blend (DRV_dspCalculateFusion) and colour/mono combination
// (DRV_dspDoubleCalculateFusion) through the public ABI, against an
// independent model: s + c * (e - s) as one single-rounding FMA, rounded half
// away from zero, saturated, narrowed to the field and held to its DSP range.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "fusion_fields.h"
#include "ispdsp/fusion.h"
#include "support/log_capture.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using namespace fusion_test;

float floatBits(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}
constexpr float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();

// ---- The model ----

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
    bool guardsIntact() const {
        for (int i = 0; i < 16; ++i) {
            if (curveStorage[i] != kGuard || curveStorage[16 + FUSION_NIR_POINTS + i] != kGuard) return false;
        }
        return true;
    }
    // What the calculation wrote, in the model's terms.
    ModelOutput written() {
        ModelOutput got{};
        for (size_t k = 0; k < 26; ++k) got.scalars[k] = readField(kFields[k], &out.fusionParam);
        std::memcpy(got.curve.data(), curve(), FUSION_NIR_POINTS);
        return got;
    }
};

// ---- DRV_dspCalculateFusion ----

// (Gain indexes outside the records: validity_boundary_test.cpp.)
TEST(FusionCalc, NullInputsAreNamedAndWriteNothing) {
    const char* nulls[] = {"fusionCalParam", "param", "fusionCalParam->gainInterParam", "w_nir"};
    for (int k = 0; k < 4; ++k) {
        CalcRig rig;
        rig.out.pSwtich = 77;
        if (k == 2) rig.in->gainInterParam = nullptr;
        if (k == 3) rig.out.fusionParam.w_nir = nullptr;
        LogCapture log;
        EXPECT_EQ(DRV_dspCalculateFusion(k == 0 ? nullptr : rig.in.get(), k == 1 ? nullptr : &rig.out), -1) << nulls[k];
        EXPECT_EQ(log.lines().size(), 1u);
        EXPECT_TRUE(log.has(LogKind::Error, "DRV_dspCalculateFusion", std::string("Input NULL POINT ") + nulls[k] + "!\n"));
        EXPECT_EQ(rig.out.pSwtich, 77u);
        EXPECT_TRUE(rig.guardsIntact());
    }
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
};

TEST(FusionDouble, NullInputsAreNamedInOrderAndWriteNothing) {
    const char* names[] = {"doubleFusionCalParam", "param", "pstColorFusionParam", "pstMonoFusionParam",
                           "w_nirColor", "w_nirMono", "w_nir"};
    for (int which = 0; which < 7; ++which) {
        DoubleRig rig;
        std::memset(&rig.out.fusionParam, 0xA5, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
        if (which == 2) rig.in.pstColorFusionParam = nullptr;
        if (which == 3) rig.in.pstMonoFusionParam = nullptr;
        if (which == 4) rig.colour.fusionParam.w_nir = nullptr;
        if (which == 5) rig.mono.fusionParam.w_nir = nullptr;
        if (which == 6) rig.out.fusionParam.w_nir = nullptr;
        LogCapture log;
        EXPECT_EQ(DRV_dspDoubleCalculateFusion(which == 0 ? nullptr : &rig.in, which == 1 ? nullptr : &rig.out), -1)
            << names[which];
        EXPECT_EQ(log.lines().size(), 1u);
        EXPECT_TRUE(log.has(LogKind::Error, "DRV_dspDoubleCalculateFusion",
                            std::string("Input NULL POINT ") + names[which] + "!\n")) << names[which];
        EXPECT_EQ(rig.out.fusionParam.ep_delta, 0xA5A5);
        EXPECT_EQ(rig.outStorage[16], 0x5A);
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
    auto* bytes = reinterpret_cast<uint8_t*>(in.fusionParam);
    for (size_t i = 0; i < sizeof(in.fusionParam); ++i) bytes[i] = uint8_t(lcg.next() >> 24);
    // Small values and near-equal neighbours make half-way results common.
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        in.fusionParam[0].w_nir[i] = uint8_t(i % 13);
        in.fusionParam[1].w_nir[i] = uint8_t(i % 13 + i % 7);
    }
}

// Golden FNV-1a 64 of the switch, scalars and curve of the sweep below. A change here
// means the library no longer produces the same DSP parameters: do not update
// it without knowing why the numbers moved.
constexpr uint64_t kGoldenSweepHash = 0x9b0fffccfa8ff8fdull;

// The calculation writes only the switch, the scalars and the curve, takes
// nothing from debug_pin or the other interpolation members, and logs nothing.
TEST(FusionBitIdentity, SweepMatchesTheModelAndTheGoldenHash) {
    CalcRig rig;
    Lcg lcg{0xC0FFEEu};
    fillRandom(*rig.in, lcg);
    std::memset(&rig.out, 0xA5, sizeof rig.out);
    rig.out.fusionParam.w_nir = rig.curve();
    rig.in->debug_pin = 0xFFFFFFFF;
    rig.gain = {123.0f, 1, 0.0f, 0, 0, 99, 7.0f, 0.9f, -3, 40, 41, {}};  // all but the blend members are ignored
    std::memset(rig.gain.reserved, 0xFF, sizeof rig.gain.reserved);
    ispdsp_test::LogCapture log;
    const std::vector<float> cs = sweepCoefficients();
    const std::pair<int, int> pairs[] = {{0, 1}, {1, 0}, {2, 3}, {15, 4}, {7, 7}, {9, 14}, {3, 12}, {11, 5}};

    Fnv1a hash;
    size_t mismatches = 0;
    for (const auto& [start, end] : pairs) {
        for (size_t k = 0; k < cs.size(); ++k) {
            const float c = cs[k];
            rig.blend(start, end, c);
            const ModelOutput want = modelCalculate(rig.rec(start), rig.rec(end), c);
            // Every 50th call writes its curve over the start record's own (a
            // caller fault): still point by point. The record is put back after.
            const bool inRecord = k % 50 == 0;
            const CFG_DSP_FusionV2722 startRecord = rig.rec(start);
            if (inRecord) rig.out.fusionParam.w_nir = rig.rec(start).w_nir;
            ASSERT_EQ(rig.run(), 0);
            if (inRecord) {
                std::memcpy(rig.curve(), rig.rec(start).w_nir, FUSION_NIR_POINTS);
                rig.rec(start) = startRecord;
                rig.out.fusionParam.w_nir = rig.curve();
            }
            hash.add(&rig.out.pSwtich, sizeof rig.out.pSwtich);
            hash.add(&rig.out.fusionParam, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
            hash.add(rig.curve(), FUSION_NIR_POINTS);

            const ModelOutput got = rig.written();
            const bool same = got.scalars == want.scalars && got.curve == want.curve;
            if ((!same || rig.out.pSwtich != uint32_t(rig.in->pSwitch)) && ++mismatches < 10)
                ADD_FAILURE() << "not the model's record or switch: " << start << "->" << end << " c=" << c << " " << k;
        }
        rig.in->pSwitch = int32_t(lcg.next());
    }
    EXPECT_TRUE(rig.guardsIntact());
    EXPECT_EQ(rig.out.fusionParam.w_nir, rig.curve());
    const auto* out = reinterpret_cast<const uint8_t*>(&rig.out);
    EXPECT_TRUE(std::all_of(out + 4, out + 8, [](uint8_t b) { return b == 0xA5; }));  // padding before fusionParam
    for (uint8_t b : rig.out.fusionParam.reserved1) EXPECT_EQ(b, 0xA5);
    for (uint8_t b : rig.out.fusionParam.reserved) EXPECT_EQ(b, 0xA5);
    EXPECT_TRUE(log.lines().empty());

    // Colour/mono combinations of random calculated records. Every other one
    // writes over the colour record, curve included: it still combines the
    // original values, and the record's switch and reserved bytes stay.
    DoubleRig d;
    d.colour.pSwtich = 3;
    std::memset(d.colour.fusionParam.reserved, 0xA5, sizeof d.colour.fusionParam.reserved);
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
        const FUSION_PARAM_V2_7_22 colour = d.colour.fusionParam;
        const auto colourCurve = d.colourCurve;
        DSP_FusionV2722* out = i % 2 == 0 ? &d.out : &d.colour;
        const uint8_t* outCurve = i % 2 == 0 ? d.outCurve() : d.colourCurve.data();
        ASSERT_EQ(DRV_dspDoubleCalculateFusion(&d.in, out), 0);
        hash.add(&out->fusionParam, FUSION_PARAM_V2_7_22_SCALAR_BYTES);
        hash.add(outCurve, FUSION_NIR_POINTS);
        for (const FieldModel& f : kFields) {
            const int32_t diff = readField(f, &colour) - readField(f, &d.mono.fusionParam);
            const int32_t want = keepWidth(f, f.wrapDiff ? diff : std::abs(diff));
            if (readField(f, &out->fusionParam) != want && ++mismatches < 10) ADD_FAILURE() << f.name << " " << i;
        }
        for (int k = 0; k < FUSION_NIR_POINTS; ++k) {
            if (outCurve[k] != std::abs(int(colourCurve[k]) - int(d.monoCurve[k])) && ++mismatches < 10) {
                ADD_FAILURE() << "curve point " << k << " " << i;
            }
        }
    }
    EXPECT_EQ(d.colour.pSwtich, 3u);
    for (uint8_t b : d.colour.fusionParam.reserved) EXPECT_EQ(b, 0xA5);
    EXPECT_EQ(mismatches, 0u);
    EXPECT_EQ(hash.h, kGoldenSweepHash) << std::hex << "sweep hash 0x" << hash.h;
}

}  // namespace

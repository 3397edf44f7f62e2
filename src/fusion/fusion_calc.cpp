// The gain blend (blendGainSteps, shared by DRV_dspCalculateFusion and the
// per-frame update): blends the two stored fusion records of the current gain
// step pair into the DSP record, then holds every scalar to the DSP range.
#include <algorithm>
#include <cstring>
#include <utility>

#include "common/log.h"
#include "fusion/fusion_blend.h"
#include "fusion/fusion_calc.h"
#include "fusion/fusion_curve.h"
#include "fusion/fusion_curve_avx2.h"
#include "fusion/fusion_fields.h"
#include "fusion/fusion_lanes.h"
#include "ispdsp/fusion.h"

namespace {

using namespace ispdsp::fusion;

// x86-64 builds carry an FMA/AVX2 clone (picked at load time) so the curve and
// scalar loops run as vector FMAs instead of one libm call per value (the
// x86-64 baseline has no FMA instruction); the FMA is exact, so both clones
// give identical bytes. AArch64 has FMA in its baseline and needs no clone.
// ISPDSP_NO_CPU_CLONES builds the baseline code alone (to check it against the clone).
#if defined(__x86_64__) && defined(__has_attribute) && !defined(ISPDSP_NO_CPU_CLONES)
#if __has_attribute(target_clones)
#define ISPDSP_FUSION_CLONES __attribute__((target_clones("arch=x86-64-v3", "default")))
#endif
#endif
#ifndef ISPDSP_FUSION_CLONES
#define ISPDSP_FUSION_CLONES
#endif

// Forced inline so every clone gets its own copy of the scalar blends.
#define ISPDSP_FUSION_INLINE inline __attribute__((always_inline))

template <Int32 I>
ISPDSP_FUSION_INLINE void blendScalar(const Uint8* start, const Uint8* end, float c, Uint8* out) {
    constexpr const ScalarField& F = kScalarFields[I];
    const Int32 blended = blendRound(loadField<I>(start), loadField<I>(end), c);
    // The DSP limit applies to the value as kept in the field's width.
    Int32 kept;
    if constexpr (F.width == 2) {
        kept = F.isSigned ? static_cast<Int16>(blended) : static_cast<Uint16>(blended);
    } else {
        kept = F.isSigned ? static_cast<Int8>(blended) : static_cast<Uint8>(blended);
    }
    storeField<I>(out, clampToRange(F, kept));
}

template <Int32... I>
ISPDSP_FUSION_INLINE void blendScalars(const Uint8* start, const Uint8* end, float c, Uint8* out,
                                       std::integer_sequence<Int32, I...>) {
    (blendScalar<I>(start, end, c, out), ...);
}

// blendScalars for a coefficient in [0, 1], one group of fields per vector
// loop. The blend then lies between the two values, so it already fits the
// field's width. Each group is read whole before it is stored.
template <class Raw, Int32 Lanes>
ISPDSP_FUSION_INLINE void blendLanesInRange(const LaneGroup<Raw, Lanes>& group, const Raw* s, const Raw* e, float c,
                                            Uint8* out) {
    Raw blended[Lanes];
    for (Int32 i = 0; i < Lanes; ++i) {
        const Int32 sign = group.signBit[i];
        const Int32 value = blendRoundInRange((s[i] ^ sign) - sign, (e[i] ^ sign) - sign, c);
        blended[i] = static_cast<Raw>(std::max(std::min(value, group.hi[i]), group.lo[i]));  // upper bound first
    }
    std::memcpy(out + group.offset, blended, group.fields * sizeof(Raw));
}

ISPDSP_FUSION_INLINE void blendScalarsInRange(const Uint8* start, const Uint8* end, float c, Uint8* out) {
    // The 16-bit fields may sit unaligned: copied out as one 16-byte block.
    Uint16 s[kWideLanes.signBit.size()];
    Uint16 e[kWideLanes.signBit.size()];
    std::memcpy(s, start + kWideLanes.offset, sizeof s);
    std::memcpy(e, end + kWideLanes.offset, sizeof e);
    const Uint8* s8 = start + kByteLanes.offset;
    const Uint8* e8 = end + kByteLanes.offset;
    blendLanesInRange(kWideLanes, s, e, c, out);
    blendLanesInRange(kByteLanes, s8, e8, c, out);
}

ISPDSP_FUSION_INLINE void blendBlock(const Uint8* __restrict s, const Uint8* __restrict e, float c, Uint8* __restrict out) {
    for (Int32 i = 0; i < kCurveBlock; ++i) {
        out[i] = static_cast<Uint8>(blendRound(s[i], e[i], c));
    }
}

ISPDSP_FUSION_INLINE void blendBlockInRange(const Uint8* __restrict s, const Uint8* __restrict e, float c,
                                            Uint8* __restrict out) {
    for (Int32 i = 0; i < kCurveBlock; ++i) {
        out[i] = static_cast<Uint8>(blendRoundUnsignedInRange(s[i], e[i], c));
    }
}

ISPDSP_FUSION_CLONES
void blendRecords(const CFG_DSP_FusionV2722* start, const CFG_DSP_FusionV2722* end, float c,
                  FUSION_PARAM_V2_7_22* out, Uint8* outCurve) {
    const auto* startBytes = reinterpret_cast<const Uint8*>(start);
    const auto* endBytes = reinterpret_cast<const Uint8*>(end);
    auto* outBytes = reinterpret_cast<Uint8*>(out);
    const bool inRange = c == std::clamp(c, 0.0f, 1.0f);  // every frame: the host keeps it in 0..1; never NaN
    if (inRange) {
        blendScalarsInRange(startBytes, endBytes, c, outBytes);
    } else {
        blendScalars(startBytes, endBytes, c, outBytes, std::make_integer_sequence<Int32, kScalarFieldCount>{});
    }

    const Uint8* s = start->w_nir;
    const Uint8* e = end->w_nir;
    if (curvesOverlap(outCurve, s) || curvesOverlap(outCurve, e)) {
        // A curve buffer inside the input records: plain in-order loop.
        for (Int32 i = 0; i < FUSION_NIR_POINTS; ++i) outCurve[i] = static_cast<Uint8>(blendRound(s[i], e[i], c));
        return;
    }
    if (inRange) {
#ifdef ISPDSP_HAVE_AVX2_CURVE
        if (cpuHasAvx2Fma()) {
            blendCurveInRangeAvx2(s, e, c, outCurve);
            return;
        }
#endif
        forEachCurveBlock([&](Int32 first) { blendBlockInRange(s + first, e + first, c, outCurve + first); });
    } else {
        forEachCurveBlock([&](Int32 first) { blendBlock(s + first, e + first, c, outCurve + first); });
    }
}

}  // namespace

namespace ispdsp::fusion {

Int32 blendGainSteps(const CFG_DSP_FusionV2722* records, const DRV_gainInterParam& gain, Int32 pSwitch,
                     DSP_FusionV2722* out) {
    // The host keeps both indexes in 0..15; anything else is a host fault that
    // is reported, never clamped into a plausible-looking blend. Named after
    // the exported calculation, which the per-frame update stands for.
    if (!gainIndexesValid(gain)) {
        OSA_logWrite(kLogErrorLevel, kLogErrorCategory,
                     "[DSP_DRV] ERROR  (%s|%d): gain index out of range: start %d, end %d\n",
                     "DRV_dspCalculateFusion", __LINE__, gain.gainStartIndex, gain.gainEndIndex);
        return -1;
    }
    out->pSwtich = static_cast<UINT32>(pSwitch);
    blendRecords(&records[gain.gainStartIndex], &records[gain.gainEndIndex], gain.interCoff, &out->fusionParam,
                 static_cast<Uint8*>(out->fusionParam.w_nir));
    return 0;
}

}  // namespace ispdsp::fusion

Int32 DRV_dspCalculateFusion(DSP_FusionCalculateParam* fusionCalParam, DSP_FusionV2722* param) {
    ISP_CHECK_PTR(fusionCalParam, "fusionCalParam");
    ISP_CHECK_PTR(param, "param");
    ISP_CHECK_PTR(fusionCalParam->gainInterParam, "fusionCalParam->gainInterParam");
    ISP_CHECK_PTR(param->fusionParam.w_nir, "w_nir");
    return blendGainSteps(fusionCalParam->fusionParam, *fusionCalParam->gainInterParam, fusionCalParam->pSwitch,
                          param);
}

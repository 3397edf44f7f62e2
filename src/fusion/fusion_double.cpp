// DRV_dspDoubleCalculateFusion: combines the colour pipe's and the mono pipe's
// calculated fusion records field by field into the record the DSP receives.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "common/log.h"
#include "fusion/fusion_curve.h"
#include "fusion/fusion_fields.h"
#include "ispdsp/fusion.h"

namespace {

using namespace ispdsp::fusion;

template <Int32 I>
inline void combineScalar(const Uint8* colour, const Uint8* mono, Uint8* out) {
    const Int32 diff = loadField<I>(colour) - loadField<I>(mono);
    if constexpr (kScalarFields[I].combine == Combine::AbsDiff) {
        storeField<I>(out, std::abs(diff));
    } else {
        storeField<I>(out, diff);
    }
}

// Field by field, each output field from the same field of the inputs, so an
// output record that is also an input still combines the original values.
// The inputs are read where they lie: copies of them would make the loads
// wait for the stores the calculations just made.
template <Int32... I>
inline void combineScalars(const Uint8* colour, const Uint8* mono, Uint8* out, std::integer_sequence<Int32, I...>) {
    (combineScalar<I>(colour, mono, out), ...);
}

// |c - m| per byte as max - min, which vectorises to byte min/max/sub.
inline Uint8 absDiff(Uint8 a, Uint8 b) {
    return static_cast<Uint8>(std::max(a, b) - std::min(a, b));
}

inline void combineBlock(const Uint8* __restrict colour, const Uint8* __restrict mono, Uint8* __restrict out) {
    for (Int32 i = 0; i < kCurveBlock; ++i) out[i] = absDiff(colour[i], mono[i]);
}

void combineCurve(const Uint8* colour, const Uint8* mono, Uint8* out) {
    if (curvesOverlap(out, colour) || curvesOverlap(out, mono)) {
        // Output shares memory with an input: plain in-order loop.
        for (Int32 i = 0; i < FUSION_NIR_POINTS; ++i) out[i] = absDiff(colour[i], mono[i]);
        return;
    }
    forEachCurveBlock([&](Int32 first) { combineBlock(colour + first, mono + first, out + first); });
}

}  // namespace

Int32 DRV_dspDoubleCalculateFusion(DSP_DoubleFusionCalculateParam* doubleFusionCalParam, DSP_FusionV2722* param) {
    ISP_CHECK_PTR(doubleFusionCalParam, "doubleFusionCalParam");
    ISP_CHECK_PTR(param, "param");
    const DSP_FusionV2722* colour = doubleFusionCalParam->pstColorFusionParam;
    const DSP_FusionV2722* mono = doubleFusionCalParam->pstMonoFusionParam;
    ISP_CHECK_PTR(colour, "pstColorFusionParam");
    ISP_CHECK_PTR(mono, "pstMonoFusionParam");
    ISP_CHECK_PTR(colour->fusionParam.w_nir, "w_nirColor");
    ISP_CHECK_PTR(mono->fusionParam.w_nir, "w_nirMono");
    ISP_CHECK_PTR(param->fusionParam.w_nir, "w_nir");

    const auto* colourCurve = static_cast<const Uint8*>(colour->fusionParam.w_nir);
    const auto* monoCurve = static_cast<const Uint8*>(mono->fusionParam.w_nir);
    combineScalars(reinterpret_cast<const Uint8*>(&colour->fusionParam),
                   reinterpret_cast<const Uint8*>(&mono->fusionParam), reinterpret_cast<Uint8*>(&param->fusionParam),
                   std::make_integer_sequence<Int32, kScalarFieldCount>{});
    combineCurve(colourCurve, monoCurve, static_cast<Uint8*>(param->fusionParam.w_nir));
    return 0;
}

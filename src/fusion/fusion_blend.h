// The gain blend of one value: s + c * (e - s) in single precision with one
// rounding, then rounded half away from zero through double. Every x86-64 and
// AArch64 build must give the same integers, so the FMA is written out and
// nothing is left to compiler contraction.
#pragma once

#include <cmath>

#include "ispdsp/types.h"

namespace ispdsp::fusion {

// Truncates toward zero into the Int32 range: NaN gives 0, values beyond the
// range saturate. Written as selects so that a curve loop stays vectorisable.
inline Int32 truncSaturated(double t) {
    t = (t == t) ? t : 0.0;
    t = (t < 2147483647.0) ? t : 2147483647.0;
    t = (t > -2147483648.0) ? t : -2147483648.0;
    return static_cast<Int32>(t);
}

// s and e are the field's values with its signedness; the difference is exact
// as an integer and as a float (|e - s| < 2^17).
inline Int32 blendRound(Int32 s, Int32 e, float c) {
    const float v = std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
    const double d = v;
    // A coefficient outside 0..1 extrapolates and a NaN one gives NaN: both
    // saturate instead of overflowing the conversion.
    // d + copysign(0.5, d) is d >= 0 ? d + 0.5 : d - 0.5 (for -0.0 both truncate
    // to 0) without a branch, so curve loops vectorise.
    return truncSaturated(d + std::copysign(0.5, d));
}

// blendRound for curve points (0..255) and a coefficient in [0, 1]: v then
// lies between s and e, so it is finite and not negative, d + 0.5 is exact and
// far inside the Int32 range, and the conversion's truncation is the rounding.
// Same result as blendRound without the sign and saturation selects.
inline Int32 blendRoundCurveInRange(Int32 s, Int32 e, float c) {
    const float v = std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
    return static_cast<Int32>(static_cast<double>(v) + 0.5);
}

}  // namespace ispdsp::fusion

// The gain blend of one value: s + c * (e - s) in single precision with one
// rounding, then rounded half away from zero. Every x86-64 and AArch64 build
// must give the same integers, so the FMA is written out and nothing is left
// to compiler contraction, and every step after it is exact, so the host
// thread's rounding mode and flush-to-zero settings cannot change the result.
#pragma once

#include <algorithm>
#include <cmath>

#include "ispdsp/types.h"

namespace ispdsp::fusion {

// Truncates toward zero into the Int32 range: NaN gives 0, values beyond the
// range saturate. Written as selects so that a curve loop stays vectorisable.
inline Int32 truncSaturated(double t) {
    t = (t == t) ? t : 0.0;
    return static_cast<Int32>(std::max(std::min(t, 2147483647.0), -2147483648.0));
}

// The blended value before rounding to an integer. s and e are the field's
// values with its signedness; e - s and both conversions are exact (|e - s| <
// 2^17). The host's contract (docs/numerics.md): the library rounds as the
// calling thread's mode says in this one place, and nowhere else: the single
// rounding of this fused multiply-add when the product is inexact.
inline float blendValue(Int32 s, Int32 e, float c) {
    return std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
}

// Any coefficient. d + 0.5 is exact for |d| < 2^52 and anything larger
// saturates, so the result does not depend on the rounding mode.
inline Int32 blendRound(Int32 s, Int32 e, float c) {
    const double d = blendValue(s, e, c);
    // A coefficient outside 0..1 extrapolates and a NaN one gives NaN: both
    // saturate instead of overflowing the conversion.
    // d + copysign(0.5, d) is d >= 0 ? d + 0.5 : d - 0.5 (for -0.0 both truncate
    // to 0) without a branch, so curve loops vectorise.
    return truncSaturated(d + std::copysign(0.5, d));
}

// Rounding half away from zero for 0 <= v < 2^22 (a blend with a coefficient
// in [0, 1] lies between its two field values), exact in every rounding mode:
// with v = n + f, doubling is exact and truncation ignores the mode, so
// trunc(2v) = 2n + (f >= 1/2 ? 1 : 0) and (trunc(2v) + 1) >> 1 = n + (f >= 1/2).
// Adding a constant below one half and truncating would round as the thread's
// mode says. Values that flush-to-zero or denormals-are-zero treat as 0 are far
// below one half and give 0 either way. Integer steps only after the one
// conversion, so a curve loop stays a short vector sequence.
inline Int32 roundHalfUpInRange(float v) {
    return (static_cast<Int32>(v + v) + 1) >> 1;
}

// roundHalfUpInRange for either sign: the magnitude rounds up, the sign returns.
inline Int32 roundHalfAwayInRange(float v) {
    const Int32 away = roundHalfUpInRange(std::fabs(v));
    return std::signbit(v) ? -away : away;  // -0 rounds to 0 either way
}

// blendRound for a coefficient in [0, 1], without widening to double: the
// same integer in every rounding mode as soon as the FMA's value is the same.
inline Int32 blendRoundInRange(Int32 s, Int32 e, float c) {
    return roundHalfAwayInRange(blendValue(s, e, c));
}

// blendRoundInRange for values that are never negative (curve points and
// unsigned fields), so neither is the blend.
inline Int32 blendRoundUnsignedInRange(Int32 s, Int32 e, float c) {
    return roundHalfUpInRange(blendValue(s, e, c));
}

}  // namespace ispdsp::fusion

// The gain blend of one value: s + c * (e - s) in single precision with one
// rounding, then rounded half away from zero. Every x86-64 and AArch64 build
// must give the same integers, so the FMA is written out and nothing is left
// to compiler contraction.
#pragma once

#include <bit>
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

// The largest float below one half.
inline constexpr float kJustBelowHalf = 0.49999997f;
static_assert(std::bit_cast<Uint32>(kJustBelowHalf) == 0x3EFFFFFFu);

// blendRound for a coefficient in [0, 1], in single precision. v then lies
// between s and e, so it is finite and |v| < 2^23 for the fields' values, and
// truncating |v| + kJustBelowHalf rounds |v| half away from zero exactly: a tie
// n + 0.5 still reaches n + 1 (n + 1 - 2^-25 rounds up, to even for n = 0),
// while 0.49999997, which |v| + 0.5f would round up to 1.0, stays below 1.
// Same integer as blendRound, without widening to double.
inline Int32 blendRoundInRange(Int32 s, Int32 e, float c) {
    const float v = std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
    const Int32 away = static_cast<Int32>(std::fabs(v) + kJustBelowHalf);
    return v < 0.0f ? -away : away;
}

// blendRoundInRange for values that are never negative (curve points and
// unsigned fields), so neither is v.
inline Int32 blendRoundUnsignedInRange(Int32 s, Int32 e, float c) {
    const float v = std::fmaf(c, static_cast<float>(e - s), static_cast<float>(s));
    return static_cast<Int32>(v + kJustBelowHalf);
}

}  // namespace ispdsp::fusion

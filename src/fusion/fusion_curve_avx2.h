// The in-range curve blend of 32 points written out for AVX2 with FMA. The
// compiler's own vector loop widens bytes through 16-bit lanes and masks every
// value before packing it; here each 8 points widen straight to 32-bit lanes,
// and the packs saturate without masks because every value is known to fit
// (twice a blend of two bytes is at most 510). Same arithmetic as
// blendRoundUnsignedInRange point by point: one FMA, then the exact
// (trunc(2v) + 1) >> 1, so the bytes are identical to the portable loop's.
#pragma once

#if defined(__x86_64__) && !defined(ISPDSP_NO_CPU_CLONES)
#define ISPDSP_HAVE_AVX2_CURVE 1

#include <immintrin.h>

#include "fusion/fusion_curve.h"

static_assert(ispdsp::fusion::kCurveBlock == 32, "the kernel blends 32 points at a time");

namespace ispdsp::fusion {

// True when the processor runs the kernel below (read from the CPU model that
// the compiler's runtime fills in when the library is loaded).
inline bool cpuHasAvx2Fma() {
    // Two features by name: GCC and clang (the fuzz build) both know these.
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

// Twice the rounded-down-or-up blend of 8 points, before halving: trunc(2v).
__attribute__((target("avx2,fma"), always_inline)) inline __m256i blendTwiceAvx2(const Uint8* s, const Uint8* e,
                                                                                 __m256 c) {
    const __m256i start = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s)));
    const __m256i end = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(e)));
    const __m256 v = _mm256_fmadd_ps(c, _mm256_cvtepi32_ps(_mm256_sub_epi32(end, start)), _mm256_cvtepi32_ps(start));
    return _mm256_cvttps_epi32(_mm256_add_ps(v, v));
}

// blendRoundUnsignedInRange on points 0..31 of s and e, for a coefficient in [0, 1].
__attribute__((target("avx2,fma"), always_inline)) inline void blendBlockInRangeAvx2(const Uint8* s, const Uint8* e,
                                                                                    __m256 c, Uint8* out) {
    const __m256i one = _mm256_set1_epi16(1);
    // 16-bit lanes, per 128-bit half: points 0-3 of the first group, then of the second.
    __m256i first = _mm256_packs_epi32(blendTwiceAvx2(s, e, c), blendTwiceAvx2(s + 8, e + 8, c));
    __m256i second = _mm256_packs_epi32(blendTwiceAvx2(s + 16, e + 16, c), blendTwiceAvx2(s + 24, e + 24, c));
    first = _mm256_srli_epi16(_mm256_add_epi16(first, one), 1);
    second = _mm256_srli_epi16(_mm256_add_epi16(second, one), 1);
    // Bytes in 4-point groups ordered 0,2,4,6 | 1,3,5,7: put them back in order.
    const __m256i bytes = _mm256_packus_epi16(first, second);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permutevar8x32_epi32(bytes, order));
}

// The whole 511-point curve; out must not overlap s or e.
__attribute__((target("avx2,fma"))) inline void blendCurveInRangeAvx2(const Uint8* s, const Uint8* e, float c,
                                                                      Uint8* out) {
    // forEachCurveBlock's walk, written out: a lambda would not carry the target.
    const __m256 coefficient = _mm256_set1_ps(c);
    for (Int32 b = 0; b < kWholeCurveBlocks; ++b) {
        blendBlockInRangeAvx2(s + b * kCurveBlock, e + b * kCurveBlock, coefficient, out + b * kCurveBlock);
    }
    constexpr Int32 last = FUSION_NIR_POINTS - kCurveBlock;
    blendBlockInRangeAvx2(s + last, e + last, coefficient, out + last);
}

}  // namespace ispdsp::fusion

#endif

// Walking a 511-point NIR curve in fixed-size blocks: a constant trip count over
// buffers known not to overlap is what lets the compiler vectorise a point
// kernel at the library's optimisation level.
#pragma once

#include <cstdint>

#include "ispdsp/fusion.h"

namespace ispdsp::fusion {

inline constexpr Int32 kCurveBlock = 32;
// The blocks that tile the curve from its start; one more, overlapping, ends it.
inline constexpr Int32 kWholeCurveBlocks = FUSION_NIR_POINTS / kCurveBlock;
static_assert(kWholeCurveBlocks >= 1);

inline bool curvesOverlap(const void* a, const void* b) {
    const std::uintptr_t pa = reinterpret_cast<std::uintptr_t>(a);
    const std::uintptr_t pb = reinterpret_cast<std::uintptr_t>(b);
    return pa < pb + FUSION_NIR_POINTS && pb < pa + FUSION_NIR_POINTS;
}

// Calls block(first) for blocks of kCurveBlock points covering 0..510; the last
// block ends at point 510 and overlaps its predecessor, which is harmless when
// each output point depends on that point alone and the output is a separate
// buffer (check curvesOverlap first).
template <class BlockFn>
inline void forEachCurveBlock(BlockFn&& block) {
    for (Int32 b = 0; b < kWholeCurveBlocks; ++b) block(b * kCurveBlock);
    block(FUSION_NIR_POINTS - kCurveBlock);
}

}  // namespace ispdsp::fusion

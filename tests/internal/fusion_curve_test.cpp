// Which curve loop runs depends on whether the output overlaps an input: the
// block loops read a point after writing the one before it. The results are the
// same either way, so the choice itself is pinned here at its boundaries.
#include <gtest/gtest.h>

#include "fusion/fusion_curve.h"

namespace {

TEST(CurveOverlap, TwoCurvesOverlapWhenTheyShareAPoint) {
    using ispdsp::fusion::curvesOverlap;
    static unsigned char memory[4 * FUSION_NIR_POINTS];
    const unsigned char* a = memory + FUSION_NIR_POINTS;
    struct Case {
        long offset;  // of b from a
        bool overlap;
    };
    const Case cases[] = {
        {0, true},
        {FUSION_NIR_POINTS - 1, true},
        {FUSION_NIR_POINTS, false},
        {-(FUSION_NIR_POINTS - 1), true},
        {-FUSION_NIR_POINTS, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(curvesOverlap(a, a + c.offset), c.overlap) << c.offset;
        EXPECT_EQ(curvesOverlap(a + c.offset, a), c.overlap) << c.offset;
    }
}

}  // namespace

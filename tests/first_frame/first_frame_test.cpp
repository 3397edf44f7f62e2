// The first fusion frames of a process. The zoom and calibration state exists
// once per process and starts as "zoom -1 seen, index 255 sent, no calibration
// sent"; every later frame depends on it, and only a process that has run no
// fusion frame yet shows it. This suite is its own program with this one test.
#include <gtest/gtest.h>

#include <vector>

#include "api/fusion_pair.h"

namespace {

using driver_test::DriverFusion;

TEST_F(DriverFusion, FirstFramesStartFromZoomMinusOneSeenAndIndex255Sent) {
    writeParamFiles();
    writeRegistration(1);
    startPair();
    // -1 is the zoom already seen: no lookup, and index 255 counts as sent.
    EXPECT_EQ(runZoomFrame(-1), std::vector<Uint32>{});
    EXPECT_EQ(dsp.setsOfType(DSP_AEW_CFG_TYPE_CAL).size(), 1u);  // registerFlag 1 differs from the initial 0
    EXPECT_EQ(runZoomFrame(0), std::vector<Uint32>{0});
    EXPECT_TRUE(dsp.setsOfType(DSP_AEW_CFG_TYPE_CAL).empty());
}

}  // namespace

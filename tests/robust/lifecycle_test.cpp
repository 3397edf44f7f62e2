// The library lives in the camera's process for months: hundreds of
// create/start/link/frames/stop/delete cycles of a linked colour/mono pair,
// with day/night, HDR, gain and zoom changes, console commands and the NIR
// curve, must give back every block and file, every cycle. This is the one
// create/delete soak; it also runs under valgrind (robust/CMakeLists.txt).
// ISPDSP_LIFECYCLE_CYCLES sets the number of cycles (300 by default).
#include <gtest/gtest.h>

#include <cstdlib>

#include "api/driver_host.h"
#include "support/mem_guard.h"
#include "support/nir_curve_text.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

constexpr int kFramesPerCycle = 6;

int cyclesToRun() {
    const char* text = std::getenv("ISPDSP_LIFECYCLE_CYCLES");
    const int cycles = text != nullptr ? std::atoi(text) : 0;
    return cycles > 0 ? cycles : 300;
}

class RobustLifecycle : public driver_test::DriverTest {
protected:
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile,
                          ParamFileBuilder()
                              .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(0))
                              .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(1))
                              .addTable(PARAM_HDR_MULTICOLOR, driver_test::fusionTable(2))
                              .build());
        sandbox.writeFile(driver_test::registrationPath(1), driver_test::registrationText({100, 200, 300}));
        sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText(7));
    }

    // One whole life of the pair; returns the FUSION messages the DSP received.
    size_t runCycle(int cycle) {
        HostPipe colour(0);
        HostPipe mono(1);
        EXPECT_EQ(colour.createPipe(), 0);
        EXPECT_EQ(mono.createPipe(), 0);
        EXPECT_EQ(colour.start(), 0);
        EXPECT_EQ(mono.start(), 0);
        driver_test::linkPipes(colour, mono);
        for (int frame = 0; frame < kFramesPerCycle; ++frame) {
            for (HostPipe* pipe : {&colour, &mono}) {
                DRV_ispRunParams& run = pipe->run();
                run.dncMode = (cycle + frame) % 3 == 0 ? 0 : 1;  // now and then black-and-white
                run.hdrMode = frame == 3 ? 5 : 0;
                run.gainInterParam.gainStartIndex = (cycle + frame) % 15;
                run.gainInterParam.gainEndIndex = (cycle + frame) % 15 + 1;
                run.gainInterParam.interCoff = static_cast<float>(frame) / kFramesPerCycle;
                run.ptzUpdateParam.zoom = 50 * ((cycle + frame) % 8);
                Int32 changed = 0;
                EXPECT_EQ(pipe->publishSwitch(static_cast<Uint8>(frame % 2)), 0);
                EXPECT_EQ(pipe->gainFlags(), 0);
                EXPECT_EQ(pipe->refresh(&changed), 0);
            }
            // In the first frame the mono pipe has calculated nothing yet, so
            // the colour pipe's combination fails (its messages still go out).
            EXPECT_EQ(colour.fusion(), frame == 0 ? -1 : 0);
            EXPECT_EQ(mono.fusion(), 0);
        }
        if (cycle % 10 == 0) {
            driver_test::ConsoleArgs tune{{"runParam", "1", "ep_delta", "40", "hf_zoom", "300", "w_nir", "0"}};
            EXPECT_EQ(colour.console(&tune.record, cycle % 20 == 0 ? 1 : 0), 0);
        }
        for (Int32 rc : {colour.reload(), colour.stop(), mono.stop(), colour.remove(), mono.remove()}) EXPECT_EQ(rc, 0);
        EXPECT_EQ(colour.instance(), nullptr);
        EXPECT_EQ(mono.instance(), nullptr);
        EXPECT_EQ(log.count(LogKind::Warn), 0u);
        EXPECT_EQ(log.count(LogKind::Error), 1u) << "only the first frame's combination";
        const size_t fusionMessages = dsp.setsOfType(DSP_AEW_CFG_TYPE_FUSION).size();
        dsp.clearCalls();
        log.clear();
        return fusionMessages;
    }

};

TEST_F(RobustLifecycle, LinkedPairCyclesGiveBackEveryBlock) {
    const int cycles = cyclesToRun();
    // Warm-up: from the first creation on, the library keeps the registration
    // arrays; every later creation replaces them one for one.
    runCycle(1);
    MemGuard guard;
    size_t fusionMessages = 0;
    for (int cycle = 0; cycle < cycles && !HasFailure(); ++cycle) {
        fusionMessages += runCycle(cycle);
        ASSERT_TRUE(guard.noLeak()) << "after cycle " << cycle;
    }
    EXPECT_EQ(fusionMessages, static_cast<size_t>(cycles) * kFramesPerCycle * 2);
}

}  // namespace

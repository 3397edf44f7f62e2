// The library lives in the camera's process for months: hundreds of
// create/start/link/frames/stop/delete cycles of a linked colour/mono pair,
// with day/night, gain and zoom changes, console commands and the NIR curve,
// must give back every block, every cycle. ISPDSP_LIFECYCLE_CYCLES sets the
// number of cycles (300 by default; the valgrind run of this test uses fewer).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "api/driver_host.h"
#include "support/mem_guard.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

constexpr int kDefaultCycles = 300;
constexpr int kFramesPerCycle = 6;

int cyclesToRun() {
    const char* text = std::getenv("ISPDSP_LIFECYCLE_CYCLES");
    const int cycles = text != nullptr ? std::atoi(text) : kDefaultCycles;
    return cycles > 0 ? cycles : kDefaultCycles;
}

std::string nirCurveText() {
    std::string text;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        text += std::to_string((i * 7) % 256);
        text += i == FUSION_NIR_POINTS - 1 ? "\n" : (i % 13 == 12 ? ",\n" : ",");
    }
    return text;
}

class RobustLifecycle : public testing::Test {
protected:
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile,
                          ParamFileBuilder()
                              .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(0))
                              .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(1))
                              .addTable(PARAM_HDR_MULTICOLOR, driver_test::fusionTable(2))
                              .build());
        sandbox.writeFile(driver_test::registrationPath(1), driver_test::registrationText({100, 200, 300}));
        sandbox.writeFile("/tmp/nir.txt", nirCurveText());
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
            EXPECT_EQ(colour.fusion(), frame == 0 ? -1 : 0) << dumpLog();
            EXPECT_EQ(mono.fusion(), 0) << dumpLog();
        }
        if (cycle % 10 == 0) {
            driver_test::ConsoleArgs tune{"runParam", "1", "ep_delta", "40", "hf_zoom", "300", "w_nir", "0"};
            EXPECT_EQ(colour.console(&tune.record, cycle % 20 == 0 ? 1 : 0), 0);
        }
        EXPECT_EQ(colour.reload(), 0);
        EXPECT_EQ(colour.stop(), 0);
        EXPECT_EQ(mono.stop(), 0);
        EXPECT_EQ(colour.remove(), 0);
        EXPECT_EQ(mono.remove(), 0);
        EXPECT_EQ(colour.instance(), nullptr);
        EXPECT_EQ(mono.instance(), nullptr);

        const size_t fusionMessages = dsp.setsOfType(DSP_AEW_CFG_TYPE_FUSION).size();
        dsp.clearCalls();
        log.clear();
        return fusionMessages;
    }

    // The errors and warnings of the cycle, for a failure message.
    std::string dumpLog() const {
        std::string text;
        for (const auto& line : log.lines())
            if (line.level < 2) text += line.text;
        return text;
    }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
};

TEST_F(RobustLifecycle, LinkedPairCyclesGiveBackEveryBlock) {
    const int cycles = cyclesToRun();
    // Warm-up: from the first creation on, the library keeps the registration
    // arrays; every later creation replaces them one for one.
    runCycle(1);
    MemGuard guard;
    size_t fusionMessages = 0;
    for (int cycle = 0; cycle < cycles; ++cycle) {
        fusionMessages += runCycle(cycle);
        ASSERT_TRUE(guard.noLeak()) << "after cycle " << cycle;
        if (HasFailure()) break;
    }
    EXPECT_EQ(fusionMessages, static_cast<size_t>(cycles) * kFramesPerCycle * 2);
    std::printf("[ robust   ] %d lifecycle cycles of a linked pair: %lld blocks (%lld bytes) left, %llu allocations, "
                "%llu frees\n",
                cycles, static_cast<long long>(guard.liveBlocks()), static_cast<long long>(guard.liveBytes()),
                static_cast<unsigned long long>(guard.allocCalls()), static_cast<unsigned long long>(guard.freeCalls()));
    RecordProperty("cycles", cycles);
}

}  // namespace

// A linked colour/mono pair over its own parameter files and registration
// file, for the tests of the per-frame fusion update.
#pragma once

#include <vector>

#include "api/driver_host.h"

namespace driver_test {

inline constexpr Uint32 kColourPipe = 1;
inline constexpr Uint32 kMonoPipe = 2;

// Table variants: each pipe has its own file, with a day and a night table.
inline uint32_t tableVariant(Uint32 pipeId, bool blackWhite) { return pipeId * 100 + (blackWhite ? 1 : 0); }

class DriverFusion : public DriverTest {
protected:
    void SetUp() override { dsp.followAddresses(true); }

    // Each pipe reads its own parameter file (/var/tmp/<pipe>/...).
    void writeParamFiles() {
        for (Uint32 pipe : {kColourPipe, kMonoPipe}) {
            sandbox.writeFile(pipeParamFile(pipe),
                              ispdsp_test::ParamFileBuilder()
                                  .addTable(PARAM_MULTICOLOR, fusionTable(tableVariant(pipe, false)))
                                  .addTable(PARAM_BLACKWHITE, fusionTable(tableVariant(pipe, true)))
                                  .build());
        }
    }
    void writeRegistration(int place) {
        sandbox.writeFile(registrationPath(place), registrationText({100, 200, 300}));
    }
    // Creates, starts and links the pair, and chooses the current tables.
    void startPair() {
        if (colour.instance() == nullptr) { ASSERT_EQ(colour.createPipe(), 0); }
        ASSERT_EQ(mono.createPipe(), 0);
        ASSERT_EQ(colour.start(), 0);
        ASSERT_EQ(mono.start(), 0);
        linkPipes(colour, mono);
        ASSERT_EQ(colour.refresh(nullptr), 0);
        ASSERT_EQ(mono.refresh(nullptr), 0);
    }
    void TearDown() override {
        if (colour.instance() != nullptr) { EXPECT_EQ(colour.remove(), 0); }
        if (mono.instance() != nullptr) { EXPECT_EQ(mono.remove(), 0); }
    }
    // One fusion call on both pipes at the same zoom, colour first; returns the
    // IR zoom indexes sent.
    std::vector<Uint32> runZoomFrame(Int32 zoom) {
        colour.run().ptzUpdateParam.zoom = zoom;
        mono.run().ptzUpdateParam.zoom = zoom;
        dsp.clearCalls();
        colour.fusion();
        mono.fusion();
        std::vector<Uint32> indexes;
        for (const ispdsp_test::DspCall& call : dsp.setsOfType(DSP_AEW_CFG_TYPE_IR)) indexes.push_back(call.word(72) & 0xFFFF);
        return indexes;
    }

    HostPipe colour{kColourPipe};
    HostPipe mono{kMonoPipe};
};

}  // namespace driver_test

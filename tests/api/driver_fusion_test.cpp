// The per-frame fusion update behind OpSetFusion, end to end through the
// host's operation table: a linked colour/mono pair, the messages each call
// sends and their contents, the process-wide zoom and calibration state.
//
// The zoom and calibration change values live once per process and are never
// reset, so every test that looks at IR or CAL messages first drives them to a
// known state with a few priming frames and then checks what follows; the
// tests pass in any order and in one process or one process each.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "api/fusion_pair.h"
#include "support/mem_guard.h"

namespace {

using driver_test::DriverFusion;
using driver_test::HostPipe;
using driver_test::kColourPipe;
using driver_test::kMonoPipe;
using driver_test::tableVariant;
using ispdsp_test::LogKind;
using ispdsp_test::DspCall;
using ispdsp_test::ParamFileBuilder;

// What DRV_dspCalculateFusion gives for a table, a gain state and a switch
// (the exported calculation is the oracle; this checks the driver's wiring).
struct OwnRecord {
    DSP_FusionV2722 record{};
    std::array<Uint8, FUSION_NIR_POINTS> curve{};
};
void calculateOwn(const CFG_DspIspCfgParam& table, DRV_gainInterParam gain, Int32 pSwitch, OwnRecord& out) {
    static DSP_FusionCalculateParam input;  // 8.7 KB: kept off the test's stack
    std::memset(&input, 0, sizeof(input));
    std::memcpy(input.fusionParam, table.ispFusionParam, sizeof(input.fusionParam));
    input.gainInterParam = &gain;
    input.pSwitch = pSwitch;
    std::memset(&out.record, 0, sizeof(out.record));
    out.record.fusionParam.w_nir = out.curve.data();
    ASSERT_EQ(DRV_dspCalculateFusion(&input, &out.record), 0);
}

// The switch word of the FSSWITCH message for the standby switch values 0..3.
constexpr Uint32 kOutputMode[] = {DSP_OUTPUT_VIS, DSP_OUTPUT_FUSE, DSP_OUTPUT_NIR_CAL, DSP_OUTPUT_FUSE_INVALID};

// The refusals and partial failures of one pair, in order: no table chosen
// yet; the first call of a fresh pair combines with a pipe that has not
// calculated (the messages still go out, the -1 in the result); a failed
// read-back ORed into the result; no reference pipe after a start; an invalid
// fusion type (logged, nothing calculated or sent, result 0).
TEST_F(DriverFusion, RefusalsAndPartialFailures) {
    writeParamFiles();
    ASSERT_EQ(colour.createPipe(), 0);
    EXPECT_EQ(colour.fusion(), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispSetFusionParam", "Input NULL POINT curParam!\n"));
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_TRUE(dsp.gets().empty());
    startPair();
    const std::vector<Uint32> bothMessages = {DSP_AEW_CFG_TYPE_FSSWITCH, DSP_AEW_CFG_TYPE_FUSION};

    EXPECT_EQ(colour.fusion(), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_dspDoubleCalculateFusion", "Input NULL POINT w_nirMono!\n"));
    EXPECT_EQ(dsp.setTypes(), bothMessages);
    EXPECT_EQ(mono.fusion(), 0);
    EXPECT_EQ(colour.fusion(), 0);

    dsp.setGetResult(-1);
    dsp.clearCalls();
    EXPECT_EQ(mono.fusion(), -1);
    EXPECT_EQ(dsp.setTypes(), bothMessages);
    dsp.setGetResult(0);
    EXPECT_EQ(mono.fusion(), 0);

    ASSERT_EQ(colour.start(), 0);
    dsp.clearCalls();
    EXPECT_EQ(colour.fusion(), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispSetFusionParam", "Input NULL POINT otherIspHandle!\n"));
    EXPECT_EQ(dsp.gets().size(), 1u);  // the read-back happened before the check
    EXPECT_TRUE(dsp.sets().empty());

    DRV_RefPipeParams ref;
    std::memset(&ref, 0, sizeof(ref));
    ref.refXHndl = mono.xHndl();
    ref.fusionType = DRV_ISP_FUSION_MAX;
    ASSERT_EQ(colour.refPipe(&ref), 0);
    log.clear();
    dsp.clearCalls();
    EXPECT_EQ(colour.fusion(), 0);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispSetFusionParam", "error fusionType:2 \n"));
    EXPECT_EQ(dsp.gets().size(), 1u);
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_EQ(log.count("pswitch="), 0u);

    driver_test::linkPipes(colour, mono);
    EXPECT_EQ(colour.fusion(), 0);
}

// A linked pair over many frames (gain sweep, day/night, switch values, which
// pipe goes first, changing zoom without a registration file): each call sends
// the output switch with the mono pipe's standby switch, then the fusion
// message; the pipe's own record is the gain blend of its current table, and
// the fusion message carries the colour/mono combination (the exported
// calculations are the oracle: this checks the driver's wiring). No IR or CAL.
// After creation the frame loop takes no memory at all.
TEST_F(DriverFusion, LinkedPairOverManyFrames) {
    writeParamFiles();
    startPair();
    colour.fusion();  // the first call of a fresh pair lacks the mono record
    mono.fusion();
    HostPipe* pipes[2] = {&colour, &mono};
    OwnRecord own[2];  // each pipe's record as its last call left it
    for (int p = 0; p < 2; ++p) {
        calculateOwn(driver_test::fusionTable(tableVariant(p == 0 ? kColourPipe : kMonoPipe, false)),
                     pipes[p]->run().gainInterParam, 0, own[p]);
    }
    ispdsp_test::MemGuard guard;
    for (int frame = 0; frame < 90; ++frame) {
        SCOPED_TRACE("frame " + std::to_string(frame));
        const bool night = (frame / 15) % 2 == 1;
        const Uint8 monoSwitch = static_cast<Uint8>((frame / 5) % 4);
        for (int p = 0; p < 2; ++p) {
            DRV_gainInterParam& gain = pipes[p]->run().gainInterParam;
            gain.gainStartIndex = (frame + 5 * p) % 15;
            gain.gainEndIndex = gain.gainStartIndex + 1;
            gain.interCoff = static_cast<Float32>((frame + p) % 9) / 8.0f;
            pipes[p]->run().dncMode = night ? 0 : 1;
            pipes[p]->run().ptzUpdateParam.zoom = frame * 7;
            ASSERT_EQ(pipes[p]->publishSwitch(p == 1 ? monoSwitch : 9), 0);  // the colour pipe's is never used
            ASSERT_EQ(pipes[p]->gainFlags(), 0);
            ASSERT_EQ(pipes[p]->refresh(nullptr), 0);
        }
        for (int k = 0; k < 2; ++k) {
            const int p = ((frame / 3) + k) % 2;
            HostPipe& pipe = *pipes[p];
            calculateOwn(driver_test::fusionTable(tableVariant(p == 0 ? kColourPipe : kMonoPipe, night)),
                         pipe.run().gainInterParam, monoSwitch, own[p]);
            dsp.clearCalls();
            log.clear();
            ASSERT_EQ(pipe.fusion(), 0);
            ASSERT_EQ(dsp.setTypes(), (std::vector<Uint32>{DSP_AEW_CFG_TYPE_FSSWITCH, DSP_AEW_CFG_TYPE_FUSION}));
            ASSERT_EQ(dsp.gets().size(), 1u);
            EXPECT_EQ(dsp.sets()[0].word(8), kOutputMode[monoSwitch]);

            const DRV_aewIspHandleDSP* instance = pipe.instance();
            EXPECT_EQ(instance->pstFusionParam.pSwtich, monoSwitch);
            EXPECT_EQ(std::memcmp(&instance->pstFusionParam.fusionParam, &own[p].record.fusionParam,
                                  FUSION_PARAM_V2_7_22_SCALAR_BYTES), 0);
            EXPECT_EQ(instance->pstFusionParam.fusionParam.w_nir, instance->w_nir1);
            EXPECT_EQ(std::memcmp(instance->w_nir1, own[p].curve.data(), FUSION_NIR_POINTS), 0);

            OwnRecord combined;
            combined.record.fusionParam.w_nir = combined.curve.data();
            DSP_DoubleFusionCalculateParam pair = {instance->aewPipeId, &own[0].record, &own[1].record};
            ASSERT_EQ(DRV_dspDoubleCalculateFusion(&pair, &combined.record), 0);
            const DspCall& fusion = dsp.sets()[1];
            EXPECT_EQ(fusion.word(8), 0u);  // the combined record's switch is never written
            EXPECT_EQ(std::memcmp(fusion.bytes().data() + 72, &combined.record.fusionParam,
                                  FUSION_PARAM_V2_7_22_SCALAR_BYTES), 0);
            EXPECT_EQ(static_cast<const void*>(fusion.message.dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir),
                      static_cast<const void*>(instance->w_nir2));
            EXPECT_EQ(fusion.curve, std::vector<Uint8>(combined.curve.begin(), combined.curve.end()));
            EXPECT_EQ(log.texts(), std::vector<std::string>{"[DSP_DRV] pswitch=" + std::to_string(monoSwitch) + "\n"});
        }
    }
    EXPECT_EQ(guard.allocCalls(), 0u);
    EXPECT_EQ(guard.freeCalls(), 0u);
}

// IR message rules on a zoom list 100, 200, 300 (the lookups take no memory),
// after a table without fusion has sent and logged nothing. The calibration
// message goes out once per change of registerFlag in the whole process: one
// pipe sends it, and later instances with the same place send nothing.
TEST_F(DriverFusion, ZoomBandsAndCalibrationOncePerProcessAndPlace) {
    writeParamFiles();
    writeRegistration(1);
    startPair();
    ASSERT_EQ(colour.instance()->registerFlag, 1);
    for (HostPipe* pipe : {&colour, &mono}) pipe->instance()->dspCfgTables.curTable->ispFusionFlag = 0;
    log.clear();
    EXPECT_EQ(runZoomFrame(150), std::vector<Uint32>{});
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_TRUE(dsp.gets().empty());
    EXPECT_TRUE(log.lines().empty());
    for (HostPipe* pipe : {&colour, &mono}) pipe->instance()->dspCfgTables.curTable->ispFusionFlag = 1;

    ispdsp_test::MemGuard guard(/*expectNoLeakAtEnd=*/false);  // the pair is deleted under it
    runZoomFrame(140);
    runZoomFrame(150);  // index 1, whatever ran before; the process has now sent the calibration of place 1
    EXPECT_EQ(runZoomFrame(150), std::vector<Uint32>{});  // same zoom: no lookup, no message
    EXPECT_TRUE(dsp.setsOfType(DSP_AEW_CFG_TYPE_CAL).empty());
    EXPECT_EQ(runZoomFrame(200), std::vector<Uint32>{});  // 200 is still band 1
    EXPECT_EQ(runZoomFrame(50), std::vector<Uint32>{0});  // one message in total for the pair
    EXPECT_EQ(runZoomFrame(400), std::vector<Uint32>{});  // beyond the list: the index stays
    EXPECT_EQ(runZoomFrame(201), std::vector<Uint32>{2});
    EXPECT_EQ(runZoomFrame(-1), std::vector<Uint32>{0});
    EXPECT_EQ(guard.allocCalls(), 0u);
    EXPECT_EQ(colour.remove(), 0);
    EXPECT_EQ(mono.remove(), 0);

    sandbox.remove(driver_test::registrationPath(1));
    writeRegistration(2);
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        startPair();
        ASSERT_EQ(colour.instance()->registerFlag, 2);
        size_t calMessages = 0;
        for (int frame = 0; frame < 5; ++frame) {
            dsp.clearCalls();
            mono.fusion();  // the mono pipe goes first this time
            const auto monoCal = dsp.setsOfType(DSP_AEW_CFG_TYPE_CAL);
            if (!monoCal.empty()) {
                EXPECT_EQ(frame, 0);
                EXPECT_EQ(monoCal[0].calPath, "/var/calibration.txt");  // the message layout: dsp_message_test.cpp
            }
            colour.fusion();
            calMessages += dsp.setsOfType(DSP_AEW_CFG_TYPE_CAL).size();
        }
        // Round 0 changes the place from 1 to 2; round 1 finds 2 already sent.
        EXPECT_EQ(calMessages, round == 0 ? 1u : 0u);
        EXPECT_EQ(colour.remove(), 0);
        EXPECT_EQ(mono.remove(), 0);
    }
}

}  // namespace

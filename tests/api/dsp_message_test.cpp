// The DSP message functions through the public ABI: the message each Set
// builds, the control record, the results, the printed failures, the fusion
// read-back and the Gets that do nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <tuple>

#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"
#include "support/dsp_capture.h"

namespace {

using ispdsp_test::DspCall;
using ispdsp_test::DspCapture;
using ispdsp_test::DspPrint;
using ispdsp_test::isDspPrint;

constexpr size_t kVsfArgs = offsetof(DSP_AEW_CFG_S, vsfArgs);
constexpr size_t kDspArgs = offsetof(DSP_AEW_CFG_S, dspArgs);
constexpr Uint32 kHandleId = 5;

// A record's worth of nonzero bytes, large enough for every argument type.
struct alignas(8) RecordBytes {
    std::array<Uint8, 1024> bytes;
    RecordBytes() {
        for (size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<Uint8>(1 + i % 251);
        }
    }
    void* data() { return bytes.data(); }
};

using MessageFn = Int32 (*)(void* record, DRV_dspIspHandle* handle);

template <class Record, Int32 (*Fn)(Record*, DRV_dspIspHandle*)>
Int32 call(void* record, DRV_dspIspHandle* handle) {
    return Fn(static_cast<Record*>(record), handle);
}

// ---- Rules common to every Set function, the stage payloads and the no-op Gets ----

struct SetCase {
    const char* function;
    MessageFn set;
    MessageFn get;  // the stage's Get, which does nothing; null where the stage has none or a real one
    Uint32 type;
    bool nIdFromHandle;
    bool returnsCallbackResult;
    size_t payloadOffset, payloadBytes;  // the record is the payload block (0 bytes: another layout)
};

#define SET_CASE(Stage, Record, type, nId, callback) \
    SetCase{"DRV_dspOpSet" #Stage, &call<Record, DRV_dspOpSet##Stage>, nullptr, type, nId, callback, 0, 0}
#define STAGE_CASE(Stage, Record, type, callback, offset) \
    SetCase{"DRV_dspOpSet" #Stage, &call<Record, DRV_dspOpSet##Stage>, &call<Record, DRV_dspOpGet##Stage>, type, \
            true, callback, offset, sizeof(Record)}

const SetCase kSetCases[] = {
    STAGE_CASE(Lsm, DSP_LsmV112, DSP_AEW_CFG_TYPE_LSM, true, kDspArgs),
    SET_CASE(Fusion, DSP_FusionV2722, DSP_AEW_CFG_TYPE_FUSION, true, false),
    SET_CASE(Ir, DSP_IrParam, DSP_AEW_CFG_TYPE_IR, false, false),
    SET_CASE(Cal, DSP_IrParam, DSP_AEW_CFG_TYPE_CAL, false, false),
    SET_CASE(FSSWITCH, DSP_FusionV2722, DSP_AEW_CFG_TYPE_FSSWITCH, false, false),
    STAGE_CASE(Lae, DSP_LaeV209, DSP_AEW_CFG_TYPE_LAE, true, kDspArgs),
    STAGE_CASE(Sbm3d, DSP_Sbm3dV113, DSP_AEW_CFG_TYPE_SBM3D, true, kDspArgs),
    STAGE_CASE(Yuv2yuv, DSP_Yuv2yuvV100, DSP_AEW_CFG_TYPE_CSC, true, kVsfArgs),
    STAGE_CASE(FusionPlate, DSP_FusionPlateV1001, DSP_AEW_CFG_TYPE_FUSION_PLATE, true, kDspArgs),
    STAGE_CASE(Fg2c, DSP_Fg2cV102, DSP_AEW_CFG_TYPE_FG2C, true, kDspArgs),
    STAGE_CASE(Lle, DSP_LleV203, DSP_AEW_CFG_TYPE_LLE, false, kDspArgs),
    STAGE_CASE(Ylwdr, DSP_YlwdrV102, DSP_AEW_CFG_TYPE_YLWDR, false, kDspArgs),
    STAGE_CASE(Y2d, DSP_Y2dV5118, DSP_AEW_CFG_TYPE_Y2D, false, kDspArgs),
    STAGE_CASE(Dlae, DSP_DlaeV101, DSP_AEW_CFG_TYPE_DLAE, false, kDspArgs),
    STAGE_CASE(Dlcfa, DSP_DlcfaV101, DSP_AEW_CFG_TYPE_DLCFA, false, kDspArgs),
    STAGE_CASE(Sade, DSP_SadeV113, DSP_AEW_CFG_TYPE_SADE, false, kDspArgs),
};

class SetRules : public testing::TestWithParam<SetCase> {};

// One message of its type with the table's id; a failing callback's result is
// returned only where the table says so, and never retried. A stage record is
// the payload block: copied whole at its offset, nothing else written, and
// nothing of a previous send left behind.
TEST_P(SetRules, SendsOneMessageOfItsTypeOrRefusesAndSendsNothing) {
    const SetCase& c = GetParam();
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    RecordBytes record, zero;
    zero.bytes.fill(0);

    EXPECT_EQ(c.set(record.data(), &handle), 0);
    ASSERT_EQ(dsp.sets().size(), 1u);
    EXPECT_TRUE(dsp.gets().empty());
    const DspCall& sent = dsp.sets()[0];
    EXPECT_EQ(sent.type(), c.type);
    EXPECT_EQ(sent.message.res, 0u);
    EXPECT_EQ(sent.ctrl.nId, c.nIdFromHandle ? kHandleId : 0u);
    EXPECT_TRUE(sent.ctrlReservedZero());
    if (c.payloadBytes != 0) {
        EXPECT_TRUE(std::equal(record.bytes.begin(), record.bytes.begin() + c.payloadBytes,
                               sent.bytes().begin() + c.payloadOffset));
        EXPECT_EQ(sent.firstNonZeroExcept({{c.payloadOffset, c.payloadOffset + c.payloadBytes}}), std::nullopt);
        ASSERT_EQ(c.set(zero.data(), &handle), 0);
        EXPECT_EQ(dsp.sets().back().firstNonZeroExcept({}), std::nullopt);
    }

    dsp.setSetResult(-3);
    const size_t sends = dsp.sets().size();
    EXPECT_EQ(c.set(record.data(), &handle), c.returnsCallbackResult ? -3 : 0);
    EXPECT_EQ(dsp.sets().size(), sends + 1);

    // Null param is reported before a null handle; a missing set callback warns
    // and fails, a missing get callback does not matter; the stage's Get does
    // nothing. None of them sends or writes anything.
    dsp.setSetResult(0);
    dsp.clearCalls();
    const RecordBytes before = record;
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(nullptr, nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, c.function, "param"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, c.function, "dspOps"));
    EXPECT_TRUE(dsp.sets().empty());

    handle.dspIspCfgOps.OpGetDspConfig = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), &handle), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    handle.dspIspCfgOps.OpSetDspConfig = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), &handle), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::SetMissing, c.function));
    EXPECT_EQ(dsp.sets().size(), 1u);

    if (c.get != nullptr) {
        handle = dsp.handle(kHandleId);
        testing::internal::CaptureStdout();
        EXPECT_EQ(c.get(nullptr, nullptr), 0);
        EXPECT_EQ(c.get(record.data(), &handle), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    }
    EXPECT_EQ(record.bytes, before.bytes);
    EXPECT_EQ(dsp.sets().size(), 1u);
    EXPECT_TRUE(dsp.gets().empty());
}

INSTANTIATE_TEST_SUITE_P(AllSetFunctions, SetRules, testing::ValuesIn(kSetCases),
                         [](const testing::TestParamInfo<SetCase>& info) { return std::string(info.param.function); });

// ---- Fusion, output switch, IR and calibration ----

struct FusionRecord {
    DSP_FusionV2722 record;
    std::array<Uint8, FUSION_NIR_POINTS> curve;

    explicit FusionRecord(UINT32 fusionSwitch) {
        std::memset(&record, 0xA5, sizeof record);
        record.pSwtich = fusionSwitch;
        for (size_t i = 0; i < curve.size(); ++i) {
            curve[i] = static_cast<Uint8>(i);
        }
        record.fusionParam.w_nir = curve.data();
    }
};

// The output switch message maps the switch to an output mode; the fusion
// message carries it unmapped, with the whole 2.7.22 block, version 0. IR sends
// the zoom index's low 16 bits, CAL the address of the path at 88: nothing else
// in either, and their callback's result is ignored.
TEST(FusionIrCalMessages, EachCarriesItsFieldsAndNothingElse) {
    using Case = std::tuple<UINT32, Uint32, Int32, Uint16>;  // switch, output mode, zoom index, its low 16 bits
    const Case cases[] = {{0, DSP_OUTPUT_VIS, 0, 0},          {1, DSP_OUTPUT_FUSE, 3, 3},
                          {2, DSP_OUTPUT_NIR_CAL, 65537, 1},  {3, DSP_OUTPUT_FUSE_INVALID, -1, 65535},
                          {7, DSP_OUTPUT_FUSE_INVALID, 0x12345678, 0x5678}, {0xFFFFFFFFu, DSP_OUTPUT_FUSE_INVALID, 0, 0}};
    for (const auto& [fusionSwitch, outputMode, zoomIndex, sent16] : cases) {
        SCOPED_TRACE(testing::Message() << "switch " << fusionSwitch << ", zoom index " << zoomIndex);
        DspCapture dsp;
        dsp.followAddresses(true);
        DRV_dspIspHandle handle = dsp.handle(kHandleId);
        FusionRecord fusion(fusionSwitch);
        ASSERT_EQ(DRV_dspOpSetFSSWITCH(&fusion.record, &handle), 0);
        ASSERT_EQ(DRV_dspOpSetFusion(&fusion.record, &handle), 0);
        EXPECT_EQ(dsp.sets().at(0).word(8), outputMode);
        EXPECT_EQ(dsp.sets().at(0).firstNonZeroExcept({{8, 12}}), std::nullopt);
        const DspCall& sent = dsp.sets().at(1);  // type and id: SetRules
        EXPECT_EQ(sent.word(8), fusionSwitch);
        EXPECT_EQ(std::memcmp(sent.bytes().data() + 72, &fusion.record.fusionParam, 64), 0);
        void* curveAddress = nullptr;
        std::memcpy(&curveAddress, sent.bytes().data() + 112, sizeof curveAddress);
        EXPECT_EQ(curveAddress, fusion.curve.data());
        EXPECT_EQ(sent.message.dspArgs.stFusionArgs.version, 0);
        EXPECT_EQ(sent.word(4160), 0u);
        EXPECT_EQ(sent.firstNonZeroExcept({{8, 12}, {72, 136}}), std::nullopt);  // 136..4167 are 0
        EXPECT_TRUE(std::equal(sent.curve.begin(), sent.curve.end(), fusion.curve.begin(), fusion.curve.end()));

        DSP_IrParam ir;
        std::memset(&ir, 0x7E, sizeof ir);
        ir.zoomIndex = zoomIndex;
        std::strcpy(ir.cfg_path, "/var/tmp/calibration.txt");
        dsp.setSetResult(-9);
        ASSERT_EQ(DRV_dspOpSetIr(&ir, &handle), 0);
        ASSERT_EQ(DRV_dspOpSetCal(&ir, &handle), 0);
        EXPECT_EQ(dsp.sets().at(2).message.dspArgs.irCalPramArgs.irParam.zoomIndex, sent16);
        EXPECT_EQ(dsp.sets().at(2).firstNonZeroExcept({{72, 74}}), std::nullopt);
        const DspCall& cal = dsp.sets().at(3);
        char* address = nullptr;
        std::memcpy(&address, cal.bytes().data() + 88, sizeof address);
        EXPECT_EQ(address, ir.cfg_path);
        EXPECT_EQ(cal.calPath, "/var/tmp/calibration.txt");
        EXPECT_EQ(cal.firstNonZeroExcept({{88, 96}}), std::nullopt);
    }
}

// ---- Fusion read-back ----

// Asks for type 1 with the handle's id in a cleared message and copies only the
// scalars back. A failing callback's result is printed and returned, a missing
// one warns and fails, a null argument is reported (not part of the documented
// read-back, which checks none) instead of crashing the host: the record stays.
TEST(FusionGet, CopiesOnlyTheScalarsAndOnlyOnSuccess) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    FusionRecord fusion(2);
    const DSP_FusionV2722 before = fusion.record;
    FUSION_PARAM_V2_7_22 reply;
    for (size_t i = 0; i < sizeof reply; ++i) reinterpret_cast<Uint8*>(&reply)[i] = static_cast<Uint8>(0x30 + i);
    dsp.setGetFusionReply(reply);  // written into the message whatever the result

    struct Case {
        Int32 result;
        bool withCallback, withRecord, withHandle;
        DspPrint print;
        const char* argument;
    };
    const Case failures[] = {{-7, true, true, true, DspPrint::GetError, ""},
                             {-1, false, true, true, DspPrint::GetMissing, ""},
                             {-1, true, false, true, DspPrint::NullPointer, "param"},
                             {-1, true, true, false, DspPrint::NullPointer, "dspOps"}};
    for (const Case& c : failures) {
        dsp.setGetResult(c.result);
        handle.dspIspCfgOps.OpGetDspConfig = c.withCallback ? DspCapture::getCallback() : nullptr;
        testing::internal::CaptureStdout();
        EXPECT_EQ(DRV_dspOpGetFusion(c.withRecord ? &fusion.record : nullptr, c.withHandle ? &handle : nullptr),
                  c.result);
        EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), c.print, "DRV_dspOpGetFusion", c.argument));
        EXPECT_EQ(std::memcmp(&fusion.record, &before, sizeof before), 0);
    }
    EXPECT_EQ(dsp.gets().size(), 1u);

    dsp.setGetResult(0);
    dsp.clearCalls();
    handle.dspIspCfgOps.OpGetDspConfig = DspCapture::getCallback();
    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(&fusion.record, &handle), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    const auto* got = reinterpret_cast<const Uint8*>(&fusion.record.fusionParam);
    const auto* old = reinterpret_cast<const Uint8*>(&before.fusionParam);
    EXPECT_EQ(std::memcmp(got, &reply, 33), 0);
    EXPECT_EQ(std::memcmp(got + 33, old + 33, 31), 0);  // reserved, w_nir, reserved
    EXPECT_EQ(fusion.record.pSwtich, 2u);
    EXPECT_TRUE(dsp.sets().empty());
    ASSERT_EQ(dsp.gets().size(), 1u);
    const DspCall& asked = dsp.gets()[0];
    EXPECT_EQ(asked.type(), DSP_AEW_CFG_TYPE_FUSION);
    EXPECT_EQ(asked.ctrl.nId, kHandleId);
    EXPECT_TRUE(asked.ctrlReservedZero());
    EXPECT_EQ(asked.firstNonZeroExcept({}), std::nullopt);
}

}  // namespace

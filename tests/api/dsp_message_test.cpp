// The DSP message functions through the public ABI: the message each Set
// builds, the control record, the results, the printed failures, the fusion
// read-back and the Gets that do nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

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

using SetFn = Int32 (*)(void* record, DRV_dspIspHandle* handle);
using GetFn = Int32 (*)(void* record, DRV_dspIspHandle* handle);

template <class Record, Int32 (*Fn)(Record*, DRV_dspIspHandle*)>
Int32 call(void* record, DRV_dspIspHandle* handle) {
    return Fn(static_cast<Record*>(record), handle);
}

// ---- Rules common to every Set function ----

struct SetCase {
    const char* function;
    SetFn set;
    Uint32 type;
    bool nIdFromHandle;
    bool returnsCallbackResult;
};

#define SET_CASE(fn, Record, type, nId, callback) SetCase{#fn, &call<Record, fn>, type, nId, callback}

const SetCase kSetCases[] = {
    SET_CASE(DRV_dspOpSetLsm, DSP_LsmV112, DSP_AEW_CFG_TYPE_LSM, true, true),
    SET_CASE(DRV_dspOpSetFusion, DSP_FusionV2722, DSP_AEW_CFG_TYPE_FUSION, true, false),
    SET_CASE(DRV_dspOpSetIr, DSP_IrParam, DSP_AEW_CFG_TYPE_IR, false, false),
    SET_CASE(DRV_dspOpSetCal, DSP_IrParam, DSP_AEW_CFG_TYPE_CAL, false, false),
    SET_CASE(DRV_dspOpSetFSSWITCH, DSP_FusionV2722, DSP_AEW_CFG_TYPE_FSSWITCH, false, false),
    SET_CASE(DRV_dspOpSetLae, DSP_LaeV209, DSP_AEW_CFG_TYPE_LAE, true, true),
    SET_CASE(DRV_dspOpSetSbm3d, DSP_Sbm3dV113, DSP_AEW_CFG_TYPE_SBM3D, true, true),
    SET_CASE(DRV_dspOpSetYuv2yuv, DSP_Yuv2yuvV100, DSP_AEW_CFG_TYPE_CSC, true, true),
    SET_CASE(DRV_dspOpSetFusionPlate, DSP_FusionPlateV1001, DSP_AEW_CFG_TYPE_FUSION_PLATE, true, true),
    SET_CASE(DRV_dspOpSetFg2c, DSP_Fg2cV102, DSP_AEW_CFG_TYPE_FG2C, true, true),
    SET_CASE(DRV_dspOpSetLle, DSP_LleV203, DSP_AEW_CFG_TYPE_LLE, true, false),
    SET_CASE(DRV_dspOpSetYlwdr, DSP_YlwdrV102, DSP_AEW_CFG_TYPE_YLWDR, true, false),
    SET_CASE(DRV_dspOpSetY2d, DSP_Y2dV5118, DSP_AEW_CFG_TYPE_Y2D, true, false),
    SET_CASE(DRV_dspOpSetDlae, DSP_DlaeV101, DSP_AEW_CFG_TYPE_DLAE, true, false),
    SET_CASE(DRV_dspOpSetDlcfa, DSP_DlcfaV101, DSP_AEW_CFG_TYPE_DLCFA, true, false),
    SET_CASE(DRV_dspOpSetSade, DSP_SadeV113, DSP_AEW_CFG_TYPE_SADE, true, false),
};

class SetRules : public testing::TestWithParam<SetCase> {};

// Sends one message of its type with the table's id; a failing callback's result is returned
// only where the table says so, and never retried.
TEST_P(SetRules, SendsOneMessageAndReturnsTheCallbackResultWhereTheTableSaysSo) {
    const SetCase& c = GetParam();
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    RecordBytes record;

    EXPECT_EQ(c.set(record.data(), &handle), 0);
    ASSERT_EQ(dsp.sets().size(), 1u);
    EXPECT_TRUE(dsp.gets().empty());
    const DspCall& sent = dsp.sets()[0];
    EXPECT_EQ(sent.type(), c.type);
    EXPECT_EQ(sent.message.res, 0u);
    EXPECT_EQ(sent.ctrl.nId, c.nIdFromHandle ? kHandleId : 0u);
    EXPECT_TRUE(sent.ctrlReservedZero());

    dsp.setSetResult(-3);
    EXPECT_EQ(c.set(record.data(), &handle), c.returnsCallbackResult ? -3 : 0);
    EXPECT_EQ(dsp.sets().size(), 2u);
}

// Null param is reported before a null handle; a null handle alone sends nothing.
TEST_P(SetRules, NullArgumentsAreReportedAndNothingIsSent) {
    const SetCase& c = GetParam();
    DspCapture dsp;
    RecordBytes record;
    const RecordBytes before = record;

    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(nullptr, nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, c.function, "param"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, c.function, "dspOps"));
    EXPECT_EQ(record.bytes, before.bytes);
    EXPECT_TRUE(dsp.sets().empty());
}

// A missing set callback warns and fails; a missing get callback does not matter.
TEST_P(SetRules, OnlyTheSetCallbackIsRequired) {
    const SetCase& c = GetParam();
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    RecordBytes record;

    handle.dspIspCfgOps.OpGetDspConfig = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), &handle), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(dsp.sets().size(), 1u);

    handle.dspIspCfgOps.OpSetDspConfig = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(c.set(record.data(), &handle), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::SetMissing, c.function));
    EXPECT_EQ(dsp.sets().size(), 1u);
    EXPECT_TRUE(dsp.gets().empty());
}

INSTANTIATE_TEST_SUITE_P(AllSetFunctions, SetRules, testing::ValuesIn(kSetCases),
                         [](const testing::TestParamInfo<SetCase>& info) { return std::string(info.param.function); });

// ---- Stages whose record is the payload: copied whole, nothing else written ----

struct PayloadCase {
    const char* function;
    SetFn set;
    size_t recordBytes;
    size_t messageOffset;
    size_t payloadBytes;
};

#define PAYLOAD_CASE(fn, Record, offset, bytes) \
    PayloadCase{#fn, &call<Record, fn>, sizeof(Record), offset, bytes}

const PayloadCase kPayloadCases[] = {
    PAYLOAD_CASE(DRV_dspOpSetLsm, DSP_LsmV112, kDspArgs, 30),
    PAYLOAD_CASE(DRV_dspOpSetLae, DSP_LaeV209, kDspArgs, 116),
    PAYLOAD_CASE(DRV_dspOpSetSbm3d, DSP_Sbm3dV113, kDspArgs, 40),
    PAYLOAD_CASE(DRV_dspOpSetYuv2yuv, DSP_Yuv2yuvV100, kVsfArgs, 4),
    PAYLOAD_CASE(DRV_dspOpSetFusionPlate, DSP_FusionPlateV1001, kDspArgs, 132),
    PAYLOAD_CASE(DRV_dspOpSetFg2c, DSP_Fg2cV102, kDspArgs, 32),
    PAYLOAD_CASE(DRV_dspOpSetLle, DSP_LleV203, kDspArgs, 32),
    PAYLOAD_CASE(DRV_dspOpSetYlwdr, DSP_YlwdrV102, kDspArgs, 56),
    PAYLOAD_CASE(DRV_dspOpSetY2d, DSP_Y2dV5118, kDspArgs, 44),
    PAYLOAD_CASE(DRV_dspOpSetDlae, DSP_DlaeV101, kDspArgs, 32),
    PAYLOAD_CASE(DRV_dspOpSetDlcfa, DSP_DlcfaV101, kDspArgs, 32),
    PAYLOAD_CASE(DRV_dspOpSetSade, DSP_SadeV113, kDspArgs, 12),
};

class StagePayload : public testing::TestWithParam<PayloadCase> {};

// The record is the payload block: copied whole at its offset, nothing else written, and
// nothing of a previous send left behind.
TEST_P(StagePayload, CarriesTheRecordBytesAtTheirOffsetAndZeroElsewhere) {
    const PayloadCase& c = GetParam();
    EXPECT_EQ(c.recordBytes, c.payloadBytes);
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    RecordBytes record;
    RecordBytes zero;
    zero.bytes.fill(0);

    ASSERT_EQ(c.set(record.data(), &handle), 0);
    ASSERT_EQ(c.set(zero.data(), &handle), 0);
    ASSERT_EQ(dsp.sets().size(), 2u);
    const DspCall& sent = dsp.sets()[0];
    const auto bytes = sent.bytes();
    for (size_t i = 0; i < c.payloadBytes; ++i) {
        ASSERT_EQ(bytes[c.messageOffset + i], record.bytes[i]) << "payload byte " << i;
    }
    EXPECT_EQ(sent.firstNonZeroExcept({{c.messageOffset, c.messageOffset + c.payloadBytes}}), std::nullopt);
    EXPECT_EQ(dsp.sets()[1].firstNonZeroExcept({}), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(EnhancementStages, StagePayload, testing::ValuesIn(kPayloadCases),
                         [](const testing::TestParamInfo<PayloadCase>& info) {
                             return std::string(info.param.function);
                         });

// ---- The Gets that never talk to the host ----

struct NoOpGetCase {
    const char* function;
    GetFn get;
};

#define GET_CASE(fn, Record) NoOpGetCase{#fn, &call<Record, fn>}

const NoOpGetCase kNoOpGets[] = {
    GET_CASE(DRV_dspOpGetLsm, DSP_LsmV112),         GET_CASE(DRV_dspOpGetLae, DSP_LaeV209),
    GET_CASE(DRV_dspOpGetSbm3d, DSP_Sbm3dV113),     GET_CASE(DRV_dspOpGetYuv2yuv, DSP_Yuv2yuvV100),
    GET_CASE(DRV_dspOpGetFusionPlate, DSP_FusionPlateV1001), GET_CASE(DRV_dspOpGetFg2c, DSP_Fg2cV102),
    GET_CASE(DRV_dspOpGetLle, DSP_LleV203),         GET_CASE(DRV_dspOpGetYlwdr, DSP_YlwdrV102),
    GET_CASE(DRV_dspOpGetY2d, DSP_Y2dV5118),        GET_CASE(DRV_dspOpGetDlae, DSP_DlaeV101),
    GET_CASE(DRV_dspOpGetDlcfa, DSP_DlcfaV101),     GET_CASE(DRV_dspOpGetSade, DSP_SadeV113),
};

class NoOpGet : public testing::TestWithParam<NoOpGetCase> {};

TEST_P(NoOpGet, TouchesNeitherRecordNorHostAndAcceptsNulls) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    RecordBytes record;
    const RecordBytes before = record;

    testing::internal::CaptureStdout();
    EXPECT_EQ(GetParam().get(nullptr, nullptr), 0);
    EXPECT_EQ(GetParam().get(record.data(), &handle), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(record.bytes, before.bytes);
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_TRUE(dsp.gets().empty());
}

INSTANTIATE_TEST_SUITE_P(EnhancementStages, NoOpGet, testing::ValuesIn(kNoOpGets),
                         [](const testing::TestParamInfo<NoOpGetCase>& info) {
                             return std::string(info.param.function);
                         });

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

struct SwitchCase {
    UINT32 fusionSwitch;
    Uint32 outputMode;
};

class FusionSwitch : public testing::TestWithParam<SwitchCase> {};

// The output switch message maps the switch to an output mode; the fusion message carries it unmapped.
TEST_P(FusionSwitch, FsSwitchSendsTheOutputModeWithIdZeroAndFusionTheRawSwitch) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    FusionRecord fusion(GetParam().fusionSwitch);

    ASSERT_EQ(DRV_dspOpSetFSSWITCH(&fusion.record, &handle), 0);
    ASSERT_EQ(DRV_dspOpSetFusion(&fusion.record, &handle), 0);
    const DspCall& sent = dsp.sets().at(0);
    EXPECT_EQ(sent.type(), DSP_AEW_CFG_TYPE_FSSWITCH);
    EXPECT_EQ(sent.word(8), GetParam().outputMode);
    EXPECT_EQ(sent.ctrl.nId, 0u);
    EXPECT_EQ(sent.firstNonZeroExcept({{8, 12}}), std::nullopt);
    EXPECT_EQ(dsp.sets().at(1).word(8), GetParam().fusionSwitch);
}

INSTANTIATE_TEST_SUITE_P(Switches, FusionSwitch,
                         testing::Values(SwitchCase{0, DSP_OUTPUT_VIS}, SwitchCase{1, DSP_OUTPUT_FUSE},
                                         SwitchCase{2, DSP_OUTPUT_NIR_CAL}, SwitchCase{3, DSP_OUTPUT_FUSE_INVALID},
                                         SwitchCase{7, DSP_OUTPUT_FUSE_INVALID},
                                         SwitchCase{0xFFFFFFFFu, DSP_OUTPUT_FUSE_INVALID}),
                         [](const testing::TestParamInfo<SwitchCase>& info) { return "Switch" + std::to_string(info.param.fusionSwitch); });

TEST(FusionMessage, CarriesTheWhole2722BlockWithVersionZero) {
    DspCapture dsp;
    dsp.followAddresses(true);
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    FusionRecord fusion(1);

    ASSERT_EQ(DRV_dspOpSetFusion(&fusion.record, &handle), 0);
    const DspCall& sent = dsp.sets().at(0);
    EXPECT_EQ(sent.type(), DSP_AEW_CFG_TYPE_FUSION);
    EXPECT_EQ(sent.ctrl.nId, kHandleId);
    EXPECT_EQ(std::memcmp(sent.bytes().data() + 72, &fusion.record.fusionParam, 64), 0);
    void* curveAddress = nullptr;
    std::memcpy(&curveAddress, sent.bytes().data() + 112, sizeof curveAddress);
    EXPECT_EQ(curveAddress, fusion.curve.data());
    EXPECT_EQ(sent.message.dspArgs.stFusionArgs.version, 0);
    EXPECT_EQ(sent.word(4160), 0u);
    EXPECT_EQ(sent.firstNonZeroExcept({{8, 12}, {72, 136}}), std::nullopt);  // 136..4167 are 0
    ASSERT_EQ(sent.curve.size(), fusion.curve.size());
    EXPECT_TRUE(std::equal(sent.curve.begin(), sent.curve.end(), fusion.curve.begin()));
}

struct ZoomCase {
    Int32 zoomIndex;
    Uint16 sent;
};

class IrMessage : public testing::TestWithParam<ZoomCase> {};

TEST_P(IrMessage, SendsTheLow16BitsWithIdZero) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    DSP_IrParam ir;
    std::memset(&ir, 0x7E, sizeof ir);
    ir.zoomIndex = GetParam().zoomIndex;

    dsp.setSetResult(-9);  // ignored
    ASSERT_EQ(DRV_dspOpSetIr(&ir, &handle), 0);
    const DspCall& sent = dsp.sets().at(0);
    EXPECT_EQ(sent.type(), DSP_AEW_CFG_TYPE_IR);
    EXPECT_EQ(sent.message.dspArgs.irCalPramArgs.irParam.zoomIndex, GetParam().sent);
    EXPECT_EQ(sent.ctrl.nId, 0u);
    EXPECT_EQ(sent.firstNonZeroExcept({{72, 74}}), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(ZoomBands, IrMessage,
                         testing::Values(ZoomCase{0, 0}, ZoomCase{3, 3}, ZoomCase{65537, 1}, ZoomCase{-1, 65535},
                                         ZoomCase{0x12345678, 0x5678}),
                         [](const testing::TestParamInfo<ZoomCase>& info) { return "Sends" + std::to_string(info.param.sent); });

TEST(CalMessage, CarriesTheAddressOfThePathAt88AndNothingElse) {
    DspCapture dsp;
    dsp.followAddresses(true);
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    DSP_IrParam ir;
    std::memset(&ir, 0, sizeof ir);
    ir.zoomIndex = 4;
    std::strcpy(ir.cfg_path, "/var/tmp/calibration.txt");

    ASSERT_EQ(DRV_dspOpSetCal(&ir, &handle), 0);
    const DspCall& sent = dsp.sets().at(0);
    EXPECT_EQ(sent.type(), DSP_AEW_CFG_TYPE_CAL);
    EXPECT_EQ(sent.ctrl.nId, 0u);
    char* address = nullptr;
    std::memcpy(&address, sent.bytes().data() + 88, sizeof address);
    EXPECT_EQ(address, ir.cfg_path);
    EXPECT_EQ(sent.calPath, "/var/tmp/calibration.txt");
    EXPECT_EQ(sent.firstNonZeroExcept({{88, 96}}), std::nullopt);
}

// ---- Fusion read-back ----

class FusionGet : public testing::Test {
protected:
    FusionGet() : fusion(2), before(fusion.record) {
        for (size_t i = 0; i < sizeof reply; ++i) {
            reinterpret_cast<Uint8*>(&reply)[i] = static_cast<Uint8>(0x30 + i);
        }
        dsp.setGetFusionReply(reply);
    }

    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(kHandleId);
    FusionRecord fusion;
    DSP_FusionV2722 before;
    FUSION_PARAM_V2_7_22 reply;
};

// Asks for type 1 with the handle's id in a cleared message and copies only the scalars back.
TEST_F(FusionGet, CopiesOnlyTheScalarsOnSuccess) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(&fusion.record, &handle), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    const auto* got = reinterpret_cast<const Uint8*>(&fusion.record.fusionParam);
    const auto* old = reinterpret_cast<const Uint8*>(&before.fusionParam);
    EXPECT_EQ(std::memcmp(got, &reply, 33), 0);
    EXPECT_EQ(std::memcmp(got + 33, old + 33, 31), 0);  // reserved, w_nir, reserved
    EXPECT_EQ(fusion.record.pSwtich, 2u);
    EXPECT_EQ(fusion.record.fusionParam.w_nir, fusion.curve.data());
    EXPECT_TRUE(dsp.sets().empty());
    ASSERT_EQ(dsp.gets().size(), 1u);
    const DspCall& asked = dsp.gets()[0];
    EXPECT_EQ(asked.type(), DSP_AEW_CFG_TYPE_FUSION);
    EXPECT_EQ(asked.ctrl.nId, kHandleId);
    EXPECT_TRUE(asked.ctrlReservedZero());
    EXPECT_EQ(asked.firstNonZeroExcept({}), std::nullopt);
}

// A failing callback's result is printed and returned; a missing one warns and fails. Either
// way the record stays as it was.
TEST_F(FusionGet, FailingOrMissingCallbackLeavesTheRecord) {
    dsp.setGetResult(-7);  // the reply is still written into the message
    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(&fusion.record, &handle), -7);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::GetError, "DRV_dspOpGetFusion"));
    EXPECT_EQ(std::memcmp(&fusion.record, &before, sizeof before), 0);

    handle.dspIspCfgOps.OpGetDspConfig = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(&fusion.record, &handle), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::GetMissing, "DRV_dspOpGetFusion"));
    EXPECT_EQ(std::memcmp(&fusion.record, &before, sizeof before), 0);
    EXPECT_EQ(dsp.gets().size(), 1u);
}

// Not part of the documented read-back, which checks no argument: a null one
// is reported like the Sets' and fails instead of crashing the host.
TEST_F(FusionGet, NullArgumentsAreReportedInsteadOfCrashing) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(nullptr, nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, "DRV_dspOpGetFusion",
                           "param"));

    testing::internal::CaptureStdout();
    EXPECT_EQ(DRV_dspOpGetFusion(&fusion.record, nullptr), -1);
    EXPECT_TRUE(isDspPrint(testing::internal::GetCapturedStdout(), DspPrint::NullPointer, "DRV_dspOpGetFusion",
                           "dspOps"));
    EXPECT_EQ(std::memcmp(&fusion.record, &before, sizeof before), 0);
    EXPECT_TRUE(dsp.gets().empty());
}

}  // namespace

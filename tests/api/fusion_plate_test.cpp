// The fusion plate stage: weight caps of the calculation, the debug setter and
// print with their log lines, and the weight's way into the FUSION_PLATE message.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "ispdsp/fusion.h"
#include "support/dsp_capture.h"
#include "support/log_capture.h"

namespace {

using ispdsp_test::DspCapture;
using ispdsp_test::LogCapture;

constexpr int32_t kInfoLevel = 2, kInfoCategory = 2;
constexpr int32_t kErrorLevel = 0, kErrorCategory = 1;

// True when `lines` is one error line of `function` naming `argument` (any source line).
testing::AssertionResult isNullError(const LogCapture& log, const std::string& function, const std::string& argument) {
    const auto lines = log.lines();
    if (lines.size() != 1) {
        return testing::AssertionFailure() << lines.size() << " log lines";
    }
    const std::string head = "[DSP_DRV] ERROR  (" + function + "|";
    const std::string tail = "): Input NULL POINT " + argument + "!\n";
    const std::string& text = lines[0].text;
    const bool framed = lines[0].level == kErrorLevel && lines[0].category == kErrorCategory &&
                        text.size() > head.size() + tail.size() && text.starts_with(head) && text.ends_with(tail) &&
                        text.find_first_not_of("0123456789", head.size()) == text.size() - tail.size();
    if (!framed) {
        return testing::AssertionFailure() << "logged: " << testing::PrintToString(text);
    }
    return testing::AssertionSuccess();
}

struct WeightCase {
    Int32 in;
    Int32 out;
};

class FusionPlateWeight : public testing::TestWithParam<WeightCase> {};

TEST_P(FusionPlateWeight, CalculationHoldsTheWeightToOneThroughHundred) {
    LogCapture log;
    DSP_FusionPlateCalculateParam input;
    input.fusionPlateParam.fuse_weight = GetParam().in;
    DSP_FusionPlateV1001 payload;
    std::memset(&payload, 0x5A, sizeof payload);

    ASSERT_EQ(DRV_dspCalculateFusionPlate(&input, &payload), 0);
    EXPECT_EQ(payload.fusionPlateParam.fuse_weight, GetParam().out);
    for (Int32 word : payload.fusionPlateParam.reserved) {
        ASSERT_EQ(word, 0x5A5A5A5A);  // left as the caller had it
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_P(FusionPlateWeight, DebugSetterClampsStoresAndConfirms) {
    LogCapture log;
    CFG_DSP_FusionPlateV1001 stored{77};

    ASSERT_EQ(DRV_dspdbgFusionPlate(&stored, 0, GetParam().in), 0);
    EXPECT_EQ(stored.fuse_weight, GetParam().out);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, kInfoLevel);
    EXPECT_EQ(lines[0].category, kInfoCategory);
    EXPECT_EQ(lines[0].text, "[DSP_DRV] fusionPlate weight is " + std::to_string(GetParam().out) + "\n");
}

INSTANTIATE_TEST_SUITE_P(Weights, FusionPlateWeight,
                         testing::Values(WeightCase{0, 1}, WeightCase{-4, 1}, WeightCase{1, 1}, WeightCase{55, 55},
                                         WeightCase{100, 100}, WeightCase{101, 100}, WeightCase{250, 100},
                                         WeightCase{INT_MIN, 1}, WeightCase{INT_MAX, 100}));

TEST(FusionPlate, DebugSetterIgnoresOtherIds) {
    LogCapture log;
    CFG_DSP_FusionPlateV1001 stored{42};
    for (Int32 id : {1, 2, -1, INT_MIN}) {
        EXPECT_EQ(DRV_dspdbgFusionPlate(&stored, id, 5), 0);
    }
    EXPECT_EQ(stored.fuse_weight, 42);
    EXPECT_TRUE(log.lines().empty());
}

TEST(FusionPlate, PrintLogsTheStoredWeight) {
    LogCapture log;
    CFG_DSP_FusionPlateV1001 stored{250};  // printed as stored, not clamped

    ASSERT_EQ(DRV_dspdbgFusionPlatePrint(&stored), 0);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, kInfoLevel);
    EXPECT_EQ(lines[0].category, kInfoCategory);
    EXPECT_EQ(lines[0].text, "[DSP_DRV] [cfg FUSION_PLATE]weight=250\n");
}

TEST(FusionPlate, NullArgumentsAreLoggedAndFail) {
    DSP_FusionPlateCalculateParam input{{30}};
    DSP_FusionPlateV1001 payload;
    std::memset(&payload, 0x11, sizeof payload);
    const DSP_FusionPlateV1001 before = payload;
    {
        LogCapture log;
        EXPECT_EQ(DRV_dspCalculateFusionPlate(nullptr, nullptr), -1);
        EXPECT_TRUE(isNullError(log, "DRV_dspCalculateFusionPlate", "fusionPlateCalParam"));
    }
    {
        LogCapture log;
        EXPECT_EQ(DRV_dspCalculateFusionPlate(&input, nullptr), -1);
        EXPECT_TRUE(isNullError(log, "DRV_dspCalculateFusionPlate", "param"));
    }
    {
        LogCapture log;
        EXPECT_EQ(DRV_dspCalculateFusionPlate(nullptr, &payload), -1);
        EXPECT_EQ(std::memcmp(&payload, &before, sizeof payload), 0);
    }
    {
        LogCapture log;
        EXPECT_EQ(DRV_dspdbgFusionPlate(nullptr, 0, 10), -1);
        EXPECT_TRUE(isNullError(log, "DRV_dspdbgFusionPlate", "cfgFusionPlateParam"));
    }
    {
        LogCapture log;
        EXPECT_EQ(DRV_dspdbgFusionPlatePrint(nullptr), -1);
        EXPECT_TRUE(isNullError(log, "DRV_dspdbgFusionPlatePrint", "cfgFusionPlateParam"));
    }
}

TEST(FusionPlate, CalculatedWeightTravelsInTheFusionPlateMessage) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(3);
    dsp.setSetResult(-2);
    DSP_FusionPlateCalculateParam input{{0}};
    DSP_FusionPlateV1001 payload;
    std::memset(&payload, 0, sizeof payload);

    ASSERT_EQ(DRV_dspCalculateFusionPlate(&input, &payload), 0);
    EXPECT_EQ(DRV_dspOpSetFusionPlate(&payload, &handle), -2);  // the callback's own result
    const auto& sent = dsp.sets().at(0);
    EXPECT_EQ(sent.word(0), static_cast<Uint32>(DSP_AEW_CFG_TYPE_FUSION_PLATE));
    EXPECT_EQ(sent.word(72), 1u);
    EXPECT_EQ(sent.ctrl.nId, 3u);
    EXPECT_EQ(sent.firstNonZeroExcept({{72, 76}}), std::nullopt);
}

TEST(FusionPlate, GetDoesNothing) {
    DspCapture dsp;
    DRV_dspIspHandle handle = dsp.handle(3);
    DSP_FusionPlateV1001 payload;
    std::memset(&payload, 0x3C, sizeof payload);
    const DSP_FusionPlateV1001 before = payload;

    EXPECT_EQ(DRV_dspOpGetFusionPlate(nullptr, nullptr), 0);
    EXPECT_EQ(DRV_dspOpGetFusionPlate(&payload, &handle), 0);
    EXPECT_EQ(std::memcmp(&payload, &before, sizeof payload), 0);
    EXPECT_TRUE(dsp.gets().empty());
    EXPECT_TRUE(dsp.sets().empty());
}

}  // namespace

// The enhancement stage contract (caps, untouched payload bytes, debug ids at
// their edges, unknown ids, null pointers, exact log lines), run for every
// stage, and the cases of DLAE, DLCFA, FG2C, LLE, LSM, SADE, SBM3D and YUV2YUV.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <regex>

#include "stage_cases.h"
#include "support/log_capture.h"

namespace stage_test {
namespace {

using ispdsp_test::LogCapture;

constexpr int32_t kInfoLevel = 2, kInfoCategory = 2;
constexpr int32_t kErrorLevel = 0, kErrorCategory = 1;
constexpr uint8_t kPayloadSentinel = 0xA5;
constexpr uint8_t kRecordSentinel = 0x5C;

using Bytes = std::vector<uint8_t>;

void put(Bytes& bytes, FieldAt f, uint32_t value) { std::memcpy(bytes.data() + f.offset, &value, f.width); }

uint32_t get(const Bytes& bytes, FieldAt f) {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + f.offset, f.width);
    return value;
}

Bytes filled(const LinesExample& example, size_t size) {
    Bytes bytes(size, 0);
    for (const Assign& a : example.assigns) put(bytes, a.field, a.value);
    return bytes;
}

std::string withValue(const std::string& format, uint32_t value) {
    char text[256];
    std::snprintf(text, sizeof text, format.c_str(), value);
    return text;
}

// Exactly `expected`, each line at information level.
testing::AssertionResult infoLinesAre(const LogCapture& log, const std::vector<std::string>& expected) {
    const auto lines = log.lines();
    std::vector<std::string> texts;
    for (const auto& line : lines) {
        if (line.level != kInfoLevel || line.category != kInfoCategory) {
            return testing::AssertionFailure() << "level " << line.level << "/" << line.category << ": " << line.text;
        }
        texts.push_back(line.text);
    }
    if (texts != expected) return testing::AssertionFailure() << "logged " << testing::PrintToString(texts);
    return testing::AssertionSuccess();
}

// One error line of `function` naming `argument`, with any source line number
// (the names are plain identifiers, so they need no regex escaping).
testing::AssertionResult isNullError(const LogCapture& log, const std::string& function, const std::string& argument) {
    const auto lines = log.lines();
    const std::regex expected("\\[DSP_DRV\\] ERROR  \\(" + function + "\\|[0-9]+\\): Input NULL POINT " + argument +
                              "!\n");
    if (lines.size() == 1 && lines[0].level == kErrorLevel && lines[0].category == kErrorCategory &&
        std::regex_match(lines[0].text, expected)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "logged " << testing::PrintToString(log.texts());
}

// ---- The contract ----

// Each mapped field at and beyond its bounds lands in its payload field; no other payload
// byte is written.
TEST_P(StageContract, CalculationHoldsEachFieldAtAndBeyondItsBoundsAndWritesNothingElse) {
    const StageApi& api = GetParam().api;
    LogCapture log;
    std::vector<bool> mapped(api.payloadSize, false);
    for (const CalcRow& row : GetParam().calc) {
        for (size_t i = 0; i < row.to.width; ++i) mapped[row.to.offset + i] = true;
        for (const CalcCase& c : row.cases) {
            SCOPED_TRACE(testing::Message() << "input offset " << row.from.offset << " = " << c.in);
            Bytes input(api.inputSize, 0);
            put(input, row.from, c.in);
            Bytes payload(api.payloadSize, kPayloadSentinel);
            ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
            EXPECT_EQ(get(payload, row.to), c.out);
        }
    }
    // All fields at once, at their largest.
    Bytes input(api.inputSize, 0xFF);
    Bytes payload(api.payloadSize, kPayloadSentinel);
    ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
    for (const CalcRow& row : GetParam().calc) {
        EXPECT_EQ(get(payload, row.to), row.cases.back().out) << "payload offset " << row.to.offset;
    }
    for (size_t i = 0; i < api.payloadSize; ++i) {
        if (!mapped[i]) {
            EXPECT_EQ(payload[i], kPayloadSentinel) << "payload byte " << i;
        }
    }
}

TEST_P(StageContract, DebugSetterClampsAndConfirmsTheStoredValue) {
    const StageApi& api = GetParam().api;
    for (const IdRow& row : GetParam().ids) {
        for (const SetCase& c : row.cases) {
            SCOPED_TRACE(testing::Message() << "id " << row.id << " value " << c.value);
            LogCapture log;
            Bytes record(api.recordSize, kRecordSentinel);
            ASSERT_EQ(api.debugSet(record.data(), row.id, c.value), 0);
            EXPECT_EQ(get(record, row.field), c.stored);
            for (size_t i = 0; i < api.recordSize; ++i) {
                if (i < row.field.offset || i >= row.field.offset + row.field.width) {
                    EXPECT_EQ(record[i], kRecordSentinel) << "record byte " << i;
                }
            }
            EXPECT_TRUE(infoLinesAre(log, {withValue(row.line, c.stored)}));
        }
    }
}

TEST_P(StageContract, UnknownAndSilentIdsChangeNothingAndLogNothing) {
    const StageCase& stage = GetParam();
    // The test data names every id below idCount once.
    for (int32_t id = 0; id < stage.idCount; ++id) {
        const auto stores =
            std::count_if(stage.ids.begin(), stage.ids.end(), [&](const IdRow& r) { return r.id == id; });
        const auto silent = std::count(stage.silentIds.begin(), stage.silentIds.end(), id);
        ASSERT_EQ(stores + silent, 1) << "id " << id;
    }
    std::vector<int32_t> ids = {stage.idCount, stage.idCount + 1, 1000, INT32_MAX, -1, -2, INT32_MIN};
    ids.insert(ids.end(), stage.silentIds.begin(), stage.silentIds.end());
    for (int32_t id : ids) {
        for (int32_t value : {0, 1, -1, INT32_MAX, INT32_MIN}) {
            SCOPED_TRACE(testing::Message() << "id " << id << " value " << value);
            LogCapture log;
            Bytes record(stage.api.recordSize, kRecordSentinel);
            EXPECT_EQ(stage.api.debugSet(record.data(), id, value), 0);
            EXPECT_EQ(record, Bytes(stage.api.recordSize, kRecordSentinel));
            EXPECT_TRUE(log.lines().empty());
        }
    }
}

TEST_P(StageContract, NullPointersNameTheParameterAndWriteNothing) {
    const StageApi& api = GetParam().api;
    Bytes input(api.inputSize, 0x11);
    Bytes payload(api.payloadSize, kPayloadSentinel);
    struct Call {
        std::function<int32_t()> call;
        const char* function;
        const char* argument;
    };
    const Call calls[] = {
        {[&] { return api.calculate(nullptr, nullptr); }, api.calculateName, api.inputParam},  // only the input named
        {[&] { return api.calculate(nullptr, payload.data()); }, api.calculateName, api.inputParam},
        {[&] { return api.calculate(input.data(), nullptr); }, api.calculateName, "param"},
        {[&] { return api.debugSet(nullptr, 0, 1); }, api.debugSetName, api.recordParam},
        {[&] { return api.print(nullptr); }, api.printName, api.recordParam},
    };
    for (const Call& c : calls) {
        LogCapture log;
        EXPECT_EQ(c.call(), -1) << c.function << " " << c.argument;
        EXPECT_TRUE(isNullError(log, c.function, c.argument));
    }
    EXPECT_EQ(payload, Bytes(api.payloadSize, kPayloadSentinel));
}

TEST_P(StageContract, CalculationLogsItsSetLinesWithThePayloadValues) {
    const StageApi& api = GetParam().api;
    Bytes input = filled(GetParam().calculationLines, api.inputSize);
    Bytes payload(api.payloadSize, 0);
    LogCapture log;
    ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
    EXPECT_TRUE(infoLinesAre(log, GetParam().calculationLines.lines));
}

TEST_P(StageContract, PrintLogsTheStoredRecord) {
    const StageApi& api = GetParam().api;
    Bytes record = filled(GetParam().printLines, api.recordSize);
    const Bytes before = record;
    LogCapture log;
    ASSERT_EQ(api.print(record.data()), 0);
    EXPECT_TRUE(infoLinesAre(log, GetParam().printLines.lines));
    EXPECT_EQ(record, before);
}

// ---- The eight stages of the family ----

StageCase dlae() {
    using In = DSP_DlaeCalculateParam;
    using Out = DSP_DlaeV101;
    using Rec = CFG_DSP_DlaeV101;
    return StageCase{
        STAGE_API(Dlae, V101, "dlaeCalParam", "cfgDlaeParam"),
        {
            capped(STAGE_AT(In, dlaeParam.fusion_weight), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_fusion_weight), 8),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_debug_pin)),
            ranged(STAGE_AT(In, dlaeParam.window_gain), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_window_gain), 128, 512),
            capped(STAGE_AT(In, dlaeParam.gamma), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_gamma), 6),
            capped(STAGE_AT(In, dlaeParam.edge), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_edge), 12),
            capped(STAGE_AT(In, dlaeParam.denoise), STAGE_AT(Out, dlaeParam.vorn_hi_dlae_denoise), 5),
        },
        {
            between(0, STAGE_AT(Rec, fusion_weight), 0, 8, "[DSP_DRV] dlae fusion_weight is %u!\n"),
            between(2, STAGE_AT(Rec, window_gain), 128, 512, "[DSP_DRV] dlae window_gain is %u!\n", {{50, 128}}),
            between(3, STAGE_AT(Rec, gamma), 0, 6, "[DSP_DRV] dlae gamma is %u!\n", {{-4, 0}}),
            between(4, STAGE_AT(Rec, edge), 0, 12, "[DSP_DRV] dlae edge is %u!\n"),
            between(5, STAGE_AT(Rec, denoise), 0, 5, "[DSP_DRV] dlae denoise is %u!\n"),
        },
        6,
        {1},  // the payload's debug_pin slot: accepted, no record field
        {{{STAGE_AT(In, dlaeParam.fusion_weight), 200},
          {STAGE_AT(In, dlaeParam.window_gain), 600},
          {STAGE_AT(In, dlaeParam.gamma), 3},
          {STAGE_AT(In, dlaeParam.edge), 12},
          {STAGE_AT(In, dlaeParam.denoise), 9},
          {STAGE_AT(In, debug_pin), 7}},
         {"[DSP_DRV] [set DLAE]fusion_weight=8,window_gain=512,gamma=3,edge=12,denoise=5,debug_pin=1!\n"}},
        {{{STAGE_AT(Rec, fusion_weight), 200},
          {STAGE_AT(Rec, window_gain), 60000},
          {STAGE_AT(Rec, gamma), 1},
          {STAGE_AT(Rec, edge), 2},
          {STAGE_AT(Rec, denoise), 3}},
         {"[DSP_DRV] [cfg DLAE]fusion_weight=200,window_gain=60000,gamma=1,edge=2,denoise=3!\n"}},
    };
}

StageCase dlcfa() {
    using In = DSP_DlcfaCalculateParam;
    using Out = DSP_DlcfaV101;
    using Rec = CFG_DSP_DlcfaV101;
    return StageCase{
        STAGE_API(Dlcfa, V101, "dlcfaCalParam", "cfgDlcfaParam"),
        {
            capped(STAGE_AT(In, dlcfaParam.ee_level), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_ee_level), 511),
            capped(STAGE_AT(In, dlcfaParam.gamma), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_gamma), 6),
            capped(STAGE_AT(In, dlcfaParam.luma_contrast), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_luma_contrast), 11),
            capped(STAGE_AT(In, dlcfaParam.denoise), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_denoise), 4),
            capped(STAGE_AT(In, dlcfaParam.fusion_weight), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_fusion_weight), 7),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, dlcfaParam.vorn_hi_dlcfa_debug_pin)),
        },
        {
            between(0, STAGE_AT(Rec, ee_level), 0, 511, "[DSP_DRV] dlcfa ee_level is %u!\n"),
            between(1, STAGE_AT(Rec, gamma), 0, 6, "[DSP_DRV] dlcfa gamma is %u!\n"),
            // Ids 2 and 3 confirm in the manner of the others.
            between(2, STAGE_AT(Rec, luma_contrast), 0, 11, "[DSP_DRV] dlcfa luma_contrast is %u!\n"),
            between(3, STAGE_AT(Rec, denoise), 0, 4, "[DSP_DRV] dlcfa denoise is %u!\n"),
            between(4, STAGE_AT(Rec, fusion_weight), 0, 7, "[DSP_DRV] dlcfa fusion_weight is %u!\n"),
        },
        5,
        {},
        {{{STAGE_AT(In, dlcfaParam.ee_level), 1000},
          {STAGE_AT(In, dlcfaParam.gamma), 2},
          {STAGE_AT(In, dlcfaParam.luma_contrast), 12},
          {STAGE_AT(In, dlcfaParam.denoise), 3},
          {STAGE_AT(In, dlcfaParam.fusion_weight), 255},
          {STAGE_AT(In, debug_pin), 0}},
         {"[DSP_DRV] [set DLCFA]ee_level=511,gamma=2,luma_contrast=11,denoise=3,fusion_weight=7,debug_pin=0!\n"}},
        {{{STAGE_AT(Rec, ee_level), 65535},
          {STAGE_AT(Rec, gamma), 1},
          {STAGE_AT(Rec, luma_contrast), 2},
          {STAGE_AT(Rec, denoise), 3},
          {STAGE_AT(Rec, fusion_weight), 4}},
         {"[DSP_DRV] [cfg DLCFA]ee_level=65535,gamma=1,luma_contrast=2,denoise=3,fusion_weight=4!\n"}},
    };
}

StageCase fg2c() {
    using In = DSP_Fg2cCalculateParam;
    using Out = DSP_Fg2cV102;
    using Rec = CFG_DSP_Fg2cV102;
    return StageCase{
        STAGE_API(Fg2c, V102, "fg2cCalParam", "cfgFg2cParam"),
        {
            capped(STAGE_AT(In, fg2cParam.need_win_enhence), STAGE_AT(Out, fg2cParam.vorn_hi_fg2c_need_win_enhence), 2),
            capped(STAGE_AT(In, fg2cParam.win_fusion_weight), STAGE_AT(Out, fg2cParam.vorn_hi_fg2c_win_fusion_weight),
                   8),
            capped(STAGE_AT(In, fg2cParam.face_fusion_weight), STAGE_AT(Out, fg2cParam.vorn_hi_fg2c_face_fusion_weight),
                   8),
            capped(STAGE_AT(In, fg2cParam.face_fusion_pad), STAGE_AT(Out, fg2cParam.vorn_hi_fg2c_face_fusion_pad), 20),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, fg2cParam.vorn_hi_fg2c_debug_pin)),
        },
        {
            between(0, STAGE_AT(Rec, need_win_enhence), 0, 2, "[DSP_DRV] fg2c need_win_enhence is %u\n"),
            between(1, STAGE_AT(Rec, win_fusion_weight), 0, 8, "[DSP_DRV] fg2c win_fusion_weight is %u\n"),
            between(2, STAGE_AT(Rec, face_fusion_weight), 0, 8, "[DSP_DRV] fg2c face_fusion_weight is %u\n"),
            between(3, STAGE_AT(Rec, face_fusion_pad), 0, 20, "[DSP_DRV] fg2c face_fusion_pad is %u\n"),
        },
        4,
        {},
        {{{STAGE_AT(In, fg2cParam.face_fusion_pad), 99}, {STAGE_AT(In, debug_pin), 1}}, {}},  // no set line
        {{{STAGE_AT(Rec, need_win_enhence), 1},
          {STAGE_AT(Rec, win_fusion_weight), 2},
          {STAGE_AT(Rec, face_fusion_weight), 3},
          {STAGE_AT(Rec, face_fusion_pad), 250}},
         {"[DSP_DRV] [cfg FG2C]need_win_enhence=1,win_fusion_weight=2,face_fusion_weight=3,face_fusion_pad=250.\n"}},
    };
}

StageCase lle() {
    using In = DSP_LleCalculateParam;
    using Out = DSP_LleV203;
    using Rec = CFG_DSP_LleV203;
    return StageCase{
        STAGE_API(Lle, V203, "lleCalParam", "cfgLleParam"),
        {
            ranged(STAGE_AT(In, lleParam.window_gain), STAGE_AT(Out, lleParam.vorn_hi_lle_window_gain), 128, 512),
            capped(STAGE_AT(In, lleParam.gamma), STAGE_AT(Out, lleParam.vorn_hi_lle_gamma), 6),
            capped(STAGE_AT(In, lleParam.edge), STAGE_AT(Out, lleParam.vorn_hi_lle_edge), 32),
            capped(STAGE_AT(In, lleParam.denoise), STAGE_AT(Out, lleParam.vorn_hi_lle_denoise), 5),
            capped(STAGE_AT(In, lleParam.fusion_weight), STAGE_AT(Out, lleParam.vorn_hi_lle_fusion_weight), 7),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, lleParam.vorn_hi_lle_debug_pin)),
        },
        {
            between(0, STAGE_AT(Rec, window_gain), 128, 512, "[DSP_DRV] lle window_gain is %u\n"),
            atMost(1, STAGE_AT(Rec, gamma), 6, "[DSP_DRV] lle gamma is %u\n"),
            atMost(2, STAGE_AT(Rec, edge), 32, "[DSP_DRV] lle edge is %u\n"),
            atMost(3, STAGE_AT(Rec, denoise), 5, "[DSP_DRV] lle denoise is %u\n"),
            atMost(4, STAGE_AT(Rec, fusion_weight), 7, "[DSP_DRV] lle fusion_weight is %u\n"),
        },
        5,
        {},
        {{{STAGE_AT(In, lleParam.window_gain), 5},
          {STAGE_AT(In, lleParam.gamma), 255},
          {STAGE_AT(In, lleParam.edge), 32},
          {STAGE_AT(In, lleParam.denoise), 4},
          {STAGE_AT(In, lleParam.fusion_weight), 8},
          {STAGE_AT(In, debug_pin), 0x80000000u}},
         {"[DSP_DRV] [set LLE]window_gain=128,gamma=6,edge=32,denoise=4,fusion_weight=7,debug_pin=1\n"}},
        {{{STAGE_AT(Rec, window_gain), 700},
          {STAGE_AT(Rec, gamma), 255},
          {STAGE_AT(Rec, edge), 3},
          {STAGE_AT(Rec, denoise), 4},
          {STAGE_AT(Rec, fusion_weight), 5}},
         {"[DSP_DRV] [cfg LLE]window_gain=700,gamma=255,edge=3,denoise=4,fusion_weight=5\n"}},
    };
}

StageCase lsm() {
    using In = DSP_LsmCalculateParam;
    using Out = DSP_LsmV112;
    using Rec = CFG_DSP_LsmV112;
    return StageCase{
        STAGE_API(Lsm, V112, "lsmCalParam", "cfgLsmParam"),
        {
            // Payload bytes 8..29 (aw_wr .. rep_center_y) are the host's.
            capped(STAGE_AT(In, lsmParam.aw_left_thr), STAGE_AT(Out, lsmParam.aw_left_thr), 1024),
            capped(STAGE_AT(In, lsmParam.aw_right_thr), STAGE_AT(Out, lsmParam.aw_right_thr), 1024),
            capped(STAGE_AT(In, lsmParam.aw_top_thr), STAGE_AT(Out, lsmParam.aw_top_thr), 1024),
            capped(STAGE_AT(In, lsmParam.aw_bottom_thr), STAGE_AT(Out, lsmParam.aw_bottom_thr), 1024),
        },
        {
            between(0, STAGE_AT(Rec, aw_left_thr), 0, 1024, "[DSP_DRV] lsm aw_left_thr is %u\n"),
            between(1, STAGE_AT(Rec, aw_right_thr), 0, 1024, "[DSP_DRV] lsm aw_right_thr is %u\n"),
            between(2, STAGE_AT(Rec, aw_top_thr), 0, 1024, "[DSP_DRV] lsm aw_top_thr is %u\n"),
            between(3, STAGE_AT(Rec, aw_bottom_thr), 0, 1024, "[DSP_DRV] lsm aw_bottom_thr is %u\n"),
        },
        4,
        {},
        {{{STAGE_AT(In, lsmParam.aw_left_thr), 5000}}, {}},  // no set line
        {{{STAGE_AT(Rec, aw_left_thr), 1},
          {STAGE_AT(Rec, aw_right_thr), 2000},
          {STAGE_AT(Rec, aw_top_thr), 3},
          {STAGE_AT(Rec, aw_bottom_thr), 4}},
         {"[DSP_DRV] [cfg lsm]aw_left_thr=1,aw_right_thr=2000,aw_top_thr=3,aw_bottom_thr=4\n"}},
    };
}

StageCase sade() {
    using In = DSP_SadeCalculateParam;
    using Out = DSP_SadeV113;
    using Rec = CFG_DSP_SadeV113;
    return StageCase{
        STAGE_API(Sade, V113, "sadeCalParam", "cfgsadeParam"),
        {
            capped(STAGE_AT(In, sadeParam.model_type), STAGE_AT(Out, sadeParam.vorn_arm_sade_model_type), 2),
            capped(STAGE_AT(In, sadeParam.ee_level), STAGE_AT(Out, sadeParam.vorn_arm_sade_ee_level), 10),
            capped(STAGE_AT(In, sadeParam.nr_level), STAGE_AT(Out, sadeParam.vorn_arm_sade_nr_level), 100),
            capped(STAGE_AT(In, sadeParam.black_edge), STAGE_AT(Out, sadeParam.vorn_arm_sade_black_edge), 200),
            capped(STAGE_AT(In, sadeParam.white_edge), STAGE_AT(Out, sadeParam.vorn_arm_sade_white_edge), 200),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, sadeParam.vorn_arm_sade_debug_pin)),
            capped(STAGE_AT(In, scene_mode), STAGE_AT(Out, sadeParam.vorn_arm_sade_scene_mode), 3),
        },
        {
            between(0, STAGE_AT(Rec, model_type), 0, 2, "[DSP_DRV] sade model_type is %u!\n"),
            between(1, STAGE_AT(Rec, ee_level), 0, 10, "[DSP_DRV] sade ee_level is %u!\n"),
            between(2, STAGE_AT(Rec, nr_level), 0, 100, "[DSP_DRV] sade nr_level is %u!\n"),
            between(3, STAGE_AT(Rec, black_edge), 0, 200, "[DSP_DRV] sade black_edge is %u!\n"),
            between(4, STAGE_AT(Rec, white_edge), 0, 200, "[DSP_DRV] sade white_edge is %u!\n"),
        },
        5,  // the scene mode has no id
        {},
        {{{STAGE_AT(In, sadeParam.model_type), 1},
          {STAGE_AT(In, sadeParam.ee_level), 11},
          {STAGE_AT(In, sadeParam.nr_level), 50},
          {STAGE_AT(In, sadeParam.black_edge), 255},
          {STAGE_AT(In, sadeParam.white_edge), 200},
          {STAGE_AT(In, debug_pin), 2},
          {STAGE_AT(In, scene_mode), 9}},
         {"[DSP_DRV] [set sade]model_type=1,scene_mode = 3,ee_level=10,nr_level=50,black_edge=200,white_edge=200,"
          "debug_pin=1!\n"}},
        {{{STAGE_AT(Rec, model_type), 9},
          {STAGE_AT(Rec, ee_level), 1},
          {STAGE_AT(Rec, nr_level), 2},
          {STAGE_AT(Rec, black_edge), 3},
          {STAGE_AT(Rec, white_edge), 4}},
         {"[DSP_DRV] [cfg sade]model_type=9,ee_level=1,nr_level=2,black_edge=3,white_edge=4!\n"}},
    };
}

StageCase sbm3d() {
    using In = DSP_Sbm3dCalculateParam;
    using Out = DSP_Sbm3dV113;
    using Rec = CFG_DSP_Sbm3dV113;
    return StageCase{
        STAGE_API(Sbm3d, V113, "sbm3dCalParam", "cfgSbm3dParam"),
        {
            capped(STAGE_AT(In, sbm3dParam.sbm3d_threshold), STAGE_AT(Out, sbm3dParam.sbm3d_thr), 16384),
            flagged(STAGE_AT(In, debug_pin), STAGE_AT(Out, sbm3dParam.debug_pin)),
        },
        {between(0, STAGE_AT(Rec, sbm3d_threshold), 0, 16384, "[DSP_DRV] sbm3d sbm3d_threshold is %u\n")},
        1,
        {},
        {{{STAGE_AT(In, sbm3dParam.sbm3d_threshold), 20000}}, {}},  // no set line
        {{{STAGE_AT(Rec, sbm3d_threshold), 65535}}, {"[DSP_DRV] [cfg SBM3D]sbm3d_threshold=65535\n"}},
    };
}

StageCase yuv2yuv() {
    using In = DSP_Yuv2yuvCalculateParam;
    using Out = DSP_Yuv2yuvV100;
    using Rec = CFG_DSP_Yuv2yuvV100;
    return StageCase{
        STAGE_API(Yuv2yuv, V100, "yuv2yuvCalParam", "cfgYuv2yuvParam"),
        {flagged(STAGE_AT(In, yuv2yuvParam.enable), STAGE_AT(Out, enable))},
        {between(0, STAGE_AT(Rec, enable), 0, 1, "[DSP_DRV] yuv2yuv enable is %u\n", {{5, 1}, {-3, 0}})},
        1,
        {},
        {{{STAGE_AT(In, yuv2yuvParam.enable), 3}}, {}},  // no set line
        // A C %d of the stored word: 4294967295 shows as -1.
        {{{STAGE_AT(Rec, enable), 0xFFFFFFFFu}}, {"[DSP_DRV] [cfg YUV2YUV]enable=-1\n"}},
    };
}

INSTANTIATE_TEST_SUITE_P(Family, StageContract,
                         testing::Values(dlae(), dlcfa(), fg2c(), lle(), lsm(), sade(), sbm3d(), yuv2yuv()), stageName);

}  // namespace
}  // namespace stage_test

// The enhancement stage contract, run for the twelve stages of the family (the
// fusion plate included): the calculation holds every field to its documented
// range and writes nothing else, each debug id holds and confirms its value,
// unknown ids are silent, null pointers are named, and the exact log lines.
// The contract of a stage is test data: one row per payload field the
// calculation writes (input field, payload field, the documented range, the
// debug id that stores the same record field) and the exact lines of a print
// and of a calculation for generated inputs. Expected values come from these
// ranges, never from the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"
#include "support/log_capture.h"

namespace stage_test {
namespace {

struct FieldAt {
    size_t offset;
    size_t width;
};
#define STAGE_AT(Type, member) ::stage_test::FieldAt{offsetof(Type, member), sizeof(std::declval<Type&>().member)}

uint32_t allOnes(FieldAt f) { return f.width == 4 ? 0xFFFFFFFFu : (1u << (8 * f.width)) - 1u; }

enum class Kind {
    Held,    // unsigned input held to [low, high] (a copy when the range is the whole width)
    Flag,    // 1 for any nonzero input
    Signed,  // signed input held to [low, high]
};

struct Row {
    FieldAt in, out, rec;  // rec: the record field behind debug id `id` (-1: no id)
    int32_t id;
    int32_t low, high;
    Kind kind;
    const char* name;  // as the confirmation line names it
};

// A record field: the calculation input starts with the record, so the input
// field sits at the record field's offset.
#define ROW(recMember, outMember, id, low, high, name) \
    ::stage_test::Row{STAGE_AT(Rec, recMember), STAGE_AT(Out, outMember), STAGE_AT(Rec, recMember), id, low, high, \
                      ::stage_test::Kind::Held, name}
#define FLAG_ROW(recMember, outMember, id, name) \
    ::stage_test::Row{STAGE_AT(Rec, recMember), STAGE_AT(Out, outMember), STAGE_AT(Rec, recMember), id, 0, 1, \
                      ::stage_test::Kind::Flag, name}
// An input the record does not have (debug_pin, scene_mode): no debug id.
#define INPUT_ROW(inMember, outMember, low, high, kind) \
    ::stage_test::Row{STAGE_AT(In, inMember), STAGE_AT(Out, outMember), {0, 1}, -1, low, high, kind, ""}
#define PIN_ROW(outMember) INPUT_ROW(debug_pin, outMember, 0, 1, ::stage_test::Kind::Flag)

struct StageApi {
    const char* name;
    size_t inputSize, payloadSize, recordSize;
    int32_t (*calculate)(void* input, void* payload);
    int32_t (*debugSet)(void* record, int32_t id, int32_t value);
    int32_t (*print)(void* record);
    const char* inputParam;
    const char* recordParam;
};

#define STAGE_API(Name, Ver, inputParam, recordParam)                                                   \
    ::stage_test::StageApi {                                                                             \
        #Name, sizeof(DSP_##Name##CalculateParam), sizeof(DSP_##Name##Ver), sizeof(CFG_DSP_##Name##Ver), \
            [](void* in, void* out) {                                                                    \
                return DRV_dspCalculate##Name(static_cast<DSP_##Name##CalculateParam*>(in),             \
                                              static_cast<DSP_##Name##Ver*>(out));                       \
            },                                                                                           \
            [](void* rec, int32_t id, int32_t v) {                                                       \
                return DRV_dspdbg##Name(static_cast<CFG_DSP_##Name##Ver*>(rec), id, v);                  \
            },                                                                                           \
            [](void* rec) { return DRV_dspdbg##Name##Print(static_cast<CFG_DSP_##Name##Ver*>(rec)); }, \
            inputParam, recordParam                                                                      \
    }

struct StageCase {
    StageApi api;
    std::vector<Row> rows;  // every payload field the calculation writes, in the stage's order
    int32_t idCount;        // ids at or above are unknown; ids below without a row store nothing
    bool upperOnly;         // the setter of a field with low 0 caps only: a negative value keeps its low bits
    std::string confirmHead, confirmTail;  // "<head><name> is <value><tail>"
    // Row k's input is 2k + 1: the calculation's set lines for it (some stages log none).
    std::vector<std::string> setLines;
    // Debug id 0's field holds all ones, id k's field 10 + k: the print lines for it.
    std::vector<std::string> printLines;
};

void PrintTo(const StageCase& stage, std::ostream* os) { *os << stage.api.name; }
std::string stageName(const testing::TestParamInfo<StageCase>& info) { return info.param.api.name; }


using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using Bytes = std::vector<uint8_t>;
constexpr uint8_t kSentinel = 0xA5;

void put(Bytes& bytes, FieldAt f, uint32_t value) { std::memcpy(bytes.data() + f.offset, &value, f.width); }
uint32_t get(const Bytes& bytes, FieldAt f) {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + f.offset, f.width);
    return value;
}

// The oracle of the calculation: what the payload field holds for input `v`.
uint32_t calculated(const Row& row, uint32_t v) {
    switch (row.kind) {
        case Kind::Flag: return v != 0 ? 1u : 0u;
        case Kind::Signed: return uint32_t(std::clamp(int32_t(v), row.low, row.high));
        case Kind::Held: break;
    }
    return std::clamp(v, uint32_t(row.low), uint32_t(row.high));
}

// The oracle of the debug setter: what the record field holds after `value`.
uint32_t stored(const StageCase& stage, const Row& row, int32_t value) {
    const bool upperOnly = stage.upperOnly && row.low == 0 && row.kind == Kind::Held;
    const int32_t held = upperOnly ? std::min(value, row.high) : std::clamp(value, row.low, row.high);
    return uint32_t(held) & allOnes(row.rec);
}

class StageContract : public testing::TestWithParam<StageCase> {};

TEST_P(StageContract, CalculationHoldsEachFieldToItsRangeWritesNothingElseAndLogsItsLines) {
    const StageApi& api = GetParam().api;
    std::vector<bool> mapped(api.payloadSize, false);
    LogCapture quiet;
    for (const Row& row : GetParam().rows) {
        for (size_t i = 0; i < row.out.width; ++i) mapped[row.out.offset + i] = true;
        const uint32_t lo = uint32_t(row.low), hi = uint32_t(row.high);
        for (uint32_t v : {0u, 1u, lo - 1, lo, lo + 1, hi - 1, hi, hi + 1, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            v &= allOnes(row.in);
            Bytes input(api.inputSize, 0), payload(api.payloadSize, kSentinel);
            put(input, row.in, v);
            ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
            EXPECT_EQ(get(payload, row.out), calculated(row, v)) << "input offset " << row.in.offset << " = " << v;
        }
    }
    Bytes input(api.inputSize, 0xFF), payload(api.payloadSize, kSentinel);
    ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
    for (const Row& row : GetParam().rows) {
        EXPECT_EQ(get(payload, row.out), calculated(row, allOnes(row.in))) << "payload offset " << row.out.offset;
    }
    for (size_t i = 0; i < api.payloadSize; ++i) {
        EXPECT_TRUE(mapped[i] || payload[i] == kSentinel) << "payload byte " << i;
    }

    // The exact lines of a calculation and of a print, which changes nothing.
    const StageCase& stage = GetParam();
    std::fill(input.begin(), input.end(), 0);
    Bytes record(api.recordSize, 0);
    for (size_t k = 0; k < stage.rows.size(); ++k) {
        const Row& row = stage.rows[k];
        put(input, row.in, uint32_t(2 * k + 1));
        if (row.id >= 0) put(record, row.rec, row.id == 0 ? allOnes(row.rec) : uint32_t(10 + row.id));
    }
    LogCapture calc;
    ASSERT_EQ(api.calculate(input.data(), payload.data()), 0);
    EXPECT_EQ(calc.texts(), stage.setLines);
    const Bytes before = record;
    LogCapture print;
    ASSERT_EQ(api.print(record.data()), 0);
    EXPECT_EQ(print.texts(), stage.printLines);
    EXPECT_EQ(record, before);
}

// Each id with a field holds and confirms the value; unknown ids and known ids
// without a field change nothing and log nothing.
TEST_P(StageContract, DebugSetterHoldsTheValueAndConfirmsIt) {
    const StageCase& stage = GetParam();
    std::vector<int32_t> silent = {stage.idCount + 1, 1000, INT32_MAX, -2, INT32_MIN};
    for (int32_t id = 0; id < stage.idCount; ++id) {
        const auto rows = std::count_if(stage.rows.begin(), stage.rows.end(), [&](const Row& r) { return r.id == id; });
        ASSERT_LE(rows, 1) << "id " << id;
        if (rows == 0) silent.push_back(id);
    }
    for (const Row& row : stage.rows) {
        if (row.id < 0) continue;
        const int32_t mid = row.low + (row.high - row.low) / 2;
        for (int32_t v : {row.low, row.high, row.high + 1, INT32_MAX, row.low - 1, -1, -2, INT32_MIN, mid}) {
            SCOPED_TRACE(testing::Message() << "id " << row.id << " value " << v);
            LogCapture log;
            Bytes record(stage.api.recordSize, kSentinel), expected = record;
            put(expected, row.rec, stored(stage, row, v));
            ASSERT_EQ(stage.api.debugSet(record.data(), row.id, v), 0);
            EXPECT_EQ(record, expected);
            const std::string line =
                stage.confirmHead + row.name + " is " + std::to_string(stored(stage, row, v)) + stage.confirmTail;
            EXPECT_EQ(log.texts(), std::vector<std::string>{line});
            EXPECT_EQ(log.count(LogKind::Info), 1u);
            for (int32_t id : silent) {
                EXPECT_EQ(stage.api.debugSet(record.data(), id, v), 0) << id;
                EXPECT_EQ(record, expected) << id;
            }
            EXPECT_EQ(log.lines().size(), 1u);
        }
    }
}

TEST_P(StageContract, NullPointersNameTheParameterAndWriteNothing) {
    const StageApi& api = GetParam().api;
    const std::string name = api.name;
    Bytes input(api.inputSize, 0x11), payload(api.payloadSize, kSentinel);
    struct Call {
        std::function<int32_t()> call;
        std::string function, argument;
    };
    const Call calls[] = {
        {[&] { return api.calculate(nullptr, nullptr); }, "DRV_dspCalculate" + name, api.inputParam},
        {[&] { return api.calculate(nullptr, payload.data()); }, "DRV_dspCalculate" + name, api.inputParam},
        {[&] { return api.calculate(input.data(), nullptr); }, "DRV_dspCalculate" + name, "param"},
        {[&] { return api.debugSet(nullptr, 0, 1); }, "DRV_dspdbg" + name, api.recordParam},
        {[&] { return api.print(nullptr); }, "DRV_dspdbg" + name + "Print", api.recordParam},
    };
    for (const Call& c : calls) {
        LogCapture log;
        EXPECT_EQ(c.call(), -1) << c.function;
        EXPECT_EQ(log.lines().size(), 1u) << c.function;
        EXPECT_TRUE(log.has(LogKind::Error, c.function, "Input NULL POINT " + c.argument + "!\n")) << c.function;
    }
    EXPECT_EQ(payload, Bytes(api.payloadSize, kSentinel));
}

// ---- The stages: fields, documented ranges, debug ids and lines ----

#define STAGE_TYPES(Name, Ver)              \
    using Rec = CFG_DSP_##Name##Ver;        \
    using In = DSP_##Name##CalculateParam;  \
    using Out = DSP_##Name##Ver;            \
    (void)sizeof(In)

StageCase dlae() {
    STAGE_TYPES(Dlae, V101);
#define F(rec, id, lo, hi) ROW(rec, dlaeParam.vorn_hi_dlae_##rec, id, lo, hi, #rec)
    // Id 1 is the payload's debug_pin slot: accepted, no record field.
    return {STAGE_API(Dlae, V101, "dlaeCalParam", "cfgDlaeParam"),
            {F(fusion_weight, 0, 0, 8), PIN_ROW(dlaeParam.vorn_hi_dlae_debug_pin), F(window_gain, 2, 128, 512),
             F(gamma, 3, 0, 6), F(edge, 4, 0, 12), F(denoise, 5, 0, 5)},
            6, false, "[DSP_DRV] dlae ", "!\n",
            {"[DSP_DRV] [set DLAE]fusion_weight=1,window_gain=128,gamma=6,edge=9,denoise=5,debug_pin=1!\n"},
            {"[DSP_DRV] [cfg DLAE]fusion_weight=255,window_gain=12,gamma=13,edge=14,denoise=15!\n"}};
#undef F
}

StageCase dlcfa() {
    STAGE_TYPES(Dlcfa, V101);
#define F(rec, id, hi) ROW(rec, dlcfaParam.vorn_hi_dlcfa_##rec, id, 0, hi, #rec)
    return {STAGE_API(Dlcfa, V101, "dlcfaCalParam", "cfgDlcfaParam"),
            {F(ee_level, 0, 511), F(gamma, 1, 6), F(luma_contrast, 2, 11), F(denoise, 3, 4), F(fusion_weight, 4, 7),
             PIN_ROW(dlcfaParam.vorn_hi_dlcfa_debug_pin)},
            5, false, "[DSP_DRV] dlcfa ", "!\n",
            {"[DSP_DRV] [set DLCFA]ee_level=1,gamma=3,luma_contrast=5,denoise=4,fusion_weight=7,debug_pin=1!\n"},
            {"[DSP_DRV] [cfg DLCFA]ee_level=65535,gamma=11,luma_contrast=12,denoise=13,fusion_weight=14!\n"}};
#undef F
}

StageCase fg2c() {
    STAGE_TYPES(Fg2c, V102);
#define F(rec, id, hi) ROW(rec, fg2cParam.vorn_hi_fg2c_##rec, id, 0, hi, #rec)
    return {STAGE_API(Fg2c, V102, "fg2cCalParam", "cfgFg2cParam"),
            {F(need_win_enhence, 0, 2), F(win_fusion_weight, 1, 8), F(face_fusion_weight, 2, 8),
             F(face_fusion_pad, 3, 20), PIN_ROW(fg2cParam.vorn_hi_fg2c_debug_pin)},
            4, false, "[DSP_DRV] fg2c ", "\n", {},
            {"[DSP_DRV] [cfg FG2C]need_win_enhence=255,win_fusion_weight=11,face_fusion_weight=12,"
             "face_fusion_pad=13.\n"}};
#undef F
}

StageCase lle() {
    STAGE_TYPES(Lle, V203);
#define F(rec, id, lo, hi) ROW(rec, lleParam.vorn_hi_lle_##rec, id, lo, hi, #rec)
    return {STAGE_API(Lle, V203, "lleCalParam", "cfgLleParam"),
            {F(window_gain, 0, 128, 512), F(gamma, 1, 0, 6), F(edge, 2, 0, 32), F(denoise, 3, 0, 5),
             F(fusion_weight, 4, 0, 7), PIN_ROW(lleParam.vorn_hi_lle_debug_pin)},
            5, true, "[DSP_DRV] lle ", "\n",
            {"[DSP_DRV] [set LLE]window_gain=128,gamma=3,edge=5,denoise=5,fusion_weight=7,debug_pin=1\n"},
            {"[DSP_DRV] [cfg LLE]window_gain=65535,gamma=11,edge=12,denoise=13,fusion_weight=14\n"}};
#undef F
}

StageCase lsm() {
    STAGE_TYPES(Lsm, V112);
#define F(rec, id) ROW(rec, lsmParam.rec, id, 0, 1024, #rec)
    // Payload bytes 8..29 (aw_wr .. rep_center_y) are the host's.
    return {STAGE_API(Lsm, V112, "lsmCalParam", "cfgLsmParam"),
            {F(aw_left_thr, 0), F(aw_right_thr, 1), F(aw_top_thr, 2), F(aw_bottom_thr, 3)},
            4, false, "[DSP_DRV] lsm ", "\n", {},
            {"[DSP_DRV] [cfg lsm]aw_left_thr=65535,aw_right_thr=11,aw_top_thr=12,aw_bottom_thr=13\n"}};
#undef F
}

StageCase sade() {
    STAGE_TYPES(Sade, V113);
#define F(rec, id, hi) ROW(rec, sadeParam.vorn_arm_sade_##rec, id, 0, hi, #rec)
    return {STAGE_API(Sade, V113, "sadeCalParam", "cfgsadeParam"),
            {F(model_type, 0, 2), F(ee_level, 1, 10), F(nr_level, 2, 100), F(black_edge, 3, 200),
             F(white_edge, 4, 200), PIN_ROW(sadeParam.vorn_arm_sade_debug_pin),
             INPUT_ROW(scene_mode, sadeParam.vorn_arm_sade_scene_mode, 0, 3, Kind::Held)},
            5, false, "[DSP_DRV] sade ", "!\n",
            {"[DSP_DRV] [set sade]model_type=1,scene_mode = 3,ee_level=3,nr_level=5,black_edge=7,white_edge=9,"
             "debug_pin=1!\n"},
            {"[DSP_DRV] [cfg sade]model_type=255,ee_level=11,nr_level=12,black_edge=13,white_edge=14!\n"}};
#undef F
}

StageCase sbm3d() {
    STAGE_TYPES(Sbm3d, V113);
    return {STAGE_API(Sbm3d, V113, "sbm3dCalParam", "cfgSbm3dParam"),
            {ROW(sbm3d_threshold, sbm3dParam.sbm3d_thr, 0, 0, 16384, "sbm3d_threshold"),
             PIN_ROW(sbm3dParam.debug_pin)},
            1, false, "[DSP_DRV] sbm3d ", "\n", {}, {"[DSP_DRV] [cfg SBM3D]sbm3d_threshold=65535\n"}};
}

// Print lines show each stored word as a C %d: 4294967295 shows as -1.
StageCase yuv2yuv() {
    STAGE_TYPES(Yuv2yuv, V100);
    return {STAGE_API(Yuv2yuv, V100, "yuv2yuvCalParam", "cfgYuv2yuvParam"), {FLAG_ROW(enable, enable, 0, "enable")},
            1, false, "[DSP_DRV] yuv2yuv ", "\n", {}, {"[DSP_DRV] [cfg YUV2YUV]enable=-1\n"}};
}

StageCase fusionPlate() {
    STAGE_TYPES(FusionPlate, V1001);
    Row weight = ROW(fuse_weight, fusionPlateParam.fuse_weight, 0, 1, 100, "weight");
    weight.kind = Kind::Signed;  // a negative weight is below the range, not above it
    return {STAGE_API(FusionPlate, V1001, "fusionPlateCalParam", "cfgFusionPlateParam"), {weight}, 1, false,
            "[DSP_DRV] fusionPlate ", "\n", {}, {"[DSP_DRV] [cfg FUSION_PLATE]weight=-1\n"}};
}

// LAE: a plate and a window part; the payload orders the plate fields its own way.
StageCase lae() {
    STAGE_TYPES(Lae, V209);
#define P(m, id, hi) ROW(plateLaeParam.m, laeParam.lae_param_plate.m, id, 0, hi, "plate " #m)
#define W(m, id, hi) ROW(windowLaeParam.m, laeParam.lae_param_window.m, id, 0, hi, "window " #m)
    return {STAGE_API(Lae, V209, "laeCalParam", "cfgLaeParam"),
            {FLAG_ROW(plateLaeParam.manual_en, laeParam.lae_param_plate.manual_en, 0, "plate manual_en"),
             P(gbce_lut_index, 2, 11), P(gbce_level, 1, 4), P(nf_level, 4, 100), P(ee_level, 3, 5),
             P(blue_color_level, 5, 9), P(green_luma_ave_thr, 6, 255), P(green_bg_noise_level, 7, 512),
             P(green_color_level, 8, 9), P(blue_binary_thr, 9, 255), P(blue_proc_thr, 10, 255),
             PIN_ROW(laeParam.lae_param_plate.debug_pin),
             FLAG_ROW(windowLaeParam.manual_en, laeParam.lae_param_window.manual_en, 11, "window manual_en"),
             W(gbce_lut_index, 13, 11),
             ROW(windowLaeParam.gbce_level, laeParam.lae_param_window.window_gbce_level, 12, 1, 10,
                 "window gbce_level"),
             W(nf_level, 15, 100), W(ee_level, 14, 5), PIN_ROW(laeParam.lae_param_window.debug_pin)},
            16, false, "[DSP_DRV] lae ", "\n", {},
            {"[DSP_DRV] [cfg LAE Plate]manual_en=255,gbce_lut_index=12,gbce_level=11,ee_level=13,,nf_level=14\n",
             "[DSP_DRV] [cfg LAE Plate]blue_color_level=15,green_luma_ave_thr=16,green_bg_noise_level=17,"
             "green_color_level=18,blue_binary_thr=19,blue_proc_thr=20\n",
             "[DSP_DRV] [cfg LAE Window]manual_en=21,gbce_lut_index=23,gbce_level=22,nf_level=25,ee_level=24\n"}};
#undef P
#undef W
}

// Y2D: the fields pass through (their range is their width), the window size is held to 2..3.
StageCase y2d() {
    STAGE_TYPES(Y2d, V5118);
#define F(m, id, hi) ROW(m, y2dParam.m, id, 0, hi, #m)
    return {STAGE_API(Y2d, V5118, "y2dCalParam", "cfgY2dParam"),
            {F(sd_spe, 0, 255), F(sd_de_gau0, 1, 255), F(sd_de_gau1, 2, 255), F(sd_dark, 3, 255),
             F(sd_dark_ra, 4, 255), F(sd_bright, 5, 255), F(sd_bright_ra, 6, 255), F(sd_ee_gau0, 7, 255),
             F(sd_sigma, 8, 65535), F(sd_ee_gau1, 9, 255), F(sd_ee_slope, 10, 255),
             ROW(win_size, y2dParam.win_size, 11, 2, 3, "win_size")},
            12, true, "[DSP_DRV] y2d ", "\n",
            {"[DSP_DRV] [set Y2D]sd_spe=1,sd_de_gau0=3,sd_de_gau1=5,sd_dark=7,sd_dark_ra=9,sd_bright=11\n",
             "[DSP_DRV] [set Y2D]sd_bright_ra=13,sd_ee_gau0=15,sd_sigma=17,sd_ee_gau1=19,sd_ee_slope=21,win_size=3\n"},
            {"[DSP_DRV] [cfg Y2D]sd_spe=255,sd_de_gau0=11,sd_de_gau1=12,sd_dark=13,sd_dark_ra=14,sd_bright=15\n",
             "[DSP_DRV] [cfg Y2D]sd_bright_ra=16,sd_ee_gau0=17,sd_sigma=18,sd_ee_gau1=19,sd_ee_slope=20,"
             "win_size=21\n"}};
#undef F
}

// YLWDR: eighteen upper bounds; the debug setter caps only.
StageCase ylwdr() {
    STAGE_TYPES(Ylwdr, V102);
#define F(m, id, hi) ROW(m, ylwdrParam.m, id, 0, hi, #m)
    return {STAGE_API(Ylwdr, V102, "ylwdrCalParam", "cfgYlwdrParam"),
            {F(hist_thr, 0, 65535), F(scope_thr, 1, 31), F(lep_alpha, 2, 8192), F(lut_weight, 3, 256),
             F(yout_thr0, 4, 255), F(yout_thr1, 5, 255), F(alpha1, 6, 16), F(alpha2, 7, 16), F(alpha31, 8, 63),
             F(alpha32, 9, 63), F(d1_thr1, 10, 31), F(d1_thr2, 11, 64), F(d1_thr3, 12, 64), F(d2_thr1, 13, 64),
             F(d2_thr2, 14, 64), F(gamma_coef, 15, 63), F(uv_thr, 16, 63), F(uv_gain, 17, 63)},
            18, true, "[DSP_DRV] ylwdr ", "\n",
            {"[DSP_DRV] [set YLWDR]hist_thr=1,scope_thr=3,lep_alpha=5,lut_weight=7,yout_thr0=9,yout_thr1=11\n",
             "[DSP_DRV] [set YLWDR]alpha1=13,alpha2=15,alpha31=17,alpha32=19,d1_thr1=21,d1_thr2=23,,d1_thr3=25\n",
             "[DSP_DRV] [set YLWDR]d2_thr1=27,d2_thr2=29,gamma_coef=31,uv_thr=33,uv_gain=35\n"},
            {"[DSP_DRV] [cfg YLWDR]hist_thr=-1,scope_thr=11,lep_alpha=12,lut_weight=13,yout_thr0=14,yout_thr1=15\n",
             "[DSP_DRV] [cfg YLWDR]alpha1=16,alpha2=17,alpha31=18,alpha32=19,d1_thr1=20,d1_thr2=21,,d1_thr3=22\n",
             "[DSP_DRV] [cfg YLWDR]d2_thr1=23,d2_thr2=24,gamma_coef=25,uv_thr=26,uv_gain=27\n"}};
#undef F
}

INSTANTIATE_TEST_SUITE_P(Family, StageContract,
                         testing::Values(dlae(), dlcfa(), fg2c(), lle(), lsm(), sade(), sbm3d(), yuv2yuv(),
                                         fusionPlate(), lae(), y2d(), ylwdr()),
                         stageName);

}  // namespace
}  // namespace stage_test

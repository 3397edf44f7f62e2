// The enhancement stage contract, run for the twelve stages of the family (the
// fusion plate included): the calculation holds every field to its documented
// range and writes nothing else, each debug id holds and confirms its value,
// unknown ids are silent, null pointers are named, and the exact log lines.
// Expected values come from the ranges in the tables below, never from the library.
#include <algorithm>
#include <cstring>
#include <functional>

#include "stage_cases.h"
#include "support/log_capture.h"

namespace stage_test {
namespace {

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

std::vector<std::string> texts(const LogCapture& log) { return log.texts(); }

class StageContract : public testing::TestWithParam<StageCase> {};

TEST_P(StageContract, CalculationHoldsEachFieldToItsRangeAndWritesNothingElse) {
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
        if (!mapped[i]) EXPECT_EQ(payload[i], kSentinel) << "payload byte " << i;
    }
}

TEST_P(StageContract, DebugSetterHoldsTheValueAndConfirmsIt) {
    const StageCase& stage = GetParam();
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
            EXPECT_EQ(texts(log), std::vector<std::string>{line});
            EXPECT_EQ(log.count(LogKind::Info), 1u);
        }
    }
}

TEST_P(StageContract, UnknownAndSilentIdsChangeNothingAndLogNothing) {
    const StageCase& stage = GetParam();
    std::vector<int32_t> ids = {stage.idCount, stage.idCount + 1, 1000, INT32_MAX, -1, -2, INT32_MIN};
    for (int32_t id = 0; id < stage.idCount; ++id) {
        const auto rows = std::count_if(stage.rows.begin(), stage.rows.end(), [&](const Row& r) { return r.id == id; });
        ASSERT_LE(rows, 1) << "id " << id;
        if (rows == 0) ids.push_back(id);  // a known id without a field
    }
    for (int32_t id : ids) {
        for (int32_t value : {0, 1, -1, INT32_MAX, INT32_MIN}) {
            LogCapture log;
            Bytes record(stage.api.recordSize, kSentinel);
            EXPECT_EQ(stage.api.debugSet(record.data(), id, value), 0) << id;
            EXPECT_EQ(record, Bytes(stage.api.recordSize, kSentinel)) << id;
            EXPECT_TRUE(log.lines().empty()) << id;
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

TEST_P(StageContract, CalculationAndPrintLogTheirExactLines) {
    const StageCase& stage = GetParam();
    Bytes input(stage.api.inputSize, 0), payload(stage.api.payloadSize, 0), record(stage.api.recordSize, 0);
    for (size_t k = 0; k < stage.rows.size(); ++k) {
        const Row& row = stage.rows[k];
        put(input, row.in, uint32_t(2 * k + 1));
        if (row.id >= 0) put(record, row.rec, row.id == 0 ? allOnes(row.rec) : uint32_t(10 + row.id));
    }
    LogCapture calc;
    ASSERT_EQ(stage.api.calculate(input.data(), payload.data()), 0);
    EXPECT_EQ(texts(calc), stage.setLines);
    const Bytes before = record;
    LogCapture print;
    ASSERT_EQ(stage.api.print(record.data()), 0);
    EXPECT_EQ(texts(print), stage.printLines);
    EXPECT_EQ(record, before);
}

// ---- The stages: fields, documented ranges, debug ids and lines ----

StageCase dlae() {
    using Rec = CFG_DSP_DlaeV101;
    using In = DSP_DlaeCalculateParam;
    using Out = DSP_DlaeV101;
    return {STAGE_API(Dlae, V101, "dlaeCalParam", "cfgDlaeParam"),
            {ROW(fusion_weight, dlaeParam.vorn_hi_dlae_fusion_weight, 0, 0, 8, "fusion_weight"),
             PIN_ROW(dlaeParam.vorn_hi_dlae_debug_pin),  // id 1: the payload's debug_pin slot, no record field
             ROW(window_gain, dlaeParam.vorn_hi_dlae_window_gain, 2, 128, 512, "window_gain"),
             ROW(gamma, dlaeParam.vorn_hi_dlae_gamma, 3, 0, 6, "gamma"),
             ROW(edge, dlaeParam.vorn_hi_dlae_edge, 4, 0, 12, "edge"),
             ROW(denoise, dlaeParam.vorn_hi_dlae_denoise, 5, 0, 5, "denoise")},
            6, false, "[DSP_DRV] dlae ", "!\n",
            {"[DSP_DRV] [set DLAE]fusion_weight=1,window_gain=128,gamma=6,edge=9,denoise=5,debug_pin=1!\n"},
            {"[DSP_DRV] [cfg DLAE]fusion_weight=255,window_gain=12,gamma=13,edge=14,denoise=15!\n"}};
}

StageCase dlcfa() {
    using Rec = CFG_DSP_DlcfaV101;
    using In = DSP_DlcfaCalculateParam;
    using Out = DSP_DlcfaV101;
    return {STAGE_API(Dlcfa, V101, "dlcfaCalParam", "cfgDlcfaParam"),
            {ROW(ee_level, dlcfaParam.vorn_hi_dlcfa_ee_level, 0, 0, 511, "ee_level"),
             ROW(gamma, dlcfaParam.vorn_hi_dlcfa_gamma, 1, 0, 6, "gamma"),
             ROW(luma_contrast, dlcfaParam.vorn_hi_dlcfa_luma_contrast, 2, 0, 11, "luma_contrast"),
             ROW(denoise, dlcfaParam.vorn_hi_dlcfa_denoise, 3, 0, 4, "denoise"),
             ROW(fusion_weight, dlcfaParam.vorn_hi_dlcfa_fusion_weight, 4, 0, 7, "fusion_weight"),
             PIN_ROW(dlcfaParam.vorn_hi_dlcfa_debug_pin)},
            5, false, "[DSP_DRV] dlcfa ", "!\n",
            {"[DSP_DRV] [set DLCFA]ee_level=1,gamma=3,luma_contrast=5,denoise=4,fusion_weight=7,debug_pin=1!\n"},
            {"[DSP_DRV] [cfg DLCFA]ee_level=65535,gamma=11,luma_contrast=12,denoise=13,fusion_weight=14!\n"}};
}

StageCase fg2c() {
    using Rec = CFG_DSP_Fg2cV102;
    using In = DSP_Fg2cCalculateParam;
    using Out = DSP_Fg2cV102;
    return {STAGE_API(Fg2c, V102, "fg2cCalParam", "cfgFg2cParam"),
            {ROW(need_win_enhence, fg2cParam.vorn_hi_fg2c_need_win_enhence, 0, 0, 2, "need_win_enhence"),
             ROW(win_fusion_weight, fg2cParam.vorn_hi_fg2c_win_fusion_weight, 1, 0, 8, "win_fusion_weight"),
             ROW(face_fusion_weight, fg2cParam.vorn_hi_fg2c_face_fusion_weight, 2, 0, 8, "face_fusion_weight"),
             ROW(face_fusion_pad, fg2cParam.vorn_hi_fg2c_face_fusion_pad, 3, 0, 20, "face_fusion_pad"),
             PIN_ROW(fg2cParam.vorn_hi_fg2c_debug_pin)},
            4, false, "[DSP_DRV] fg2c ", "\n", {},
            {"[DSP_DRV] [cfg FG2C]need_win_enhence=255,win_fusion_weight=11,face_fusion_weight=12,"
             "face_fusion_pad=13.\n"}};
}

StageCase lle() {
    using Rec = CFG_DSP_LleV203;
    using In = DSP_LleCalculateParam;
    using Out = DSP_LleV203;
    return {STAGE_API(Lle, V203, "lleCalParam", "cfgLleParam"),
            {ROW(window_gain, lleParam.vorn_hi_lle_window_gain, 0, 128, 512, "window_gain"),
             ROW(gamma, lleParam.vorn_hi_lle_gamma, 1, 0, 6, "gamma"),
             ROW(edge, lleParam.vorn_hi_lle_edge, 2, 0, 32, "edge"),
             ROW(denoise, lleParam.vorn_hi_lle_denoise, 3, 0, 5, "denoise"),
             ROW(fusion_weight, lleParam.vorn_hi_lle_fusion_weight, 4, 0, 7, "fusion_weight"),
             PIN_ROW(lleParam.vorn_hi_lle_debug_pin)},
            5, true, "[DSP_DRV] lle ", "\n",
            {"[DSP_DRV] [set LLE]window_gain=128,gamma=3,edge=5,denoise=5,fusion_weight=7,debug_pin=1\n"},
            {"[DSP_DRV] [cfg LLE]window_gain=65535,gamma=11,edge=12,denoise=13,fusion_weight=14\n"}};
}

StageCase lsm() {
    using Rec = CFG_DSP_LsmV112;
    using Out = DSP_LsmV112;
    // Payload bytes 8..29 (aw_wr .. rep_center_y) are the host's.
    return {STAGE_API(Lsm, V112, "lsmCalParam", "cfgLsmParam"),
            {ROW(aw_left_thr, lsmParam.aw_left_thr, 0, 0, 1024, "aw_left_thr"),
             ROW(aw_right_thr, lsmParam.aw_right_thr, 1, 0, 1024, "aw_right_thr"),
             ROW(aw_top_thr, lsmParam.aw_top_thr, 2, 0, 1024, "aw_top_thr"),
             ROW(aw_bottom_thr, lsmParam.aw_bottom_thr, 3, 0, 1024, "aw_bottom_thr")},
            4, false, "[DSP_DRV] lsm ", "\n", {},
            {"[DSP_DRV] [cfg lsm]aw_left_thr=65535,aw_right_thr=11,aw_top_thr=12,aw_bottom_thr=13\n"}};
}

StageCase sade() {
    using Rec = CFG_DSP_SadeV113;
    using In = DSP_SadeCalculateParam;
    using Out = DSP_SadeV113;
    return {STAGE_API(Sade, V113, "sadeCalParam", "cfgsadeParam"),
            {ROW(model_type, sadeParam.vorn_arm_sade_model_type, 0, 0, 2, "model_type"),
             ROW(ee_level, sadeParam.vorn_arm_sade_ee_level, 1, 0, 10, "ee_level"),
             ROW(nr_level, sadeParam.vorn_arm_sade_nr_level, 2, 0, 100, "nr_level"),
             ROW(black_edge, sadeParam.vorn_arm_sade_black_edge, 3, 0, 200, "black_edge"),
             ROW(white_edge, sadeParam.vorn_arm_sade_white_edge, 4, 0, 200, "white_edge"),
             PIN_ROW(sadeParam.vorn_arm_sade_debug_pin),
             INPUT_ROW(scene_mode, sadeParam.vorn_arm_sade_scene_mode, 0, 3, Kind::Held)},
            5, false, "[DSP_DRV] sade ", "!\n",
            {"[DSP_DRV] [set sade]model_type=1,scene_mode = 3,ee_level=3,nr_level=5,black_edge=7,white_edge=9,"
             "debug_pin=1!\n"},
            {"[DSP_DRV] [cfg sade]model_type=255,ee_level=11,nr_level=12,black_edge=13,white_edge=14!\n"}};
}

StageCase sbm3d() {
    using Rec = CFG_DSP_Sbm3dV113;
    using In = DSP_Sbm3dCalculateParam;
    using Out = DSP_Sbm3dV113;
    return {STAGE_API(Sbm3d, V113, "sbm3dCalParam", "cfgSbm3dParam"),
            {ROW(sbm3d_threshold, sbm3dParam.sbm3d_thr, 0, 0, 16384, "sbm3d_threshold"),
             PIN_ROW(sbm3dParam.debug_pin)},
            1, false, "[DSP_DRV] sbm3d ", "\n", {},
            {"[DSP_DRV] [cfg SBM3D]sbm3d_threshold=65535\n"}};
}

StageCase yuv2yuv() {
    using Rec = CFG_DSP_Yuv2yuvV100;
    using Out = DSP_Yuv2yuvV100;
    // Print lines show each stored word as a C %d: 4294967295 shows as -1.
    return {STAGE_API(Yuv2yuv, V100, "yuv2yuvCalParam", "cfgYuv2yuvParam"),
            {FLAG_ROW(enable, enable, 0, "enable")},
            1, false, "[DSP_DRV] yuv2yuv ", "\n", {},
            {"[DSP_DRV] [cfg YUV2YUV]enable=-1\n"}};
}

StageCase fusionPlate() {
    using Rec = CFG_DSP_FusionPlateV1001;
    using Out = DSP_FusionPlateV1001;
    Row weight = ROW(fuse_weight, fusionPlateParam.fuse_weight, 0, 1, 100, "weight");
    weight.kind = Kind::Signed;  // a negative weight is below the range, not above it
    return {STAGE_API(FusionPlate, V1001, "fusionPlateCalParam", "cfgFusionPlateParam"),
            {weight}, 1, false, "[DSP_DRV] fusionPlate ", "\n", {},
            {"[DSP_DRV] [cfg FUSION_PLATE]weight=-1\n"}};
}

// LAE: a plate and a window part; the payload orders the plate fields its own way.
StageCase lae() {
    using Rec = CFG_DSP_LaeV209;
    using In = DSP_LaeCalculateParam;
    using Out = DSP_LaeV209;
#define PLATE(m, id, lo, hi) ROW(plateLaeParam.m, laeParam.lae_param_plate.m, id, lo, hi, "plate " #m)
#define WINDOW(m, id, lo, hi) ROW(windowLaeParam.m, laeParam.lae_param_window.m, id, lo, hi, "window " #m)
    return {STAGE_API(Lae, V209, "laeCalParam", "cfgLaeParam"),
            {FLAG_ROW(plateLaeParam.manual_en, laeParam.lae_param_plate.manual_en, 0, "plate manual_en"),
             PLATE(gbce_lut_index, 2, 0, 11), PLATE(gbce_level, 1, 0, 4), PLATE(nf_level, 4, 0, 100),
             PLATE(ee_level, 3, 0, 5), PLATE(blue_color_level, 5, 0, 9), PLATE(green_luma_ave_thr, 6, 0, 255),
             PLATE(green_bg_noise_level, 7, 0, 512), PLATE(green_color_level, 8, 0, 9),
             PLATE(blue_binary_thr, 9, 0, 255), PLATE(blue_proc_thr, 10, 0, 255),
             PIN_ROW(laeParam.lae_param_plate.debug_pin),
             FLAG_ROW(windowLaeParam.manual_en, laeParam.lae_param_window.manual_en, 11, "window manual_en"),
             WINDOW(gbce_lut_index, 13, 0, 11),
             ROW(windowLaeParam.gbce_level, laeParam.lae_param_window.window_gbce_level, 12, 1, 10,
                 "window gbce_level"),
             WINDOW(nf_level, 15, 0, 100), WINDOW(ee_level, 14, 0, 5),
             PIN_ROW(laeParam.lae_param_window.debug_pin)},
            16, false, "[DSP_DRV] lae ", "\n", {},
            {"[DSP_DRV] [cfg LAE Plate]manual_en=255,gbce_lut_index=12,gbce_level=11,ee_level=13,,nf_level=14\n",
             "[DSP_DRV] [cfg LAE Plate]blue_color_level=15,green_luma_ave_thr=16,green_bg_noise_level=17,"
             "green_color_level=18,blue_binary_thr=19,blue_proc_thr=20\n",
             "[DSP_DRV] [cfg LAE Window]manual_en=21,gbce_lut_index=23,gbce_level=22,nf_level=25,ee_level=24\n"}};
#undef PLATE
#undef WINDOW
}

// Y2D: the fields pass through (their range is their width), the window size is held to 2..3.
StageCase y2d() {
    using Rec = CFG_DSP_Y2dV5118;
    using Out = DSP_Y2dV5118;
#define Y2D(m, id, hi) ROW(m, y2dParam.m, id, 0, hi, #m)
    return {STAGE_API(Y2d, V5118, "y2dCalParam", "cfgY2dParam"),
            {Y2D(sd_spe, 0, 255), Y2D(sd_de_gau0, 1, 255), Y2D(sd_de_gau1, 2, 255), Y2D(sd_dark, 3, 255),
             Y2D(sd_dark_ra, 4, 255), Y2D(sd_bright, 5, 255), Y2D(sd_bright_ra, 6, 255), Y2D(sd_ee_gau0, 7, 255),
             Y2D(sd_sigma, 8, 65535), Y2D(sd_ee_gau1, 9, 255), Y2D(sd_ee_slope, 10, 255),
             ROW(win_size, y2dParam.win_size, 11, 2, 3, "win_size")},
            12, true, "[DSP_DRV] y2d ", "\n",
            {"[DSP_DRV] [set Y2D]sd_spe=1,sd_de_gau0=3,sd_de_gau1=5,sd_dark=7,sd_dark_ra=9,sd_bright=11\n",
             "[DSP_DRV] [set Y2D]sd_bright_ra=13,sd_ee_gau0=15,sd_sigma=17,sd_ee_gau1=19,sd_ee_slope=21,win_size=3\n"},
            {"[DSP_DRV] [cfg Y2D]sd_spe=255,sd_de_gau0=11,sd_de_gau1=12,sd_dark=13,sd_dark_ra=14,sd_bright=15\n",
             "[DSP_DRV] [cfg Y2D]sd_bright_ra=16,sd_ee_gau0=17,sd_sigma=18,sd_ee_gau1=19,sd_ee_slope=20,"
             "win_size=21\n"}};
#undef Y2D
}

// YLWDR: eighteen upper bounds; the debug setter caps only.
StageCase ylwdr() {
    using Rec = CFG_DSP_YlwdrV102;
    using Out = DSP_YlwdrV102;
#define YL(m, id, hi) ROW(m, ylwdrParam.m, id, 0, hi, #m)
    return {STAGE_API(Ylwdr, V102, "ylwdrCalParam", "cfgYlwdrParam"),
            {YL(hist_thr, 0, 65535), YL(scope_thr, 1, 31), YL(lep_alpha, 2, 8192), YL(lut_weight, 3, 256),
             YL(yout_thr0, 4, 255), YL(yout_thr1, 5, 255), YL(alpha1, 6, 16), YL(alpha2, 7, 16),
             YL(alpha31, 8, 63), YL(alpha32, 9, 63), YL(d1_thr1, 10, 31), YL(d1_thr2, 11, 64), YL(d1_thr3, 12, 64),
             YL(d2_thr1, 13, 64), YL(d2_thr2, 14, 64), YL(gamma_coef, 15, 63), YL(uv_thr, 16, 63),
             YL(uv_gain, 17, 63)},
            18, true, "[DSP_DRV] ylwdr ", "\n",
            {"[DSP_DRV] [set YLWDR]hist_thr=1,scope_thr=3,lep_alpha=5,lut_weight=7,yout_thr0=9,yout_thr1=11\n",
             "[DSP_DRV] [set YLWDR]alpha1=13,alpha2=15,alpha31=17,alpha32=19,d1_thr1=21,d1_thr2=23,,d1_thr3=25\n",
             "[DSP_DRV] [set YLWDR]d2_thr1=27,d2_thr2=29,gamma_coef=31,uv_thr=33,uv_gain=35\n"},
            {"[DSP_DRV] [cfg YLWDR]hist_thr=-1,scope_thr=11,lep_alpha=12,lut_weight=13,yout_thr0=14,yout_thr1=15\n",
             "[DSP_DRV] [cfg YLWDR]alpha1=16,alpha2=17,alpha31=18,alpha32=19,d1_thr1=20,d1_thr2=21,,d1_thr3=22\n",
             "[DSP_DRV] [cfg YLWDR]d2_thr1=23,d2_thr2=24,gamma_coef=25,uv_thr=26,uv_gain=27\n"}};
#undef YL
}

INSTANTIATE_TEST_SUITE_P(Family, StageContract,
                         testing::Values(dlae(), dlcfa(), fg2c(), lle(), lsm(), sade(), sbm3d(), yuv2yuv(),
                                         fusionPlate(), lae(), y2d(), ylwdr()),
                         stageName);

}  // namespace
}  // namespace stage_test

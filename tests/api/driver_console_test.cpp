// The debug console behind OpSetDbgDspParam: command matching in table
// order, the fusion setters on the current table, the flag after each change,
// the run-parameter print and the menu in both languages.
#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "api/driver_host.h"
#include "api/fusion_fields.h"
#include "support/nir_curve_text.h"

namespace {

using driver_test::ConsoleArgs;
using driver_test::HostPipe;
using ispdsp_test::LogKind;
using ispdsp_test::ParamFileBuilder;

// The command table as the console documents it: name, Chinese and English text.
struct MenuRow {
    const char* name;
    const char* chinese;  // UTF-8 here; the driver prints it in GBK
    const char* english;
};
const std::array<MenuRow, 28> kMenu = {{
    {"runParam", "isp运行参数", "\t aew dbg get isp run params, faculative value"},
    {"ep_delta", "数据模糊", "\t aew dbg Fusion ep_delta, ep_delta~[1,16383]"},
    {"fusion_hf_ratio", "高频比例", "\t aew dbg Fusion fusion_hf_ratio, aw_right_thr~[0,256]"},
    {"fwmin_wt", "差值折线横轴fwmax_limit对应的映射值", "\t aew dbg Fusion fwmin_wt, fwmin_wt~[0,255]"},
    {"nir_k", "红外限制，控制阈值后红外提升幅度", "\t aew dbg Fusion nir_k, nir_k~[0,256]"},
    {"hf_zoom", "高频缩放比例，越大，清晰度越好", "\t aew dbg Fusion hf_zoom, hf_zoom~[0,2047]"},
    {"dark_inner", "最终融合比例映射", "\t aew dbg Fusion dark_inner, dark_inner~[0,65025]"},
    {"high_lum_thr", "控制高亮区域的高频融合", "\t aew dbg Fusion high_lum_thr, high_lum_thr~[-256,-1]"},
    {"fwmin_limit", "差值折线横轴最小值", "\t aew dbg Fusion fwmin_limit, fwmin_limit~[0,255]"},
    {"fwmax_limit", "差值折线横轴最大值", "\t aew dbg Fusion fwmax_limit, fwmax_limit~[0,255]"},
    {"copy_en", "红外输入直接拷贝到输出的使能开关", "\t aew dbg Fusion copy_en, copy_en~[0,1]"},
    {"nir_a", "", "\t aew dbg Fusion nir_a, nir_a~[-1,1]"},
    {"vis_b", "", "\t aew dbg Fusion vis_b, vis_b~[-1,1]"},
    {"nir_min", "红外限制阈值，该阈值后红外控制起效", "\t aew dbg Fusion nir_min, nir_min~[0,255]"},
    {"uv_coef", "饱和度参数,越大整体颜色越鲜艳,定点U3.5", "\t aew dbg Fusion uv_coef, uv_coef~[0,255]"},
    {"uv_diff_thr", "越小，暗处颜色恢复越弱", "\t aew dbg Fusion uv_diff_thr, uv_diff_thr~[1,255]"},
    {"uv_diff_min", "uvdiff调整的下限", "\t aew dbg Fusion uv_diff_min, uv_diff_min~[0,255]"},
    {"uv_diff_max", "uvdiff调整的上限", "\t aew dbg Fusion uv_diff_max, uv_diff_max~[0,255]"},
    {"uv_vlight_min", "vis_y小于该值,颜色不调整", "\t aew dbg Fusion uv_vlight_min, uv_vlight_min~[0,2047]"},
    {"uv_vlight_max", "vis_y大于该值,颜色正常调整", "\t aew dbg Fusion uv_vlight_max, uv_vlight_max~[0,255]"},
    {"uv_sat_limit", "越大，鲜艳的颜色恢复越弱", "\t aew dbg Fusion uv_sat_limit, uv_sat_limit~[1,255]"},
    {"uv_rsmooth", "越大，红色越平滑，红色越淡", "\t aew dbg Fusion uv_rsmooth, uv_rsmooth~[1,255]"},
    {"uv_gsmooth", "越大，绿色越平滑，绿色越淡", "\t aew dbg Fusion uv_gsmooth, uv_gsmooth~[1,255]"},
    {"uv_bsmooth", "越大，蓝色越平滑，蓝色越淡", "\t aew dbg Fusion uv_bsmooth, uv_bsmooth~[1,255]"},
    {"uv_wmin", "比例恢复颜色的最小值", "\t aew dbg Fusion uv_wmin, uv_wmin~[0,255]"},
    {"uv_wmax", "比例恢复颜色的最大值", "\t aew dbg Fusion uv_wmax, uv_wmax~[0,255]"},
    {"uv_w", "比例恢复颜色权重,越大颜色越鲜艳", "\t aew dbg Fusion uv_w, uv_w~[0,255]"},
    {"w_nir", "w_nir曲线", "\t aew dbg Fusion w_nir, w_nir~[0,255]"},
}};

// UTF-8 to GBK through the C library; nothing when the converter is missing.
bool toGbk(std::string utf8, std::string& gbk) {
    iconv_t cd = iconv_open("GBK", "UTF-8");
    if (cd == reinterpret_cast<iconv_t>(-1)) return false;
    gbk.assign(utf8.size() * 2 + 4, '\0');
    char *in = utf8.data(), *out = gbk.data();
    size_t inLeft = utf8.size(), outLeft = gbk.size();
    const bool ok = iconv(cd, &in, &inLeft, &out, &outLeft) != static_cast<size_t>(-1);
    iconv_close(cd);
    gbk.resize(gbk.size() - outLeft);
    return ok;
}

constexpr Int32 kStart = 3, kEnd = 5;
constexpr int32_t kUnchanged = INT32_MIN;

class DriverConsole : public driver_test::DriverTest {
protected:
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                              .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(7))
                                                              .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(8))
                                                              .build());
        ASSERT_EQ(pipe.createPipe(), 0);
        pipe.run().gainInterParam.gainStartIndex = kStart;
        pipe.run().gainInterParam.gainEndIndex = kEnd;
        ASSERT_EQ(pipe.refresh(nullptr), 0);
        records = pipe.instance()->dspCfgTables.curTable->ispFusionParam;
        std::memcpy(original, records, sizeof(original));
        log.clear();
    }
    void TearDown() override { EXPECT_EQ(pipe.remove(), 0); }

    Int32 run(std::initializer_list<const char*> args, Int32 langue = 0) {
        ConsoleArgs cmd(args);
        return pipe.console(&cmd.record, langue);
    }

    HostPipe pipe{1};
    CFG_DSP_FusionV2722* records = nullptr;
    CFG_DSP_FusionV2722 original[FUSION_GAIN_STEPS];
};

// Every fusion command holds its value (below, above and inside its range) into
// its own field of the two records of the blend, confirms the stored value as
// %u and sends one flag.
TEST_F(DriverConsole, EachCommandHoldsItsFieldInBothRecordsAndConfirms) {
    for (int row = 1; row <= 26; ++row) {
        const fusion_test::FieldModel& f = fusion_test::kFields[row - 1];
        ASSERT_STREQ(kMenu[row].name, f.name);
        for (int32_t value : {f.hi + 1, INT32_MAX, f.lo - 1, INT32_MIN, f.lo + (f.hi - f.lo) / 2, f.lo, f.hi}) {
            SCOPED_TRACE(std::string(f.name) + " = " + std::to_string(value));
            std::memcpy(records, original, sizeof(original));
            log.clear();
            const size_t flagsBefore = pipe.flags.size();
            EXPECT_EQ(run({f.name, std::to_string(value).c_str()}), 0);
            const int32_t held = std::clamp(value, f.lo, f.hi);
            EXPECT_EQ(fusion_test::readField(f, &records[kStart]), held);
            EXPECT_EQ(fusion_test::readField(f, &records[kEnd]), held);
            fusion_test::writeField(f, &records[kStart], fusion_test::readField(f, &original[kStart]));
            fusion_test::writeField(f, &records[kEnd], fusion_test::readField(f, &original[kEnd]));
            EXPECT_EQ(std::memcmp(records, original, sizeof(original)), 0);
            EXPECT_EQ(log.texts(), std::vector<std::string>{"[DSP_DRV] fusion " + std::string(f.name) + " is " +
                                                             std::to_string(uint32_t(held)) + "\n"});
            EXPECT_EQ(pipe.flags.size(), flagsBefore + 1);
        }
    }
    EXPECT_EQ(pipe.flags.back().cmdType, ISP_SET_FUSION);
    EXPECT_EQ(pipe.flags.back().flag, 1u);
}

// Command lines and what they leave: the result, the flags, one stored value,
// and one line. Commands follow the table's order; each search starts at the
// entry last matched. A name without a value is skipped with a warning.
TEST_F(DriverConsole, CommandLines) {
    struct Case {
        std::vector<const char*> args;
        Int32 result;
        size_t flags;
        const char* field;  // in both records of the blend
        int32_t stored;
        LogKind kind;
        const char* message;  // one such line (warnings name DRV_ispSetDbgDspParam)
    };
    const Case cases[] = {
        {{}, 0, 0, "ep_delta", kUnchanged, LogKind::Info, nullptr},
        {{"ep_delta", "100"}, 0, 1, "ep_delta", 100, LogKind::Info, "fusion ep_delta is 100\n"},
        {{"ep_delta", "10", "hf_zoom", "200"}, 0, 2, "hf_zoom", 200, LogKind::Info, "fusion ep_delta is 10\n"},
        {{"uv_w", "5", "uv_w", "6"}, 0, 2, "uv_w", 6, LogKind::Info, "fusion uv_w is 5\n"},
        {{"hf_zoom", "200", "ep_delta", "10"}, -1, 1, "ep_delta", kUnchanged, LogKind::Warn,
         "ep_delta, \tNot support\r\n"},
        {{"runParam"}, 0, 0, "ep_delta", kUnchanged, LogKind::Warn, "runParam need parm\r\n"},
        {{"ep_delta", "9", "uv_w"}, 0, 1, "ep_delta", 9, LogKind::Warn, "uv_w need parm\r\n"},
        // No curve file: that setter fails, a warning and no flag, and the call still succeeds.
        {{"uv_w", "4", "w_nir", "3"}, 0, 1, "uv_w", 4, LogKind::Warn, "[dsp]DRV_dspdbgFusion failed\n"},
        // Values are read as decimal numbers; beyond 32 bits they saturate before the setter holds them.
        {{"hf_zoom", "12abc"}, 0, 1, "hf_zoom", 12, LogKind::Info, "fusion hf_zoom is 12\n"},
        {{"hf_zoom", "abc"}, 0, 1, "hf_zoom", 0, LogKind::Info, "fusion hf_zoom is 0\n"},
        {{"hf_zoom", "  +77"}, 0, 1, "hf_zoom", 77, LogKind::Info, "fusion hf_zoom is 77\n"},
        {{"dark_inner", "99999999999"}, 0, 1, "dark_inner", 65025, LogKind::Info, "fusion dark_inner is 65025\n"},
        {{"high_lum_thr", "-99999999999"}, 0, 1, "high_lum_thr", -256, LogKind::Info,
         "fusion high_lum_thr is 4294967040\n"},
        {{"hf_zoom", "4294967297"}, 0, 1, "hf_zoom", 2047, LogKind::Info, "fusion hf_zoom is 2047\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.empty() ? "no arguments" : std::string(c.args[0]) + " ...");
        std::memcpy(records, original, sizeof(original));
        pipe.flags.clear();
        log.clear();
        ConsoleArgs cmd(c.args);
        EXPECT_EQ(pipe.console(&cmd.record, 0), c.result);
        EXPECT_EQ(pipe.flags.size(), c.flags);
        const auto& f = *std::find_if(std::begin(fusion_test::kFields), std::end(fusion_test::kFields),
                                      [&](const auto& field) { return std::strcmp(field.name, c.field) == 0; });
        for (int index : {kStart, kEnd}) {
            const int32_t want = c.stored == kUnchanged ? fusion_test::readField(f, &original[index]) : c.stored;
            EXPECT_EQ(fusion_test::readField(f, &records[index]), want) << index;
        }
        if (c.message == nullptr) {
            EXPECT_TRUE(log.lines().empty());
        } else {
            EXPECT_TRUE(log.has(c.kind, c.kind == LogKind::Warn ? "DRV_ispSetDbgDspParam" : "", c.message));
        }
    }
}

TEST_F(DriverConsole, RunParamPrintsTheRunStateAndSendsNoFlag) {
    pipe.run().dncMode = 1;
    pipe.run().hdrMode = 0;
    pipe.run().imageScene = 0;
    pipe.run().sceneMode = 2;
    EXPECT_EQ(run({"runParam", "1"}), 0);
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 8u);  // four lines here, four of the fusion print
    EXPECT_EQ(texts[0], "[DSP_DRV] [dsp]drv isp run param:\n");
    EXPECT_EQ(texts[1], "[DSP_DRV] curTableIdx=0,curTableType=0\n");
    EXPECT_EQ(texts[2], "[DSP_DRV] dncMode=1,hdrMode=0,imageScene=0,sceneMode=2\n");
    EXPECT_EQ(texts[3], "[DSP_DRV] gainStartIndex=3,gainEndIndex=5\n");
    EXPECT_EQ(texts[4].rfind("[DSP_DRV] [cfg fusion]ep_delta=[", 0), 0u);
    EXPECT_EQ(pipe.flags.size(), 0u);
    EXPECT_EQ(std::memcmp(records, original, sizeof(original)), 0);  // nothing changed
}

// The curve command loads /tmp/nir.txt into both records (without it:
// CommandLines; the file format: fusion_debug_test.cpp).
TEST_F(DriverConsole, NirCurveFromFile) {
    sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());  // point i is i * 5 % 256, the last 7
    EXPECT_EQ(run({"w_nir", "3"}), 0);
    EXPECT_EQ(pipe.flags.size(), 1u);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i)
        ASSERT_TRUE(records[kStart].w_nir[i] == (i < 510 ? i * 5 % 256 : 7) && records[kEnd].w_nir[i] == records[kStart].w_nir[i]) << i;
}

// An unknown name: a warning, the usage line and the menu in the chosen
// language (Chinese in GBK; nir_a and vis_b have no Chinese text), and -1.
TEST_F(DriverConsole, UnknownNamePrintsTheMenuInEitherLanguage) {
    for (Int32 langue : {0, 1, 2}) {
        log.clear();
        EXPECT_EQ(run({"nothing", "1"}, langue), -1);
        const auto texts = log.texts();
        ASSERT_EQ(texts.size(), 30u);
        EXPECT_TRUE(isDriverLine(log.lines()[0], LogKind::Warn, "DRV_ispSetDbgDspParam", "nothing, \tNot support\r\n"));
        EXPECT_EQ(texts[1], "[DSP_DRV] Usage: aewDebug [cmd1][cmd2]=[cmd3]:[cmd4] ... \r\n");
        EXPECT_EQ(log.count(LogKind::Info), 29u);
        for (size_t row = 0; row < kMenu.size(); ++row) {
            std::string text = kMenu[row].english;
            if (langue == 1 && !toGbk(kMenu[row].chinese, text)) GTEST_SKIP() << "no GBK converter on this system";
            char line[512];  // the menu's own layout: the name in ten columns, then ':' in two
            std::snprintf(line, sizeof(line), "[DSP_DRV] \n%-10s%-2c%s\r\n", kMenu[row].name, ':', text.c_str());
            EXPECT_EQ(texts[2 + row], line) << kMenu[row].name;
        }
    }
    EXPECT_EQ(pipe.flags.size(), 0u);
}

TEST_F(DriverConsole, ArgumentCountBeyondTheRecordIsBounded) {
    ConsoleArgs cmd({});
    static char name[] = "uv_w";
    static char value[] = "9";
    for (int i = 0; i < DRV_ISP_CMD_MAX_ARGS; ++i) cmd.record.argp[i].pointer = (i % 2 == 0) ? name : value;
    cmd.record.argc = 1000;
    EXPECT_EQ(pipe.console(&cmd.record, 0), 0);
    EXPECT_EQ(pipe.flags.size(), 16u);  // 16 pairs; the 33rd entry has no value inside the record
    EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispSetDbgDspParam", "uv_w need parm\r\n"), 1u);

    // A null entry inside the count ends the list.
    ConsoleArgs shortList({"uv_w", "3"});
    shortList.record.argc = 5;
    EXPECT_EQ(pipe.console(&shortList.record, 0), 0);
    EXPECT_EQ(records[kStart].uv_w, 3);
}

// Before the first refresh every command fails, runParam included. (The null
// table and argument: EverySlotRefusesMissingPointers in driver_lifecycle_test.cpp.)
TEST_F(DriverConsole, EveryCommandNeedsAChosenTable) {
    HostPipe fresh(2);
    ASSERT_EQ(fresh.createPipe(), 0);
    log.clear();
    ConsoleArgs cmd({"runParam", "1"});
    EXPECT_EQ(fresh.console(&cmd.record, 0), -1);
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispSetDbgDspParam", "Input NULL POINT curParam!\n"), 1u);
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(fresh.remove(), 0);
}

}  // namespace

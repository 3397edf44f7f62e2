// The debug console behind OpSetDbgDspParam: command matching in table
// order, the fusion setters on the current table, the flag after each change,
// the run-parameter print and the menu in both languages.
#include <gtest/gtest.h>
#include <iconv.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "api/driver_host.h"

namespace {

using driver_test::ConsoleArgs;
using driver_test::HostPipe;
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
bool toGbk(const std::string& utf8, std::string& gbk) {
    iconv_t cd = iconv_open("GBK", "UTF-8");
    if (cd == reinterpret_cast<iconv_t>(-1)) return false;
    std::vector<char> out(utf8.size() * 2 + 4);
    char* in = const_cast<char*>(utf8.data());
    size_t inLeft = utf8.size();
    char* outPtr = out.data();
    size_t outLeft = out.size();
    const bool ok = iconv(cd, &in, &inLeft, &outPtr, &outLeft) != static_cast<size_t>(-1);
    iconv_close(cd);
    gbk.assign(out.data(), outPtr);
    return ok;
}

std::string menuLine(const std::string& name, const std::string& text) {
    char line[512];
    std::snprintf(line, sizeof(line), "[DSP_DRV] \n%-10s%-2c%s\r\n", name.c_str(), ':', text.c_str());
    return line;
}

constexpr Int32 kStart = 3, kEnd = 5;

class DriverConsole : public testing::Test {
protected:
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile,
                          ParamFileBuilder()
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
    // The records as the fusion debug setter leaves them, applied to the original ones.
    std::vector<unsigned char> afterSetter(Int32 pcmdId, Int32 value) {
        CFG_DSP_FusionV2722 copy[FUSION_GAIN_STEPS];
        std::memcpy(copy, original, sizeof(copy));
        DRV_gainInterParam gain = pipe.run().gainInterParam;
        EXPECT_EQ(DRV_dspdbgFusion(copy, &gain, pcmdId, value), 0);
        const auto* bytes = reinterpret_cast<const unsigned char*>(copy);
        return std::vector<unsigned char>(bytes, bytes + sizeof(copy));
    }
    std::vector<unsigned char> current() const {
        const auto* bytes = reinterpret_cast<const unsigned char*>(records);
        return std::vector<unsigned char>(bytes, bytes + sizeof(original));
    }
    size_t flagsSent() const { return pipe.flags.size(); }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
    HostPipe pipe{1};
    CFG_DSP_FusionV2722* records = nullptr;
    CFG_DSP_FusionV2722 original[FUSION_GAIN_STEPS];
};

TEST_F(DriverConsole, NoArgumentsDoNothing) {
    EXPECT_EQ(run({}), 0);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(flagsSent(), 0u);
}

// Every fusion command changes its own field in the two records of the blend.
TEST_F(DriverConsole, EachCommandSetsItsFieldInBothRecords) {
    for (int row = 1; row <= 26; ++row) {
        SCOPED_TRACE(kMenu[row].name);
        std::memcpy(records, original, sizeof(original));
        const size_t flagsBefore = flagsSent();
        EXPECT_EQ(run({kMenu[row].name, "1"}), 0);
        EXPECT_EQ(current(), afterSetter(row - 1, 1));
        EXPECT_EQ(flagsSent(), flagsBefore + 1);
    }
    ASSERT_FALSE(pipe.flags.empty());
    EXPECT_EQ(pipe.flags.back().cmdType, ISP_SET_FUSION);
    EXPECT_EQ(pipe.flags.back().flag, 1u);
}

TEST_F(DriverConsole, OneChangeOneFlag) {
    EXPECT_EQ(run({"ep_delta", "100"}), 0);
    EXPECT_EQ(records[kStart].ep_delta, 100);
    EXPECT_EQ(records[kEnd].ep_delta, 100);
    EXPECT_EQ(flagsSent(), 1u);
    EXPECT_EQ(driver_test::countInfo(log, "[DSP_DRV] fusion ep_delta is 100\n"), 1u);
}

TEST_F(DriverConsole, CommandsInTableOrderAreAllApplied) {
    EXPECT_EQ(run({"ep_delta", "10", "hf_zoom", "200"}), 0);
    EXPECT_EQ(records[kStart].ep_delta, 10);
    EXPECT_EQ(records[kEnd].hf_zoom, 200);
    EXPECT_EQ(flagsSent(), 2u);
    // The same command twice: the search starts at the entry last matched.
    EXPECT_EQ(run({"uv_w", "5", "uv_w", "6"}), 0);
    EXPECT_EQ(records[kStart].uv_w, 6);
    EXPECT_EQ(flagsSent(), 4u);
}

TEST_F(DriverConsole, CommandOutOfTableOrderIsNotFound) {
    EXPECT_EQ(run({"hf_zoom", "200", "ep_delta", "10"}), -1);
    EXPECT_EQ(records[kStart].hf_zoom, 200);
    EXPECT_EQ(records[kStart].ep_delta, original[kStart].ep_delta);
    EXPECT_EQ(flagsSent(), 1u);
    EXPECT_EQ(driver_test::countWarnings(log, "DRV_ispSetDbgDspParam", "ep_delta, \tNot support\r\n"), 1u);
    EXPECT_EQ(driver_test::countInfo(log, "[DSP_DRV] Usage: aewDebug [cmd1][cmd2]=[cmd3]:[cmd4] ... \r\n"), 1u);
    EXPECT_EQ(log.count("[DSP_DRV] \n"), 28u);
}

TEST_F(DriverConsole, NameWithoutValueIsSkippedWithAWarning) {
    EXPECT_EQ(run({"runParam"}), 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(driver_test::countWarnings(log, "DRV_ispSetDbgDspParam", "runParam need parm\r\n"), 1u);
    log.clear();
    EXPECT_EQ(run({"ep_delta", "9", "uv_w"}), 0);
    EXPECT_EQ(records[kEnd].ep_delta, 9);
    EXPECT_EQ(driver_test::countWarnings(log, "DRV_ispSetDbgDspParam", "uv_w need parm\r\n"), 1u);
    EXPECT_EQ(flagsSent(), 1u);
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
    EXPECT_EQ(flagsSent(), 0u);
    EXPECT_EQ(std::memcmp(records, original, sizeof(original)), 0);  // nothing changed
}

struct ValueCase {
    const char* command;
    const char* text;
    Int32 pcmdId;
    Int32 value;  // as the setter receives it
};

class DriverConsoleValues : public DriverConsole, public testing::WithParamInterface<ValueCase> {};

TEST_P(DriverConsoleValues, AreReadAsDecimalNumbers) {
    EXPECT_EQ(run({GetParam().command, GetParam().text}), 0);
    EXPECT_EQ(current(), afterSetter(GetParam().pcmdId, GetParam().value));
}

// Values beyond the 32-bit range saturate before the setter clamps them.
INSTANTIATE_TEST_SUITE_P(Texts, DriverConsoleValues,
                         testing::Values(ValueCase{"hf_zoom", "12abc", 4, 12}, ValueCase{"hf_zoom", "abc", 4, 0},
                                         ValueCase{"hf_zoom", "  +77", 4, 77},
                                         ValueCase{"high_lum_thr", "-30", 6, -30},
                                         ValueCase{"dark_inner", "99999999999", 5, INT_MAX},
                                         ValueCase{"high_lum_thr", "-99999999999", 6, INT_MIN},
                                         ValueCase{"ep_delta", "0", 0, 0}, ValueCase{"nir_a", "-1", 10, -1}),
                         [](const testing::TestParamInfo<ValueCase>& info) {
                             return std::to_string(info.index) + "_" + info.param.command;
                         });

TEST_F(DriverConsole, NirCurveFromFile) {
    std::string text;
    for (int line = 0; line < 39; ++line) {
        for (int k = 0; k < 13; ++k) text += std::to_string((line * 13 + k) % 256) + ",";
        text += "\n";
    }
    text += "7,8,9,300\n";
    sandbox.writeFile("/tmp/nir.txt", text);
    EXPECT_EQ(run({"w_nir", "3"}), 0);
    EXPECT_EQ(flagsSent(), 1u);
    for (int i = 0; i < 507; ++i) {
        ASSERT_EQ(records[kStart].w_nir[i], i % 256);
        ASSERT_EQ(records[kEnd].w_nir[i], i % 256);
    }
    EXPECT_EQ(records[kStart].w_nir[510], 255);

    // Without the file the setter fails: a warning, no flag, and the call goes on.
    sandbox.remove("/tmp/nir.txt");
    log.clear();
    EXPECT_EQ(run({"w_nir", "3"}), 0);
    EXPECT_EQ(flagsSent(), 1u);
    EXPECT_EQ(driver_test::countWarnings(log, "DRV_ispSetDbgDspParam", "[dsp]DRV_dspdbgFusion failed\n"), 1u);
}

TEST_F(DriverConsole, EnglishMenu) {
    EXPECT_EQ(run({"nothing", "1"}, 0), -1);
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 30u);
    EXPECT_TRUE(driver_test::isLocatedLine(texts[0], "WARN", "DRV_ispSetDbgDspParam", "nothing, \tNot support\r\n"));
    EXPECT_EQ(texts[1], "[DSP_DRV] Usage: aewDebug [cmd1][cmd2]=[cmd3]:[cmd4] ... \r\n");
    for (size_t row = 0; row < kMenu.size(); ++row) EXPECT_EQ(texts[2 + row], menuLine(kMenu[row].name, kMenu[row].english));
    EXPECT_EQ(texts[3], "[DSP_DRV] \nep_delta  : \t aew dbg Fusion ep_delta, ep_delta~[1,16383]\r\n");
    for (const auto& line : log.lines()) {
        if (line.text.rfind("[DSP_DRV] \n", 0) == 0 || line.text.rfind("[DSP_DRV] Usage", 0) == 0) {
            EXPECT_EQ(line.level, 2);
            EXPECT_EQ(line.category, 2);
        }
    }
}

TEST_F(DriverConsole, ChineseMenuInGbk) {
    EXPECT_EQ(run({"nothing", "1"}, 1), -1);
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 30u);
    EXPECT_EQ(texts[13], "[DSP_DRV] \nnir_a     : \r\n");  // no Chinese text for nir_a and vis_b
    EXPECT_EQ(texts[14], "[DSP_DRV] \nvis_b     : \r\n");
    for (size_t row = 0; row < kMenu.size(); ++row) {
        std::string gbk;
        if (!toGbk(kMenu[row].chinese, gbk)) GTEST_SKIP() << "no GBK converter on this system";
        EXPECT_EQ(texts[2 + row], menuLine(kMenu[row].name, gbk)) << kMenu[row].name;
    }
}

TEST_F(DriverConsole, ChangesLastAndReachTheNextFusionFrame) {
    // The pipe fuses with itself as its colour reference: its own record is
    // the blend of the current table, now holding the console's value.
    DRV_RefPipeParams ref;
    std::memset(&ref, 0, sizeof(ref));
    ref.refXHndl = pipe.xHndl();
    ref.fusionType = DRV_ISP_FUSION_COLOR;
    ASSERT_EQ(pipe.refPipe(&ref), 0);
    EXPECT_EQ(run({"ep_delta", "1234", "uv_coef", "77"}), 0);
    EXPECT_EQ(pipe.fusion(), 0);
    EXPECT_EQ(pipe.instance()->pstFusionParam.fusionParam.ep_delta, 1234);
    EXPECT_EQ(pipe.instance()->pstFusionParam.fusionParam.uv_coef, 77);
    // Another table and back: the change stays with the table.
    pipe.run().dncMode = 0;
    EXPECT_EQ(pipe.refresh(nullptr), 0);
    pipe.run().dncMode = 1;
    EXPECT_EQ(pipe.refresh(nullptr), 0);
    EXPECT_EQ(pipe.instance()->dspCfgTables.curTable->ispFusionParam[kStart].ep_delta, 1234);
}

TEST_F(DriverConsole, ArgumentCountBeyondTheRecordIsBounded) {
    ConsoleArgs cmd({});
    static char name[] = "uv_w";
    static char value[] = "9";
    for (int i = 0; i < DRV_ISP_CMD_MAX_ARGS; ++i) cmd.record.argp[i].pointer = (i % 2 == 0) ? name : value;
    cmd.record.argc = 1000;
    EXPECT_EQ(pipe.console(&cmd.record, 0), 0);
    EXPECT_EQ(flagsSent(), 16u);  // 16 pairs; the 33rd entry has no value inside the record
    EXPECT_EQ(driver_test::countWarnings(log, "DRV_ispSetDbgDspParam", "uv_w need parm\r\n"), 1u);

    // A null entry inside the count ends the list.
    ConsoleArgs shortList({"uv_w", "3"});
    shortList.record.argc = 5;
    EXPECT_EQ(pipe.console(&shortList.record, 0), 0);
    EXPECT_EQ(records[kStart].uv_w, 3);
}

TEST_F(DriverConsole, MissingPointersAndTable) {
    ConsoleArgs cmd({"runParam", "1"});
    EXPECT_EQ(pipe.ops()->OpSetDbgDspParam(nullptr, &cmd.record, 0), -1);
    EXPECT_EQ(driver_test::countNullErrors(log, "DRV_ispSetDbgDspParam", "ispOps"), 1u);
    EXPECT_EQ(pipe.console(nullptr, 0), -1);
    EXPECT_EQ(driver_test::countNullErrors(log, "DRV_ispSetDbgDspParam", "cmd_param"), 1u);

    // Before the first refresh every command fails, runParam included.
    HostPipe fresh(2);
    ASSERT_EQ(fresh.createPipe(), 0);
    log.clear();
    EXPECT_EQ(fresh.console(&cmd.record, 0), -1);
    EXPECT_EQ(driver_test::countNullErrors(log, "DRV_ispSetDbgDspParam", "curParam"), 1u);
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(fresh.remove(), 0);
}

}  // namespace

// Fusion debug setters, the two-record print and the NIR curve command through
// the public ABI, and the curve file "/tmp/nir.txt" as DRV_dspdbgFusionNir reads
// it, with generated inputs: signs, saturation edges and the neighbours of the
// digits, lines around the 256-byte read, CR-only endings, a NUL inside a line
// and a file without a final line end. A file that fails leaves both records as they were.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "ispdsp/fusion.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using namespace std::string_literals;
using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::Sandbox;

// The sixteen stored records of a table, each byte a recognisable pattern, and
// the interpolation state that picks two of them.
struct Records {
    std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> rec{};
    DRV_gainInterParam gain{};

    Records(int start, int end) {
        for (int r = 0; r < FUSION_GAIN_STEPS; ++r) {
            auto* bytes = reinterpret_cast<uint8_t*>(&rec[r]);
            for (size_t i = 0; i < sizeof(CFG_DSP_FusionV2722); ++i) bytes[i] = uint8_t(r * 16 + i * 3);
        }
        gain.gainStartIndex = start;
        gain.gainEndIndex = end;
    }
    int32_t set(int32_t id, int32_t value) { return DRV_dspdbgFusion(rec.data(), &gain, id, value); }
    int32_t print() { return DRV_dspdbgFusionPrint(rec.data(), &gain); }
    int32_t loadNir(int32_t id = 0) { return DRV_dspdbgFusionNir(rec.data(), &gain, id, 0); }
};

// Null arguments are named (indexes outside 0..15: validity_boundary_test.cpp):
// -1, nothing allocated.
TEST(FusionDebug, NullArgumentsAreNamed) {
    const char* functions[] = {"DRV_dspdbgFusion", "DRV_dspdbgFusionPrint", "DRV_dspdbgFusionNir"};
    Records r(0, 1);
    using Call = int32_t (*)(CFG_DSP_FusionV2722*, DRV_gainInterParam*);
    const Call calls[] = {[](auto* c, auto* g) { return DRV_dspdbgFusion(c, g, 0, 1); },
                          [](auto* c, auto* g) { return DRV_dspdbgFusionPrint(c, g); },
                          [](auto* c, auto* g) { return DRV_dspdbgFusionNir(c, g, 0, 0); }};
    for (int k = 0; k < 3; ++k) {
        MemGuard mem;
        LogCapture log;
        EXPECT_EQ(calls[k](nullptr, &r.gain), -1);
        EXPECT_EQ(calls[k](r.rec.data(), nullptr), -1);
        EXPECT_EQ(log.count(LogKind::Error, functions[k], "Input NULL POINT cfgFusionParam!\n"), 1u);
        EXPECT_EQ(log.count(LogKind::Error, functions[k], "Input NULL POINT gainInterParam!\n"), 1u);
        EXPECT_EQ(mem.allocCalls(), 0u);
    }
}

// Each field's range and confirmation line are checked command by command
// through the console (driver_console_test.cpp). Equal indexes change that one
// record; unknown ids and other curve ids change nothing and say nothing (the
// curve file is not even looked for); without the curve file its command fails.
TEST(FusionDebug, EqualIndexesChangeOneRecordOtherIdsNone) {
    Sandbox sandbox;
    Records r(5, 5);
    auto expected = r.rec;
    expected[5].nir_k = 77;
    LogCapture log;
    ASSERT_EQ(r.set(3, 77), 0);
    for (int32_t id : {46, INT32_MIN, INT32_MAX}) EXPECT_EQ(r.set(id, 5), 0) << id;
    EXPECT_EQ(r.loadNir(72), 0);
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(r.loadNir(0), -1);
    EXPECT_TRUE(log.has(LogKind::Warn, "DRV_ispGetNirCfg", "/tmp/nir.txt open failed\n"));
    EXPECT_EQ(std::memcmp(r.rec.data(), expected.data(), sizeof expected), 0);
}

TEST(FusionDebug, PrintShowsStartThenEndForEveryField) {
    Records r(4, 11);
    r.rec[4] = CFG_DSP_FusionV2722{1,  2,  3,  4,  5,  65025, -7, 8,  9,  1,  -1, 1,  13, 14,
                                   15, 16, 17, 18, 19, 20,    21, 22, 23, 24, 25, 26, {}};
    r.rec[11] = CFG_DSP_FusionV2722{16383, 256, 256, 256, 2047, 6,   -256, 255, 254, 0,   1,   -1,  253, 252,
                                    251,   250, 249, 248, 247,  246, 245,  244, 243, 242, 241, 240, {}};
    LogCapture log;
    ASSERT_EQ(r.print(), 0);
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{
                  "[DSP_DRV] [cfg fusion]ep_delta=[1,16383], fusion_hf_ratio=[2,256], fwmin_wt=[3,256], "
                  "nir_k=[4,256], hf_zoom=[5,2047], dark_inner=[65025,6], high_lum_thr=[-7,-256]\n",
                  "[DSP_DRV] [cfg fusion]fwmin_limit=[8,255], fwmax_limit=[9,254], copy_en=[1,0], nir_a=[-1,1], "
                  "vis_b=[1,-1], nir_min=[13,253]\n",
                  "[DSP_DRV] [cfg fusion]uv_coef=[14,252], uv_diff_thr=[15,251], uv_diff_min=[16,250], "
                  "uv_diff_max=[17,249], uv_vlight_min=[18,248], uv_vlight_max=[19,247], uv_sat_limit=[20,246]\n",
                  "[DSP_DRV] [cfg fusion]uv_rsmooth=[21,245], uv_gsmooth=[22,244], uv_bsmooth=[23,243], "
                  "uv_wmin=[24,242], uv_wmax=[25,241], uv_w=[26,240]\n"}));
}

constexpr int kStart = 3, kEnd = 9;  // the two records of the current blend

// 39 lines of 13 "n," and a last line "n,n,n,n", each point given as its text.
std::string curveFile(const std::vector<std::string>& points, const std::string& end = "\n", bool finalEnd = true) {
    std::string text;
    for (int line = 0; line < 40; ++line) {
        const int count = line < 39 ? 13 : 4;
        for (int k = 0; k < count; ++k) text += points[line * 13 + k] + (line < 39 || k < 3 ? "," : "");
        if (line < 39 || finalEnd) text += end;
    }
    return text;
}

// Point i given as i % modulus.
std::vector<std::string> counting(int modulus = 200) {
    std::vector<std::string> v;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) v.push_back(std::to_string(i % modulus));
    return v;
}

class NirFile : public ::testing::Test {
protected:
    // Loads `text`: on success both curves must be `want` and nothing else may change, on
    // failure nothing at all; nothing leaks and the file is closed.
    void expectLoad(const std::string& text, Int32 result, const std::vector<Uint8>& want = {}) {
        sandbox.writeFile("/tmp/nir.txt", text);
        auto expected = r.rec;
        for (int k : {kStart, kEnd}) {
            if (result == 0) std::memcpy(expected[k].w_nir, want.data(), FUSION_NIR_POINTS);
        }
        MemGuard mem;
        log.clear();
        EXPECT_EQ(r.loadNir(), result);
        for (int k = 0; k < FUSION_GAIN_STEPS; ++k)
            EXPECT_EQ(std::memcmp(&r.rec[k], &expected[k], sizeof expected[k]), 0) << "record " << k;
    }
    Records r{kStart, kEnd};
    Sandbox sandbox;
    LogCapture log;
};

// What counting(FUSION_NIR_POINTS) loads as: 256 and above saturate.
std::vector<Uint8> saturatedCounting() {
    std::vector<Uint8> want(FUSION_NIR_POINTS);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) want[i] = static_cast<Uint8>(std::min(i, 255));
    return want;
}

// The curve command writes the curve of both blended records, nothing else,
// and prints it 13 points to a line.
TEST_F(NirFile, LoadsTheCurveIntoBothRecordsAndPrintsIt) {
    expectLoad(curveFile(counting(FUSION_NIR_POINTS)), 0, saturatedCounting());
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 41u);
    EXPECT_EQ(texts[0], "[DSP_DRV] DRV_dspdbgFusionNir w_nir:\n");
    EXPECT_EQ(texts[1], "[DSP_DRV]    0    1    2    3    4    5    6    7    8    9   10   11   12  \n");
    EXPECT_EQ(texts[20], "[DSP_DRV]  247  248  249  250  251  252  253  254  255  255  255  255  255  \n");
    EXPECT_EQ(texts[40], "[DSP_DRV]  255  255  255  255  \n");
    EXPECT_EQ(log.count(LogKind::Info), 41u);
}

// A line may hold more numbers than its share: the pattern, not the line, says how many are read.
TEST_F(NirFile, NumbersPastALinesShareAreNotRead) {
    std::vector<std::string> points = counting(FUSION_NIR_POINTS);
    points[12] += ",7";   // a 14th number on the first line
    points[510] += ",7";  // a 5th on the last
    expectLoad(curveFile(points), 0, saturatedCounting());
}

TEST_F(NirFile, ValuesSaturateCapAt255AndKeepTheirLowByteInLinesUpTo255Characters) {
    const struct {
        std::string text;
        Uint8 stored;
    } tokens[] = {{"0", 0},       {"9", 9},         {"255", 255},     {"256", 255},        {"-1", 255},
                  {"-128", 128},  {"-129", 127},    {"-255", 1},      {"-256", 0},         {"+12", 12},
                  {"  7", 7},     {"\t-3", 253},    {"007", 7},       {"-0", 0},           {"2147483647", 255},
                  {"2147483648", 255}, {"-2147483648", 0}, {"-2147483649", 0}, {"99999999999999999999", 255}};
    std::vector<std::string> points = counting();
    std::vector<Uint8> want(FUSION_NIR_POINTS);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) want[i] = static_cast<Uint8>(i % 200);
    for (size_t j = 0; j < std::size(tokens); ++j) {
        const size_t at = (j * 41 + 5) % FUSION_NIR_POINTS;  // distinct positions, the last line included
        points[at] = tokens[j].text;
        want[at] = tokens[j].stored;
    }
    // Each line with its line end must fit 255 characters: at 256 the line end arrives as the next
    // line. The first line is as built (0) or padded to a length with blanks before its first number.
    for (const std::string end : {"\n", "\r\n"}) {
        for (bool finalEnd : {true, false}) {
            for (size_t length : {0u, 254u, 255u, 256u}) {
                SCOPED_TRACE(testing::Message() << end.size() << " " << finalEnd << " " << length);
                std::string text = curveFile(points, end, finalEnd);
                if (length != 0) text.insert(0, std::string(length - (text.find(end) + end.size()), ' '));
                expectLoad(text, length <= 255 ? 0 : -1, want);
                EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetNirCfg", "/tmp/nir.txt line 2 holds 0 of 13 points\n"),
                          length > 255 ? 1u : 0u);
            }
        }
    }
    expectLoad(curveFile(points, "\r"), -1);  // one long line, cut into 255-character reads
}

TEST_F(NirFile, ANumberNotFollowedByItsCommaFailsTheLine) {
    const struct {
        std::string text;
        int parsed;   // 1 when a number is read before the offending character
        int at = -1;  // the point replaced; -1: spread over the first 39 lines
    } tokens[] = {{"/", 0},  {":", 0},  {"", 0},   {"+", 0},   {"-", 0},   {"x", 0},   {"G", 0},   {"g", 0},
                  {"1/", 1}, {"9:", 1}, {"5 ", 1}, {"0x1", 1}, {"- 1", 0}, {"1\0"s "2", 1}, {"1:", 1, 509}};
    for (size_t j = 0; j < std::size(tokens); ++j) {
        SCOPED_TRACE(j);
        size_t at = tokens[j].at >= 0 ? tokens[j].at : (j * 97 + 20) % 507;
        if (at % 13 == 12) --at;  // the line's last number may be followed by anything
        std::vector<std::string> points = counting();
        points[at] = tokens[j].text;
        expectLoad(curveFile(points), -1);
        const std::string message = "/tmp/nir.txt line " + std::to_string(at / 13 + 1) + " holds " +
                                    std::to_string(at % 13 + tokens[j].parsed) + " of " + (at < 507 ? "13" : "4") +
                                    " points\n";
        EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetNirCfg", message), 1u) << message;
    }
}

// (A missing file: fusion_debug_test.cpp.)
TEST_F(NirFile, MissingLinesFail) {
    expectLoad("", -1);
    std::string text = curveFile(counting());
    expectLoad(text.substr(0, text.rfind("\n", text.size() - 2) + 1), -1);  // 39 lines
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetNirCfg", "OSA_fgets error! \n"), 1u);
    std::string tenLines;
    for (int i = 0; i < 10; ++i) tenLines += "1,2,3,4,5,6,7,8,9,10,11,12,13,\n";
    expectLoad(tenLines, -1);  // both the 11th and the last read fail
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetNirCfg", "OSA_fgets error! \n"), 2u);
}

}  // namespace

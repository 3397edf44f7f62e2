// The NIR curve file "/tmp/nir.txt" as DRV_dspdbgFusionNir reads it, with
// generated inputs: signs, saturation edges and the neighbours of the digits,
// lines around the 256-byte read, CR-only endings, a NUL inside a line and a
// file without a final line end. A file that fails leaves both records as they were.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "ispdsp/fusion.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using namespace std::string_literals;
using ispdsp_test::LogKind;

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

std::vector<std::string> counting() {
    std::vector<std::string> v;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) v.push_back(std::to_string(i % 200));
    return v;
}

class NirFile : public ::testing::Test {
protected:
    NirFile() {
        for (auto& r : records) std::memset(&r, 0x5A, sizeof r);
        gain.gainStartIndex = kStart;
        gain.gainEndIndex = kEnd;
    }
    // Loads `text`: on success both curves must be `want` and nothing else may change, on
    // failure nothing at all; nothing leaks and the file is closed.
    void expectLoad(const std::string& text, Int32 result, const std::vector<Uint8>& want = {}) {
        sandbox.writeFile("/tmp/nir.txt", text);
        auto expected = records;
        for (int r : {kStart, kEnd}) {
            if (result == 0) std::memcpy(expected[r].w_nir, want.data(), FUSION_NIR_POINTS);
        }
        ispdsp_test::MemGuard mem;
        log.clear();
        EXPECT_EQ(DRV_dspdbgFusionNir(records.data(), &gain, 0, 0), result);
        if (result == 0) {
            EXPECT_EQ(std::vector<Uint8>(records[kStart].w_nir, records[kStart].w_nir + FUSION_NIR_POINTS), want);
        }
        for (int r = 0; r < FUSION_GAIN_STEPS; ++r)
            EXPECT_EQ(std::memcmp(&records[r], &expected[r], sizeof records[r]), 0) << "record " << r;
    }
    std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> records;
    DRV_gainInterParam gain{};
    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
};

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

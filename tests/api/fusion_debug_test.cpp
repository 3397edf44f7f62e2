// Fusion debug setters, the two-record print and the NIR curve file, through
// the public ABI with the host layer capturing logs and holding the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ispdsp/fusion.h"
#include "fusion_fields.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::FailAllocAfter;
using ispdsp_test::LogCapture;
using namespace fusion_test;
using ispdsp_test::MemGuard;
using ispdsp_test::Sandbox;

constexpr int32_t kInfoLevel = 2, kInfoCategory = 2;

// The sixteen stored records of a table, each byte set to a recognisable
// pattern, and the interpolation state that picks two of them.
struct Records {
    std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> rec{};
    DRV_gainInterParam gain{};

    Records() {
        for (int r = 0; r < FUSION_GAIN_STEPS; ++r) {
            auto* bytes = reinterpret_cast<uint8_t*>(&rec[r]);
            for (size_t i = 0; i < sizeof(CFG_DSP_FusionV2722); ++i) bytes[i] = uint8_t(r * 16 + i * 3);
        }
    }
    void pick(int start, int end) {
        gain.gainStartIndex = start;
        gain.gainEndIndex = end;
    }
    int32_t set(int32_t id, int32_t value) { return DRV_dspdbgFusion(rec.data(), &gain, id, value); }
    int32_t loadNir(int32_t id = 0) { return DRV_dspdbgFusionNir(rec.data(), &gain, id, 0); }
};

bool sameRecord(const CFG_DSP_FusionV2722& a, const CFG_DSP_FusionV2722& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// ---- DRV_dspdbgFusion ----

struct SetterCase {
    int32_t id;
    const char* name;
    int32_t value;
    int32_t stored;   // as read back from the field, with its sign
    uint32_t printed; // the confirmation's %u
};

// Setter id `id` stores field kFields[id].
int32_t storedValue(const CFG_DSP_FusionV2722& r, int32_t id) { return readField(kFields[id], &r); }

class FusionSetter : public ::testing::TestWithParam<SetterCase> {};

TEST_P(FusionSetter, ClampsStoresInBothRecordsAndConfirms) {
    const SetterCase& sc = GetParam();
    Records r;
    r.pick(2, 9);
    const auto before = r.rec;
    LogCapture log;
    ASSERT_EQ(r.set(sc.id, sc.value), 0);
    EXPECT_EQ(storedValue(r.rec[2], sc.id), sc.stored) << sc.name;
    EXPECT_EQ(storedValue(r.rec[9], sc.id), sc.stored) << sc.name;

    // Only that field of the two records changed.
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) {
        CFG_DSP_FusionV2722 expect = before[i];
        if (i == 2 || i == 9) {
            auto* want = reinterpret_cast<uint8_t*>(&expect);
            const auto* got = reinterpret_cast<const uint8_t*>(&r.rec[i]);
            std::memcpy(want + kFields[sc.id].offset, got + kFields[sc.id].offset, kFields[sc.id].width);
        }
        EXPECT_TRUE(sameRecord(r.rec[i], expect)) << "record " << i;
    }

    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].level, kInfoLevel);
    EXPECT_EQ(log.lines()[0].category, kInfoCategory);
    EXPECT_EQ(log.lines()[0].text,
              std::string("[DSP_DRV] fusion ") + sc.name + " is " + std::to_string(sc.printed) + "\n");
}

// Every field below and above its range, in range, and the usual examples.
std::vector<SetterCase> setterCases() {
    std::vector<SetterCase> cases;
    for (int32_t id = 0; id < 26; ++id) {
        const FieldModel& rg = kFields[id];
        cases.push_back({id, rg.name, rg.hi + 1, rg.hi, uint32_t(rg.hi)});
        cases.push_back({id, rg.name, INT32_MAX, rg.hi, uint32_t(rg.hi)});
        cases.push_back({id, rg.name, rg.lo - 1, rg.lo, uint32_t(rg.lo)});
        cases.push_back({id, rg.name, INT32_MIN, rg.lo, uint32_t(rg.lo)});
        const int32_t mid = rg.lo + (rg.hi - rg.lo) / 2;
        cases.push_back({id, rg.name, mid, mid, uint32_t(mid)});
    }
    cases.push_back({0, "ep_delta", 0, 1, 1});
    cases.push_back({0, "ep_delta", 20000, 16383, 16383});
    cases.push_back({6, "high_lum_thr", 5, -1, 4294967295u});
    cases.push_back({6, "high_lum_thr", -1000, -256, 4294967040u});
    cases.push_back({9, "copy_en", 9, 1, 1});
    cases.push_back({10, "nir_a", -7, -1, 4294967295u});
    cases.push_back({14, "uv_diff_thr", 0, 1, 1});
    cases.push_back({5, "dark_inner", 70000, 65025, 65025});
    cases.push_back({25, "uv_w", -3, 0, 0});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Ranges, FusionSetter, ::testing::ValuesIn(setterCases()),
                         [](const ::testing::TestParamInfo<SetterCase>& info) {
                             return std::to_string(info.index) + "_" + info.param.name;
                         });

// Equal start and end indexes change that one record (distinct ones: FusionSetter above).
TEST(FusionDebug, SetterWithEqualIndexesChangesOneRecord) {
    Records r;
    r.pick(5, 5);
    const auto before = r.rec;
    ASSERT_EQ(r.set(3, 77), 0);  // nir_k
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) {
        if (i == 5) {
            EXPECT_EQ(r.rec[i].nir_k, 77);
        } else {
            EXPECT_TRUE(sameRecord(r.rec[i], before[i])) << i;
        }
    }
}

TEST(FusionDebug, UnknownIdChangesNothingAndSaysNothing) {
    for (int32_t id : {26, -1, 46, INT32_MIN, INT32_MAX}) {
        Records r;
        r.pick(1, 2);
        const auto before = r.rec;
        LogCapture log;
        EXPECT_EQ(r.set(id, 5), 0) << id;
        EXPECT_TRUE(log.lines().empty());
        for (int i = 0; i < FUSION_GAIN_STEPS; ++i) EXPECT_TRUE(sameRecord(r.rec[i], before[i]));
    }
}

// Interpolation indexes outside 0..15 are refused by the setter, the print and
// the curve loader: -1 with an error, no record touched.
TEST(FusionDebug, GainIndexOutsideTheSixteenRecordsIsRefused) {
    Sandbox sandbox;
    std::string file;
    for (int line = 0; line < 39; ++line) file += "1,1,1,1,1,1,1,1,1,1,1,1,1,\n";
    file += "1,1,1,1\n";
    sandbox.writeFile("/tmp/nir.txt", file);
    for (auto [start, end] : {std::pair{-1, 3}, std::pair{3, 16}, std::pair{INT32_MAX, INT32_MIN}}) {
        Records r;
        r.pick(start, end);
        const auto before = r.rec;
        MemGuard mem;
        LogCapture log;
        EXPECT_EQ(r.set(0, 100), -1);
        EXPECT_EQ(DRV_dspdbgFusionPrint(r.rec.data(), &r.gain), -1);
        EXPECT_EQ(r.loadNir(), -1);
        EXPECT_EQ(log.count("gain index out of range"), 3u);
        EXPECT_EQ(log.count("[DSP_DRV] ERROR  (DRV_dspdbgFusion|"), 1u);
        EXPECT_EQ(log.count("[DSP_DRV] ERROR  (DRV_dspdbgFusionPrint|"), 1u);
        EXPECT_EQ(log.count("[DSP_DRV] ERROR  (DRV_dspdbgFusionNir|"), 1u);
        for (int i = 0; i < FUSION_GAIN_STEPS; ++i) EXPECT_TRUE(sameRecord(r.rec[i], before[i]));
    }
}

TEST(FusionDebug, NullArgumentsAreNamed) {
    Records r;
    struct Call {
        const char* function;
        int32_t (*call)(CFG_DSP_FusionV2722*, DRV_gainInterParam*);
    };
    const Call calls[] = {
        {"DRV_dspdbgFusion", [](CFG_DSP_FusionV2722* c, DRV_gainInterParam* g) { return DRV_dspdbgFusion(c, g, 0, 1); }},
        {"DRV_dspdbgFusionPrint", [](CFG_DSP_FusionV2722* c, DRV_gainInterParam* g) { return DRV_dspdbgFusionPrint(c, g); }},
        {"DRV_dspdbgFusionNir",
         [](CFG_DSP_FusionV2722* c, DRV_gainInterParam* g) { return DRV_dspdbgFusionNir(c, g, 0, 0); }},
    };
    for (const Call& c : calls) {
        for (int which = 0; which < 2; ++which) {
            MemGuard mem;
            LogCapture log;
            EXPECT_EQ(c.call(which == 0 ? nullptr : r.rec.data(), which == 1 ? nullptr : &r.gain), -1);
            ASSERT_EQ(log.lines().size(), 1u) << c.function;
            const std::string text = log.lines()[0].text;
            EXPECT_EQ(text.rfind(std::string("[DSP_DRV] ERROR  (") + c.function + "|", 0), 0u) << text;
            EXPECT_NE(text.find(which == 0 ? "): Input NULL POINT cfgFusionParam!\n"
                                           : "): Input NULL POINT gainInterParam!\n"),
                      std::string::npos)
                << text;
            EXPECT_EQ(mem.allocCalls(), 0u);
        }
    }
}

// ---- DRV_dspdbgFusionPrint ----

TEST(FusionDebug, PrintShowsStartThenEndForEveryField) {
    Records r;
    r.pick(4, 11);
    CFG_DSP_FusionV2722& s = r.rec[4];
    CFG_DSP_FusionV2722& e = r.rec[11];
    s = CFG_DSP_FusionV2722{1, 2, 3, 4, 5, 65025, -7, 8, 9, 1, -1, 1, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, {}};
    e = CFG_DSP_FusionV2722{16383, 256, 256, 256, 2047, 6, -256, 255, 254, 0, 1, -1, 253, 252, 251, 250, 249, 248,
                            247, 246, 245, 244, 243, 242, 241, 240, {}};
    LogCapture log;
    ASSERT_EQ(DRV_dspdbgFusionPrint(r.rec.data(), &r.gain), 0);
    const std::vector<std::string> want = {
        "[DSP_DRV] [cfg fusion]ep_delta=[1,16383], fusion_hf_ratio=[2,256], fwmin_wt=[3,256], nir_k=[4,256], "
        "hf_zoom=[5,2047], dark_inner=[65025,6], high_lum_thr=[-7,-256]\n",
        "[DSP_DRV] [cfg fusion]fwmin_limit=[8,255], fwmax_limit=[9,254], copy_en=[1,0], nir_a=[-1,1], "
        "vis_b=[1,-1], nir_min=[13,253]\n",
        "[DSP_DRV] [cfg fusion]uv_coef=[14,252], uv_diff_thr=[15,251], uv_diff_min=[16,250], uv_diff_max=[17,249], "
        "uv_vlight_min=[18,248], uv_vlight_max=[19,247], uv_sat_limit=[20,246]\n",
        "[DSP_DRV] [cfg fusion]uv_rsmooth=[21,245], uv_gsmooth=[22,244], uv_bsmooth=[23,243], uv_wmin=[24,242], "
        "uv_wmax=[25,241], uv_w=[26,240]\n"};
    EXPECT_EQ(log.texts(), want);
    for (const auto& line : log.lines()) {
        EXPECT_EQ(line.level, kInfoLevel);
        EXPECT_EQ(line.category, kInfoCategory);
    }
}

// ---- DRV_dspdbgFusionNir ----

// A curve file in the device format from 511 values.
std::string nirFile(const std::vector<std::string>& v) {
    std::string text;
    for (int line = 0; line < 39; ++line) {
        for (int k = 0; k < 13; ++k) text += v[line * 13 + k] + ",";
        text += "\n";
    }
    text += v[507] + "," + v[508] + "," + v[509] + "," + v[510] + "\n";
    return text;
}

std::vector<std::string> counting() {
    std::vector<std::string> v;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) v.push_back(std::to_string(i));
    return v;
}

// "[DSP_DRV] " then "%4d " per point then " \n".
std::string printLine(const uint8_t* points, int n) {
    std::string line = "[DSP_DRV] ";
    char piece[16];
    for (int i = 0; i < n; ++i) {
        std::snprintf(piece, sizeof piece, "%4d ", points[i]);
        line += piece;
    }
    return line + " \n";
}

TEST(FusionNir, LoadsCapsAndPrintsTheCurveIntoBothRecords) {
    Sandbox sandbox;
    sandbox.writeFile("/tmp/nir.txt", nirFile(counting()));
    Records r;
    r.pick(6, 13);
    const auto before = r.rec;
    MemGuard mem;
    LogCapture log;
    ASSERT_EQ(r.loadNir(), 0);
    EXPECT_EQ(mem.allocCalls(), 1u);
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        const int want = i > 255 ? 255 : i;
        EXPECT_EQ(r.rec[6].w_nir[i], want) << i;
        EXPECT_EQ(r.rec[13].w_nir[i], want) << i;
    }
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) {
        CFG_DSP_FusionV2722 expect = before[i];
        if (i == 6 || i == 13) std::memcpy(expect.w_nir, r.rec[i].w_nir, FUSION_NIR_POINTS);
        EXPECT_TRUE(sameRecord(r.rec[i], expect)) << "record " << i << " changed beyond its curve";
    }

    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 41u);
    EXPECT_EQ(texts[0], "[DSP_DRV] DRV_dspdbgFusionNir w_nir:\n");
    for (int line = 0; line < 39; ++line) {
        EXPECT_EQ(texts[1 + line], printLine(r.rec[6].w_nir + 13 * line, 13)) << line;
    }
    EXPECT_EQ(texts[40], "[DSP_DRV]  255  255  255  255  \n");
    EXPECT_EQ(texts[1], "[DSP_DRV]    0    1    2    3    4    5    6    7    8    9   10   11   12  \n");
    for (const auto& line : log.lines()) EXPECT_EQ(line.level, kInfoLevel);
}

TEST(FusionNir, NegativeAndLargeValuesAndBlanksAndCrLf) {
    Sandbox sandbox;
    std::vector<std::string> v = counting();
    v[0] = "-1";
    v[1] = "300";
    v[2] = "  7";
    v[3] = "\t-128";
    v[4] = "-129";
    v[5] = "+12";
    v[6] = "99999999999";
    v[7] = "-99999999999";
    v[510] = "  3";
    std::string text = nirFile(v);
    for (size_t pos = 0; (pos = text.find('\n', pos)) != std::string::npos; pos += 2) text.insert(pos, "\r");
    sandbox.writeFile("/tmp/nir.txt", text);
    Records r;
    r.pick(0, 15);
    ASSERT_EQ(r.loadNir(), 0);
    const uint8_t want[] = {255, 255, 7, 128, 127, 12, 255, 0};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(r.rec[0].w_nir[i], want[i]) << i;
        EXPECT_EQ(r.rec[15].w_nir[i], want[i]) << i;
    }
    EXPECT_EQ(r.rec[0].w_nir[509], 255);
    EXPECT_EQ(r.rec[0].w_nir[510], 3);
}

struct BadFileCase {
    const char* what;
    std::string text;  // empty: no file at all
    std::vector<std::string> logged;  // substrings of every line logged
    size_t lines = 1;
};

class FusionNirBadFile : public ::testing::TestWithParam<BadFileCase> {};

// A bad file fails the whole load: -1, both records as they were, the buffer freed.
TEST_P(FusionNirBadFile, LeavesTheRecordsUnchanged) {
    const BadFileCase& bc = GetParam();
    Sandbox sandbox;
    if (!bc.text.empty()) sandbox.writeFile("/tmp/nir.txt", bc.text);
    Records r;
    r.pick(2, 7);
    const auto before = r.rec;
    MemGuard mem;
    LogCapture log;
    EXPECT_EQ(r.loadNir(), -1) << bc.what;
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) EXPECT_TRUE(sameRecord(r.rec[i], before[i])) << bc.what << " " << i;
    EXPECT_EQ(mem.allocCalls(), 1u);
    EXPECT_EQ(log.lines().size(), bc.lines) << bc.what;
    for (const std::string& s : bc.logged) EXPECT_EQ(log.count(s), bc.lines) << bc.what << ": " << s;
}

std::vector<BadFileCase> badFiles() {
    std::vector<BadFileCase> cases;
    cases.push_back({"missing", "", {"[DSP_DRV] WARN  (DRV_ispGetNirCfg|", "): /tmp/nir.txt open failed\n"}});

    std::string missingLast = nirFile(counting());
    missingLast.erase(missingLast.rfind("507"));
    cases.push_back({"no last line", missingLast, {"): OSA_fgets error! \n"}});

    std::vector<std::string> v = counting();
    std::string shortLine = nirFile(v);
    shortLine.replace(shortLine.find("64,"), 3, "");  // line 5 holds 12 numbers
    cases.push_back({"short line 5", shortLine, {"[DSP_DRV] ERROR  (DRV_ispGetNirCfg|", "): /tmp/nir.txt line 5 holds 12 of 13 points\n"}});

    std::string badLast = nirFile(v);
    badLast.replace(badLast.find("510"), 3, "");  // "507,508,509,"
    cases.push_back({"last line short", badLast, {"line 40 holds 3 of 4 points\n"}});

    std::string gap = nirFile(v);
    gap.replace(gap.find("20,"), 3, "20 ,");  // a blank before the comma
    cases.push_back({"blank before comma", gap, {"line 2 holds 8 of 13 points\n"}});

    std::string word = nirFile(v);
    word.replace(word.find("100,"), 4, "x,");
    cases.push_back({"not a number", word, {"line 8 holds 9 of 13 points\n"}});

    std::string longLine = nirFile(v);
    longLine.insert(0, std::string(260, ' '));  // line 1 is longer than one read
    cases.push_back({"line too long", longLine, {"line 1 holds 0 of 13 points\n"}});

    std::string tenLines;  // both failed reads are reported
    for (int i = 0; i < 10; ++i) tenLines += "1,2,3,4,5,6,7,8,9,10,11,12,13,\n";
    cases.push_back({"ten lines", tenLines, {"[DSP_DRV] ERROR  (DRV_ispGetNirCfg|", "): OSA_fgets error! \n"}, 2});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Files, FusionNirBadFile, ::testing::ValuesIn(badFiles()),
                         [](const ::testing::TestParamInfo<BadFileCase>& info) {
                             std::string name = info.param.what;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST(FusionNir, OtherCommandIdsDoNothingAndSucceed) {
    Sandbox sandbox;  // no file: it must not even be opened
    Records r;
    r.pick(0, 1);
    const auto before = r.rec;
    for (int32_t id : {1, -1, 72}) {
        MemGuard mem;
        LogCapture log;
        EXPECT_EQ(r.loadNir(id), 0);
        EXPECT_TRUE(log.lines().empty());
        EXPECT_EQ(mem.allocCalls(), 1u);
    }
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) EXPECT_TRUE(sameRecord(r.rec[i], before[i]));
}

TEST(FusionNir, AllocationFailureWarnsAndFails) {
    Sandbox sandbox;
    sandbox.writeFile("/tmp/nir.txt", nirFile(counting()));
    Records r;
    r.pick(0, 1);
    const auto before = r.rec;
    MemGuard mem;
    LogCapture log;
    {
        FailAllocAfter fail(1);
        EXPECT_EQ(r.loadNir(), -1);
    }
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].text.rfind("[DSP_DRV] WARN  (DRV_dspdbgFusionNir|", 0), 0u);
    EXPECT_NE(log.lines()[0].text.find("): buffer malloc failed\n"), std::string::npos);
    EXPECT_EQ(log.lines()[0].level, 1);
    EXPECT_EQ(log.lines()[0].category, 8);
    for (int i = 0; i < FUSION_GAIN_STEPS; ++i) EXPECT_TRUE(sameRecord(r.rec[i], before[i]));
}

}  // namespace

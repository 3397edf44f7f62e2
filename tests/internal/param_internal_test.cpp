// White-box tests of what the public functions cannot show: the version
// tolerance, the checksum of unaligned blocks and of fields outside the file's
// checksummed words, and the wording of the no-replacement error. State map and fallbacks: tests/api/param_table_test.cpp.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "cfg/param_file_internal.h"
#include "cfg/param_table_internal.h"
#include "support/log_capture.h"

namespace {

TEST(CompareFloat, ToleranceIsStrictlyBelowOneMillionthAndNanNeverEqual) {
    // Near 1.0 one step is 2^-23: 8 steps are 9.5e-7 (equal), 9 steps 1.07e-6 (not).
    float eight = 1.0f;
    for (int i = 0; i < 8; ++i) eight = std::nextafter(eight, 2.0f);
    EXPECT_EQ(DRV_compareFloat(1.0f, eight), 0);
    EXPECT_EQ(DRV_compareFloat(eight, 1.0f), 0);
    EXPECT_EQ(DRV_compareFloat(1.0f, std::nextafter(eight, 2.0f)), -1);
    EXPECT_EQ(DRV_compareFloat(0.0f, 1e-6f), static_cast<double>(1e-6f) < 1e-6 ? 0 : -1);  // single, then widened
    EXPECT_EQ(DRV_compareFloat(0.0f, 2e-6f), -1);
    EXPECT_EQ(DRV_compareFloat(-0.0f, 0.0f), 0);
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(DRV_compareFloat(nan, nan), -1);
    EXPECT_EQ(DRV_compareFloat(82981.0f, nan), -1);
    EXPECT_EQ(DRV_compareFloat(inf, inf), -1);  // inf - inf is NaN
}

TEST(Checksum, UnalignedBlockWordsAndOnlyTheCoveredFields) {
    CFG_IspParamTable h{};
    h.ver = ISPDSP_PARAM_FILE_VERSION;
    std::memcpy(h.pdtName, "CAM", 3);
    std::array<Uint8, 13> bytes{};  // block at offset 1: words are read without aligned loads
    for (size_t i = 1; i < bytes.size(); ++i) bytes[i] = static_cast<Uint8>(i * 37);
    // ver 0x47A21280, "CAM" 0x004D4143, block words 0x946F4A25 (37 74 111 148) and 0x2803DEB9 (185 222 3 40).
    const Uint32 want = 0x47A21280u ^ 0x004D4143u ^ 0x946F4A25u ^ 0x2803DEB9u;
    for (Uint32 size : {8u, 9u, 11u}) {  // the last size % 4 bytes are not covered
        h.cfg_specParam.size = size;
        EXPECT_EQ(static_cast<Uint32>(CFG_ispCalcChksum(&h, bytes.data() + 1)), want) << size;
    }
    h.chksum = 12345;  // nor the stored checksum and the reserved word
    h.cfg_specParam.reserved = 0xFFFFFFFFu;
    EXPECT_EQ(static_cast<Uint32>(CFG_ispCalcChksum(&h, bytes.data() + 1)), want);
    EXPECT_EQ(static_cast<Uint32>(CFG_ispCalcChksum(&h, nullptr)), 0x47A21280u ^ 0x004D4143u);
    EXPECT_EQ(CFG_ispCheckChksum(&h, bytes.data() + 1), -1);
    h.chksum = static_cast<Int32>(want);
    EXPECT_EQ(CFG_ispCheckChksum(&h, bytes.data() + 1), 0);
    EXPECT_EQ(CFG_ispCheckChksum(&h, nullptr), -1);
    EXPECT_EQ(CFG_ispCheckChksum(nullptr, bytes.data()), -1);
    EXPECT_EQ(CFG_ispCalcChksum(nullptr, bytes.data()), 0);
}

TEST(LessSuitableType, FailureNamesTheSourceFileFunctionAndTheSameLineTwice) {
    ispdsp_test::LogCapture log;
    CFG_DspIspCfgTables set{};
    auto type = PARAM_MULTICOLOR;
    ASSERT_EQ(getLessSuitableType(&set, &type), -1);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    const std::string& text = lines[0].text;
    const std::string head = "[DSP_DRV] ERROR  (getLessSuitableType|";
    ASSERT_EQ(text.rfind(head, 0), 0u) << text;
    const std::string line = text.substr(head.size(), text.find(')') - head.size());
    const std::string tail = "param_table.cpp::getLessSuitableType:" + line +
                             " We failed to find other suitable param instead! The program should be terminated!\n";
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail) << text;
    Int32 index = -7;
    EXPECT_FALSE(isTypeMatch(PARAM_MULTICOLOR, nullptr, 4, &index)) << "no rule list matches nothing";
    EXPECT_EQ(index, -7);
}

// A list is scanned up to its size, and never past 120 entries whatever the size says.
TEST(TypeMatch, OnlyTheFirstSizeEntriesUpTo120AreScanned) {
    std::array<Int32, PARAM_TABLE_TYPE_NUM + 1> list{};
    list.fill(PARAM_TRAFFIC);
    struct Case {
        std::size_t at;  // where the wanted type sits
        Uint32 size;
        Int32 found;     // its index, or -1 when not found
    };
    const Case cases[] = {{0, 1, 0}, {1, 2, 1}, {2, 2, -1}, {119, 129, 119}, {120, 129, -1}, {120, 121, -1}};
    for (const Case& c : cases) {
        list.fill(PARAM_TRAFFIC);
        list[c.at] = PARAM_WDR_TRAFFIC;
        Int32 index = -7;
        EXPECT_EQ(isTypeMatch(PARAM_WDR_TRAFFIC, list.data(), c.size, &index), c.found >= 0 ? 1 : 0) << c.at;
        EXPECT_EQ(index, c.found >= 0 ? c.found : -7) << c.at;
    }
}

// Rule 0 lists every type but 7, 9 and 11 once, in its 117 first entries; each
// stands against itself except the IVS types, which fall to a base scene. The
// rest of the 120 entries stay 0. Rule 1 falls from WDR traffic to WDR, then day.
TEST(FallbackRules, RuleZeroListsEveryTypeOnceAndRuleOneTwoReplacements) {
    const auto& rules = kFallbackRuleTable;
    const DRV_SuitableParam& r0 = rules[0];
    EXPECT_EQ(r0.srcArraySize, 129) << "as declared, though only 120 entries are stored";
    EXPECT_EQ(r0.dstArraySize, 129);
    std::array<int, PARAM_TABLE_TYPE_NUM> seen{};
    constexpr int kListed = PARAM_TABLE_TYPE_NUM - 3;
    for (int k = 0; k < kListed; ++k) {
        const Int32 type = r0.srcArray[k];
        ASSERT_TRUE(type >= 0 && type < PARAM_TABLE_TYPE_NUM) << k;
        ++seen[type];
        const bool ivs = type >= PARAM_IVS && type <= PARAM_WDR_IVS_NIGHT;
        if (ivs) {
            EXPECT_LE(r0.dstArray[k], PARAM_WDR_MULTICOLOR) << type;
        } else {
            EXPECT_EQ(r0.dstArray[k], type);
        }
    }
    for (int type = 0; type < PARAM_TABLE_TYPE_NUM; ++type)
        EXPECT_EQ(seen[type], type == 7 || type == 9 || type == 11 ? 0 : 1) << type;
    for (int k = kListed; k < PARAM_TABLE_TYPE_NUM; ++k) EXPECT_EQ(r0.srcArray[k] | r0.dstArray[k], 0) << k;

    const DRV_SuitableParam& r1 = rules[1];
    EXPECT_EQ(r1.srcArraySize, 1);
    EXPECT_EQ(r1.srcArray[0], PARAM_WDR_TRAFFIC);
    EXPECT_EQ(r1.dstArraySize, 2);
    EXPECT_EQ(r1.dstArray[0], PARAM_WDR_MULTICOLOR);
    EXPECT_EQ(r1.dstArray[1], PARAM_MULTICOLOR);
}

}  // namespace

// White-box tests of the parameter file and table set internals: version comparison, checksum,
// the state map, the fallback rules and their helpers.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "cfg/param_file_internal.h"
#include "cfg/param_table_internal.h"
#include "support/log_capture.h"
#include "support/param_file_builder.h"

namespace {

using ispdsp_test::LogCapture;

float nextUp(float v) { return std::nextafter(v, std::numeric_limits<float>::infinity()); }

// ---- DRV_compareFloat (the file version's neighbours: the parameter file tests) ----

TEST(CompareFloat, ToleranceIsStrictlyBelowOneMillionth) {
    // Near 1.0 one step is 2^-23 (1.19e-7): 8 steps are 9.5e-7 (equal), 9 steps 1.07e-6 (not).
    float eight = 1.0f, nine = 1.0f;
    for (int i = 0; i < 8; ++i) eight = nextUp(eight);
    nine = nextUp(eight);
    EXPECT_EQ(DRV_compareFloat(1.0f, eight), 0);
    EXPECT_EQ(DRV_compareFloat(eight, 1.0f), 0);
    EXPECT_EQ(DRV_compareFloat(1.0f, nine), -1);
    // The difference is formed in single precision: 1e-6f itself rounds to just under 1e-6.
    EXPECT_EQ(DRV_compareFloat(0.0f, 1e-6f), static_cast<double>(1e-6f) < 1e-6 ? 0 : -1);
    EXPECT_EQ(DRV_compareFloat(0.0f, 2e-6f), -1);
}

TEST(CompareFloat, NanAndInfinityAreNeverEqual) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(DRV_compareFloat(nan, nan), -1);
    EXPECT_EQ(DRV_compareFloat(nan, 82981.0f), -1);
    EXPECT_EQ(DRV_compareFloat(82981.0f, nan), -1);
    EXPECT_EQ(DRV_compareFloat(inf, inf), -1);  // inf - inf is NaN
    EXPECT_EQ(DRV_compareFloat(-0.0f, 0.0f), 0);
}

// ---- Checksum ----

CFG_IspParamTable zeroHeaderWithVersion(Uint32 size) {
    CFG_IspParamTable h{};
    h.ver = ISPDSP_PARAM_FILE_VERSION;
    h.cfg_specParam.size = size;
    return h;
}

TEST(Checksum, SizeWordChecksumAndReservedAreNotCovered) {
    std::array<Uint8, 11> block{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    CFG_IspParamTable h = zeroHeaderWithVersion(8);
    const Int32 base = CFG_ispCalcChksum(&h, block.data());
    for (Uint32 size : {9u, 10u, 11u}) {  // same floor(S / 4)
        h.cfg_specParam.size = size;
        EXPECT_EQ(CFG_ispCalcChksum(&h, block.data()), base) << size;
    }
    h.chksum = 12345;
    h.cfg_specParam.reserved = 0xFFFFFFFFu;
    EXPECT_EQ(CFG_ispCalcChksum(&h, block.data()), base);
    h.cfg_specParam.size = 12;
    EXPECT_NE(CFG_ispCalcChksum(&h, std::array<Uint8, 12>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}.data()), base);
}

TEST(Checksum, TrailingPartialWordIsNotCoveredButEveryWholeWordIs) {
    std::array<Uint8, 11> block{};
    CFG_IspParamTable h = zeroHeaderWithVersion(11);
    const Int32 base = CFG_ispCalcChksum(&h, block.data());
    for (size_t i = 0; i < block.size(); ++i) {
        std::array<Uint8, 11> changed = block;
        changed[i] = 0x5A;
        const bool covered = i < 8;
        EXPECT_EQ(CFG_ispCalcChksum(&h, changed.data()) != base, covered) << "byte " << i;
    }
}

TEST(Checksum, EveryHeaderByteFromVerThroughPdtNameIsCovered) {
    CFG_IspParamTable h = zeroHeaderWithVersion(0);
    Uint8 dummy = 0;
    const Int32 base = CFG_ispCalcChksum(&h, &dummy);
    for (size_t i = 0; i < 104; ++i) {
        CFG_IspParamTable changed = h;
        reinterpret_cast<Uint8*>(&changed)[i] ^= 0x80;
        EXPECT_NE(CFG_ispCalcChksum(&changed, &dummy), base) << "header byte " << i;
    }
}

TEST(Checksum, AgreesWithTheBuilderOnAFullFileAndReadsUnalignedBlocks) {
    ispdsp_test::ParamFileBuilder builder;
    builder.addTable(PARAM_MULTICOLOR).addTable(PARAM_HDR_TRAFFIC_BLACKWHITE);
    const std::vector<uint8_t> header = builder.headerBytes();
    const std::vector<uint8_t> block = builder.blockBytes();

    CFG_IspParamTable h{};
    std::memcpy(&h, header.data(), header.size());
    h.cfg_specParam.size = static_cast<Uint32>(block.size());
    // One byte off any alignment: words are assembled without aligned loads.
    std::vector<uint8_t> shifted(block.size() + 1);
    std::memcpy(shifted.data() + 1, block.data(), block.size());
    EXPECT_EQ(CFG_ispCalcChksum(&h, shifted.data() + 1), builder.checksum());
}

TEST(Checksum, MissingBlockFailsTheCheck) {
    CFG_IspParamTable h = zeroHeaderWithVersion(0);
    h.chksum = CFG_ispCalcChksum(&h, nullptr);
    EXPECT_EQ(CFG_ispCheckChksum(&h, nullptr), -1);
    EXPECT_EQ(CFG_ispCheckChksum(nullptr, &h), -1);
    EXPECT_EQ(CFG_ispCalcChksum(nullptr, nullptr), 0);
}

// ---- State map ----

// The scene names in imageScene order (no scene 3), as the table type names spell them.
std::string sceneName(Uint32 imageScene) {
    static const std::array<const char*, 14> names = {"",          "TRAFFIC",        "FACE",           "",
                                                      "IVS",       "STROBE",         "POLICE",         "COMITY",
                                                      "PEDESTIAN", "ECOTRAFFIC",     "ECOPOLICE",      "ENTRANCE_FLASH",
                                                      "ENTRANCE_STROBE", "EVENT"};
    return names.at(imageScene);
}

// The type a row must select, spelled from its attributes independently of the map's data.
std::string expectedTypeName(const Table_TYPE_MAP& r) {
    const std::string prefix = r.isHDR ? "HDR_" : (r.isWDR ? "WDR_" : "");
    const bool night = r.sceneMode == 2 && !r.isBlackWhite;  // black-and-white night uses the day type
    const std::string suffix = night ? "_NIGHT" : "";
    if (r.imageScene == 0) {
        return "PARAM_" + prefix + (r.isBlackWhite ? "BLACKWHITE" : "MULTICOLOR") + suffix;
    }
    return "PARAM_" + prefix + sceneName(r.imageScene) + (r.isBlackWhite ? "_BLACKWHITE" : "") + suffix;
}

TEST(TypeMap, EveryRowSelectsTheTypeItsAttributesName) {
    static_assert(sg_typeMap.size() == 156);
    const std::array<Uint32, 13> sceneOrder = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    for (Uint32 row = 0; row < kTypeMapRows; ++row) {
        const Table_TYPE_MAP& r = sg_typeMap[row];
        EXPECT_EQ(r.imageScene, sceneOrder[row / 12]) << row;
        EXPECT_EQ(r.sceneMode, (row % 12) < 6 ? 0u : 2u) << row;
        EXPECT_EQ(r.isBlackWhite, row % 2) << row;
        EXPECT_EQ(ispdsp_test::paramTableTypeName(r.tableType), expectedTypeName(r)) << "row " << row;
    }
    // Compile-time spot checks of the generated rows.
    static_assert(sg_typeMap[23].tableType == PARAM_WDR_TRAFFIC_BLACKWHITE);
    static_assert(sg_typeMap[7].tableType == PARAM_BLACKWHITE && sg_typeMap[7].sceneMode == 2);
    static_assert(sg_typeMap[155].tableType == PARAM_WDR_EVENT_BLACKWHITE);
}

struct StateCase {
    Int32 realDncMode, hdrMode;
    Uint32 sceneMode;
    Int32 imageScene;
    Uint32 row;
};

void PrintTo(const StateCase& s, std::ostream* os) {
    *os << "dnc " << s.realDncMode << " hdr " << s.hdrMode << " scene " << s.sceneMode << " image " << s.imageScene
        << " -> row " << s.row;
}

class GetCurStateCases : public ::testing::TestWithParam<StateCase> {};

TEST_P(GetCurStateCases, DerivesTheRow) {
    const StateCase& s = GetParam();
    CFG_ispParamCondition c{s.realDncMode, s.hdrMode, s.sceneMode, s.imageScene, {7, 7, 7, 7}};
    EXPECT_EQ(getCurState(&c), s.row);
}

INSTANTIATE_TEST_SUITE_P(
    Derivation, GetCurStateCases,
    ::testing::Values(StateCase{0, 4, 2, 1, 23},    // black-and-white WDR traffic night
                      StateCase{1, 0, 0, 0, 0},     // colour linear day
                      StateCase{-7, 0, 0, 0, 0},    // any nonzero dnc mode is colour
                      StateCase{1, 5, 0, 0, 2},     // 5 has bits besides 4: HDR
                      StateCase{1, 1, 0, 0, 2},     // HDR
                      StateCase{1, 12, 0, 0, 2},    // 4 | 8: HDR
                      StateCase{1, -4, 0, 0, 2},    // negative: bits besides 4 set
                      StateCase{1, 4, 0, 0, 4},     // exactly 4: WDR
                      StateCase{1, 0, 1, 0, 0},     // sceneMode 1 is day
                      StateCase{1, 0, 3, 0, 0},     // only 2 is night
                      StateCase{1, 0, 2, 0, 6},     // colour night
                      StateCase{0, 0, 2, 13, 151},  // event black-and-white night
                      StateCase{1, 0, 0, 4, 36},    // IVS is the fourth block
                      StateCase{1, 0, 0, 3, 156},   // no block for scene 3
                      StateCase{1, 0, 0, 14, 156},
                      StateCase{1, 0, 0, -1, 156}));

TEST(GetCurState, NullConditionMatchesNothing) { EXPECT_EQ(getCurState(nullptr), kTypeMapRows); }

// ---- Fallback rules ----

// Rule 0's preference head and the IVS partners; the rest is exercised through LessSuitableType.
TEST(SuitableRules, RuleZeroPreferenceHeadAndIvsPartners) {
    const DRV_SuitableParam& r0 = gs_suitableParam[0];
    EXPECT_EQ(r0.srcArraySize, 129);
    EXPECT_EQ(r0.dstArraySize, 129);
    const std::vector<Int32> head = {0, 1, 2, 3, 4, 6, 10, 8, 5};
    for (size_t k = 0; k < head.size(); ++k) {
        EXPECT_EQ(r0.srcArray[k], head[k]);
        EXPECT_EQ(r0.dstArray[k], head[k]);
    }
    // IVS sources stand against their base-scene partners.
    const std::array<std::pair<Int32, Int32>, 9> ivs = {{{PARAM_IVS, PARAM_MULTICOLOR},
                                                         {PARAM_IVS_BLACKWHITE, PARAM_BLACKWHITE},
                                                         {PARAM_HDR_IVS, PARAM_HDR_MULTICOLOR},
                                                         {PARAM_HDR_IVS_BLACKWHITE, PARAM_BLACKWHITE},
                                                         {PARAM_WDR_IVS, PARAM_WDR_MULTICOLOR},
                                                         {PARAM_WDR_IVS_BLACKWHITE, PARAM_BLACKWHITE},
                                                         {PARAM_IVS_NIGHT, PARAM_MULTICOLOR},
                                                         {PARAM_HDR_IVS_NIGHT, PARAM_HDR_MULTICOLOR},
                                                         {PARAM_WDR_IVS_NIGHT, PARAM_WDR_MULTICOLOR}}};
    for (const auto& [src, dst] : ivs) {
        Int32 pos = -1;
        ASSERT_TRUE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(src), r0.srcArray, 129, &pos));
        EXPECT_EQ(r0.dstArray[pos], dst) << src;
    }
    for (Int32 absent : {7, 9, 11}) {
        Int32 pos = -1;
        EXPECT_FALSE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(absent), r0.srcArray, 129, &pos));
    }
}

TEST(IsTypeMatch, FirstPositionAndTheScanCap) {
    std::array<Int32, 130> values{};
    values[0] = 5;
    values[3] = 9;
    values[4] = 9;
    values[119] = 77;
    values[125] = 88;
    Int32 pos = -1;
    EXPECT_TRUE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(9), values.data(), 130, &pos));
    EXPECT_EQ(pos, 3);
    EXPECT_TRUE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(77), values.data(), 130, &pos));
    EXPECT_EQ(pos, 119);
    pos = -1;
    EXPECT_FALSE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(88), values.data(), 130, &pos));  // beyond 120
    EXPECT_FALSE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(5), values.data(), 0, &pos));
    EXPECT_FALSE(isTypeMatch(static_cast<PARAM_TABLE_TYPE>(9), values.data(), 3, &pos));
    EXPECT_EQ(pos, -1);
    EXPECT_FALSE(isTypeMatch(PARAM_MULTICOLOR, nullptr, 10, &pos));
}

// A table set whose tables exist exactly for `types` (the pointers are only compared).
struct TableSet {
    CFG_DspIspCfgTables set{};
    CFG_DspIspCfgParam storage{};
};

struct FallbackCase {
    std::vector<Int32> present;
    Int32 missing;
    Int32 expected;  // -1: no replacement
};

void PrintTo(const FallbackCase& c, std::ostream* os) {
    *os << ispdsp_test::paramTableTypeName(c.missing) << " missing -> "
        << (c.expected < 0 ? std::string("none") : ispdsp_test::paramTableTypeName(c.expected));
}

class LessSuitableType : public ::testing::TestWithParam<FallbackCase> {};

TEST_P(LessSuitableType, FindsTheReplacement) {
    const FallbackCase& c = GetParam();
    TableSet tables{};
    for (Int32 t : c.present) tables.set.paramTables[t] = &tables.storage;
    LogCapture log;
    auto type = static_cast<PARAM_TABLE_TYPE>(c.missing);
    const Int32 rc = getLessSuitableType(&tables.set, &type);
    if (c.expected < 0) {
        EXPECT_EQ(rc, -1);
        EXPECT_EQ(type, c.missing);
        EXPECT_EQ(log.count("We failed to find other suitable param instead! The program should be terminated!"), 1u);
    } else {
        EXPECT_EQ(rc, 0);
        EXPECT_EQ(type, c.expected) << ispdsp_test::paramTableTypeName(type);
        EXPECT_TRUE(log.lines().empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, LessSuitableType,
    ::testing::Values(
        // Non-IVS types stand against themselves, so the preference list decides.
        FallbackCase{{PARAM_BLACKWHITE, PARAM_MULTICOLOR}, PARAM_TRAFFIC_NIGHT, PARAM_MULTICOLOR},
        FallbackCase{{PARAM_BLACKWHITE}, PARAM_TRAFFIC_NIGHT, PARAM_BLACKWHITE},
        FallbackCase{{PARAM_WDR_BLACKWHITE, PARAM_HDR_MULTICOLOR_NIGHT}, PARAM_EVENT, PARAM_HDR_MULTICOLOR_NIGHT},
        FallbackCase{{PARAM_WDR_BLACKWHITE, PARAM_FACE}, PARAM_EVENT, PARAM_WDR_BLACKWHITE},
        FallbackCase{{PARAM_HDR_EVENT}, PARAM_TRAFFIC, PARAM_HDR_EVENT},  // far down the list
        // IVS: the base-scene partner first, even when a preferred type exists.
        FallbackCase{{PARAM_MULTICOLOR, PARAM_WDR_MULTICOLOR}, PARAM_WDR_IVS, PARAM_WDR_MULTICOLOR},
        FallbackCase{{PARAM_MULTICOLOR, PARAM_BLACKWHITE}, PARAM_HDR_IVS_BLACKWHITE, PARAM_BLACKWHITE},
        FallbackCase{{PARAM_MULTICOLOR, PARAM_HDR_MULTICOLOR}, PARAM_HDR_IVS_BLACKWHITE, PARAM_MULTICOLOR},
        FallbackCase{{PARAM_HDR_MULTICOLOR}, PARAM_HDR_IVS_BLACKWHITE, PARAM_HDR_MULTICOLOR},
        // IVS tables are not in the preference list, nor are 7, 9 and 11: nothing to fall back to.
        FallbackCase{{PARAM_IVS}, PARAM_HDR_IVS, -1},
        FallbackCase{{PARAM_BLACKWHITE_NIGHT, PARAM_HDR_BLACKWHITE_NIGHT, PARAM_WDR_BLACKWHITE_NIGHT},
                     PARAM_MULTICOLOR, -1},
        // Rule 1 is reached for WDR traffic but finds nothing rule 0 had not tried.
        FallbackCase{{PARAM_IVS_BLACKWHITE}, PARAM_WDR_TRAFFIC, -1},
        FallbackCase{{}, PARAM_MULTICOLOR, -1},
        // Types that rule 0 does not list fall through both rules.
        FallbackCase{{PARAM_MULTICOLOR}, PARAM_BLACKWHITE_NIGHT, -1}));

TEST(LessSuitableType, FailureNamesTheSourceFileFunctionAndLine) {
    TableSet tables{};
    LogCapture log;
    auto type = PARAM_MULTICOLOR;
    ASSERT_EQ(getLessSuitableType(&tables.set, &type), -1);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, 0);
    EXPECT_EQ(lines[0].category, 1);
    const std::string& text = lines[0].text;
    const std::string head = "[DSP_DRV] ERROR  (getLessSuitableType|";
    ASSERT_EQ(text.rfind(head, 0), 0u) << text;
    const std::string line = text.substr(head.size(), text.find(')') - head.size());
    const std::string tail = "param_table.cpp::getLessSuitableType:" + line +
                             " We failed to find other suitable param instead! The program should be terminated!\n";
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail) << text;
}

TEST(LessSuitableType, NullArgumentsAreReported) {
    LogCapture log;
    auto type = PARAM_MULTICOLOR;
    CFG_DspIspCfgTables set{};
    EXPECT_EQ(getLessSuitableType(nullptr, &type), -1);
    EXPECT_EQ(getLessSuitableType(&set, nullptr), -1);
    EXPECT_EQ(log.count("Input NULL POINT dspCfgTables!"), 1u);
    EXPECT_EQ(log.count("Input NULL POINT pType!"), 1u);
}

}  // namespace

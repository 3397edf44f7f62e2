// The table set through the public ABI: registration of a block's tables in place and the
// choice of the current table from the camera state, fallbacks included.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp/param_table.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/param_file_builder.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::ParamFileBuilder;
using ispdsp_test::paramTableTypeName;

// A block in a host allocation (as the file reader leaves it) with the header that describes it.
struct Block {
    CFG_IspParamTable header{};
    Uint8* bytes = nullptr;

    explicit Block(const std::vector<uint8_t>& content, Uint32 size) {
        header.cfg_specParam.size = size;
        bytes = static_cast<Uint8*>(OSA_memUAllocAlign(static_cast<Uint32>(content.size()), 0));
        if (!content.empty()) std::memcpy(bytes, content.data(), content.size());
    }
    explicit Block(const std::vector<uint8_t>& content) : Block(content, static_cast<Uint32>(content.size())) {}
    ~Block() { OSA_memUFree(bytes); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    const CFG_DspIspCfgParam* tableAt(size_t entry) const {
        return reinterpret_cast<const CFG_DspIspCfgParam*>(bytes + entry * CFG_TABLE_ENTRY_SIZE + 4);
    }
    Int32 registerInto(CFG_DspIspCfgTables& set) { return DRV_ispCommonTable2DspTable(&header, bytes, set.paramTables); }
};

std::vector<uint8_t> blockOf(const std::vector<Int32>& types) {
    ParamFileBuilder b;
    for (Int32 t : types) b.addTable(t);
    return b.blockBytes();
}

size_t registeredCount(const CFG_DspIspCfgTables& set) {
    size_t n = 0;
    for (const auto* t : set.paramTables) n += t != nullptr ? 1 : 0;
    return n;
}

// "[DSP_DRV] ERROR  (<func>|<n>): [Line:<n>] <message>" with both numbers equal.
::testing::AssertionResult lineTaggedError(const LogCapture& log, const std::string& func, const std::string& message) {
    const std::string head = "[DSP_DRV] ERROR  (" + func + "|";
    for (const auto& line : log.lines()) {
        const std::string& t = line.text;
        if (t.rfind(head, 0) != 0 || line.level != 0 || line.category != 1) continue;
        const size_t bar = head.size();
        const size_t close = t.find("): [Line:", bar);
        if (close == std::string::npos) continue;
        const std::string n1 = t.substr(bar, close - bar);
        const size_t numStart = close + 9;
        const size_t numEnd = t.find("] ", numStart);
        if (numEnd == std::string::npos) continue;
        const std::string n2 = t.substr(numStart, numEnd - numStart);
        if (t.substr(numEnd + 2) == message) {
            if (n1 != n2) return ::testing::AssertionFailure() << "line numbers differ: " << t;
            return ::testing::AssertionSuccess();
        }
    }
    std::string all;
    for (const auto& s : log.texts()) all += s;
    return ::testing::AssertionFailure() << "no line \"" << message << "\" from " << func << " in:\n" << all;
}

// ---- Registration ----

TEST(TableRegistration, TablesAreRegisteredInPlaceByType) {
    Block block(blockOf({PARAM_TRAFFIC, PARAM_MULTICOLOR, PARAM_WDR_EVENT_NIGHT}));
    CFG_DspIspCfgTables set{};
    LogCapture log;
    ASSERT_EQ(block.registerInto(set), 0);
    EXPECT_EQ(set.paramTables[PARAM_TRAFFIC], block.tableAt(0));
    EXPECT_EQ(set.paramTables[PARAM_MULTICOLOR], block.tableAt(1));
    EXPECT_EQ(set.paramTables[PARAM_WDR_EVENT_NIGHT], block.tableAt(2));
    EXPECT_EQ(registeredCount(set), 3u);
    EXPECT_TRUE(log.lines().empty());
    // In place: the tables read as the records the builder wrote.
    const CFG_DspIspCfgParam expected = ispdsp_test::makeDefaultParamTable(PARAM_WDR_EVENT_NIGHT);
    const CFG_DspIspCfgParam* got = set.paramTables[PARAM_WDR_EVENT_NIGHT];
    EXPECT_EQ(got->ispFusionParam[15].ep_delta, expected.ispFusionParam[15].ep_delta);
    EXPECT_EQ(std::memcmp(got->ispFusionParam[7].w_nir, expected.ispFusionParam[7].w_nir, FUSION_NIR_POINTS), 0);
    EXPECT_EQ(got->ispSbm3dParam.sbm3d_threshold, expected.ispSbm3dParam.sbm3d_threshold);
    EXPECT_EQ(got->ispSadeParam.white_edge, expected.ispSadeParam.white_edge);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(set.paramTables[PARAM_WDR_EVENT_NIGHT]) % alignof(CFG_DspIspCfgParam), 0u);
}

TEST(TableRegistration, LaterEntryOfTheSameTypeWinsAndOtherTypesKeepTheirValue) {
    Block block(blockOf({PARAM_TRAFFIC, PARAM_FACE, PARAM_TRAFFIC}));
    CFG_DspIspCfgTables set{};
    CFG_DspIspCfgParam sentinel{};
    set.paramTables[PARAM_POLICE] = &sentinel;
    ASSERT_EQ(block.registerInto(set), 0);
    EXPECT_EQ(set.paramTables[PARAM_TRAFFIC], block.tableAt(2));
    EXPECT_EQ(set.paramTables[PARAM_POLICE], &sentinel);
    EXPECT_EQ(registeredCount(set), 3u);
}

TEST(TableRegistration, NullArgumentsFailWithTheLineTaggedError) {
    Block block(blockOf({PARAM_MULTICOLOR}));
    CFG_DspIspCfgTables set{};
    LogCapture log;
    EXPECT_EQ(DRV_ispCommonTable2DspTable(nullptr, block.bytes, set.paramTables), -1);
    EXPECT_EQ(DRV_ispCommonTable2DspTable(&block.header, nullptr, set.paramTables), -1);
    EXPECT_EQ(DRV_ispCommonTable2DspTable(&block.header, block.bytes, nullptr), -1);
    EXPECT_EQ(log.count("dspIspParam is NULL or commTable is NULL!"), 3u);
    EXPECT_TRUE(lineTaggedError(log, "DRV_ispCommonTable2DspTable", "dspIspParam is NULL or commTable is NULL!\n"));
    EXPECT_EQ(registeredCount(set), 0u);
}

class InvalidFirstType : public ::testing::TestWithParam<Int32> {};

TEST_P(InvalidFirstType, FailsAndRegistersNothing) {
    Block block(blockOf({GetParam(), PARAM_MULTICOLOR}));
    CFG_DspIspCfgTables set{};
    LogCapture log;
    EXPECT_EQ(block.registerInto(set), -1);
    EXPECT_EQ(registeredCount(set), 0u);
    EXPECT_TRUE(lineTaggedError(log, "DRV_ispCommonTable2DspTable",
                                "index is invalid:" + std::to_string(GetParam()) + "!\n"));
}

INSTANTIATE_TEST_SUITE_P(Types, InvalidFirstType, ::testing::Values(120, -1, INT32_MIN, INT32_MAX, 200));

TEST(TableRegistration, InvalidSecondTypeKeepsTheFirstEntry) {
    Block block(blockOf({PARAM_FACE, 120, PARAM_MULTICOLOR}));
    CFG_DspIspCfgTables set{};
    LogCapture log;
    EXPECT_EQ(block.registerInto(set), -1);
    EXPECT_EQ(set.paramTables[PARAM_FACE], block.tableAt(0));
    EXPECT_EQ(registeredCount(set), 1u);
}

// A block that does not end on an entry boundary: nothing may reach past it. The incomplete
// entry fails the registration; whole entries before it stay registered.
struct IncompleteCase {
    Uint32 size;
    size_t registered;
};
void PrintTo(const IncompleteCase& c, std::ostream* os) { *os << c.size << " bytes"; }

class IncompleteBlock : public ::testing::TestWithParam<IncompleteCase> {};

TEST_P(IncompleteBlock, FailsAtTheIncompleteEntry) {
    const IncompleteCase& c = GetParam();
    std::vector<uint8_t> bytes = blockOf({PARAM_MULTICOLOR, PARAM_BLACKWHITE});
    bytes.resize(c.size);  // the allocation is exactly the block: ASan would see any overrun
    Block block(bytes);
    CFG_DspIspCfgTables set{};
    LogCapture log;
    EXPECT_EQ(block.registerInto(set), -1);
    EXPECT_EQ(registeredCount(set), c.registered);
    const Uint32 at = static_cast<Uint32>(c.registered * CFG_TABLE_ENTRY_SIZE);
    EXPECT_TRUE(lineTaggedError(log, "DRV_ispCommonTable2DspTable",
                                "table entry at " + std::to_string(at) + " is incomplete: " +
                                    std::to_string(c.size - at) + " bytes left!\n"));
}

INSTANTIATE_TEST_SUITE_P(Sizes, IncompleteBlock,
                         ::testing::Values(IncompleteCase{1, 0},                             // not even a type word
                                           IncompleteCase{3, 0},
                                           IncompleteCase{4, 0},                             // a type word only
                                           IncompleteCase{CFG_TABLE_ENTRY_SIZE - 1, 0},
                                           IncompleteCase{CFG_TABLE_ENTRY_SIZE + 2, 1},
                                           IncompleteCase{CFG_TABLE_ENTRY_SIZE + 4, 1},
                                           IncompleteCase{2 * CFG_TABLE_ENTRY_SIZE - 1, 1}));

TEST(TableRegistration, MisalignedBlockIsRefused) {
    std::vector<uint8_t> bytes = blockOf({PARAM_MULTICOLOR});
    bytes.insert(bytes.begin(), 0);
    Block block(bytes);
    block.header.cfg_specParam.size = CFG_TABLE_ENTRY_SIZE;
    CFG_DspIspCfgTables set{};
    LogCapture log;
    EXPECT_EQ(DRV_ispCommonTable2DspTable(&block.header, block.bytes + 1, set.paramTables), -1);
    EXPECT_EQ(registeredCount(set), 0u);
    EXPECT_TRUE(log.contains("is not aligned for its tables!"));
}

// ---- Selection ----

CFG_ispParamCondition state(Int32 realDncMode, Int32 hdrMode, Uint32 sceneMode, Int32 imageScene) {
    return CFG_ispParamCondition{realDncMode, hdrMode, sceneMode, imageScene, {0, 0, 0, 0}};
}

// Every map row's state as (dnc, hdr, scene mode, image scene): colour/BW x linear/HDR/WDR x day/night.
struct MapRow {
    Uint32 row;
    CFG_ispParamCondition condition;
};
std::vector<MapRow> allMapRows() {
    const Int32 scenes[] = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    const Int32 hdrOfPair[] = {0, 5, 4};  // rows 0-1 linear, 2-3 HDR, 4-5 WDR
    std::vector<MapRow> rows;
    for (Uint32 block = 0; block < 13; ++block) {
        for (Uint32 r = 0; r < 12; ++r) {
            rows.push_back({block * 12 + r, state(r % 2 == 0 ? 1 : 0, hdrOfPair[(r % 6) / 2], r < 6 ? 0 : 2,
                                                  scenes[block])});
        }
    }
    return rows;
}

// A table set in which every type has a distinct table.
class FullTableSet : public ::testing::Test {
protected:
    std::vector<CFG_DspIspCfgParam> tables = std::vector<CFG_DspIspCfgParam>(PARAM_TABLE_TYPE_NUM);
    CFG_DspIspCfgTables set{};
    void SetUp() override {
        for (Int32 t = 0; t < PARAM_TABLE_TYPE_NUM; ++t) set.paramTables[t] = &tables[static_cast<size_t>(t)];
    }
};

// The type of each row is checked against its attributes in the white-box map test.
TEST_F(FullTableSet, EveryStateSelectsItsMapRowWithoutLogging) {
    LogCapture log;
    set.lastTableIdx = 777;
    for (MapRow m : allMapRows()) {
        ASSERT_EQ(DRV_ispChooseCurParamDSP(&m.condition, &set), 0) << m.row;
        EXPECT_EQ(set.curTableIdx, m.row);
        ASSERT_LT(set.curTableType, static_cast<Uint32>(PARAM_TABLE_TYPE_NUM)) << "row " << m.row;
        EXPECT_EQ(set.curTable, &tables[set.curTableType]);
    }
    EXPECT_EQ(set.lastTableIdx, 777u);  // the refresh's business, never touched here
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(FullTableSet, BlackWhiteNightKeepsTheDayTableButChangesTheRow) {
    auto day = state(0, 0, 0, 6);
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&day, &set), 0);
    const CFG_DspIspCfgParam* dayTable = set.curTable;
    const Uint32 dayRow = set.curTableIdx;
    auto night = state(0, 0, 2, 6);
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&night, &set), 0);
    EXPECT_EQ(set.curTable, dayTable);
    EXPECT_EQ(set.curTableType, static_cast<Uint32>(PARAM_POLICE_BLACKWHITE));
    EXPECT_NE(set.curTableIdx, dayRow);
    EXPECT_EQ(set.curTableIdx, dayRow + 6);
}

class UnknownScene : public FullTableSet, public ::testing::WithParamInterface<Int32> {};

TEST_P(UnknownScene, FailsAndKeepsThePreviousChoice) {
    auto good = state(1, 0, 0, 1);
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&good, &set), 0);
    const CFG_DspIspCfgTables before = set;
    LogCapture log;
    auto bad = state(1, 0, 0, GetParam());
    EXPECT_EQ(DRV_ispChooseCurParamDSP(&bad, &set), -1);
    EXPECT_EQ(std::memcmp(&before, &set, sizeof set), 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].text.rfind("[DSP_DRV] ERROR  (DRV_ispChooseCurParamDSP|", 0), 0u);
    EXPECT_TRUE(log.contains("): Failed to get current adj state!\n"));
}

INSTANTIATE_TEST_SUITE_P(Scenes, UnknownScene, ::testing::Values(3, 14, -1, 1000));

TEST(TableSelection, NullArgumentsFailWithTheLineTaggedError) {
    CFG_DspIspCfgTables set{};
    auto c = state(1, 0, 0, 0);
    LogCapture log;
    EXPECT_EQ(DRV_ispChooseCurParamDSP(nullptr, &set), -1);
    EXPECT_EQ(DRV_ispChooseCurParamDSP(&c, nullptr), -1);
    EXPECT_EQ(log.count("cfgConditon is NULL or dspCfgTables is NULL!"), 2u);
    EXPECT_TRUE(lineTaggedError(log, "DRV_ispChooseCurParamDSP", "cfgConditon is NULL or dspCfgTables is NULL!\n"));
}

struct FallbackCase {
    std::vector<Int32> present;
    CFG_ispParamCondition condition;
    Int32 expected;
    Uint32 row;
};
void PrintTo(const FallbackCase& c, std::ostream* os) {
    *os << "row " << c.row << " -> " << paramTableTypeName(c.expected);
}

class Fallback : public ::testing::TestWithParam<FallbackCase> {};

TEST_P(Fallback, SelectsTheReplacementButKeepsTheMapRow) {
    const FallbackCase& c = GetParam();
    Block block(blockOf(c.present));
    CFG_DspIspCfgTables set{};
    ASSERT_EQ(block.registerInto(set), 0);
    LogCapture log;
    CFG_ispParamCondition cond = c.condition;
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&cond, &set), 0);
    EXPECT_EQ(set.curTableType, static_cast<Uint32>(c.expected)) << paramTableTypeName(static_cast<Int32>(set.curTableType));
    EXPECT_EQ(set.curTable, set.paramTables[c.expected]);
    EXPECT_EQ(set.curTableIdx, c.row);
    EXPECT_TRUE(log.lines().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Fallback,
    ::testing::Values(
        // Colour traffic night: only black-and-white, then with multicolour.
        FallbackCase{{PARAM_BLACKWHITE}, state(1, 0, 2, 1), PARAM_BLACKWHITE, 18},
        FallbackCase{{PARAM_BLACKWHITE, PARAM_MULTICOLOR}, state(1, 0, 2, 1), PARAM_MULTICOLOR, 18},
        // Black-and-white HDR IVS without its partner: down the preference list.
        FallbackCase{{PARAM_HDR_MULTICOLOR, PARAM_MULTICOLOR}, state(0, 5, 0, 4), PARAM_MULTICOLOR, 39},
        FallbackCase{{PARAM_HDR_MULTICOLOR, PARAM_TRAFFIC}, state(0, 5, 0, 4), PARAM_HDR_MULTICOLOR, 39},
        // IVS with its partner present: the partner, even before multicolour.
        FallbackCase{{PARAM_MULTICOLOR, PARAM_WDR_MULTICOLOR}, state(1, 4, 2, 4), PARAM_WDR_MULTICOLOR, 46},
        FallbackCase{{PARAM_MULTICOLOR, PARAM_BLACKWHITE}, state(0, 4, 0, 4), PARAM_BLACKWHITE, 41},
        // WDR traffic: rule 0's preference list already yields multicolour.
        FallbackCase{{PARAM_MULTICOLOR, PARAM_WDR_MULTICOLOR}, state(1, 4, 0, 1), PARAM_MULTICOLOR, 16},
        // Present tables are taken directly.
        FallbackCase{{PARAM_MULTICOLOR, PARAM_HDR_EVENT}, state(1, 1, 0, 13), PARAM_HDR_EVENT, 146}));

TEST(TableSelection, NoSuitableTableFailsAndKeepsThePreviousChoice) {
    Block block(blockOf({PARAM_IVS}));
    CFG_DspIspCfgTables set{};
    ASSERT_EQ(block.registerInto(set), 0);
    auto ivs = state(1, 0, 0, 4);
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&ivs, &set), 0);
    const CFG_DspIspCfgTables before = set;

    LogCapture log;
    auto hdrIvs = state(1, 5, 0, 4);  // HDR IVS: partner missing, IVS tables are nobody's replacement
    EXPECT_EQ(DRV_ispChooseCurParamDSP(&hdrIvs, &set), -1);
    EXPECT_EQ(std::memcmp(&before, &set, sizeof set), 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].text.rfind("[DSP_DRV] ERROR  (getLessSuitableType|", 0), 0u);
    EXPECT_TRUE(log.contains("param_table.cpp::getLessSuitableType:"));
    EXPECT_TRUE(log.contains("We failed to find other suitable param instead! The program should be terminated!\n"));
}

TEST(TableSelection, LoadedFileRegistersAndSelectsEndToEnd) {
    ispdsp_test::Sandbox sandbox;
    ParamFileBuilder b;
    b.addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).addTable(PARAM_TRAFFIC_NIGHT);
    sandbox.writeFile("/var/tmp/dsp_isp_para.bin", b.build());
    ispdsp_test::MemGuard mem;
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    ASSERT_EQ(DRV_ispCfgLoad("/var/tmp/dsp_isp_para.bin", ISPDSP_PARAM_FILE_VERSION, &header, &buffer), 0);
    CFG_DspIspCfgTables set{};
    ASSERT_EQ(DRV_ispCommonTable2DspTable(&header, buffer, set.paramTables), 0);
    auto c = state(1, 0, 2, 1);
    ASSERT_EQ(DRV_ispChooseCurParamDSP(&c, &set), 0);
    EXPECT_EQ(set.curTableType, static_cast<Uint32>(PARAM_TRAFFIC_NIGHT));
    EXPECT_EQ(reinterpret_cast<Uint8*>(set.curTable), static_cast<Uint8*>(buffer) + 2 * CFG_TABLE_ENTRY_SIZE + 4);
    EXPECT_EQ(set.curTable->ispFusionFlag, 1u);
    OSA_memUFree(buffer);
}

}  // namespace

namespace {

// The sample parameter file of data/sample (built from tuning.json) loads and registers.
TEST(SampleParamFile, LoadsRegistersAndCoversEveryState) {
    std::string path = __FILE__;
    path = path.substr(0, path.rfind("/tests/")) + "/data/sample/dsp_isp_para.bin";
    FILE* probe = std::fopen(path.c_str(), "rb");
    if (probe == nullptr) GTEST_SKIP() << "no sample file at " << path;
    std::fclose(probe);

    // A host path, opened as is: no sandbox root for this test.
    const char* root = std::getenv("ISPDSP_ROOT");
    const std::string savedRoot = root != nullptr ? root : "";
    unsetenv("ISPDSP_ROOT");
    struct RestoreRoot {
        const std::string& saved;
        ~RestoreRoot() {
            if (!saved.empty()) setenv("ISPDSP_ROOT", saved.c_str(), 1);
        }
    } restore{savedRoot};
    ispdsp_test::MemGuard mem;
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    ASSERT_EQ(DRV_ispCfgLoad(path.c_str(), ISPDSP_PARAM_FILE_VERSION, &header, &buffer), 0);
    CFG_DspIspCfgTables set{};
    ASSERT_EQ(DRV_ispCommonTable2DspTable(&header, buffer, set.paramTables), 0);
    EXPECT_EQ(header.cfg_specParam.size % CFG_TABLE_ENTRY_SIZE, 0u);
    for (Int32 t : {PARAM_MULTICOLOR, PARAM_BLACKWHITE, PARAM_HDR_MULTICOLOR, PARAM_MULTICOLOR_NIGHT, PARAM_TRAFFIC,
                    PARAM_FACE, PARAM_IVS}) {
        EXPECT_NE(set.paramTables[t], nullptr) << paramTableTypeName(t);
    }
    LogCapture log;
    for (MapRow m : allMapRows()) {
        EXPECT_EQ(DRV_ispChooseCurParamDSP(&m.condition, &set), 0) << m.row;
    }
    EXPECT_TRUE(log.lines().empty());
    OSA_memUFree(buffer);
}

}  // namespace

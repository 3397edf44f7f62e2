// The table set through the public ABI: registration of a block's tables in
// place, and the choice of the current table over every camera state and many
// sets of present tables, against a map and fallback order written here from
// the list of table types.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp/param_table.h"
#include "support/log_capture.h"
#include "support/param_file_builder.h"

namespace {

using ispdsp_test::LogKind;
constexpr Uint32 kEntry = CFG_TABLE_ENTRY_SIZE;

std::vector<uint8_t> blockOf(const std::vector<Int32>& types) {
    ispdsp_test::ParamFileBuilder b;
    for (Int32 t : types) b.addTable(t);
    return b.blockBytes();
}

TEST(TableRegistration, EntriesAreUsedInPlaceAndAFailureKeepsTheEntriesBeforeIt) {
    const struct {
        std::vector<Int32> types;
        Uint32 size;                                   // block bytes handed over (a cut block too)
        std::vector<std::pair<Int32, size_t>> tables;  // type -> entry registered
        const char* error;                             // nullptr: success
        size_t shift = 0;                              // bytes before the block: misaligned
    } cases[] = {
        {{PARAM_TRAFFIC, PARAM_MULTICOLOR, PARAM_WDR_EVENT_NIGHT}, 3 * kEntry, {{12, 0}, {0, 1}, {119, 2}}, nullptr},
        {{PARAM_TRAFFIC, PARAM_FACE, PARAM_TRAFFIC}, 3 * kEntry, {{12, 2}, {21, 1}}, nullptr},  // the later one wins
        {{PARAM_MULTICOLOR}, 0, {}, nullptr},
        {{PARAM_FACE, 120, 0}, 3 * kEntry, {{21, 0}}, "index is invalid:120!\n"},
        {{0, 1}, 1, {}, "table entry at 0 is incomplete: 1 bytes left!\n"},
        {{0, 1}, 4, {}, "table entry at 0 is incomplete: 4 bytes left!\n"},
        {{0, 1}, kEntry - 1, {}, "table entry at 0 is incomplete: 8823 bytes left!\n"},
        {{0, 1}, kEntry + 4, {{0, 0}}, "table entry at 8824 is incomplete: 4 bytes left!\n"},
        {{PARAM_MULTICOLOR}, kEntry, {}, "is not aligned for its tables!\n", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        std::vector<uint8_t> bytes = blockOf(c.types);
        // Exactly the block (ASan sees overruns), `shift` bytes into an aligned allocation.
        auto* allocated = static_cast<Uint8*>(OSA_memUAllocAlign(c.shift + c.size, 0));
        Uint8* block = allocated + c.shift;
        std::memcpy(block, bytes.data(), c.size);
        CFG_IspParamTable header{};
        header.cfg_specParam.size = c.size;
        CFG_DspIspCfgTables set{}, expected{};
        CFG_DspIspCfgParam other{};
        set.paramTables[PARAM_POLICE] = expected.paramTables[PARAM_POLICE] = &other;  // types without an entry keep theirs
        for (const auto& [type, entry] : c.tables)
            expected.paramTables[type] = reinterpret_cast<CFG_DspIspCfgParam*>(block + entry * kEntry + 4);
        ispdsp_test::LogCapture log;
        EXPECT_EQ(DRV_ispCommonTable2DspTable(&header, block, set.paramTables), c.error ? -1 : 0);
        EXPECT_EQ(std::memcmp(&set, &expected, sizeof set), 0);
        EXPECT_EQ(log.lines().size(), c.error ? 1u : 0u);
        EXPECT_EQ(c.error ? log.count(LogKind::Error) + log.count(c.error) : 2u, 2u);
        OSA_memUFree(allocated);
    }
}

// ---- Selection ----

// First type of each imageScene in the type list (no scene 3); every scene lists its colour,
// black-and-white, HDR, HDR black-and-white, WDR, WDR black-and-white and night types in that
// order, the base scene with its three black-and-white night types between.
int firstType(Int32 imageScene) {
    const int first[] = {0, 12, 21, -1, 66, 30, 39, 48, 57, 75, 84, 93, 102, 111};
    return imageScene >= 0 && imageScene <= 13 ? first[imageScene] : -1;
}

struct Choice {
    int row, type;  // -1, -1: no state matches
};

Choice expectedChoice(const CFG_ispParamCondition& c) {
    const int first = firstType(c.imageScene);
    if (first < 0) return {-1, -1};
    const int block = c.imageScene < 3 ? c.imageScene : c.imageScene - 1;  // map blocks in imageScene order
    const int bw = c.realDncMode == 0, night = c.sceneMode == 2;
    const int mode = c.hdrMode == 0 ? 0 : c.hdrMode == 4 ? 2 : 1;  // linear, HDR, WDR
    const int offset = bw ? 1 + 2 * mode : !night ? 2 * mode : first == 0 ? 6 + 2 * mode : 6 + mode;
    return {block * 12 + 6 * night + 2 * mode + bw, first + offset};
}

// The replacement of a missing type: an IVS type's base-scene partner, else the first present
// type of 0, 1, 2, 3, 4, 6, 10, 8, 5, 12 ... 119 (the base black-and-white night types and the
// IVS types are no one's replacement).
int expectedFallback(int type, const std::vector<bool>& present) {
    if (present[type]) return type;
    const int ivsPartner[] = {0, 1, 2, 1, 4, 1, 0, 2, 4};
    if (type >= 66 && type <= 74 && present[ivsPartner[type - 66]]) return ivsPartner[type - 66];
    std::vector<int> order = {0, 1, 2, 3, 4, 6, 10, 8, 5};
    for (int t = 12; t < PARAM_TABLE_TYPE_NUM; ++t) {
        if (t < 66 || t > 74) order.push_back(t);
    }
    for (int t : order) {
        if (present[t]) return t;
    }
    return -1;
}

// Every camera state, with values outside each field's range.
std::vector<CFG_ispParamCondition> states() {
    std::vector<CFG_ispParamCondition> all;
    for (Int32 scene = -1; scene <= 15; ++scene)
        for (Int32 d : {0, 1, -7})
            for (Int32 h : {0, 1, 4, 5, 12, -4})
                for (Uint32 m : {0u, 1u, 2u, 3u, 0x80000002u})
                    all.push_back({d, h, m, scene == 15 ? INT32_MIN : scene, {7, 7, 7, 7}});
    return all;
}

// Selects from `set` and checks the outcome: the expected table, or -1 with the set unchanged.
void expectSelection(CFG_DspIspCfgTables& set, CFG_ispParamCondition state, Choice want, const char* error) {
    const CFG_DspIspCfgTables before = set;
    ispdsp_test::LogCapture log;
    const Int32 rc = DRV_ispChooseCurParamDSP(&state, &set);
    if (want.type < 0) {
        ASSERT_EQ(rc, -1);
        ASSERT_EQ(std::memcmp(&before, &set, sizeof set), 0);
        ASSERT_EQ(log.lines().size(), 1u);
        ASSERT_EQ(log.count(error), 1u);
        return;
    }
    ASSERT_EQ(rc, 0);
    ASSERT_EQ(set.curTableIdx, static_cast<Uint32>(want.row));
    ASSERT_EQ(set.curTableType, static_cast<Uint32>(want.type));
    ASSERT_EQ(set.curTable, set.paramTables[want.type]);
    ASSERT_EQ(set.lastTableIdx, before.lastTableIdx);  // the refresh's business
    ASSERT_TRUE(log.lines().empty());
}

// Over every state and many sets of present tables (the full set among them): the state's map
// row with its table or the table's replacement, or -1 with the previous choice kept.
TEST(TableSelection, EveryStateSelectsItsMapRowAndFallsBackOrFailsKeepingThePreviousChoice) {
    std::vector<std::vector<int>> sets = {{}, {0}, {1}, {5}, {7, 9, 11}, {2, 3}, {4, 1}, {1, 2}, {2, 4}, {66}, {67, 1}, {119}, {12, 13}, {6, 10, 8}};
    sets.emplace_back(PARAM_TABLE_TYPE_NUM);
    std::iota(sets.back().begin(), sets.back().end(), 0);
    uint32_t seed = 12345;
    for (int n = 0; n < 16; ++n) {
        std::vector<int> some;
        for (int t = 0; t < PARAM_TABLE_TYPE_NUM; ++t) {
            seed = seed * 1103515245u + 12345u;
            if ((seed >> 16) % 24 == 0) some.push_back(t);
        }
        sets.push_back(some);
    }
    std::vector<CFG_DspIspCfgParam> tables(PARAM_TABLE_TYPE_NUM);
    for (const auto& types : sets) {
        CFG_DspIspCfgTables set{};
        set.lastTableIdx = 777;
        std::vector<bool> present(PARAM_TABLE_TYPE_NUM);
        for (int t : types) {
            set.paramTables[t] = &tables[t];
            present[t] = true;
        }
        for (const CFG_ispParamCondition& s : states()) {
            SCOPED_TRACE(testing::Message() << types.size() << " tables, state " << s.realDncMode << " " << s.hdrMode << " "
                                            << s.sceneMode << " " << s.imageScene);
            Choice want = expectedChoice(s);
            if (want.row >= 0) want.type = expectedFallback(want.type, present);
            expectSelection(set, s, want,
                            want.row < 0 ? "): Failed to get current adj state!\n"
                                         : "We failed to find other suitable param instead! The program should be terminated!\n");
        }
    }
}

// Null arguments of both functions: -1, one error line each, nothing touched.
TEST(TableSet, NullArgumentsAreRefused) {
    std::vector<uint8_t> bytes = blockOf({PARAM_MULTICOLOR});
    CFG_IspParamTable header{};
    header.cfg_specParam.size = kEntry;
    CFG_DspIspCfgTables set{};
    const CFG_DspIspCfgTables untouched{};
    CFG_ispParamCondition state = states()[0];
    ispdsp_test::LogCapture log;
    EXPECT_EQ(DRV_ispCommonTable2DspTable(nullptr, bytes.data(), set.paramTables), -1);
    EXPECT_EQ(DRV_ispCommonTable2DspTable(&header, nullptr, set.paramTables), -1);
    EXPECT_EQ(DRV_ispCommonTable2DspTable(&header, bytes.data(), nullptr), -1);
    EXPECT_EQ(DRV_ispChooseCurParamDSP(nullptr, &set), -1);
    EXPECT_EQ(DRV_ispChooseCurParamDSP(&state, nullptr), -1);
    EXPECT_EQ(log.count("dspIspParam is NULL or commTable is NULL!\n"), 3u);
    EXPECT_EQ(log.count("cfgConditon is NULL or dspCfgTables is NULL!\n"), 2u);
    EXPECT_EQ(std::memcmp(&set, &untouched, sizeof set), 0);
}

}  // namespace

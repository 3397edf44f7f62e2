// The registration file reader: places, header, blocks, register lines, the
// count limits, zero-filled arrays and the release of earlier loads.
#include "driver/registration.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "ispdsp_host/host.h"
#include "support/log_capture.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::LogLine;
using ispdsp_test::Sandbox;

constexpr const char* kPlaces[] = {"/var/tmp/calibration.txt", "/var/calibration.txt", "/mnt/mtd/calibration.txt"};

// Lines "<prefix><function>|<line>): <message>" at (level, category), whatever the line number.
size_t countLines(const LogCapture& log, int level, int category, const std::string& head, const std::string& tail) {
    size_t n = 0;
    for (const LogLine& line : log.lines()) {
        const std::string& t = line.text;
        if (line.level == level && line.category == category && t.rfind(head, 0) == 0 && t.size() >= tail.size() &&
            t.compare(t.size() - tail.size(), tail.size(), tail) == 0)
            ++n;
    }
    return n;
}
size_t countWarn(const LogCapture& log, const std::string& function, const std::string& message) {
    return countLines(log, 1, 8, "[DSP_DRV] WARN  (" + function + "|", "): " + message);
}
size_t countError(const LogCapture& log, const std::string& function, const std::string& message) {
    return countLines(log, 0, 1, "[DSP_DRV] ERROR  (" + function + "|", "): " + message);
}

uint64_t liveBlocks() {
    ispdsp_host_mem_stats stats{};
    ispdsp_host_get_mem_stats(&stats);
    return stats.live_blocks;
}

RegisterParam pairAt(int block, int k) {
    return drvRegistrateParam.registerParam[block * drvRegistrateParam.regNum + k];
}

// Every test starts and ends with an empty process-wide record.
class RegistrationTest : public ::testing::Test {
protected:
    void SetUp() override {
        DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
        blocksBefore_ = liveBlocks();
    }
    void TearDown() override {
        ispdsp_host_fail_alloc_after(0);
        DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
        EXPECT_EQ(liveBlocks(), blocksBefore_) << "the reader leaked or over-released memory";
    }
    // Loads `text` as /var/tmp/calibration.txt through the place search.
    Int32 load(const std::string& text) {
        sandbox_.writeFile(kPlaces[0], text);
        return DRV_ispRegistrateCfgLoad();
    }

    Sandbox sandbox_;
    LogCapture log_;
    uint64_t blocksBefore_ = 0;
};

// ---------------------------------------------------------------- places

struct PlaceCase {
    bool present[3];
    Int32 expectedPlace;
    size_t openWarnings;
};

class RegistrationPlaceTest : public RegistrationTest, public ::testing::WithParamInterface<PlaceCase> {};

TEST_P(RegistrationPlaceTest, FirstReadablePlaceWins) {
    const PlaceCase& c = GetParam();
    for (int p = 0; p < 3; ++p) {
        // Each place holds a different zoom position, so the one read is visible.
        if (c.present[p])
            sandbox_.writeFile(kPlaces[p], "ZOOMNUM:1\nREGNUM:1\nZOOM:" + std::to_string(100 + p) +
                                               "\n0x1 0x2\nTFORM:\n");
    }
    EXPECT_EQ(DRV_ispRegistrateCfgLoad(), c.expectedPlace);
    EXPECT_EQ(log_.count("open failed"), c.openWarnings);
    for (size_t p = 0; p < c.openWarnings; ++p)
        EXPECT_EQ(countWarn(log_, "DRV_ispGetRegistrateCfg", std::string(kPlaces[p]) + " open failed\n"), 1u);
    if (c.expectedPlace > 0) {
        ASSERT_NE(drvRegistrateParam.zoomX, nullptr);
        EXPECT_EQ(drvRegistrateParam.zoomX[0], 100 + c.expectedPlace - 1);
        EXPECT_EQ(countError(log_, "DRV_ispRegistrateCfgLoad", "Registrate Cfg Load Failed !\n"), 0u);
    } else {
        EXPECT_EQ(drvRegistrateParam.zoomX, nullptr);
        EXPECT_EQ(countError(log_, "DRV_ispRegistrateCfgLoad", "Registrate Cfg Load Failed !\n"), 1u);
        // The error comes after the three warnings.
        EXPECT_NE(log_.texts().back().find("Registrate Cfg Load Failed !"), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(Places, RegistrationPlaceTest,
                         ::testing::Values(PlaceCase{{true, true, true}, 1, 0}, PlaceCase{{false, true, true}, 2, 1},
                                           PlaceCase{{false, false, true}, 3, 2},
                                           PlaceCase{{false, false, false}, -1, 3}),
                         [](const ::testing::TestParamInfo<PlaceCase>& info) {
                             return info.param.expectedPlace > 0 ? "Place" + std::to_string(info.param.expectedPlace) : std::string("NoPlace");
                         });

TEST_F(RegistrationTest, MalformedFileFallsBackToNextPlace) {
    sandbox_.writeFile(kPlaces[0], "ZOOMNUM:1\nno register count here\n");
    sandbox_.writeFile(kPlaces[1], "ZOOMNUM:1\nREGNUM:1\nZOOM:7\n");
    EXPECT_EQ(DRV_ispRegistrateCfgLoad(), 2);
    EXPECT_EQ(countWarn(log_, "DRV_ispGetRegistrateCfg", "getPropertyCfgNew failed\n"), 1u);
    EXPECT_EQ(drvRegistrateParam.zoomX[0], 7);
}

TEST_F(RegistrationTest, PlaceDirectoriesMatchTheSearchOrder) {
    EXPECT_STREQ(DRV_ispRegistratePlaceDir(1), "/var/tmp/");
    EXPECT_STREQ(DRV_ispRegistratePlaceDir(2), "/var/");
    EXPECT_STREQ(DRV_ispRegistratePlaceDir(3), "/mnt/mtd/");
    EXPECT_EQ(DRV_ispRegistratePlaceDir(0), nullptr);
    EXPECT_EQ(DRV_ispRegistratePlaceDir(4), nullptr);
    EXPECT_EQ(DRV_ispRegistratePlaceDir(-1), nullptr);
}

// ---------------------------------------------------------------- field values

struct FieldCase {
    const char* line;
    const char* field;
    Int32 result;
    Int32 value;
};

class RegistrationFieldTest : public ::testing::TestWithParam<FieldCase> {};

TEST_P(RegistrationFieldTest, ReadsDecimalAfterField) {
    const FieldCase& c = GetParam();
    std::string line = c.line;
    std::string field = c.field;
    Int32 value = 12345;
    EXPECT_EQ(DRV_ispGetLineCfg(line.data(), field.data(), &value), c.result) << c.line;
    EXPECT_EQ(value, c.value) << c.line;
}

INSTANTIATE_TEST_SUITE_P(
    Fields, RegistrationFieldTest,
    ::testing::Values(FieldCase{"ZOOMNUM:3 REGNUM:2\n", "ZOOMNUM:", 0, 3},
                      FieldCase{"ZOOMNUM:3 REGNUM:2\n", "REGNUM:", 0, 2},
                      FieldCase{"ZOOMNUM: 3\n", "ZOOMNUM:", 0, 3},
                      FieldCase{"ZOOMNUM:\n", "ZOOMNUM:", 0, 0},
                      FieldCase{"ZOOMNUM:", "ZOOMNUM:", 0, 0},
                      FieldCase{"ZOOMNUM:abc 5", "ZOOMNUM:", 0, 0},
                      FieldCase{"ZOOMNUM:-7x", "ZOOMNUM:", 0, -7},
                      FieldCase{"junk ZOOMNUM:\t+12\r\n", "ZOOMNUM:", 0, 12},
                      // The value ends at the first CR or LF: no white-space skip past it.
                      FieldCase{"ZOOMNUM:\r5\n", "ZOOMNUM:", 0, 0},
                      FieldCase{"ZOOMNUM: \n 5", "ZOOMNUM:", 0, 0},
                      // Out-of-range decimals saturate to the Int32 range.
                      FieldCase{"ZOOM:99999999999999999999", "ZOOM:", 0, INT32_MAX},
                      FieldCase{"ZOOM:-2147483648", "ZOOM:", 0, INT32_MIN},
                      FieldCase{"ZOOM:-99999999999", "ZOOM:", 0, INT32_MIN},
                      // Absent field: -1 and the value untouched.
                      FieldCase{"ZOOMNUM3\n", "ZOOMNUM:", -1, 12345},
                      FieldCase{"ZOOMNUM:3\n", "ZOOM:", -1, 12345}),
                         [](const ::testing::TestParamInfo<FieldCase>& info) {
        std::string field = info.param.field;
        field.pop_back();  // the colon
        return std::to_string(info.index) + "_" + field + (info.param.result == 0 ? "" : "_absent");
    });

// ---------------------------------------------------------------- register lines

struct RegLineCase {
    const char* line;
    Int32 result;
    Uint32 addr;
    Uint32 value;
};

class RegistrationRegLineTest : public ::testing::TestWithParam<RegLineCase> {};

TEST_P(RegistrationRegLineTest, ReadsHexAfterEachX) {
    const RegLineCase& c = GetParam();
    std::string line = c.line;
    Int32 addr = 0x5555;
    Int32 value = 0x6666;
    EXPECT_EQ(DRV_ispGetLineRegCfg(line.data(), &addr, &value), c.result) << c.line;
    if (c.result == 0) {
        EXPECT_EQ(static_cast<Uint32>(addr), c.addr) << c.line;
        EXPECT_EQ(static_cast<Uint32>(value), c.value) << c.line;
    } else {
        EXPECT_EQ(addr, 0x5555);
        EXPECT_EQ(value, 0x6666);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, RegistrationRegLineTest,
    ::testing::Values(RegLineCase{"0x10 0x5\n", 0, 0x10, 0x5}, RegLineCase{"0x1f 0x0033\r\n", 0, 0x1F, 0x33},
                      RegLineCase{"reg x1f val x33", 0, 0x1F, 0x33},
                      // Each number is read from its own text: the empty address does not take the value.
                      RegLineCase{"0x 0x5\n", 0, 0x0, 0x5}, RegLineCase{"0xAbCd 0xFFFFFFFF", 0, 0xABCD, 0xFFFFFFFF},
                      RegLineCase{"0x10 0x5 0x7\n", 0, 0x10, 0x5}, RegLineCase{"0x10  0x5", 0, 0x10, 0x5},
                      // No hexadecimal digits reads as 0.
                      RegLineCase{"0xg 0xzz\n", 0, 0x0, 0x0}, RegLineCase{"0x10 0x\n", 0, 0x10, 0x0},
                      // Digits end at the first other character; too many saturate.
                      RegLineCase{"0x12g4 0x7-\n", 0, 0x12, 0x7}, RegLineCase{"0x123456789 0x1\n", 0, 0xFFFFFFFF, 0x1},
                      // Not register lines.
                      RegLineCase{"ZOOM:120\n", -1, 0, 0}, RegLineCase{"0x10\n", -1, 0, 0},
                      RegLineCase{"0x10 5\n", -1, 0, 0}, RegLineCase{"TFORM: 1 2 3\n", -1, 0, 0},
                      RegLineCase{"", -1, 0, 0}),
                         [](const ::testing::TestParamInfo<RegLineCase>& info) {
        return std::to_string(info.index) + (info.param.result == 0 ? "_register" : "_notRegister");
    });

// ---------------------------------------------------------------- header

// A file that loads from the first place, and what it must leave in the record: the counts,
// every zoom position, and the listed register pairs as (block, position, addr, data).
struct LayoutCase {
    const char* name;
    std::string text;
    Int32 zoomNum, regNum;
    std::vector<Int32> zoomX;
    std::vector<std::array<Uint32, 4>> pairs;
};

class RegistrationLayoutTest : public RegistrationTest, public ::testing::WithParamInterface<LayoutCase> {};

TEST_P(RegistrationLayoutTest, LoadsTheBlocks) {
    const LayoutCase& c = GetParam();
    ASSERT_EQ(load(c.text), 1);
    EXPECT_EQ(drvRegistrateParam.zoomNum, c.zoomNum);
    EXPECT_EQ(drvRegistrateParam.regNum, c.regNum);
    for (size_t z = 0; z < c.zoomX.size(); ++z) EXPECT_EQ(drvRegistrateParam.zoomX[z], c.zoomX[z]) << "zoom " << z;
    for (const auto& [block, k, addr, data] : c.pairs) {
        EXPECT_EQ(pairAt(int(block), int(k)).addr, addr) << "block " << block << " pair " << k;
        EXPECT_EQ(pairAt(int(block), int(k)).data, data) << "block " << block << " pair " << k;
    }
    EXPECT_EQ(log_.count("WARN"), 0u);
}

// A line longer than 255 characters arrives in pieces, each read as a line: "ZOOMN" | "UM:9"
// is in neither piece, a count line after 255 characters is whole in the second piece, and a
// padded register line takes two positions, so the block's last pair is dropped.
const std::string kSplit = std::string(250, 'a') + "ZOOMNUM:9\n" + std::string(255, 'b') + "ZOOMNUM:1 REGNUM:2\n" +
                           "ZOOM:40\n0x11 0x22" + std::string(300, ' ') + "\n0x33 0x44\nTFORM:\n";

INSTANTIATE_TEST_SUITE_P(
    Files, RegistrationLayoutTest,
    ::testing::Values(
        LayoutCase{"BothCountsOnOneLine",
                   "ZOOMNUM:3 REGNUM:2\nZOOM:10\n0x1 0x2\n0x3 0x4\nTFORM:\nZOOM:20\n0x5 0x6\n0x7 0x8\nTFORM:\n"
                   "ZOOM:30\n0x9 0xa\n0xb 0xc\nTFORM:\n",
                   3, 2, {10, 20, 30}, {{2, 1, 0xB, 0xC}}},
        LayoutCase{"LinesBeforeZoomNumAreIgnored",
                   "# comment\nREGNUM:9\nZOOMNUM:1\nfree text\nREGNUM:1\nZOOM:5\n0x1 0x2\nTFORM:\n", 1, 1, {5},
                   {{0, 0, 1, 2}}},
        LayoutCase{"LongLinesArriveInPieces", kSplit, 1, 2, {40}, {{0, 0, 0x11, 0x22}, {0, 1, 0, 0}}},
        LayoutCase{"WellFormedBlocks",
                   "ZOOMNUM:2\nREGNUM:2\nZOOM:120\n0x1f 0x0033\nreg x20 val x44\nTFORM: 1 0 0 0 1 0\n"
                   "ZOOM:240\n0x21 0x55\n0x22 0x66\nTFORM:\n",
                   2, 2, {120, 240}, {{0, 0, 0x1F, 0x33}, {0, 1, 0x20, 0x44}, {1, 0, 0x21, 0x55}, {1, 1, 0x22, 0x66}}},
        // Without the closing line the next zoom line closes the block: the second block is
        // never given a zoom position and stays zero-filled.
        LayoutCase{"MissingTformLosesNextZoom",
                   "ZOOMNUM:2\nREGNUM:2\nZOOM:120\n0x1 0x2\n0x3 0x4\nZOOM:240\n0x5 0x6\n0x7 0x8\nTFORM:\n", 2, 2,
                   {120, 0}, {{1, 0, 0, 0}, {1, 1, 0, 0}}},
        // Block 0 ends on its third register line; block 1 then starts on block 0's closing
        // line, so its zoom line is position 1 and its first pair lands in slot 1.
        LayoutCase{"ExtraRegisterLineIsDroppedNotSpilled",
                   "ZOOMNUM:2\nREGNUM:2\nZOOM:120\n0x1 0x2\n0x3 0x4\n0x9 0x9\nTFORM:\nZOOM:240\n0x5 0x6\n0x7 0x8\n"
                   "TFORM:\n",
                   2, 2, {120, 240}, {{0, 0, 1, 2}, {0, 1, 3, 4}, {1, 0, 0, 0}, {1, 1, 5, 6}}},
        LayoutCase{"TruncatedFileKeepsZoomNum",
                   "ZOOMNUM:3\nREGNUM:2\nZOOM:10\n0x1 0x2\n0x3 0x4\nTFORM:\nZOOM:20\n0x5 0x6\n", 3, 2, {10, 20, 0},
                   {{1, 0, 5, 6}, {1, 1, 0, 0}, {2, 1, 0, 0}}},
        // The zoom line sits at position 2, so the register line after it is position 3,
        // pair 2, outside regNum: dropped. The block ends after regNum + 2 lines.
        LayoutCase{"LinesBeforeZoomLineAreSkipped", "ZOOMNUM:1\nREGNUM:2\nTFORM:\n0x7 0x7\nZOOM:50\n0x1 0x2\n", 1,
                   2, {50}, {{0, 0, 0, 0}, {0, 1, 0, 0}}}),
    [](const ::testing::TestParamInfo<LayoutCase>& info) { return std::string(info.param.name); });

TEST_F(RegistrationTest, RegNumBeforeZoomNumOnlyFails) {
    EXPECT_EQ(load("REGNUM:2\nZOOMNUM:1\nZOOM:5\n0x1 0x2\n"), -1);
    EXPECT_EQ(countWarn(log_, "DRV_ispGetRegistrateCfg", "getPropertyCfgNew failed\n"), 1u);
    EXPECT_EQ(drvRegistrateParam.zoomX, nullptr);
}

// ---------------------------------------------------------------- limits

struct LimitCase {
    Int64 zoomNum;
    Int64 regNum;
    bool accepted;
};

class RegistrationLimitTest : public RegistrationTest, public ::testing::WithParamInterface<LimitCase> {};

TEST_P(RegistrationLimitTest, CountsOutsideTheLimitsFailThePlace) {
    const LimitCase& c = GetParam();
    // A previous load must survive a refused one.
    ASSERT_EQ(load("ZOOMNUM:1\nREGNUM:1\nZOOM:77\n0x1 0x2\n"), 1);
    const Int32* previousZoom = drvRegistrateParam.zoomX;
    log_.clear();

    const Int32 place =
        load("ZOOMNUM:" + std::to_string(c.zoomNum) + "\nREGNUM:" + std::to_string(c.regNum) + "\nZOOM:5\n");
    if (c.accepted) {
        EXPECT_EQ(place, 1);
        EXPECT_EQ(drvRegistrateParam.zoomNum, c.zoomNum);
        EXPECT_EQ(drvRegistrateParam.regNum, c.regNum);
        EXPECT_EQ(drvRegistrateParam.zoomX[0], 5);
    } else {
        EXPECT_EQ(place, -1);
        EXPECT_EQ(log_.count("out of range"), 1u);
        EXPECT_EQ(countWarn(log_, "DRV_ispGetRegistrateCfg", "getDspRegCfgNew failed\n"), 1u);
        EXPECT_EQ(drvRegistrateParam.zoomNum, 1);
        EXPECT_EQ(drvRegistrateParam.zoomX, previousZoom);
        EXPECT_EQ(drvRegistrateParam.zoomX[0], 77);
    }
}

INSTANTIATE_TEST_SUITE_P(Limits, RegistrationLimitTest,
                         ::testing::Values(LimitCase{0, 2, false}, LimitCase{-1, 2, false}, LimitCase{2, 0, false},
                                           LimitCase{2, -3, false}, LimitCase{4097, 1, false},
                                           LimitCase{1, 65537, false}, LimitCase{4096, 257, false},
                                           LimitCase{2147483647, 2147483647, false},
                                           LimitCase{-2147483648LL, -2147483648LL, false},
                                           LimitCase{4096, 256, true}, LimitCase{1, 65536, true},
                                           LimitCase{4096, 1, true}),
                         [](const ::testing::TestParamInfo<LimitCase>& info) {
                             return std::to_string(info.index) + (info.param.accepted ? "_accepted" : "_refused");
                         });

// ---------------------------------------------------------------- memory

TEST_F(RegistrationTest, RepeatedLoadsReleaseEarlierArrays) {
    const std::string text = "ZOOMNUM:2\nREGNUM:1\nZOOM:1\n0x1 0x1\nTFORM:\nZOOM:2\n0x2 0x2\nTFORM:\n";
    for (int n = 0; n < 3; ++n) ASSERT_EQ(load(text), 1);
    EXPECT_EQ(liveBlocks(), blocksBefore_ + 2);  // one zoom list and one pair array, nothing else
    DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
    EXPECT_EQ(liveBlocks(), blocksBefore_);
    EXPECT_EQ(drvRegistrateParam.zoomNum, 0);
    EXPECT_EQ(drvRegistrateParam.zoomX, nullptr);
    DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);  // harmless on a zero record
}

struct AllocFailCase {
    uint64_t failingCall;  // 1: line buffer, 2: zoom list, 3: pair array
    const char* function;
    const char* warning;
};

class RegistrationAllocTest : public RegistrationTest, public ::testing::WithParamInterface<AllocFailCase> {};

TEST_P(RegistrationAllocTest, FailedAllocationFailsThePlaceWithoutLeak) {
    sandbox_.writeFile(kPlaces[0], "ZOOMNUM:1\nREGNUM:1\nZOOM:5\n0x1 0x2\n");
    ispdsp_host_fail_alloc_after(GetParam().failingCall);
    EXPECT_EQ(DRV_ispGetRegistrateCfg(kPlaces[0], &drvRegistrateParam), -1);
    EXPECT_EQ(countWarn(log_, GetParam().function, GetParam().warning), 1u);
    EXPECT_EQ(countWarn(log_, "DRV_ispGetRegistrateCfg", "getDspRegCfgNew failed\n"),
              GetParam().failingCall > 1 ? 1u : 0u);
    EXPECT_EQ(drvRegistrateParam.zoomX, nullptr);
    EXPECT_EQ(liveBlocks(), blocksBefore_);
}

INSTANTIATE_TEST_SUITE_P(Allocations, RegistrationAllocTest,
                         ::testing::Values(AllocFailCase{1, "DRV_ispGetRegistrateCfg", "buffer malloc failed\n"},
                                           AllocFailCase{2, "DRV_ispGetRegCfg", "zoomx malloc failed!\n"},
                                           AllocFailCase{3, "DRV_ispGetRegCfg", "registerParam malloc failed!\n"}),
                         [](const ::testing::TestParamInfo<AllocFailCase>& info) {
                             return "Call" + std::to_string(info.param.failingCall);
                         });

TEST_F(RegistrationTest, NullHandleIsReported) {
    char buffer[ispdsp::kRegistrateLineSize] = {};
    Int32 zoomNum = 0;
    Int32 regNum = 0;
    EXPECT_EQ(DRV_ispGetPropertyCfg(buffer, nullptr, &zoomNum, &regNum), -1);
    EXPECT_EQ(countError(log_, "DRV_ispGetPropertyCfg", "param is null!\n"), 1u);
}

}  // namespace

// The RLR table file through the public ABI: identity reading, comparison,
// table read/write and the loader's choice between the custom file and its flash copy.
#include "ispdsp/rlr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"
#include "support/log_capture.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::LogLine;
using ispdsp_test::Sandbox;

constexpr const char* kCustom = "/var/custom/rlr_para.bin";
constexpr const char* kFlash = "/mnt/mtd/3A/rlr_para.bin";
constexpr const char* kFlashDir = "/mnt/mtd/3A";
constexpr size_t kTables = 768;

struct Identity {
    uint8_t version[3];
    uint8_t date[6];
};

// An RLR file of `length` bytes: table byte n is (n * 7 + seed) & 0xFF, the
// identity sits at length - 229 (inside the tables for a 768-byte file).
std::vector<uint8_t> rlrFile(size_t length, const Identity& id, uint8_t seed) {
    std::vector<uint8_t> bytes(length);
    for (size_t n = 0; n < length; ++n) bytes[n] = static_cast<uint8_t>(n * 7 + seed);
    if (length >= 229) {
        std::memcpy(&bytes[length - 229], id.version, 3);
        std::memcpy(&bytes[length - 226], id.date, 6);
    }
    return bytes;
}

constexpr Identity kIdA = {{1, 2, 3}, {23, 5, 6, 7, 8, 9}};

uint64_t liveBlocks() {
    ispdsp_host_mem_stats stats{};
    ispdsp_host_get_mem_stats(&stats);
    return stats.live_blocks;
}

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// Lines at (level, category) that are exactly `text`.
size_t countExact(const LogCapture& log, int level, int category, const std::string& text) {
    size_t n = 0;
    for (const LogLine& line : log.lines()) n += line.level == level && line.category == category && line.text == text;
    return n;
}
// Error lines "[DSP_DRV] ERROR  (<function>|<line>): <message>", whatever the line number.
size_t countError(const LogCapture& log, const std::string& function, const std::string& message) {
    size_t n = 0;
    for (const LogLine& line : log.lines())
        n += line.level == 0 && line.category == 1 && line.text.rfind("[DSP_DRV] ERROR  (" + function + "|", 0) == 0 &&
             endsWith(line.text, "): " + message);
    return n;
}
size_t countWarn(const LogCapture& log, const std::string& function, const std::string& message) {
    size_t n = 0;
    for (const LogLine& line : log.lines())
        n += line.level == 1 && line.category == 8 && line.text.rfind("[DSP_DRV] WARN  (" + function + "|", 0) == 0 &&
             endsWith(line.text, "): " + message);
    return n;
}

std::string refreshLine() {
    return std::string("[DSP_DRV] get rlr table info ") + kFlash + " is failed,read from " + kCustom + ".\n";
}
std::string fromFlashLine() { return std::string("[DSP_DRV] get rlr table info ") + kFlash + " is OK.\n"; }
std::string readOkLine(const char* path) { return std::string("[DSP_DRV] get ") + path + " rlr cfg OK.\n"; }
std::string writeOkLine(const char* path) { return std::string("[DSP_DRV] write ") + path + " rlr cfg OK.\n"; }
std::string shortReadLine(const char* path) {
    return std::string("[DSP_DRV] WARN  : read ") + path + " RLR table info failed\n";
}

std::vector<uint8_t> tablesOf(const void* buffer) {
    const auto* p = static_cast<const uint8_t*>(buffer);
    return std::vector<uint8_t>(p, p + kTables);
}
std::vector<uint8_t> head(const std::vector<uint8_t>& bytes, size_t n) {
    return std::vector<uint8_t>(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n));
}

class RlrTest : public ::testing::Test {
protected:
    void SetUp() override { blocksBefore_ = liveBlocks(); }
    void TearDown() override {
        ispdsp_host_fail_alloc_after(0);
        if (allocated_ != nullptr) OSA_memUFree(allocated_);
        EXPECT_EQ(liveBlocks(), blocksBefore_) << "the loader leaked its temporary record";
    }
    // Loads into a null pointer; the buffer handed out is released at the end of the test.
    Int32 loadAllocating() {
        Ptr p = nullptr;
        const Int32 ret = DRV_loadRlrCfg(&p);
        allocated_ = p;
        return ret;
    }

    Sandbox sandbox_;
    LogCapture log_;
    uint64_t blocksBefore_ = 0;
    Ptr allocated_ = nullptr;
};

// ---------------------------------------------------------------- loader decisions

TEST_F(RlrTest, MissingCustomFileFailsWithoutAllocating) {
    sandbox_.makeDir(kFlashDir);
    Ptr p = nullptr;
    EXPECT_EQ(DRV_loadRlrCfg(&p), -1);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(countError(log_, "CFG_aewGetRlrCfgInfo", std::string("Open ") + kCustom + " file failed\n"), 1u);
    EXPECT_EQ(countError(log_, "DRV_loadRlrCfg", "Get RlrCfgInfo is failed!\n"), 1u);
    EXPECT_EQ(log_.count(kFlash), 0u);  // the flash copy is not even looked at
    EXPECT_FALSE(sandbox_.exists(kFlash));
}

TEST_F(RlrTest, CustomFileShorterThanIdentityFails) {
    sandbox_.writeFile(kCustom, rlrFile(228, kIdA, 1));
    Ptr p = nullptr;
    EXPECT_EQ(DRV_loadRlrCfg(&p), -1);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(countExact(log_, 1, 8,
                         std::string("[DSP_DRV] WARN  : read ") + kCustom + " RLR table info failed,fseek failed !\n"),
              1u);
    EXPECT_EQ(countError(log_, "DRV_loadRlrCfg", "Get RlrCfgInfo is failed!\n"), 1u);
}

TEST_F(RlrTest, MissingFlashCopyIsCreatedFromCustomFile) {
    const std::vector<uint8_t> custom = rlrFile(1024, kIdA, 3);
    sandbox_.writeFile(kCustom, custom);
    sandbox_.makeDir(kFlashDir);

    ASSERT_EQ(loadAllocating(), 0);
    ASSERT_NE(allocated_, nullptr);
    EXPECT_EQ(tablesOf(allocated_), head(custom, kTables));
    EXPECT_EQ(sandbox_.readFile(kFlash), head(custom, kTables));

    EXPECT_EQ(countExact(log_, 2, 8,
                         std::string("[DSP_DRV] version_num->1.2.3, data->2023/5/6 7:8:9. ") + kCustom + "\n"),
              1u);
    EXPECT_EQ(countError(log_, "CFG_aewGetRlrCfgInfo", std::string("Open ") + kFlash + " file failed\n"), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, "[DSP_DRV] CFG_cmpRlrCfgInfo:tableSize:0.00 tableSize:1024.00 \n"), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, refreshLine()), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, readOkLine(kCustom)), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, writeOkLine(kFlash)), 1u);
}

// The copy holds only the 768 table bytes, so its identity (read at 539) never
// matches a longer custom file: every load refreshes it.
TEST_F(RlrTest, CopyOfLongerCustomFileIsRefreshedEveryLoad) {
    const std::vector<uint8_t> custom = rlrFile(1024, kIdA, 3);
    sandbox_.writeFile(kCustom, custom);
    sandbox_.writeFile(kFlash, rlrFile(2000, kIdA, 9));  // an older, longer copy: cut to 768 by the write

    for (int round = 0; round < 2; ++round) {
        log_.clear();
        ASSERT_EQ(loadAllocating(), 0);
        EXPECT_EQ(countExact(log_, 2, 9, refreshLine()), 1u) << round;
        EXPECT_EQ(countExact(log_, 2, 9, writeOkLine(kFlash)), 1u) << round;
        EXPECT_EQ(sandbox_.readFile(kFlash), head(custom, kTables)) << round;
        OSA_memUFree(allocated_);
        allocated_ = nullptr;
    }
    EXPECT_EQ(countExact(log_, 2, 9, "[DSP_DRV] CFG_cmpRlrCfgInfo:tableSize:768.00 tableSize:1024.00 \n"), 1u);
}

TEST_F(RlrTest, MatchingCopyOf768ByteFileIsReadFromFlash) {
    // Same length and identity bytes (539..547), different day tables: the
    // buffer shows which file was read.
    std::vector<uint8_t> custom = rlrFile(kTables, kIdA, 3);
    std::vector<uint8_t> flash = custom;
    for (size_t n = 0; n < 256; ++n) flash[n] = static_cast<uint8_t>(~custom[n]);
    sandbox_.writeFile(kCustom, custom);
    sandbox_.writeFile(kFlash, flash);

    ASSERT_EQ(loadAllocating(), 0);
    EXPECT_EQ(tablesOf(allocated_), flash);
    EXPECT_EQ(sandbox_.readFile(kFlash), flash);  // not rewritten
    EXPECT_EQ(countExact(log_, 2, 9, fromFlashLine()), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, readOkLine(kFlash)), 1u);
    EXPECT_EQ(log_.count("CFG_cmpRlrCfgInfo"), 0u);
    EXPECT_EQ(log_.count("write "), 0u);
    EXPECT_EQ(log_.count("version_num->"), 2u);
}

// Identity readable, tables not: the copy is still written from whatever the buffer holds.
// A caller's buffer is kept and filled in place.
TEST_F(RlrTest, ShortCustomFileStillWritesCopy) {
    const std::vector<uint8_t> custom = rlrFile(500, kIdA, 5);
    sandbox_.writeFile(kCustom, custom);
    sandbox_.makeDir(kFlashDir);

    std::vector<uint8_t> caller(kTables, 0xEE);
    Ptr p = caller.data();
    ASSERT_EQ(DRV_loadRlrCfg(&p), 0);
    EXPECT_EQ(p, caller.data());

    std::vector<uint8_t> expected = custom;      // the bytes read so far...
    expected.resize(kTables, 0xEE);              // ...then the caller's old content
    EXPECT_EQ(caller, expected);
    EXPECT_EQ(sandbox_.readFile(kFlash), expected);
    EXPECT_EQ(countExact(log_, 1, 8, shortReadLine(kCustom)), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, writeOkLine(kFlash)), 1u);
}

TEST_F(RlrTest, ShortCustomFileIntoAllocatedBufferPadsWithZeros) {
    const std::vector<uint8_t> custom = rlrFile(300, kIdA, 5);
    sandbox_.writeFile(kCustom, custom);
    sandbox_.makeDir(kFlashDir);
    ASSERT_EQ(loadAllocating(), 0);
    std::vector<uint8_t> expected = custom;
    expected.resize(kTables, 0);
    EXPECT_EQ(sandbox_.readFile(kFlash), expected);
}

TEST_F(RlrTest, UnwritableCopyDoesNotChangeResult) {
    const std::vector<uint8_t> custom = rlrFile(1024, kIdA, 3);
    sandbox_.writeFile(kCustom, custom);  // no /mnt/mtd/3A folder: the write cannot open
    ASSERT_EQ(loadAllocating(), 0);
    EXPECT_EQ(tablesOf(allocated_), head(custom, kTables));
    EXPECT_EQ(countError(log_, "CFG_aewWriteRlrCfg", std::string("Open ") + kFlash + " file failed\n"), 1u);
    EXPECT_EQ(log_.count("write "), 0u);
}

TEST_F(RlrTest, OnlyFirstDifferenceIsLogged) {
    const Identity flashId = {{1, 5, 3}, {23, 5, 6, 7, 1, 9}};  // versionNum[1] and data[4] differ
    sandbox_.writeFile(kCustom, rlrFile(1024, kIdA, 3));
    sandbox_.writeFile(kFlash, rlrFile(1024, flashId, 3));
    ASSERT_EQ(loadAllocating(), 0);
    EXPECT_EQ(log_.count("CFG_cmpRlrCfgInfo:"), 1u);
    // The flash copy's value comes first.
    EXPECT_EQ(countExact(log_, 2, 9, "[DSP_DRV] CFG_cmpRlrCfgInfo:versionNum[i]:5.00 versionNum[i]:2.00 \n"), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, refreshLine()), 1u);
}

struct LoaderAllocCase {
    uint64_t failingCall;  // 1: temporary info record, 2: table buffer
    const char* warning;
};

class RlrAllocTest : public RlrTest, public ::testing::WithParamInterface<LoaderAllocCase> {};

TEST_P(RlrAllocTest, FailedAllocationFailsTheLoad) {
    sandbox_.writeFile(kCustom, rlrFile(1024, kIdA, 3));
    sandbox_.makeDir(kFlashDir);
    ispdsp_host_fail_alloc_after(GetParam().failingCall);
    Ptr p = nullptr;
    EXPECT_EQ(DRV_loadRlrCfg(&p), -1);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(countWarn(log_, "DRV_loadRlrCfg", GetParam().warning), 1u);
    EXPECT_FALSE(sandbox_.exists(kFlash));
}

INSTANTIATE_TEST_SUITE_P(Allocations, RlrAllocTest,
                         ::testing::Values(LoaderAllocCase{1, "Failed to malloc memory for cfg_rlrtableinfo\n"},
                                           LoaderAllocCase{2, "Failed to malloc memory for cfg_rlrtableparam\n"}),
                         [](const ::testing::TestParamInfo<LoaderAllocCase>& info) {
                             return info.param.failingCall == 1 ? "InfoRecord" : "TableBuffer";
                         });

// ---------------------------------------------------------------- comparison

struct CmpCase {
    size_t byteOffset;  // byte of the info record changed in the second record (-1: none)
    const char* line;   // expected difference line, nullptr when equal
};

class RlrCmpTest : public ::testing::TestWithParam<CmpCase> {};

TEST_P(RlrCmpTest, FirstDifferenceLine) {
    CFG_RlrTableInfo a = {};
    a.tableSize = 1024;
    std::memcpy(a.versionNum, kIdA.version, 3);
    std::memcpy(a.data, kIdA.date, 6);
    CFG_RlrTableInfo b = a;
    const CmpCase& c = GetParam();
    if (c.byteOffset < sizeof(b)) reinterpret_cast<uint8_t*>(&b)[c.byteOffset] += 100;

    LogCapture log;
    const Int32 same = CFG_cmpRlrCfgInfo(&a, &b);
    if (c.line == nullptr) {
        EXPECT_NE(same, 0);
        EXPECT_TRUE(log.lines().empty());
    } else {
        EXPECT_EQ(same, 0);
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_EQ(log.lines()[0].text, c.line);
        EXPECT_EQ(log.lines()[0].level, 2);
        EXPECT_EQ(log.lines()[0].category, 9);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Parts, RlrCmpTest,
    ::testing::Values(CmpCase{size_t(-1), nullptr},
                      // reserved bytes are not compared
                      CmpCase{13, nullptr}, CmpCase{15, nullptr},
                      CmpCase{0, "[DSP_DRV] CFG_cmpRlrCfgInfo:tableSize:1024.00 tableSize:1124.00 \n"},
                      CmpCase{4, "[DSP_DRV] CFG_cmpRlrCfgInfo:versionNum[i]:1.00 versionNum[i]:101.00 \n"},
                      CmpCase{6, "[DSP_DRV] CFG_cmpRlrCfgInfo:versionNum[i]:3.00 versionNum[i]:103.00 \n"},
                      CmpCase{7, "[DSP_DRV] CFG_cmpRlrCfgInfo:data[i]:23.00 data[i]:123.00 \n"},
                      CmpCase{12, "[DSP_DRV] CFG_cmpRlrCfgInfo:data[i]:9.00 data[i]:109.00 \n"}),
                         [](const ::testing::TestParamInfo<CmpCase>& info) {
        return info.param.byteOffset < 64 ? "Byte" + std::to_string(info.param.byteOffset) : std::string("Equal");
    });

TEST(RlrCmp, SizesArePrintedInSinglePrecision) {
    CFG_RlrTableInfo a = {};
    CFG_RlrTableInfo b = {};
    a.tableSize = 16777217;  // not representable as a single: rounds to 16777216
    b.tableSize = 3;
    LogCapture log;
    EXPECT_EQ(CFG_cmpRlrCfgInfo(&a, &b), 0);
    EXPECT_TRUE(log.contains("[DSP_DRV] CFG_cmpRlrCfgInfo:tableSize:16777216.00 tableSize:3.00 \n"));
}

TEST(RlrCmp, NullRecordNeverMatches) {
    CFG_RlrTableInfo a = {};
    LogCapture log;
    EXPECT_EQ(CFG_cmpRlrCfgInfo(nullptr, &a), 0);
    EXPECT_EQ(CFG_cmpRlrCfgInfo(&a, nullptr), 0);
    EXPECT_EQ(countError(log, "CFG_cmpRlrCfgInfo", "Input NULL POINT rlrTable3AInfo!\n"), 1u);
    EXPECT_EQ(countError(log, "CFG_cmpRlrCfgInfo", "Input NULL POINT rlrTablePackInfo!\n"), 1u);
}

// ---------------------------------------------------------------- single functions

TEST_F(RlrTest, IdentityOfFile) {
    sandbox_.writeFile(kCustom, rlrFile(4096, {{9, 0, 255}, {0, 12, 31, 23, 59, 0}}, 0));
    CFG_RlrTableInfo info;
    std::memset(&info, 0xA5, sizeof(info));
    ASSERT_EQ(CFG_aewGetRlrCfgInfo(kCustom, &info), 0);
    EXPECT_EQ(info.tableSize, 4096u);
    EXPECT_EQ(info.versionNum[2], 255);
    EXPECT_EQ(info.data[1], 12);
    EXPECT_EQ(info.reserved[0], 0xA5);  // never written
    EXPECT_EQ(countExact(log_, 2, 8,
                         std::string("[DSP_DRV] version_num->9.0.255, data->2000/12/31 23:59:0. ") + kCustom + "\n"),
              1u);
}

TEST_F(RlrTest, NullPathsAndArguments) {
    CFG_RlrTableInfo info = {};
    CFG_RlrTableParam tables = {};
    EXPECT_EQ(CFG_aewGetRlrCfgInfo(nullptr, &info), -1);
    EXPECT_EQ(countError(log_, "CFG_aewGetRlrCfgInfo", "read cfg file is failed\n"), 1u);
    EXPECT_EQ(CFG_aewWriteRlrCfg(nullptr, &tables), -1);
    EXPECT_EQ(countError(log_, "CFG_aewWriteRlrCfg", "cfg_file_path is NULL\n"), 1u);
    EXPECT_EQ(CFG_aewReadRlrCfg(nullptr, &tables), -1);
    EXPECT_EQ(CFG_aewReadRlrCfg(kCustom, nullptr), -1);
    EXPECT_EQ(countError(log_, "CFG_aewReadRlrCfg", "Input NULL POINT cfg_file_path!\n"), 1u);
    EXPECT_EQ(countError(log_, "CFG_aewReadRlrCfg", "Input NULL POINT cfg_rlrtableparam!\n"), 1u);
    EXPECT_EQ(DRV_loadRlrCfg(nullptr), -1);
    EXPECT_EQ(countError(log_, "DRV_loadRlrCfg", "Input NULL POINT cfg_rlrtableparam!\n"), 1u);
}

TEST_F(RlrTest, WriteThenReadRoundTrip) {
    sandbox_.makeDir(kFlashDir);
    CFG_RlrTableParam out{};
    for (size_t n = 0; n < 256; ++n) {
        out.pDayTable[n] = static_cast<Uint8>(n);
        out.pDuskTable[n] = static_cast<Uint8>(255 - n);
        out.pNightTable[n] = static_cast<Uint8>(n ^ 0x5A);
    }
    ASSERT_EQ(CFG_aewWriteRlrCfg(kFlash, &out), 0);
    EXPECT_EQ(sandbox_.readFile(kFlash).size(), kTables);
    CFG_RlrTableParam in{};
    ASSERT_EQ(CFG_aewReadRlrCfg(kFlash, &in), 0);
    EXPECT_EQ(std::memcmp(&in, &out, sizeof(in)), 0);
    EXPECT_EQ(countExact(log_, 2, 9, writeOkLine(kFlash)), 1u);
    EXPECT_EQ(countExact(log_, 2, 9, readOkLine(kFlash)), 1u);

    EXPECT_EQ(CFG_aewReadRlrCfg("/var/custom/none.bin", &in), -1);
    EXPECT_EQ(countError(log_, "CFG_aewReadRlrCfg", "Open /var/custom/none.bin file failed\n"), 1u);
}

}  // namespace

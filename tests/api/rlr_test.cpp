// The RLR table file through the public ABI: identity and tables of generated
// files of every length around 229 and 768 bytes, the loader's choice between
// the custom file and its flash copy over a matrix of both files and buffers,
// the comparison's first-difference line and the exact failures.
#include "ispdsp/rlr.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/osa.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogKind;

constexpr const char* kCustom = "/var/custom/rlr_para.bin";
constexpr const char* kFlash = "/mnt/mtd/3A/rlr_para.bin";
constexpr size_t kTables = 768, kInfoFromEnd = 229;

// Byte n is n * 7 + seed; the identity (3 version, 6 date bytes) lies at length - 229.
std::vector<uint8_t> rlrFile(size_t length, uint8_t seed) {
    std::vector<uint8_t> bytes(length);
    for (size_t n = 0; n < length; ++n) bytes[n] = static_cast<uint8_t>(n * 7 + seed);
    return bytes;
}

// The first 768 bytes a read leaves in a buffer that held `fill`: the file's bytes, then `fill`.
std::vector<uint8_t> tablesAfterRead(const std::vector<uint8_t>& file, uint8_t fill) {
    std::vector<uint8_t> t(file.begin(), file.begin() + static_cast<long>(std::min(file.size(), kTables)));
    t.resize(kTables, fill);
    return t;
}

// (level, category) of the first line that contains `needle`: the RLR lines have their own, one
// pair for the identity line and one for every other information line (checked once each).
std::pair<int, int> shapeOf(const ispdsp_test::LogCapture& log, const std::string& needle) {
    for (const auto& line : log.lines()) {
        if (line.text.find(needle) != std::string::npos) return {line.level, line.category};
    }
    return {-1, -1};
}

class Rlr : public ::testing::Test {
protected:
    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
};

TEST_F(Rlr, IdentityAndTablesOfFilesOfEveryLength) {
    for (size_t length : {0u, 1u, 230u, 500u, 769u, 1024u, 4096u}) {
        SCOPED_TRACE(length);
        const std::vector<uint8_t> file = rlrFile(length, static_cast<uint8_t>(length));
        sandbox.writeFile(kCustom, file);
        log.clear();
        CFG_RlrTableInfo info;
        std::memset(&info, 0xA5, sizeof info);
        ASSERT_EQ(CFG_aewGetRlrCfgInfo(kCustom, &info), length >= kInfoFromEnd ? 0 : -1);
        if (length < kInfoFromEnd) {
            EXPECT_EQ(log.count("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed,fseek failed !\n"), 1u);
        } else {
            const uint8_t* id = &file[length - kInfoFromEnd];
            EXPECT_EQ(info.tableSize, length);
            EXPECT_EQ(std::memcmp(info.versionNum, id, 3), 0);
            EXPECT_EQ(std::memcmp(info.data, id + 3, 6), 0);
            EXPECT_EQ(info.reserved[0] & info.reserved[1] & info.reserved[2], 0xA5);  // never written
            char line[160];
            std::snprintf(line, sizeof line, "version_num->%d.%d.%d, data->%d/%d/%d %d:%d:%d. %s\n", id[0], id[1], id[2],
                          id[3] + 2000, id[4], id[5], id[6], id[7], id[8], kCustom);
            EXPECT_EQ(log.count("[DSP_DRV] " + std::string(line)), 1u) << line;
            EXPECT_EQ(shapeOf(log, "version_num->"), std::make_pair(2, 8));
        }
        log.clear();
        CFG_RlrTableParam tables;
        std::memset(&tables, 0xEE, sizeof tables);
        ASSERT_EQ(CFG_aewReadRlrCfg(kCustom, &tables), length >= kTables ? 0 : -1);
        EXPECT_EQ(std::vector<uint8_t>(tables.pDayTable, tables.pDayTable + kTables), tablesAfterRead(file, 0xEE));
        EXPECT_EQ(log.count("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed\n"), length < kTables ? 1u : 0u);
        EXPECT_EQ(log.count("[DSP_DRV] get /var/custom/rlr_para.bin rlr cfg OK.\n"), length < kTables ? 0u : 1u);
        EXPECT_EQ(shapeOf(log, "rlr cfg OK."), length < kTables ? std::make_pair(-1, -1) : std::make_pair(2, 9));
    }
}

// The flash copy as found before the load.
enum class Flash { NoFolder, Missing, SameIdentity, OtherIdentity, LibraryCopy };

TEST_F(Rlr, LoaderReadsTheFlashCopyOnlyWhenBothIdentitiesAgree) {
    for (size_t length : {228u, 500u, 768u, 1024u}) {
        for (Flash flash : {Flash::NoFolder, Flash::Missing, Flash::SameIdentity, Flash::OtherIdentity, Flash::LibraryCopy}) {
            for (bool callerBuffer : {false, true}) {
                SCOPED_TRACE(testing::Message() << length << " bytes, flash " << int(flash) << ", caller buffer " << callerBuffer);
                sandbox.remove("/mnt");
                const std::vector<uint8_t> custom = rlrFile(length, 3);
                sandbox.writeFile(kCustom, custom);
                std::vector<uint8_t> copy = custom;  // SameIdentity: other day table, same identity
                for (size_t n = 0; n < std::min<size_t>(256, length); ++n) copy[n] = static_cast<uint8_t>(~copy[n]);
                if (flash == Flash::OtherIdentity && length >= kInfoFromEnd) copy[length - kInfoFromEnd + 4] ^= 1;
                if (flash == Flash::LibraryCopy) copy = tablesAfterRead(custom, 0);
                if (flash == Flash::Missing) sandbox.makeDir("/mnt/mtd/3A");
                if (flash >= Flash::SameIdentity) sandbox.writeFile(kFlash, copy);
                const bool fromFlash = length >= kInfoFromEnd && flash >= Flash::SameIdentity && copy.size() == length &&
                                       std::equal(copy.end() - kInfoFromEnd, copy.end() - kInfoFromEnd + 9,
                                                  custom.end() - kInfoFromEnd);

                std::vector<uint8_t> caller(kTables, 0xEE);
                Ptr p = callerBuffer ? caller.data() : nullptr;
                log.clear();
                ispdsp_test::MemGuard mem(false);
                ASSERT_EQ(DRV_loadRlrCfg(&p), length >= kInfoFromEnd ? 0 : -1);
                EXPECT_EQ(mem.liveBlocks(), length >= kInfoFromEnd && !callerBuffer ? 1 : 0);  // the temporary record is freed
                if (length < kInfoFromEnd) {
                    EXPECT_EQ(p, callerBuffer ? caller.data() : nullptr);
                    EXPECT_TRUE(log.has(LogKind::Error, "DRV_loadRlrCfg", "Get RlrCfgInfo is failed!\n"));
                    EXPECT_EQ(sandbox.exists(kFlash), flash >= Flash::SameIdentity);
                    continue;
                }
                ASSERT_EQ(p == caller.data(), callerBuffer);
                const std::vector<uint8_t> want = tablesAfterRead(fromFlash ? copy : custom, callerBuffer ? 0xEE : 0);
                EXPECT_EQ(std::vector<uint8_t>(static_cast<uint8_t*>(p), static_cast<uint8_t*>(p) + kTables), want);
                if (fromFlash || flash == Flash::NoFolder) {
                    EXPECT_EQ(sandbox.exists(kFlash) ? sandbox.readFile(kFlash) : std::vector<uint8_t>{},
                              flash == Flash::NoFolder ? std::vector<uint8_t>{} : copy);
                } else {
                    EXPECT_EQ(sandbox.readFile(kFlash), want);  // refreshed from the custom file
                }
                EXPECT_EQ(log.count("[DSP_DRV] get rlr table info /mnt/mtd/3A/rlr_para.bin is OK.\n"), fromFlash ? 1u : 0u);
                EXPECT_EQ(log.count("[DSP_DRV] get rlr table info /mnt/mtd/3A/rlr_para.bin is failed,read from "
                                    "/var/custom/rlr_para.bin.\n"),
                          fromFlash ? 0u : 1u);
                EXPECT_EQ(log.count(LogKind::Error, "CFG_aewWriteRlrCfg", "Open /mnt/mtd/3A/rlr_para.bin file failed\n"),
                          flash == Flash::NoFolder ? 1u : 0u);
                if (!callerBuffer) OSA_memUFree(p);
            }
        }
    }
}

TEST(RlrCmp, OnlyTheFirstDifferenceIsLoggedInSinglePrecision) {
    CFG_RlrTableInfo a = {16777217, {1, 2, 3}, {23, 5, 6, 7, 8, 9}, {0, 0, 0}};  // a size a single cannot hold
    const struct {
        size_t byte;  // byte of the second record changed by +100 (and byte 8 by +1 too)
        const char* line;
    } cases[] = {{13, nullptr},
                 {15, nullptr},  // reserved bytes are not compared
                 {0, "tableSize:16777216.00 tableSize:16777316.00 \n"},
                 {4, "versionNum[i]:1.00 versionNum[i]:101.00 \n"},
                 {6, "versionNum[i]:3.00 versionNum[i]:103.00 \n"},
                 {7, "data[i]:23.00 data[i]:123.00 \n"},
                 {12, "data[i]:9.00 data[i]:109.00 \n"}};
    for (const auto& c : cases) {
        CFG_RlrTableInfo b = a;
        reinterpret_cast<uint8_t*>(&b)[c.byte] += 100;
        if (c.byte < 8) reinterpret_cast<uint8_t*>(&b)[8] += 1;  // a later difference is not reported
        ispdsp_test::LogCapture log;
        EXPECT_EQ(CFG_cmpRlrCfgInfo(&a, &b) != 0, c.line == nullptr) << c.byte;
        EXPECT_EQ(log.texts(), c.line ? std::vector<std::string>{"[DSP_DRV] CFG_cmpRlrCfgInfo:" + std::string(c.line)}
                                      : std::vector<std::string>{});
    }
    ispdsp_test::LogCapture log;
    EXPECT_EQ(CFG_cmpRlrCfgInfo(nullptr, &a), 0);
    EXPECT_EQ(CFG_cmpRlrCfgInfo(&a, nullptr), 0);
    EXPECT_TRUE(log.has(LogKind::Error, "CFG_cmpRlrCfgInfo", "Input NULL POINT rlrTable3AInfo!\n"));
    EXPECT_TRUE(log.has(LogKind::Error, "CFG_cmpRlrCfgInfo", "Input NULL POINT rlrTablePackInfo!\n"));
}

// (Reading files back: IdentityAndTablesOfFilesOfEveryLength.)
TEST_F(Rlr, WriteAndExactFailures) {
    sandbox.makeDir("/mnt/mtd/3A");
    CFG_RlrTableParam out{}, in{};
    for (size_t n = 0; n < 256; ++n) {
        out.pDayTable[n] = static_cast<Uint8>(n);
        out.pDuskTable[n] = static_cast<Uint8>(255 - n);
        out.pNightTable[n] = static_cast<Uint8>(n ^ 0x5A);
    }
    sandbox.writeFile(kFlash, std::vector<uint8_t>(2000, 1));  // a longer old copy is cut to 768
    ASSERT_EQ(CFG_aewWriteRlrCfg(kFlash, &out), 0);
    EXPECT_EQ(sandbox.readFile(kFlash), std::vector<uint8_t>(out.pDayTable, out.pDayTable + kTables));
    EXPECT_TRUE(log.contains("[DSP_DRV] write /mnt/mtd/3A/rlr_para.bin rlr cfg OK.\n"));

    CFG_RlrTableInfo info{};
    EXPECT_EQ(CFG_aewGetRlrCfgInfo(nullptr, &info), -1);
    EXPECT_EQ(CFG_aewGetRlrCfgInfo(kCustom, nullptr), -1);
    EXPECT_EQ(CFG_aewGetRlrCfgInfo(kCustom, &info), -1);
    EXPECT_EQ(CFG_aewReadRlrCfg(nullptr, &in), -1);
    EXPECT_EQ(CFG_aewReadRlrCfg(kFlash, nullptr), -1);
    EXPECT_EQ(CFG_aewReadRlrCfg("/var/custom/none.bin", &in), -1);
    EXPECT_EQ(CFG_aewWriteRlrCfg(nullptr, &out), -1);
    EXPECT_EQ(CFG_aewWriteRlrCfg(kFlash, nullptr), -1);
    EXPECT_EQ(CFG_aewWriteRlrCfg("/none/rlr.bin", &out), -1);
    EXPECT_EQ(DRV_loadRlrCfg(nullptr), -1);
    EXPECT_EQ(log.count(LogKind::Error), 10u);  // one error line each
    ispdsp_host_limit_file_writes(767);          // the flash fills one byte short
    EXPECT_EQ(CFG_aewWriteRlrCfg(kFlash, &out), -1);
    ispdsp_host_limit_file_writes(UINT64_MAX);
    EXPECT_TRUE(log.has(LogKind::Error, "CFG_aewWriteRlrCfg", "write rlr cfg failed,size = 767\n"));

    // A pipe cannot seek to its end. The writer end is held open so that opening it does not wait.
    sandbox.makeDir("/var/custom");
    ASSERT_EQ(mkfifo(sandbox.hostPath(kCustom).c_str(), 0600), 0);
    const int writer = open(sandbox.hostPath(kCustom).c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_EQ(CFG_aewGetRlrCfgInfo(kCustom, &info), -1);
    close(writer);
    EXPECT_TRUE(log.has(LogKind::Error, "CFG_aewGetRlrCfgInfo", "seek /var/custom/rlr_para.bin file to end failed\n"));
}

}  // namespace

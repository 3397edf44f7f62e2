// The ISP parameter file reader through the public ABI: files in a sandbox, log lines, buffer
// ownership and fault injection through the host layer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp/param_file.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/param_file_builder.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LimitFileReads;
using ispdsp_test::LogCapture;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;
using ispdsp_test::Sandbox;

constexpr const char* kPath = "/var/tmp/dsp_isp_para.bin";
constexpr const char* kSecondPath = "/var/tmp/1/dsp_isp_para.bin";
constexpr Float32 kVer = ISPDSP_PARAM_FILE_VERSION;

// True when one line is exactly "[DSP_DRV] <KIND>  (<func>|<line>): <message>" at the kind's level.
bool hasTagged(const LogCapture& log, int level, int category, const std::string& kind, const std::string& func,
               const std::string& message) {
    const std::string head = "[DSP_DRV] " + kind + "  (" + func + "|";
    const std::string tail = "): " + message;
    for (const auto& line : log.lines()) {
        const std::string& t = line.text;
        if (line.level == level && line.category == category && t.rfind(head, 0) == 0 && t.size() > head.size() + tail.size() &&
            t.compare(t.size() - tail.size(), tail.size(), tail) == 0) {
            const std::string number = t.substr(head.size(), t.size() - tail.size() - head.size());
            if (!number.empty() && number.find_first_not_of("0123456789") == std::string::npos) {
                return true;
            }
        }
    }
    return false;
}
bool hasWarn(const LogCapture& log, const std::string& message) {
    return hasTagged(log, 1, 8, "WARN", "DRV_ispCfgReadCheckParam", message);
}
bool hasError(const LogCapture& log, const std::string& func, const std::string& message) {
    return hasTagged(log, 0, 1, "ERROR", func, message);
}
bool hasInfo(const LogCapture& log, const std::string& text) {
    for (const auto& line : log.lines()) {
        if (line.level == 2 && line.category == 2 && line.text == text) return true;
    }
    return false;
}
size_t warningsAndErrors(const LogCapture& log) {
    size_t n = 0;
    for (const auto& line : log.lines()) n += line.level != 2 ? 1 : 0;
    return n;
}

std::vector<uint8_t> bytesOf(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return {b, b + n};
}

// One loader call site with its header and buffer, freeing what is left at the end.
struct Loader {
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    ~Loader() {
        if (buffer != nullptr) OSA_memUFree(buffer);
    }
    Int32 load(const char* path = kPath, Float32 ver = kVer) { return DRV_ispCfgLoad(path, ver, &header, &buffer); }
    Int32 read(const char* path = kPath, Float32 ver = kVer) {
        return DRV_ispCfgReadCheckParam(path, ver, &header, &buffer);
    }
};

class ParamFileTest : public ::testing::Test {
protected:
    Sandbox sandbox;
    LogCapture log;
    void write(const ParamFileBuilder& b, const char* path = kPath) { sandbox.writeFile(path, b.build()); }
};

TEST_F(ParamFileTest, LoadsHeaderAndBlockAndLogsEveryField) {
    ParamFileBuilder b;
    b.dateTime("2024-05-17 09:30:00").subVersion(2.25f).archName("ISPDSP-SOC").productName("CAM-X");
    b.addTable(PARAM_MULTICOLOR).addTable(PARAM_TRAFFIC);
    write(b);
    MemGuard mem(false);
    Loader l;
    ASSERT_EQ(l.load(), 0);

    const CFG_IspParamTable want = b.expectedHeader();
    EXPECT_EQ(bytesOf(&l.header, sizeof l.header), bytesOf(&want, sizeof want));
    ASSERT_NE(l.buffer, nullptr);
    EXPECT_EQ(bytesOf(l.buffer, l.header.cfg_specParam.size), b.blockBytes());
    EXPECT_EQ(mem.liveBlocks(), 1);
    EXPECT_EQ(mem.liveBytes(), static_cast<int64_t>(2 * CFG_TABLE_ENTRY_SIZE));

    const std::vector<std::string> expected = {
        "[DSP_DRV] the isp cfg ver: 82981.000\n",
        "[DSP_DRV] the isp cfg date time is: 2024-05-17 09:30:00\n",
        "[DSP_DRV] the isp cfg subVer is: 2.250\n",
        "[DSP_DRV] the isp cfg chipName is: ISPDSP-SOC\n",
        "[DSP_DRV] the isp cfg pdtName is: CAM-X\n",
        "[DSP_DRV] OK, use isp cfg:/var/tmp/dsp_isp_para.bin\n",
    };
    EXPECT_EQ(log.texts(), expected);
    for (const auto& line : log.lines()) {
        EXPECT_EQ(line.level, 2);
        EXPECT_EQ(line.category, 2);
    }
}

TEST_F(ParamFileTest, TextFieldsAreLoggedUpToTheirFirstNulOrTheirEnd) {
    const std::string full(32, 'D');  // no NUL at all: the next field must not leak into the line
    ParamFileBuilder b;
    b.dateTime(full).subVersion(std::nextafter(1.0f, 2.0f)).archName(std::string("chip\0tail", 9)).productName("");
    b.rawBlock({1, 2, 3, 4});
    write(b);
    Loader l;
    ASSERT_EQ(l.read(), 0);
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] the isp cfg date time is: " + full + "\n"));
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] the isp cfg chipName is: chip\n"));
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] the isp cfg pdtName is: \n"));
    EXPECT_EQ(std::memcmp(l.header.dateTime, full.data(), 32), 0);
}

TEST_F(ParamFileTest, NullArgumentsAreRejectedByBothEntries) {
    CFG_IspParamTable h{};
    Ptr buf = nullptr;
    EXPECT_EQ(DRV_ispCfgLoad(nullptr, kVer, &h, &buf), -1);
    EXPECT_EQ(DRV_ispCfgLoad(kPath, kVer, nullptr, &buf), -1);
    EXPECT_EQ(DRV_ispCfgLoad(kPath, kVer, &h, nullptr), -1);
    EXPECT_EQ(log.count("(DRV_ispCfgLoad|"), 3u);
    EXPECT_TRUE(hasError(log, "DRV_ispCfgLoad", "Invalid arg\n"));
    log.clear();
    EXPECT_EQ(DRV_ispCfgReadCheckParam(nullptr, kVer, &h, &buf), -1);
    EXPECT_EQ(DRV_ispCfgReadCheckParam(kPath, kVer, nullptr, &buf), -1);
    EXPECT_EQ(DRV_ispCfgReadCheckParam(kPath, kVer, &h, nullptr), -1);
    EXPECT_EQ(log.count("Invalid arg"), 3u);
    EXPECT_TRUE(hasError(log, "DRV_ispCfgReadCheckParam", "Invalid arg\n"));
}

TEST_F(ParamFileTest, MissingFileFailsAtOpenAndTheEntryReportsThePath) {
    Loader l;
    EXPECT_EQ(l.load("/var/tmp/none.bin"), -1);
    EXPECT_TRUE(hasError(log, "DRV_ispCfgReadCheckParam", "Open /var/tmp/none.bin file failed\n"));
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] DRV_ispCfgReadCheckParam /var/tmp/none.bin failed!\n"));
    EXPECT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(l.buffer, nullptr);
}

TEST_F(ParamFileTest, DirectoryFailsBeforeAnyFieldIsRead) {
    // Where a directory fails (seek, tell or length) depends on the file system; it never reads.
    sandbox.makeDir("/var/tmp/dir.bin");
    Loader l;
    EXPECT_EQ(l.read("/var/tmp/dir.bin"), -1);
    EXPECT_EQ(l.buffer, nullptr);
    EXPECT_EQ(l.header.ver, 0.0f);
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(ParamFileTest, FilesUpTo112BytesAreRejectedAnd113WithOneBlockByteAccepted) {
    ParamFileBuilder empty;  // header + size word + checksum only
    ASSERT_EQ(empty.build().size(), 112u);
    write(empty);
    Loader a;
    EXPECT_EQ(a.read(), -1);
    EXPECT_EQ(a.buffer, nullptr);
    EXPECT_EQ(a.header.ver, 0.0f);  // nothing was read
    // Our own warning: the format defines none for this case.
    EXPECT_TRUE(hasWarn(log, "isp cfg:/var/tmp/dsp_isp_para.bin too short: 112 bytes, need more than 112\n"));
    sandbox.writeFile(kPath, std::vector<uint8_t>{});
    EXPECT_EQ(a.read(), -1);
    EXPECT_TRUE(log.contains("too short: 0 bytes"));

    log.clear();
    ParamFileBuilder one;
    one.rawBlock({0xAB});
    ASSERT_EQ(one.build().size(), 113u);
    write(one);
    Loader b;
    ASSERT_EQ(b.read(), 0);
    EXPECT_EQ(b.header.cfg_specParam.size, 1u);
    EXPECT_EQ(*static_cast<uint8_t*>(b.buffer), 0xAB);
    EXPECT_EQ(warningsAndErrors(log), 0u);
}

TEST_F(ParamFileTest, EmptyBlockWithTrailingBytesLoadsIntoAZeroSizeBuffer) {
    // S = 0 is only reachable with bytes after the checksum (the file must exceed 112 bytes).
    ParamFileBuilder b;
    b.trailingBytes({9, 9, 9, 9});
    write(b);
    MemGuard mem(false);
    Loader l;
    ASSERT_EQ(l.read(), 0);
    EXPECT_EQ(l.header.cfg_specParam.size, 0u);
    EXPECT_NE(l.buffer, nullptr);  // the host hands out a valid block for 0 bytes
    EXPECT_EQ(mem.liveBytes(), 0);
}

TEST_F(ParamFileTest, VersionMustMatchWithinTheTolerance) {
    ParamFileBuilder b;
    b.version(82981.0078125f).addTable(PARAM_MULTICOLOR);  // the next single above 82981.0
    write(b);
    Loader l;
    EXPECT_EQ(l.load(), -1);
    EXPECT_TRUE(hasWarn(log, "isp cfg:/var/tmp/dsp_isp_para.bin ver not consistent, fromcfg:V82981.008, "
                             "mustbe:V82981.000\n"));
    EXPECT_EQ(l.header.ver, 82981.0078125f);  // the header keeps what was read
    EXPECT_EQ(l.buffer, nullptr);
    EXPECT_FALSE(log.contains("the isp cfg ver:"));

    log.clear();
    b.version(std::numeric_limits<float>::quiet_NaN());
    write(b);
    EXPECT_EQ(l.load(), -1);
    EXPECT_TRUE(log.contains("ver not consistent"));

    log.clear();
    b.version(82981.0f);
    write(b);
    EXPECT_EQ(l.load(), 0);
}

TEST_F(ParamFileTest, BlockLongerThanTheFileFailsSilentlyAndTouchesNothing) {
    Loader l;
    ParamFileBuilder first;
    first.addTable(PARAM_MULTICOLOR);
    write(first);
    ASSERT_EQ(l.read(), 0);
    const Ptr kept = l.buffer;
    const std::vector<uint8_t> keptBytes = bytesOf(kept, CFG_TABLE_ENTRY_SIZE);

    for (uint32_t size : {CFG_TABLE_ENTRY_SIZE + 1u, 0x7FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFF94u}) {
        SCOPED_TRACE(size);
        log.clear();
        MemGuard mem;
        ParamFileBuilder b;
        b.addTable(PARAM_TRAFFIC).sizeWordOverride(size);
        write(b);
        EXPECT_EQ(l.read(), -1);
        EXPECT_EQ(warningsAndErrors(log), 0u);
        EXPECT_FALSE(log.contains("OK, use"));
        EXPECT_EQ(l.buffer, kept);
        EXPECT_EQ(bytesOf(kept, CFG_TABLE_ENTRY_SIZE), keptBytes);
        EXPECT_EQ(mem.allocCalls(), 0u);
        // The rejected size never reaches the header, which keeps describing the kept buffer.
        EXPECT_EQ(l.header.cfg_specParam.size, CFG_TABLE_ENTRY_SIZE);
    }
}

TEST_F(ParamFileTest, ChecksumMismatchIsReported) {
    ParamFileBuilder b;
    b.addTable(PARAM_MULTICOLOR).corruptChecksum(0x80000000u);
    write(b);
    Loader l;
    EXPECT_EQ(l.load(), -1);
    EXPECT_TRUE(hasWarn(log, "isp cfg:/var/tmp/dsp_isp_para.bin check sum error\n"));
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] DRV_ispCfgReadCheckParam /var/tmp/dsp_isp_para.bin failed!\n"));
    EXPECT_NE(l.buffer, nullptr);  // stays with the caller for the next attempt
    EXPECT_EQ(l.header.chksum, b.expectedHeader().chksum);
}

// Which bytes the checksum covers is checked byte by byte in the white-box checksum tests.
TEST_F(ParamFileTest, WorkedChecksumExampleLoads) {
    // All header bytes 0 except ver; S = 8; block words 1 and 2; checksum 0x47A21283.
    std::vector<uint8_t> file(104, 0);
    const uint8_t ver[4] = {0x80, 0x12, 0xA2, 0x47};
    std::memcpy(file.data(), ver, 4);
    const uint8_t rest[] = {8, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 0x83, 0x12, 0xA2, 0x47};
    file.insert(file.end(), std::begin(rest), std::end(rest));
    sandbox.writeFile(kPath, file);
    Loader l;
    ASSERT_EQ(l.read(), 0);
    EXPECT_EQ(static_cast<uint32_t>(l.header.chksum), 0x47A21283u);
    EXPECT_TRUE(hasInfo(log, "[DSP_DRV] the isp cfg date time is: \n"));
}

TEST_F(ParamFileTest, SmallerBlockReusesTheBufferAndLargerOneReplacesIt) {
    Loader l;
    ParamFileBuilder two;
    two.addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE);
    write(two);
    ASSERT_EQ(l.read(), 0);
    const Ptr first = l.buffer;

    {
        MemGuard mem;
        ParamFileBuilder one;
        one.addTable(PARAM_TRAFFIC);
        write(one);
        ASSERT_EQ(l.read(), 0);
        EXPECT_EQ(l.buffer, first);
        EXPECT_EQ(mem.allocCalls(), 0u);
        EXPECT_EQ(mem.freeCalls(), 0u);
        EXPECT_EQ(bytesOf(l.buffer, CFG_TABLE_ENTRY_SIZE), one.blockBytes());
        EXPECT_EQ(l.header.cfg_specParam.size, CFG_TABLE_ENTRY_SIZE);
    }
    {
        // lastSize is now one entry, so even two entries (which the buffer could hold) reallocate.
        MemGuard mem;
        ParamFileBuilder three;
        three.addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).addTable(PARAM_FACE);
        write(three);
        ASSERT_EQ(l.read(), 0);
        EXPECT_EQ(mem.allocCalls(), 1u);
        EXPECT_EQ(mem.freeCalls(), 1u);
        EXPECT_EQ(mem.liveBlocks(), 0);
        EXPECT_EQ(mem.liveBytes(), static_cast<int64_t>(CFG_TABLE_ENTRY_SIZE));  // 3 entries now, 2 before
        EXPECT_EQ(bytesOf(l.buffer, 3 * CFG_TABLE_ENTRY_SIZE), three.blockBytes());
    }
}

TEST_F(ParamFileTest, SecondPathReceivesTheFirstLoadsBufferAndSize) {
    ParamFileBuilder bad;
    bad.addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).corruptChecksum();
    write(bad, kPath);
    ParamFileBuilder good;
    good.addTable(PARAM_TRAFFIC);
    write(good, kSecondPath);

    MemGuard mem(false);
    Loader l;
    ASSERT_EQ(l.load(kPath), -1);
    EXPECT_EQ(l.header.cfg_specParam.size, 2 * CFG_TABLE_ENTRY_SIZE);
    const Ptr handedOver = l.buffer;
    ASSERT_NE(handedOver, nullptr);
    ASSERT_EQ(l.load(kSecondPath), 0);
    EXPECT_EQ(l.buffer, handedOver);
    EXPECT_EQ(mem.allocCalls(), 1u);
    EXPECT_EQ(bytesOf(l.buffer, CFG_TABLE_ENTRY_SIZE), good.blockBytes());
    EXPECT_EQ(l.header.cfg_specParam.size, CFG_TABLE_ENTRY_SIZE);

    // The other way round the second file needs more room: the first buffer is released.
    Loader r;
    write(good.corruptChecksum(), kPath);
    write(ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_FACE), kSecondPath);
    MemGuard mem2(false);
    ASSERT_EQ(r.load(kPath), -1);
    ASSERT_EQ(r.load(kSecondPath), 0);
    EXPECT_EQ(mem2.allocCalls(), 2u);
    EXPECT_EQ(mem2.freeCalls(), 1u);
    EXPECT_EQ(mem2.liveBlocks(), 1);
}

TEST_F(ParamFileTest, FailedAllocationIsReportedAndLeavesNoBuffer) {
    ParamFileBuilder b;
    b.addTable(PARAM_MULTICOLOR);
    write(b);
    Loader l;
    {
        ispdsp_test::FailAllocAfter fail(1);
        EXPECT_EQ(l.read(), -1);
    }
    EXPECT_TRUE(hasWarn(log, "Failed to malloc memory for pTable\n"));
    EXPECT_EQ(l.buffer, nullptr);

    // With a smaller buffer in hand: it is released first, then the allocation fails.
    ParamFileBuilder small;
    small.rawBlock({1, 2, 3, 4});
    write(small);
    Loader m;
    ASSERT_EQ(m.read(), 0);
    write(b);
    MemGuard mem(false);
    {
        ispdsp_test::FailAllocAfter fail(1);
        EXPECT_EQ(m.read(), -1);
    }
    EXPECT_EQ(m.buffer, nullptr);
    EXPECT_EQ(mem.liveBlocks(), -1);
}

// A read limit at `limit` bytes per open file makes the reader stop at the field that it cuts.
struct ShortReadCase {
    uint64_t limit;
    const char* warning;  // nullptr: the load succeeds
};

void PrintTo(const ShortReadCase& c, std::ostream* os) { *os << "limit " << c.limit; }

class ParamFileShortRead : public ParamFileTest, public ::testing::WithParamInterface<ShortReadCase> {};

constexpr uint32_t kS = 2 * CFG_TABLE_ENTRY_SIZE + 6;  // also leaves a partial last word

TEST_P(ParamFileShortRead, StopsWithTheFieldsWarning) {
    ParamFileBuilder b;
    std::vector<uint8_t> block = ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_FACE).blockBytes();
    block.insert(block.end(), {1, 2, 3, 4, 5, 6});
    b.rawBlock(block);
    write(b);

    Loader l;
    l.header.cfg_specParam.size = 0;
    Int32 rc;
    {
        LimitFileReads limit(GetParam().limit);
        rc = l.read();
    }
    if (GetParam().warning == nullptr) {
        EXPECT_EQ(rc, 0);
        EXPECT_EQ(warningsAndErrors(log), 0u);
        return;
    }
    EXPECT_EQ(rc, -1);
    EXPECT_TRUE(hasWarn(log, GetParam().warning)) << (log.texts().empty() ? "" : log.texts().back());
    EXPECT_EQ(warningsAndErrors(log), 1u);
    // The header size changes only once a whole size word that fits the file was read.
    EXPECT_EQ(l.header.cfg_specParam.size, GetParam().limit >= 108 ? kS : 0u);
    EXPECT_EQ(l.buffer != nullptr, GetParam().limit >= 108);
}

INSTANTIATE_TEST_SUITE_P(
    Offsets, ParamFileShortRead,
    ::testing::Values(ShortReadCase{0, "read ver from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{3, "read ver from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{4, "read data and time from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{35, "read data and time from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{36, "read subVer from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{40, "read chipName from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{71, "read chipName from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{72, "read product name from isp cfg:/var/tmp/dsp_isp_para.bin failed\n"},
                      ShortReadCase{104, "read specParam size failed\n"},
                      ShortReadCase{107, "read specParam size failed\n"},
                      ShortReadCase{108, "isp cfg:/var/tmp/dsp_isp_para.bin read failed\n"},
                      ShortReadCase{108 + kS - 1, "isp cfg:/var/tmp/dsp_isp_para.bin read failed\n"},
                      ShortReadCase{108 + kS, "isp cfg:/var/tmp/dsp_isp_para.bin read chksum failed\n"},
                      ShortReadCase{111 + kS, "isp cfg:/var/tmp/dsp_isp_para.bin read chksum failed\n"},
                      ShortReadCase{112 + kS, nullptr}));

TEST_F(ParamFileTest, RepeatedLoadsLeakNothing) {
    MemGuard mem;
    {
        Loader l;
        ParamFileBuilder b;
        b.addTable(PARAM_MULTICOLOR).addTable(PARAM_IVS);
        write(b);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(l.load(), 0);
        write(b.corruptChecksum());
        EXPECT_EQ(l.load(), -1);
        EXPECT_EQ(l.load("/var/tmp/missing"), -1);
    }
    EXPECT_TRUE(mem.noLeak());
}

}  // namespace

namespace {

// The builder's images are reproducible: padding never carries stray bytes into a file.
TEST(ParamFileBuilderImage, PaddingIsWrittenAsZero) {
    CFG_DspIspCfgParam dirty;
    std::memset(&dirty, 0xFF, sizeof dirty);
    CFG_DspIspCfgParam clean;
    std::memset(&clean, 0xFF, sizeof clean);
    clean.ispSbm3dParam.sbm3d_threshold = 0xFFFF;  // fields equal, padding to be zeroed
    const auto block = ParamFileBuilder().addTable(PARAM_MULTICOLOR, dirty).blockBytes();
    ASSERT_EQ(block.size(), CFG_TABLE_ENTRY_SIZE);
    const size_t zeros = static_cast<size_t>(std::count(block.begin() + 4, block.end(), uint8_t{0}));
    EXPECT_EQ(zeros, 12u);  // 2 + 2 + 3 top-level, 2 in DLAE, 2 in LAE, 1 in Y2D
    EXPECT_EQ(block[4 + 8738], 0);
    EXPECT_EQ(block[4 + 8819], 0);
    EXPECT_EQ(block[4 + 8799], 0);  // DLAE after fusion_weight
    EXPECT_EQ(ParamFileBuilder().addTable(1).build(), ParamFileBuilder().addTable(1).build());
}

}  // namespace

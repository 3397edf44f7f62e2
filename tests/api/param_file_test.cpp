// The ISP parameter file reader through the public ABI: exact round trips of
// header, block and log lines, the exact result of each failing step, every
// byte of generated files corrupted in turn against the checksum's coverage,
// and the ownership of the block buffer.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp/param_file.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/param_file_builder.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

constexpr const char* kPath = "/var/tmp/dsp_isp_para.bin";
constexpr const char* kSecondPath = "/var/tmp/1/dsp_isp_para.bin";
constexpr Float32 kVer = ISPDSP_PARAM_FILE_VERSION;

std::vector<uint8_t> bytesOf(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return {b, b + n};
}

class ParamFile : public ::testing::Test {
protected:
    ~ParamFile() override {
        if (buffer != nullptr) OSA_memUFree(buffer);
    }
    void write(const ParamFileBuilder& b, const char* path = kPath) { sandbox.writeFile(path, b.build()); }
    Int32 read(const char* path = kPath, Float32 ver = kVer) { return DRV_ispCfgReadCheckParam(path, ver, &header, &buffer); }
    Int32 load(const char* path = kPath) { return DRV_ispCfgLoad(path, kVer, &header, &buffer); }
    bool warned(const std::string& message) const { return log.has(LogKind::Warn, "DRV_ispCfgReadCheckParam", message); }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
};

TEST_F(ParamFile, HeaderBlockAndLogLinesRoundTrip) {
    // Text fields end at their first NUL or their end (32 characters, no NUL); a block of 5 bytes.
    const struct {
        ParamFileBuilder file;
        std::vector<std::string> lines;  // between the version line and the last
    } cases[] = {
        {ParamFileBuilder().dateTime("2024-05-17 09:30:00").subVersion(2.25f).archName("ISPDSP-SOC").productName("CAM-X")
             .addTable(PARAM_MULTICOLOR).addTable(PARAM_TRAFFIC),
         {"date time is: 2024-05-17 09:30:00", "subVer is: 2.250", "chipName is: ISPDSP-SOC", "pdtName is: CAM-X"}},
        {ParamFileBuilder().dateTime(std::string(32, 'D')).subVersion(std::nextafter(1.0f, 2.0f))
             .archName(std::string("chip\0tail", 9)).productName("").rawBlock({1, 2, 3, 4, 5}),
         {"date time is: " + std::string(32, 'D'), "subVer is: 1.000", "chipName is: chip", "pdtName is: "}}};
    for (const auto& c : cases) {
        write(c.file);
        header = {};
        log.clear();
        MemGuard mem(false);
        ASSERT_EQ(read(), 0);
        const CFG_IspParamTable want = c.file.expectedHeader();
        EXPECT_EQ(bytesOf(&header, sizeof header), bytesOf(&want, sizeof want));
        EXPECT_EQ(bytesOf(buffer, header.cfg_specParam.size), c.file.blockBytes());
        EXPECT_EQ(mem.liveBytes(), static_cast<int64_t>(c.file.blockBytes().size()));
        std::vector<std::string> expected = {"[DSP_DRV] the isp cfg ver: 82981.000\n"};
        for (const auto& text : c.lines) expected.push_back("[DSP_DRV] the isp cfg " + text + "\n");
        expected.push_back("[DSP_DRV] OK, use isp cfg:/var/tmp/dsp_isp_para.bin\n");
        EXPECT_EQ(log.texts(), expected);
        EXPECT_EQ(log.count(LogKind::Info), expected.size());
        OSA_memUFree(buffer);
        buffer = nullptr;
    }
}

TEST_F(ParamFile, NullArgumentsAndOpenSeekAndTellFailuresReturnMinusOne) {
    for (auto* reader : {&DRV_ispCfgLoad, &DRV_ispCfgReadCheckParam}) {
        EXPECT_EQ(reader(nullptr, kVer, &header, &buffer), -1);
        EXPECT_EQ(reader(kPath, kVer, nullptr, &buffer), -1);
        EXPECT_EQ(reader(kPath, kVer, &header, nullptr), -1);
    }
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispCfgLoad", "Invalid arg\n"), 3u);
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispCfgReadCheckParam", "Invalid arg\n"), 3u);

    log.clear();
    EXPECT_EQ(read("/var/tmp/none.bin"), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispCfgReadCheckParam", "Open /var/tmp/none.bin file failed\n"));
    EXPECT_EQ(load("/var/tmp/none.bin"), -1);
    EXPECT_TRUE(log.has(LogKind::Info, "", "DRV_ispCfgReadCheckParam /var/tmp/none.bin failed!\n"));

    // A pipe cannot seek. The writer end is held open so that opening for reading does not wait.
    log.clear();
    sandbox.makeDir("/var/tmp");
    ASSERT_EQ(mkfifo(sandbox.hostPath(kPath).c_str(), 0600), 0);
    const int writer = open(sandbox.hostPath(kPath).c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_EQ(read(), -1);
    close(writer);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispCfgReadCheckParam", "seek /var/tmp/dsp_isp_para.bin file to end failed\n"));

    // A directory fails at the seek or the tell, depending on the file system.
    log.clear();
    sandbox.makeDir("/var/tmp/dir.bin");
    EXPECT_EQ(read("/var/tmp/dir.bin"), -1);
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispCfgReadCheckParam", "filetell /var/tmp/dir.bin file failed\n") +
                  log.count(LogKind::Error, "DRV_ispCfgReadCheckParam", "seek /var/tmp/dir.bin file to end failed\n"),
              1u);
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(buffer, nullptr);
    const CFG_IspParamTable untouched{};
    EXPECT_EQ(bytesOf(&header, sizeof header), bytesOf(&untouched, sizeof header));  // nothing was read
}

// One read cut per field (version, date, subVer, chip name, product name, size word, block,
// checksum): exactly -1 and one warning. Which warning, at every cut: the fault-injection suite
// (RobustFault.CreationEndsCleanlyWhereverTheTuningFileReadStops).
TEST_F(ParamFile, AShortReadFailsAtTheFieldItCuts) {
    write(ParamFileBuilder().rawBlock({1, 2, 3, 4, 5, 6}));
    for (uint64_t limit : {3u, 35u, 39u, 71u, 103u, 107u, 113u, 117u}) {
        log.clear();
        ispdsp_test::LimitFileReads cut(limit);
        EXPECT_EQ(read(), -1) << limit;
        EXPECT_EQ(log.count(LogKind::Warn), 1u) << limit;
    }
}

// Files refused before a buffer is taken: exactly -1, one warning at most (none for a block longer
// than the file), and the buffer of the last load and the size that describes it untouched.
TEST_F(ParamFile, RefusedFilesTouchNeitherTheBufferNorItsSize) {
    write(ParamFileBuilder().addTable(PARAM_MULTICOLOR));
    ASSERT_EQ(read(), 0);
    const Ptr kept = buffer;
    const std::vector<uint8_t> keptBytes = bytesOf(kept, CFG_TABLE_ENTRY_SIZE);
    const auto withSize = [](uint32_t size) { return ParamFileBuilder().addTable(PARAM_TRAFFIC).sizeWordOverride(size).build(); };
    const auto withVersion = [](float ver) { return ParamFileBuilder().version(ver).addTable(PARAM_TRAFFIC).build(); };
    const struct {
        std::vector<uint8_t> file;
        const char* warning;
    } cases[] = {{{}, "too short: 0 bytes, need more than 112\n"},
                 {withVersion(-82981.0f), "ver not consistent, fromcfg:V-82981.000"},
                 {withVersion(std::numeric_limits<float>::quiet_NaN()), "ver not consistent"},
                 {withSize(0x7FFFFFFFu), nullptr},
                 {withSize(0x80000000u), nullptr},
                 {withSize(0xFFFFFF94u), nullptr},
                 {withSize(0xFFFFFFFFu), nullptr}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        sandbox.writeFile(kPath, c.file);
        log.clear();
        MemGuard mem;
        EXPECT_EQ(read(), -1);
        EXPECT_EQ(log.count(LogKind::Warn) + log.count(LogKind::Error), c.warning ? 1u : 0u);
        EXPECT_EQ(c.warning ? log.count(c.warning) : 1u, 1u);
        EXPECT_EQ(std::memcmp(&header.ver, c.file.size() > 112 ? c.file.data() : reinterpret_cast<const uint8_t*>(&kVer), 4), 0);
        EXPECT_EQ(buffer, kept);
        EXPECT_EQ(bytesOf(kept, CFG_TABLE_ENTRY_SIZE), keptBytes);
        EXPECT_EQ(mem.allocCalls(), 0u);
        EXPECT_EQ(header.cfg_specParam.size, CFG_TABLE_ENTRY_SIZE);
    }
    // An empty block is only possible with bytes behind the checksum; the host hands out a block for 0 bytes.
    OSA_memUFree(buffer);
    buffer = nullptr;
    write(ParamFileBuilder().trailingBytes({9, 9, 9, 9}));
    MemGuard mem(false);
    ASSERT_EQ(read(), 0);
    EXPECT_EQ(header.cfg_specParam.size, 0u);
    EXPECT_NE(buffer, nullptr);
    EXPECT_EQ(mem.liveBytes(), 0);
}

// Every byte of files with blocks of 1 to 8 bytes corrupted in turn: the load fails exactly when
// the byte is one of the checked words (version, header texts, whole block words, checksum).
TEST_F(ParamFile, EveryCheckedByteIsCoveredAndNoOtherIs) {
    for (uint32_t size = 1; size <= 8; ++size) {
        std::vector<uint8_t> block(size);
        for (uint32_t i = 0; i < size; ++i) block[i] = static_cast<uint8_t>(i * 29 + 7);
        const std::vector<uint8_t> file = ParamFileBuilder().rawBlock(block).trailingBytes({1, 2, 3}).build();
        for (size_t at = 0; at < file.size(); ++at) {
            if (at >= 104 && at < 108) continue;  // the size word moves the block: see the next test
            SCOPED_TRACE(testing::Message() << "block " << size << " byte " << at);
            const bool checked = at < 104 || (at >= 108 && at < 108 + size / 4 * 4) || (at >= 108 + size && at < 112 + size);
            std::vector<uint8_t> bad = file;
            bad[at] ^= static_cast<uint8_t>(1u << (at % 8));
            sandbox.writeFile(kPath, bad);
            log.clear();
            ASSERT_EQ(read(), checked ? -1 : 0);
            ASSERT_EQ(warned("isp cfg:/var/tmp/dsp_isp_para.bin check sum error\n"), checked && at >= 4);
        }
    }
    // All header bytes 0 but the version (0x47A21280), S = 8, block words 1 and 2: checksum 0x47A21283.
    std::vector<uint8_t> file(120, 0);
    const uint8_t tail[] = {8, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 0x83, 0x12, 0xA2, 0x47};
    std::memcpy(file.data() + 104, tail, sizeof tail);
    std::memcpy(file.data(), &kVer, 4);
    sandbox.writeFile(kPath, file);
    ASSERT_EQ(read(), 0);
    EXPECT_EQ(static_cast<uint32_t>(header.chksum), 0x47A21283u);
}

TEST_F(ParamFile, SmallerBlocksReuseTheBufferLargerOnesReplaceIt) {
    write(ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).corruptChecksum());
    ASSERT_EQ(load(), -1);  // the first path fails at the checksum; its buffer and size go on
    EXPECT_EQ(header.cfg_specParam.size, 2 * CFG_TABLE_ENTRY_SIZE);
    ASSERT_NE(buffer, nullptr);
    const struct {
        std::vector<Int32> types;
        uint64_t allocations;
    } steps[] = {{{PARAM_TRAFFIC}, 0},      {{PARAM_TRAFFIC, PARAM_FACE}, 1}, {{PARAM_FACE, PARAM_TRAFFIC}, 0},
                 {{PARAM_FACE}, 0},        {{0, 1, 2}, 1}};  // the same size keeps its buffer too
    for (const auto& step : steps) {
        ParamFileBuilder b;
        for (Int32 t : step.types) b.addTable(t);
        write(b, kSecondPath);
        MemGuard mem;
        ASSERT_EQ(load(kSecondPath), 0);
        EXPECT_EQ(mem.allocCalls(), step.allocations);
        EXPECT_EQ(mem.freeCalls(), step.allocations);  // the smaller buffer goes first
        EXPECT_EQ(bytesOf(buffer, header.cfg_specParam.size), b.blockBytes());
    }
    // A larger block that cannot be had fails the read itself with -1.
    write(ParamFileBuilder().addTable(0).addTable(1).addTable(2).addTable(3), kSecondPath);
    ispdsp_host_fail_alloc_after(1);
    EXPECT_EQ(read(kSecondPath), -1);
    ispdsp_host_fail_alloc_after(0);
    EXPECT_TRUE(log.has(LogKind::Warn, "DRV_ispCfgReadCheckParam", "Failed to malloc memory for pTable\n"));
}

}  // namespace

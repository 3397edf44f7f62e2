// Fault injection through the reference host: every allocation of a creation
// and of each file loader fails in turn, and the reads of the tuning files come
// up short at every offset. Each case must end with its own error line, leave
// the host's table consistent (no instance, or a usable one whose slots all
// answer) and leak nothing. Every test prints how many fault points it covered.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "api/driver_host.h"
#include "ispdsp/ispdsp.h"
#include "support/mem_guard.h"

namespace {

using driver_test::countErrors;
using driver_test::countWarnings;
using driver_test::HostPipe;
using ispdsp_test::FailAllocAfter;
using ispdsp_test::LimitFileReads;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

constexpr const char* kPipeFile1 = "/var/tmp/1/dsp_isp_para.bin";
constexpr const char* kRlrCustom = "/var/custom/rlr_para.bin";
constexpr const char* kRlrFlash = "/mnt/mtd/3A/rlr_para.bin";

// The line a failing step logs: kind ("ERROR" or "WARN"), function, message.
struct ExpectedLine {
    const char* kind;
    const char* function;
    const char* message;
};

size_t countLine(const ispdsp_test::LogCapture& log, const ExpectedLine& line) {
    return std::string(line.kind) == "ERROR" ? countErrors(log, line.function, line.message)
                                             : countWarnings(log, line.function, line.message);
}

void reportPoints(const char* what, size_t points) {
    std::printf("[ robust   ] %zu fault-injection points covered: %s\n", points, what);
    testing::Test::RecordProperty("fault_points", static_cast<int>(points));
}

class RobustFault : public testing::Test {
protected:
    // The parameter file of the pipes: a colour and a black-and-white table.
    static std::vector<uint8_t> paramFile() {
        return ParamFileBuilder()
            .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(0))
            .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(1))
            .build();
    }

    // The table after a creation: either no instance (and every slot that
    // creation filled refuses the call), or a usable instance that runs a
    // frame, takes a console command and is deleted again.
    void expectConsistentTable(HostPipe& pipe, Int32 created, const std::string& where) {
        SCOPED_TRACE(where);
        DRV_ispOpsParams* ops = pipe.ops();
        if (created != 0) {
            EXPECT_EQ(pipe.instance(), nullptr) << "a failed creation must leave no instance behind";
            EXPECT_EQ(ops->hIsp, nullptr);
            EXPECT_EQ(ops->ispParam, nullptr);
            if (ops->OpStart == nullptr) return;  // failed before the table was touched
            Int32 changed = 0;
            DRV_ispModuleResults results{};
            DRV_RefPipeParams ref{};
            ref.refXHndl = &ref;
            driver_test::ConsoleArgs command{"ep_delta", "5"};
            EXPECT_EQ(pipe.start(), -1);
            EXPECT_EQ(pipe.stop(), -1);
            EXPECT_EQ(pipe.reload(), 0);  // reloads nothing; the flag function reports the missing instance
            EXPECT_EQ(pipe.gainFlags(), -1);
            EXPECT_EQ(pipe.refresh(&changed), -1);
            EXPECT_EQ(pipe.fusion(), -1);
            EXPECT_EQ(pipe.moduleResults(&results), -1);
            EXPECT_EQ(pipe.refPipe(&ref), -1);
            EXPECT_EQ(pipe.console(&command.record, 0), -1);
            EXPECT_EQ(pipe.xHndl(), nullptr);
            EXPECT_EQ(pipe.remove(), -1);
            EXPECT_TRUE(pipe.flags.empty());
            return;
        }
        ASSERT_NE(pipe.instance(), nullptr);
        Int32 changed = 0;
        EXPECT_EQ(pipe.start(), 0);
        DRV_RefPipeParams ref{};
        ref.refXHndl = pipe.xHndl();  // its own reference pipe: enough to run a frame
        ref.fusionType = DRV_ISP_FUSION_MONO;
        EXPECT_EQ(pipe.refPipe(&ref), 0);
        EXPECT_EQ(pipe.refresh(&changed), 0);
        EXPECT_EQ(pipe.publishSwitch(1), 0);
        EXPECT_EQ(pipe.fusion(), 0);
        driver_test::ConsoleArgs command{"ep_delta", "5"};
        EXPECT_EQ(pipe.console(&command.record, 0), 0);
        EXPECT_EQ(pipe.stop(), 0);
        EXPECT_EQ(pipe.remove(), 0);
        EXPECT_EQ(pipe.instance(), nullptr);
    }

    // Allocations of one clean creation of pipe 1.
    uint64_t allocationsOfCreation() {
        MemGuard guard(false);
        HostPipe pipe(1);
        EXPECT_EQ(pipe.createPipe(), 0);
        const uint64_t calls = guard.allocCalls();
        EXPECT_EQ(pipe.remove(), 0);
        return calls;
    }

    // One creation per allocation, the k-th failing. `expected[k - 1]` is the
    // outcome of failure k: creation's result, the line that names the failed
    // step and the registerFlag of a creation that goes on.
    struct Outcome {
        Int32 result;
        ExpectedLine line;
        Int32 registerFlag;
    };
    size_t failEveryAllocation(const std::vector<Outcome>& expected) {
        // Warm-up: the registration record of the library holds its arrays
        // from here on; every later load replaces them one for one.
        EXPECT_EQ(allocationsOfCreation(), expected.size())
            << "creation's allocations changed: update the table of outcomes";
        MemGuard guard;
        for (size_t k = 1; k <= expected.size(); ++k) {
            const Outcome& want = expected[k - 1];
            SCOPED_TRACE("allocation " + std::to_string(k) + " fails");
            HostPipe pipe(1);
            log.clear();
            Int32 result;
            {
                FailAllocAfter fail(k);
                result = pipe.createPipe();
            }
            EXPECT_EQ(result, want.result);
            EXPECT_EQ(countLine(log, want.line), 1u) << want.line.message;
            if (result == 0 && pipe.instance() != nullptr) {
                EXPECT_EQ(pipe.instance()->registerFlag, want.registerFlag);
            }
            expectConsistentTable(pipe, result, "after allocation " + std::to_string(k) + " failed");
            EXPECT_TRUE(guard.noLeak());
        }
        return expected.size();
    }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
};

constexpr ExpectedLine kInstanceMalloc = {"ERROR", "DRV_dspIspCreateX", "Failed to malloc for DSP drv isp!\n"};
constexpr ExpectedLine kParamMalloc = {"WARN", "DRV_ispCfgReadCheckParam", "Failed to malloc memory for pTable\n"};
constexpr ExpectedLine kLineBufferMalloc = {"WARN", "DRV_ispGetRegistrateCfg", "buffer malloc failed\n"};
constexpr ExpectedLine kZoomMalloc = {"WARN", "DRV_ispGetRegCfg", "zoomx malloc failed!\n"};
constexpr ExpectedLine kPairsMalloc = {"WARN", "DRV_ispGetRegCfg", "registerParam malloc failed!\n"};
constexpr ExpectedLine kNirMalloc = {"ERROR", "DRV_dspIspCreateX", "Failed to malloc for w_nir!\r\n"};

// Registration files in /var/tmp/ and /var/: a failure while reading the first
// place falls through to the second, and the creation goes on.
TEST_F(RobustFault, CreationEndsCleanlyWhicheverAllocationFails) {
    sandbox.writeFile(driver_test::kCommonParamFile, paramFile());
    sandbox.writeFile(driver_test::registrationPath(1), driver_test::registrationText({100, 200, 300}));
    sandbox.writeFile(driver_test::registrationPath(2), driver_test::registrationText({150, 250}));
    const size_t points = failEveryAllocation({
        {-1, kInstanceMalloc, 0},
        {-1, kParamMalloc, 0},
        {0, kLineBufferMalloc, 2},
        {0, kZoomMalloc, 2},
        {0, kPairsMalloc, 2},
        {-1, kNirMalloc, 0},
        {-1, kNirMalloc, 0},
    });
    reportPoints("allocations of a creation", points);
}

// The common file fails at its checksum after its buffer was taken; the
// per-pipe file needs a larger block, so its load releases that buffer and
// takes a new one, which may fail in turn.
TEST_F(RobustFault, CreationFromThePipeFileEndsCleanlyWhicheverAllocationFails) {
    sandbox.writeFile(driver_test::kCommonParamFile,
                      ParamFileBuilder().addTable(PARAM_MULTICOLOR).corruptChecksum().build());
    sandbox.writeFile(kPipeFile1, paramFile());
    sandbox.writeFile(driver_test::registrationPath(3), driver_test::registrationText({100}));
    const ExpectedLine pipeFileFailed = {"ERROR", "DRV_dspIspCreateX",
                                         "DRV_ispCfgLoad /var/tmp/1/dsp_isp_para.bin failed!\n"};
    const size_t points = failEveryAllocation({
        {-1, kInstanceMalloc, 0},
        {0, kParamMalloc, 3},     // the common file's buffer; the pipe file's load takes its own
        {-1, pipeFileFailed, 0},  // the pipe file's larger buffer, after the common one was released
        {0, kLineBufferMalloc, 0},
        {0, kZoomMalloc, 0},
        {0, kPairsMalloc, 0},
        {-1, kNirMalloc, 0},
        {-1, kNirMalloc, 0},
    });
    reportPoints("allocations of a creation from the per-pipe file", points);
}

TEST_F(RobustFault, ParamFileLoaderEndsCleanlyWhenItsAllocationFails) {
    sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder().addTable(PARAM_MULTICOLOR).build());
    sandbox.writeFile(kPipeFile1, paramFile());
    size_t points = 0;
    MemGuard guard;
    {
        // A fresh header and no buffer: the block's buffer cannot be taken.
        CFG_IspParamTable header{};
        Ptr buffer = nullptr;
        FailAllocAfter fail(1);
        EXPECT_EQ(DRV_ispCfgLoad(driver_test::kCommonParamFile, ISPDSP_PARAM_FILE_VERSION, &header, &buffer), -1);
        EXPECT_EQ(buffer, nullptr);
        ++points;
    }
    {
        // A second load that needs more room releases the first buffer before
        // asking for the new one: when that fails, no buffer is left.
        CFG_IspParamTable header{};
        Ptr buffer = nullptr;
        ASSERT_EQ(DRV_ispCfgLoad(driver_test::kCommonParamFile, ISPDSP_PARAM_FILE_VERSION, &header, &buffer), 0);
        log.clear();
        {
            FailAllocAfter fail(1);
            EXPECT_EQ(DRV_ispCfgLoad(kPipeFile1, ISPDSP_PARAM_FILE_VERSION, &header, &buffer), -1);
        }
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(countLine(log, kParamMalloc), 1u);
        OSA_memUFree(buffer);
        ++points;
    }
    reportPoints("allocations of the parameter file loader", points);
}

TEST_F(RobustFault, NirCurveLoaderEndsCleanlyWhenItsAllocationFails) {
    std::string curve;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        curve += std::to_string(i % 256);
        curve += i == FUSION_NIR_POINTS - 1 ? "\n" : (i % 13 == 12 ? ",\n" : ",");
    }
    sandbox.writeFile("/tmp/nir.txt", curve);
    std::vector<CFG_DSP_FusionV2722> records(FUSION_GAIN_STEPS);
    for (size_t i = 0; i < records.size(); ++i) records[i] = driver_test::fusionTable(3).ispFusionParam[i];
    const std::vector<CFG_DSP_FusionV2722> before = records;
    DRV_gainInterParam gain{};
    gain.gainStartIndex = 4;
    gain.gainEndIndex = 5;
    ASSERT_EQ(DRV_dspdbgFusionNir(records.data(), &gain, 0, 0), 0) << "the curve file itself must load";
    records = before;

    size_t points = 0;
    MemGuard guard;
    for (Int32 pcmdId : {0, 1}) {
        log.clear();
        {
            FailAllocAfter fail(1);
            EXPECT_EQ(DRV_dspdbgFusionNir(records.data(), &gain, pcmdId, 0), -1);
        }
        EXPECT_EQ(countWarnings(log, "DRV_dspdbgFusionNir", "buffer malloc failed\n"), 1u);
        EXPECT_EQ(std::memcmp(records.data(), before.data(), records.size() * sizeof(records[0])), 0);
        ++points;
    }
    reportPoints("allocations of the NIR curve loader", points);
}

TEST_F(RobustFault, RlrLoaderEndsCleanlyWhicheverAllocationFails) {
    std::vector<uint8_t> custom(1024);
    for (size_t i = 0; i < custom.size(); ++i) custom[i] = static_cast<uint8_t>(i * 5);
    sandbox.writeFile(kRlrCustom, custom);
    sandbox.makeDir("/mnt/mtd/3A");
    const ExpectedLine infoMalloc = {"WARN", "DRV_loadRlrCfg", "Failed to malloc memory for cfg_rlrtableinfo\n"};
    const ExpectedLine tableMalloc = {"WARN", "DRV_loadRlrCfg", "Failed to malloc memory for cfg_rlrtableparam\n"};

    size_t points = 0;
    MemGuard guard;
    // The host passes no buffer: the identity record, then the tables.
    for (const ExpectedLine& line : {infoMalloc, tableMalloc}) {
        SCOPED_TRACE(line.message);
        log.clear();
        Ptr tables = nullptr;
        {
            FailAllocAfter fail(points + 1);
            EXPECT_EQ(DRV_loadRlrCfg(&tables), -1);
        }
        EXPECT_EQ(tables, nullptr);
        EXPECT_EQ(countLine(log, line), 1u);
        ++points;
    }
    // The host passes its own buffer: only the identity record is taken.
    CFG_RlrTableParam hostTables{};
    Ptr tables = &hostTables;
    log.clear();
    {
        FailAllocAfter fail(1);
        EXPECT_EQ(DRV_loadRlrCfg(&tables), -1);
    }
    EXPECT_EQ(tables, static_cast<Ptr>(&hostTables));
    EXPECT_EQ(countLine(log, infoMalloc), 1u);
    ++points;
    reportPoints("allocations of the RLR loader", points);
}

// Which field of the parameter file a read cut at `offset` breaks, and its line.
const char* shortReadMessage(size_t offset, size_t blockSize) {
    if (offset < 4) return "read ver from isp cfg:/var/tmp/dsp_isp_para.bin failed\n";
    if (offset < 36) return "read data and time from isp cfg:/var/tmp/dsp_isp_para.bin failed\n";
    if (offset < 40) return "read subVer from isp cfg:/var/tmp/dsp_isp_para.bin failed\n";
    if (offset < 72) return "read chipName from isp cfg:/var/tmp/dsp_isp_para.bin failed\n";
    if (offset < 104) return "read product name from isp cfg:/var/tmp/dsp_isp_para.bin failed\n";
    if (offset < 108) return "read specParam size failed\n";
    if (offset < 108 + blockSize) return "isp cfg:/var/tmp/dsp_isp_para.bin read failed\n";
    return "isp cfg:/var/tmp/dsp_isp_para.bin read chksum failed\n";
}

TEST_F(RobustFault, CreationEndsCleanlyWhereverTheTuningFileReadStops) {
    const std::vector<uint8_t> file = ParamFileBuilder().addTable(PARAM_MULTICOLOR, driver_test::fusionTable(0)).build();
    const size_t blockSize = file.size() - ISPDSP_PARAM_FILE_OVERHEAD;
    sandbox.writeFile(driver_test::kCommonParamFile, file);
    size_t points = 0;
    MemGuard guard;
    for (size_t limit = 0; limit <= file.size(); ++limit) {
        HostPipe pipe(1);
        log.clear();
        Int32 result;
        {
            LimitFileReads cut(limit);
            result = pipe.createPipe();
        }
        if (limit == file.size()) {
            // The whole file arrives: the control case.
            EXPECT_EQ(result, 0);
            expectConsistentTable(pipe, result, "whole file");
            break;
        }
        ++points;
        ASSERT_EQ(result, -1) << "read cut at byte " << limit;
        ASSERT_EQ(countWarnings(log, "DRV_ispCfgReadCheckParam", shortReadMessage(limit, blockSize)), 1u)
            << "read cut at byte " << limit;
        ASSERT_EQ(pipe.instance(), nullptr) << "read cut at byte " << limit;
        ASSERT_TRUE(guard.noLeak()) << "read cut at byte " << limit;
        // The table's slots answer without an instance (checked in full every 512 cuts: it is slow).
        if (limit % 512 == 0) expectConsistentTable(pipe, result, "read cut at byte " + std::to_string(limit));
    }
    reportPoints("read cuts of the parameter file", points);
}

TEST_F(RobustFault, RlrLoaderEndsCleanlyWhereverTheCustomFileReadStops) {
    std::vector<uint8_t> custom(1024);
    for (size_t i = 0; i < custom.size(); ++i) custom[i] = static_cast<uint8_t>(i * 3 + 1);
    sandbox.writeFile(kRlrCustom, custom);
    sandbox.makeDir("/mnt/mtd/3A");
    constexpr size_t kIdentityBytes = 9;
    constexpr size_t kTableBytes = sizeof(CFG_RlrTableParam);
    size_t points = 0;
    MemGuard guard;
    for (size_t limit = 0; limit <= kTableBytes; ++limit) {
        SCOPED_TRACE("reads cut at byte " + std::to_string(limit));
        sandbox.remove(kRlrFlash);
        log.clear();
        CFG_RlrTableParam tables{};
        Ptr buffer = &tables;
        Int32 result;
        {
            LimitFileReads cut(limit);
            result = DRV_loadRlrCfg(&buffer);
        }
        ++points;
        if (limit < kIdentityBytes) {
            // The custom file's identity cannot be read: nothing is loaded.
            ASSERT_EQ(result, -1);
            ASSERT_EQ(countErrors(log, "DRV_loadRlrCfg", "Get RlrCfgInfo is failed!\n"), 1u);
            ASSERT_FALSE(sandbox.exists(kRlrFlash));
            continue;
        }
        // The tables come up short (or whole at 768): the flash copy is still
        // written from the buffer and the load succeeds.
        ASSERT_EQ(result, 0);
        ASSERT_EQ(log.count("WARN  : read /var/custom/rlr_para.bin RLR table info failed\n"),
                  limit < kTableBytes ? 1u : 0u);
        ASSERT_EQ(std::memcmp(&tables, custom.data(), limit), 0);
        ASSERT_EQ(sandbox.readFile(kRlrFlash).size(), kTableBytes);
        ASSERT_TRUE(guard.noLeak());
    }
    reportPoints("read cuts of the RLR custom file", points);
}

}  // namespace

// Fault injection through the reference host, the one suite that does it:
// every allocation of a creation and of each file loader fails in turn, and
// the reads of every file the library loads come up short at every offset.
// Each case must end with its own log line, leave the host's table consistent
// (no instance, or a usable one whose slots all answer), leak nothing and
// close every file (the support main checks that after every test).
#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <string>
#include <vector>

#include "api/driver_host.h"
#include "ispdsp/ispdsp.h"
#include "support/mem_guard.h"
#include "support/nir_curve_text.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::FailAllocAfter;
using ispdsp_test::LimitFileReads;
using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

constexpr const char* kPipeFile1 = "/var/tmp/1/dsp_isp_para.bin";
constexpr const char* kRlrCustom = "/var/custom/rlr_para.bin";
constexpr const char* kRlrFlash = "/mnt/mtd/3A/rlr_para.bin";
constexpr const char* kNirFile = "/tmp/nir.txt";

// The line a failing step logs.
struct ExpectedLine {
    LogKind kind;
    const char* function;
    const char* message;
};
constexpr ExpectedLine kInstanceMalloc = {LogKind::Error, "DRV_dspIspCreateX", "Failed to malloc for DSP drv isp!\n"};
constexpr ExpectedLine kParamMalloc = {LogKind::Warn, "DRV_ispCfgReadCheckParam", "Failed to malloc memory for pTable\n"};
constexpr ExpectedLine kLineBufferMalloc = {LogKind::Warn, "DRV_ispGetRegistrateCfg", "buffer malloc failed\n"};
constexpr ExpectedLine kZoomMalloc = {LogKind::Warn, "DRV_ispGetRegCfg", "zoomx malloc failed!\n"};
constexpr ExpectedLine kPairsMalloc = {LogKind::Warn, "DRV_ispGetRegCfg", "registerParam malloc failed!\n"};
constexpr ExpectedLine kNirMalloc = {LogKind::Error, "DRV_dspIspCreateX", "Failed to malloc for w_nir!\r\n"};
constexpr ExpectedLine kRlrInfoMalloc = {LogKind::Warn, "DRV_loadRlrCfg", "Failed to malloc memory for cfg_rlrtableinfo\n"};
constexpr ExpectedLine kRlrTableMalloc = {LogKind::Warn, "DRV_loadRlrCfg", "Failed to malloc memory for cfg_rlrtableparam\n"};

// `call`'s result with the fault armed: FailAllocAfter(n), or LimitFileReads(limit[, path]).
template <class Fault, class Call, class... FaultArgs>
Int32 withFault(Call call, FaultArgs... faultArgs) {
    Fault fault(faultArgs...);
    return call();
}

class RobustFault : public driver_test::DriverTest {
protected:
    size_t logged(const ExpectedLine& line) const { return log.count(line.kind, line.function, line.message); }

    // The parameter file of the pipes: a colour and a black-and-white table.
    static std::vector<uint8_t> paramFile() {
        return ParamFileBuilder()
            .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(0))
            .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(1))
            .build();
    }

    // The table after a creation: either no instance (and the slots that
    // creation filled refuse the call; every slot's refusal and its line are
    // pinned in driver_lifecycle_test.cpp), or a usable instance that runs a
    // frame, takes a console command and is deleted again.
    void expectConsistentTable(HostPipe& pipe, Int32 created) {
        driver_test::ConsoleArgs command{{"ep_delta", "5"}};
        Int32 changed = 0;
        if (created != 0) {
            EXPECT_EQ(pipe.instance(), nullptr) << "a failed creation must leave no instance behind";
            EXPECT_EQ(pipe.ops()->hIsp, nullptr);
            EXPECT_EQ(pipe.ops()->ispParam, nullptr);
            if (pipe.ops()->OpStart == nullptr) return;  // failed before the table was touched
            for (Int32 rc : {pipe.start(), pipe.fusion(), pipe.console(&command.record, 0), pipe.remove()})
                EXPECT_EQ(rc, -1);
            EXPECT_TRUE(pipe.flags.empty());
            return;
        }
        ASSERT_NE(pipe.instance(), nullptr);
        DRV_RefPipeParams ref{};
        ref.refXHndl = pipe.xHndl();  // its own reference pipe: enough to run a frame
        ref.fusionType = DRV_ISP_FUSION_MONO;
        for (Int32 rc : {pipe.start(), pipe.refPipe(&ref), pipe.refresh(&changed), pipe.publishSwitch(1),
                         pipe.fusion(), pipe.console(&command.record, 0), pipe.stop(), pipe.remove()})
            EXPECT_EQ(rc, 0);
        EXPECT_EQ(pipe.instance(), nullptr);
    }

    // One creation of pipe 1 per allocation, the k-th failing. `expected[k - 1]`
    // is the outcome of failure k: creation's result, the line that names the
    // failed step and the registerFlag of a creation that goes on.
    struct Outcome {
        Int32 result;
        ExpectedLine line;
        Int32 registerFlag;
    };
    void failEveryAllocation(const std::vector<Outcome>& expected) {
        {
            // Warm-up: from here on the library's registration record holds its
            // arrays; every later load replaces them one for one.
            MemGuard count(false);
            HostPipe pipe(1);
            EXPECT_EQ(pipe.createPipe(), 0);
            EXPECT_EQ(count.allocCalls(), expected.size()) << "creation's allocations changed: update the table";
            EXPECT_EQ(pipe.remove(), 0);
        }
        MemGuard guard;
        for (size_t k = 1; k <= expected.size(); ++k) {
            const Outcome& want = expected[k - 1];
            SCOPED_TRACE("allocation " + std::to_string(k) + " fails");
            HostPipe pipe(1);
            log.clear();
            const Int32 result = withFault<FailAllocAfter>([&] { return pipe.createPipe(); }, k);
            EXPECT_EQ(result, want.result);
            EXPECT_EQ(logged(want.line), 1u) << want.line.message;
            if (result == 0 && pipe.instance() != nullptr) {
                EXPECT_EQ(pipe.instance()->registerFlag, want.registerFlag);
            }
            expectConsistentTable(pipe, result);
            EXPECT_TRUE(guard.noLeak());
        }
    }

};

// Registration files in /var/tmp/ and /var/: a failure while reading the first
// place falls through to the second, and the creation goes on.
TEST_F(RobustFault, CreationEndsCleanlyWhicheverAllocationFails) {
    sandbox.writeFile(driver_test::kCommonParamFile, paramFile());
    sandbox.writeFile(driver_test::registrationPath(1), driver_test::registrationText({100, 200, 300}));
    sandbox.writeFile(driver_test::registrationPath(2), driver_test::registrationText({150, 250}));
    failEveryAllocation({
        {-1, kInstanceMalloc, 0},
        {-1, kParamMalloc, 0},
        {0, kLineBufferMalloc, 2},
        {0, kZoomMalloc, 2},
        {0, kPairsMalloc, 2},
        {-1, kNirMalloc, 0},
        {-1, kNirMalloc, 0},
    });
}

// The common file fails at its checksum after its buffer was taken; the
// per-pipe file needs a larger block, so its load releases that buffer and
// takes a new one, which may fail in turn.
TEST_F(RobustFault, CreationFromThePipeFileEndsCleanlyWhicheverAllocationFails) {
    sandbox.writeFile(driver_test::kCommonParamFile,
                      ParamFileBuilder().addTable(PARAM_MULTICOLOR).corruptChecksum().build());
    sandbox.writeFile(kPipeFile1, paramFile());
    sandbox.writeFile(driver_test::registrationPath(3), driver_test::registrationText({100}));
    const ExpectedLine pipeFileFailed = {LogKind::Error, "DRV_dspIspCreateX",
                                         "DRV_ispCfgLoad /var/tmp/1/dsp_isp_para.bin failed!\n"};
    failEveryAllocation({
        {-1, kInstanceMalloc, 0},
        {0, kParamMalloc, 3},     // the common file's buffer; the pipe file's load takes its own
        {-1, pipeFileFailed, 0},  // the pipe file's larger buffer, after the common one was released
        {0, kLineBufferMalloc, 0},
        {0, kZoomMalloc, 0},
        {0, kPairsMalloc, 0},
        {-1, kNirMalloc, 0},
        {-1, kNirMalloc, 0},
    });
}

// The NIR curve loader: its buffer fails (both languages of the command), then
// every read cut; a cut file loads only when the last value was read.
TEST_F(RobustFault, NirCurveLoaderEndsCleanlyOnEveryFault) {
    const std::string curve = ispdsp_test::nirCurveText();
    sandbox.writeFile(kNirFile, curve);
    const CFG_DspIspCfgParam table = driver_test::fusionTable(3);
    std::vector<CFG_DSP_FusionV2722> records(table.ispFusionParam, table.ispFusionParam + FUSION_GAIN_STEPS);
    const std::vector<CFG_DSP_FusionV2722> before = records;
    const size_t recordBytes = records.size() * sizeof(records[0]);
    DRV_gainInterParam gain{};
    gain.gainStartIndex = 4;
    gain.gainEndIndex = 5;
    MemGuard guard;
    for (Int32 pcmdId : {0, 1}) {
        log.clear();
        EXPECT_EQ(withFault<FailAllocAfter>([&] { return DRV_dspdbgFusionNir(records.data(), &gain, pcmdId, 0); }, 1), -1);
        EXPECT_EQ(log.count(LogKind::Warn, "DRV_dspdbgFusionNir", "buffer malloc failed\n"), 1u);
        EXPECT_EQ(std::memcmp(records.data(), before.data(), recordBytes), 0);
    }
    for (size_t limit = 0; limit <= curve.size(); ++limit) {
        SCOPED_TRACE("reads cut at byte " + std::to_string(limit));
        records = before;
        const Int32 result = withFault<LimitFileReads>([&] { return DRV_dspdbgFusionNir(records.data(), &gain, 0, 0); }, limit);
        const bool whole = limit >= curve.size() - 1;  // everything but the final line feed
        ASSERT_EQ(result, whole ? 0 : -1);
        ASSERT_EQ(whole ? records[4].w_nir[FUSION_NIR_POINTS - 1] : 0,
                  whole ? 7 : std::memcmp(records.data(), before.data(), recordBytes));
    }
}

// The RLR loader: each of its allocations fails (the host passes no buffer:
// the identity record, then the tables are taken; or its own buffer: only the
// identity record is), then the custom file's reads are cut at every byte.
TEST_F(RobustFault, RlrLoaderEndsCleanlyOnEveryFault) {
    std::vector<uint8_t> custom(1024);
    for (size_t i = 0; i < custom.size(); ++i) custom[i] = static_cast<uint8_t>(i * 3 + 1);
    sandbox.writeFile(kRlrCustom, custom);
    sandbox.makeDir("/mnt/mtd/3A");
    MemGuard guard;
    CFG_RlrTableParam hostTables{};
    const struct {
        Ptr buffer;
        uint64_t failing;
        ExpectedLine line;
    } cases[] = {{nullptr, 1, kRlrInfoMalloc}, {nullptr, 2, kRlrTableMalloc}, {&hostTables, 1, kRlrInfoMalloc}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.message);
        log.clear();
        Ptr tables = c.buffer;
        EXPECT_EQ(withFault<FailAllocAfter>([&] { return DRV_loadRlrCfg(&tables); }, c.failing), -1);
        EXPECT_EQ(tables, c.buffer);
        EXPECT_EQ(logged(c.line), 1u);
    }
    constexpr size_t kIdentityBytes = 9;
    constexpr size_t kTableBytes = sizeof(CFG_RlrTableParam);
    for (size_t limit = 0; limit <= kTableBytes; ++limit) {
        SCOPED_TRACE("reads cut at byte " + std::to_string(limit));
        sandbox.remove(kRlrFlash);
        log.clear();
        CFG_RlrTableParam tables{};
        Ptr buffer = &tables;
        const Int32 result = withFault<LimitFileReads>([&] { return DRV_loadRlrCfg(&buffer); }, limit);
        if (limit < kIdentityBytes) {
            // The custom file's identity cannot be read: nothing is loaded.
            ASSERT_EQ(result, -1);
            CFG_RlrTableInfo info{};
            ASSERT_EQ(withFault<LimitFileReads>([&] { return CFG_aewGetRlrCfgInfo(kRlrCustom, &info); }, limit), -1);
            ASSERT_EQ(log.count(LogKind::Error, "DRV_loadRlrCfg", "Get RlrCfgInfo is failed!\n"), 1u);
            ASSERT_FALSE(sandbox.exists(kRlrFlash));
            continue;
        }
        // The tables come up short (or whole at 768): the flash copy is still
        // written from the buffer and the load succeeds.
        ASSERT_EQ(result, 0);
        ASSERT_EQ(log.count("WARN  : read /var/custom/rlr_para.bin RLR table info failed\n"), limit < kTableBytes ? 1u : 0u);
        ASSERT_EQ(std::memcmp(&tables, custom.data(), limit), 0);
        ASSERT_EQ(sandbox.readFile(kRlrFlash).size(), kTableBytes);
        ASSERT_TRUE(guard.noLeak());
    }
}

// A platform layer whose open reports success but hands out no handle: each
// loader that checks the handle refuses with its own open line.
TEST_F(RobustFault, OpenThatGivesNoHandleIsAFailedOpen) {
    CFG_IspParamTable table{};
    Ptr block = nullptr;
    CFG_RlrTableInfo info{};
    CFG_RlrTableParam tables{};
    ispdsp_host_open_without_handle(1);
    const std::pair<const char*, Int32> calls[] = {
        {"DRV_ispCfgReadCheckParam", DRV_ispCfgReadCheckParam(kRlrCustom, 1.0f, &table, &block)},
        {"CFG_aewGetRlrCfgInfo", CFG_aewGetRlrCfgInfo(kRlrCustom, &info)},
        {"CFG_aewReadRlrCfg", CFG_aewReadRlrCfg(kRlrCustom, &tables)},
        {"CFG_aewWriteRlrCfg", CFG_aewWriteRlrCfg(kRlrCustom, &tables)}};
    ispdsp_host_open_without_handle(0);
    for (const auto& [function, result] : calls) {
        EXPECT_EQ(result, -1) << function;
        EXPECT_EQ(log.count(LogKind::Error, function, "Open /var/custom/rlr_para.bin file failed\n"), 1u) << function;
    }
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
    MemGuard guard;
    for (size_t limit = 0; limit <= file.size(); ++limit) {
        SCOPED_TRACE("read cut at byte " + std::to_string(limit));
        HostPipe pipe(1);
        log.clear();
        const Int32 result = withFault<LimitFileReads>([&] { return pipe.createPipe(); }, limit);
        if (limit == file.size()) {  // the whole file arrives: the control case
            EXPECT_EQ(result, 0);
            expectConsistentTable(pipe, result);
            break;
        }
        ASSERT_EQ(result, -1);
        ASSERT_EQ(log.count(LogKind::Warn, "DRV_ispCfgReadCheckParam", shortReadMessage(limit, blockSize)), 1u);
        ASSERT_TRUE(guard.noLeak());
        // The table's slots answer without an instance (checked in full every 512 cuts: it is slow).
        if (limit % 512 == 0) expectConsistentTable(pipe, result);
    }
}

// The registration file read by creation, cut at every byte: creation goes on
// either way; the file counts once its header (the two counts) was read:
// the body is read leniently, missing lines leave zeros.
TEST_F(RobustFault, CreationEndsCleanlyWhereverTheRegistrationReadStops) {
    sandbox.writeFile(driver_test::kCommonParamFile, paramFile());
    const std::string text = driver_test::registrationText({100, 200});
    sandbox.writeFile(driver_test::registrationPath(1), text);
    const size_t headerEnd = text.find('\n');  // "ZOOMNUM:2 REGNUM:2": the counts are all a load needs
    MemGuard guard(false);  // the library keeps the registration arrays of a load
    for (size_t limit = 0; limit <= text.size(); ++limit) {
        SCOPED_TRACE("read cut at byte " + std::to_string(limit));
        HostPipe pipe(1);
        ASSERT_EQ(withFault<LimitFileReads>([&] { return pipe.createPipe(); }, limit, driver_test::registrationPath(1)), 0);
        ASSERT_EQ(pipe.instance()->registerFlag, limit >= headerEnd ? 1 : 0);
        ASSERT_EQ(pipe.remove(), 0);
    }
}

}  // namespace

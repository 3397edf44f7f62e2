// The driver instance through the host's operation table: creation and its
// failures, the slots it writes, the flag protocol, module results, the
// reference pipe, instance lookup and deletion.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "api/driver_host.h"
#include "support/mem_guard.h"

namespace {

using driver_test::countErrors;
using driver_test::countInfo;
using driver_test::countNullErrors;
using driver_test::countWarnings;
using driver_test::HostPipe;
using ispdsp_test::FailAllocAfter;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

class DriverLifecycle : public testing::Test {
protected:
    void writeCommonParamFile() {
        sandbox.writeFile(driver_test::kCommonParamFile,
                          ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).build());
    }
    void writeRegistration(int place) {
        sandbox.writeFile(driver_test::registrationPath(place), driver_test::registrationText({100, 200, 300}));
    }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
};

// The eleven slots that creation writes, by their offsets in the table.
const std::vector<size_t>& writtenSlotOffsets() {
    static const std::vector<size_t> offsets = {
        offsetof(DRV_ispOpsParams, OpReloadCfg),        offsetof(DRV_ispOpsParams, OpStart),
        offsetof(DRV_ispOpsParams, OpStop),             offsetof(DRV_ispOpsParams, OpDelete),
        offsetof(DRV_ispOpsParams, OpSetModuleResults), offsetof(DRV_ispOpsParams, OpInterGainFlags),
        offsetof(DRV_ispOpsParams, OpRefreshCfg),       offsetof(DRV_ispOpsParams, OpSetFusion),
        offsetof(DRV_ispOpsParams, OpSetRefPipeParams), offsetof(DRV_ispOpsParams, OpGetXHndl),
        offsetof(DRV_ispOpsParams, OpSetDbgDspParam)};
    return offsets;
}

TEST_F(DriverLifecycle, CreationFillsTheTableAndTheInstance) {
    writeCommonParamFile();
    HostPipe pipe(4);
    // The host's own slots and run parameters carry a pattern the driver must keep.
    auto* bytes = reinterpret_cast<unsigned char*>(pipe.ops());
    std::memset(bytes + offsetof(DRV_ispOpsParams, runParam), 0x5A, sizeof(DRV_ispRunParams));
    const size_t slotsBegin = offsetof(DRV_ispOpsParams, OpSetH3aAewb);
    std::memset(bytes + slotsBegin, 0xA5, sizeof(DRV_ispOpsParams) - slotsBegin);
    std::vector<unsigned char> before(bytes, bytes + sizeof(DRV_ispOpsParams));

    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_aewIspHandleDSP* instance = pipe.instance();
    ASSERT_NE(instance, nullptr);

    // Exactly the eleven slots changed; every other slot and the run parameters are the host's.
    for (size_t offset = slotsBegin; offset < sizeof(DRV_ispOpsParams); offset += sizeof(void*)) {
        const bool written = std::find(writtenSlotOffsets().begin(), writtenSlotOffsets().end(), offset) !=
                             writtenSlotOffsets().end();
        const bool same = std::memcmp(bytes + offset, before.data() + offset, sizeof(void*)) == 0;
        EXPECT_NE(written, same) << "slot at offset " << offset;
    }
    EXPECT_EQ(std::memcmp(bytes + offsetof(DRV_ispOpsParams, runParam),
                          before.data() + offsetof(DRV_ispOpsParams, runParam), sizeof(DRV_ispRunParams)),
              0);
    EXPECT_EQ(pipe.ops()->OpGetXHndl, &DRV_ispGetXHndlX);
    EXPECT_EQ(pipe.ops()->hIsp, static_cast<Handle>(instance->IspDev));
    EXPECT_EQ(pipe.ops()->ispParam, static_cast<Ptr>(&instance->dspCfgTables));

    // Copied from the creation record: all eight device ids even with ispNum 1.
    EXPECT_EQ(instance->aewPipeId, 4u);
    EXPECT_EQ(instance->ispNum, 1u);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(instance->IspDev[i], 40u + i);
    EXPECT_EQ(instance->privData, static_cast<Ptr>(&pipe));
    EXPECT_EQ(instance->OpSetDrvFlag, pipe.create.OpSetDrvFlag);
    EXPECT_EQ(instance->dspHandle.nId, 0u);
    EXPECT_EQ(instance->dspHandle.dspIspCfgOps.OpGetDspConfig, ispdsp_test::DspCapture::getCallback());
    EXPECT_EQ(instance->dspHandle.dspIspCfgOps.OpSetDspConfig, ispdsp_test::DspCapture::setCallback());

    // The tables are registered, none is chosen yet, nothing else is set.
    EXPECT_NE(instance->dspCfgTables.paramTables[PARAM_MULTICOLOR], nullptr);
    EXPECT_NE(instance->dspCfgTables.paramTables[PARAM_BLACKWHITE], nullptr);
    EXPECT_EQ(instance->dspCfgTables.paramTables[PARAM_HDR_MULTICOLOR], nullptr);
    EXPECT_EQ(instance->dspCfgTables.curTable, nullptr);
    EXPECT_EQ(instance->dspCfgTables.curTableIdx, 0u);
    EXPECT_EQ(instance->quickStart, 0u);
    EXPECT_EQ(instance->registerFlag, 0);
    EXPECT_EQ(instance->refPipeParams.refXHndl, nullptr);
    ASSERT_NE(instance->w_nir1, nullptr);
    ASSERT_NE(instance->w_nir2, nullptr);
    EXPECT_NE(instance->w_nir1, instance->w_nir2);
    for (int i = 0; i < DRV_ISP_NIR_BUFFER_SIZE; ++i) ASSERT_EQ(instance->w_nir1[i] | instance->w_nir2[i], 0);
    EXPECT_TRUE(pipe.flags.empty());
    EXPECT_TRUE(dsp.sets().empty());

    // The first line of every creation, then the missing registration file.
    const auto lines = log.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front().text, "[DSP_DRV] DRV_dspIspCreateX In successful!\n");
    EXPECT_EQ(lines.front().level, 2);
    EXPECT_EQ(lines.front().category, 2);
    EXPECT_EQ(countErrors(log, "DRV_dspIspCreateX", "DRV_ispRegistrateCfgLoad failed!\n"), 1u);
    EXPECT_EQ(pipe.remove(), 0);
}

// The per-pipe file is the fallback for a missing or corrupt common file, without a leak.
TEST_F(DriverLifecycle, PerPipeParameterFileIsTheFallback) {
    sandbox.writeFile(driver_test::pipeParamFile(3),
                      ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_TRAFFIC).build());
    for (bool corruptCommon : {false, true}) {
        SCOPED_TRACE(corruptCommon ? "corrupt common file" : "no common file");
        if (corruptCommon) {
            sandbox.writeFile(driver_test::kCommonParamFile,
                              ParamFileBuilder().addTable(PARAM_MULTICOLOR).corruptChecksum().build());
        }
        HostPipe pipe(3);
        MemGuard guard;
        log.clear();
        ASSERT_EQ(pipe.createPipe(), 0);
        EXPECT_EQ(countInfo(log, "[DSP_DRV] DRV_ispCfgLoad /var/tmp/dsp_isp_para.bin failed!\n"), 1u);
        EXPECT_NE(pipe.instance()->dspCfgTables.paramTables[PARAM_TRAFFIC], nullptr);
        EXPECT_EQ(pipe.remove(), 0);
    }
}

// Without usable tables creation fails, releases everything and leaves no instance
// reachable from the table; the filled slots refuse for lack of an instance.
TEST_F(DriverLifecycle, CreationWithoutUsableTablesFailsAndReleasesEverything) {
    const auto corrupt = ParamFileBuilder().addTable(PARAM_MULTICOLOR).corruptChecksum().build();
    struct Case {
        const char* what;
        Uint32 pipeId;
        std::vector<uint8_t> common, perPipe;  // empty: no file
        const char* function;
        const char* error;
    };
    const Case cases[] = {
        {"no files", 5, {}, {}, "DRV_dspIspCreateX", "DRV_ispCfgLoad /var/tmp/5/dsp_isp_para.bin failed!\n"},
        {"both corrupt", 2, corrupt, corrupt, "DRV_dspIspCreateX", "DRV_ispCfgLoad /var/tmp/2/dsp_isp_para.bin failed!\n"},
        {"invalid table type", 1, ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(200).build(), {},
         "DRV_ispCommTable2TableX", "Failed to transfer cfg /var/tmp/ failed!\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ispdsp_test::Sandbox files;
        if (!c.common.empty()) files.writeFile(driver_test::kCommonParamFile, c.common);
        if (!c.perPipe.empty()) files.writeFile(driver_test::pipeParamFile(c.pipeId), c.perPipe);
        HostPipe pipe(c.pipeId);
        MemGuard guard;
        log.clear();
        EXPECT_EQ(pipe.createPipe(), -1);
        EXPECT_EQ(countErrors(log, c.function, c.error), 1u);
        EXPECT_EQ(pipe.ops()->ispXHndl, nullptr);
        EXPECT_EQ(pipe.ops()->hIsp, nullptr);
        EXPECT_EQ(pipe.ops()->ispParam, nullptr);
        ASSERT_NE(pipe.ops()->OpStart, nullptr);
        EXPECT_EQ(pipe.start(), -1);
        EXPECT_EQ(countNullErrors(log, "DRV_ispStartX", "ispOps->ispXHndl"), 1u);
        EXPECT_TRUE(pipe.flags.empty());
    }
}

TEST_F(DriverLifecycle, IspNumAboveTheMaximumIsRefusedBeforeAnything) {
    writeCommonParamFile();
    HostPipe pipe(1);
    pipe.create.ispNum = ISP_MAX_DEV_NUM + 1;
    const DRV_ispOpsParams before = *pipe.ops();
    MemGuard guard;
    EXPECT_EQ(pipe.createPipe(), -1);
    EXPECT_EQ(guard.allocCalls(), 0u);
    EXPECT_EQ(std::memcmp(&before, pipe.ops(), sizeof(before)), 0);
    EXPECT_EQ(countErrors(log, "DRV_dspIspCreateX", "ispNum 7 is above ISP_MAX_DEV_NUM 6!\n"), 1u);

    pipe.create.ispNum = ISP_MAX_DEV_NUM;
    ASSERT_EQ(pipe.createPipe(), 0);
    EXPECT_EQ(pipe.instance()->ispNum, 6u);
    EXPECT_EQ(pipe.remove(), 0);
}

TEST_F(DriverLifecycle, NullCreationArgumentsAreRefusedAfterTheFirstLine) {
    HostPipe pipe(1);
    EXPECT_EQ(DRV_dspIspCreateX(nullptr, pipe.ops()), -1);
    EXPECT_EQ(DRV_dspIspCreateX(&pipe.create, nullptr), -1);
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[0], "[DSP_DRV] DRV_dspIspCreateX In successful!\n");
    EXPECT_TRUE(driver_test::isLocatedLine(texts[1], "ERROR", "DRV_dspIspCreateX", "Input NULL POINT pCreateParams!\n"));
    EXPECT_EQ(texts[2], "[DSP_DRV] DRV_dspIspCreateX In successful!\n");
    EXPECT_TRUE(driver_test::isLocatedLine(texts[3], "ERROR", "DRV_dspIspCreateX", "Input NULL POINT ispOps!\n"));
}

TEST_F(DriverLifecycle, RegistrationFileSetsTheRegisterFlagByPlace) {
    writeCommonParamFile();
    writeRegistration(2);
    writeRegistration(3);
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    EXPECT_EQ(pipe.instance()->registerFlag, 2);
    EXPECT_EQ(countInfo(log, "[DSP_DRV] DRV_ispRegistrateCfgLoad sucess!\n"), 1u);
    EXPECT_EQ(countErrors(log, "DRV_dspIspCreateX", "DRV_ispRegistrateCfgLoad failed!\n"), 0u);
    EXPECT_EQ(pipe.remove(), 0);

    writeRegistration(1);
    HostPipe second(2);
    ASSERT_EQ(second.createPipe(), 0);
    EXPECT_EQ(second.instance()->registerFlag, 1);
    EXPECT_EQ(second.remove(), 0);
}

// Every allocation of a creation can fail: the result is -1 with nothing left
// allocated and no instance in the table, except for the registration file,
// whose failure creation survives.
TEST_F(DriverLifecycle, AllocationFailureAtEveryStepLeaksNothing) {
    writeCommonParamFile();
    writeRegistration(1);
    uint64_t allocationsOfACreation = 0;
    {  // Warm up: the process-wide registration record now holds its arrays.
        HostPipe pipe(1);
        MemGuard guard(/*expectNoLeakAtEnd=*/false);
        ASSERT_EQ(pipe.createPipe(), 0);
        allocationsOfACreation = guard.allocCalls();
        ASSERT_EQ(pipe.remove(), 0);
    }
    ASSERT_GE(allocationsOfACreation, 5u);  // instance, block, registration, two NIR buffers

    for (uint64_t n = 1; n <= allocationsOfACreation; ++n) {
        SCOPED_TRACE("failing allocation " + std::to_string(n));
        log.clear();
        HostPipe pipe(1);
        MemGuard guard;
        Int32 result = 0;
        {
            FailAllocAfter fail(n);
            result = pipe.createPipe();
        }
        if (n == 1) {
            EXPECT_EQ(countErrors(log, "DRV_dspIspCreateX", "Failed to malloc for DSP drv isp!\n"), 1u);
            EXPECT_EQ(result, -1);
        }
        if (n + 1 >= allocationsOfACreation) {
            EXPECT_EQ(countErrors(log, "DRV_dspIspCreateX", "Failed to malloc for w_nir!\r\n"), 1u);
            EXPECT_EQ(result, -1);
        }
        if (result == 0) {
            EXPECT_EQ(pipe.remove(), 0);
        } else {
            EXPECT_EQ(pipe.ops()->ispXHndl, nullptr);
            EXPECT_EQ(pipe.ops()->hIsp, nullptr);
        }
    }
}

TEST_F(DriverLifecycle, CreateAndDeleteForHoursLeaksNothing) {
    writeCommonParamFile();
    writeRegistration(3);
    {  // Warm up the process-wide registration record.
        HostPipe pipe(1);
        ASSERT_EQ(pipe.createPipe(), 0);
        ASSERT_EQ(pipe.remove(), 0);
    }
    MemGuard guard;
    for (int cycle = 0; cycle < 300; ++cycle) {
        HostPipe colour(1), mono(2);
        ASSERT_EQ(colour.createPipe(), 0);
        ASSERT_EQ(mono.createPipe(), 0);
        ASSERT_EQ(colour.start(), 0);
        ASSERT_EQ(mono.start(), 0);
        driver_test::linkPipes(colour, mono);
        ASSERT_EQ(colour.stop(), 0);
        ASSERT_EQ(mono.stop(), 0);
        ASSERT_EQ(colour.remove(), 0);
        ASSERT_EQ(mono.remove(), 0);
    }
    EXPECT_TRUE(guard.noLeak());
    log.clear();
}

TEST_F(DriverLifecycle, DeleteReleasesAndClearsTheTable) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    EXPECT_EQ(pipe.remove(), 0);
    EXPECT_EQ(pipe.ops()->ispXHndl, nullptr);
    EXPECT_EQ(pipe.ops()->hIsp, nullptr);
    EXPECT_EQ(pipe.ops()->ispParam, nullptr);
    // A second delete is refused instead of releasing twice.
    EXPECT_EQ(pipe.remove(), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispDeleteX", "ispOps->ispXHndl"), 1u);
}

// ---- Flag protocol ----

struct FlagCase {
    const char* name;
    std::function<Int32(HostPipe&)> operation;
    Uint32 quickStart;
    std::vector<Uint32> expectedFlags;
};

class DriverFlags : public DriverLifecycle, public testing::WithParamInterface<FlagCase> {};

TEST_P(DriverFlags, SendsTheFusionFlag) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    pipe.instance()->quickStart = GetParam().quickStart;
    log.clear();
    EXPECT_EQ(GetParam().operation(pipe), 0);
    ASSERT_EQ(pipe.flags.size(), GetParam().expectedFlags.size());
    for (size_t i = 0; i < pipe.flags.size(); ++i) {
        EXPECT_EQ(pipe.flags[i].cmdType, ISP_SET_FUSION);
        EXPECT_EQ(pipe.flags[i].flag, GetParam().expectedFlags[i]);
        EXPECT_EQ(pipe.flags[i].privData, static_cast<Ptr>(&pipe));
        EXPECT_TRUE(pipe.flags[i].reservedZero);
    }
    EXPECT_EQ(pipe.remove(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, DriverFlags,
    testing::Values(FlagCase{"Start", [](HostPipe& p) { return p.start(); }, 0, {1}},
                    FlagCase{"Stop", [](HostPipe& p) { return p.stop(); }, 0, {0}},
                    FlagCase{"Reload", [](HostPipe& p) { return p.reload(); }, 0, {1}},
                    FlagCase{"GainFlags", [](HostPipe& p) { return p.gainFlags(); }, 0, {1}},
                    FlagCase{"GainFlagsQuickStart", [](HostPipe& p) { return p.gainFlags(); }, 1, {}},
                    FlagCase{"StopStartStop",
                             [](HostPipe& p) {
                                 Int32 r = p.stop();
                                 r |= p.start();
                                 return r | p.stop();
                             },
                             0, {0, 1, 0}}),
    [](const testing::TestParamInfo<FlagCase>& info) { return info.param.name; });

TEST_F(DriverLifecycle, StartLogsFirstAndForgetsTheReferencePipe) {
    writeCommonParamFile();
    HostPipe colour(1), mono(2);
    ASSERT_EQ(colour.createPipe(), 0);
    ASSERT_EQ(mono.createPipe(), 0);
    driver_test::linkPipes(colour, mono);
    ASSERT_EQ(colour.instance()->refPipeParams.refXHndl, mono.xHndl());
    log.clear();
    EXPECT_EQ(colour.start(), 0);
    EXPECT_EQ(colour.instance()->refPipeParams.refXHndl, nullptr);
    EXPECT_EQ(colour.instance()->refPipeParams.fusionType, static_cast<Uint32>(DRV_ISP_FUSION_MONO));
    ASSERT_EQ(log.texts().size(), 1u);
    EXPECT_EQ(countInfo(log, "[DSP_DRV] start in successful\n"), 1u);

    DRV_ispOpsParams noTable;
    std::memset(&noTable, 0, sizeof(noTable));
    log.clear();
    EXPECT_EQ(colour.ops()->OpStart(nullptr), -1);
    ASSERT_EQ(log.texts().size(), 2u);
    EXPECT_EQ(log.texts()[0], "[DSP_DRV] start in successful\n");
    EXPECT_TRUE(driver_test::isLocatedLine(log.texts()[1], "ERROR", "DRV_ispStartX", "Input NULL POINT ispOps!\n"));
    EXPECT_EQ(colour.remove(), 0);
    EXPECT_EQ(mono.remove(), 0);
}

TEST_F(DriverLifecycle, WithoutAFlagCallbackEveryOperationStillSucceeds) {
    writeCommonParamFile();
    HostPipe pipe(1, /*withFlagCallback=*/false);
    ASSERT_EQ(pipe.createPipe(), 0);
    EXPECT_EQ(pipe.start(), 0);
    EXPECT_EQ(pipe.reload(), 0);
    EXPECT_EQ(pipe.gainFlags(), 0);
    EXPECT_EQ(pipe.stop(), 0);
    EXPECT_TRUE(pipe.flags.empty());
    EXPECT_EQ(pipe.remove(), 0);
}

// ---- Missing table or instance, slot by slot ----

struct MissingCase {
    const char* name;
    const char* function;
    std::function<Int32(DRV_ispOpsParams* slots, DRV_ispOpsParams* target)> call;
    Int32 resultWithoutInstance;
    const char* missingInstanceReporter;
};

class DriverMissingInstance : public DriverLifecycle, public testing::WithParamInterface<MissingCase> {};

TEST_P(DriverMissingInstance, IsRefused) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_ispOpsParams empty;
    std::memset(&empty, 0, sizeof(empty));

    log.clear();
    EXPECT_EQ(GetParam().call(pipe.ops(), nullptr), -1);
    EXPECT_EQ(countNullErrors(log, GetParam().function, "ispOps"), 1u);

    log.clear();
    EXPECT_EQ(GetParam().call(pipe.ops(), &empty), GetParam().resultWithoutInstance);
    EXPECT_EQ(countNullErrors(log, GetParam().missingInstanceReporter, "ispOps->ispXHndl"), 1u);
    EXPECT_TRUE(pipe.flags.empty());
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_EQ(pipe.remove(), 0);
}

DRV_ispModuleResults g_results;
DRV_RefPipeParams g_ref = {{}, &g_ref, 0, {}};
DRV_ispCmdParam g_cmd;

INSTANTIATE_TEST_SUITE_P(
    Slots, DriverMissingInstance,
    testing::Values(
        MissingCase{"Start", "DRV_ispStartX", [](auto* s, auto* t) { return s->OpStart(t); }, -1, "DRV_ispStartX"},
        MissingCase{"Stop", "DRV_ispStopX", [](auto* s, auto* t) { return s->OpStop(t); }, -1, "DRV_ispStopX"},
        MissingCase{"Reload", "DRV_ispReloadCfg", [](auto* s, auto* t) { return s->OpReloadCfg(t); }, 0,
                    "DRV_ispControlModuleFlag"},
        MissingCase{"GainFlags", "DRV_ispInterGainFlagsX", [](auto* s, auto* t) { return s->OpInterGainFlags(t); },
                    -1, "DRV_ispInterGainFlagsX"},
        MissingCase{"Delete", "DRV_ispDeleteX", [](auto* s, auto* t) { return s->OpDelete(t); }, -1,
                    "DRV_ispDeleteX"},
        MissingCase{"ModuleResults", "DRV_ispSetModuleResultsX",
                    [](auto* s, auto* t) { return s->OpSetModuleResults(t, &g_results); }, -1,
                    "DRV_ispSetModuleResultsX"},
        MissingCase{"RefPipe", "DRV_ispSetRefPipeParamsX",
                    [](auto* s, auto* t) { return s->OpSetRefPipeParams(t, &g_ref); }, -1,
                    "DRV_ispSetRefPipeParamsX"},
        MissingCase{"Refresh", "DRV_ispRefreshCfgX",
                    [](auto* s, auto* t) {
                        Int32 changed = 9;
                        const Int32 r = s->OpRefreshCfg(t, &changed);
                        EXPECT_EQ(changed, 9);
                        return r;
                    },
                    -1, "DRV_ispRefreshCfgX"},
        MissingCase{"Fusion", "DRV_ispSetFusionParam", [](auto* s, auto* t) { return s->OpSetFusion(t); }, -1,
                    "DRV_ispSetFusionParam"},
        MissingCase{"Console", "DRV_ispSetDbgDspParam",
                    [](auto* s, auto* t) { return s->OpSetDbgDspParam(t, &g_cmd, 0); }, -1,
                    "DRV_ispSetDbgDspParam"}),
    [](const testing::TestParamInfo<MissingCase>& info) { return info.param.name; });

// ---- Module results, reference pipe, instance lookup ----

TEST_F(DriverLifecycle, ModuleResultsReplaceTheWholeRecord) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_ispModuleResults results;
    for (size_t i = 0; i < sizeof(results); ++i) reinterpret_cast<unsigned char*>(&results)[i] = (i * 7 + 3) & 0xFF;
    EXPECT_EQ(pipe.moduleResults(&results), 0);
    EXPECT_EQ(std::memcmp(&pipe.instance()->moduleResults, &results, sizeof(results)), 0);

    const DRV_ispModuleResults kept = pipe.instance()->moduleResults;
    EXPECT_EQ(pipe.moduleResults(nullptr), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispSetModuleResultsX", "moduleResults"), 1u);
    EXPECT_EQ(std::memcmp(&pipe.instance()->moduleResults, &kept, sizeof(kept)), 0);
    EXPECT_EQ(pipe.remove(), 0);
}

TEST_F(DriverLifecycle, ReferencePipeIsCopiedAndNullsAreRefused) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_RefPipeParams ref;
    for (size_t i = 0; i < sizeof(ref); ++i) reinterpret_cast<unsigned char*>(&ref)[i] = (i * 5 + 1) & 0xFF;
    ref.refXHndl = &ref;
    EXPECT_EQ(pipe.refPipe(&ref), 0);
    EXPECT_EQ(std::memcmp(&pipe.instance()->refPipeParams, &ref, sizeof(ref)), 0);

    DRV_RefPipeParams noInstance = ref;
    noInstance.refXHndl = nullptr;
    noInstance.fusionType = 1;
    EXPECT_EQ(pipe.refPipe(&noInstance), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispSetRefPipeParamsX", "refPipeParams->refXHndl"), 1u);
    // A null record is refused by name instead of being read.
    EXPECT_EQ(pipe.refPipe(nullptr), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispSetRefPipeParamsX", "refPipeParams"), 1u);
    EXPECT_EQ(std::memcmp(&pipe.instance()->refPipeParams, &ref, sizeof(ref)), 0);
    EXPECT_EQ(pipe.remove(), 0);
}

TEST_F(DriverLifecycle, InstanceLookup) {
    writeCommonParamFile();
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    Ptr handle = nullptr;
    EXPECT_EQ(DRV_ispGetXHndlX(pipe.ops(), &handle), 0);
    EXPECT_EQ(handle, static_cast<Ptr>(pipe.instance()));
    EXPECT_EQ(DRV_ispGetXHndlX(nullptr, &handle), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispGetXHndlX", "ispOps"), 1u);
    // A null out-pointer is refused by name instead of being written through.
    EXPECT_EQ(DRV_ispGetXHndlX(pipe.ops(), nullptr), -1);
    EXPECT_EQ(countNullErrors(log, "DRV_ispGetXHndlX", "xHndl"), 1u);
    EXPECT_EQ(pipe.remove(), 0);
}

}  // namespace

// The driver instance through the host's operation table: creation and its
// failures, the slots it writes, the flag protocol, module results, the
// reference pipe, instance lookup, the table refresh and deletion.
// (Allocation failures and the create/delete soak live in the robustness suites.)
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "api/driver_host.h"
#include "support/mem_guard.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::LogKind;
using ispdsp_test::MemGuard;
using ispdsp_test::ParamFileBuilder;

class DriverLifecycle : public driver_test::DriverTest {
protected:
    // The parameter-file table (a sandbox per row) and the refresh case write their own files.
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile,
                          ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).build());
    }
};

TEST_F(DriverLifecycle, CreationFillsTheTableAndTheInstance) {
    HostPipe pipe(4);
    pipe.create.ispNum = ISP_MAX_DEV_NUM;  // the largest accepted; RefusedCreations: one more
    // The host's own slots and run parameters carry a pattern the driver must keep.
    auto* bytes = reinterpret_cast<unsigned char*>(pipe.ops());
    std::memset(bytes + offsetof(DRV_ispOpsParams, runParam), 0x5A, sizeof(DRV_ispRunParams));
    const size_t slotsBegin = offsetof(DRV_ispOpsParams, OpSetH3aAewb);
    std::memset(bytes + slotsBegin, 0xA5, sizeof(DRV_ispOpsParams) - slotsBegin);
    const std::vector<unsigned char> before(bytes, bytes + sizeof(DRV_ispOpsParams));
    MemGuard guard;  // the delete at the end releases everything
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_aewIspHandleDSP* instance = pipe.instance();
    ASSERT_NE(instance, nullptr);

    // Eleven slots changed: OpGetXHndl below and the ten that EverySlotRefusesMissingPointers
    // calls (which also shows that each is its own operation). Every other slot
    // and the run parameters are the host's.
    size_t changedSlots = 0;
    for (size_t offset = slotsBegin; offset < sizeof(DRV_ispOpsParams); offset += sizeof(void*))
        changedSlots += std::memcmp(bytes + offset, before.data() + offset, sizeof(void*)) != 0;
    EXPECT_EQ(changedSlots, 11u);
    const size_t run = offsetof(DRV_ispOpsParams, runParam);
    EXPECT_EQ(std::memcmp(bytes + run, before.data() + run, sizeof(DRV_ispRunParams)), 0);
    EXPECT_EQ(pipe.ops()->OpGetXHndl, &DRV_ispGetXHndlX);
    EXPECT_EQ(pipe.ops()->hIsp, static_cast<Handle>(instance->IspDev));
    EXPECT_EQ(pipe.ops()->ispParam, static_cast<Ptr>(&instance->dspCfgTables));

    // Copied from the creation record: all eight device ids, beyond ispNum too.
    EXPECT_EQ(instance->aewPipeId, 4u);
    EXPECT_EQ(instance->ispNum, 6u);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(instance->IspDev[i], 40u + i);
    EXPECT_EQ(instance->dspHandle.nId, 0u);  // privData, the flag and DSP callbacks: seen in use by the flag tests

    // The tables are registered, none is chosen yet, nothing else is set.
    EXPECT_NE(instance->dspCfgTables.paramTables[PARAM_MULTICOLOR], nullptr);
    EXPECT_NE(instance->dspCfgTables.paramTables[PARAM_BLACKWHITE], nullptr);
    EXPECT_EQ(instance->dspCfgTables.paramTables[PARAM_HDR_MULTICOLOR], nullptr);
    EXPECT_EQ(instance->dspCfgTables.curTable, nullptr);  // registerFlag 0: ParameterFileFallbackRegistrationAndFailures
    ASSERT_NE(instance->w_nir1, nullptr);
    ASSERT_NE(instance->w_nir2, nullptr);
    EXPECT_NE(instance->w_nir1, instance->w_nir2);
    for (int i = 0; i < DRV_ISP_NIR_BUFFER_SIZE; ++i) ASSERT_EQ(instance->w_nir1[i] | instance->w_nir2[i], 0);
    EXPECT_TRUE(pipe.flags.empty());
    EXPECT_TRUE(dsp.sets().empty());

    // The first line of every creation, then the missing registration file.
    ASSERT_FALSE(log.texts().empty());
    EXPECT_EQ(log.texts().front(), "[DSP_DRV] DRV_dspIspCreateX In successful!\n");
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_dspIspCreateX", "DRV_ispRegistrateCfgLoad failed!\n"));

    // Delete clears the table, so a second delete is refused instead of releasing twice.
    EXPECT_EQ(pipe.remove(), 0);
    EXPECT_EQ(pipe.ops()->ispXHndl, nullptr);
    EXPECT_EQ(pipe.ops()->hIsp, nullptr);
    EXPECT_EQ(pipe.ops()->ispParam, nullptr);
    EXPECT_EQ(pipe.remove(), -1);
}

// The common file first, the pipe's own file as the fallback. Without usable
// tables creation fails, releases everything and leaves no instance reachable
// from the table; the filled slots then refuse for lack of an instance. The
// first registration file found sets registerFlag to its place (1..3); none
// is an error, and 0.
TEST_F(DriverLifecycle, ParameterFileFallbackRegistrationAndFailures) {
    const auto good = ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_TRAFFIC).build();
    const auto corrupt = ParamFileBuilder().addTable(PARAM_MULTICOLOR).corruptChecksum().build();
    const auto badType = ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(200).build();
    struct Case {
        std::vector<uint8_t> common, perPipe;  // empty: no file
        std::vector<int> registrationPlaces;
        Int32 registerFlag;
        Int32 result;
        LogKind kind;
        const char* function;
        const char* line;
    };
    const Case cases[] = {
        {{}, good, {}, 0, 0, LogKind::Info, "", "DRV_ispCfgLoad /var/tmp/dsp_isp_para.bin failed!\n"},
        {corrupt, good, {}, 0, 0, LogKind::Info, "", "DRV_ispCfgLoad /var/tmp/dsp_isp_para.bin failed!\n"},
        {good, {}, {2, 3}, 2, 0, LogKind::Info, "", "DRV_ispRegistrateCfgLoad sucess!\n"},
        {{}, {}, {}, 0, -1, LogKind::Error, "DRV_dspIspCreateX",
         "DRV_ispCfgLoad /var/tmp/3/dsp_isp_para.bin failed!\n"},
        {corrupt, corrupt, {}, 0, -1, LogKind::Error, "DRV_dspIspCreateX",
         "DRV_ispCfgLoad /var/tmp/3/dsp_isp_para.bin failed!\n"},
        {badType, {}, {}, 0, -1, LogKind::Error, "DRV_ispCommTable2TableX",
         "Failed to transfer cfg /var/tmp/ failed!\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        ispdsp_test::Sandbox files;
        if (!c.common.empty()) files.writeFile(driver_test::kCommonParamFile, c.common);
        if (!c.perPipe.empty()) files.writeFile(driver_test::pipeParamFile(3), c.perPipe);
        for (int place : c.registrationPlaces)
            files.writeFile(driver_test::registrationPath(place), driver_test::registrationText({100, 200, 300}));
        HostPipe pipe(3);
        MemGuard guard(c.registrationPlaces.empty());  // the registration arrays stay with the process
        log.clear();
        ASSERT_EQ(pipe.createPipe(), c.result);
        EXPECT_EQ(log.count(c.kind, c.function, c.line), 1u);
        if (c.result == 0) {
            EXPECT_NE(pipe.instance()->dspCfgTables.paramTables[PARAM_TRAFFIC], nullptr);
            EXPECT_EQ(pipe.instance()->registerFlag, c.registerFlag);
            if (!c.registrationPlaces.empty()) { EXPECT_EQ(log.count(LogKind::Error), 0u); }
            EXPECT_EQ(pipe.remove(), 0);
            continue;
        }
        EXPECT_EQ(pipe.ops()->ispXHndl, nullptr);
        EXPECT_EQ(pipe.ops()->hIsp, nullptr);
        EXPECT_EQ(pipe.ops()->ispParam, nullptr);
        ASSERT_NE(pipe.ops()->OpStart, nullptr);
        EXPECT_EQ(pipe.start(), -1);  // the message: EverySlotRefusesMissingPointers
    }
}

TEST_F(DriverLifecycle, RefusedCreations) {
    HostPipe pipe(1);
    pipe.create.ispNum = ISP_MAX_DEV_NUM + 1;  // refused before anything is allocated or written
    const DRV_ispOpsParams before = *pipe.ops();
    MemGuard guard;
    EXPECT_EQ(pipe.createPipe(), -1);
    EXPECT_EQ(guard.allocCalls(), 0u);
    EXPECT_EQ(std::memcmp(&before, pipe.ops(), sizeof(before)), 0);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_dspIspCreateX", "ispNum 7 is above ISP_MAX_DEV_NUM 6!\n"));

    // Null arguments are refused after the first line.
    log.clear();
    EXPECT_EQ(DRV_dspIspCreateX(nullptr, pipe.ops()), -1);
    EXPECT_EQ(DRV_dspIspCreateX(&pipe.create, nullptr), -1);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].text, "[DSP_DRV] DRV_dspIspCreateX In successful!\n");
    EXPECT_TRUE(isDriverLine(lines[1], LogKind::Error, "DRV_dspIspCreateX", "Input NULL POINT pCreateParams!\n"));
    EXPECT_EQ(lines[2].text, lines[0].text);
    EXPECT_TRUE(isDriverLine(lines[3], LogKind::Error, "DRV_dspIspCreateX", "Input NULL POINT ispOps!\n"));
}

// ---- Flag protocol ----

TEST_F(DriverLifecycle, OperationsSendTheFusionFlag) {
    using Operation = Int32 (HostPipe::*)();
    const Operation start = &HostPipe::start, stop = &HostPipe::stop, reload = &HostPipe::reload,
                    gain = &HostPipe::gainFlags;
    struct Case {
        std::vector<Operation> operations;
        Uint32 quickStart;
        std::vector<Uint32> flags;
    };
    const Case cases[] = {{{start}, 0, {1}}, {{stop}, 0, {0}},  {{reload}, 0, {1}},
                          {{gain}, 0, {1}},  {{gain}, 1, {}},   {{stop, start, stop}, 0, {0, 1, 0}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        HostPipe pipe(1);
        ASSERT_EQ(pipe.createPipe(), 0);
        pipe.instance()->quickStart = c.quickStart;
        for (Operation operation : c.operations) EXPECT_EQ((pipe.*operation)(), 0);
        ASSERT_EQ(pipe.flags.size(), c.flags.size());
        for (size_t i = 0; i < pipe.flags.size(); ++i) {
            EXPECT_EQ(pipe.flags[i].cmdType, ISP_SET_FUSION);
            EXPECT_EQ(pipe.flags[i].flag, c.flags[i]);
            EXPECT_EQ(pipe.flags[i].privData, static_cast<Ptr>(&pipe));
            EXPECT_TRUE(pipe.flags[i].reservedZero);
        }
        EXPECT_EQ(pipe.remove(), 0);
    }
    // Without a flag callback every operation still succeeds.
    HostPipe quiet(1, /*withFlagCallback=*/false);
    ASSERT_EQ(quiet.createPipe(), 0);
    EXPECT_EQ(quiet.start() | quiet.reload() | quiet.gainFlags() | quiet.stop(), 0);
    EXPECT_EQ(quiet.remove(), 0);
}

// ---- Missing pointers, slot by slot ----

// Each slot refuses a missing table and a table without an instance (with -1
// and the pointer's name), and a null record argument by its name. Start logs
// its first line before it looks at its argument.
TEST_F(DriverLifecycle, EverySlotRefusesMissingPointers) {
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_ispOpsParams empty;
    std::memset(&empty, 0, sizeof(empty));
    static DRV_ispModuleResults results;
    static DRV_RefPipeParams ref = {{}, &ref, 0, {}};
    static DRV_ispCmdParam cmd;
    // `nullRecord`: the call passes null for its record argument.
    using Slot = Int32 (*)(DRV_ispOpsParams* slots, DRV_ispOpsParams* target, bool nullRecord);
    struct Case {
        const char* function;
        Slot call;
        const char* record = nullptr;  // the record argument's name; null: none
        Int32 resultWithoutInstance = -1;
        const char* missingInstanceReporter = nullptr;  // null: the function itself
        const char* firstLine = nullptr;                // logged before the table is looked at
    };
    const Case cases[] = {
        {"DRV_ispStartX", [](auto* s, auto* t, bool) { return s->OpStart(t); }, nullptr, -1, nullptr,
         "[DSP_DRV] start in successful\n"},
        {"DRV_ispStopX", [](auto* s, auto* t, bool) { return s->OpStop(t); }},
        // Reload's missing instance is reported by the flag function, and its result stays 0.
        {"DRV_ispReloadCfg", [](auto* s, auto* t, bool) { return s->OpReloadCfg(t); }, nullptr, 0,
         "DRV_ispControlModuleFlag"},
        {"DRV_ispInterGainFlagsX", [](auto* s, auto* t, bool) { return s->OpInterGainFlags(t); }},
        {"DRV_ispDeleteX", [](auto* s, auto* t, bool) { return s->OpDelete(t); }},
        {"DRV_ispSetModuleResultsX",
         [](auto* s, auto* t, bool n) { return s->OpSetModuleResults(t, n ? nullptr : &results); }, "moduleResults"},
        {"DRV_ispSetRefPipeParamsX",
         [](auto* s, auto* t, bool n) { return s->OpSetRefPipeParams(t, n ? nullptr : &ref); }, "refPipeParams"},
        {"DRV_ispRefreshCfgX",
         [](auto* s, auto* t, bool) {
             Int32 changed = 9;
             const Int32 r = s->OpRefreshCfg(t, &changed);
             EXPECT_EQ(changed, 9);
             return r;
         }},
        {"DRV_ispSetFusionParam", [](auto* s, auto* t, bool) { return s->OpSetFusion(t); }},
        {"DRV_ispSetDbgDspParam",
         [](auto* s, auto* t, bool n) { return s->OpSetDbgDspParam(t, n ? nullptr : &cmd, 0); }, "cmd_param"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.function);
        log.clear();
        EXPECT_EQ(c.call(pipe.ops(), nullptr, false), -1);
        ASSERT_EQ(log.lines().size(), c.firstLine ? 2u : 1u);
        if (c.firstLine != nullptr) { EXPECT_EQ(log.texts().front(), c.firstLine); }
        EXPECT_TRUE(isDriverLine(log.lines().back(), LogKind::Error, c.function, "Input NULL POINT ispOps!\n"));
        log.clear();
        EXPECT_EQ(c.call(pipe.ops(), &empty, false), c.resultWithoutInstance);
        EXPECT_TRUE(log.has(LogKind::Error, c.missingInstanceReporter ? c.missingInstanceReporter : c.function,
                            "Input NULL POINT ispOps->ispXHndl!\n"));
        if (c.record == nullptr) continue;
        EXPECT_EQ(c.call(pipe.ops(), pipe.ops(), true), -1);
        EXPECT_TRUE(log.has(LogKind::Error, c.function, std::string("Input NULL POINT ") + c.record + "!\n"));
    }
    EXPECT_TRUE(pipe.flags.empty());
    EXPECT_TRUE(dsp.sets().empty());
    EXPECT_EQ(pipe.remove(), 0);
}

// ---- Module results, reference pipe, instance lookup ----

TEST_F(DriverLifecycle, RecordsAreCopiedWholeAndTheInstanceIsLookedUp) {
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    DRV_ispModuleResults results;
    for (size_t i = 0; i < sizeof(results); ++i) reinterpret_cast<unsigned char*>(&results)[i] = (i * 7 + 3) & 0xFF;
    EXPECT_EQ(pipe.moduleResults(&results), 0);
    EXPECT_EQ(std::memcmp(&pipe.instance()->moduleResults, &results, sizeof(results)), 0);

    DRV_RefPipeParams ref;
    for (size_t i = 0; i < sizeof(ref); ++i) reinterpret_cast<unsigned char*>(&ref)[i] = (i * 5 + 1) & 0xFF;
    ref.refXHndl = &ref;
    EXPECT_EQ(pipe.refPipe(&ref), 0);
    DRV_RefPipeParams noInstance = ref;
    noInstance.refXHndl = nullptr;
    noInstance.fusionType = 1;
    EXPECT_EQ(pipe.refPipe(&noInstance), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispSetRefPipeParamsX", "Input NULL POINT refPipeParams->refXHndl!\n"));
    EXPECT_EQ(std::memcmp(&pipe.instance()->refPipeParams, &ref, sizeof(ref)), 0);

    Ptr handle = nullptr;
    EXPECT_EQ(DRV_ispGetXHndlX(pipe.ops(), &handle), 0);
    EXPECT_EQ(handle, static_cast<Ptr>(pipe.instance()));
    EXPECT_EQ(DRV_ispGetXHndlX(nullptr, &handle), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispGetXHndlX", "Input NULL POINT ispOps!\n"));
    EXPECT_EQ(DRV_ispGetXHndlX(pipe.ops(), nullptr), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispGetXHndlX", "Input NULL POINT xHndl!\n"));
    EXPECT_EQ(pipe.remove(), 0);
}

// One pipe through a sequence of run states. A refresh without a flag variable
// leaves the change for the next one to report; a failed selection changes
// nothing; the night tables are not chosen through the refresh (its scene mode
// stays 0 whatever runParam.sceneMode says).
TEST_F(DriverLifecycle, RefreshChoosesTheTableAndReportsEachChangeOnce) {
    ParamFileBuilder file;
    for (int type : {PARAM_MULTICOLOR, PARAM_BLACKWHITE, PARAM_MULTICOLOR_NIGHT, PARAM_TRAFFIC}) file.addTable(type);
    sandbox.writeFile(driver_test::kCommonParamFile, file.build());
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    CFG_DspIspCfgTables* tables = &pipe.instance()->dspCfgTables;
    struct Step {
        Int32 dncMode;
        Uint32 imageScene, sceneMode;
        bool withFlag;
        Int32 result;
        Int32 changed;  // 7: left as it was
        PARAM_TABLE_TYPE table;
    };
    const Step steps[] = {
        {1, 0, 2, true, 0, 0, PARAM_MULTICOLOR},  // the first refresh lands on row 0: no change
        {1, 0, 0, true, 0, 0, PARAM_MULTICOLOR},
        {0, 0, 0, true, 0, 1, PARAM_BLACKWHITE},
        {0, 0, 0, true, 0, 0, PARAM_BLACKWHITE},
        {1, 1, 0, true, 0, 1, PARAM_TRAFFIC},
        {0, 0, 0, false, 0, 7, PARAM_BLACKWHITE},
        {0, 0, 0, true, 0, 1, PARAM_BLACKWHITE},
        {1, 3, 0, true, -1, 7, PARAM_BLACKWHITE},  // no scene block: no row matches
    };
    for (size_t k = 0; k < std::size(steps); ++k) {
        const Step& s = steps[k];
        pipe.run().dncMode = s.dncMode;
        pipe.run().imageScene = s.imageScene;
        pipe.run().sceneMode = s.sceneMode;
        log.clear();
        Int32 changed = 7;
        EXPECT_EQ(pipe.refresh(s.withFlag ? &changed : nullptr), s.result) << k;
        EXPECT_EQ(changed, s.changed) << k;
        EXPECT_EQ(tables->curTable, tables->paramTables[s.table]) << k;
        EXPECT_EQ(tables->curTableType, static_cast<Uint32>(s.table)) << k;
        EXPECT_EQ(log.count(LogKind::Error, "DRV_ispRefreshCfgX", "DRV_ispChooseCurParam Failed!\n"),
                  s.result == 0 ? 0u : 1u);
    }
    EXPECT_NE(tables->paramTables[PARAM_MULTICOLOR_NIGHT], nullptr);
    EXPECT_EQ(pipe.remove(), 0);
}

}  // namespace

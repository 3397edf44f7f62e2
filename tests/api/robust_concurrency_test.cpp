// The threading contract of the library, exercised: the exported calculations,
// debug setters, prints, message functions and file loaders run on several
// threads at once, each thread on its own records and transport handles, and
// separate unlinked pipes run their own operations in parallel. Every result
// must equal the one computed on a single thread beforehand. Built also as a
// program of its own under ThreadSanitizer (scripts/test.sh tsan), which
// reports any data race inside the library.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "api/driver_host.h"
#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

namespace {

using ispdsp_test::ParamFileBuilder;

constexpr int kThreads = 4;
constexpr int kIterations = 150;

// ---- Host callbacks that may run on any thread ----

// Log lines, counted; every one must carry the driver's prefix.
std::atomic<uint64_t> g_logLines{0};
std::atomic<uint64_t> g_badLogLines{0};
void countingSink(void*, int32_t, int32_t, const char* text) {
    g_logLines.fetch_add(1, std::memory_order_relaxed);
    if (std::strncmp(text, "[DSP_DRV] ", 10) != 0) g_badLogLines.fetch_add(1, std::memory_order_relaxed);
}

// The DSP callbacks keep their books per calling thread: a message must reach
// the callback on the thread that sent it.
thread_local uint64_t t_sets = 0;
thread_local uint64_t t_gets = 0;
thread_local uint32_t t_lastType = 0xFFFFFFFFu;
Int32 onSet(DRV_dspIspCfgOpsCtrl*, Ptr message) {
    ++t_sets;
    t_lastType = static_cast<const DSP_AEW_CFG_S*>(message)->u32Type;
    return 0;
}
Int32 onGet(DRV_dspIspCfgOpsCtrl*, Ptr message) {
    ++t_gets;
    std::memset(static_cast<DSP_AEW_CFG_S*>(message)->dspArgs.resv, 0x11, 16);
    return 0;
}

// The installed log sink for the life of the fixture, restored at the end.
class SinkSwap {
public:
    SinkSwap() {
        ispdsp_host_get_log_sink(&previous_, &previousCtx_);
        ispdsp_host_set_log_sink(countingSink, nullptr);
    }
    ~SinkSwap() { ispdsp_host_set_log_sink(previous_, previousCtx_); }

private:
    ispdsp_host_log_sink previous_ = nullptr;
    void* previousCtx_ = nullptr;
};

// ---- One thread's records: inputs and everything computed from them ----

struct StageOutputs {
    DSP_DlaeV101 dlae;
    DSP_DlcfaV101 dlcfa;
    DSP_Fg2cV102 fg2c;
    DSP_LleV203 lle;
    DSP_LsmV112 lsm;
    DSP_SadeV113 sade;
    DSP_Sbm3dV113 sbm3d;
    DSP_Yuv2yuvV100 yuv2yuv;
    DSP_LaeV209 lae;
    DSP_Y2dV5118 y2d;
    DSP_YlwdrV102 ylwdr;
    DSP_FusionPlateV1001 fusionPlate;
};

struct FusionOutputs {
    DSP_FusionV2722 colour;
    DSP_FusionV2722 mono;
    DSP_FusionV2722 both;
    Uint8 curves[3][FUSION_NIR_POINTS];
};

struct Work {
    explicit Work(int index) : table(driver_test::fusionTable(static_cast<uint32_t>(index) * 5 + 1)) {
        std::memset(&gain, 0, sizeof gain);
        gain.gainStartIndex = index % 15;
        gain.gainEndIndex = index % 15 + 1;
        gain.interCoff = 0.25f * static_cast<float>(index % 4);
    }
    CFG_DspIspCfgParam table;
    DRV_gainInterParam gain;
};

void clearFusion(FusionOutputs& out) {
    std::memset(&out, 0, sizeof out);
    out.colour.fusionParam.w_nir = out.curves[0];
    out.mono.fusionParam.w_nir = out.curves[1];
    out.both.fusionParam.w_nir = out.curves[2];
}

// Fusion: this thread's gain blend of its table, the same table at the
// mirrored gain, and their colour/mono combination.
Int32 calculateFusion(const Work& work, FusionOutputs& out) {
    auto in = std::make_unique<DSP_FusionCalculateParam>();
    std::memset(in.get(), 0, sizeof *in);
    std::memcpy(in->fusionParam, work.table.ispFusionParam, sizeof in->fusionParam);
    DRV_gainInterParam gain = work.gain;
    in->gainInterParam = &gain;
    in->pSwitch = 2;
    clearFusion(out);
    Int32 rc = DRV_dspCalculateFusion(in.get(), &out.colour);
    gain.gainStartIndex = 15 - work.gain.gainStartIndex;
    gain.gainEndIndex = 15 - work.gain.gainEndIndex;
    rc |= DRV_dspCalculateFusion(in.get(), &out.mono);
    DSP_DoubleFusionCalculateParam pair{0, &out.colour, &out.mono};
    rc |= DRV_dspDoubleCalculateFusion(&pair, &out.both);
    return rc;
}

// The payloads of the eleven stages and of the fusion plate from this thread's table.
Int32 calculateStages(const CFG_DspIspCfgParam& table, StageOutputs& out) {
    std::memset(&out, 0, sizeof out);
    Int32 rc = 0;
#define CALC(Name, field, member, result)                      \
    {                                                          \
        DSP_##Name##CalculateParam in;                         \
        std::memset(&in, 0, sizeof in);                        \
        std::memcpy(&in.field, &table.member, sizeof in.field); \
        rc |= DRV_dspCalculate##Name(&in, &out.result);        \
    }
    CALC(Dlae, dlaeParam, ispDlaeParam, dlae)
    CALC(Dlcfa, dlcfaParam, ispDlcfaParam, dlcfa)
    CALC(Fg2c, fg2cParam, ispFg2cParam, fg2c)
    CALC(Lle, lleParam, ispLleParam, lle)
    CALC(Lsm, lsmParam, ispLsmParam, lsm)
    CALC(Sade, sadeParam, ispSadeParam, sade)
    CALC(Sbm3d, sbm3dParam, ispSbm3dParam, sbm3d)
    CALC(Yuv2yuv, yuv2yuvParam, ispYuv2yuvParam, yuv2yuv)
    CALC(Lae, laeParam, ispLaeParam, lae)
    CALC(Y2d, y2dParam, ispY2dParam, y2d)
    CALC(Ylwdr, ylwdrParam, ispYlwdrParam, ylwdr)
    CALC(FusionPlate, fusionPlateParam, ispFusionPlateParam, fusionPlate)
#undef CALC
    return rc;
}

// Sends every payload through this thread's transport handle; returns the
// number of messages the callbacks saw on this thread.
uint64_t sendAll(StageOutputs& stages, FusionOutputs& fusion, DSP_IrParam& ir, DRV_dspIspHandle& handle) {
    const uint64_t before = t_sets + t_gets;
    DRV_dspOpSetDlae(&stages.dlae, &handle);
    DRV_dspOpSetDlcfa(&stages.dlcfa, &handle);
    DRV_dspOpSetFg2c(&stages.fg2c, &handle);
    DRV_dspOpSetLle(&stages.lle, &handle);
    DRV_dspOpSetLsm(&stages.lsm, &handle);
    DRV_dspOpSetSade(&stages.sade, &handle);
    DRV_dspOpSetSbm3d(&stages.sbm3d, &handle);
    DRV_dspOpSetYuv2yuv(&stages.yuv2yuv, &handle);
    DRV_dspOpSetLae(&stages.lae, &handle);
    DRV_dspOpSetY2d(&stages.y2d, &handle);
    DRV_dspOpSetYlwdr(&stages.ylwdr, &handle);
    DRV_dspOpSetFusionPlate(&stages.fusionPlate, &handle);
    DRV_dspOpSetFSSWITCH(&fusion.colour, &handle);
    DRV_dspOpSetFusion(&fusion.both, &handle);
    DRV_dspOpSetIr(&ir, &handle);
    DRV_dspOpSetCal(&ir, &handle);
    DSP_FusionV2722 readBack = fusion.colour;
    DRV_dspOpGetFusion(&readBack, &handle);
    return t_sets + t_gets - before;
}

// The debug setters and prints on this thread's own stored records.
Int32 tuneAndPrint(CFG_DspIspCfgParam& table, const DRV_gainInterParam& gain, int index) {
    DRV_gainInterParam g = gain;
    Int32 rc = 0;
    for (Int32 id = 0; id < 26; ++id) rc |= DRV_dspdbgFusion(table.ispFusionParam, &g, id, index * 10 + id);
    rc |= DRV_dspdbgFusionPrint(table.ispFusionParam, &g);
    rc |= DRV_dspdbgDlae(&table.ispDlaeParam, 0, 40 + index);
    rc |= DRV_dspdbgDlaePrint(&table.ispDlaeParam);
    rc |= DRV_dspdbgLae(&table.ispLaeParam, 1, index);
    rc |= DRV_dspdbgLaePrint(&table.ispLaeParam);
    rc |= DRV_dspdbgYlwdr(&table.ispYlwdrParam, 2, 7 * index);
    rc |= DRV_dspdbgYlwdrPrint(&table.ispYlwdrParam);
    rc |= DRV_dspdbgFusionPlate(&table.ispFusionPlateParam, 0, 3 * index);
    rc |= DRV_dspdbgFusionPlatePrint(&table.ispFusionPlateParam);
    rc |= DRV_dspdbgFusionNir(table.ispFusionParam, &g, 0, 0);  // every thread reads /tmp/nir.txt
    return rc;
}

std::string nirCurveText() {
    std::string text;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        text += std::to_string((i * 5) % 256);
        text += i == FUSION_NIR_POINTS - 1 ? "\n" : (i % 13 == 12 ? ",\n" : ",");
    }
    return text;
}

class RobustConcurrency : public testing::Test {
protected:
    void SetUp() override { sandbox.writeFile("/tmp/nir.txt", nirCurveText()); }

    // Runs body(index) on kThreads threads at once (they start together).
    template <class Body>
    static void runThreads(Body body) {
        std::atomic<int> ready{0};
        std::vector<std::thread> threads;
        for (int index = 0; index < kThreads; ++index) {
            threads.emplace_back([&, index] {
                ready.fetch_add(1);
                while (ready.load() < kThreads) std::this_thread::yield();
                body(index);
            });
        }
        for (std::thread& thread : threads) thread.join();
    }

    ispdsp_test::Sandbox sandbox;
    SinkSwap sink;
};

TEST_F(RobustConcurrency, CalculationsSettersAndMessagesOnSeparateRecords) {
    // Single-threaded references: what each thread must compute, every time.
    std::vector<Work> works;
    std::vector<FusionOutputs> wantFusion(kThreads);
    std::vector<StageOutputs> wantStages(kThreads);
    std::vector<CFG_DspIspCfgParam> wantTuned;
    for (int i = 0; i < kThreads; ++i) {
        works.emplace_back(i);
        ASSERT_EQ(calculateFusion(works[i], wantFusion[i]), 0);
        ASSERT_EQ(calculateStages(works[i].table, wantStages[i]), 0);
        CFG_DspIspCfgParam tuned;
        std::memcpy(&tuned, &works[i].table, sizeof tuned);  // padding included: compared bytewise
        ASSERT_EQ(tuneAndPrint(tuned, works[i].gain, i), 0);
        wantTuned.push_back(tuned);
    }

    struct Result {
        int fusionMismatches = 0;
        int stageMismatches = 0;
        int tuneMismatches = 0;
        int failures = 0;
        uint64_t messages = 0;
        uint32_t lastType = 0;
    };
    std::vector<Result> results(kThreads);
    runThreads([&](int index) {
        Result& r = results[index];
        const Work& work = works[index];
        DRV_dspIspHandle handle{};
        handle.nId = static_cast<Uint32>(index);
        handle.dspIspCfgOps.OpSetDspConfig = onSet;
        handle.dspIspCfgOps.OpGetDspConfig = onGet;
        DSP_IrParam ir{};
        ir.zoomIndex = index;
        std::snprintf(ir.cfg_path, sizeof ir.cfg_path, "/var/tmp/calibration-%d.txt", index);
        auto fusion = std::make_unique<FusionOutputs>();
        auto stages = std::make_unique<StageOutputs>();
        auto tuned = std::make_unique<CFG_DspIspCfgParam>();
        for (int iteration = 0; iteration < kIterations; ++iteration) {
            r.failures += calculateFusion(work, *fusion) != 0;
            // The curve pointers differ per run; compare scalars and curve bytes.
            const FusionOutputs& want = wantFusion[index];
            r.fusionMismatches += std::memcmp(fusion->curves, want.curves, sizeof want.curves) != 0;
            r.fusionMismatches += fusion->both.pSwtich != want.both.pSwtich ||
                                  std::memcmp(&fusion->both.fusionParam, &want.both.fusionParam,
                                              offsetof(FUSION_PARAM_V2_7_22, w_nir)) != 0;
            r.failures += calculateStages(work.table, *stages) != 0;
            r.stageMismatches += std::memcmp(stages.get(), &wantStages[index], sizeof(StageOutputs)) != 0;
            std::memcpy(tuned.get(), &work.table, sizeof(CFG_DspIspCfgParam));
            r.failures += tuneAndPrint(*tuned, work.gain, index) != 0;
            r.tuneMismatches += std::memcmp(tuned.get(), &wantTuned[index], sizeof(CFG_DspIspCfgParam)) != 0;
            r.messages += sendAll(*stages, *fusion, ir, handle);
        }
        r.lastType = t_lastType;
    });

    for (int i = 0; i < kThreads; ++i) {
        SCOPED_TRACE("thread " + std::to_string(i));
        EXPECT_EQ(results[i].failures, 0);
        EXPECT_EQ(results[i].fusionMismatches, 0);
        EXPECT_EQ(results[i].stageMismatches, 0);
        EXPECT_EQ(results[i].tuneMismatches, 0);
        EXPECT_EQ(results[i].messages, 17u * kIterations) << "every message reaches the callback on its own thread";
        EXPECT_EQ(results[i].lastType, static_cast<uint32_t>(DSP_AEW_CFG_TYPE_CAL));
    }
    EXPECT_GT(g_logLines.load(), 0u);
    EXPECT_EQ(g_badLogLines.load(), 0u);
}

TEST_F(RobustConcurrency, ParameterFilesLoadAndSelectOnSeparateRecords) {
    sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                         .addTable(PARAM_MULTICOLOR)
                                                         .addTable(PARAM_BLACKWHITE)
                                                         .addTable(PARAM_TRAFFIC)
                                                         .addTable(PARAM_HDR_IVS)
                                                         .build());
    std::vector<int> failures(kThreads, 0);
    runThreads([&](int index) {
        for (int iteration = 0; iteration < kIterations / 5; ++iteration) {
            CFG_IspParamTable header{};
            Ptr buffer = nullptr;
            if (DRV_ispCfgLoad(driver_test::kCommonParamFile, ISPDSP_PARAM_FILE_VERSION, &header, &buffer) != 0) {
                ++failures[index];
                continue;
            }
            CFG_DspIspCfgTables tables{};
            failures[index] += DRV_ispCommonTable2DspTable(&header, buffer, tables.paramTables) != 0;
            CFG_ispParamCondition condition{};
            condition.realDncMode = 1;
            condition.imageScene = (index % 2) ? 1 : 4;  // traffic, or IVS (its HDR table exists)
            condition.hdrMode = (index % 2) ? 0 : 5;
            failures[index] += DRV_ispChooseCurParamDSP(&condition, &tables) != 0;
            const Uint32 want = (index % 2) ? PARAM_TRAFFIC : PARAM_HDR_IVS;
            failures[index] += tables.curTableType != want;
            OSA_memUFree(buffer);
        }
    });
    for (int i = 0; i < kThreads; ++i) EXPECT_EQ(failures[i], 0) << "thread " << i;
}

// Unlinked pipes, created one after the other, each driven by its own thread:
// refresh, module results, gain flags, console commands, start and stop.
TEST_F(RobustConcurrency, SeparatePipesRunTheirOwnOperationsInParallel) {
    sandbox.writeFile(driver_test::kCommonParamFile,
                      ParamFileBuilder().addTable(PARAM_MULTICOLOR).addTable(PARAM_BLACKWHITE).build());
    std::vector<std::unique_ptr<driver_test::HostPipe>> pipes;
    for (int i = 0; i < kThreads; ++i) {
        pipes.push_back(std::make_unique<driver_test::HostPipe>(static_cast<Uint32>(i)));
        pipes[i]->create.dspOps.OpSetDspConfig = onSet;
        pipes[i]->create.dspOps.OpGetDspConfig = onGet;
        ASSERT_EQ(pipes[i]->createPipe(), 0);  // creation is never concurrent
    }
    std::vector<int> failures(kThreads, 0);
    runThreads([&](int index) {
        driver_test::HostPipe& pipe = *pipes[index];
        for (int iteration = 0; iteration < kIterations / 5; ++iteration) {
            Int32 changed = 0;
            pipe.run().dncMode = iteration % 2;
            pipe.run().gainInterParam.gainStartIndex = (index + iteration) % 16;
            pipe.run().gainInterParam.gainEndIndex = (index + iteration) % 16;
            failures[index] += pipe.start() != 0;
            failures[index] += pipe.refresh(&changed) != 0;
            failures[index] += pipe.publishSwitch(static_cast<Uint8>(iteration % 3)) != 0;
            failures[index] += pipe.gainFlags() != 0;
            driver_test::ConsoleArgs tune{"runParam", "1", "ep_delta", "77", "uv_w", "9", "w_nir", "0"};
            failures[index] += pipe.console(&tune.record, index % 2) != 0;
            failures[index] += pipe.stop() != 0;
        }
    });
    for (int i = 0; i < kThreads; ++i) {
        EXPECT_EQ(failures[i], 0) << "pipe " << i;
        // Each pipe's flags (start, gain flags, three console changes, stop)
        // reached its own callback record.
        EXPECT_EQ(pipes[i]->flags.size(), static_cast<size_t>(kIterations / 5) * 6) << "pipe " << i;
        EXPECT_EQ(pipes[i]->remove(), 0);
    }
}

}  // namespace

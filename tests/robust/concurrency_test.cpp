// The threading contract of docs/threading.md, exercised the way it allows:
// the reentrant calculations, debug setters, prints, message functions and
// file loaders on several threads at once (each thread on its own records and
// transport handle), unlinked pipes each on its own thread, and the fusion
// operations of two pipes serialised by a host mutex. Every result must equal
// the single-threaded one. Under ThreadSanitizer (scripts/test.sh tsan) these
// must be clean; DISABLED_FusionOfTwoPipesOverlapping is the negative case
// that the document forbids, run there on its own and expected to be reported.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "api/driver_host.h"
#include "ispdsp/ispdsp.h"
#include "support/nir_curve_text.h"
#include "support/stage_outputs.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::ParamFileBuilder;

constexpr int kThreads = 4;
constexpr int kIterations = 150;

// The DSP callbacks keep their books per calling thread: a message must reach
// the callback on the thread that sent it.
thread_local uint64_t t_messages = 0;
thread_local uint32_t t_lastType = 0xFFFFFFFFu;
Int32 onSet(DRV_dspIspCfgOpsCtrl*, Ptr message) {
    ++t_messages;
    t_lastType = static_cast<const DSP_AEW_CFG_S*>(message)->u32Type;
    return 0;
}
Int32 onGet(DRV_dspIspCfgOpsCtrl*, Ptr message) {
    ++t_messages;
    std::memset(static_cast<DSP_AEW_CFG_S*>(message)->dspArgs.resv, 0x11, 16);
    return 0;
}

// Runs body(index) on kThreads threads that start together.
template <class Body>
void runThreads(Body body, int threads = kThreads) {
    std::atomic<int> ready{0};
    std::vector<std::thread> pool;
    for (int index = 0; index < threads; ++index) {
        pool.emplace_back([&, index] {
            ready.fetch_add(1);
            while (ready.load() < threads) std::this_thread::yield();
            body(index);
        });
    }
    for (std::thread& thread : pool) thread.join();
}

// Everything one thread computes from its table: every calculation (a fusion
// blend at two gains and their combination included) and the tuned table.
struct Outputs {
    ispdsp_test::StageOutputs calculated;
    CFG_DspIspCfgParam tuned;
    Int32 failures;
};

// Calculations and debug setters/prints, compared bytewise except the curve pointers.
void compute(const CFG_DspIspCfgParam& table, int index, Outputs& out) {
    std::memset(&out, 0, sizeof out);
    const DRV_gainInterParam colour = ispdsp_test::gainBetween(index % 15, index % 15 + 1, 0.25f * (index % 4));
    DRV_gainInterParam mono = ispdsp_test::gainBetween(15 - index % 15, 14 - index % 15, 0.25f * (index % 4));
    ispdsp_test::calculateStages(table, colour, mono, 2, out.calculated);
    out.failures = out.calculated.stageFailures + out.calculated.fusionFailures;
    CFG_DspIspCfgParam& t = out.tuned;
    std::memcpy(&t, &table, sizeof t);
    for (Int32 id = 0; id < 26; ++id) out.failures += DRV_dspdbgFusion(t.ispFusionParam, &mono, id, index * 10 + id) != 0;
    const Int32 rc = DRV_dspdbgFusionPrint(t.ispFusionParam, &mono) | DRV_dspdbgDlae(&t.ispDlaeParam, 0, 40 + index) |
                     DRV_dspdbgDlaePrint(&t.ispDlaeParam) | DRV_dspdbgLae(&t.ispLaeParam, 1, index) |
                     DRV_dspdbgLaePrint(&t.ispLaeParam) | DRV_dspdbgYlwdr(&t.ispYlwdrParam, 2, 7 * index) |
                     DRV_dspdbgYlwdrPrint(&t.ispYlwdrParam) | DRV_dspdbgFusionPlate(&t.ispFusionPlateParam, 0, 3 * index) |
                     DRV_dspdbgFusionPlatePrint(&t.ispFusionPlateParam) |
                     DRV_dspdbgFusionNir(t.ispFusionParam, &mono, 0, 0);  // every thread reads /tmp/nir.txt
    out.failures += rc != 0;
}

bool sameOutputs(const Outputs& a, const Outputs& b) {
    const ispdsp_test::StageOutputs &x = a.calculated, &y = b.calculated;
    return std::memcmp(&x, &y, offsetof(ispdsp_test::StageOutputs, fusion)) == 0 &&
           std::memcmp(x.curves, y.curves, sizeof x.curves) == 0 && std::memcmp(&a.tuned, &b.tuned, sizeof a.tuned) == 0 &&
           a.failures == 0 && b.failures == 0 &&
           std::memcmp(&x.fusion[2].fusionParam, &y.fusion[2].fusionParam, offsetof(FUSION_PARAM_V2_7_22, w_nir)) == 0;
}

// Sends every payload through this thread's handle; the messages the callbacks saw here.
uint64_t sendAll(ispdsp_test::StageOutputs& o, DSP_IrParam& ir, DRV_dspIspHandle& handle) {
    const uint64_t before = t_messages;
#define SEND(Name, Ver, field) DRV_dspOpSet##Name(&o.field, &handle);
    ISPDSP_TEST_STAGES(SEND)
#undef SEND
    DRV_dspOpSetFSSWITCH(&o.fusion[0], &handle), DRV_dspOpSetFusion(&o.fusion[2], &handle);
    DRV_dspOpSetIr(&ir, &handle), DRV_dspOpSetCal(&ir, &handle);
    DSP_FusionV2722 readBack = o.fusion[0];
    DRV_dspOpGetFusion(&readBack, &handle);
    return t_messages - before;
}

// Loads the parameter file into this thread's own header and buffer and
// selects the traffic table (odd threads) or the HDR IVS one; false on any failure.
bool loadAndSelect(int index) {
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    CFG_DspIspCfgTables tables{};
    CFG_ispParamCondition condition{};
    condition.realDncMode = 1;
    condition.imageScene = (index % 2) ? 1 : 4;  // traffic, or IVS (its HDR table exists)
    condition.hdrMode = (index % 2) ? 0 : 5;
    const bool ok = DRV_ispCfgLoad(driver_test::kCommonParamFile, ISPDSP_PARAM_FILE_VERSION, &header, &buffer) == 0 &&
                    DRV_ispCommonTable2DspTable(&header, buffer, tables.paramTables) == 0 &&
                    DRV_ispChooseCurParamDSP(&condition, &tables) == 0 &&
                    tables.curTableType == Uint32((index % 2) ? PARAM_TRAFFIC : PARAM_HDR_IVS);
    OSA_memUFree(buffer);
    return ok;
}

class RobustConcurrency : public testing::Test {
protected:
    void SetUp() override {
        sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());
        sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                             .addTable(PARAM_MULTICOLOR)
                                                             .addTable(PARAM_BLACKWHITE)
                                                             .addTable(PARAM_TRAFFIC)
                                                             .addTable(PARAM_HDR_IVS)
                                                             .build());
        sandbox.writeFile(driver_test::registrationPath(1), driver_test::registrationText({100, 200, 300}));
    }

    // Pipes created one after the other (creation is never concurrent), each
    // its own mono reference, with this file's thread-aware DSP callbacks.
    void createPipes(int count) {
        for (int i = 0; i < count; ++i) {
            pipes.push_back(std::make_unique<HostPipe>(static_cast<Uint32>(i)));
            pipes[i]->create.dspOps.OpSetDspConfig = onSet;
            pipes[i]->create.dspOps.OpGetDspConfig = onGet;
            ASSERT_EQ(pipes[i]->createPipe(), 0);
            ASSERT_EQ(pipes[i]->start(), 0);
            DRV_RefPipeParams ref{};
            ref.refXHndl = pipes[i]->xHndl();
            ref.fusionType = DRV_ISP_FUSION_MONO;
            ASSERT_EQ(pipes[i]->refPipe(&ref), 0);
        }
    }
    void TearDown() override {
        for (auto& pipe : pipes) EXPECT_EQ(pipe->remove(), 0);
    }

    // Frames of two pipes on two threads, zoom moving through the calibrated
    // positions; `serialised` holds a host mutex around each fusion operation.
    void fuseTwoPipes(bool serialised) {
        createPipes(2);
        std::mutex fusionMutex;
        std::vector<int> failures(2, 0);
        runThreads(
            [&](int index) {
                HostPipe& pipe = *pipes[index];
                for (int frame = 0; frame < kIterations; ++frame) {
                    Int32 changed = 0;
                    pipe.run().ptzUpdateParam.zoom = 50 + 100 * ((frame + index) % 4);
                    failures[index] += pipe.publishSwitch(1) != 0 || pipe.refresh(&changed) != 0;
                    std::unique_lock<std::mutex> lock(fusionMutex, std::defer_lock);
                    if (serialised) lock.lock();
                    failures[index] += pipe.fusion() != 0;
                }
            },
            2);
        EXPECT_EQ(failures, std::vector<int>(2, 0));
    }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;  // the prints, off the console
    std::vector<std::unique_ptr<HostPipe>> pipes;
};

// Each thread on its own records: calculations, debug setters and prints,
// messages through its own handle, and every fifth iteration a parameter file
// load and table selection.
TEST_F(RobustConcurrency, CalculationsSettersMessagesAndLoadsOnSeparateRecords) {
    std::vector<CFG_DspIspCfgParam> tables;
    std::vector<std::unique_ptr<Outputs>> want;
    for (int i = 0; i < kThreads; ++i) {
        tables.push_back(driver_test::fusionTable(static_cast<uint32_t>(i) * 5 + 1));
        want.push_back(std::make_unique<Outputs>());
        compute(tables[i], i, *want[i]);
        ASSERT_EQ(want[i]->failures, 0);
    }
    std::vector<int> mismatches(kThreads, 0);
    std::vector<uint64_t> messages(kThreads, 0);
    std::vector<uint32_t> lastType(kThreads, 0);
    runThreads([&](int index) {
        DRV_dspIspHandle handle{};
        handle.nId = static_cast<Uint32>(index);
        handle.dspIspCfgOps.OpSetDspConfig = onSet;
        handle.dspIspCfgOps.OpGetDspConfig = onGet;
        DSP_IrParam ir{};
        ir.zoomIndex = index;
        std::snprintf(ir.cfg_path, sizeof ir.cfg_path, "/var/tmp/calibration-%d.txt", index);
        auto out = std::make_unique<Outputs>();
        for (int iteration = 0; iteration < kIterations; ++iteration) {
            compute(tables[index], index, *out);
            mismatches[index] += !sameOutputs(*out, *want[index]);
            messages[index] += sendAll(out->calculated, ir, handle);
            if (iteration % 5 == 0) mismatches[index] += !loadAndSelect(index);
        }
        lastType[index] = t_lastType;
    });
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
    EXPECT_EQ(messages, std::vector<uint64_t>(kThreads, 17u * kIterations)) << "each message on its own thread";
    EXPECT_EQ(lastType, std::vector<uint32_t>(kThreads, DSP_AEW_CFG_TYPE_CAL));
}

// Unlinked pipes, each driven by its own thread: refresh, module results, gain
// flags, console commands, start and stop.
TEST_F(RobustConcurrency, SeparatePipesRunTheirOwnOperationsInParallel) {
    createPipes(kThreads);
    std::vector<int> failures(kThreads, 0);
    runThreads([&](int index) {
        HostPipe& pipe = *pipes[index];
        for (int iteration = 0; iteration < kIterations / 5; ++iteration) {
            Int32 changed = 0;
            pipe.run().dncMode = iteration % 2;
            pipe.run().gainInterParam.gainStartIndex = (index + iteration) % 16;
            pipe.run().gainInterParam.gainEndIndex = (index + iteration) % 16;
            driver_test::ConsoleArgs tune{{"runParam", "1", "ep_delta", "77", "uv_w", "9", "w_nir", "0"}};
            failures[index] += pipe.start() != 0 || pipe.refresh(&changed) != 0 ||
                               pipe.publishSwitch(static_cast<Uint8>(iteration % 3)) != 0 || pipe.gainFlags() != 0 ||
                               pipe.console(&tune.record, index % 2) != 0 || pipe.stop() != 0;
        }
    });
    EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
    // Each pipe's flags (the first start, then start, gain flags, three console
    // changes and stop per iteration) reached its own callback record.
    for (auto& pipe : pipes) EXPECT_EQ(pipe->flags.size(), 1u + static_cast<size_t>(kIterations / 5) * 6);
}

// The fusion operations of all pipes share the process-wide zoom and
// calibration change values: the host serialises them, here with a mutex.
TEST_F(RobustConcurrency, FusionOfTwoPipesSerialisedByTheHost) { fuseTwoPipes(true); }

// What docs/threading.md forbids: the same frames without the mutex. It may
// pass natively; ThreadSanitizer must report the race on those values
// (ctest robust_concurrency_overlap_tsan expects the report).
TEST_F(RobustConcurrency, DISABLED_FusionOfTwoPipesOverlapping) { fuseTwoPipes(false); }

}  // namespace

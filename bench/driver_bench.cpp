// The per-frame cost of the driver instance against the memory floor:
//   BM_Floor                  what no frame can avoid: copying the sixteen stored
//                             fusion records of a table (16 x 544 bytes) and
//                             clearing three 4168-byte DSP messages
//   BM_FusionOverFloor        the floor and OpSetFusion interleaved: their ratio
//   BM_FusionPerPipeFrame     one pipe's OpSetFusion of a linked colour/mono pair
//   BM_HostFramePerPipeFrame  one pipe's whole frame of host calls
// The pair runs through the host's operation table with DSP callbacks that do
// nothing and the cheap log service of cheap_log.cpp. ns_per_call is CPU time
// per pipe-frame, x_floor that over BM_Floor's (the median of its repetitions).
// BM_Floor is registered first in the first file, so it runs before the others.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "ispdsp/ispdsp.h"

namespace {

using ispdsp_bench::runTimed;

Int32 noOpDspConfig(DRV_dspIspCfgOpsCtrl*, Ptr) { return 0; }

void putU32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}
uint32_t getU32(const std::vector<uint8_t>& bytes, size_t at) {
    return bytes[at] | (bytes[at + 1] << 8) | (bytes[at + 2] << 16) | (static_cast<uint32_t>(bytes[at + 3]) << 24);
}

// A parameter file with one fusion table of the base scene (colour, linear, day).
std::vector<uint8_t> parameterFile() {
    std::vector<uint8_t> file(ISPDSP_PARAM_FILE_OVERHEAD + CFG_TABLE_ENTRY_SIZE, 0);
    const Float32 version = ISPDSP_PARAM_FILE_VERSION;
    uint32_t versionBits = 0;
    std::memcpy(&versionBits, &version, sizeof(versionBits));
    putU32(file, 0, versionBits);
    putU32(file, 104, CFG_TABLE_ENTRY_SIZE);
    putU32(file, ISPDSP_PARAM_FILE_BLOCK_OFFSET, PARAM_MULTICOLOR);
    auto table = std::make_unique<CFG_DspIspCfgParam>();
    std::memset(table.get(), 0, sizeof(*table));
    table->ispFusionFlag = 1;
    for (int step = 0; step < FUSION_GAIN_STEPS; ++step) {
        CFG_DSP_FusionV2722& r = table->ispFusionParam[step];
        r.ep_delta = static_cast<Uint16>(100 + 50 * step);
        r.fusion_hf_ratio = 200;
        r.hf_zoom = static_cast<Uint16>(300 + 20 * step);
        r.dark_inner = static_cast<Uint16>(1000 * step);
        r.high_lum_thr = static_cast<Int16>(-20 - step);
        r.uv_diff_thr = r.uv_sat_limit = r.uv_rsmooth = r.uv_gsmooth = r.uv_bsmooth = 8;
        for (int i = 0; i < FUSION_NIR_POINTS; ++i) r.w_nir[i] = static_cast<Uint8>((i + 7 * step) & 0xFF);
    }
    std::memcpy(file.data() + ISPDSP_PARAM_FILE_BLOCK_OFFSET + 4, table.get(), sizeof(*table));
    uint32_t checksum = 0;
    for (size_t i = 0; i < 26; ++i) checksum ^= getU32(file, 4 * i);
    for (size_t i = 0; i < CFG_TABLE_ENTRY_SIZE / 4; ++i) checksum ^= getU32(file, ISPDSP_PARAM_FILE_BLOCK_OFFSET + 4 * i);
    putU32(file, ISPDSP_PARAM_FILE_BLOCK_OFFSET + CFG_TABLE_ENTRY_SIZE, checksum);
    return file;
}

// Device files in a private root, two created, started and linked pipes.
class LinkedPair {
public:
    LinkedPair() {
        char pattern[] = "/tmp/ispdsp_driver_bench_XXXXXX";
        if (mkdtemp(pattern) == nullptr) std::abort();
        root_ = pattern;
        if (const char* previous = std::getenv("ISPDSP_ROOT")) previousRoot_ = previous;
        setenv("ISPDSP_ROOT", root_.c_str(), 1);
        std::filesystem::create_directories(root_ + "/var/tmp");
        const std::vector<uint8_t> file = parameterFile();
        std::ofstream(root_ + "/var/tmp/dsp_isp_para.bin", std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        std::ofstream(root_ + "/var/tmp/calibration.txt")
            << "ZOOMNUM:2 REGNUM:1\nZOOM:100\n0x1 0x2\nTFORM:\nZOOM:200\n0x1 0x3\nTFORM:\n";

        for (Uint32 p = 0; p < 2; ++p) {
            ops[p] = std::make_unique<DRV_ispOpsParams>();
            std::memset(ops[p].get(), 0, sizeof(DRV_ispOpsParams));
            DRV_ispXCreateParams create;
            std::memset(&create, 0, sizeof(create));
            create.aewPipeId = p + 1;
            create.ispNum = 1;
            create.dspOps.OpGetDspConfig = noOpDspConfig;
            create.dspOps.OpSetDspConfig = noOpDspConfig;
            if (DRV_dspIspCreateX(&create, ops[p].get()) != 0 || ops[p]->OpStart(ops[p].get()) != 0) std::abort();
            ops[p]->runParam.dncMode = 1;
            ops[p]->runParam.gainInterParam.gainStartIndex = 4;
            ops[p]->runParam.gainInterParam.gainEndIndex = 5;
            ops[p]->runParam.gainInterParam.interCoff = 0.4f;
            ops[p]->runParam.ptzUpdateParam.zoom = 150;
            if (ops[p]->OpRefreshCfg(ops[p].get(), nullptr) != 0) std::abort();
        }
        DRV_RefPipeParams ref;
        std::memset(&ref, 0, sizeof(ref));
        ref.refXHndl = ops[1]->ispXHndl;
        ref.fusionType = DRV_ISP_FUSION_MONO;
        ops[0]->OpSetRefPipeParams(ops[0].get(), &ref);
        ref.refXHndl = ops[0]->ispXHndl;
        ref.fusionType = DRV_ISP_FUSION_COLOR;
        ops[1]->OpSetRefPipeParams(ops[1].get(), &ref);
        ops[0]->OpSetFusion(ops[0].get());  // both pipes have calculated once
        ops[1]->OpSetFusion(ops[1].get());
    }
    ~LinkedPair() {
        for (auto& table : ops) table->OpDelete(table.get());
        std::filesystem::remove_all(root_);
        if (previousRoot_.empty()) {
            unsetenv("ISPDSP_ROOT");
        } else {
            setenv("ISPDSP_ROOT", previousRoot_.c_str(), 1);
        }
    }

    std::unique_ptr<DRV_ispOpsParams> ops[2];

private:
    std::string root_;
    std::string previousRoot_;
};

// What no frame can avoid, with memcpy and memset.
class Floor {
public:
    Floor() { std::memset(records_.get(), 0x5A, sizeof *records_); }
    void run() {
        std::memcpy(copy_->data(), records_->data(), sizeof *copy_);
        benchmark::DoNotOptimize(copy_->data());
        benchmark::ClobberMemory();
        for (int m = 0; m < 3; ++m) {  // the read-back, switch and fusion messages
            std::memset(message_.get(), 0, sizeof *message_);
            benchmark::DoNotOptimize(message_.get());
            benchmark::ClobberMemory();
        }
    }

private:
    using Records = std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS>;
    std::unique_ptr<Records> records_ = std::make_unique<Records>();
    std::unique_ptr<Records> copy_ = std::make_unique<Records>();
    std::unique_ptr<DSP_AEW_CFG_S> message_ = std::make_unique<DSP_AEW_CFG_S>();
};

void BM_Floor(benchmark::State& state) {
    Floor floor;
    ispdsp_bench::recordFloor(runTimed(state, [&] { floor.run(); }));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Floor);

// The floor and one OpSetFusion per pipe-frame in alternating batches of one
// loop, so that a busy machine weighs on both alike: x_floor is the ratio of
// their CPU times, floor_ns and pipe_frame_ns the times per call.
void BM_FusionOverFloor(benchmark::State& state) {
    constexpr int kBatch = 512;
    LinkedPair pair;
    Floor floor;
    double floorNs = 0;
    double fusionNs = 0;
    size_t p = 0;
    for (auto _ : state) {
        const double t0 = ispdsp_bench::threadCpuNs();
        for (int i = 0; i < kBatch; ++i) floor.run();
        const double t1 = ispdsp_bench::threadCpuNs();
        for (int i = 0; i < kBatch; ++i) {
            benchmark::DoNotOptimize(pair.ops[p]->OpSetFusion(pair.ops[p].get()));
            p ^= 1;
        }
        fusionNs += ispdsp_bench::threadCpuNs() - t1;
        floorNs += t1 - t0;
    }
    const double calls = double(state.iterations()) * kBatch;
    if (calls > 0 && floorNs > 0) {
        state.counters["floor_ns"] = floorNs / calls;
        state.counters["pipe_frame_ns"] = fusionNs / calls;
        state.counters["x_floor"] = fusionNs / floorNs;
    }
}
BENCHMARK(BM_FusionOverFloor);

// One OpSetFusion per pipe-frame, the two pipes in turn.
void BM_FusionPerPipeFrame(benchmark::State& state) {
    LinkedPair pair;
    size_t p = 0;
    runTimed(state, [&] {
        benchmark::DoNotOptimize(pair.ops[p]->OpSetFusion(pair.ops[p].get()));
        p ^= 1;
    });
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FusionPerPipeFrame);

// The host's whole frame per pipe: module results, gain flags, refresh, fusion.
void BM_HostFramePerPipeFrame(benchmark::State& state) {
    LinkedPair pair;
    DRV_ispModuleResults results;
    std::memset(&results, 0, sizeof(results));
    results.sensorStandbyParam.pSwitch = 1;
    size_t p = 0;
    Int32 changed = 0;
    runTimed(state, [&] {
        DRV_ispOpsParams* ops = pair.ops[p].get();
        ops->OpSetModuleResults(ops, &results);
        ops->OpInterGainFlags(ops);
        ops->OpRefreshCfg(ops, &changed);
        benchmark::DoNotOptimize(ops->OpSetFusion(ops));
        p ^= 1;
    });
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_HostFramePerPipeFrame);

}  // namespace

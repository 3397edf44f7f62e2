// The per-frame cost of the driver instance: a linked colour/mono pair driven
// through the host's operation table, with DSP callbacks that do nothing and a
// log sink that drops the lines. One iteration is one pipe-frame (one pipe's
// OpSetFusion, or its whole frame of host calls); items/s counts pipe-frames.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

namespace {

Int32 noOpDspConfig(DRV_dspIspCfgOpsCtrl*, Ptr) { return 0; }
void dropLogLine(void*, int32_t, int32_t, const char*) {}

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
        ispdsp_host_get_log_sink(&previousSink_, &previousSinkCtx_);
        ispdsp_host_set_log_sink(dropLogLine, nullptr);

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
        ispdsp_host_set_log_sink(previousSink_, previousSinkCtx_);
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
    ispdsp_host_log_sink previousSink_ = nullptr;
    void* previousSinkCtx_ = nullptr;
};

// One OpSetFusion per pipe-frame, the two pipes in turn.
void BM_FusionPerPipeFrame(benchmark::State& state) {
    LinkedPair pair;
    size_t p = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(pair.ops[p]->OpSetFusion(pair.ops[p].get()));
        p ^= 1;
    }
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
    for (auto _ : state) {
        DRV_ispOpsParams* ops = pair.ops[p].get();
        ops->OpSetModuleResults(ops, &results);
        ops->OpInterGainFlags(ops);
        ops->OpRefreshCfg(ops, &changed);
        benchmark::DoNotOptimize(ops->OpSetFusion(ops));
        p ^= 1;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_HostFramePerPipeFrame);

}  // namespace

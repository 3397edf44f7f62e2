// Shared parts of the fuzz targets. They run on the reference host layer
// (libispdsp_host) with its in-memory files, its counted memory (a double free
// aborts) and its fault injection. Every input runs up to three times (as it
// is, with one allocation failing, with reads coming up short), and every run
// must end without a leaked block or an open file. The driver's log lines are
// formatted (the sanitizers see every argument) and dropped, unless
// ISPDSP_FUZZ_LOG is set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

// The RLR writer forces its flash copy to storage; the files here live in
// memory, and a real sync() per fuzz run would stall the whole machine.
extern "C" void sync(void) noexcept {}

namespace fuzzsupport {

// Stops the run (a fuzzing finding) with a message when `ok` is false.
inline void require(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

inline void dropLine(void*, int32_t, int32_t, const char*) {}

// Empties the in-memory file store (switched on at the first call) and puts these files in it.
inline void setFiles(std::initializer_list<std::pair<const char*, std::string_view>> files) {
    static const bool once = [] {
        if (std::getenv("ISPDSP_FUZZ_LOG") == nullptr) ispdsp_host_set_log_sink(dropLine, nullptr);
        return true;
    }();
    (void)once;
    ispdsp_host_use_memory_files(1);
    for (const auto& [path, bytes] : files) ispdsp_host_put_memory_file(path, bytes.data(), bytes.size());
}
inline std::string_view bytesOf(const uint8_t* data, size_t size) { return {reinterpret_cast<const char*>(data), size}; }

// FNV-1a of the input: picks the injected faults, so a rerun of the same
// input injects the same ones.
inline uint64_t inputHash(const uint8_t* data, size_t size) {
    uint64_t h = 1469598103934665603ull;
    for (size_t i = 0; i < size; ++i) h = (h ^ data[i]) * 1099511628211ull;
    return h;
}

struct Counters {
    uint64_t allocs, live, files, bytes;
};
inline Counters counters() {
    ispdsp_host_mem_stats mem{};
    ispdsp_host_file_stats file{};
    ispdsp_host_get_mem_stats(&mem);
    ispdsp_host_get_file_stats(&file);
    return {mem.alloc_calls, mem.live_blocks, file.open_files, file.bytes_read};
}

// Runs `once` (which sets up its files and releases what the caller owns) as
// it is, then with the k-th of its allocations failing and with the file
// reads cut at some byte, k and the cut chosen from the input.
template <class Run>
void runWithFaults(const uint8_t* data, size_t size, Run&& once) {
    const uint64_t hash = inputHash(data, size);
    const Counters before = counters();
    once();
    const Counters clean = counters();
    require(clean.live == before.live && clean.files == before.files, "block leaked or file left open (no fault)");
    const uint64_t allocs = clean.allocs - before.allocs;
    const uint64_t bytes = clean.bytes - before.bytes;
    if (allocs != 0) {
        ispdsp_host_fail_alloc_after(1 + hash % allocs);
        once();
        ispdsp_host_fail_alloc_after(0);
        require(counters().live == before.live && counters().files == before.files,
                "block leaked or file left open (failed allocation)");
    }
    if (bytes != 0) {
        ispdsp_host_limit_file_reads((hash >> 20) % bytes);
        once();
        ispdsp_host_limit_file_reads(UINT64_MAX);
        require(counters().live == before.live && counters().files == before.files,
                "block leaked or file left open (short read)");
    }
}

// A parameter file image: the 104 header bytes (version 82981.0, the rest
// zero), the block's size, the block and the reader's checksum (XOR of the
// header words and of the block's whole words).
inline std::vector<uint8_t> paramFileImage(const std::vector<uint8_t>& block) {
    std::vector<uint8_t> file(108, 0);
    const float version = 82981.0f;
    const uint32_t blockSize = static_cast<uint32_t>(block.size());
    std::memcpy(file.data(), &version, 4);
    std::memcpy(file.data() + 104, &blockSize, 4);
    file.insert(file.end(), block.begin(), block.end());
    uint32_t sum = 0, word;
    for (size_t i = 0; i < 104; i += 4) sum ^= (std::memcpy(&word, file.data() + i, 4), word);
    for (size_t i = 0; i + 4 <= block.size(); i += 4) sum ^= (std::memcpy(&word, block.data() + i, 4), word);
    file.resize(file.size() + 4);
    std::memcpy(file.data() + file.size() - 4, &sum, 4);
    return file;
}

// True when [p, p + n) lies inside [begin, begin + size).
inline bool inside(const void* p, size_t n, const void* begin, size_t size) {
    const auto a = reinterpret_cast<uintptr_t>(p);
    const auto b = reinterpret_cast<uintptr_t>(begin);
    return a >= b && n <= size && a - b <= size - n;
}

// Runs every calculation of the stages on one table, as the host does with the
// records of the current table: the values come straight from the file.
inline void calculateTable(const CFG_DspIspCfgParam& table, float interCoff) {
    static DSP_FusionCalculateParam fusionIn;  // 8.7 KB: kept off the stack
    DRV_gainInterParam gain{};
    gain.gainStartIndex = 3;
    gain.gainEndIndex = 12;
    gain.interCoff = interCoff;
    std::memset(&fusionIn, 0, sizeof fusionIn);
    std::memcpy(fusionIn.fusionParam, table.ispFusionParam, sizeof fusionIn.fusionParam);
    fusionIn.gainInterParam = &gain;

    Uint8 curves[3][FUSION_NIR_POINTS] = {};
    DSP_FusionV2722 colour{}, mono{}, both{};
    colour.fusionParam.w_nir = curves[0];
    mono.fusionParam.w_nir = curves[1];
    both.fusionParam.w_nir = curves[2];
    require(DRV_dspCalculateFusion(&fusionIn, &colour) == 0, "fusion calculation failed");
    gain.gainStartIndex = 15;
    gain.gainEndIndex = 0;
    require(DRV_dspCalculateFusion(&fusionIn, &mono) == 0, "fusion calculation failed");
    DSP_DoubleFusionCalculateParam pair{0, &colour, &mono};
    require(DRV_dspDoubleCalculateFusion(&pair, &both) == 0, "double fusion calculation failed");

#define CALC(Name, Ver, field, member)                         \
    {                                                          \
        DSP_##Name##CalculateParam in{};                       \
        std::memcpy(&in.field, &table.member, sizeof in.field); \
        DSP_##Name##Ver out{};                                 \
        DRV_dspCalculate##Name(&in, &out);                     \
    }
    CALC(Dlae, V101, dlaeParam, ispDlaeParam)
    CALC(Dlcfa, V101, dlcfaParam, ispDlcfaParam)
    CALC(Fg2c, V102, fg2cParam, ispFg2cParam)
    CALC(Lle, V203, lleParam, ispLleParam)
    CALC(Lsm, V112, lsmParam, ispLsmParam)
    CALC(Sade, V113, sadeParam, ispSadeParam)
    CALC(Sbm3d, V113, sbm3dParam, ispSbm3dParam)
    CALC(Yuv2yuv, V100, yuv2yuvParam, ispYuv2yuvParam)
    CALC(Lae, V209, laeParam, ispLaeParam)
    CALC(Y2d, V5118, y2dParam, ispY2dParam)
    CALC(Ylwdr, V102, ylwdrParam, ispYlwdrParam)
    CALC(FusionPlate, V1001, fusionPlateParam, ispFusionPlateParam)
#undef CALC
}

// A gain coefficient for the calculations: in range mostly, sometimes one a
// faulty host could hand over (negative, huge, not a number).
inline float coefficientFor(uint64_t hash) {
    static const float kCoefficients[] = {0.0f, 0.25f, 0.5f, 1.0f, -3.5f, 7.0f, 1e30f, -1e30f, __builtin_nanf("")};
    return kCoefficients[hash % (sizeof kCoefficients / sizeof kCoefficients[0])];
}

// Registers the block's tables and chooses the current table for every
// camera state (13 scenes and an invalid one, colour and black-and-white,
// linear/WDR/HDR, day and night). Every table pointer must lie wholly inside
// the block; each table chosen is calculated once.
inline void exerciseTables(CFG_IspParamTable* header, Ptr block, float interCoff) {
    CFG_DspIspCfgTables set{};
    const Int32 registered = DRV_ispCommonTable2DspTable(header, block, set.paramTables);
    (void)registered;  // a failed registration keeps the entries before the faulty one
    const size_t blockSize = header->cfg_specParam.size;
    bool calculated[PARAM_TABLE_TYPE_NUM] = {};
    for (Int32 type = 0; type < PARAM_TABLE_TYPE_NUM; ++type) {
        if (set.paramTables[type] != nullptr) {
            require(inside(set.paramTables[type], sizeof(CFG_DspIspCfgParam), block, blockSize),
                              "registered table reaches outside the block");
        }
    }
    static const Int32 kHdrModes[] = {0, 4, 5};
    for (Int32 scene = 0; scene <= 14; ++scene) {
        for (Int32 dnc = 0; dnc <= 1; ++dnc) {
            for (Int32 hdr : kHdrModes) {
                for (Uint32 sceneMode : {0u, 2u}) {
                    CFG_ispParamCondition condition{};
                    condition.realDncMode = dnc;
                    condition.hdrMode = hdr;
                    condition.sceneMode = sceneMode;
                    condition.imageScene = scene;
                    if (DRV_ispChooseCurParamDSP(&condition, &set) != 0) continue;
                    require(set.curTableType < PARAM_TABLE_TYPE_NUM &&
                                          set.curTable == set.paramTables[set.curTableType] &&
                                          set.curTable != nullptr,
                                      "chosen table is not a registered one");
                    if (!calculated[set.curTableType]) {
                        calculated[set.curTableType] = true;
                        calculateTable(*set.curTable, interCoff);
                    }
                }
            }
        }
    }
}

}  // namespace fuzzsupport

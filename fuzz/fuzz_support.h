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

#include "fuzz_check.h"
#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"
#include "support/stage_outputs.h"

// The RLR writer forces its flash copy to storage; the files here live in
// memory, and a real sync() per fuzz run would stall the whole machine.
extern "C" void sync(void) noexcept {}

namespace fuzzsupport {

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

// The host's allocation calls, live blocks, open files and bytes read so far.
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
// reads cut at some byte, k and the cut chosen from the input. Every run must
// end with the blocks and open files it started with.
template <class Run>
void runWithFaults(const uint8_t* data, size_t size, Run&& once) {
    const uint64_t hash = inputHash(data, size);
    const Counters before = counters();
    const auto run = [&](const char* what) {
        once();
        const Counters after = counters();
        require(after.live == before.live && after.files == before.files, what);
        return after;
    };
    const Counters clean = run("block leaked or file left open (no fault)");
    if (const uint64_t allocs = clean.allocs - before.allocs) {
        ispdsp_host_fail_alloc_after(1 + hash % allocs);
        run("block leaked or file left open (failed allocation)");
        ispdsp_host_fail_alloc_after(0);
    }
    if (const uint64_t bytes = clean.bytes - before.bytes) {
        ispdsp_host_limit_file_reads((hash >> 20) % bytes);
        run("block leaked or file left open (short read)");
        ispdsp_host_limit_file_reads(UINT64_MAX);
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
    // A failed registration keeps the entries before the faulty one: its result does not matter here.
    (void)DRV_ispCommonTable2DspTable(header, block, set.paramTables);
    bool calculated[PARAM_TABLE_TYPE_NUM] = {};
    for (Int32 type = 0; type < PARAM_TABLE_TYPE_NUM; ++type) {
        const Ptr table = set.paramTables[type];
        require(table == nullptr || inside(table, sizeof(CFG_DspIspCfgParam), block, header->cfg_specParam.size),
                "registered table reaches outside the block");
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
                                set.curTable == set.paramTables[set.curTableType] && set.curTable != nullptr,
                            "chosen table is not a registered one");
                    if (calculated[set.curTableType]) continue;
                    calculated[set.curTableType] = true;
                    // The values come straight from the file: a stage may refuse
                    // them, the fusion blend may not.
                    ispdsp_test::StageOutputs out;
                    ispdsp_test::calculateStages(*set.curTable, ispdsp_test::gainBetween(3, 12, interCoff),
                                                 ispdsp_test::gainBetween(15, 0, interCoff), 0, out);
                    require(out.fusionFailures == 0, "fusion calculation failed");
                }
            }
        }
    }
}

}  // namespace fuzzsupport

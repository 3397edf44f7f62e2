// Memory and file checks through the host layer's counters: a snapshot that
// compares live blocks and open files at the end, and scoped fault injectors
// for allocations and reads. (Every test of a suite linked with the support
// library's main also fails when it leaves a file open: see test_main.cpp.)
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "ispdsp_host/host.h"

namespace ispdsp_test {

// OSA_fileOpen handles not closed yet.
inline uint64_t openFiles() {
    ispdsp_host_file_stats stats{};
    ispdsp_host_get_file_stats(&stats);
    return stats.open_files;
}

// Snapshot of the counters; by default the destructor expects as many live
// blocks and open files as at construction (pass false where a block is kept on purpose).
class MemGuard {
public:
    explicit MemGuard(bool expectNoLeakAtEnd = true)
        : start_(now()), startFiles_(openFiles()), checkAtEnd_(expectNoLeakAtEnd) {}
    ~MemGuard() {
        if (checkAtEnd_) {
            EXPECT_TRUE(noLeak());
        }
    }
    MemGuard(const MemGuard&) = delete;
    MemGuard& operator=(const MemGuard&) = delete;

    // Blocks and bytes gained, allocation and free calls made since the snapshot.
    int64_t liveBlocks() const { return static_cast<int64_t>(now().live_blocks - start_.live_blocks); }
    int64_t liveBytes() const { return static_cast<int64_t>(now().live_bytes - start_.live_bytes); }
    uint64_t allocCalls() const { return now().alloc_calls - start_.alloc_calls; }
    uint64_t freeCalls() const { return now().free_calls - start_.free_calls; }
    // No block gained, no file left open.
    ::testing::AssertionResult noLeak() const {
        const int64_t files = static_cast<int64_t>(openFiles() - startFiles_);
        if (liveBlocks() == 0 && files == 0) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << files << " file(s) left open; " << liveBlocks() << " block(s) ("
                                             << liveBytes() << " bytes) still live; " << allocCalls()
                                             << " allocation(s), " << freeCalls() << " free(s) since the snapshot";
    }

private:
    static ispdsp_host_mem_stats now() {
        ispdsp_host_mem_stats stats{};
        ispdsp_host_get_mem_stats(&stats);
        return stats;
    }

    ispdsp_host_mem_stats start_;
    uint64_t startFiles_;
    bool checkAtEnd_;
};

// The n-th allocation from now fails (1 = the next one); off again at the end.
// (The injectors below switch process-wide state: use them as scoped locals.)
struct FailAllocAfter {
    explicit FailAllocAfter(uint64_t n) { ispdsp_host_fail_alloc_after(n); }
    ~FailAllocAfter() { ispdsp_host_fail_alloc_after(0); }
};

// Every file opened (or only those opened by `path`) delivers at most `limit`
// bytes through OSA_fileRead and OSA_fgets; off at the end.
struct LimitFileReads {
    explicit LimitFileReads(uint64_t limit, const char* path = nullptr) { ispdsp_host_limit_file_reads_of(path, limit); }
    ~LimitFileReads() { ispdsp_host_limit_file_reads(UINT64_MAX); }
};

}  // namespace ispdsp_test

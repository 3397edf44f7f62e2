// Memory and file checks through the host layer's counters: a snapshot that
// compares live blocks and open files at the end, and scoped fault injectors
// for allocations and reads. (Every test of a suite linked with the support
// library's main also fails when it leaves a file open: see test_main.cpp.)
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "ispdsp_host/host.h"

namespace ispdsp_test {

uint64_t openFiles();  // OSA_fileOpen handles not closed yet

// Snapshot of the counters; by default the destructor expects as many live
// blocks and open files as at construction (pass false where a block is kept on purpose).
class MemGuard {
public:
    explicit MemGuard(bool expectNoLeakAtEnd = true);
    ~MemGuard();
    MemGuard(const MemGuard&) = delete;
    MemGuard& operator=(const MemGuard&) = delete;

    int64_t liveBlocks() const;  // blocks gained since the snapshot
    int64_t liveBytes() const;   // bytes gained since the snapshot
    uint64_t allocCalls() const; // allocation calls since the snapshot
    uint64_t freeCalls() const;  // free calls since the snapshot
    ::testing::AssertionResult noLeak() const;  // no block gained, no file left open

private:
    ispdsp_host_mem_stats start_;
    uint64_t start_files_;
    bool check_at_end_;
};

// The n-th allocation from now fails (1 = the next one); off again at the end.
class FailAllocAfter {
public:
    explicit FailAllocAfter(uint64_t n) { ispdsp_host_fail_alloc_after(n); }
    ~FailAllocAfter() { ispdsp_host_fail_alloc_after(0); }
    FailAllocAfter(const FailAllocAfter&) = delete;
    FailAllocAfter& operator=(const FailAllocAfter&) = delete;
};

// Every file opened (or only those opened by `path`) delivers at most `limit`
// bytes through OSA_fileRead and OSA_fgets; off at the end.
class LimitFileReads {
public:
    explicit LimitFileReads(uint64_t limit, const char* path = nullptr) { ispdsp_host_limit_file_reads_of(path, limit); }
    ~LimitFileReads() { ispdsp_host_limit_file_reads(UINT64_MAX); }
    LimitFileReads(const LimitFileReads&) = delete;
    LimitFileReads& operator=(const LimitFileReads&) = delete;
};

}  // namespace ispdsp_test

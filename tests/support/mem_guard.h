// Memory checks through the host layer's counters: a snapshot that compares
// live blocks at the end, and scoped fault injectors for allocations and reads.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "ispdsp_host/host.h"

namespace ispdsp_test {

ispdsp_host_mem_stats memStats();

// Snapshot of the counters; by default the destructor expects as many live
// blocks as at construction (pass false where a block is kept on purpose).
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
    ::testing::AssertionResult noLeak() const;

private:
    ispdsp_host_mem_stats start_;
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

// Every open file delivers at most `limit` bytes through OSA_fileRead; off at the end.
class LimitFileReads {
public:
    explicit LimitFileReads(uint64_t limit) { ispdsp_host_limit_file_reads(limit); }
    ~LimitFileReads() { ispdsp_host_limit_file_reads(UINT64_MAX); }
    LimitFileReads(const LimitFileReads&) = delete;
    LimitFileReads& operator=(const LimitFileReads&) = delete;
};

}  // namespace ispdsp_test

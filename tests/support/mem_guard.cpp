#include "support/mem_guard.h"

namespace ispdsp_test {

static ispdsp_host_mem_stats memStats() {
    ispdsp_host_mem_stats stats{};
    ispdsp_host_get_mem_stats(&stats);
    return stats;
}

uint64_t openFiles() {
    ispdsp_host_file_stats stats{};
    ispdsp_host_get_file_stats(&stats);
    return stats.open_files;
}

MemGuard::MemGuard(bool expectNoLeakAtEnd)
    : start_(memStats()), start_files_(openFiles()), check_at_end_(expectNoLeakAtEnd) {}

MemGuard::~MemGuard() {
    if (check_at_end_) {
        EXPECT_TRUE(noLeak());
    }
}

int64_t MemGuard::liveBlocks() const {
    return static_cast<int64_t>(memStats().live_blocks) - static_cast<int64_t>(start_.live_blocks);
}

int64_t MemGuard::liveBytes() const {
    return static_cast<int64_t>(memStats().live_bytes) - static_cast<int64_t>(start_.live_bytes);
}

uint64_t MemGuard::allocCalls() const { return memStats().alloc_calls - start_.alloc_calls; }

uint64_t MemGuard::freeCalls() const { return memStats().free_calls - start_.free_calls; }

::testing::AssertionResult MemGuard::noLeak() const {
    const int64_t blocks = liveBlocks();
    const int64_t files = static_cast<int64_t>(openFiles() - start_files_);
    if (blocks == 0 && files == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << files << " file(s) left open; " << blocks << " block(s) (" << liveBytes()
                                         << " bytes) still live; " << allocCalls() << " allocation(s), "
                                         << freeCalls() << " free(s) since the snapshot";
}

}  // namespace ispdsp_test

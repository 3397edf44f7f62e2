// Memory of the reference host: malloc with a small header in front of every
// block, so frees can be checked and the live bytes counted, and a guard behind
// it, plus fault injection.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"

namespace {

constexpr uint32_t kLiveMagic = 0x15D5B10Cu;
constexpr size_t kHeaderSize = 16;  // keeps malloc's 16-byte alignment for the caller

struct BlockHeader {  // sits right before the caller's block
    uint32_t magic;
    uint32_t offset;  // from the start of the underlying allocation to the caller's block
    uint64_t size;
};
static_assert(sizeof(BlockHeader) == kHeaderSize);

// Behind every block: a write past its end aborts at the free, and a read past
// its end sees large positive values rather than the zeros that malloc's slack
// often holds, so an index one too far changes what the driver does.
constexpr size_t kGuardSize = 16;
constexpr unsigned char kGuardByte = 0x7F;

unsigned char* guard_of(void* block, uint64_t size) { return static_cast<unsigned char*>(block) + size; }

std::atomic<uint64_t> g_alloc_calls{0};
std::atomic<uint64_t> g_free_calls{0};
std::atomic<uint64_t> g_live_blocks{0};
std::atomic<uint64_t> g_live_bytes{0};
std::atomic<uint64_t> g_fail_countdown{0};  // 0 = off; 1 = the next call fails

bool injected_failure() {
    uint64_t left = g_fail_countdown.load();
    while (left != 0 && !g_fail_countdown.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

BlockHeader* header_of(void* block) {
    return reinterpret_cast<BlockHeader*>(static_cast<unsigned char*>(block) - kHeaderSize);
}

// Alignment 0 (what the driver asks for) or up to 16 gives malloc's alignment;
// larger powers of two are honoured; any other value is refused with NULL.
// Size 0 gives a valid, unique block (it owns its header) that must be freed
// like any other and counts as a live block.
void* allocate(Uint32 size, Uint32 align) {
    g_alloc_calls.fetch_add(1);
    if (injected_failure() || (align & (align - 1)) != 0) {
        return nullptr;
    }
    const size_t lead = align > kHeaderSize ? align : kHeaderSize;
    void* base = nullptr;
    if (lead == kHeaderSize) {
        base = std::malloc(kHeaderSize + size + kGuardSize);
    } else if (posix_memalign(&base, lead, lead + size + kGuardSize) != 0) {
        base = nullptr;
    }
    if (base == nullptr) {
        return nullptr;
    }
    void* block = static_cast<unsigned char*>(base) + lead;
    *header_of(block) = BlockHeader{kLiveMagic, static_cast<uint32_t>(lead), size};
    std::memset(guard_of(block, size), kGuardByte, kGuardSize);
    g_live_blocks.fetch_add(1);
    g_live_bytes.fetch_add(size);
    return block;
}

}  // namespace

extern "C" {

// Not zeros: code that relies on an uncleared block shows up in every run.
Ptr OSA_memUAllocAlign(Uint32 size, Uint32 align) {
    void* block = allocate(size, align);
    if (block != nullptr) {
        std::memset(block, 0xA5, size);
    }
    return block;
}

Ptr OSA_memUCallocAlign(Uint32 size, Uint32 align) {
    void* block = allocate(size, align);
    if (block != nullptr) {
        std::memset(block, 0, size);
    }
    return block;
}

// Freeing NULL is accepted like free(NULL) and returns 0. A block that this
// layer did not hand out (or one freed twice) is a bug in the caller: abort loudly.
Int32 OSA_memUFree(Ptr ptr) {
    if (ptr == nullptr) {
        return 0;
    }
    BlockHeader* header = header_of(ptr);
    if (header->magic != kLiveMagic) {
        std::fprintf(stderr, "ispdsp_host: OSA_memUFree(%p): not a live block\n", ptr);
        std::abort();
    }
    const unsigned char* guard = guard_of(ptr, header->size);
    for (size_t i = 0; i < kGuardSize; ++i) {
        if (guard[i] != kGuardByte) {
            std::fprintf(stderr, "ispdsp_host: OSA_memUFree(%p): written past the end of its %llu bytes\n", ptr,
                         static_cast<unsigned long long>(header->size));
            std::abort();
        }
    }
    header->magic = 0;
    g_free_calls.fetch_add(1);
    g_live_blocks.fetch_sub(1);
    g_live_bytes.fetch_sub(header->size);
    std::free(static_cast<unsigned char*>(ptr) - header->offset);
    return 0;
}

void ispdsp_host_get_mem_stats(ispdsp_host_mem_stats* stats) {
    if (stats == nullptr) {
        return;
    }
    stats->alloc_calls = g_alloc_calls.load();
    stats->free_calls = g_free_calls.load();
    stats->live_blocks = g_live_blocks.load();
    stats->live_bytes = g_live_bytes.load();
}

void ispdsp_host_fail_alloc_after(uint64_t n) { g_fail_countdown.store(n); }

}  // extern "C"

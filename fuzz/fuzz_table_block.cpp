// Fuzz target: the specific block of the parameter file as the table set sees
// it. The input is the block itself (its size is the header's size word); it
// is handed over in a buffer of exactly that size, so a table registered past
// the block's end is caught by the address sanitizer as well as by the check
// in exerciseTables.
#include <cstdlib>
#include <cstring>

#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > UINT32_MAX) return 0;
    // malloc keeps the block aligned like the host allocator does; size 0
    // still gives a distinct block, as registration needs a non-null buffer.
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) return 0;
    if (size != 0) std::memcpy(block, data, size);

    CFG_IspParamTable header{};
    header.cfg_specParam.size = static_cast<Uint32>(size);
    const float interCoff = fuzzsupport::coefficientFor(fuzzsupport::inputHash(data, size));
    fuzzsupport::runWithFaults(data, size, [&] { fuzzsupport::exerciseTables(&header, block, interCoff); });
    std::free(block);
    return 0;
}

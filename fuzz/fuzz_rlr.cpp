// Fuzz target: the two RLR table files through DRV_loadRlrCfg. Input layout:
// byte 0 holds flags (bit 0: the custom file exists, bit 1: the flash copy
// exists, bit 2: the host passes its own table buffer), bytes 1-2 the custom
// file's length (little-endian, cut to what is left); the custom file's bytes
// follow, the rest is the flash copy. The loader runs twice, the second time
// on the files (and with the buffer) that the first run left.
#include <cstring>

#include "fuzz_support.h"

namespace {

constexpr const char* kCustomPath = "/var/custom/rlr_para.bin";
constexpr const char* kFlashPath = "/mnt/mtd/3A/rlr_para.bin";
constexpr size_t kTableBytes = sizeof(CFG_RlrTableParam);

void loadOnce(const uint8_t* data, size_t size) {
    fuzzsupport::setFiles({});
    const uint8_t flags = size > 0 ? data[0] : 0;
    size_t customSize = size >= 3 ? size_t{data[1]} | size_t{data[2]} << 8 : 0;
    const uint8_t* rest = data + (size >= 3 ? 3 : size);
    const size_t restSize = size >= 3 ? size - 3 : 0;
    if (customSize > restSize) customSize = restSize;
    if (flags & 1) ispdsp_host_put_memory_file(kCustomPath, rest, customSize);
    if (flags & 2) ispdsp_host_put_memory_file(kFlashPath, rest + customSize, restSize - customSize);

    static CFG_RlrTableParam hostTables;
    Ptr tables = (flags & 4) ? &hostTables : nullptr;
    const bool hostOwned = tables != nullptr;
    for (int run = 0; run < 2; ++run) {
        Ptr before = tables;
        const Int32 result = DRV_loadRlrCfg(&tables);
        fuzzsupport::require(result == 0 || result == -1, "unexpected result");
        if (before != nullptr) fuzzsupport::require(tables == before, "the host's buffer was replaced");
        if (result == 0) fuzzsupport::require(tables != nullptr, "success without tables");
        // The library rewrites the flash copy with exactly the 768 table bytes.
        const int64_t flash = ispdsp_host_memory_file_size(kFlashPath);
        if (flash >= 0 && !(flags & 2)) fuzzsupport::require(flash == int64_t{kTableBytes}, "flash copy size");
    }
    // A buffer that the loader allocated belongs to the host now.
    if (!hostOwned) OSA_memUFree(tables);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzsupport::runWithFaults(data, size, [&] { loadOnce(data, size); });
    return 0;
}

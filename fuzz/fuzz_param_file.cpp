// Fuzz target: the ISP parameter file. The input is the file at
// /var/tmp/dsp_isp_para.bin; a repaired copy of it (right version, checksum
// recomputed, so that the fuzzer reaches the tables too) lies at the per-pipe
// path. Both are loaded into the same header and buffer, as creation does when
// the first path fails, then the block's tables are registered, chosen for
// every camera state and calculated.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz_support.h"

namespace {

constexpr const char* kCommonPath = "/var/tmp/dsp_isp_para.bin";
constexpr const char* kPipePath = "/var/tmp/1/dsp_isp_para.bin";
constexpr float kVersion = 82981.0f;
constexpr size_t kSizeWordOffset = 104;
constexpr size_t kBlockOffset = 108;
constexpr size_t kOverhead = 112;

// The input as a file the reader accepts, so that the fuzzer reaches the
// tables too: version 82981.0, the input's block (its size word cut to what
// the file holds) and the right checksum.
std::vector<uint8_t> repaired(const uint8_t* data, size_t size) {
    uint32_t blockSize = 0;
    if (size >= kOverhead) std::memcpy(&blockSize, data + kSizeWordOffset, sizeof blockSize);
    const size_t available = size > kOverhead ? size - kOverhead : 0;
    const uint8_t* block = data + (size > kBlockOffset ? kBlockOffset : size);
    return fuzzsupport::paramFileImage({block, block + std::min<size_t>(blockSize, available)});
}

void loadOnce(const uint8_t* data, size_t size, const std::vector<uint8_t>& fixed, float interCoff) {
    fuzzsupport::setFiles({{kCommonPath, fuzzsupport::bytesOf(data, size)},
                           {kPipePath, fuzzsupport::bytesOf(fixed.data(), fixed.size())}});

    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    Int32 loaded = DRV_ispCfgLoad(kCommonPath, kVersion, &header, &buffer);
    if (loaded == 0) {
        fuzzsupport::require(header.cfg_specParam.size <= size - kOverhead, "block size beyond the file");
        fuzzsupport::exerciseTables(&header, buffer, interCoff);
    }
    // The second load reuses the header and the buffer as the first left them.
    loaded = DRV_ispCfgLoad(kPipePath, kVersion, &header, &buffer);
    if (loaded == 0) {
        fuzzsupport::require(buffer != nullptr, "load succeeded without a buffer");
        fuzzsupport::require(header.cfg_specParam.size <= fixed.size() - kOverhead, "block size beyond the file");
        fuzzsupport::exerciseTables(&header, buffer, interCoff);
    }
    // The buffer belongs to the caller, also after a failed load.
    OSA_memUFree(buffer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<uint8_t> fixed = repaired(data, size);
    const float interCoff = fuzzsupport::coefficientFor(fuzzsupport::inputHash(data, size));
    fuzzsupport::runWithFaults(data, size, [&] { loadOnce(data, size, fixed, interCoff); });
    return 0;
}

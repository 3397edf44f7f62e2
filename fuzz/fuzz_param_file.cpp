// Fuzz target: the ISP parameter file. The input is the file at
// /var/tmp/dsp_isp_para.bin; a repaired copy of it (right version, checksum
// recomputed, so that the fuzzer reaches the tables too) lies at the per-pipe
// path. Both are loaded into the same header and buffer, as creation does when
// the first path fails, then the block's tables are registered, chosen for
// every camera state and calculated.
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

uint32_t loadWord(const uint8_t* p) {
    uint32_t w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

// The input with version 82981.0, a size word that fits the file and the
// checksum that the reader computes (XOR of header words 0..25 and of the
// whole block words).
std::vector<uint8_t> repaired(const uint8_t* data, size_t size) {
    std::vector<uint8_t> file(data, data + size);
    if (file.size() <= kOverhead) file.resize(kOverhead + 1, 0);
    std::memcpy(file.data(), &kVersion, sizeof kVersion);
    uint32_t blockSize = loadWord(file.data() + kSizeWordOffset);
    if (blockSize > file.size() - kOverhead) {
        blockSize = static_cast<uint32_t>(file.size() - kOverhead);
        std::memcpy(file.data() + kSizeWordOffset, &blockSize, sizeof blockSize);
    }
    uint32_t sum = 0;
    for (size_t i = 0; i < kSizeWordOffset; i += 4) sum ^= loadWord(file.data() + i);
    for (size_t i = 0; i + 4 <= blockSize; i += 4) sum ^= loadWord(file.data() + kBlockOffset + i);
    std::memcpy(file.data() + kBlockOffset + blockSize, &sum, sizeof sum);
    return file;
}

void loadOnce(const uint8_t* data, size_t size, const std::vector<uint8_t>& fixed, float interCoff) {
    fuzzhost::resetFiles();
    fuzzhost::putFile(kCommonPath, data, size);
    fuzzhost::putFile(kPipePath, fixed.data(), fixed.size());

    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    Int32 loaded = DRV_ispCfgLoad(kCommonPath, kVersion, &header, &buffer);
    if (loaded == 0) {
        fuzzhost::require(header.cfg_specParam.size <= size - kOverhead, "block size beyond the file");
        fuzzsupport::exerciseTables(&header, buffer, interCoff);
    }
    // The second load reuses the header and the buffer as the first left them.
    loaded = DRV_ispCfgLoad(kPipePath, kVersion, &header, &buffer);
    if (loaded == 0) {
        fuzzhost::require(buffer != nullptr, "load succeeded without a buffer");
        fuzzhost::require(header.cfg_specParam.size <= fixed.size() - kOverhead, "block size beyond the file");
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

// Fuzz target: the NIR weight curve file "/tmp/nir.txt" through the fusion
// debug command that loads it. A failed load leaves all sixteen records as
// they were; a successful one changes the curves of the start and end records
// of the current blend and nothing else.
#include <cstring>

#include "fuzz_support.h"

namespace {

constexpr const char* kPath = "/tmp/nir.txt";
constexpr Int32 kStart = 2;
constexpr Int32 kEnd = 3;

CFG_DSP_FusionV2722 g_records[FUSION_GAIN_STEPS];
CFG_DSP_FusionV2722 g_before[FUSION_GAIN_STEPS];

void loadOnce(const uint8_t* data, size_t size) {
    fuzzsupport::setFiles({{kPath, fuzzsupport::bytesOf(data, size)}});
    for (size_t i = 0; i < sizeof g_records; ++i) reinterpret_cast<uint8_t*>(g_records)[i] = static_cast<uint8_t>(i * 7);
    std::memcpy(g_before, g_records, sizeof g_records);

    DRV_gainInterParam gain{};
    gain.gainStartIndex = kStart;
    gain.gainEndIndex = kEnd;
    const Int32 result = DRV_dspdbgFusionNir(g_records, &gain, 0, 0);
    for (Int32 r = 0; r < FUSION_GAIN_STEPS; ++r) {
        const bool mayChange = result == 0 && (r == kStart || r == kEnd);
        if (mayChange) {
            // Only the curve changes; both records get the same one.
            fuzzsupport::require(std::memcmp(&g_records[r], &g_before[r], offsetof(CFG_DSP_FusionV2722, w_nir)) == 0,
                              "a scalar changed with the curve");
        } else {
            fuzzsupport::require(std::memcmp(&g_records[r], &g_before[r], sizeof g_records[r]) == 0,
                              "a record changed that must not");
        }
    }
    if (result == 0) {
        fuzzsupport::require(std::memcmp(g_records[kStart].w_nir, g_records[kEnd].w_nir, FUSION_NIR_POINTS) == 0,
                          "start and end curves differ");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzsupport::runWithFaults(data, size, [&] { loadOnce(data, size); });
    return 0;
}

// Fuzz target: the registration file "calibration.txt". The input is the file
// in /var/tmp/; it goes through the loader that creation runs. A successful
// load must leave counts within the library's bounds and arrays of exactly
// those counts (every element is read back, so the address sanitizer checks
// the sizes); the process-wide record is released after every run.
#include "driver/registration.h"
#include "fuzz_support.h"

namespace {

constexpr const char* kPath = "/var/tmp/calibration.txt";

void loadOnce(const uint8_t* data, size_t size) {
    fuzzsupport::setFiles({{kPath, fuzzsupport::bytesOf(data, size)}});
    const Int32 place = DRV_ispRegistrateCfgLoad();
    const DRV_RegistrateParam& record = drvRegistrateParam;
    if (place == 1) {
        fuzzsupport::require(record.zoomNum > 0 && record.zoomNum <= ispdsp::kRegistrateMaxZoomNum,
                          "zoomNum out of bounds");
        fuzzsupport::require(record.regNum > 0 && record.regNum <= ispdsp::kRegistrateMaxRegNum, "regNum out of bounds");
        fuzzsupport::require(record.zoomX != nullptr && record.registerParam != nullptr, "arrays missing");
        volatile Uint32 sink = 0;
        for (Int32 i = 0; i < record.zoomNum; ++i) sink = sink + static_cast<Uint32>(record.zoomX[i]);
        const Int64 pairs = Int64{record.zoomNum} * record.regNum;
        for (Int64 k = 0; k < pairs; ++k) sink = sink + record.registerParam[k].addr + record.registerParam[k].data;
    } else {
        fuzzsupport::require(place == -1, "a place that holds no file was reported");
        fuzzsupport::require(record.zoomX == nullptr && record.registerParam == nullptr && record.zoomNum == 0,
                          "a failed load changed the record");
    }
    DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzsupport::runWithFaults(data, size, [&] { loadOnce(data, size); });
    return 0;
}

// Fuzz target: the debug console ("aewDebug") of a created instance, and two
// frames of the fusion update after it. The input is split at its NUL bytes
// into up to 33 arguments, each in a buffer of its own size (so a read past an
// argument's end is caught), and handed to the OpSetDbgDspParam slot. The
// instance is created and deleted again for every input, from in-memory copies
// of the sample device files (data/sample: the parameter file, the NIR curve
// that the w_nir command loads, the calibration's zoom positions). The gain position,
// zoom, fusion type, standby switch, argument count and language come from
// the input's hash: mostly what a host passes, sometimes a faulty host's values.
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "driver/registration.h"
#include "fuzz_support.h"

namespace {

constexpr const char* kParamPath = "/var/tmp/dsp_isp_para.bin";
constexpr const char* kNirPath = "/tmp/nir.txt";
constexpr const char* kCalibrationPath = "/mnt/mtd/calibration.txt";

// A sample device file, read once from the source tree.
std::string sampleFile(const char* name) {
    std::ifstream in(std::string(ISPDSP_SAMPLE_DIR "/") + name, std::ios::binary);
    fuzzsupport::require(in.good(), "sample device file missing");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

const std::string g_paramFile = sampleFile("dsp_isp_para.bin");
const std::string g_nirText = sampleFile("nir.txt");
const std::string g_calibrationText = sampleFile("calibration.txt");

DRV_ispOpsParams g_ops;  // the host's operation table (large: kept static)

Int32 onFlag(const DRV_ispSetDrvFlagParam* param) {
    fuzzsupport::require(param != nullptr && param->cmdType == ISP_SET_FUSION, "unexpected flag call");
    return 0;
}

Int32 onDsp(DRV_dspIspCfgOpsCtrl*, Ptr) { return 0; }

void consoleOnce(const std::vector<std::unique_ptr<char[]>>& args, uint64_t hash) {
    fuzzsupport::setFiles({{kParamPath, g_paramFile}, {kNirPath, g_nirText}, {kCalibrationPath, g_calibrationText}});

    DRV_ispXCreateParams create{};
    create.aewPipeId = 1;
    create.ispNum = 1;
    create.OpSetDrvFlag = onFlag;
    create.dspOps.OpGetDspConfig = onDsp;
    create.dspOps.OpSetDspConfig = onDsp;
    std::memset(&g_ops, 0, sizeof g_ops);
    if (DRV_dspIspCreateX(&create, &g_ops) != 0) {
        // Only an injected fault may fail the creation, and then no instance is left.
        fuzzsupport::require(g_ops.ispXHndl == nullptr, "failed creation left an instance");
        DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
        return;
    }

    g_ops.runParam.dncMode = (hash >> 8) & 1;
    static const Int32 kGainIndexes[] = {0, 1, 7, 15, 15, 3, 8, 0, -1, 16, 1 << 30};
    constexpr uint64_t kGainCount = sizeof kGainIndexes / sizeof kGainIndexes[0];
    g_ops.runParam.gainInterParam.gainStartIndex = kGainIndexes[(hash >> 12) % kGainCount];
    g_ops.runParam.gainInterParam.gainEndIndex = kGainIndexes[(hash >> 20) % kGainCount];
    g_ops.runParam.gainInterParam.interCoff = fuzzsupport::coefficientFor(hash >> 28);
    Int32 changed = 0;
    fuzzsupport::require(g_ops.OpRefreshCfg(&g_ops, &changed) == 0, "refresh failed");

    DRV_ispCmdParam cmd{};
    for (size_t i = 0; i < args.size(); ++i) cmd.argp[i].pointer = args[i].get();
    cmd.argc = static_cast<Int32>(args.size());
    // Now and then the count does not match the list, as from a faulty host.
    switch ((hash >> 36) % 16) {
        case 0: cmd.argc += 2; break;
        case 1: cmd.argc = -1; break;
        case 2: cmd.argc = DRV_ISP_CMD_MAX_ARGS + 5; break;
        default: break;
    }
    const Int32 langue = static_cast<Int32>((hash >> 40) % 3);
    const Int32 result = g_ops.OpSetDbgDspParam(&g_ops, &cmd, langue);
    fuzzsupport::require(result == 0 || result == -1, "unexpected console result");

    // Two frames of the fusion update with the pipe as its own reference and
    // the host values of this input (fusion type, zoom, standby switch, and
    // the gain position above, faulty ones included).
    DRV_RefPipeParams ref{};
    ref.refXHndl = g_ops.ispXHndl;
    ref.fusionType = static_cast<Uint32>((hash >> 44) % 3);
    fuzzsupport::require(g_ops.OpSetRefPipeParams(&g_ops, &ref) == 0, "reference pipe refused");
    static const Int32 kZooms[] = {-1, 0, 150, 999, 1000, 2500, 100000, -2147483647 - 1, 2147483647};
    DRV_ispModuleResults results{};
    results.sensorStandbyParam.pSwitch = static_cast<Uint8>(hash >> 52);
    fuzzsupport::require(g_ops.OpSetModuleResults(&g_ops, &results) == 0, "module results refused");
    for (int frame = 0; frame < 2; ++frame) {
        g_ops.runParam.ptzUpdateParam.zoom = kZooms[((hash >> 56) + frame) % (sizeof kZooms / sizeof kZooms[0])];
        const Int32 fused = g_ops.OpSetFusion(&g_ops);
        fuzzsupport::require(fused == 0 || fused == -1, "unexpected fusion result");
    }

    fuzzsupport::require(g_ops.OpDelete(&g_ops) == 0, "delete failed");
    // The registration record outlives instances; released here so that every
    // run starts from none and the leak check sees only this run's blocks.
    DRV_ispReleaseRegistrateCfg(&drvRegistrateParam);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::unique_ptr<char[]>> args;
    size_t begin = 0;
    while (begin < size && args.size() < DRV_ISP_CMD_MAX_ARGS) {
        const void* nul = std::memchr(data + begin, 0, size - begin);
        const size_t end = nul != nullptr ? static_cast<size_t>(static_cast<const uint8_t*>(nul) - data) : size;
        auto arg = std::make_unique<char[]>(end - begin + 1);
        std::memcpy(arg.get(), data + begin, end - begin);
        arg[end - begin] = '\0';
        args.push_back(std::move(arg));
        begin = end + 1;
    }
    const uint64_t hash = fuzzsupport::inputHash(data, size);
    fuzzsupport::runWithFaults(data, size, [&] { consoleOnce(args, hash); });
    return 0;
}

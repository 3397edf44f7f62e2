// A test host for the driver instance: pipes as the host framework keeps them
// (creation record, operation table, the flags its callback received), the
// device files the driver reads.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "ispdsp/ispdsp.h"
#include "support/dsp_capture.h"
#include "support/log_capture.h"
#include "support/param_file_builder.h"
#include "support/sandbox.h"

namespace driver_test {

inline constexpr const char* kCommonParamFile = "/var/tmp/dsp_isp_para.bin";
inline std::string pipeParamFile(Uint32 pipeId) { return "/var/tmp/" + std::to_string(pipeId) + "/dsp_isp_para.bin"; }

// The three places of the registration file, by registerFlag (1..3).
inline const char* registrationPath(int place) {
    static const char* const kPaths[] = {"", "/var/tmp/calibration.txt", "/var/calibration.txt", "/mnt/mtd/calibration.txt"};
    return kPaths[place];
}

// A well-formed registration file with the given zoom positions and two register pairs each.
inline std::string registrationText(std::initializer_list<int> zooms) {
    std::string text = "ZOOMNUM:" + std::to_string(zooms.size()) + " REGNUM:2\n";
    unsigned reg = 0x10;
    for (int zoom : zooms) {
        text += "ZOOM:" + std::to_string(zoom) + "\n";
        for (int k = 0; k < 2; ++k, ++reg) text += "0x" + std::to_string(reg) + " 0x" + std::to_string(k + 1) + "\n";
        text += "TFORM: 1 0 0 0 1 0\n";
    }
    return text;
}

// A table of the given type whose fusion records differ by `variant`.
inline CFG_DspIspCfgParam fusionTable(uint32_t variant, Uint32 fusionFlag = 1) {
    CFG_DspIspCfgParam table = ispdsp_test::makeDefaultParamTable(variant);
    table.ispFusionFlag = fusionFlag;
    return table;
}

// The base of the driver tests: their own device files, log and DSP.
class DriverTest : public testing::Test {
protected:
    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
};

// One flag call as the host's callback received it.
struct FlagCall {
    Ptr privData;
    Int32 cmdType;
    Uint32 flag;
    bool reservedZero;
};

// One pipe of the host: the creation record, the operation table (owned by the
// host, as in production) and the flags sent to it. privData points at the pipe,
// so the flag callback knows where to record.
class HostPipe {
public:
    // make_unique value-initialises: the operation table starts all zero, like `create`.
    explicit HostPipe(Uint32 pipeId, bool withFlagCallback = true) : ops_(std::make_unique<DRV_ispOpsParams>()) {
        create.aewPipeId = pipeId;
        create.ispNum = 1;
        for (Uint32 i = 0; i < 8; ++i) create.ispIds[i] = 10 * pipeId + i;
        create.OpSetDrvFlag = withFlagCallback ? &HostPipe::onFlag : nullptr;
        create.privData = this;
        create.dspOps.OpGetDspConfig = ispdsp_test::DspCapture::getCallback();
        create.dspOps.OpSetDspConfig = ispdsp_test::DspCapture::setCallback();
        // Colour, linear, day, base scene; gain between steps 0 and 1.
        ops_->runParam.dncMode = 1;
        ops_->runParam.gainInterParam.gainStartIndex = 0;
        ops_->runParam.gainInterParam.gainEndIndex = 1;
        ops_->runParam.ptzUpdateParam.zoom = -1;
    }
    HostPipe(const HostPipe&) = delete;
    HostPipe& operator=(const HostPipe&) = delete;

    DRV_ispXCreateParams create{};
    std::vector<FlagCall> flags;

    DRV_ispOpsParams* ops() { return ops_.get(); }
    DRV_ispRunParams& run() { return ops_->runParam; }
    DRV_aewIspHandleDSP* instance() { return static_cast<DRV_aewIspHandleDSP*>(ops_->ispXHndl); }

    Int32 createPipe() { return DRV_dspIspCreateX(&create, ops_.get()); }
    Int32 start() { return ops_->OpStart(ops_.get()); }
    Int32 stop() { return ops_->OpStop(ops_.get()); }
    Int32 reload() { return ops_->OpReloadCfg(ops_.get()); }
    Int32 gainFlags() { return ops_->OpInterGainFlags(ops_.get()); }
    Int32 remove() { return ops_->OpDelete(ops_.get()); }
    Int32 refresh(Int32* changed) { return ops_->OpRefreshCfg(ops_.get(), changed); }
    Int32 fusion() { return ops_->OpSetFusion(ops_.get()); }
    Int32 moduleResults(DRV_ispModuleResults* results) { return ops_->OpSetModuleResults(ops_.get(), results); }
    Int32 refPipe(DRV_RefPipeParams* ref) { return ops_->OpSetRefPipeParams(ops_.get(), ref); }
    Int32 console(DRV_ispCmdParam* cmd, Int32 langue) { return ops_->OpSetDbgDspParam(ops_.get(), cmd, langue); }
    Ptr xHndl() { return ops_->ispXHndl; }  // the lookup slot itself: driver_lifecycle_test.cpp
    // Publishes module results whose only meaningful value is the standby switch.
    Int32 publishSwitch(Uint8 pSwitch) {
        DRV_ispModuleResults results;
        std::memset(&results, 0, sizeof(results));
        results.sensorStandbyParam.pSwitch = pSwitch;
        return moduleResults(&results);
    }

private:
    static Int32 onFlag(const DRV_ispSetDrvFlagParam* param) {
        auto* pipe = static_cast<HostPipe*>(param->privData);
        const bool reservedZero =
            std::all_of(std::begin(param->reserved), std::end(param->reserved), [](Uint32 w) { return w == 0; });
        pipe->flags.push_back({param->privData, param->cmdType, param->flag, reservedZero});
        return 7;  // never looked at by the driver
    }

    std::unique_ptr<DRV_ispOpsParams> ops_;
};

// Links a colour and a mono pipe the way the host does after every start.
inline void linkPipes(HostPipe& colour, HostPipe& mono) {
    DRV_RefPipeParams ref;
    std::memset(&ref, 0, sizeof(ref));
    ref.refXHndl = mono.xHndl();
    ref.fusionType = DRV_ISP_FUSION_MONO;
    ASSERT_EQ(colour.refPipe(&ref), 0);
    ref.refXHndl = colour.xHndl();
    ref.fusionType = DRV_ISP_FUSION_COLOR;
    ASSERT_EQ(mono.refPipe(&ref), 0);
}

// An argument record as the host's console builds it (argp[argc] is null).
struct ConsoleArgs {
    explicit ConsoleArgs(const std::vector<const char*>& args) : texts(args.begin(), args.end()) {
        std::memset(&record, 0, sizeof(record));
        for (size_t i = 0; i < texts.size() && i < DRV_ISP_CMD_MAX_ARGS; ++i)
            record.argp[i].pointer = const_cast<char*>(texts[i].c_str());
        record.argc = static_cast<Int32>(texts.size());
    }
    std::vector<std::string> texts;
    DRV_ispCmdParam record;
};

}  // namespace driver_test

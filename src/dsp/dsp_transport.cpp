// The one send routine behind every DRV_dspOpSet... function.
#include "dsp/dsp_transport.h"

#include <cstdio>
#include <cstring>

namespace ispdsp {
namespace {

// Writes one field of the message from the caller's record.
void applyMove(const DspFieldMove& move, const Uint8* record, Uint8* message) {
    Uint8* dst = message + move.messageOffset;
    const Uint8* src = record + move.recordOffset;
    switch (move.how) {
        case DspMove::Copy:
            std::memcpy(dst, src, move.bytes);
            break;
        case DspMove::Low16: {
            Int32 value;
            std::memcpy(&value, src, sizeof value);
            const Uint16 low = static_cast<Uint16>(static_cast<Uint32>(value) & 0xFFFFu);
            std::memcpy(dst, &low, sizeof low);
            break;
        }
        case DspMove::AddressOf: {
            const void* address = src;
            std::memcpy(dst, &address, sizeof address);
            break;
        }
        case DspMove::OutputMode: {
            Uint32 fusionSwitch;
            std::memcpy(&fusionSwitch, src, sizeof fusionSwitch);
            // Unsigned compare: a negative switch is just another unknown value.
            const Uint32 mode = fusionSwitch < kDspOutputModeBySwitch.size() ? kDspOutputModeBySwitch[fusionSwitch]
                                                                            : Uint32{DSP_OUTPUT_FUSE_INVALID};
            std::memcpy(dst, &mode, sizeof mode);
            break;
        }
    }
}

}  // namespace

void dspPrintNullPointer(DspCaller caller, const char* argumentName) {
    std::printf("\033[0;32;31m[DSP_DRV] ERROR  (%s|%d): Input NULL POINT %s!\n\033[m", caller.function, caller.line,
                argumentName);
}

void dspPrintSetMissing(DspCaller caller) {
    std::printf("\033[1;33m[DSP_DRV] WARN  (%s|%d): Set dsp cfg failed!\n\033[m", caller.function, caller.line);
}

void dspPrintGetMissing(DspCaller caller) {
    std::printf("\033[1;33m[DSP_DRV] WARN  (%s|%d): Get dsp cfg failed!\n\033[m", caller.function, caller.line);
}

void dspPrintGetError(DspCaller caller) {
    std::printf("\033[0;32;31m[DSP_DRV] ERROR  (%s|%d): OpGetDspConfig error! \n\033[m", caller.function,
                caller.line);
}

Int32 dspSendStage(DspCaller caller, const DspStageDesc& stage, const void* record, const DRV_dspIspHandle* dspOps) {
    if (record == nullptr) {
        dspPrintNullPointer(caller, "param");
        return -1;
    }
    if (dspOps == nullptr) {
        dspPrintNullPointer(caller, "dspOps");
        return -1;
    }

    // Both live in this frame and are cleared whole, so no stale byte reaches the DSP.
    DRV_dspIspCfgOpsCtrl ctrl;
    DSP_AEW_CFG_S message;
    std::memset(&ctrl, 0, sizeof ctrl);
    std::memset(&message, 0, sizeof message);

    if (stage.nIdFromHandle) {
        ctrl.nId = dspOps->nId;
    }
    message.u32Type = stage.type;
    for (Uint8 i = 0; i < stage.moveCount; ++i) {
        applyMove(stage.moves[i], static_cast<const Uint8*>(record), reinterpret_cast<Uint8*>(&message));
    }

    const OpDspIspCfgctl send = dspOps->dspIspCfgOps.OpSetDspConfig;
    if (send == nullptr) {
        dspPrintSetMissing(caller);
        return -1;
    }
    const Int32 result = send(&ctrl, &message);
    return stage.returnsCallbackResult ? result : 0;
}

}  // namespace ispdsp

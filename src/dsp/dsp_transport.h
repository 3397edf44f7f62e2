// The common Set routine of every DSP message function and the printed
// messages of the transport. Unlike the rest of the driver, the message
// functions report to standard output with printf, in ANSI colours.
#pragma once

#include "dsp/dsp_stage_table.h"
#include "ispdsp/dsp_config.h"

namespace ispdsp {

// The public function on whose behalf the transport prints: its name and a source line.
struct DspCaller {
    const char* function;
    int line;
};

// "Input NULL POINT <name>!" in red.
void dspPrintNullPointer(DspCaller caller, const char* argumentName);
// "Set dsp cfg failed!" / "Get dsp cfg failed!" in yellow: the host left out the callback.
void dspPrintSetMissing(DspCaller caller);
void dspPrintGetMissing(DspCaller caller);
// "OpGetDspConfig error! " in red: the host's read-back failed.
void dspPrintGetError(DspCaller caller);

// Builds one cleared message from `record` as the stage's descriptor says and
// hands it to the handle's OpSetDspConfig. Null record before null handle.
// Returns -1 on a null argument or a missing callback, otherwise the
// callback's result or 0, as the descriptor says.
Int32 dspSendStage(DspCaller caller, const DspStageDesc& stage, const void* record, const DRV_dspIspHandle* dspOps);

// Typed entry of the Set functions: checks at compile time that the stage's
// moves stay inside the caller's record type.
template <DspStage Stage, class Record>
inline Int32 dspSend(DspCaller caller, const Record* record, const DRV_dspIspHandle* dspOps) {
    static_assert(dspStageFits(kDspStageTable[Stage], sizeof(Record)), "stage moves leave the record");
    return dspSendStage(caller, kDspStageTable[Stage], record, dspOps);
}

}  // namespace ispdsp

// Used inside a public Set function so that the printed messages name it.
#define ISPDSP_DSP_SEND(stage, record, dspOps) \
    ispdsp::dspSend<ispdsp::stage>(ispdsp::DspCaller{__func__, __LINE__}, record, dspOps)

// The host's side of the driver's callbacks: a simulated DSP that receives the
// configuration messages (and answers the fusion read-back with the last
// fusion parameters it was given), and the flag callback through which the
// driver asks the host to run or stop its fusion operation. Both report
// through the run's Reporter. The DSP callbacks carry no pipe of their own, so
// the pipe comes from the reporter's context; the flag callback gets its pipe
// through privData.
#pragma once

#include <vector>

#include "ispdsp/driver.h"
#include "reporter.h"

namespace ispdsp::tools::sim {

struct DspEndpointOptions {
    bool curves = false;  // all 511 NIR curve points in message events
};

// Installs the endpoint for the process (the callbacks are plain functions).
void installDspEndpoint(Reporter& reporter, DspEndpointOptions options);
void removeDspEndpoint();

OpDspIspCfgctl dspSetCallback();
OpDspIspCfgctl dspGetCallback();

// privData of a pipe's creation record: names the pipe in flag events.
struct FlagTarget {
    int pipe;
};
DRV_ispSetDrvFlagFn flagCallback();

// Summary of a byte table for events: min, max, mean, first points (or all).
Event byteTableSummary(const std::vector<uint8_t>& points, bool all);

}  // namespace ispdsp::tools::sim

// The host's frame loop for a fusing pair: a colour pipe (aewPipeId 0) and a
// mono pipe (aewPipeId 1), each with the operation table and creation record
// that the host owns, linked to each other after every start.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "dsp_endpoint.h"
#include "driver_library.h"
#include "ispdsp/driver.h"
#include "names.h"
#include "reporter.h"
#include "scenario.h"
#include "stage_sender.h"

namespace ispdsp::tools::sim {

class PipePair {
public:
    // `stages` (may be null): also send the smaller stages every frame.
    PipePair(const DriverApi& api, Reporter& reporter, const StageSender* stages);
    ~PipePair();
    PipePair(const PipePair&) = delete;
    PipePair& operator=(const PipePair&) = delete;

    // Creates both pipes; false when a creation failed (reported, and the
    // driver's log lines of that creation kept in failureLog()).
    bool create();
    // Starts both pipes and links them: each gets the other's instance.
    bool startAndLink();
    // One frame: run parameters, then per operation both pipes
    // (OpSetModuleResults, OpInterGainFlags, OpRefreshCfg, OpSetFusion).
    void runFrame(const FrameInput& input, int64_t frame, const char* source);
    // One console line for a pipe: the arguments go to OpSetDbgDspParam.
    // `expected` (may be null): why a -1 is the driver's design (the menu), so
    // it is labelled and not counted as a failure.
    Int32 console(int pipe, const std::vector<std::string>& args, Int32 langue, const char* expected = nullptr);
    // The pipe's live table set (inside the driver's parameter buffer); null before creation.
    const CFG_DspIspCfgTables* tableSet(int pipe) const;
    // Stops and deletes both pipes (whatever was created).
    void teardown();

    const std::vector<std::string>& failureLog() const { return failureLog_; }
    const std::string& failure() const { return failure_; }

private:
    struct Pipe {
        int index = 0;
        DRV_ispXCreateParams create{};
        std::unique_ptr<DRV_ispOpsParams> ops;  // 1.9 KB, owned like a host's table
        FlagTarget flagTarget{};
        DRV_dspIspHandle stageHandle{};  // the host's own transport for the smaller stages
        bool created = false;
    };

    Int32 call(int pipe, const char* op, Int32 result, const std::string& expected = std::string());
    void setRunParams(Pipe& pipe, const PipeInput& input);
    void refresh(Pipe& pipe);
    bool fail(const std::string& what);

    const DriverApi& api_;
    Reporter& reporter_;
    const StageSender* stages_;
    std::array<Pipe, kPipeCount> pipes_;
    std::array<bool, kPipeCount> fusedSinceLink_{};  // OpSetFusion ran since the last link
    std::vector<std::string> failureLog_;
    std::string failure_;
};

}  // namespace ispdsp::tools::sim

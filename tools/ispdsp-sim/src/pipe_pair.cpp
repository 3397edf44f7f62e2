#include "pipe_pair.h"

#include <cmath>
#include <cstring>

namespace ispdsp::tools::sim {

namespace {

// Coefficients for display: six decimals, so 0.1f reads 0.1.
double rounded(float value) { return std::round(static_cast<double>(value) * 1e6) / 1e6; }

Event inputEvent(const PipeInput& in) {
    return Event{{"gainStartIndex", in.gain.start}, {"gainEndIndex", in.gain.end}, {"interCoff", rounded(in.gain.coff)},
                 {"zoom", in.zoom},         {"dncMode", in.dncMode},        {"hdrMode", in.hdrMode},
                 {"imageScene", in.imageScene}, {"sceneMode", in.sceneMode},  {"pSwitch", in.pSwitch}};
}

}  // namespace

PipePair::PipePair(const DriverApi& api, Reporter& reporter, const StageSender* stages)
    : api_(api), reporter_(reporter), stages_(stages) {
    for (int i = 0; i < kPipeCount; ++i) {
        Pipe& pipe = pipes_[i];
        pipe.index = i;
        pipe.ops = std::make_unique<DRV_ispOpsParams>();
        std::memset(pipe.ops.get(), 0, sizeof *pipe.ops);
        std::memset(&pipe.create, 0, sizeof pipe.create);
        pipe.flagTarget.pipe = i;
        pipe.create.aewPipeId = static_cast<Uint32>(i);
        pipe.create.ispNum = 1;
        for (Uint32 k = 0; k < 8; ++k) pipe.create.ispIds[k] = static_cast<Uint32>(i);
        pipe.create.OpSetDrvFlag = flagCallback();
        pipe.create.privData = &pipe.flagTarget;
        pipe.create.dspOps.OpGetDspConfig = dspGetCallback();
        pipe.create.dspOps.OpSetDspConfig = dspSetCallback();
        // The host's own handle for the stage messages names the pipe's DSP core.
        pipe.stageHandle.nId = static_cast<Uint32>(i);
        pipe.stageHandle.dspIspCfgOps.OpGetDspConfig = dspGetCallback();
        pipe.stageHandle.dspIspCfgOps.OpSetDspConfig = dspSetCallback();
    }
}

PipePair::~PipePair() = default;

Int32 PipePair::call(int pipe, const char* op, Int32 result, const std::string& expected) {
    Event payload{{"op", op}, {"ret", result}};
    if (result != 0 && !expected.empty()) {
        payload["expected"] = expected;
        reporter_.countExpected();
    } else if (result != 0) {
        reporter_.countFailure(op, result);
    }
    reporter_.context().pipe = pipe;
    reporter_.emit("call", payload);
    return result;
}

bool PipePair::fail(const std::string& what) {
    failure_ = what;
    failureLog_ = reporter_.operationLog();
    return false;
}

bool PipePair::create() {
    for (Pipe& pipe : pipes_) {
        reporter_.beginOperation(pipe.index, "DRV_dspIspCreateX");
        const Int32 result = call(pipe.index, "DRV_dspIspCreateX", api_.createX(&pipe.create, pipe.ops.get()));
        // A failed creation may still leave its instance attached to the table.
        pipe.created = pipe.ops->ispXHndl != nullptr;
        if (result != 0)
            return fail(std::string("creating the ") + pipeName(pipe.index) + " pipe (aewPipeId " +
                        std::to_string(pipe.index) + ") failed: DRV_dspIspCreateX returned " + std::to_string(result));
    }
    return true;
}

bool PipePair::startAndLink() {
    for (Pipe& pipe : pipes_) {
        reporter_.beginOperation(pipe.index, "OpStart");
        if (call(pipe.index, "OpStart", pipe.ops->OpStart(pipe.ops.get())) != 0)
            return fail(std::string("OpStart of the ") + pipeName(pipe.index) + " pipe failed");
    }
    std::array<Ptr, kPipeCount> handles{};
    for (Pipe& pipe : pipes_) {
        reporter_.beginOperation(pipe.index, "OpGetXHndl");
        if (call(pipe.index, "OpGetXHndl", pipe.ops->OpGetXHndl(pipe.ops.get(), &handles[pipe.index])) != 0)
            return fail(std::string("OpGetXHndl of the ") + pipeName(pipe.index) + " pipe failed");
        // The exported lookup must name the same instance as the slot.
        Ptr exported = nullptr;
        reporter_.beginOperation(pipe.index, "DRV_ispGetXHndlX");
        call(pipe.index, "DRV_ispGetXHndlX", api_.getXHndlX(pipe.ops.get(), &exported));
        if (exported != handles[pipe.index])
            return fail(std::string("DRV_ispGetXHndlX and OpGetXHndl disagree for the ") + pipeName(pipe.index) + " pipe");
    }
    // The colour pipe gets the mono pipe (fusionType MONO) and the other way round.
    for (Pipe& pipe : pipes_) {
        const Pipe& other = pipes_[1 - pipe.index];
        DRV_RefPipeParams ref;
        std::memset(&ref, 0, sizeof ref);
        ref.refGainInterParam = other.ops->runParam.gainInterParam;
        ref.refXHndl = handles[other.index];
        ref.fusionType = other.index == kMonoPipe ? DRV_ISP_FUSION_MONO : DRV_ISP_FUSION_COLOR;
        reporter_.beginOperation(pipe.index, "OpSetRefPipeParams");
        if (call(pipe.index, "OpSetRefPipeParams", pipe.ops->OpSetRefPipeParams(pipe.ops.get(), &ref)) != 0)
            return fail(std::string("OpSetRefPipeParams of the ") + pipeName(pipe.index) + " pipe failed");
    }
    fusedSinceLink_ = {};
    return true;
}

void PipePair::setRunParams(Pipe& pipe, const PipeInput& in) {
    DRV_ispRunParams& run = pipe.ops->runParam;
    run.gainInterParam.gainStartIndex = in.gain.start;
    run.gainInterParam.gainEndIndex = in.gain.end;
    run.gainInterParam.interCoff = in.gain.coff;
    run.gainInterParam.avgGain = static_cast<Float32>(in.gain.start) + in.gain.coff;  // informational
    run.dncMode = in.dncMode;
    run.hdrMode = in.hdrMode;
    run.imageScene = static_cast<Uint8>(in.imageScene);
    run.sceneMode = in.sceneMode;
    run.ptzUpdateParam.zoom = in.zoom;
}

void PipePair::refresh(Pipe& pipe) {
    reporter_.beginOperation(pipe.index, "OpRefreshCfg");
    Int32 changed = -1;  // stays -1 when the driver does not write it
    const Int32 result = pipe.ops->OpRefreshCfg(pipe.ops.get(), &changed);
    if (result != 0) reporter_.countFailure("OpRefreshCfg", result);
    Event payload{{"op", "OpRefreshCfg"}, {"ret", result}};
    payload["cfgChanged"] = changed >= 0 ? Event(changed) : Event(nullptr);
    // The choice, read through the table set that ispParam points at.
    if (const auto* tables = static_cast<const CFG_DspIspCfgTables*>(pipe.ops->ispParam)) {
        payload["curTableIdx"] = tables->curTableIdx;
        payload["curTableType"] = tables->curTableType;
        payload["table"] = tables->curTable != nullptr ? tableTypeName(tables->curTableType) : "none";
        if (tables->curTable != nullptr) payload["fusionFlag"] = tables->curTable->ispFusionFlag;
    }
    reporter_.context().pipe = pipe.index;
    reporter_.emit("refresh", payload);
}

void PipePair::runFrame(const FrameInput& input, int64_t frame, const char* source) {
    reporter_.context().frame = frame;
    reporter_.context().pipe = -1;
    reporter_.context().op.clear();
    Event inputs;
    for (const Pipe& pipe : pipes_) inputs[pipeName(pipe.index)] = inputEvent(input.pipes[pipe.index]);
    reporter_.emit("frame", Event{{"source", source}, {"inputs", inputs}});

    for (Pipe& pipe : pipes_) setRunParams(pipe, input.pipes[pipe.index]);
    // Operation by operation across both pipes: both module results are
    // published before either fusion call, so the colour pipe's calculation
    // sees this frame's mono standby switch, not the previous frame's.
    for (Pipe& pipe : pipes_) {
        DRV_ispModuleResults results;
        std::memset(&results, 0, sizeof results);
        results.sensorStandbyParam.pSwitch = static_cast<Uint8>(input.pipes[pipe.index].pSwitch);
        reporter_.beginOperation(pipe.index, "OpSetModuleResults");
        call(pipe.index, "OpSetModuleResults", pipe.ops->OpSetModuleResults(pipe.ops.get(), &results));
    }
    for (Pipe& pipe : pipes_) {
        reporter_.beginOperation(pipe.index, "OpInterGainFlags");
        call(pipe.index, "OpInterGainFlags", pipe.ops->OpInterGainFlags(pipe.ops.get()));
    }
    for (Pipe& pipe : pipes_) refresh(pipe);
    for (Pipe& pipe : pipes_) {
        reporter_.beginOperation(pipe.index, "OpSetFusion");
        reporter_.context().pairStart = !fusedSinceLink_[1 - pipe.index];
        const Int32 result = pipe.ops->OpSetFusion(pipe.ops.get());
        call(pipe.index, "OpSetFusion", result, reporter_.context().pairStart ? pairStartCallNote() : std::string());
        reporter_.context().pairStart = false;
        fusedSinceLink_[pipe.index] = true;
    }
    if (stages_ != nullptr) {
        for (Pipe& pipe : pipes_) {
            const auto* tables = static_cast<const CFG_DspIspCfgTables*>(pipe.ops->ispParam);
            if (tables != nullptr && tables->curTable != nullptr)
                stages_->sendAll(reporter_, pipe.index, *tables->curTable, pipe.stageHandle);
        }
    }
    reporter_.context().pipe = -1;
    reporter_.context().op.clear();
}

const CFG_DspIspCfgTables* PipePair::tableSet(int pipe) const {
    return static_cast<const CFG_DspIspCfgTables*>(pipes_[pipe].ops->ispParam);
}

Int32 PipePair::console(int pipe, const std::vector<std::string>& args, Int32 langue, const char* expected) {
    Pipe& target = pipes_[pipe];
    // The host's argument record: 8-byte entries, argp[argc] null.
    std::vector<std::vector<char>> texts;
    texts.reserve(args.size());
    DRV_ispCmdParam cmd;
    std::memset(&cmd, 0, sizeof cmd);
    for (const std::string& arg : args) {
        if (texts.size() + 1 >= DRV_ISP_CMD_MAX_ARGS) break;  // the caller limits the count
        texts.emplace_back(arg.begin(), arg.end());
        texts.back().push_back('\0');
        cmd.argp[texts.size() - 1].pointer = texts.back().data();
    }
    cmd.argc = static_cast<Int32>(texts.size());
    reporter_.beginOperation(pipe, "OpSetDbgDspParam");
    return call(pipe, "OpSetDbgDspParam", target.ops->OpSetDbgDspParam(target.ops.get(), &cmd, langue),
                expected != nullptr ? expected : "");
}

void PipePair::teardown() {
    for (Pipe& pipe : pipes_) {
        if (!pipe.created || pipe.ops->OpStop == nullptr) continue;
        reporter_.beginOperation(pipe.index, "OpStop");
        call(pipe.index, "OpStop", pipe.ops->OpStop(pipe.ops.get()));
    }
    for (Pipe& pipe : pipes_) {
        if (!pipe.created || pipe.ops->OpDelete == nullptr) continue;
        reporter_.beginOperation(pipe.index, "OpDelete");
        call(pipe.index, "OpDelete", pipe.ops->OpDelete(pipe.ops.get()));
        pipe.created = false;
    }
    reporter_.context().pipe = -1;
    reporter_.context().op.clear();
}

}  // namespace ispdsp::tools::sim

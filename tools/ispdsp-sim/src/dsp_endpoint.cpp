#include "dsp_endpoint.h"

#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include "dsp_ranges.h"
#include "message_decoder.h"
#include "names.h"

namespace ispdsp::tools::sim {

namespace {

struct EndpointState {
    Reporter* reporter = nullptr;
    DspEndpointOptions options;
    // The DSP's current fusion parameters, per pipe: the last FUSION message.
    std::array<std::optional<DSP_AEW_CFG_S>, kPipeCount> fusionState;
};
EndpointState g_endpoint;

// Set messages come from the driver and their addresses point into its
// memory; a read-back answer is the simulator's own and is not followed.
Event messageEvent(const char* dir, const DRV_dspIspCfgOpsCtrl* ctrl, const DSP_AEW_CFG_S& message) {
    const bool fromDriver = std::strcmp(dir, "set") == 0;
    const DecodedMessage decoded = decodeMessage(message, fromDriver);
    Event payload;
    payload["op"] = g_endpoint.reporter->context().op;
    payload["dir"] = dir;
    payload["nId"] = ctrl != nullptr ? ctrl->nId : 0;
    payload["type"] = decoded.type;
    payload["stage"] = decoded.stage;
    Event fields = Event::object();
    for (const DecodedField& field : decoded.fields) {
        if (field.isAddress) {
            fields[field.name] = field.value != 0 ? Event("set") : Event(nullptr);
        } else {
            fields[field.name] = field.value;
        }
    }
    payload["fields"] = fields;
    if (decoded.type == DSP_AEW_CFG_TYPE_FSSWITCH || decoded.type == DSP_AEW_CFG_TYPE_FSSWITCH_FACTORY)
        payload["mode"] = outputModeName(message.vsfArgs.fcswitch);
    if (decoded.pathText) payload["cfg_path_text"] = *decoded.pathText;
    if (decoded.curve) payload["w_nir"] = byteTableSummary(*decoded.curve, g_endpoint.options.curves);
    if (decoded.strayBytes != 0) payload["stray"] = decoded.strayBytes;
    if (Event outside = outOfRange(decoded); fromDriver && !outside.empty()) {
        payload["outOfRange"] = outside;
        if (decoded.type == DSP_AEW_CFG_TYPE_FUSION) {
            payload["outOfRangeExpected"] = g_endpoint.reporter->context().pairStart
                                                ? "zeros at the start of a linked pair"
                                                : fusionDifferenceNote();
            g_endpoint.reporter->countExpectedOutOfRange();
        }
    }
    if (fromDriver && decoded.type == DSP_AEW_CFG_TYPE_FUSION && g_endpoint.reporter->context().pairStart)
        payload["expected"] = pairStartMessageNote();
    return payload;
}

Int32 onSetDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    if (g_endpoint.reporter == nullptr || message == nullptr) return -1;
    const auto* msg = static_cast<const DSP_AEW_CFG_S*>(message);
    const int pipe = g_endpoint.reporter->context().pipe;
    if (msg->u32Type == DSP_AEW_CFG_TYPE_FUSION && pipe >= 0 && pipe < kPipeCount) g_endpoint.fusionState[pipe] = *msg;
    const Event payload = messageEvent("set", ctrl, *msg);
    g_endpoint.reporter->countMessage(payload["stage"].get<std::string>());
    g_endpoint.reporter->emit("message", payload);
    return 0;
}

// The DSP answers with its current fusion configuration: what this pipe last
// sent, or zeros before its first FUSION message.
Int32 onGetDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    if (g_endpoint.reporter == nullptr || message == nullptr) return -1;
    auto* msg = static_cast<DSP_AEW_CFG_S*>(message);
    const uint32_t type = msg->u32Type;
    const int pipe = g_endpoint.reporter->context().pipe;
    if (type == DSP_AEW_CFG_TYPE_FUSION && pipe >= 0 && pipe < kPipeCount && g_endpoint.fusionState[pipe]) {
        std::memcpy(msg, &*g_endpoint.fusionState[pipe], sizeof *msg);
    } else {
        std::memset(msg, 0, sizeof *msg);
        msg->u32Type = type;
    }
    g_endpoint.reporter->emit("message", messageEvent("get", ctrl, *msg));
    return 0;
}

Int32 onSetDrvFlag(const DRV_ispSetDrvFlagParam* param) {
    if (g_endpoint.reporter == nullptr || param == nullptr) return -1;
    Reporter& reporter = *g_endpoint.reporter;
    const auto* target = static_cast<const FlagTarget*>(param->privData);
    // The flag names its pipe through privData, whatever the context says.
    const int saved = reporter.context().pipe;
    if (target != nullptr) reporter.context().pipe = target->pipe;
    Event payload;
    payload["op"] = reporter.context().op;
    payload["cmdType"] = param->cmdType;
    payload["cmd"] = param->cmdType == ISP_SET_FUSION ? "ISP_SET_FUSION" : "?";
    payload["flag"] = param->flag;
    if (target == nullptr) payload["privData"] = "missing";
    // The driver asks for the fusion run once per accepted console change.
    if (reporter.context().op == "OpSetDbgDspParam" && param->flag == 1) reporter.countConsoleChange();
    reporter.emit("flag", payload);
    reporter.context().pipe = saved;
    return 0;
}

}  // namespace

void installDspEndpoint(Reporter& reporter, DspEndpointOptions options) {
    g_endpoint = EndpointState{};
    g_endpoint.reporter = &reporter;
    g_endpoint.options = options;
}

void removeDspEndpoint() { g_endpoint = EndpointState{}; }

OpDspIspCfgctl dspSetCallback() { return &onSetDspConfig; }
OpDspIspCfgctl dspGetCallback() { return &onGetDspConfig; }
DRV_ispSetDrvFlagFn flagCallback() { return &onSetDrvFlag; }

Event byteTableSummary(const std::vector<uint8_t>& points, bool all) {
    Event summary;
    if (points.empty()) return summary;
    uint32_t min = 255, max = 0;
    uint64_t sum = 0;
    for (uint8_t p : points) {
        min = std::min<uint32_t>(min, p);
        max = std::max<uint32_t>(max, p);
        sum += p;
    }
    summary["min"] = min;
    summary["max"] = max;
    // Two decimals, so the text is the same on every machine.
    summary["mean"] = std::round(static_cast<double>(sum) * 100.0 / static_cast<double>(points.size())) / 100.0;
    Event first = Event::array();
    for (size_t i = 0; i < std::min<size_t>(points.size(), 8); ++i) first.push_back(points[i]);
    summary["first"] = first;
    if (all) summary["points"] = points;
    return summary;
}

}  // namespace ispdsp::tools::sim

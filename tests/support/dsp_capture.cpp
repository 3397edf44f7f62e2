#include "support/dsp_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace ispdsp_test {
namespace {

DspCapture* g_current = nullptr;

}  // namespace

testing::AssertionResult isDspPrint(const std::string& printed, DspPrint kind, const std::string& function,
                                    const std::string& argument) {
    // Colour, tag and message of each kind, in DspPrint order.
    static const struct {
        const char *colour, *tag, *message;
    } kShapes[] = {{"\033[0;32;31m", "ERROR", "Input NULL POINT "},
                   {"\033[1;33m", "WARN", "Set dsp cfg failed!"},
                   {"\033[1;33m", "WARN", "Get dsp cfg failed!"},
                   {"\033[0;32;31m", "ERROR", "OpGetDspConfig error! "}};
    const auto& shape = kShapes[static_cast<int>(kind)];
    const std::string head = std::string(shape.colour) + "[DSP_DRV] " + shape.tag + "  (" + function + "|";
    const std::string tail = std::string("): ") + shape.message + (kind == DspPrint::NullPointer ? argument + "!" : "") + "\n\033[m";
    const bool framed = printed.size() > head.size() + tail.size() && printed.starts_with(head) && printed.ends_with(tail);
    const std::string line = framed ? printed.substr(head.size(), printed.size() - head.size() - tail.size()) : "x";
    if (std::all_of(line.begin(), line.end(), [](char ch) { return ch >= '0' && ch <= '9'; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "printed: \"" << testing::PrintToString(printed) << "\"\nexpected: \""
                                       << testing::PrintToString(head + "<line>" + tail) << "\"";
}

std::span<const Uint8> DspCall::bytes() const {
    return {reinterpret_cast<const Uint8*>(&message), sizeof message};
}

Uint32 DspCall::word(size_t offset) const {
    Uint32 value = 0;
    if (offset + sizeof value <= sizeof message) std::memcpy(&value, bytes().data() + offset, sizeof value);
    return value;
}

std::optional<size_t> DspCall::firstNonZeroExcept(std::initializer_list<ByteRange> filled) const {
    const auto b = bytes();
    for (size_t i = sizeof(Uint32); i < b.size(); ++i) {
        const bool inFilled =
            std::any_of(filled.begin(), filled.end(), [i](const ByteRange& r) { return i >= r.begin && i < r.end; });
        if (!inFilled && b[i] != 0) return i;
    }
    return std::nullopt;
}

bool DspCall::ctrlReservedZero() const {
    return std::all_of(std::begin(ctrl.reserved), std::end(ctrl.reserved), [](Uint32 w) { return w == 0; });
}

DspCapture::DspCapture() : previous_(g_current) { g_current = this; }

DspCapture::~DspCapture() { g_current = previous_; }

DRV_dspIspHandle DspCapture::handle(Uint32 nId) const {
    DRV_dspIspHandle h;
    std::memset(&h, 0, sizeof h);
    h.nId = nId;
    h.dspIspCfgOps.OpGetDspConfig = &DspCapture::onGet;
    h.dspIspCfgOps.OpSetDspConfig = &DspCapture::onSet;
    return h;
}

OpDspIspCfgctl DspCapture::setCallback() { return &DspCapture::onSet; }
OpDspIspCfgctl DspCapture::getCallback() { return &DspCapture::onGet; }

std::vector<DspCall> DspCapture::setsOfType(Uint32 type) const {
    std::vector<DspCall> out;
    std::copy_if(sets_.begin(), sets_.end(), std::back_inserter(out),
                 [type](const DspCall& c) { return c.type() == type; });
    return out;
}

std::vector<Uint32> DspCapture::setTypes() const {
    std::vector<Uint32> out;
    for (const DspCall& c : sets_) out.push_back(c.type());
    return out;
}

void DspCapture::clearCalls() {
    sets_.clear();
    gets_.clear();
}

DspCall DspCapture::record(const DRV_dspIspCfgOpsCtrl* ctrl, const void* message) const {
    DspCall call;
    std::memset(&call.ctrl, 0, sizeof call.ctrl);  // padding included: compared bytewise
    std::memset(&call.message, 0, sizeof call.message);
    if (ctrl != nullptr) std::memcpy(&call.ctrl, ctrl, sizeof call.ctrl);
    if (message != nullptr) std::memcpy(&call.message, message, sizeof call.message);
    if (followAddresses_) {
        if (call.message.u32Type == DSP_AEW_CFG_TYPE_CAL && call.message.dspArgs.irCalPramArgs.calParam.cfg_path) {
            const char* path = call.message.dspArgs.irCalPramArgs.calParam.cfg_path;
            call.calPath.assign(path, strnlen(path, sizeof(DSP_IrParam::cfg_path)));
        }
        const void* curve = call.message.dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir;
        if (call.message.u32Type == DSP_AEW_CFG_TYPE_FUSION && curve != nullptr) {
            const auto* p = static_cast<const Uint8*>(curve);
            call.curve.assign(p, p + FUSION_NIR_POINTS);
        }
    }
    return call;
}

Int32 DspCapture::onSet(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    if (g_current == nullptr) {
        ADD_FAILURE() << "OpSetDspConfig called with no DspCapture alive";
        return -1;
    }
    g_current->sets_.push_back(g_current->record(ctrl, message));
    return g_current->setResult_;
}

Int32 DspCapture::onGet(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    if (g_current == nullptr) {
        ADD_FAILURE() << "OpGetDspConfig called with no DspCapture alive";
        return -1;
    }
    g_current->gets_.push_back(g_current->record(ctrl, message));
    if (message != nullptr && g_current->fusionReply_) {
        std::memcpy(&static_cast<DSP_AEW_CFG_S*>(message)->dspArgs, &*g_current->fusionReply_, sizeof(FUSION_PARAM_V2_7_22));
    }
    return g_current->getResult_;
}

}  // namespace ispdsp_test

#include "support/dsp_capture.h"

namespace ispdsp_test {

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

// Records into the current capture; a call with none alive is a test failure.
Int32 DspCapture::onCall(bool isSet, DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    if (current_ == nullptr) {
        ADD_FAILURE() << (isSet ? "OpSetDspConfig" : "OpGetDspConfig") << " called with no DspCapture alive";
        return -1;
    }
    (isSet ? current_->sets_ : current_->gets_).push_back(current_->record(ctrl, message));
    if (isSet) return current_->setResult_;
    if (message != nullptr && current_->fusionReply_) {
        std::memcpy(&static_cast<DSP_AEW_CFG_S*>(message)->dspArgs, &*current_->fusionReply_, sizeof(FUSION_PARAM_V2_7_22));
    }
    return current_->getResult_;
}

}  // namespace ispdsp_test

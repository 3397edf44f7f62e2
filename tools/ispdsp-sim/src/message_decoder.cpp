#include "message_decoder.h"

#include <cstring>

#include "fusion/fusion_fields.h"
#include "tuning/stage_list.h"

namespace ispdsp::tools::sim {

namespace {

// A field named by its member path inside the message.
#define MSG_FIELD(label, member, wire) FieldSpec{label, offsetof(DSP_AEW_CFG_S, member), WireType::wire}

WireType wireTypeOf(size_t width, bool isSigned) {
    if (width == 1) return isSigned ? WireType::S8 : WireType::U8;
    if (width == 2) return isSigned ? WireType::S16 : WireType::U16;
    return isSigned ? WireType::S32 : WireType::U32;
}

// The fusion block: the switch word, the 26 scalars of the fusion field table, the curve's
// address and the version word.
StageSpec fusionMessage() {
    constexpr size_t kBlock = offsetof(DSP_AEW_CFG_S, dspArgs.stFusionArgs.fusion_param_v2_7_22);
    StageSpec fusion{DSP_AEW_CFG_TYPE_FUSION, "FUSION", {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32)},
                     AddressTarget::NirCurve, offsetof(DSP_AEW_CFG_S, dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir)};
    for (const ispdsp::fusion::ScalarField& f : ispdsp::fusion::kScalarFields)
        fusion.fields.push_back({f.name, kBlock + f.offset, wireTypeOf(f.width, f.isSigned)});
    fusion.fields.push_back(MSG_FIELD("w_nir", dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir, Address));
    fusion.fields.push_back(MSG_FIELD("version", dspArgs.stFusionArgs.version, S32));
    return fusion;
}

// A stage of the table stage list: its payload fields where its message carries them.
StageSpec stageMessage(const ispdsp::tuning::TableStage& stage) {
    StageSpec spec{ispdsp::tuning::messageTypeOf(stage), stage.messageName, {}};
    const size_t payloadAt = ispdsp::tuning::messageOffsetOfPayload(stage);
    for (const ispdsp::tuning::NamedField& f : stage.payloadFields)
        spec.fields.push_back({f.name, payloadAt + f.offset, wireTypeOf(f.width, f.isSigned)});
    return spec;
}

std::vector<StageSpec> buildStageTable() {
    std::vector<StageSpec> table;
    table.push_back(fusionMessage());
    table.push_back({DSP_AEW_CFG_TYPE_IR, "IR", {MSG_FIELD("zoomIndex", dspArgs.irCalPramArgs.irParam.zoomIndex, U16)}});
    table.push_back({DSP_AEW_CFG_TYPE_CAL,
                     "CAL",
                     {MSG_FIELD("cfg_path", dspArgs.irCalPramArgs.calParam.cfg_path, Address),
                      MSG_FIELD("xytable_path", dspArgs.irCalPramArgs.calParam.xytable_path, Address),
                      MSG_FIELD("xytable_base_virtual", dspArgs.irCalPramArgs.calParam.xytable_base_virtual, Address),
                      MSG_FIELD("input_yuv_w", dspArgs.irCalPramArgs.calParam.input_yuv_w, U32),
                      MSG_FIELD("input_yuv_h", dspArgs.irCalPramArgs.calParam.input_yuv_h, U32),
                      MSG_FIELD("dx", dspArgs.irCalPramArgs.calParam.manual_param.dx, S32),
                      MSG_FIELD("dy", dspArgs.irCalPramArgs.calParam.manual_param.dy, S32),
                      MSG_FIELD("xytable_bin_save_flag", dspArgs.irCalPramArgs.calParam.xytable_bin_save_flag, U8),
                      MSG_FIELD("manual_flag", dspArgs.irCalPramArgs.calParam.manual_flag, U8)},
                     AddressTarget::PathText,
                     offsetof(DSP_AEW_CFG_S, dspArgs.irCalPramArgs.calParam.cfg_path)});
    table.push_back({DSP_AEW_CFG_TYPE_FSSWITCH, "FSSWITCH", {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32)}});
    table.push_back(
        {DSP_AEW_CFG_TYPE_FSSWITCH_FACTORY, "FSSWITCH_FACTORY", {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32)}});
    table.push_back({DSP_AEW_CFG_TYPE_RESV, "RESV", {}});
    for (const ispdsp::tuning::TableStage& stage : ispdsp::tuning::kTableStages) table.push_back(stageMessage(stage));
    return table;
}

#undef MSG_FIELD

size_t widthOf(WireType type) {
    switch (type) {
        case WireType::U8:
        case WireType::S8: return 1;
        case WireType::U16:
        case WireType::S16: return 2;
        case WireType::U32:
        case WireType::S32: return 4;
        case WireType::Address: return 8;
    }
    return 0;
}

const void* addressAt(std::span<const uint8_t> bytes, size_t offset) {
    const void* address = nullptr;
    std::memcpy(&address, bytes.data() + offset, sizeof address);
    return address;
}

}  // namespace

const std::vector<StageSpec>& stageTable() {
    static const std::vector<StageSpec> table = buildStageTable();
    return table;
}

const StageSpec* findStage(uint32_t type) {
    for (const StageSpec& stage : stageTable())
        if (stage.type == type) return &stage;
    return nullptr;
}

int64_t readField(std::span<const uint8_t> bytes, size_t offset, WireType type) {
    if (offset + widthOf(type) > bytes.size()) return 0;
    const uint8_t* at = bytes.data() + offset;
    switch (type) {
        case WireType::U8: return at[0];
        case WireType::S8: return static_cast<int8_t>(at[0]);
        case WireType::U16: {
            uint16_t v;
            std::memcpy(&v, at, 2);
            return v;
        }
        case WireType::S16: {
            int16_t v;
            std::memcpy(&v, at, 2);
            return v;
        }
        case WireType::U32: {
            uint32_t v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case WireType::S32: {
            int32_t v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case WireType::Address: return addressAt(bytes, offset) != nullptr ? 1 : 0;
    }
    return 0;
}

DecodedMessage decodeMessage(const DSP_AEW_CFG_S& message, bool followAddresses) {
    const std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t*>(&message), sizeof message);
    DecodedMessage out;
    out.type = message.u32Type;
    const StageSpec* stage = findStage(message.u32Type);
    out.stage = stage != nullptr ? stage->name : "?";

    std::vector<bool> covered(bytes.size(), false);
    for (size_t i = 0; i < sizeof message.u32Type; ++i) covered[i] = true;
    if (stage != nullptr) {
        for (const FieldSpec& field : stage->fields) {
            out.fields.push_back(
                {field.name, readField(bytes, field.offset, field.type), field.type == WireType::Address, field.offset});
            for (size_t i = 0; i < widthOf(field.type); ++i) covered[field.offset + i] = true;
        }
        if (followAddresses && stage->target != AddressTarget::None) {
            const void* address = addressAt(bytes, stage->targetOffset);
            if (address != nullptr && stage->target == AddressTarget::NirCurve) {
                // The driver's curve buffer: FUSION_NIR_POINTS bytes, valid during the call.
                const auto* points = static_cast<const uint8_t*>(address);
                out.curve.emplace(points, points + FUSION_NIR_POINTS);
            } else if (address != nullptr && stage->target == AddressTarget::PathText) {
                // The instance's cfg_path: a NUL-terminated text in a 512-byte buffer.
                const auto* text = static_cast<const char*>(address);
                out.pathText.emplace(text, strnlen(text, sizeof(DSP_IrParam::cfg_path)));
            }
        }
    }
    for (size_t i = 0; i < bytes.size(); ++i)
        if (!covered[i] && bytes[i] != 0) ++out.strayBytes;
    return out;
}

}  // namespace ispdsp::tools::sim

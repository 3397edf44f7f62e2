// The stages whose records every parameter table stores, in table order: the
// eleven enhancement stages and the fusion plate. This list is the one place
// that names them all; the stage messages, the tuning codec, the simulator's
// sender, decoder and range marks and the tuner's reference walk it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <span>

#include "dsp/dsp_stage_table.h"
#include "fusion/fusion_plate_rules.h"
#include "ispdsp/param_table.h"
#include "stages/dlae_rules.h"
#include "stages/dlcfa_rules.h"
#include "stages/fg2c_rules.h"
#include "stages/lae_rules.h"
#include "stages/lle_rules.h"
#include "stages/lsm_rules.h"
#include "stages/sade_rules.h"
#include "stages/sbm3d_rules.h"
#include "stages/y2d_rules.h"
#include "stages/ylwdr_rules.h"
#include "stages/yuv2yuv_rules.h"
#include "tuning/named_field.h"

// X(Name, Ver, rules namespace, display name, message type (DSP_AEW_CFG_TYPE_<it>), table member,
//   transport row, debug setter ids)
#define ISPDSP_TABLE_STAGES(X) \
    X(Lsm, V112, ::ispdsp::stages::lsm, "LSM", LSM, ispLsmParam, kDspStageLsm, ::ispdsp::stages::lsm::kIds) \
    X(Lae, V209, ::ispdsp::stages::lae, "LAE", LAE, ispLaeParam, kDspStageLae, ::ispdsp::stages::lae::kIds) \
    X(Sbm3d, V113, ::ispdsp::stages::sbm3d, "SBM3D", SBM3D, ispSbm3dParam, kDspStageSbm3d, ::ispdsp::stages::sbm3d::kIds) \
    X(Yuv2yuv, V100, ::ispdsp::stages::yuv2yuv, "YUV2YUV", CSC, ispYuv2yuvParam, kDspStageCsc, ::ispdsp::stages::yuv2yuv::kIds) \
    X(FusionPlate, V1001, ::ispdsp::fusion_plate, "FUSION_PLATE", FUSION_PLATE, ispFusionPlateParam, kDspStageFusionPlate, ::ispdsp::tuning::kNoDebugIds) \
    X(Fg2c, V102, ::ispdsp::stages::fg2c, "FG2C", FG2C, ispFg2cParam, kDspStageFg2c, ::ispdsp::stages::fg2c::kIds) \
    X(Lle, V203, ::ispdsp::stages::lle, "LLE", LLE, ispLleParam, kDspStageLle, ::ispdsp::stages::lle::kIds) \
    X(Ylwdr, V102, ::ispdsp::stages::ylwdr, "YLWDR", YLWDR, ispYlwdrParam, kDspStageYlwdr, ::ispdsp::stages::ylwdr::kIds) \
    X(Y2d, V5118, ::ispdsp::stages::y2d, "Y2D", Y2D, ispY2dParam, kDspStageY2d, ::ispdsp::stages::y2d::kIds) \
    X(Dlae, V101, ::ispdsp::stages::dlae, "DLAE", DLAE, ispDlaeParam, kDspStageDlae, ::ispdsp::stages::dlae::kIds) \
    X(Dlcfa, V101, ::ispdsp::stages::dlcfa, "DLCFA", DLCFA, ispDlcfaParam, kDspStageDlcfa, ::ispdsp::stages::dlcfa::kIds) \
    X(Sade, V113, ::ispdsp::stages::sade, "SADE", SADE, ispSadeParam, kDspStageSade, ::ispdsp::stages::sade::kIds)

namespace ispdsp::tuning {

// The fusion plate's setter is written by hand (fusion_plate.cpp): its one id is 0.
inline constexpr std::span<const stages::DebugId> kNoDebugIds{};

struct TableStage {
    const char* name;         // "LSM", "YUV2YUV", "FUSION_PLATE"
    const char* messageName;  // its message type: "LSM", "CSC", "FUSION_PLATE"
    const char* symbolStem;  // DRV_dspCalculate<stem>, DRV_dspdbg<stem>, DRV_dspOpSet<stem>
    const char* recordKey;   // member of CFG_DspIspCfgParam and key in the tuning source
    Uint16 tableOffset;      // of the record inside CFG_DspIspCfgParam
    Uint16 recordBytes;
    Uint16 inputBytes;  // calculation input: the record first, then run-time values
    Uint16 payloadBytes;
    DspStage transport;  // row of kDspStageTable: u32Type and where the payload lands
    std::span<const stages::CalcStep> calc;
    std::span<const stages::DebugId> ids;
    std::span<const NamedField> storedFields;
    std::span<const NamedField> payloadFields;
};

#define ISPDSP_TABLE_STAGE_ROW(Name, Ver, rules, display, Msg, member, transportRow, debugIds)                   \
    TableStage{display,                                                                                     \
               #Msg,                                                                                        \
               #Name,                                                                                       \
               #member,                                                                                     \
               static_cast<Uint16>(offsetof(CFG_DspIspCfgParam, member)),                                   \
               static_cast<Uint16>(sizeof(CFG_DSP_##Name##Ver)),                                            \
               static_cast<Uint16>(sizeof(DSP_##Name##CalculateParam)),                                     \
               static_cast<Uint16>(sizeof(DSP_##Name##Ver)),                                                \
               transportRow,                                                                                \
               rules::kCalc,                                                                                \
               debugIds,                                                                                    \
               rules::kStoredFields,                                                                        \
               rules::kPayloadFields},
inline constexpr TableStage kTableStages[] = {ISPDSP_TABLE_STAGES(ISPDSP_TABLE_STAGE_ROW)};
#undef ISPDSP_TABLE_STAGE_ROW

// Every stage's record type is the one its table member holds.
#define ISPDSP_TABLE_STAGE_CHECK(Name, Ver, rules, display, Msg, member, transportRow, debugIds)                \
    static_assert(std::is_same_v<decltype(CFG_DspIspCfgParam::member), CFG_DSP_##Name##Ver>, #member);    \
    static_assert(std::is_same_v<rules::Record, CFG_DSP_##Name##Ver>, #Name " rules describe another record"); \
    static_assert(kDspStageTable[transportRow].type == DSP_AEW_CFG_TYPE_##Msg, #Name " sends another message");
ISPDSP_TABLE_STAGES(ISPDSP_TABLE_STAGE_CHECK)
#undef ISPDSP_TABLE_STAGE_CHECK

// The DSP message offset of a payload byte of `stage`.
constexpr std::size_t messageOffsetOfPayload(const TableStage& stage) {
    const DspFieldMove& move = kDspStageTable[stage.transport].moves[0];
    return move.messageOffset - move.recordOffset;
}
constexpr Uint32 messageTypeOf(const TableStage& stage) { return kDspStageTable[stage.transport].type; }

// The range the calculation holds a stored field to: a cap, a range, a 0/1
// flag, or the field's whole width when the DSP takes it unchanged.
struct Range {
    Int64 low;
    Int64 high;
};
constexpr Range wholeWidth(const NamedField& f) {
    const Int64 span = Int64{1} << (8 * f.width);
    return f.isSigned ? Range{-span / 2, span / 2 - 1} : Range{0, span - 1};
}
constexpr Range enforcedRange(const TableStage& stage, const NamedField& f) {
    for (const stages::CalcStep& step : stage.calc) {
        if (step.from.offset != f.offset) continue;  // the calculation input starts with the record
        switch (step.rule) {
            case stages::Rule::Copy: break;
            case stages::Rule::Cap: return {0, step.high};
            case stages::Rule::Range: return {step.low, step.high};
            case stages::Rule::Flag: return {0, 1};
        }
    }
    return wholeWidth(f);
}

// The debug setter id that changes a stored field; none when no setter does. A
// stage without an id table is the fusion plate: its hand-written setter changes
// its one field with id 0.
constexpr std::optional<int> debugIdOf(const TableStage& stage, const NamedField& f) {
    if (stage.ids.empty()) return 0;
    for (std::size_t id = 0; id < stage.ids.size(); ++id) {
        const stages::DebugId& d = stage.ids[id];
        if (d.clamp != stages::Clamp::NoField && d.field.offset == f.offset) return static_cast<int>(id);
    }
    return std::nullopt;
}

// True when two field paths lie in the same nested part ("plateLaeParam.a", "plateLaeParam.b"),
// or both directly in the record.
constexpr bool isNested(const char* path) { return std::string_view(path).find('.') != std::string_view::npos; }
constexpr bool sameGroup(const char* a, const char* b) {
    if (!isNested(a) && !isNested(b)) return true;
    std::size_t i = 0;
    while (a[i] != '\0' && a[i] != '.' && a[i] == b[i]) ++i;
    return a[i] == '.' && b[i] == '.';  // the same part name, each followed by its dot
}

// The stored fields, in record order, leave no gap that a field could fill: every gap is
// alignment padding (smaller than the next field's width, or at the end than the widest
// field), and the records tile the table [tableStart, tableEnd) the same way. A record
// member that the description leaves out shows here, before a codec would silently drop it.
constexpr bool storedFieldsCoverTheirRecords(std::span<const TableStage> stages, std::size_t tableStart,
                                             std::size_t tableEnd) {
    constexpr std::size_t kRecordAlignment = 4;
    std::size_t tableAt = tableStart;
    for (const TableStage& stage : stages) {
        if (stage.tableOffset < tableAt || stage.tableOffset - tableAt >= kRecordAlignment) return false;
        std::size_t at = 0, widest = 1;
        const char* previous = "";
        for (const NamedField& f : stage.storedFields) {
            // A nested part (LAE's plate and window) may end in padding of the part's alignment.
            const std::size_t alignment = sameGroup(previous, f.name) ? f.width : std::max<std::size_t>(f.width, widest);
            if (f.offset < at || f.offset - at >= alignment) return false;
            at = f.offset + f.width;
            widest = std::max<std::size_t>(f.width, widest);
            previous = f.name;
        }
        if (stage.recordBytes - at >= widest) return false;
        tableAt = stage.tableOffset + stage.recordBytes;
    }
    return tableEnd - tableAt < kRecordAlignment;
}
consteval bool onlyOneFieldWithoutIds() {
    for (const TableStage& stage : kTableStages) {
        if (stage.ids.empty() && stage.storedFields.size() != 1) return false;
    }
    return true;
}
static_assert(onlyOneFieldWithoutIds(), "a stage without debug ids has its one field set by hand");

static_assert(storedFieldsCoverTheirRecords(kTableStages, offsetof(CFG_DspIspCfgParam, ispLsmParam),
                                            sizeof(CFG_DspIspCfgParam)));

consteval bool storedFieldsFitTheirRecords() {
    for (const TableStage& stage : kTableStages) {
        for (const NamedField& f : stage.storedFields) {
            if (f.offset + f.width > stage.recordBytes) return false;
        }
        for (const NamedField& f : stage.payloadFields) {
            if (f.offset + f.width > stage.payloadBytes) return false;
        }
    }
    return true;
}
static_assert(storedFieldsFitTheirRecords());

}  // namespace ispdsp::tuning

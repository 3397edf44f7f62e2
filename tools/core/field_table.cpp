// Layouts come from the public record headers (offsetof/decltype). Ranges come from the
// driver's own tables, never typed here: the fusion scalars' output limits
// (fusion/fusion_fields.h, which also names and places them) and each stage's calculation
// steps (stages/*_rules.h: a cap, a range, a 0/1 flag, or a copy that the DSP takes whole).
#include "field_table.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "fusion/fusion_fields.h"
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

namespace ispcfg {
namespace {

template <class T>
constexpr Scalar scalarOf() {
    using U = std::remove_cvref_t<T>;
    if constexpr (std::is_same_v<U, uint8_t>)
        return Scalar::U8;
    else if constexpr (std::is_same_v<U, int8_t>)
        return Scalar::I8;
    else if constexpr (std::is_same_v<U, uint16_t>)
        return Scalar::U16;
    else if constexpr (std::is_same_v<U, int16_t>)
        return Scalar::I16;
    else if constexpr (std::is_same_v<U, uint32_t>)
        return Scalar::U32;
    else {
        static_assert(std::is_same_v<U, int32_t>, "unsupported field type");
        return Scalar::I32;
    }
}

using Table = CFG_DspIspCfgParam;
using Step = CFG_DSP_FusionV2722;
using ispdsp::stages::StageRules;

// Where a field lies; its range is looked up in the driver's tables (see rangeOf).
struct Layout {
    const char* record;
    const char* group;
    const char* name;
    uint16_t offset;  // inside the table
    Scalar type;
};

// A stage record in the table and the rules its calculation follows. The fusion plate has no
// rule table (its one field is the weight; see fusion/fusion_plate_rules.h).
struct StageRecord {
    const char* record;
    uint16_t offset;
    const StageRules* rules;
};

#define RECORD_AT(record, rules) \
    StageRecord { #record, offsetof(Table, record), rules }
const StageRecord kStageRecords[] = {
    RECORD_AT(ispLsmParam, &ispdsp::stages::lsm::kRules),
    RECORD_AT(ispLaeParam, &ispdsp::stages::lae::kRules),
    RECORD_AT(ispSbm3dParam, &ispdsp::stages::sbm3d::kRules),
    RECORD_AT(ispYuv2yuvParam, &ispdsp::stages::yuv2yuv::kRules),
    RECORD_AT(ispFusionPlateParam, nullptr),
    RECORD_AT(ispFg2cParam, &ispdsp::stages::fg2c::kRules),
    RECORD_AT(ispLleParam, &ispdsp::stages::lle::kRules),
    RECORD_AT(ispYlwdrParam, &ispdsp::stages::ylwdr::kRules),
    RECORD_AT(ispY2dParam, &ispdsp::stages::y2d::kRules),
    RECORD_AT(ispDlaeParam, &ispdsp::stages::dlae::kRules),
    RECORD_AT(ispDlcfaParam, &ispdsp::stages::dlcfa::kRules),
    RECORD_AT(ispSadeParam, &ispdsp::stages::sade::kRules),
};
#undef RECORD_AT

// clang-format off
#define MEMBER_TYPE(Type, member) decltype(std::declval<Type&>().member)
#define ROW(rec, grp, name, member) \
    Layout{rec, grp, name, static_cast<uint16_t>(offsetof(Table, member)), scalarOf<MEMBER_TYPE(Table, member)>()}
#define STAGE(record, member) ROW(#record, "", #member, record.member)
#define LAE(group, member) ROW("ispLaeParam", #group, #member, ispLaeParam.group.member)

// The stage records' fields in table order (the fusion scalars come from the driver's table).
const Layout kStageLayout[] = {
    STAGE(ispLsmParam, aw_left_thr),
    STAGE(ispLsmParam, aw_right_thr),
    STAGE(ispLsmParam, aw_top_thr),
    STAGE(ispLsmParam, aw_bottom_thr),

    LAE(plateLaeParam, manual_en),
    LAE(plateLaeParam, gbce_level),
    LAE(plateLaeParam, gbce_lut_index),
    LAE(plateLaeParam, ee_level),
    LAE(plateLaeParam, nf_level),
    LAE(plateLaeParam, blue_color_level),
    LAE(plateLaeParam, green_luma_ave_thr),
    LAE(plateLaeParam, green_bg_noise_level),
    LAE(plateLaeParam, green_color_level),
    LAE(plateLaeParam, blue_binary_thr),
    LAE(plateLaeParam, blue_proc_thr),
    LAE(windowLaeParam, manual_en),
    LAE(windowLaeParam, gbce_level),
    LAE(windowLaeParam, gbce_lut_index),
    LAE(windowLaeParam, ee_level),
    LAE(windowLaeParam, nf_level),

    STAGE(ispSbm3dParam, sbm3d_threshold),

    STAGE(ispYuv2yuvParam, enable),

    STAGE(ispFusionPlateParam, fuse_weight),

    STAGE(ispFg2cParam, need_win_enhence),
    STAGE(ispFg2cParam, win_fusion_weight),
    STAGE(ispFg2cParam, face_fusion_weight),
    STAGE(ispFg2cParam, face_fusion_pad),

    STAGE(ispLleParam, window_gain),
    STAGE(ispLleParam, gamma),
    STAGE(ispLleParam, edge),
    STAGE(ispLleParam, denoise),
    STAGE(ispLleParam, fusion_weight),

    STAGE(ispYlwdrParam, hist_thr),
    STAGE(ispYlwdrParam, scope_thr),
    STAGE(ispYlwdrParam, lep_alpha),
    STAGE(ispYlwdrParam, lut_weight),
    STAGE(ispYlwdrParam, yout_thr0),
    STAGE(ispYlwdrParam, yout_thr1),
    STAGE(ispYlwdrParam, alpha1),
    STAGE(ispYlwdrParam, alpha2),
    STAGE(ispYlwdrParam, alpha31),
    STAGE(ispYlwdrParam, alpha32),
    STAGE(ispYlwdrParam, d1_thr1),
    STAGE(ispYlwdrParam, d1_thr2),
    STAGE(ispYlwdrParam, d1_thr3),
    STAGE(ispYlwdrParam, d2_thr1),
    STAGE(ispYlwdrParam, d2_thr2),
    STAGE(ispYlwdrParam, gamma_coef),
    STAGE(ispYlwdrParam, uv_thr),
    STAGE(ispYlwdrParam, uv_gain),

    STAGE(ispY2dParam, sd_spe),
    STAGE(ispY2dParam, sd_de_gau0),
    STAGE(ispY2dParam, sd_de_gau1),
    STAGE(ispY2dParam, sd_dark),
    STAGE(ispY2dParam, sd_dark_ra),
    STAGE(ispY2dParam, sd_bright),
    STAGE(ispY2dParam, sd_bright_ra),
    STAGE(ispY2dParam, sd_ee_gau0),
    STAGE(ispY2dParam, sd_sigma),
    STAGE(ispY2dParam, sd_ee_gau1),
    STAGE(ispY2dParam, sd_ee_slope),
    STAGE(ispY2dParam, win_size),

    STAGE(ispDlaeParam, fusion_weight),
    STAGE(ispDlaeParam, window_gain),
    STAGE(ispDlaeParam, gamma),
    STAGE(ispDlaeParam, edge),
    STAGE(ispDlaeParam, denoise),

    STAGE(ispDlcfaParam, ee_level),
    STAGE(ispDlcfaParam, gamma),
    STAGE(ispDlcfaParam, luma_contrast),
    STAGE(ispDlcfaParam, denoise),
    STAGE(ispDlcfaParam, fusion_weight),

    STAGE(ispSadeParam, model_type),
    STAGE(ispSadeParam, ee_level),
    STAGE(ispSadeParam, nr_level),
    STAGE(ispSadeParam, black_edge),
    STAGE(ispSadeParam, white_edge),
};
// clang-format on

// The range the stage's calculation lets through for the field at `offset` in its record.
std::pair<int64_t, int64_t> rangeOf(const StageRecord& record, const Layout& field) {
    if (record.rules == nullptr)
        return {ispdsp::fusion_plate::kFuseWeightMin, ispdsp::fusion_plate::kFuseWeightMax};
    const size_t at = field.offset - record.offset;  // the calculation input starts with the record
    for (const ispdsp::stages::CalcStep& step : record.rules->calc) {
        if (step.from.offset != at) continue;
        switch (step.rule) {
            case ispdsp::stages::Rule::Copy: break;
            case ispdsp::stages::Rule::Cap: return {0, step.high};
            case ispdsp::stages::Rule::Range: return {step.low, step.high};
            case ispdsp::stages::Rule::Flag: return {0, 1};
        }
    }
    return {minOf(field.type), maxOf(field.type)};  // taken whole
}

const StageRecord& recordOf(const Layout& field) {
    for (const StageRecord& r : kStageRecords) {
        if (std::strcmp(r.record, field.record) == 0) return r;
    }
    std::abort();  // every layout row names one of the records above
}

Scalar scalarOfWidth(size_t width, bool isSigned) {
    if (width == 1) return isSigned ? Scalar::I8 : Scalar::U8;
    return isSigned ? Scalar::I16 : Scalar::U16;
}

// The table-level flag, the fusion scalars from the driver's table, then the stage fields.
std::vector<FieldDef> buildFields() {
    std::vector<FieldDef> fields;
    fields.push_back({"", "", "ispFusionFlag", offsetof(Table, ispFusionFlag), Scalar::U32, 0, 0xFFFFFFFF});
    for (const ispdsp::fusion::ScalarField& f : ispdsp::fusion::kScalarFields) {
        fields.push_back({"fusion", "", f.name, f.offset, scalarOfWidth(f.width, f.isSigned), f.lo, f.hi});
    }
    for (const Layout& l : kStageLayout) {
        const auto [low, high] = rangeOf(recordOf(l), l);
        fields.push_back({l.record, l.group, l.name, l.offset, l.type, low, high});
    }
    return fields;
}

const std::vector<FieldDef>& fieldTable() {
    static const std::vector<FieldDef> fields = buildFields();
    return fields;
}

constexpr size_t kFusionScalars = static_cast<size_t>(ispdsp::fusion::kScalarFieldCount);
constexpr size_t kFirstStageField = 1 + kFusionScalars;

static_assert(sizeof(Table) == kTableBytes && sizeof(Step) == kStepBytes, "record sizes");
static_assert(offsetof(Table, ispFusionParam) == kFusionOffset && offsetof(Step, w_nir) == kNirOffset, "offsets");
static_assert(sizeof(Step::w_nir) == kNirPoints, "curve length");

}  // namespace

std::span<const FieldDef> allFields() { return fieldTable(); }
std::span<const FieldDef> fusionFields() { return allFields().subspan(1, kFusionScalars); }
std::span<const FieldDef> stageFields() { return allFields().subspan(kFirstStageField); }
const FieldDef& fusionFlagField() { return fieldTable()[0]; }

size_t widthOf(Scalar type) {
    switch (type) {
        case Scalar::U8:
        case Scalar::I8: return 1;
        case Scalar::U16:
        case Scalar::I16: return 2;
        case Scalar::U32:
        case Scalar::I32: return 4;
    }
    return 0;
}

int64_t minOf(Scalar type) {
    switch (type) {
        case Scalar::I8: return INT8_MIN;
        case Scalar::I16: return INT16_MIN;
        case Scalar::I32: return INT32_MIN;
        default: return 0;
    }
}

int64_t maxOf(Scalar type) {
    switch (type) {
        case Scalar::U8: return UINT8_MAX;
        case Scalar::I8: return INT8_MAX;
        case Scalar::U16: return UINT16_MAX;
        case Scalar::I16: return INT16_MAX;
        case Scalar::U32: return UINT32_MAX;
        case Scalar::I32: return INT32_MAX;
    }
    return 0;
}

const char* typeName(Scalar type) {
    switch (type) {
        case Scalar::U8: return "Uint8";
        case Scalar::I8: return "Int8";
        case Scalar::U16: return "Uint16";
        case Scalar::I16: return "Int16";
        case Scalar::U32: return "Uint32";
        case Scalar::I32: return "Int32";
    }
    return "?";
}

int64_t loadField(const uint8_t* bytes, Scalar type) {
    uint32_t raw = 0;
    for (size_t i = 0; i < widthOf(type); ++i) {
        raw |= static_cast<uint32_t>(bytes[i]) << (8 * i);
    }
    switch (type) {
        case Scalar::I8: return static_cast<int8_t>(raw);
        case Scalar::I16: return static_cast<int16_t>(raw);
        case Scalar::I32: return static_cast<int32_t>(raw);
        default: return raw;
    }
}

void storeField(uint8_t* bytes, Scalar type, int64_t value) {
    const auto raw = static_cast<uint32_t>(value);  // low-order bits, two's complement
    for (size_t i = 0; i < widthOf(type); ++i) {
        bytes[i] = static_cast<uint8_t>(raw >> (8 * i));
    }
}

std::string fieldPath(const FieldDef& field, int gainStep) {
    std::string path = field.record;
    if (gainStep >= 0) {
        path += "[" + std::to_string(gainStep) + "]";
    }
    for (const char* part : {field.group, field.name}) {
        if (part[0] != '\0') {
            if (!path.empty()) path += '.';
            path += part;
        }
    }
    return path;
}

const std::array<bool, kTableBytes>& paddingMask() {
    static const std::array<bool, kTableBytes> mask = [] {
        std::array<bool, kTableBytes> m;
        m.fill(true);
        auto cover = [&](size_t offset, size_t width) {
            for (size_t i = 0; i < width; ++i) m[offset + i] = false;
        };
        for (const FieldDef& f : allFields()) {
            if (std::strcmp(f.record, "fusion") == 0) {
                for (size_t step = 0; step < kGainSteps; ++step) {
                    cover(kFusionOffset + step * kStepBytes + f.offset, widthOf(f.type));
                }
            } else {
                cover(f.offset, widthOf(f.type));
            }
        }
        for (size_t step = 0; step < kGainSteps; ++step) {
            cover(kFusionOffset + step * kStepBytes + kNirOffset, kNirPoints);
        }
        return m;
    }();
    return mask;
}

}  // namespace ispcfg

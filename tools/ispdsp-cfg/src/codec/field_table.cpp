// Layouts come from the public record headers (offsetof/decltype), ranges from the driver's
// calculations: fusion output limits after the gain blend, the stage calculations' caps and
// ranges, the fusion plate weight. A field that the DSP takes whole keeps its full width.
#include "field_table.h"

#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "ispdsp/param_table.h"

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

template <class T>
constexpr int64_t lowest() {
    return std::numeric_limits<std::remove_cvref_t<T>>::min();
}
template <class T>
constexpr int64_t highest() {
    return std::numeric_limits<std::remove_cvref_t<T>>::max();
}

using Table = CFG_DspIspCfgParam;
using Step = CFG_DSP_FusionV2722;

// clang-format off
#define MEMBER_TYPE(Type, member) decltype(std::declval<Type&>().member)
#define ROW(rec, grp, name, Type, member, low, high)                                                   \
    FieldDef{rec, grp, name, static_cast<uint16_t>(offsetof(Type, member)),                              \
             scalarOf<MEMBER_TYPE(Type, member)>(), low, high}
// A fusion scalar with its DSP range, or taken whole (full width).
#define FUSION(member, low, high) ROW("fusion", "", #member, Step, member, low, high)
#define FUSION_ANY(member) FUSION(member, lowest<MEMBER_TYPE(Step, member)>(), highest<MEMBER_TYPE(Step, member)>())
// A stage field with its DSP range, or taken whole.
#define STAGE(record, member, low, high) ROW(#record, "", #member, Table, record.member, low, high)
#define STAGE_ANY(record, member) \
    STAGE(record, member, lowest<MEMBER_TYPE(Table, record.member)>(), highest<MEMBER_TYPE(Table, record.member)>())
#define LAE(group, member, low, high) ROW("ispLaeParam", #group, #member, Table, ispLaeParam.group.member, low, high)
#define LAE_ANY(group, member) LAE(group, member, 0, 255)

const FieldDef kFields[] = {
    ROW("", "", "ispFusionFlag", Table, ispFusionFlag, 0, 0xFFFFFFFF),  // 0: no fusion update

    // Fusion, one gain step: limits applied to the blended output.
    FUSION(ep_delta, 1, 16383),
    FUSION(fusion_hf_ratio, 0, 256),
    FUSION(fwmin_wt, 0, 256),
    FUSION(nir_k, 0, 256),
    FUSION(hf_zoom, 0, 2047),
    FUSION(dark_inner, 0, 65025),
    FUSION(high_lum_thr, -256, -1),
    FUSION_ANY(fwmin_limit),
    FUSION_ANY(fwmax_limit),
    FUSION(copy_en, 0, 1),
    FUSION(nir_a, -1, 1),
    FUSION(vis_b, -1, 1),
    FUSION_ANY(nir_min),
    FUSION_ANY(uv_coef),
    FUSION(uv_diff_thr, 1, 255),
    FUSION_ANY(uv_diff_min),
    FUSION_ANY(uv_diff_max),
    FUSION_ANY(uv_vlight_min),
    FUSION_ANY(uv_vlight_max),
    FUSION(uv_sat_limit, 1, 255),
    FUSION(uv_rsmooth, 1, 255),
    FUSION(uv_gsmooth, 1, 255),
    FUSION(uv_bsmooth, 1, 255),
    FUSION_ANY(uv_wmin),
    FUSION_ANY(uv_wmax),
    FUSION_ANY(uv_w),

    // Stage records in table order.
    STAGE(ispLsmParam, aw_left_thr, 0, 1024),
    STAGE(ispLsmParam, aw_right_thr, 0, 1024),
    STAGE(ispLsmParam, aw_top_thr, 0, 1024),
    STAGE(ispLsmParam, aw_bottom_thr, 0, 1024),

    LAE(plateLaeParam, manual_en, 0, 1),
    LAE(plateLaeParam, gbce_level, 0, 4),
    LAE(plateLaeParam, gbce_lut_index, 0, 11),
    LAE(plateLaeParam, ee_level, 0, 5),
    LAE(plateLaeParam, nf_level, 0, 100),
    LAE(plateLaeParam, blue_color_level, 0, 9),
    LAE_ANY(plateLaeParam, green_luma_ave_thr),
    LAE(plateLaeParam, green_bg_noise_level, 0, 512),
    LAE(plateLaeParam, green_color_level, 0, 9),
    LAE_ANY(plateLaeParam, blue_binary_thr),
    LAE_ANY(plateLaeParam, blue_proc_thr),
    LAE(windowLaeParam, manual_en, 0, 1),
    LAE(windowLaeParam, gbce_level, 1, 10),
    LAE(windowLaeParam, gbce_lut_index, 0, 11),
    LAE(windowLaeParam, ee_level, 0, 5),
    LAE(windowLaeParam, nf_level, 0, 100),

    STAGE(ispSbm3dParam, sbm3d_threshold, 0, 16384),

    STAGE(ispYuv2yuvParam, enable, 0, 1),

    STAGE(ispFusionPlateParam, fuse_weight, 1, 100),

    STAGE(ispFg2cParam, need_win_enhence, 0, 2),
    STAGE(ispFg2cParam, win_fusion_weight, 0, 8),
    STAGE(ispFg2cParam, face_fusion_weight, 0, 8),
    STAGE(ispFg2cParam, face_fusion_pad, 0, 20),

    STAGE(ispLleParam, window_gain, 128, 512),
    STAGE(ispLleParam, gamma, 0, 6),
    STAGE(ispLleParam, edge, 0, 32),
    STAGE(ispLleParam, denoise, 0, 5),
    STAGE(ispLleParam, fusion_weight, 0, 7),

    STAGE(ispYlwdrParam, hist_thr, 0, 65535),
    STAGE(ispYlwdrParam, scope_thr, 0, 31),
    STAGE(ispYlwdrParam, lep_alpha, 0, 8192),
    STAGE(ispYlwdrParam, lut_weight, 0, 256),
    STAGE_ANY(ispYlwdrParam, yout_thr0),
    STAGE_ANY(ispYlwdrParam, yout_thr1),
    STAGE(ispYlwdrParam, alpha1, 0, 16),
    STAGE(ispYlwdrParam, alpha2, 0, 16),
    STAGE(ispYlwdrParam, alpha31, 0, 63),
    STAGE(ispYlwdrParam, alpha32, 0, 63),
    STAGE(ispYlwdrParam, d1_thr1, 0, 31),
    STAGE(ispYlwdrParam, d1_thr2, 0, 64),
    STAGE(ispYlwdrParam, d1_thr3, 0, 64),
    STAGE(ispYlwdrParam, d2_thr1, 0, 64),
    STAGE(ispYlwdrParam, d2_thr2, 0, 64),
    STAGE(ispYlwdrParam, gamma_coef, 0, 63),
    STAGE(ispYlwdrParam, uv_thr, 0, 63),
    STAGE(ispYlwdrParam, uv_gain, 0, 63),

    STAGE_ANY(ispY2dParam, sd_spe),
    STAGE_ANY(ispY2dParam, sd_de_gau0),
    STAGE_ANY(ispY2dParam, sd_de_gau1),
    STAGE_ANY(ispY2dParam, sd_dark),
    STAGE_ANY(ispY2dParam, sd_dark_ra),
    STAGE_ANY(ispY2dParam, sd_bright),
    STAGE_ANY(ispY2dParam, sd_bright_ra),
    STAGE_ANY(ispY2dParam, sd_ee_gau0),
    STAGE_ANY(ispY2dParam, sd_sigma),
    STAGE_ANY(ispY2dParam, sd_ee_gau1),
    STAGE_ANY(ispY2dParam, sd_ee_slope),
    STAGE(ispY2dParam, win_size, 2, 3),

    STAGE(ispDlaeParam, fusion_weight, 0, 8),
    STAGE(ispDlaeParam, window_gain, 128, 512),
    STAGE(ispDlaeParam, gamma, 0, 6),
    STAGE(ispDlaeParam, edge, 0, 12),
    STAGE(ispDlaeParam, denoise, 0, 5),

    STAGE(ispDlcfaParam, ee_level, 0, 511),
    STAGE(ispDlcfaParam, gamma, 0, 6),
    STAGE(ispDlcfaParam, luma_contrast, 0, 11),
    STAGE(ispDlcfaParam, denoise, 0, 4),
    STAGE(ispDlcfaParam, fusion_weight, 0, 7),

    STAGE(ispSadeParam, model_type, 0, 2),
    STAGE(ispSadeParam, ee_level, 0, 10),
    STAGE(ispSadeParam, nr_level, 0, 100),
    STAGE(ispSadeParam, black_edge, 0, 200),
    STAGE(ispSadeParam, white_edge, 0, 200),
};
// clang-format on

constexpr size_t kFusionScalars = 26;
constexpr size_t kFirstStageField = 1 + kFusionScalars;

static_assert(sizeof(Table) == kTableBytes && sizeof(Step) == kStepBytes, "record sizes");
static_assert(offsetof(Table, ispFusionParam) == kFusionOffset && offsetof(Step, w_nir) == kNirOffset, "offsets");
static_assert(sizeof(Step::w_nir) == kNirPoints, "curve length");

}  // namespace

std::span<const FieldDef> allFields() { return kFields; }
std::span<const FieldDef> fusionFields() { return std::span(kFields).subspan(1, kFusionScalars); }
std::span<const FieldDef> stageFields() { return std::span(kFields).subspan(kFirstStageField); }
const FieldDef& fusionFlagField() { return kFields[0]; }

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

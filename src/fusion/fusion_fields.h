// The 26 scalar fields of a fusion record, described once: where each lives,
// how wide and signed it is, the range the DSP accepts (the calculation's
// output limit and the debug setter's range), and how the colour/mono
// combination forms it. The stored record CFG_DSP_FusionV2722 and the DSP
// block FUSION_PARAM_V2_7_22 share these offsets, so one table serves both.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

#include "ispdsp/fusion.h"

namespace ispdsp::fusion {

// How the colour/mono combination forms a field from C (colour) and M (mono).
enum class Combine : Uint8 {
    AbsDiff,   // |C - M|, kept to the field's width
    WrapDiff,  // C - M, kept to the field's width (two's complement)
};

struct ScalarField {
    const Char* name;
    const Char* confirmFormat;  // debug setter's confirmation line
    Uint8 offset;
    Uint8 width;  // bytes: 1 or 2
    bool isSigned;
    Int32 lo;  // DSP range, inclusive
    Int32 hi;
    Combine combine;
    const Char* unit;     // "" for a plain level or code
    const Char* meaning;  // one line for the tuner's reference
};

// X(field, lo, hi, combine, unit, meaning), in record order.
#define ISPDSP_FUSION_SCALARS(X)               \
    X(ep_delta, 1, 16383, AbsDiff, "", "data blur strength") \
    X(fusion_hf_ratio, 0, 256, AbsDiff, "ratio", "high-frequency ratio") \
    X(fwmin_wt, 0, 256, AbsDiff, "weight", "weight that the difference curve gives at fwmax_limit") \
    X(nir_k, 0, 256, AbsDiff, "", "NIR limit: how far NIR is raised beyond the threshold nir_min") \
    X(hf_zoom, 0, 2047, AbsDiff, "", "high-frequency scaling; larger is sharper") \
    X(dark_inner, 0, 65025, AbsDiff, "", "final fusion-ratio mapping") \
    X(high_lum_thr, -256, -1, WrapDiff, "luma", "high-frequency fusion in highlight areas") \
    X(fwmin_limit, 0, 255, AbsDiff, "", "lower end of the difference curve's horizontal axis") \
    X(fwmax_limit, 0, 255, AbsDiff, "", "upper end of the difference curve's horizontal axis") \
    X(copy_en, 0, 1, AbsDiff, "0/1", "1 copies the NIR input straight to the output") \
    X(nir_a, -1, 1, AbsDiff, "", "NIR-side coefficient") \
    X(vis_b, -1, 1, AbsDiff, "", "visible-side coefficient") \
    X(nir_min, 0, 255, AbsDiff, "luma", "NIR limit threshold; the NIR limit acts above it") \
    X(uv_coef, 0, 255, AbsDiff, "U3.5", "saturation; larger is more vivid") \
    X(uv_diff_thr, 1, 255, WrapDiff, "", "colour recovery in dark areas; smaller is weaker") \
    X(uv_diff_min, 0, 255, AbsDiff, "", "lower limit of the UV-difference adjustment") \
    X(uv_diff_max, 0, 255, AbsDiff, "", "upper limit of the UV-difference adjustment") \
    X(uv_vlight_min, 0, 255, AbsDiff, "luma", "visible luma below which colour is not adjusted") \
    X(uv_vlight_max, 0, 255, AbsDiff, "luma", "visible luma above which colour is adjusted fully") \
    X(uv_sat_limit, 1, 255, AbsDiff, "", "recovery of vivid colours; larger is weaker") \
    X(uv_rsmooth, 1, 255, AbsDiff, "", "red smoothing; larger is smoother and paler") \
    X(uv_gsmooth, 1, 255, AbsDiff, "", "green smoothing; larger is smoother and paler") \
    X(uv_bsmooth, 1, 255, AbsDiff, "", "blue smoothing; larger is smoother and paler") \
    X(uv_wmin, 0, 255, AbsDiff, "", "minimum of the proportional colour recovery") \
    X(uv_wmax, 0, 255, AbsDiff, "", "maximum of the proportional colour recovery") \
    X(uv_w, 0, 255, AbsDiff, "", "weight of the proportional colour recovery; larger is more vivid")

#define ISPDSP_FUSION_FIELD_ENTRY(f, lo, hi, combine, unit, meaning)                                                   \
    ScalarField{#f,                                                                                     \
                "[DSP_DRV] fusion " #f " is %u\n",                                                      \
                offsetof(CFG_DSP_FusionV2722, f),                                                       \
                sizeof(CFG_DSP_FusionV2722::f),                                                         \
                std::is_signed_v<decltype(CFG_DSP_FusionV2722::f)>,                                     \
                lo,                                                                                     \
                hi,                                                                                     \
                Combine::combine,                                                                               \
                unit,                                                                                           \
                meaning},

inline constexpr ScalarField kScalarFields[] = {ISPDSP_FUSION_SCALARS(ISPDSP_FUSION_FIELD_ENTRY)};
inline constexpr Int32 kScalarFieldCount = static_cast<Int32>(sizeof kScalarFields / sizeof kScalarFields[0]);

// The stored record and the DSP block must agree field by field.
#define ISPDSP_FUSION_FIELD_CHECK(f, lo, hi, combine, unit, meaning)                                                         \
    static_assert(offsetof(CFG_DSP_FusionV2722, f) == offsetof(FUSION_PARAM_V2_7_22, f), "offset of " #f); \
    static_assert(std::is_same_v<decltype(CFG_DSP_FusionV2722::f), decltype(FUSION_PARAM_V2_7_22::f)>,      \
                  "type of " #f);
ISPDSP_FUSION_SCALARS(ISPDSP_FUSION_FIELD_CHECK)
#undef ISPDSP_FUSION_FIELD_CHECK
#undef ISPDSP_FUSION_FIELD_ENTRY

static_assert(kScalarFieldCount == 26);
static_assert(kScalarFields[kScalarFieldCount - 1].offset + 1 == FUSION_PARAM_V2_7_22_SCALAR_BYTES);
static_assert(offsetof(CFG_DSP_FusionV2722, w_nir) == FUSION_PARAM_V2_7_22_SCALAR_BYTES);

// The fields follow each other from byte 0 to `bytes`, each 1 or 2 bytes wide
// with a range that is not empty.
constexpr bool fieldsTileScalarBytes(std::span<const ScalarField> fields, Int32 bytes) {
    Int32 next = 0;
    for (const ScalarField& f : fields) {
        if (f.offset != next || (f.width != 1 && f.width != 2) || f.lo > f.hi) return false;
        next += f.width;
    }
    return next == bytes;
}
static_assert(fieldsTileScalarBytes(kScalarFields, FUSION_PARAM_V2_7_22_SCALAR_BYTES),
              "the scalar fields cover bytes 0..32 without gaps");

// Reads field I as an integer with its signedness (records may sit unaligned in the file buffer).
template <Int32 I>
inline Int32 loadField(const Uint8* record) {
    constexpr const ScalarField& F = kScalarFields[I];
    if constexpr (F.width == 2) {
        Uint16 raw;
        std::memcpy(&raw, record + F.offset, sizeof raw);
        return F.isSigned ? static_cast<Int32>(static_cast<Int16>(raw)) : static_cast<Int32>(raw);
    } else {
        const Uint8 raw = record[F.offset];
        return F.isSigned ? static_cast<Int32>(static_cast<Int8>(raw)) : static_cast<Int32>(raw);
    }
}

// Stores the low 8 or 16 bits of `value` into field I.
template <Int32 I>
inline void storeField(Uint8* record, Int32 value) {
    constexpr const ScalarField& F = kScalarFields[I];
    if constexpr (F.width == 2) {
        const Uint16 raw = static_cast<Uint16>(value);
        std::memcpy(record + F.offset, &raw, sizeof raw);
    } else {
        record[F.offset] = static_cast<Uint8>(value);
    }
}

// Runtime forms for the debug setters and prints (index into kScalarFields).
inline Int32 loadField(const ScalarField& f, const Uint8* record) {
    if (f.width == 2) {
        Uint16 raw;
        std::memcpy(&raw, record + f.offset, sizeof raw);
        return f.isSigned ? static_cast<Int32>(static_cast<Int16>(raw)) : static_cast<Int32>(raw);
    }
    const Uint8 raw = record[f.offset];
    return f.isSigned ? static_cast<Int32>(static_cast<Int8>(raw)) : static_cast<Int32>(raw);
}

inline void storeField(const ScalarField& f, Uint8* record, Int32 value) {
    if (f.width == 2) {
        const Uint16 raw = static_cast<Uint16>(value);
        std::memcpy(record + f.offset, &raw, sizeof raw);
    } else {
        record[f.offset] = static_cast<Uint8>(value);
    }
}

inline constexpr Int32 clampToRange(const ScalarField& f, Int32 value) {
    return std::max(std::min(value, f.hi), f.lo);  // upper bound first, then lower
}

// Both interpolation indexes must select one of the sixteen stored records.
inline bool gainIndexesValid(const DRV_gainInterParam& gain) {
    return gain.gainStartIndex >= 0 && gain.gainStartIndex < FUSION_GAIN_STEPS && gain.gainEndIndex >= 0 &&
           gain.gainEndIndex < FUSION_GAIN_STEPS;
}

}  // namespace ispdsp::fusion

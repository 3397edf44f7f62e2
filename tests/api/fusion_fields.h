// The 26 scalar fields of a stored fusion record with their DSP ranges, and
// typed access to them by layout, for the fusion tests.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "ispdsp/fusion.h"

namespace fusion_test {

struct FieldModel {
    const char* name;
    size_t offset;
    size_t width;
    bool isSigned;
    int32_t lo, hi;
    bool wrapDiff;  // combination: C - M instead of |C - M|
};

#define FIELD(f, lo, hi, wrap) \
    FieldModel{#f, offsetof(CFG_DSP_FusionV2722, f), sizeof(CFG_DSP_FusionV2722::f), \
               std::numeric_limits<decltype(CFG_DSP_FusionV2722::f)>::is_signed, lo, hi, wrap}
inline const FieldModel kFields[] = {
    FIELD(ep_delta, 1, 16383, false),     FIELD(fusion_hf_ratio, 0, 256, false), FIELD(fwmin_wt, 0, 256, false),
    FIELD(nir_k, 0, 256, false),          FIELD(hf_zoom, 0, 2047, false),        FIELD(dark_inner, 0, 65025, false),
    FIELD(high_lum_thr, -256, -1, true),  FIELD(fwmin_limit, 0, 255, false),     FIELD(fwmax_limit, 0, 255, false),
    FIELD(copy_en, 0, 1, false),          FIELD(nir_a, -1, 1, false),            FIELD(vis_b, -1, 1, false),
    FIELD(nir_min, 0, 255, false),        FIELD(uv_coef, 0, 255, false),         FIELD(uv_diff_thr, 1, 255, true),
    FIELD(uv_diff_min, 0, 255, false),    FIELD(uv_diff_max, 0, 255, false),     FIELD(uv_vlight_min, 0, 255, false),
    FIELD(uv_vlight_max, 0, 255, false),  FIELD(uv_sat_limit, 1, 255, false),    FIELD(uv_rsmooth, 1, 255, false),
    FIELD(uv_gsmooth, 1, 255, false),     FIELD(uv_bsmooth, 1, 255, false),      FIELD(uv_wmin, 0, 255, false),
    FIELD(uv_wmax, 0, 255, false),        FIELD(uv_w, 0, 255, false),
};
#undef FIELD

inline int32_t keepWidth(const FieldModel& f, int32_t v) {
    if (f.width == 2) return f.isSigned ? int32_t(int16_t(uint16_t(v))) : int32_t(uint16_t(v));
    return f.isSigned ? int32_t(int8_t(uint8_t(v))) : int32_t(uint8_t(v));
}

// Both targets are little-endian: a field's bytes are the low bytes of its value.
static_assert(std::endian::native == std::endian::little);

inline int32_t readField(const FieldModel& f, const void* record) {
    uint32_t raw = 0;
    std::memcpy(&raw, static_cast<const uint8_t*>(record) + f.offset, f.width);
    return keepWidth(f, int32_t(raw));
}

inline void writeField(const FieldModel& f, void* record, int32_t v) {
    std::memcpy(static_cast<uint8_t*>(record) + f.offset, &v, f.width);
}

}  // namespace fusion_test

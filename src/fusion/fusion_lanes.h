// The 26 scalar fields of a fusion record as lanes of a vector loop: the
// seven 16-bit fields (bytes 0..13) and the nineteen 8-bit ones (bytes
// 14..32), each group read whole into one array. Per lane the table holds the
// sign bit to extend (0 for an unsigned field) and the DSP range; lanes past a
// group's fields are computed but never stored.
#pragma once

#include <array>
#include <climits>

#include "fusion/fusion_fields.h"

namespace ispdsp::fusion {

template <class Raw, Int32 Lanes>
struct LaneGroup {
    Int32 offset{};     // byte offset of the group's first field
    Int32 fields = 0;   // fields in the group, stored from `offset`
    std::array<Int32, Lanes> signBit{};
    std::array<Int32, Lanes> lo{};
    std::array<Int32, Lanes> hi{};
};

template <class Raw, Int32 Lanes>
consteval LaneGroup<Raw, Lanes> laneGroup() {
    LaneGroup<Raw, Lanes> group;
    for (const ScalarField& f : kScalarFields) {
        if (f.width != sizeof(Raw)) continue;
        if (group.fields == 0) group.offset = f.offset;
        group.signBit[group.fields] = f.isSigned ? 1 << (8 * sizeof(Raw) - 1) : 0;
        group.lo[group.fields] = f.lo;
        group.hi[group.fields] = f.hi;
        ++group.fields;
    }
    for (Int32 lane = group.fields; lane < Lanes; ++lane) {
        group.lo[lane] = INT32_MIN;
        group.hi[lane] = INT32_MAX;
    }
    return group;
}

inline constexpr auto kWideLanes = laneGroup<Uint16, 8>();
inline constexpr auto kByteLanes = laneGroup<Uint8, 32>();

// The groups tile bytes 0..32 (the fields tile them in order, see fusion_fields.h).
static_assert(kWideLanes.offset == 0 && kWideLanes.offset + 2 * kWideLanes.fields == kByteLanes.offset);
static_assert(kByteLanes.offset + kByteLanes.fields == FUSION_PARAM_V2_7_22_SCALAR_BYTES);
// A group's reads stay inside the stored record (bytes past uv_w are curve points).
static_assert(kByteLanes.offset + 32 <= static_cast<Int32>(sizeof(CFG_DSP_FusionV2722)));

}  // namespace ispdsp::fusion

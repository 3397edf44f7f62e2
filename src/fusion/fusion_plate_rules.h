#pragma once
// The fusion plate's one rule: the fusion weight the DSP accepts. The plate calculation and
// debug setter hold the weight to it, and the host tools read it from here, so the limit is
// written once.
#include "ispdsp/types.h"

namespace ispdsp::fusion_plate {

inline constexpr Int32 kFuseWeightMin = 1;
inline constexpr Int32 kFuseWeightMax = 100;

}  // namespace ispdsp::fusion_plate

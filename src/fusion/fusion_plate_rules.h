#pragma once
// The fusion plate's one rule: the fusion weight the DSP accepts. The plate calculation and
// debug setter hold the weight to it, and the tuning description reads it from here, so the
// limit is written once.
#include "ispdsp/fusion.h"
#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::fusion_plate {

inline constexpr Int32 kFuseWeightMin = 1;
inline constexpr Int32 kFuseWeightMax = 100;

ISPDSP_STAGE_TYPES(FusionPlate, V1001);

// The calculation's one step, as data for the description (fusion_plate.cpp carries it out).
inline constexpr stages::CalcStep kCalc[] = {
    stages::range(PAYLOAD(fusionPlateParam.fuse_weight), INPUT(fusionPlateParam.fuse_weight), kFuseWeightMin,
                  kFuseWeightMax),
};

inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(fuse_weight, "percent", "weight of the plate result in the fused image"),
};
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("fuse_weight", fusionPlateParam.fuse_weight),
};

}  // namespace ispdsp::fusion_plate

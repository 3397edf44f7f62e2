// SADE: calculation map, debug ids and log lines.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::sade {

ISPDSP_STAGE_TYPES(Sade, V113);

// scene_mode is a run-time value of the calculation input, not a record field:
// it is capped here and has no debug id.
inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(sadeParam.vorn_arm_sade_model_type), INPUT(sadeParam.model_type), 2),
    cap(PAYLOAD(sadeParam.vorn_arm_sade_ee_level), INPUT(sadeParam.ee_level), 10),
    cap(PAYLOAD(sadeParam.vorn_arm_sade_nr_level), INPUT(sadeParam.nr_level), 100),
    cap(PAYLOAD(sadeParam.vorn_arm_sade_black_edge), INPUT(sadeParam.black_edge), 200),
    cap(PAYLOAD(sadeParam.vorn_arm_sade_white_edge), INPUT(sadeParam.white_edge), 200),
    flag(PAYLOAD(sadeParam.vorn_arm_sade_debug_pin), INPUT(debug_pin)),
    cap(PAYLOAD(sadeParam.vorn_arm_sade_scene_mode), INPUT(scene_mode), 3),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set sade]model_type=%d,scene_mode = %d,ee_level=%d,nr_level=%d,black_edge=%d,white_edge=%d,"
         "debug_pin=%d!\n",
         PAYLOAD(sadeParam.vorn_arm_sade_model_type), PAYLOAD(sadeParam.vorn_arm_sade_scene_mode),
         PAYLOAD(sadeParam.vorn_arm_sade_ee_level), PAYLOAD(sadeParam.vorn_arm_sade_nr_level),
         PAYLOAD(sadeParam.vorn_arm_sade_black_edge), PAYLOAD(sadeParam.vorn_arm_sade_white_edge),
         PAYLOAD(sadeParam.vorn_arm_sade_debug_pin)),
};

inline constexpr DebugId kIds[] = {
    between(RECORD(model_type), 0, 2, "[DSP_DRV] sade model_type is %u!\n"),
    between(RECORD(ee_level), 0, 10, "[DSP_DRV] sade ee_level is %u!\n"),
    between(RECORD(nr_level), 0, 100, "[DSP_DRV] sade nr_level is %u!\n"),
    between(RECORD(black_edge), 0, 200, "[DSP_DRV] sade black_edge is %u!\n"),
    between(RECORD(white_edge), 0, 200, "[DSP_DRV] sade white_edge is %u!\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg sade]model_type=%d,ee_level=%d,nr_level=%d,black_edge=%d,white_edge=%d!\n",
         RECORD(model_type), RECORD(ee_level), RECORD(nr_level), RECORD(black_edge), RECORD(white_edge)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(model_type, "code", "which enhancement model runs"),
    STORED(ee_level, "level", "edge enhancement strength"),
    STORED(nr_level, "level", "noise reduction strength"),
    STORED(black_edge, "level", "dark edge (undershoot) strength"),
    STORED(white_edge, "level", "bright edge (overshoot) strength"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("vorn_arm_sade_model_type", sadeParam.vorn_arm_sade_model_type),
    WIRE("vorn_arm_sade_ee_level", sadeParam.vorn_arm_sade_ee_level),
    WIRE("vorn_arm_sade_nr_level", sadeParam.vorn_arm_sade_nr_level),
    WIRE("vorn_arm_sade_black_edge", sadeParam.vorn_arm_sade_black_edge),
    WIRE("vorn_arm_sade_white_edge", sadeParam.vorn_arm_sade_white_edge),
    WIRE("vorn_arm_sade_debug_pin", sadeParam.vorn_arm_sade_debug_pin),
    WIRE("vorn_arm_sade_scene_mode", sadeParam.vorn_arm_sade_scene_mode),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::sade

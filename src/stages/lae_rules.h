// LAE: a plate part and a window part, each with its own manual switch and
// levels. The payload orders the plate fields differently from the record.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::lae {

ISPDSP_STAGE_TYPES(Lae, V209);

// ver, window_en, plate_type and the reserved areas are the host's to fill.
inline constexpr CalcStep kCalc[] = {
    // Plate part.
    flag(PAYLOAD(laeParam.lae_param_plate.manual_en), INPUT(laeParam.plateLaeParam.manual_en)),
    cap(PAYLOAD(laeParam.lae_param_plate.gbce_lut_index), INPUT(laeParam.plateLaeParam.gbce_lut_index), 11),
    cap(PAYLOAD(laeParam.lae_param_plate.gbce_level), INPUT(laeParam.plateLaeParam.gbce_level), 4),
    cap(PAYLOAD(laeParam.lae_param_plate.nf_level), INPUT(laeParam.plateLaeParam.nf_level), 100),
    cap(PAYLOAD(laeParam.lae_param_plate.ee_level), INPUT(laeParam.plateLaeParam.ee_level), 5),
    cap(PAYLOAD(laeParam.lae_param_plate.blue_color_level), INPUT(laeParam.plateLaeParam.blue_color_level), 9),
    copy(PAYLOAD(laeParam.lae_param_plate.green_luma_ave_thr), INPUT(laeParam.plateLaeParam.green_luma_ave_thr)),
    cap(PAYLOAD(laeParam.lae_param_plate.green_bg_noise_level), INPUT(laeParam.plateLaeParam.green_bg_noise_level),
        512),
    cap(PAYLOAD(laeParam.lae_param_plate.green_color_level), INPUT(laeParam.plateLaeParam.green_color_level), 9),
    copy(PAYLOAD(laeParam.lae_param_plate.blue_binary_thr), INPUT(laeParam.plateLaeParam.blue_binary_thr)),
    copy(PAYLOAD(laeParam.lae_param_plate.blue_proc_thr), INPUT(laeParam.plateLaeParam.blue_proc_thr)),
    flag(PAYLOAD(laeParam.lae_param_plate.debug_pin), INPUT(debug_pin)),
    // Window part. Its gbce level is 1..10: 0 becomes 1.
    flag(PAYLOAD(laeParam.lae_param_window.manual_en), INPUT(laeParam.windowLaeParam.manual_en)),
    cap(PAYLOAD(laeParam.lae_param_window.gbce_lut_index), INPUT(laeParam.windowLaeParam.gbce_lut_index), 11),
    range(PAYLOAD(laeParam.lae_param_window.window_gbce_level), INPUT(laeParam.windowLaeParam.gbce_level), 1, 10),
    cap(PAYLOAD(laeParam.lae_param_window.nf_level), INPUT(laeParam.windowLaeParam.nf_level), 100),
    cap(PAYLOAD(laeParam.lae_param_window.ee_level), INPUT(laeParam.windowLaeParam.ee_level), 5),
    flag(PAYLOAD(laeParam.lae_param_window.debug_pin), INPUT(debug_pin)),
};

// Ids follow the record's field order, plate part first. A manual switch
// stores 1 for any positive value and 0 for zero or a negative one.
inline constexpr DebugId kIds[] = {
    onOff(RECORD(plateLaeParam.manual_en), "[DSP_DRV] lae plate manual_en is %u\n"),
    between(RECORD(plateLaeParam.gbce_level), 0, 4, "[DSP_DRV] lae plate gbce_level is %u\n"),
    between(RECORD(plateLaeParam.gbce_lut_index), 0, 11, "[DSP_DRV] lae plate gbce_lut_index is %u\n"),
    between(RECORD(plateLaeParam.ee_level), 0, 5, "[DSP_DRV] lae plate ee_level is %u\n"),
    between(RECORD(plateLaeParam.nf_level), 0, 100, "[DSP_DRV] lae plate nf_level is %u\n"),
    between(RECORD(plateLaeParam.blue_color_level), 0, 9, "[DSP_DRV] lae plate blue_color_level is %u\n"),
    between(RECORD(plateLaeParam.green_luma_ave_thr), 0, 255, "[DSP_DRV] lae plate green_luma_ave_thr is %u\n"),
    between(RECORD(plateLaeParam.green_bg_noise_level), 0, 512, "[DSP_DRV] lae plate green_bg_noise_level is %u\n"),
    between(RECORD(plateLaeParam.green_color_level), 0, 9, "[DSP_DRV] lae plate green_color_level is %u\n"),
    between(RECORD(plateLaeParam.blue_binary_thr), 0, 255, "[DSP_DRV] lae plate blue_binary_thr is %u\n"),
    between(RECORD(plateLaeParam.blue_proc_thr), 0, 255, "[DSP_DRV] lae plate blue_proc_thr is %u\n"),
    onOff(RECORD(windowLaeParam.manual_en), "[DSP_DRV] lae window manual_en is %u\n"),
    between(RECORD(windowLaeParam.gbce_level), 1, 10, "[DSP_DRV] lae window gbce_level is %u\n"),
    between(RECORD(windowLaeParam.gbce_lut_index), 0, 11, "[DSP_DRV] lae window gbce_lut_index is %u\n"),
    between(RECORD(windowLaeParam.ee_level), 0, 5, "[DSP_DRV] lae window ee_level is %u\n"),
    between(RECORD(windowLaeParam.nf_level), 0, 100, "[DSP_DRV] lae window nf_level is %u\n"),
};

// The first plate line has a doubled comma; the window line shows nf_level before ee_level.
inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg LAE Plate]manual_en=%d,gbce_lut_index=%d,gbce_level=%d,ee_level=%d,,nf_level=%d\n",
         RECORD(plateLaeParam.manual_en), RECORD(plateLaeParam.gbce_lut_index), RECORD(plateLaeParam.gbce_level),
         RECORD(plateLaeParam.ee_level), RECORD(plateLaeParam.nf_level)),
    line("[DSP_DRV] [cfg LAE Plate]blue_color_level=%d,green_luma_ave_thr=%d,green_bg_noise_level=%d,"
         "green_color_level=%d,blue_binary_thr=%d,blue_proc_thr=%d\n",
         RECORD(plateLaeParam.blue_color_level), RECORD(plateLaeParam.green_luma_ave_thr),
         RECORD(plateLaeParam.green_bg_noise_level), RECORD(plateLaeParam.green_color_level),
         RECORD(plateLaeParam.blue_binary_thr), RECORD(plateLaeParam.blue_proc_thr)),
    line("[DSP_DRV] [cfg LAE Window]manual_en=%d,gbce_lut_index=%d,gbce_level=%d,nf_level=%d,ee_level=%d\n",
         RECORD(windowLaeParam.manual_en), RECORD(windowLaeParam.gbce_lut_index), RECORD(windowLaeParam.gbce_level),
         RECORD(windowLaeParam.nf_level), RECORD(windowLaeParam.ee_level)),
};

// No set lines: the calculation logs nothing.
// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(plateLaeParam.manual_en, "0/1", "plate part: 1 uses the levels below instead of automatic ones"),
    STORED(plateLaeParam.gbce_level, "level", "plate part: global brightness and contrast enhancement strength"),
    STORED(plateLaeParam.gbce_lut_index, "index", "plate part: which enhancement curve is used"),
    STORED(plateLaeParam.ee_level, "level", "plate part: edge enhancement strength"),
    STORED(plateLaeParam.nf_level, "level", "plate part: noise filter strength"),
    STORED(plateLaeParam.blue_color_level, "level", "blue plates: colour strength"),
    STORED(plateLaeParam.green_luma_ave_thr, "luma", "green plates: mean luma threshold"),
    STORED(plateLaeParam.green_bg_noise_level, "level", "green plates: background noise level"),
    STORED(plateLaeParam.green_color_level, "level", "green plates: colour strength"),
    STORED(plateLaeParam.blue_binary_thr, "luma", "blue plates: binarisation threshold"),
    STORED(plateLaeParam.blue_proc_thr, "luma", "blue plates: processing threshold"),
    STORED(windowLaeParam.manual_en, "0/1", "window part: 1 uses the levels below instead of automatic ones"),
    STORED(windowLaeParam.gbce_level, "level", "window part: brightness and contrast enhancement strength"),
    STORED(windowLaeParam.gbce_lut_index, "index", "window part: which enhancement curve is used"),
    STORED(windowLaeParam.ee_level, "level", "window part: edge enhancement strength"),
    STORED(windowLaeParam.nf_level, "level", "window part: noise filter strength"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("plate.manual_en", laeParam.lae_param_plate.manual_en),
    WIRE("plate.blue_color_level", laeParam.lae_param_plate.blue_color_level),
    WIRE("plate.green_bg_noise_level", laeParam.lae_param_plate.green_bg_noise_level),
    WIRE("plate.green_luma_ave_thr", laeParam.lae_param_plate.green_luma_ave_thr),
    WIRE("plate.green_color_level", laeParam.lae_param_plate.green_color_level),
    WIRE("plate.blue_binary_thr", laeParam.lae_param_plate.blue_binary_thr),
    WIRE("plate.blue_proc_thr", laeParam.lae_param_plate.blue_proc_thr),
    WIRE("plate.gbce_level", laeParam.lae_param_plate.gbce_level),
    WIRE("plate.nf_level", laeParam.lae_param_plate.nf_level),
    WIRE("plate.gbce_lut_index", laeParam.lae_param_plate.gbce_lut_index),
    WIRE("plate.ee_level", laeParam.lae_param_plate.ee_level),
    WIRE("plate.debug_pin", laeParam.lae_param_plate.debug_pin),
    WIRE("window.manual_en", laeParam.lae_param_window.manual_en),
    WIRE("window.gbce_lut_index", laeParam.lae_param_window.gbce_lut_index),
    WIRE("window.window_gbce_level", laeParam.lae_param_window.window_gbce_level),
    WIRE("window.nf_level", laeParam.lae_param_window.nf_level),
    WIRE("window.ee_level", laeParam.lae_param_window.ee_level),
    WIRE("window.debug_pin", laeParam.lae_param_window.debug_pin),
    WIRE("ver", laeParam.ver), WIRE("window_en", laeParam.window_en), WIRE("plate_type", laeParam.plate_type),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, {}, kIds, kPrintLines);

}  // namespace ispdsp::stages::lae

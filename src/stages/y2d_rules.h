// Y2D: every field passes unchanged except the window size, held to 2..3.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::y2d {

ISPDSP_STAGE_TYPES(Y2d, V5118);

inline constexpr CalcStep kCalc[] = {
    copy(PAYLOAD(y2dParam.sd_spe), INPUT(y2dParam.sd_spe)),
    copy(PAYLOAD(y2dParam.sd_de_gau0), INPUT(y2dParam.sd_de_gau0)),
    copy(PAYLOAD(y2dParam.sd_de_gau1), INPUT(y2dParam.sd_de_gau1)),
    copy(PAYLOAD(y2dParam.sd_dark), INPUT(y2dParam.sd_dark)),
    copy(PAYLOAD(y2dParam.sd_dark_ra), INPUT(y2dParam.sd_dark_ra)),
    copy(PAYLOAD(y2dParam.sd_bright), INPUT(y2dParam.sd_bright)),
    copy(PAYLOAD(y2dParam.sd_bright_ra), INPUT(y2dParam.sd_bright_ra)),
    copy(PAYLOAD(y2dParam.sd_ee_gau0), INPUT(y2dParam.sd_ee_gau0)),
    copy(PAYLOAD(y2dParam.sd_sigma), INPUT(y2dParam.sd_sigma)),
    copy(PAYLOAD(y2dParam.sd_ee_gau1), INPUT(y2dParam.sd_ee_gau1)),
    copy(PAYLOAD(y2dParam.sd_ee_slope), INPUT(y2dParam.sd_ee_slope)),
    range(PAYLOAD(y2dParam.win_size), INPUT(y2dParam.win_size), 2, 3),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set Y2D]sd_spe=%d,sd_de_gau0=%d,sd_de_gau1=%d,sd_dark=%d,sd_dark_ra=%d,sd_bright=%d\n",
         PAYLOAD(y2dParam.sd_spe), PAYLOAD(y2dParam.sd_de_gau0), PAYLOAD(y2dParam.sd_de_gau1),
         PAYLOAD(y2dParam.sd_dark), PAYLOAD(y2dParam.sd_dark_ra), PAYLOAD(y2dParam.sd_bright)),
    line("[DSP_DRV] [set Y2D]sd_bright_ra=%d,sd_ee_gau0=%d,sd_sigma=%d,sd_ee_gau1=%d,sd_ee_slope=%d,win_size=%d\n",
         PAYLOAD(y2dParam.sd_bright_ra), PAYLOAD(y2dParam.sd_ee_gau0), PAYLOAD(y2dParam.sd_sigma),
         PAYLOAD(y2dParam.sd_ee_gau1), PAYLOAD(y2dParam.sd_ee_slope), PAYLOAD(y2dParam.win_size)),
};

// Ids 0 to 10 have an upper bound only: -1 stores 255 (65535 for sd_sigma).
inline constexpr DebugId kIds[] = {
    atMost(RECORD(sd_spe), 255, "[DSP_DRV] y2d sd_spe is %u\n"),
    atMost(RECORD(sd_de_gau0), 255, "[DSP_DRV] y2d sd_de_gau0 is %u\n"),
    atMost(RECORD(sd_de_gau1), 255, "[DSP_DRV] y2d sd_de_gau1 is %u\n"),
    atMost(RECORD(sd_dark), 255, "[DSP_DRV] y2d sd_dark is %u\n"),
    atMost(RECORD(sd_dark_ra), 255, "[DSP_DRV] y2d sd_dark_ra is %u\n"),
    atMost(RECORD(sd_bright), 255, "[DSP_DRV] y2d sd_bright is %u\n"),
    atMost(RECORD(sd_bright_ra), 255, "[DSP_DRV] y2d sd_bright_ra is %u\n"),
    atMost(RECORD(sd_ee_gau0), 255, "[DSP_DRV] y2d sd_ee_gau0 is %u\n"),
    atMost(RECORD(sd_sigma), 65535, "[DSP_DRV] y2d sd_sigma is %u\n"),
    atMost(RECORD(sd_ee_gau1), 255, "[DSP_DRV] y2d sd_ee_gau1 is %u\n"),
    atMost(RECORD(sd_ee_slope), 255, "[DSP_DRV] y2d sd_ee_slope is %u\n"),
    between(RECORD(win_size), 2, 3, "[DSP_DRV] y2d win_size is %u\n"),
};

inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg Y2D]sd_spe=%d,sd_de_gau0=%d,sd_de_gau1=%d,sd_dark=%d,sd_dark_ra=%d,sd_bright=%d\n",
         RECORD(sd_spe), RECORD(sd_de_gau0), RECORD(sd_de_gau1), RECORD(sd_dark), RECORD(sd_dark_ra),
         RECORD(sd_bright)),
    line("[DSP_DRV] [cfg Y2D]sd_bright_ra=%d,sd_ee_gau0=%d,sd_sigma=%d,sd_ee_gau1=%d,sd_ee_slope=%d,win_size=%d\n",
         RECORD(sd_bright_ra), RECORD(sd_ee_gau0), RECORD(sd_sigma), RECORD(sd_ee_gau1), RECORD(sd_ee_slope),
         RECORD(win_size)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(sd_spe, "level", "speckle suppression"),
    STORED(sd_de_gau0, "level", "denoise Gaussian, first pass"),
    STORED(sd_de_gau1, "level", "denoise Gaussian, second pass"),
    STORED(sd_dark, "level", "dark-area strength"),
    STORED(sd_dark_ra, "ratio", "dark-area ratio"),
    STORED(sd_bright, "level", "bright-area strength"),
    STORED(sd_bright_ra, "ratio", "bright-area ratio"),
    STORED(sd_ee_gau0, "level", "edge enhancement Gaussian, first pass"),
    STORED(sd_sigma, "sigma", "filter sigma"),
    STORED(sd_ee_gau1, "level", "edge enhancement Gaussian, second pass"),
    STORED(sd_ee_slope, "slope", "edge enhancement slope"),
    STORED(win_size, "code", "filter window size"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("sd_spe", y2dParam.sd_spe),
    WIRE("sd_de_gau0", y2dParam.sd_de_gau0),
    WIRE("sd_de_gau1", y2dParam.sd_de_gau1),
    WIRE("sd_dark", y2dParam.sd_dark),
    WIRE("sd_dark_ra", y2dParam.sd_dark_ra),
    WIRE("sd_bright", y2dParam.sd_bright),
    WIRE("sd_bright_ra", y2dParam.sd_bright_ra),
    WIRE("sd_ee_gau0", y2dParam.sd_ee_gau0),
    WIRE("sd_sigma", y2dParam.sd_sigma),
    WIRE("sd_ee_gau1", y2dParam.sd_ee_gau1),
    WIRE("sd_ee_slope", y2dParam.sd_ee_slope),
    WIRE("win_size", y2dParam.win_size),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::y2d

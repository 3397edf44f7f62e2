// YLWDR: eighteen capped fields; the payload repeats the record's layout.
// Header-only constexpr data: the library compiles it into its stage, host tools read
// the same limits.
#pragma once

#include "stages/stage_rules.h"
#include "tuning/named_field.h"

namespace ispdsp::stages::ylwdr {

ISPDSP_STAGE_TYPES(Ylwdr, V102);

// Note the caps of 64 (not 63) for d1_thr2 .. d2_thr2 and 256 for lut_weight.
inline constexpr CalcStep kCalc[] = {
    cap(PAYLOAD(ylwdrParam.hist_thr), INPUT(ylwdrParam.hist_thr), 65535),
    cap(PAYLOAD(ylwdrParam.scope_thr), INPUT(ylwdrParam.scope_thr), 31),
    cap(PAYLOAD(ylwdrParam.lep_alpha), INPUT(ylwdrParam.lep_alpha), 8192),
    cap(PAYLOAD(ylwdrParam.lut_weight), INPUT(ylwdrParam.lut_weight), 256),
    copy(PAYLOAD(ylwdrParam.yout_thr0), INPUT(ylwdrParam.yout_thr0)),
    copy(PAYLOAD(ylwdrParam.yout_thr1), INPUT(ylwdrParam.yout_thr1)),
    cap(PAYLOAD(ylwdrParam.alpha1), INPUT(ylwdrParam.alpha1), 16),
    cap(PAYLOAD(ylwdrParam.alpha2), INPUT(ylwdrParam.alpha2), 16),
    cap(PAYLOAD(ylwdrParam.alpha31), INPUT(ylwdrParam.alpha31), 63),
    cap(PAYLOAD(ylwdrParam.alpha32), INPUT(ylwdrParam.alpha32), 63),
    cap(PAYLOAD(ylwdrParam.d1_thr1), INPUT(ylwdrParam.d1_thr1), 31),
    cap(PAYLOAD(ylwdrParam.d1_thr2), INPUT(ylwdrParam.d1_thr2), 64),
    cap(PAYLOAD(ylwdrParam.d1_thr3), INPUT(ylwdrParam.d1_thr3), 64),
    cap(PAYLOAD(ylwdrParam.d2_thr1), INPUT(ylwdrParam.d2_thr1), 64),
    cap(PAYLOAD(ylwdrParam.d2_thr2), INPUT(ylwdrParam.d2_thr2), 64),
    cap(PAYLOAD(ylwdrParam.gamma_coef), INPUT(ylwdrParam.gamma_coef), 63),
    cap(PAYLOAD(ylwdrParam.uv_thr), INPUT(ylwdrParam.uv_thr), 63),
    cap(PAYLOAD(ylwdrParam.uv_gain), INPUT(ylwdrParam.uv_gain), 63),
};

inline constexpr LogLine kSetLines[] = {
    line("[DSP_DRV] [set YLWDR]hist_thr=%d,scope_thr=%d,lep_alpha=%d,lut_weight=%d,yout_thr0=%d,yout_thr1=%d\n",
         PAYLOAD(ylwdrParam.hist_thr), PAYLOAD(ylwdrParam.scope_thr), PAYLOAD(ylwdrParam.lep_alpha),
         PAYLOAD(ylwdrParam.lut_weight), PAYLOAD(ylwdrParam.yout_thr0), PAYLOAD(ylwdrParam.yout_thr1)),
    line("[DSP_DRV] [set YLWDR]alpha1=%d,alpha2=%d,alpha31=%d,alpha32=%d,d1_thr1=%d,d1_thr2=%d,,d1_thr3=%d\n",
         PAYLOAD(ylwdrParam.alpha1), PAYLOAD(ylwdrParam.alpha2), PAYLOAD(ylwdrParam.alpha31),
         PAYLOAD(ylwdrParam.alpha32), PAYLOAD(ylwdrParam.d1_thr1), PAYLOAD(ylwdrParam.d1_thr2),
         PAYLOAD(ylwdrParam.d1_thr3)),
    line("[DSP_DRV] [set YLWDR]d2_thr1=%d,d2_thr2=%d,gamma_coef=%d,uv_thr=%d,uv_gain=%d\n",
         PAYLOAD(ylwdrParam.d2_thr1), PAYLOAD(ylwdrParam.d2_thr2), PAYLOAD(ylwdrParam.gamma_coef),
         PAYLOAD(ylwdrParam.uv_thr), PAYLOAD(ylwdrParam.uv_gain)),
};

// Every id has an upper bound only (the calculation's cap; 255 for the copied
// yout_thr0/1). A negative value keeps its low-order bits: -1 stores
// 4294967295 in hist_thr, 65535 in a 16-bit field, 255 in an 8-bit one.
inline constexpr DebugId kIds[] = {
    atMost(RECORD(hist_thr), 65535, "[DSP_DRV] ylwdr hist_thr is %u\n"),
    atMost(RECORD(scope_thr), 31, "[DSP_DRV] ylwdr scope_thr is %u\n"),
    atMost(RECORD(lep_alpha), 8192, "[DSP_DRV] ylwdr lep_alpha is %u\n"),
    atMost(RECORD(lut_weight), 256, "[DSP_DRV] ylwdr lut_weight is %u\n"),
    atMost(RECORD(yout_thr0), 255, "[DSP_DRV] ylwdr yout_thr0 is %u\n"),
    atMost(RECORD(yout_thr1), 255, "[DSP_DRV] ylwdr yout_thr1 is %u\n"),
    atMost(RECORD(alpha1), 16, "[DSP_DRV] ylwdr alpha1 is %u\n"),
    atMost(RECORD(alpha2), 16, "[DSP_DRV] ylwdr alpha2 is %u\n"),
    atMost(RECORD(alpha31), 63, "[DSP_DRV] ylwdr alpha31 is %u\n"),
    atMost(RECORD(alpha32), 63, "[DSP_DRV] ylwdr alpha32 is %u\n"),
    atMost(RECORD(d1_thr1), 31, "[DSP_DRV] ylwdr d1_thr1 is %u\n"),
    atMost(RECORD(d1_thr2), 64, "[DSP_DRV] ylwdr d1_thr2 is %u\n"),
    atMost(RECORD(d1_thr3), 64, "[DSP_DRV] ylwdr d1_thr3 is %u\n"),
    atMost(RECORD(d2_thr1), 64, "[DSP_DRV] ylwdr d2_thr1 is %u\n"),
    atMost(RECORD(d2_thr2), 64, "[DSP_DRV] ylwdr d2_thr2 is %u\n"),
    atMost(RECORD(gamma_coef), 63, "[DSP_DRV] ylwdr gamma_coef is %u\n"),
    atMost(RECORD(uv_thr), 63, "[DSP_DRV] ylwdr uv_thr is %u\n"),
    atMost(RECORD(uv_gain), 63, "[DSP_DRV] ylwdr uv_gain is %u\n"),
};

// Same groups and order as the set lines, from the record (hist_thr shows as
// a C %d would: a stored 4294967295 prints -1).
inline constexpr LogLine kPrintLines[] = {
    line("[DSP_DRV] [cfg YLWDR]hist_thr=%d,scope_thr=%d,lep_alpha=%d,lut_weight=%d,yout_thr0=%d,yout_thr1=%d\n",
         RECORD(hist_thr), RECORD(scope_thr), RECORD(lep_alpha), RECORD(lut_weight), RECORD(yout_thr0),
         RECORD(yout_thr1)),
    line("[DSP_DRV] [cfg YLWDR]alpha1=%d,alpha2=%d,alpha31=%d,alpha32=%d,d1_thr1=%d,d1_thr2=%d,,d1_thr3=%d\n",
         RECORD(alpha1), RECORD(alpha2), RECORD(alpha31), RECORD(alpha32), RECORD(d1_thr1), RECORD(d1_thr2),
         RECORD(d1_thr3)),
    line("[DSP_DRV] [cfg YLWDR]d2_thr1=%d,d2_thr2=%d,gamma_coef=%d,uv_thr=%d,uv_gain=%d\n", RECORD(d2_thr1),
         RECORD(d2_thr2), RECORD(gamma_coef), RECORD(uv_thr), RECORD(uv_gain)),
};

// The stored record's fields in record order: what a tuner sets.
inline constexpr tuning::NamedField kStoredFields[] = {
    STORED(hist_thr, "count", "histogram threshold"),
    STORED(scope_thr, "level", "scope threshold"),
    STORED(lep_alpha, "weight", "edge-preserving filter weight"),
    STORED(lut_weight, "weight", "weight of the tone curve"),
    STORED(yout_thr0, "luma", "lower output luma threshold"),
    STORED(yout_thr1, "luma", "upper output luma threshold"),
    STORED(alpha1, "weight", "first blend weight"),
    STORED(alpha2, "weight", "second blend weight"),
    STORED(alpha31, "weight", "third blend weight, dark side"),
    STORED(alpha32, "weight", "third blend weight, bright side"),
    STORED(d1_thr1, "luma", "first detail threshold, level 1"),
    STORED(d1_thr2, "luma", "first detail threshold, level 2"),
    STORED(d1_thr3, "luma", "first detail threshold, level 3"),
    STORED(d2_thr1, "luma", "second detail threshold, level 1"),
    STORED(d2_thr2, "luma", "second detail threshold, level 2"),
    STORED(gamma_coef, "coefficient", "gamma coefficient"),
    STORED(uv_thr, "level", "chroma threshold"),
    STORED(uv_gain, "gain", "chroma gain"),
};

// The payload's fields as the DSP message carries them, in decoding order.
inline constexpr tuning::NamedField kPayloadFields[] = {
    WIRE("hist_thr", ylwdrParam.hist_thr),
    WIRE("scope_thr", ylwdrParam.scope_thr),
    WIRE("lep_alpha", ylwdrParam.lep_alpha),
    WIRE("lut_weight", ylwdrParam.lut_weight),
    WIRE("yout_thr0", ylwdrParam.yout_thr0),
    WIRE("yout_thr1", ylwdrParam.yout_thr1),
    WIRE("alpha1", ylwdrParam.alpha1),
    WIRE("alpha2", ylwdrParam.alpha2),
    WIRE("alpha31", ylwdrParam.alpha31),
    WIRE("alpha32", ylwdrParam.alpha32),
    WIRE("d1_thr1", ylwdrParam.d1_thr1),
    WIRE("d1_thr2", ylwdrParam.d1_thr2),
    WIRE("d1_thr3", ylwdrParam.d1_thr3),
    WIRE("d2_thr1", ylwdrParam.d2_thr1),
    WIRE("d2_thr2", ylwdrParam.d2_thr2),
    WIRE("gamma_coef", ylwdrParam.gamma_coef),
    WIRE("uv_thr", ylwdrParam.uv_thr),
    WIRE("uv_gain", ylwdrParam.uv_gain),
};

inline constexpr StageRules kRules = stage<In, Payload, Record>(kCalc, kSetLines, kIds, kPrintLines);

}  // namespace ispdsp::stages::ylwdr

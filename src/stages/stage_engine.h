// The one engine behind the calculation, debug setter and print of every
// enhancement stage, and the macro that exports a stage's three functions.
#pragma once

#include <type_traits>

#include "ispdsp/stages.h"
#include "stages/stage_rules.h"

namespace ispdsp::stages {

// The public function on whose behalf the engine reports (its name and line).
struct CallSite {
    const char* function;
    Int32 line;
};

// Null input, then null payload: error line naming the parameter, -1. Otherwise
// writes the mapped payload fields, logs the set lines and returns 0.
Int32 calculate(const StageRules& rules, CallSite site, const void* input, const char* inputName, void* payload);

// Null record: error line, -1. An id outside the table (negative ids included,
// read as unsigned) returns 0 untouched and silent. Otherwise clamps, stores the
// value narrowed to the field's width, logs the confirmation line and returns 0.
Int32 debugSet(const StageRules& rules, CallSite site, void* record, const char* recordName, Int32 pcmd_id,
               Int32 value);

// Null record: error line, -1. Otherwise logs the print lines and returns 0.
Int32 print(const StageRules& rules, CallSite site, const void* record, const char* recordName);

}  // namespace ispdsp::stages

// Defines the exported calculation, debug setter and print of stage `Name` from the rules
// in namespace `rules` (its xxx_rules.h). The parameter names are the ones the error lines
// report.
#define ISPDSP_DEFINE_STAGE(Name, Ver, calcParam, cfgParam, rules)                                                  \
    static_assert(std::is_same_v<rules::In, DSP_##Name##CalculateParam>, #Name ": the tables describe another input"); \
    static_assert(std::is_same_v<rules::Payload, DSP_##Name##Ver>, #Name ": the tables describe another payload");  \
    static_assert(std::is_same_v<rules::Record, CFG_DSP_##Name##Ver>, #Name ": the tables describe another record"); \
    Int32 DRV_dspCalculate##Name(DSP_##Name##CalculateParam* calcParam, DSP_##Name##Ver* param) {                 \
        return ::ispdsp::stages::calculate(rules::kRules, {__func__, __LINE__}, calcParam, #calcParam, param);     \
    }                                                                                                             \
    Int32 DRV_dspdbg##Name(CFG_DSP_##Name##Ver* cfgParam, Int32 pcmd_id, Int32 value) {                           \
        return ::ispdsp::stages::debugSet(rules::kRules, {__func__, __LINE__}, cfgParam, #cfgParam, pcmd_id, value); \
    }                                                                                                             \
    Int32 DRV_dspdbg##Name##Print(CFG_DSP_##Name##Ver* cfgParam) {                                                \
        return ::ispdsp::stages::print(rules::kRules, {__func__, __LINE__}, cfgParam, #cfgParam);                  \
    }

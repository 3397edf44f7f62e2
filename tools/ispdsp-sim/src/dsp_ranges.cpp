#include "dsp_ranges.h"

#include <cstring>
#include <span>

#include "fusion/fusion_fields.h"
#include "ispdsp/dsp_config.h"
#include "stages/dlae_rules.h"
#include "stages/dlcfa_rules.h"
#include "stages/fg2c_rules.h"
#include "stages/lae_rules.h"
#include "stages/lle_rules.h"
#include "stages/lsm_rules.h"
#include "stages/sade_rules.h"
#include "stages/sbm3d_rules.h"
#include "stages/y2d_rules.h"
#include "stages/ylwdr_rules.h"

namespace ispsim {

namespace {

using ispdsp::stages::CalcStep;
using ispdsp::stages::Rule;

// Stages whose payload block is copied whole to dspArgs, with their steps.
struct StageSteps {
    uint32_t type;
    std::span<const CalcStep> calc;
};
const StageSteps kStageSteps[] = {
    {DSP_AEW_CFG_TYPE_LSM, ispdsp::stages::lsm::kCalc},     {DSP_AEW_CFG_TYPE_LAE, ispdsp::stages::lae::kCalc},
    {DSP_AEW_CFG_TYPE_SBM3D, ispdsp::stages::sbm3d::kCalc}, {DSP_AEW_CFG_TYPE_FG2C, ispdsp::stages::fg2c::kCalc},
    {DSP_AEW_CFG_TYPE_LLE, ispdsp::stages::lle::kCalc},     {DSP_AEW_CFG_TYPE_YLWDR, ispdsp::stages::ylwdr::kCalc},
    {DSP_AEW_CFG_TYPE_Y2D, ispdsp::stages::y2d::kCalc},     {DSP_AEW_CFG_TYPE_DLAE, ispdsp::stages::dlae::kCalc},
    {DSP_AEW_CFG_TYPE_DLCFA, ispdsp::stages::dlcfa::kCalc}, {DSP_AEW_CFG_TYPE_SADE, ispdsp::stages::sade::kCalc},
};

void check(Event& out, const DecodedField& field, int64_t lo, int64_t hi) {
    if (field.value < lo || field.value > hi) out[field.name] = Event{{"value", field.value}, {"min", lo}, {"max", hi}};
}

}  // namespace

Event outOfRange(const DecodedMessage& decoded) {
    Event out = Event::object();
    if (decoded.type == DSP_AEW_CFG_TYPE_FUSION) {
        for (const DecodedField& field : decoded.fields)
            for (const ispdsp::fusion::ScalarField& rule : ispdsp::fusion::kScalarFields)
                if (std::strcmp(rule.name, field.name) == 0) check(out, field, rule.lo, rule.hi);
        return out;
    }
    for (const StageSteps& stage : kStageSteps) {
        if (stage.type != decoded.type) continue;
        for (const CalcStep& step : stage.calc) {
            if (step.rule == Rule::Copy) continue;
            const size_t offset = offsetof(DSP_AEW_CFG_S, dspArgs) + step.to.offset;
            for (const DecodedField& field : decoded.fields)
                if (field.offset == offset && !field.isAddress)
                    check(out, field, step.rule == Rule::Flag ? 0 : step.low, step.rule == Rule::Flag ? 1 : step.high);
        }
    }
    return out;
}

}  // namespace ispsim

#include "dsp_ranges.h"

#include <cstring>

#include "fusion/fusion_fields.h"
#include "tuning/stage_list.h"

namespace ispdsp::tools::sim {

namespace {

using ispdsp::stages::CalcStep;
using ispdsp::stages::Rule;

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
    for (const ispdsp::tuning::TableStage& stage : ispdsp::tuning::kTableStages) {
        if (ispdsp::tuning::messageTypeOf(stage) != decoded.type) continue;
        for (const CalcStep& step : stage.calc) {
            if (step.rule == Rule::Copy) continue;
            const size_t offset = ispdsp::tuning::messageOffsetOfPayload(stage) + step.to.offset;
            for (const DecodedField& field : decoded.fields)
                if (field.offset == offset && !field.isAddress)
                    check(out, field, step.rule == Rule::Flag ? 0 : step.low, step.rule == Rule::Flag ? 1 : step.high);
        }
    }
    return out;
}

}  // namespace ispdsp::tools::sim

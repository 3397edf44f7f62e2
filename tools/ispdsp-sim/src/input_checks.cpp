#include "input_checks.h"

#include <vector>

#include "input_file.h"
#include "output_file.h"

namespace ispdsp::tools::sim {

std::optional<std::string> checkInputFiles(const Options& options) {
    using ispdsp::tools::FileKind;
    struct Input {
        const char* option;
        const std::optional<std::string>& path;
        FileKind kind;
    };
    const std::optional<std::string> tuning = options.tuning;
    const std::vector<Input> inputs = {
        {"--tuning", tuning, FileKind::ParamFile},
        {"--mono-tuning", options.monoTuning, FileKind::ParamFile},
        {"--calibration", options.calibration, FileKind::CalibrationText},
        {"--nir", options.nir, FileKind::NirCurveText},
        {"--rlr", options.rlr, FileKind::RlrTable},
    };
    for (const Input& input : inputs) {
        if (!input.path) continue;
        const ispdsp::tools::InputFile file = ispdsp::tools::readInputFileOfKind(*input.path, input.kind);
        if (!file.ok()) return std::string(input.option) + " " + file.error;
    }
    return std::nullopt;
}

std::vector<std::string> runInputs(const Options& options) {
    std::vector<std::string> inputs = {options.scenario, options.library, options.tuning};
    for (const auto* path : {&options.monoTuning, &options.calibration, &options.nir, &options.rlr})
        if (*path) inputs.push_back(**path);
    return inputs;
}

std::optional<std::string> checkOutputFiles(const Options& options) {
    ispdsp::tools::OutputRule rule{runInputs(options), options.force};
    if (options.output) {
        if (std::string refusal = ispdsp::tools::outputRefusal(*options.output, rule); !refusal.empty())
            return "-o " + refusal;
        rule.inputs.push_back(*options.output);  // written too: not also the saved tuning
    }
    if (options.saveTuning) {
        if (std::string refusal = ispdsp::tools::outputRefusal(*options.saveTuning, rule); !refusal.empty())
            return "--save-tuning " + refusal;
    }
    return std::nullopt;
}

}  // namespace ispdsp::tools::sim

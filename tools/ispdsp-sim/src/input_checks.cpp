#include "input_checks.h"

#include <vector>

#include "input_file.h"

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

}  // namespace ispdsp::tools::sim

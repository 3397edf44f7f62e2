#include "console_checks.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fusion/fusion_fields.h"

namespace ispdsp::tools::sim {

namespace {

using ispdsp::fusion::ScalarField;

const ScalarField* fusionField(const std::string& name) {
    for (const ScalarField& field : ispdsp::fusion::kScalarFields)
        if (name == field.name) return &field;
    return nullptr;
}

// How the driver reads a value (strtol, base 10, saturated to 32 bits), and
// why that differs from the text; empty when it reads what was typed.
std::string howTheDriverReads(const std::string& text, int32_t& value) {
    errno = 0;
    char* end = nullptr;
    const long number = std::strtol(text.c_str(), &end, 10);
    value = static_cast<int32_t>(std::clamp<long>(number, INT32_MIN, INT32_MAX));
    if (end == text.c_str()) return "\"" + text + "\" is not a number: the driver reads it as 0";
    if (errno == ERANGE || static_cast<long>(value) != number)
        return text + " does not fit in 32 bits: the driver reads it as " + std::to_string(value);
    if (*end != '\0') return "the driver reads \"" + text + "\" as " + std::to_string(value) + " (it stops at \"" + end + "\")";
    return std::string();
}

}  // namespace

std::vector<std::string> consoleValueWarnings(const std::vector<std::string>& args) {
    std::vector<std::string> warnings;
    for (size_t i = 0; i + 1 < args.size(); ++i) {
        const ScalarField* field = fusionField(args[i]);
        if (field == nullptr) continue;
        int32_t value = 0;
        std::string what = howTheDriverReads(args[i + 1], value);
        const int32_t stored = value > field->hi ? field->hi : value < field->lo ? field->lo : value;
        if (value < 0 && !field->isSigned) what += std::string(what.empty() ? "" : "; ") + std::to_string(value) + " is negative for an unsigned field";
        if (stored != value)
            what += std::string(what.empty() ? "" : "; ") + std::to_string(value) + " is outside " + std::to_string(field->lo) +
                    " to " + std::to_string(field->hi) + ": it will be clamped to " + std::to_string(stored);
        if (!what.empty()) warnings.push_back(std::string(field->name) + ": " + what);
        ++i;  // the value
    }
    return warnings;
}

}  // namespace ispdsp::tools::sim

// Fuzz target: the tuning JSON codec of ispdsp-cfg (build and dump). A JSON source is either
// refused with at least one diagnostic, or it builds a parameter file whose dump builds the
// same bytes again and dumps to the same text: source -> binary -> dump -> source is exact.
// A parameter file (the input recognised as one) that dumps without an error or a warning
// builds back byte for byte. Nothing throws; no message carries the parser's own words.
#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_check.h"
#include "file_kind.h"
#include "tuning_codec.h"

namespace {

using fuzzsupport::require;

// The parser's exception ids never reach a message (unless the input itself holds one).
void requireOurWords(std::string_view input, const std::vector<std::string>& messages) {
    if (input.find("[json.") != std::string_view::npos) return;
    for (const std::string& m : messages) require(m.find("[json.exception") == std::string::npos, "parser words in a message");
}

void roundTripSource(const std::string& source) {
    std::vector<std::string> errors;
    const auto built = ispdsp::tools::buildParamFile(source, errors);
    requireOurWords(source, errors);
    if (!built) {
        require(!errors.empty(), "a refused source without a diagnostic");
        return;
    }
    std::string error;
    const auto dumped = ispdsp::tools::dumpTuningJson(built->bytes, error);
    require(dumped.has_value() && dumped->errors.empty(), "a built file does not dump cleanly");
    const auto rebuilt = ispdsp::tools::buildParamFile(dumped->text, errors);
    require(rebuilt.has_value() && rebuilt->bytes == built->bytes, "dump of a build does not build the same bytes");
    const auto redumped = ispdsp::tools::dumpTuningJson(rebuilt->bytes, error);
    require(redumped.has_value() && redumped->text == dumped->text, "dump of a rebuild differs");
}

void roundTripBinary(std::span<const uint8_t> bytes) {
    std::string error;
    const auto dumped = ispdsp::tools::dumpTuningJson(bytes, error);
    if (!dumped) {
        require(!error.empty(), "a refused file without a reason");
        return;
    }
    if (!dumped->errors.empty() || !dumped->warnings.empty()) return;  // what the text cannot carry
    std::vector<std::string> errors;
    const auto built = ispdsp::tools::buildParamFile(dumped->text, errors);
    requireOurWords(dumped->text, errors);
    // A clean dump can still describe a file that build refuses (no table, another version).
    if (built) require(std::equal(bytes.begin(), bytes.end(), built->bytes.begin(), built->bytes.end()),
                       "a clean dump does not build the same bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const uint8_t> bytes(data, size);
    if (ispdsp::tools::recogniseFileKind(bytes) == ispdsp::tools::FileKind::ParamFile)
        roundTripBinary(bytes);
    else
        roundTripSource(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}

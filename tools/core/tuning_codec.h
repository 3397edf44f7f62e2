// tuning.json <-> ISP parameter file, exactly as `ispdsp-cfg dump` and `ispdsp-cfg build` do
// it. Part of the ispdsp_tuning_codec library, which does not link the driver: a tool that
// dlopens the driver can save a tuned table set back to tuning.json with it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ispdsp::tools {

// The tuning.json text that `dump` writes for a parameter-file image, with what it prints
// beside it: errors (why the driver rejects the file: checksum, cut short, other version) and
// warnings (what the text does not carry: padding, bytes after the checksum, invalid types).
struct DumpedJson {
    std::string text;
    std::vector<std::string> errors;
    std::vector<std::string> warnings;
};
// Nothing, with the reason in `error`, when the bytes are too short for a parameter file.
std::optional<DumpedJson> dumpTuningJson(std::span<const uint8_t> paramFile, std::string& error);

// The parameter file that `build` writes for a tuning.json text, with its warnings (values
// outside a field's DSP range).
struct BuiltParamFile {
    std::vector<uint8_t> bytes;
    std::vector<std::string> warnings;
};
struct BuildSettings {
    bool stampDate = false;  // dateTime := the current UTC time
};
// Nothing, with one line per problem in `errors`, when the text is not a valid source
// ("tables[2] (<table type>) fusion[3].ep_delta: ...") or describes a file the driver would
// reject (no table, another version).
std::optional<BuiltParamFile> buildParamFile(const std::string& tuningJson, std::vector<std::string>& errors,
                                             const BuildSettings& settings = {});

}  // namespace ispdsp::tools

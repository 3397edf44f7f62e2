// What every command does the same way: read its input (through the host tools' one input
// reader, refusing a file of another kind), report a parameter file's errors, write its output
// to a file or to standard output ("-"), and see that the output was written.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "diagnostic.h"
#include "file_checks.h"
#include "param_file_image.h"

namespace ispdsp::tools::cfg {

// Exit status, stated in --help: 0 ok; 1 the input has errors or warnings (diff: the files
// differ); 2 the command could not do its work (usage, an unreadable input or one of another
// kind, an output that could not be written, a refused build).
inline constexpr int kExitOk = 0;
inline constexpr int kExitFindings = 1;
inline constexpr int kExitError = 2;

// A file the driver would reject (bad checksum, cut short, other version) or that is too short
// to be a parameter file at all.
struct LoadedParamFile {
    std::optional<ParsedFile> file;  // nothing when too short to take apart
    Findings errors;                 // what makes the driver reject it
    std::string tooShort;            // why it could not be taken apart
    bool rejected() const { return !file || !errors.empty(); }
};

// The one form of every message (tools/common/diagnostic.h): "error: FILE: message",
// "warning: FILE: message"; `file` empty when the message is about no file in particular.
inline void reportError(std::ostream& err, const std::string& file, const std::string& message) {
    err << ispdsp::tools::Diagnostic{ispdsp::tools::Severity::Error, file, 0, 0, message};
}
inline void reportWarning(std::ostream& err, const std::string& file, const std::string& message) {
    err << ispdsp::tools::Diagnostic{ispdsp::tools::Severity::Warning, file, 0, 0, message};
}

// Reads `path` as a parameter file; nothing, with one "error: ..." line on `err`, when it
// cannot be read or is another kind of file.
std::optional<LoadedParamFile> loadParamFileFor(const std::string& path, std::ostream& err);

// Says on `err` why the driver rejects the file, one "error: PATH: ..." line each, as `check`
// does. True when there was anything to say.
bool reportRejection(const std::string& path, const LoadedParamFile& loaded, std::ostream& err);

// Reads a text source (the JSON of `build`); nothing, with the "error:" line on `err`.
std::optional<std::string> loadJsonSourceFor(const std::string& path, std::ostream& err);

// Writes `bytes` to `path` (through a temporary file renamed into place), or to `out` when the
// path is "-" (whose failure main() reports). Never writes over one of the command's `inputs`;
// replaces an existing file only when `replace` (--force). False, with the "error:" line.
bool writeOutput(const std::string& path, const std::string& bytes, std::ostream& out, std::ostream& err,
                 const std::vector<std::string>& inputs, bool replace);

}  // namespace ispdsp::tools::cfg

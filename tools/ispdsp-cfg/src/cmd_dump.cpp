// dump: binary parameter file -> JSON source. Everything `build` writes is kept (table order,
// header bytes, full curves); what build cannot reproduce is reported as a warning: a wrong
// checksum (build writes the right one), non-zero padding (build writes 0), an incomplete last
// entry or bytes after the checksum (dropped), and invalid or duplicate types (build rejects them).
#include "command_io.h"
#include "commands.h"
#include "input_file.h"
#include "tuning_codec.h"

namespace ispdsp::tools::cfg {

int runDump(const DumpOptions& o, std::ostream& out, std::ostream& err) {
    const auto in = ispdsp::tools::readInputFileOfKind(o.input, ispdsp::tools::FileKind::ParamFile);
    if (!in.ok()) {
        reportError(err, {}, in.error);
        return kExitError;
    }
    std::string error;
    const std::optional<DumpedJson> dumped = dumpTuningJson(in.bytes, error);
    if (!dumped) {
        reportError(err, o.input, error);
        return kExitFindings;
    }
    if (!writeOutput(o.output.empty() ? "-" : o.output, dumped->text, out, err, {o.input}, o.force)) return kExitError;
    for (const std::string& e : dumped->errors) reportError(err, o.input, e);
    for (const std::string& w : dumped->warnings) reportWarning(err, o.input, w);
    return dumped->errors.empty() && dumped->warnings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

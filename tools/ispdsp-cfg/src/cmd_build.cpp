// build: JSON source -> binary parameter file. A source the driver would reject (no table,
// another version) is not written.
#include "command_io.h"
#include "commands.h"
#include "tuning_codec.h"

namespace ispdsp::tools::cfg {

int runBuild(const BuildOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<std::string> source = loadJsonSourceFor(o.source, err);
    if (!source) return kExitError;
    std::vector<std::string> errors;
    const std::optional<BuiltParamFile> built = buildParamFile(*source, errors, {o.stampDate});
    if (!built) {
        for (const std::string& m : errors) err << "error: " << o.source << ": " << m << "\n";
        return kExitError;
    }
    const std::string bytes(built->bytes.begin(), built->bytes.end());
    if (!writeOutput(o.output, bytes, out, err, {o.source}, o.force)) return kExitError;
    // The summary goes where the file does not: standard error when the file is standard output.
    std::ostream& report = o.output == "-" ? err : out;
    report << o.output << ": " << (built->bytes.size() - kFileOverhead) / kEntryBytes << " tables, "
           << built->bytes.size() << " bytes\n";
    for (const std::string& w : built->warnings) err << "warning: " << o.source << ": " << w << "\n";
    return built->warnings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

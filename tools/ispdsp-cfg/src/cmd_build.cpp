// build: JSON source -> binary parameter file. A source the driver would reject (no table,
// another version) is not written.
#include <cstdio>

#include "command_io.h"
#include "commands.h"
#include "json_place.h"
#include "tuning_codec.h"

namespace ispcfg {
namespace {

// "FILE:LINE:COLUMN: message" for a message about a value ("tables[2] (PARAM_FACE)
// fusion[3].ep_delta: ...") or a syntax error ("line 3, column 5: ..."); "FILE: message" when the
// place is no value of the source.
std::string located(const std::string& file, const std::string& source, const std::string& message) {
    const size_t colon = message.find(": ");
    std::optional<ispdsp::tools::TextPlace> place;
    if (ispdsp::tools::TextPlace at{}; std::sscanf(message.c_str(), "line %zu, column %zu:", &at.line, &at.column) == 2)
        place = at;
    else
        place = ispdsp::tools::findJsonValue(source, ispdsp::tools::jsonPathOf(message.substr(0, colon)));
    if (!place) return file + ": " + message;
    const std::string what = message.starts_with("line ") ? message.substr(colon + 2) : message;
    return file + ":" + std::to_string(place->line) + ":" + std::to_string(place->column) + ": " + what;
}

}  // namespace

int runBuild(const BuildOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<std::string> source = loadJsonSourceFor(o.source, err);
    if (!source) return kExitError;
    std::vector<std::string> errors;
    const std::optional<BuiltParamFile> built = buildParamFile(*source, errors, {o.stampDate});
    if (!built) {
        for (const std::string& m : errors) err << "error: " << located(o.source, *source, m) << "\n";
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

}  // namespace ispcfg

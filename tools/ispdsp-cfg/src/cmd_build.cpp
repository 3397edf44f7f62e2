// build: JSON source -> binary parameter file. A source the driver would reject (no table,
// another version) is not written.
#include <cstdio>

#include "command_io.h"
#include "commands.h"
#include "json_place.h"
#include "tuning_codec.h"

namespace ispdsp::tools::cfg {
namespace {

// A message about a value ("tables[2] (PARAM_FACE) fusion[3].ep_delta: ...") or a syntax error
// ("line 3, column 5: ...") at its line and column; at the file alone when the place is no value.
ispdsp::tools::Diagnostic located(const std::string& file, const std::string& source, const std::string& message) {
    ispdsp::tools::Diagnostic d{ispdsp::tools::Severity::Error, file, 0, 0, message};
    std::optional<ispdsp::tools::TextPlace> place;
    if (ispdsp::tools::TextPlace at{}; std::sscanf(message.c_str(), "line %zu, column %zu:", &at.line, &at.column) == 2) {
        place = at;
        d.message = message.substr(message.find(": ") + 2);
    } else {
        place = ispdsp::tools::findJsonValue(source, ispdsp::tools::jsonPathOf(message.substr(0, message.find(": "))));
    }
    if (place) d.line = place->line, d.column = place->column;
    return d;
}

}  // namespace

int runBuild(const BuildOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<std::string> source = loadJsonSourceFor(o.source, err);
    if (!source) return kExitError;
    std::vector<std::string> errors;
    const std::optional<BuiltParamFile> built = buildParamFile(*source, errors, {o.stampDate});
    if (!built) {
        for (const std::string& m : errors) err << located(o.source, *source, m);
        return kExitError;
    }
    const std::string bytes(built->bytes.begin(), built->bytes.end());
    if (!writeOutput(o.output, bytes, out, err, {o.source}, o.force)) return kExitError;
    // The summary goes where the file does not: standard error when the file is standard output.
    std::ostream& report = o.output == "-" ? err : out;
    report << o.output << ": " << (built->bytes.size() - kFileOverhead) / kEntryBytes << " tables, "
           << built->bytes.size() << " bytes\n";
    for (const std::string& w : built->warnings) reportWarning(err, o.source, w);
    return built->warnings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

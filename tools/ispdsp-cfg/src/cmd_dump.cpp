// dump: binary parameter file -> JSON source. Everything `build` writes is kept (table order,
// header bytes, full curves); what build cannot reproduce is reported as a warning: a wrong
// checksum (build writes the right one), non-zero padding (build writes 0), an incomplete last
// entry or bytes after the checksum (dropped), and invalid or duplicate types (build rejects them).
#include "commands.h"
#include "file_checks.h"
#include "json_writer.h"
#include "table_codec.h"
#include "type_names.h"

namespace ispcfg {

int runDump(const DumpOptions& o, std::ostream& out, std::ostream& err) {
    std::string error;
    auto file = loadParamFile(o.input, error);
    if (!file) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    std::vector<std::string> warnings;
    for (const Finding& f : structureFindings(*file)) warnings.push_back(f.text);
    if (!file->afterChecksum.empty()) {
        warnings.push_back(std::to_string(file->afterChecksum.size()) + " bytes after the checksum are not dumped");
    }
    for (const Finding& f : tableFindings(file->image.entries)) {
        // Range and version findings are check's business; report what the JSON cannot carry.
        if (f.kind == FindingKind::Padding || f.kind == FindingKind::TableType) warnings.push_back(f.text);
    }
    const std::string text = writeJson(encodeDocument(file->image));
    if (o.output.empty()) {
        out << text;
    } else if (!writeTextFile(o.output, text, error)) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    for (const std::string& w : warnings) err << "warning: " << o.input << ": " << w << "\n";
    return warnings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispcfg

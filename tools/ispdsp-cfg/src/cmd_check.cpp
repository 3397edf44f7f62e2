// check: everything the driver would reject or hold back in a binary parameter file.
#include "commands.h"
#include "header_codec.h"
#include "type_names.h"

namespace ispdsp::tools::cfg {

int runCheck(const std::string& input, std::ostream& out, std::ostream& err) {
    const std::optional<LoadedParamFile> loaded = loadParamFileFor(input, err);
    if (!loaded) return kExitError;
    if (!loaded->file) {  // too short to be taken apart: a finding about the file, not a tool failure
        out << "error: " << input << ": " << loaded->tooShort << "\n"
            << input << ": 1 error, 0 warnings (the driver rejects the file)\n";
        return kExitFindings;
    }
    const ParsedFile& file = *loaded->file;
    Findings findings = structureFindings(file);
    for (Finding& f : headerFindings(file.image.header)) findings.push_back(std::move(f));
    for (Finding& f : tableFindings(file.image.entries)) findings.push_back(std::move(f));

    const FileHeader& h = file.image.header;
    out << input << ": version " << describeFloat(h.verBits) << ", subVer " << describeFloat(h.subVerBits)
        << ", dateTime " << describeText(h.dateTime) << ", archName " << describeText(h.archName) << ", pdtName "
        << describeText(h.pdtName) << "\n";
    if (file.image.entries.empty()) {
        out << input << ": no tables\n";
    } else {
        out << input << ": " << file.image.entries.size() << (file.image.entries.size() == 1 ? " table:" : " tables:");
        for (const TableEntry& e : file.image.entries) out << " " << tableTypeName(e.type);
        out << "\n";
    }
    size_t errors = 0;
    for (const Finding& f : findings) {
        const Severity s = severityOf(f.kind);
        errors += s == Severity::Error;
        out << severityWord(s) << ": " << input << ": " << f.text << "\n";
    }
    const size_t warnings = findings.size() - errors;
    out << input << ": " << errors << (errors == 1 ? " error, " : " errors, ") << warnings
        << (warnings == 1 ? " warning" : " warnings") << (errors != 0 ? " (the driver rejects the file)\n" : "\n");
    return findings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

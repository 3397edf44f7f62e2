// check: everything the driver would reject or hold back in a binary parameter file.
#include "commands.h"
#include "file_checks.h"
#include "header_codec.h"
#include "type_names.h"

namespace ispcfg {

int runCheck(const std::string& input, std::ostream& out, std::ostream& err) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!readFileBytes(input, bytes, error)) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    auto file = parseParamFile(bytes, error);
    if (!file) {  // too short to be a parameter file: a finding about the file, not a tool failure
        out << "warning: " << input << ": " << error << "\n";
        return kExitFindings;
    }
    Findings findings = structureFindings(*file);
    for (Finding& f : headerFindings(file->image.header)) findings.push_back(std::move(f));
    for (Finding& f : tableFindings(file->image.entries)) findings.push_back(std::move(f));

    const FileHeader& h = file->image.header;
    out << input << ": version " << describeFloat(h.verBits) << ", subVer " << describeFloat(h.subVerBits)
        << ", dateTime " << describeText(h.dateTime) << ", archName " << describeText(h.archName) << ", pdtName "
        << describeText(h.pdtName) << "\n";
    out << input << ": " << file->image.entries.size() << " tables:";
    for (const TableEntry& e : file->image.entries) out << " " << tableTypeName(e.type);
    out << "\n";
    for (const Finding& f : findings) out << "warning: " << f.text << "\n";
    out << input << ": " << findings.size() << (findings.size() == 1 ? " warning\n" : " warnings\n");
    return findings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispcfg

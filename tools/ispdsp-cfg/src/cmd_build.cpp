// build: JSON source -> binary parameter file.
#include <ctime>

#include "commands.h"
#include "file_checks.h"
#include "table_codec.h"

namespace ispcfg {
namespace {

TextField utcNow() {
    TextField f{};
    const std::time_t now = std::time(nullptr);
    std::tm tm{};
    gmtime_r(&now, &tm);
    std::strftime(reinterpret_cast<char*>(f.data()), f.size(), "%Y-%m-%d %H:%M:%S", &tm);
    return f;
}

}  // namespace

int runBuild(const BuildOptions& o, std::ostream& out, std::ostream& err) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!readFileBytes(o.source, bytes, error)) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    Diagnostics diag;
    std::optional<ParamFileImage> image;
    if (auto doc = parseJsonText(std::string(bytes.begin(), bytes.end()), diag)) image = decodeDocument(*doc, diag);
    if (!image) {
        for (const std::string& m : diag.messages()) err << "error: " << o.source << ": " << m << "\n";
        return kExitError;
    }
    if (o.stampDate) image->header.dateTime = utcNow();

    if (!writeFileBytes(o.output, serializeParamFile(*image), error)) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    out << o.output << ": " << image->entries.size() << " tables, "
        << kFileOverhead + image->entries.size() * kEntryBytes << " bytes\n";

    Findings findings = headerFindings(image->header);
    for (Finding& f : tableFindings(image->entries)) findings.push_back(std::move(f));
    for (const Finding& f : findings) err << "warning: " << o.source << ": " << f.text << "\n";
    return findings.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispcfg

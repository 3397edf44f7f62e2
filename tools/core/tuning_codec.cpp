#include "tuning_codec.h"

#include <ctime>

#include "file_checks.h"
#include "json_writer.h"
#include "table_codec.h"

namespace ispdsp::tools {
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

std::optional<DumpedJson> dumpTuningJson(std::span<const uint8_t> paramFile, std::string& error) {
    auto file = parseParamFile(std::vector<uint8_t>(paramFile.begin(), paramFile.end()), error);
    if (!file) return std::nullopt;
    DumpedJson dumped;
    for (const Finding& f : structureFindings(*file)) {
        (severityOf(f.kind) == Severity::Error ? dumped.errors : dumped.warnings).push_back(f.text);
    }
    for (const Finding& f : headerFindings(file->image.header)) dumped.errors.push_back(f.text);
    if (!file->afterChecksum.empty()) {
        dumped.warnings.push_back(std::to_string(file->afterChecksum.size()) +
                                  " bytes after the checksum are not dumped");
    }
    for (const Finding& f : tableFindings(file->image.entries)) {
        // Range and version findings are check's business; report what the JSON cannot carry.
        if (f.kind == FindingKind::Padding || f.kind == FindingKind::TableType) dumped.warnings.push_back(f.text);
    }
    dumped.text = writeJson(encodeDocument(file->image));
    return dumped;
}

std::optional<BuiltParamFile> buildParamFile(const std::string& tuningJson, std::vector<std::string>& errors,
                                             const BuildSettings& settings) {
    Diagnostics diag;
    std::optional<ParamFileImage> image;
    if (auto doc = parseJsonText(tuningJson, diag)) image = decodeDocument(*doc, diag);
    if (!image) {
        errors.insert(errors.end(), diag.messages().begin(), diag.messages().end());
        return std::nullopt;
    }
    if (settings.stampDate) image->header.dateTime = utcNow();

    Findings findings = headerFindings(image->header);
    for (Finding& f : tableFindings(image->entries)) findings.push_back(std::move(f));
    BuiltParamFile built;
    for (const Finding& f : findings) {
        if (severityOf(f.kind) == Severity::Error)
            errors.push_back("not written: " + f.text);
        else
            built.warnings.push_back(f.text);
    }
    if (!errors.empty()) return std::nullopt;
    built.bytes = serializeParamFile(*image);
    return built;
}

}  // namespace ispdsp::tools

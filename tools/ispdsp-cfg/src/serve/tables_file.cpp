#include "tables_file.h"

#include <unistd.h>

#include "file_checks.h"
#include "input_file.h"
#include "tuning_codec.h"

#ifndef ISPDSP_CFG_SAMPLE_DIR
#define ISPDSP_CFG_SAMPLE_DIR "data/sample"
#endif
#ifndef ISPDSP_CFG_INSTALLED_SAMPLE_DIR
#define ISPDSP_CFG_INSTALLED_SAMPLE_DIR "../share/ispdsp/sample"
#endif

namespace ispdsp::tools::cfg::serve {

namespace fs = std::filesystem;
using ispdsp::tools::FileKind;

namespace {

std::string joinLines(const std::vector<std::string>& lines) {
    std::string s;
    for (const std::string& l : lines) s += (s.empty() ? "" : "; ") + l;
    return s;
}

}  // namespace

std::optional<ParamFileImage> readTableSet(const fs::path& path, std::string& error) {
    const ispdsp::tools::InputFile in = ispdsp::tools::readInputFile(path.string());
    if (!in.ok()) {
        error = in.error;
        return std::nullopt;
    }
    std::vector<uint8_t> bytes = in.bytes;
    const FileKind kind = ispdsp::tools::recogniseFileKind(bytes);
    if (kind == FileKind::JsonText) {
        std::vector<std::string> errors;
        const auto built = buildParamFile(std::string(bytes.begin(), bytes.end()), errors);
        if (!built) {
            error = path.string() + ": " + joinLines(errors);
            return std::nullopt;
        }
        bytes = built->bytes;
    } else if (kind != FileKind::ParamFile) {
        error = path.string() + ": " + ispdsp::tools::wrongKindReason(kind, FileKind::ParamFile);
        return std::nullopt;
    }
    std::optional<ParsedFile> parsed = parseParamFile(bytes, error);
    if (!parsed) {
        error = path.string() + ": " + error;
        return std::nullopt;
    }
    Findings findings = structureFindings(*parsed);
    for (Finding& f : headerFindings(parsed->image.header)) findings.push_back(std::move(f));
    for (Finding& f : tableFindings(parsed->image.entries)) findings.push_back(std::move(f));
    std::vector<std::string> rejections;
    for (const Finding& f : findings)
        if (severityOf(f.kind) == Severity::Error) rejections.push_back(f.text);
    if (!rejections.empty()) {
        error = path.string() + ": the driver rejects this file: " + joinLines(rejections);
        return std::nullopt;
    }
    return std::move(parsed->image);
}

fs::path sampleFolder() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        const fs::path installed = exe.parent_path() / ISPDSP_CFG_INSTALLED_SAMPLE_DIR;
        if (fs::is_regular_file(installed / "dsp_isp_para.bin", ec)) return installed.lexically_normal();
    }
    return ISPDSP_CFG_SAMPLE_DIR;
}

fs::path sampleParamFile() { return sampleFolder() / "dsp_isp_para.bin"; }

}  // namespace ispdsp::tools::cfg::serve

#include "command_io.h"

#include "input_file.h"
#include "output_file.h"

namespace ispdsp::tools::cfg {

using ispdsp::tools::FileKind;

std::optional<LoadedParamFile> loadParamFileFor(const std::string& path, std::ostream& err) {
    const ispdsp::tools::InputFile in = ispdsp::tools::readInputFileOfKind(path, FileKind::ParamFile);
    if (!in.ok()) {
        reportError(err, {}, in.error);
        return std::nullopt;
    }
    LoadedParamFile loaded;
    loaded.file = parseParamFile(in.bytes, loaded.tooShort);
    if (loaded.file) {
        for (Finding& f : structureFindings(*loaded.file)) {
            if (severityOf(f.kind) == Severity::Error) loaded.errors.push_back(std::move(f));
        }
        for (Finding& f : headerFindings(loaded.file->image.header)) loaded.errors.push_back(std::move(f));
    }
    return loaded;
}

bool reportRejection(const std::string& path, const LoadedParamFile& loaded, std::ostream& err) {
    if (!loaded.file) reportError(err, path, loaded.tooShort);
    for (const Finding& f : loaded.errors) reportError(err, path, f.text);
    return loaded.rejected();
}

std::optional<std::string> loadJsonSourceFor(const std::string& path, std::ostream& err) {
    const ispdsp::tools::InputFile in = ispdsp::tools::readInputFileOfKind(path, FileKind::JsonText);
    if (!in.ok()) {
        reportError(err, {}, in.error);
        return std::nullopt;
    }
    return std::string(in.bytes.begin(), in.bytes.end());
}

bool writeOutput(const std::string& path, const std::string& bytes, std::ostream& out, std::ostream& err,
                 const std::vector<std::string>& inputs, bool replace) {
    if (path == "-") {
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return true;
    }
    std::string error;
    if (!ispdsp::tools::writeOutputFile(path, bytes, {inputs, replace}, error)) {
        reportError(err, {}, error);
        return false;
    }
    return true;
}

}  // namespace ispdsp::tools::cfg

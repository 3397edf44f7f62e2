// Reading the table set the workbench opens, compares or pairs: a parameter file or a JSON
// source, through the same checks as `check` and `build`; a file the driver would reject is
// refused with the reasons.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

std::optional<ParamFileImage> readTableSet(const std::filesystem::path& path, std::string& error);

// The bundled sample folder: beside an installed binary (share/ispdsp/sample) or in the source
// tree it was built from; and its parameter file.
std::filesystem::path sampleFolder();
std::filesystem::path sampleParamFile();

}  // namespace ispdsp::tools::cfg::serve

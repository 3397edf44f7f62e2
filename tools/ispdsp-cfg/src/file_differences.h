// The differences between two parameter files, one line each, as `diff` prints them
// ("PARAM_MULTICOLOR fusion[3].ep_delta: 64 -> 100"); the workbench's comparison shows the same lines.
#pragma once

#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispdsp::tools::cfg {

// Header fields, tables only in one file (named by nameA/nameB), and every differing field,
// curve and padding byte of the tables both have.
std::vector<std::string> fileDifferences(const ParsedFile& a, const ParsedFile& b, const std::string& nameA,
                                         const std::string& nameB);

}  // namespace ispdsp::tools::cfg

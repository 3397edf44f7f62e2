// The workbench page's files, built into the binary (cmake/embed_files.cmake), so that an
// installed or packaged ispdsp-cfg serves its page without the source tree.
#pragma once

#include <string_view>
#include <vector>

namespace ispdsp::tools::cfg::serve {

struct EmbeddedFile {
    std::string_view name;  // "index.html", "workbench.js"
    std::string_view bytes;
};

const std::vector<EmbeddedFile>& embeddedFiles();

}  // namespace ispdsp::tools::cfg::serve

// The workbench's one way to write a file: the bytes go to a temporary file beside the target
// and are renamed into place only when all were written and synced, so a failed save leaves
// what was there. Which targets may be written at all is FileAccess's decision.
#pragma once

#include <filesystem>
#include <string>

namespace ispdsp::tools::cfg::serve {

bool writeFileSafely(const std::filesystem::path& target, const std::string& bytes, std::string& error);

}  // namespace ispdsp::tools::cfg::serve

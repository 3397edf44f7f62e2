// Reading the file a host tool is given, in one place for every tool and subcommand. Every
// failure comes back as one message that names the path and the reason ("PATH: is a
// directory, not a file", "PATH: cannot open: Permission denied"); nothing throws.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "file_kind.h"

namespace ispdsp::tools {

// The whole file, or the reason it could not be read.
struct InputFile {
    std::vector<uint8_t> bytes;
    std::string error;  // empty when read
    bool ok() const { return error.empty(); }
};

// Larger inputs are refused: no tuning, table or text file comes near.
inline constexpr uint64_t kMaxInputBytes = 64u << 20;

InputFile readInputFile(const std::string& path);

// Reads and recognises: a file of another kind than `expected` is an error too
// (see wrongKindReason).
InputFile readInputFileOfKind(const std::string& path, FileKind expected);

}  // namespace ispdsp::tools

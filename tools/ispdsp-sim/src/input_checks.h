// The files a run is given, checked before anything starts: each must be
// readable and of the kind its option expects, so a directory, a missing file
// or a tuning binary given as --rlr is refused with one line that names the
// option, the path and what the file seems to be (exit status 2).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options.h"

namespace ispdsp::tools::sim {

// The first problem, as "--rlr PATH: seems to be an ISP parameter file, not an
// RLR table file"; nothing when every file is fine.
std::optional<std::string> checkInputFiles(const Options& options);

// Every file the run reads: no output may be one of them.
std::vector<std::string> runInputs(const Options& options);

// The first output (-o, --save-tuning) that may not be written: one of the inputs, an
// existing file without --force, the same file for both; nothing when both may be.
std::optional<std::string> checkOutputFiles(const Options& options);

}  // namespace ispdsp::tools::sim

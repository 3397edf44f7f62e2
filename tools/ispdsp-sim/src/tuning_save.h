// Saving what was tuned: the driver changes the tables in place inside the
// parameter-file buffer it loaded, and the instance's table set points into
// that buffer. The tables that differ from the source file are copied back
// into its image, and the image is written as tuning.json the way
// `ispdsp-cfg dump` writes it, so `ispdsp-cfg build` turns it into a file
// whose only differences from the source are the accepted changes.
#pragma once

#include <string>

#include "ispdsp/param_table.h"
#include "output_file.h"

namespace ispdsp::tools::sim {

struct SaveResult {
    bool ok = false;
    int changedTables = 0;
    std::string message;  // what was written, or why nothing was
};

// `sourceFile` is the parameter file the instance loaded; `tables` its live table set;
// `rule`: the run's inputs and whether an existing file may be replaced.
SaveResult saveTuning(const CFG_DspIspCfgTables& tables, const std::string& sourceFile, const std::string& jsonPath,
                      const ispdsp::tools::OutputRule& rule);

}  // namespace ispdsp::tools::sim

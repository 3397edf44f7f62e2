// The driver library's own table choice on a host file: load with DRV_ispCfgLoad, register
// with DRV_ispCommonTable2DspTable, choose with DRV_ispChooseCurParamDSP. The library's log
// lines are collected rather than printed.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "selection_rules.h"

namespace ispdsp::tools::cfg {

struct LibraryChoice {
    bool ok = false;                 // DRV_ispChooseCurParamDSP returned 0
    uint32_t row = 0;                // curTableIdx
    uint32_t type = 0;               // curTableType
    bool tableIsRegistered = false;  // curTable == paramTables[curTableType]
};

// The library's choice is the one the explanation arrives at (or both find no table).
bool libraryAgrees(const Selection& explained, const LibraryChoice& library);

class LibraryTables {
public:
    // Loads `hostPath` (a plain host path: the host layer's sandbox root is switched off while
    // the file is opened). Nothing on failure, with the library's log lines in `error`.
    static std::unique_ptr<LibraryTables> load(const std::string& hostPath, std::string& error);
    ~LibraryTables();
    LibraryTables(const LibraryTables&) = delete;
    LibraryTables& operator=(const LibraryTables&) = delete;

    LibraryChoice choose(const CameraState& state);
    // Types the library registered.
    std::array<bool, 120> registered() const;
    const std::vector<std::string>& log() const { return log_; }

private:
    LibraryTables();
    struct State;
    std::unique_ptr<State> state_;
    std::vector<std::string> log_;
};

}  // namespace ispdsp::tools::cfg

#include "library_selection.h"

#include <cstdlib>
#include <cstring>

#include "ispdsp/osa.h"
#include "ispdsp/param_table.h"
#include "ispdsp_host/host.h"
#include "ispdsp_host/scoped.h"
#include "param_file_image.h"

namespace ispdsp::tools::cfg {
namespace {

// The library's log lines, collected.
void appendLine(void* ctx, int32_t, int32_t, const char* text) {
    std::string line = text;
    while (!line.empty() && line.back() == '\n') line.pop_back();
    static_cast<std::vector<std::string>*>(ctx)->push_back(line);
}

std::string joined(const std::vector<std::string>& lines) {
    std::string s;
    for (const std::string& l : lines) s += "\n  " + l;
    return s;
}

}  // namespace

bool libraryAgrees(const Selection& tool, const LibraryChoice& lib) {
    if (tool.chosen != lib.ok) return false;
    return !tool.chosen ||
           (tool.row == lib.row && static_cast<uint32_t>(tool.chosenType) == lib.type && lib.tableIsRegistered);
}

struct LibraryTables::State {
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    CFG_DspIspCfgTables tables{};
};

LibraryTables::LibraryTables() : state_(std::make_unique<State>()) {}

LibraryTables::~LibraryTables() {
    if (state_->buffer != nullptr) OSA_memUFree(state_->buffer);
}

std::unique_ptr<LibraryTables> LibraryTables::load(const std::string& hostPath, std::string& error) {
    std::unique_ptr<LibraryTables> lib(new LibraryTables());
    State& s = *lib->state_;
    const ispdsp::host::ScopedLogSink capture(&appendLine, &lib->log_);
    {
        // A tool opens the user's own files: no sandbox while the library opens one.
        const ispdsp::host::ScopedSandboxRoot noRoot("");
        if (DRV_ispCfgLoad(hostPath.c_str(), floatFromBits(kExpectedVersionBits), &s.header, &s.buffer) != 0) {
            error = hostPath + ": the library does not load this file:" + joined(lib->log_);
            return nullptr;
        }
    }
    if (DRV_ispCommonTable2DspTable(&s.header, s.buffer, s.tables.paramTables) != 0) {
        error = hostPath + ": the library does not register the tables of this file:" + joined(lib->log_);
        return nullptr;
    }
    return lib;
}

LibraryChoice LibraryTables::choose(const CameraState& state) {
    const ispdsp::host::ScopedLogSink capture(&appendLine, &log_);
    CFG_ispParamCondition condition{};
    condition.realDncMode = state.realDncMode;
    condition.hdrMode = state.hdrMode;
    condition.sceneMode = state.sceneMode;
    condition.imageScene = state.imageScene;
    CFG_DspIspCfgTables& t = state_->tables;
    t.curTable = nullptr;
    LibraryChoice c;
    c.ok = DRV_ispChooseCurParamDSP(&condition, &t) == 0;
    if (c.ok) {
        c.row = t.curTableIdx;
        c.type = t.curTableType;
        c.tableIsRegistered = c.type < PARAM_TABLE_TYPE_NUM && t.curTable == t.paramTables[c.type];
    }
    return c;
}

std::array<bool, 120> LibraryTables::registered() const {
    std::array<bool, 120> r{};
    for (size_t i = 0; i < r.size(); ++i) r[i] = state_->tables.paramTables[i] != nullptr;
    return r;
}

}  // namespace ispdsp::tools::cfg

#include "library_selection.h"

#include <cstdlib>
#include <cstring>

#include "ispdsp/osa.h"
#include "ispdsp/param_table.h"
#include "ispdsp_host/host.h"
#include "param_file_image.h"

namespace ispcfg {
namespace {

// Routes the library's log lines into a list for the lifetime of the object.
class LogCapture {
public:
    explicit LogCapture(std::vector<std::string>& lines) {
        ispdsp_host_get_log_sink(&oldSink_, &oldCtx_);
        ispdsp_host_set_log_sink(&LogCapture::append, &lines);
    }
    ~LogCapture() { ispdsp_host_set_log_sink(oldSink_, oldCtx_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

private:
    static void append(void* ctx, int32_t, int32_t, const char* text) {
        std::string line = text;
        while (!line.empty() && line.back() == '\n') line.pop_back();
        static_cast<std::vector<std::string>*>(ctx)->push_back(line);
    }
    ispdsp_host_log_sink oldSink_ = nullptr;
    void* oldCtx_ = nullptr;
};

// The host layer prefixes absolute paths with $ISPDSP_ROOT (its sandbox for driver paths).
// A tool opens the user's own files, so the root is off while the library opens one.
class NoSandboxRoot {
public:
    NoSandboxRoot() {
        if (const char* root = std::getenv("ISPDSP_ROOT")) {
            saved_ = root;
            hadRoot_ = true;
            unsetenv("ISPDSP_ROOT");
        }
    }
    ~NoSandboxRoot() {
        if (hadRoot_) setenv("ISPDSP_ROOT", saved_.c_str(), 1);
    }
    NoSandboxRoot(const NoSandboxRoot&) = delete;
    NoSandboxRoot& operator=(const NoSandboxRoot&) = delete;

private:
    std::string saved_;
    bool hadRoot_ = false;
};

std::string joined(const std::vector<std::string>& lines) {
    std::string s;
    for (const std::string& l : lines) s += "\n  " + l;
    return s;
}

}  // namespace

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
    LogCapture capture(lib->log_);
    {
        NoSandboxRoot noRoot;
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
    LogCapture capture(log_);
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

}  // namespace ispcfg

// C++ scopes over the host layer's process-wide settings: each installs its
// setting for as long as it lives and puts back the one it replaced, so scopes
// nest and a program's own setting survives a library call that changes it.
#pragma once

#include <optional>
#include <string>

#include "ispdsp_host/host.h"

namespace ispdsp::host {

// A log sink for the scope.
class ScopedLogSink {
public:
    ScopedLogSink(ispdsp_host_log_sink sink, void* ctx) {
        ispdsp_host_get_log_sink(&previousSink_, &previousCtx_);
        ispdsp_host_set_log_sink(sink, ctx);
    }
    ~ScopedLogSink() { ispdsp_host_set_log_sink(previousSink_, previousCtx_); }
    ScopedLogSink(const ScopedLogSink&) = delete;
    ScopedLogSink& operator=(const ScopedLogSink&) = delete;

private:
    ispdsp_host_log_sink previousSink_ = nullptr;
    void* previousCtx_ = nullptr;
};

// A sandbox root for the scope ("" for none: driver paths are host paths).
class ScopedSandboxRoot {
public:
    explicit ScopedSandboxRoot(const std::string& root) {
        std::string previous(4096, '\0');
        if (ispdsp_host_get_sandbox_root(previous.data(), previous.size()) == 1) {
            previous_ = previous.c_str();
        }
        ispdsp_host_set_sandbox_root(root.c_str());
    }
    ~ScopedSandboxRoot() { ispdsp_host_set_sandbox_root(previous_ ? previous_->c_str() : nullptr); }
    ScopedSandboxRoot(const ScopedSandboxRoot&) = delete;
    ScopedSandboxRoot& operator=(const ScopedSandboxRoot&) = delete;

private:
    std::optional<std::string> previous_;  // none: ISPDSP_ROOT was read
};

}  // namespace ispdsp::host

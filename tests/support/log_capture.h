// Captures the log lines of the driver (through the host layer's sink) for the
// lifetime of the object; the sink that was installed before comes back at the end.
//
// The one way to match the driver's lines (level, category and shape checked here once):
//   log.count(LogKind::Error, "DRV_ispCfgLoad", "open failed\n")  // "[DSP_DRV] ERROR  (DRV_ispCfgLoad|<n>): open failed\n"
//   log.has(LogKind::Warn, "DRV_loadRlrCfg", "...")               // WARN, any source line
//   log.count(LogKind::Info, "", "pswitch=1\n")                    // "[DSP_DRV] pswitch=1\n"
//   log.count(LogKind::Warn)                                       // every warning
//   log.contains("substring"), log.count("substring")              // loose matches on the text
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ispdsp_host/host.h"

namespace ispdsp_test {

struct LogLine {
    int32_t level;
    int32_t category;
    std::string text;  // as formatted, line end included
};

// The driver's three kinds of line, each with its fixed (level, category).
enum class LogKind { Error, Warn, Info };

// True when `line` is a line of that kind: Error/Warn exactly
// "[DSP_DRV] <KIND>  (<function>|<decimal line>): <message>", Info exactly "[DSP_DRV] <message>".
bool isDriverLine(const LogLine& line, LogKind kind, std::string_view function, std::string_view message);

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const;
    std::vector<std::string> texts() const;
    // Lines that are isDriverLine(kind, function, message); every line of the kind without them.
    size_t count(LogKind kind, std::string_view function, std::string_view message) const;
    size_t count(LogKind kind) const;
    bool has(LogKind kind, std::string_view function, std::string_view message) const {
        return count(kind, function, message) != 0;
    }
    // Lines whose text contains `needle`.
    size_t count(std::string_view needle) const;
    bool contains(std::string_view needle) const { return count(needle) != 0; }
    void clear();

private:
    static void sink(void* ctx, int32_t level, int32_t category, const char* text);

    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
    ispdsp_host_log_sink previous_sink_ = nullptr;
    void* previous_ctx_ = nullptr;
};

}  // namespace ispdsp_test

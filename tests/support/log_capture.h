// Captures the log lines of the driver (through the host layer's sink) for the
// lifetime of the object; the sink that was installed before comes back at the end.
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

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const;
    std::vector<std::string> texts() const;
    // True when some captured line contains `needle`.
    bool contains(std::string_view needle) const;
    // Number of captured lines that contain `needle`.
    size_t count(std::string_view needle) const;
    void clear();

private:
    static void sink(void* ctx, int32_t level, int32_t category, const char* text);

    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
    ispdsp_host_log_sink previous_sink_ = nullptr;
    void* previous_ctx_ = nullptr;
};

}  // namespace ispdsp_test

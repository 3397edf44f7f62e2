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

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ispdsp_host/host.h"
#include "ispdsp_host/scoped.h"

namespace ispdsp_test {

struct LogLine {
    int32_t level;
    int32_t category;
    std::string text;  // as formatted, line end included
};

// The driver's three kinds of line, each with its fixed (level, category) and tag; see src/common/log.h.
enum class LogKind { Error, Warn, Info };
struct LogKindShape {
    int32_t level, category;
    std::string_view tag;
};
inline constexpr LogKindShape kLogKindShapes[] = {{0, 1, "ERROR"}, {1, 8, "WARN"}, {2, 2, ""}};

// True when `line` is a line of that kind: Error/Warn exactly
// "[DSP_DRV] <KIND>  (<function>|<decimal line>): <message>", Info exactly "[DSP_DRV] <message>".
inline bool isDriverLine(const LogLine& line, LogKind kind, std::string_view function, std::string_view message) {
    const LogKindShape& shape = kLogKindShapes[static_cast<int>(kind)];
    std::string_view text = line.text;
    if (line.level != shape.level || line.category != shape.category || !text.starts_with("[DSP_DRV] ")) return false;
    text.remove_prefix(10);
    if (kind == LogKind::Info) return text == message;
    const std::string head = std::string(shape.tag) + "  (" + std::string(function) + "|";
    if (!text.starts_with(head)) return false;
    text.remove_prefix(head.size());
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    return digits > 0 && text.substr(digits).starts_with("): ") && text.substr(digits + 3) == message;
}

class LogCapture {
public:
    LogCapture() : scope_(&LogCapture::sink, this) {}
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return lines_;
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const LogLine& line : lines()) out.push_back(line.text);
        return out;
    }
    // Lines that are isDriverLine(kind, function, message); every line of the kind without them.
    size_t count(LogKind kind, std::string_view function, std::string_view message) const {
        return countIf([&](const LogLine& l) { return isDriverLine(l, kind, function, message); });
    }
    size_t count(LogKind kind) const {
        return countIf([&](const LogLine& l) { return l.level == kLogKindShapes[static_cast<int>(kind)].level; });
    }
    bool has(LogKind kind, std::string_view function, std::string_view message) const {
        return count(kind, function, message) != 0;
    }
    // Lines whose text contains `needle`.
    size_t count(std::string_view needle) const {
        return countIf([&](const LogLine& l) { return l.text.find(needle) != std::string::npos; });
    }
    bool contains(std::string_view needle) const { return count(needle) != 0; }
    void clear() {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.clear();
    }

private:
    static void sink(void* ctx, int32_t level, int32_t category, const char* text) {
        auto* self = static_cast<LogCapture*>(ctx);
        std::lock_guard<std::mutex> lock(self->mutex_);
        self->lines_.push_back(LogLine{level, category, text});
    }
    template <class Pred>
    size_t countIf(Pred pred) const {
        const auto all = lines();
        return std::count_if(all.begin(), all.end(), pred);
    }

    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
    ispdsp::host::ScopedLogSink scope_;  // last member: installed once the lines can take a call
};

}  // namespace ispdsp_test

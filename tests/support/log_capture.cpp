#include "support/log_capture.h"

#include <algorithm>

namespace ispdsp_test {

namespace {
struct KindShape {
    int32_t level, category;
    std::string_view tag;
};
// The driver's (level, category) pairs and tags; see src/common/log.h.
constexpr KindShape kShapes[] = {{0, 1, "ERROR"}, {1, 8, "WARN"}, {2, 2, ""}};
}  // namespace

bool isDriverLine(const LogLine& line, LogKind kind, std::string_view function, std::string_view message) {
    const KindShape& shape = kShapes[static_cast<int>(kind)];
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

LogCapture::LogCapture() {
    ispdsp_host_get_log_sink(&previous_sink_, &previous_ctx_);
    ispdsp_host_set_log_sink(&LogCapture::sink, this);
}

LogCapture::~LogCapture() { ispdsp_host_set_log_sink(previous_sink_, previous_ctx_); }

void LogCapture::sink(void* ctx, int32_t level, int32_t category, const char* text) {
    auto* self = static_cast<LogCapture*>(ctx);
    std::lock_guard<std::mutex> lock(self->mutex_);
    self->lines_.push_back(LogLine{level, category, text});
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
}

std::vector<std::string> LogCapture::texts() const {
    std::vector<std::string> out;
    for (const LogLine& line : lines()) out.push_back(line.text);
    return out;
}

size_t LogCapture::count(LogKind kind, std::string_view function, std::string_view message) const {
    const auto all = lines();
    return std::count_if(all.begin(), all.end(), [&](const LogLine& l) { return isDriverLine(l, kind, function, message); });
}

size_t LogCapture::count(LogKind kind) const {
    const auto all = lines();
    const KindShape& shape = kShapes[static_cast<int>(kind)];
    return std::count_if(all.begin(), all.end(), [&](const LogLine& l) { return l.level == shape.level; });
}

size_t LogCapture::count(std::string_view needle) const {
    const auto all = lines();
    return std::count_if(all.begin(), all.end(), [&](const LogLine& l) { return l.text.find(needle) != std::string::npos; });
}

void LogCapture::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    lines_.clear();
}

}  // namespace ispdsp_test

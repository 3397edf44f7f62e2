#include "support/log_capture.h"

namespace ispdsp_test {

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
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> out;
    out.reserve(lines_.size());
    for (const LogLine& line : lines_) {
        out.push_back(line.text);
    }
    return out;
}

bool LogCapture::contains(std::string_view needle) const { return count(needle) != 0; }

size_t LogCapture::count(std::string_view needle) const {
    std::lock_guard<std::mutex> lock(mutex_);
    size_t n = 0;
    for (const LogLine& line : lines_) {
        n += line.text.find(needle) != std::string::npos ? 1 : 0;
    }
    return n;
}

void LogCapture::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    lines_.clear();
}

}  // namespace ispdsp_test

#include "reporter.h"

#include <cerrno>

#include "ispdsp_host/host.h"
#include "names.h"
#include "printable_text.h"
#include "text_encoding.h"

namespace ispdsp::tools::sim {

Reporter::Reporter(std::unique_ptr<Formatter> formatter, bool showLog)
    : formatter_(std::move(formatter)), showLog_(showLog) {}

Reporter::~Reporter() = default;

namespace {

// Every text of an event, with what a terminal must not receive escaped: the texts come from
// files (scenario names, tuning texts), the console's input and the driver's log.
Event printable(const Event& value) {
    if (value.is_string()) return ispdsp::tools::printableText(value.get_ref<const std::string&>(), /*keepLineFeeds=*/true);
    if (!value.is_structured()) return value;
    Event out = value;
    for (auto& [key, item] : out.items()) item = printable(item);
    return out;
}

}  // namespace

void Reporter::emit(const std::string& kind, const Event& payload) {
    Event event;
    event["event"] = kind;
    event["phase"] = context_.phase;
    event["frame"] = context_.frame >= 0 ? Event(context_.frame) : Event(nullptr);
    event["pipe"] = context_.pipe >= 0 ? Event(pipeName(context_.pipe)) : Event(nullptr);
    for (const auto& [key, value] : payload.items()) event[key] = printable(value);
    errno = 0;
    formatter_->write(event);
    noteOutputError();
}

void Reporter::noteOutputError() {
    if (outputErrno_ == 0 && formatter_->failed()) outputErrno_ = errno;
}

void Reporter::flush() {
    errno = 0;
    formatter_->flush();
    noteOutputError();
}

void Reporter::logLine(int32_t level, int32_t category, const std::string& text) {
    operationLog_.push_back(text);
    if (!showLog_) return;
    Event payload;
    payload["op"] = context_.op.empty() ? Event(nullptr) : Event(context_.op);
    payload["level"] = level;
    payload["category"] = category;
    payload["text"] = displayText(text);
    if (context_.pairStart && text.find("Input NULL POINT w_nir") != std::string::npos)
        payload["expected"] = pairStartLogNote(context_.pipe);
    emit("log", payload);
}

std::string pairStartLogNote(int pipe) {
    return std::string("the ") + pipeName(1 - pipe) + " pipe has not calculated yet: the start of a linked pair";
}
std::string pairStartMessageNote() {
    return "zeros: the combined record is still empty at the start of a linked pair, and is sent anyway";
}
std::string pairStartCallNote() { return "the start of a linked pair, not counted as a failure"; }
std::string fusionDifferenceNote() {
    return "colour minus mono, as the driver combines a linked pair";
}

void Reporter::beginOperation(int pipe, const std::string& op) {
    context_.pipe = pipe;
    context_.op = op;
    operationLog_.clear();
}

void Reporter::countFailure(const std::string& op, int32_t result) {
    constexpr size_t kListed = 10;  // enough to see the pattern; the count has the rest
    ++failures_;
    if (failureList_.size() < kListed)
        failureList_.push_back(Event{{"frame", context_.frame >= 0 ? Event(context_.frame) : Event(nullptr)},
                                     {"pipe", context_.pipe >= 0 ? Event(pipeName(context_.pipe)) : Event(nullptr)},
                                     {"op", op},
                                     {"ret", result}});
}

Event Reporter::summary(int64_t frames) const {
    return Event{{"frames", frames},           {"messages", Event(messageCounts_)},
                 {"failedCalls", failures_},   {"failures", failureList_},
                 {"expectedResults", expected_}, {"expectedOutOfRange", expectedOutOfRange_},
                 {"consoleChanges", consoleChanges_}};
}

void Reporter::finish() {
    errno = 0;
    formatter_->finish();
    noteOutputError();
}

namespace {
void reporterSink(void* ctx, int32_t level, int32_t category, const char* text) {
    static_cast<Reporter*>(ctx)->logLine(level, category, text != nullptr ? text : "");
}
}  // namespace

LogSinkScope::LogSinkScope(Reporter& reporter) : sink_(&reporterSink, &reporter) {}

}  // namespace ispdsp::tools::sim

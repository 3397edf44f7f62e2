// The event stream of a run. Everything the simulator observes (calls and
// their results, DSP messages, flag requests, table choices, the driver's log
// lines) becomes one event, a JSON object tagged with the context it happened
// in (phase, frame, pipe, operation), and goes to one formatter: JSON lines or
// the readable table.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ispdsp_host/scoped.h"

namespace ispdsp::tools::sim {

using Event = nlohmann::ordered_json;

// Where the simulator is: set by the frame loop before every driver call, read
// by the callbacks (the DSP callbacks carry no context of their own).
struct Context {
    std::string phase = "setup";  // setup, frame, console, teardown
    int64_t frame = -1;           // -1 outside frames
    int pipe = -1;                // -1 when no pipe is addressed
    std::string op;               // the driver function being called
    // The first OpSetFusion of a linked pair, before the other pipe has
    // calculated: its null-curve error, -1 and all-zero FUSION message are
    // the driver's design, labelled "expected" instead of looking like faults.
    bool pairStart = false;
};

// The labels of that first call, by what they explain.
std::string pairStartLogNote(int pipe);
std::string pairStartMessageNote();
std::string pairStartCallNote();
// A combined FUSION message carries the colour pipe's values minus the mono pipe's, so a
// value outside a field's DSP range there is the driver's design, not a fault.
std::string fusionDifferenceNote();

class Formatter {
public:
    virtual ~Formatter() = default;
    virtual void write(const Event& event) = 0;
    virtual void flush() = 0;
    virtual void finish() { flush(); }
    virtual bool failed() const = 0;  // the output can no longer be written
};

std::unique_ptr<Formatter> makeJsonFormatter(std::FILE* out);
struct TableOptions {
    bool curves = false;  // print all 511 curve points
};
std::unique_ptr<Formatter> makeTableFormatter(std::FILE* out, TableOptions options);

class Reporter {
public:
    Reporter(std::unique_ptr<Formatter> formatter, bool showLog);
    ~Reporter();
    Reporter(const Reporter&) = delete;
    Reporter& operator=(const Reporter&) = delete;

    Context& context() { return context_; }

    // Adds the context fields after "event" and hands the event on.
    void emit(const std::string& kind, const Event& payload);

    // The driver's log lines arrive here (host log sink); they are kept for
    // the current operation so a failure can be explained on stderr.
    void logLine(int32_t level, int32_t category, const std::string& text);
    void beginOperation(int pipe, const std::string& op);
    const std::vector<std::string>& operationLog() const { return operationLog_; }

    // Counters for the closing summary.
    void countMessage(const std::string& stage) { ++messageCounts_[stage]; }
    // A call that failed for a real reason, kept (the first few) for the summary.
    void countFailure(const std::string& op, int32_t result);
    // A -1 that is the driver's design (the start of a pair, the menu).
    void countExpected() { ++expected_; }
    // A FUSION message whose values are outside their range by design (fusionDifferenceNote).
    void countExpectedOutOfRange() { ++expectedOutOfRange_; }
    // An aewDebug change the driver accepted.
    void countConsoleChange() { ++consoleChanges_; }
    const std::map<std::string, int64_t>& messageCounts() const { return messageCounts_; }
    int64_t failures() const { return failures_; }
    // The closing summary: what ran, what was sent, what failed and why.
    Event summary(int64_t frames) const;

    void flush();
    bool outputFailed() const { return formatter_->failed(); }
    // errno of the first failed write (0 when none failed or it was not known).
    int outputErrno() const { return outputErrno_; }
    void finish();

private:
    std::unique_ptr<Formatter> formatter_;
    bool showLog_;
    Context context_;
    std::vector<std::string> operationLog_;
    std::map<std::string, int64_t> messageCounts_;
    int64_t failures_ = 0;
    Event failureList_ = Event::array();
    int64_t expected_ = 0;
    int64_t expectedOutOfRange_ = 0;
    int64_t consoleChanges_ = 0;
    int outputErrno_ = 0;
    void noteOutputError();  // keeps errno of the first failed write
};

// Installs the reporter as the host layer's log sink for its lifetime.
class LogSinkScope {
public:
    explicit LogSinkScope(Reporter& reporter);

private:
    ispdsp::host::ScopedLogSink sink_;
};

}  // namespace ispdsp::tools::sim

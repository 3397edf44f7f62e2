// Logging of the reference host: OSA_logWrite formats the whole line (any
// length) and hands it to the installed sink, or writes it to stderr.
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"

namespace {

// Recursive, and held while the sink runs: once ispdsp_host_set_log_sink
// returns, the old sink is no longer being called on any thread, and a sink
// may itself log or swap sinks on its own thread.
std::recursive_mutex g_sink_mutex;
ispdsp_host_log_sink g_sink = nullptr;
void* g_sink_ctx = nullptr;

const char* level_prefix(Int32 level) {
    switch (level) {
        case 0: return "E ";
        case 1: return "W ";
        case 2: return "I ";
        default: return "? ";
    }
}

std::string format_line(const Char* format, va_list args) {
    char small[512];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) {
        return std::string("(bad log format) ") + format;
    }
    if (static_cast<size_t>(needed) < sizeof small) {
        return std::string(small, static_cast<size_t>(needed));
    }
    std::string text(static_cast<size_t>(needed), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    return text;
}

}  // namespace

extern "C" {

void ispdsp_host_set_log_sink(ispdsp_host_log_sink sink, void* ctx) {
    std::lock_guard<std::recursive_mutex> lock(g_sink_mutex);
    g_sink = sink;
    g_sink_ctx = sink != nullptr ? ctx : nullptr;
}

void ispdsp_host_get_log_sink(ispdsp_host_log_sink* sink, void** ctx) {
    std::lock_guard<std::recursive_mutex> lock(g_sink_mutex);
    if (sink != nullptr) {
        *sink = g_sink;
    }
    if (ctx != nullptr) {
        *ctx = g_sink_ctx;
    }
}

void OSA_logWrite(Int32 level, Int32 category, const Char* format, ...) {
    if (format == nullptr) {
        return;
    }
    va_list args;
    va_start(args, format);
    const std::string text = format_line(format, args);
    va_end(args);

    std::lock_guard<std::recursive_mutex> lock(g_sink_mutex);
    if (g_sink != nullptr) {
        g_sink(g_sink_ctx, level, category, text.c_str());
    } else {
        std::fprintf(stderr, "%s%s", level_prefix(level), text.c_str());
    }
}

}  // extern "C"

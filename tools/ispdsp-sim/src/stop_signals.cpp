#include "stop_signals.h"

#include <signal.h>

namespace ispdsp::tools::sim {

namespace {
volatile sig_atomic_t g_stop = 0;

void onStop(int signal) { g_stop = signal; }
}  // namespace

void installStopHandlers() {
    struct sigaction action {};
    action.sa_handler = &onStop;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: a console read returns and the loop sees the request
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);  // a closed terminal: clean up like Ctrl-C
    signal(SIGPIPE, SIG_IGN);
}

bool stopRequested() { return g_stop != 0; }

const char* stopSignalName() {
    switch (g_stop) {
        case SIGINT: return "SIGINT";
        case SIGTERM: return "SIGTERM";
        case SIGHUP: return "SIGHUP";
        default: return "none";
    }
}

}  // namespace ispdsp::tools::sim

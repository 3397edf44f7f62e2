#include "stop_signals.h"

#include <signal.h>


namespace ispdsp::tools::sim {

namespace {
volatile sig_atomic_t g_stop = 0;

void onStop(int) { g_stop = 1; }
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

}  // namespace ispdsp::tools::sim

// Ctrl-C, SIGTERM, SIGHUP and a closed output pipe end a run between frames instead
// of killing the process, so the pipes are still stopped and deleted and a
// temporary sandbox root is removed.
#pragma once

namespace ispdsp::tools::sim {

// SIGINT, SIGTERM and SIGHUP set the stop request (reads are interrupted, not
// restarted); SIGPIPE is ignored so a closed pipe shows as a write error.
void installStopHandlers();
bool stopRequested();
// "SIGINT", "SIGTERM" or "SIGHUP": the signal that asked to stop ("none" before one came).
const char* stopSignalName();

}  // namespace ispdsp::tools::sim

// Runs another program of ours (the simulator) as a child process with bounds: a time limit and
// a cap on what it may print. The server waits for it, so a stuck or runaway child must not hold
// the workbench.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace ispdsp::tools::cfg::serve {

struct RunLimits {
    std::chrono::milliseconds time{20000};
    size_t outputBytes = 32u << 20;  // standard output
    size_t errorBytes = 64u << 10;   // standard error, kept for the failure message
};

struct BoundedRun {
    bool started = false;
    int exitStatus = -1;     // when it exited by itself
    bool timedOut = false;   // stopped at the time limit
    bool tooMuchOutput = false;
    std::string output;      // standard output
    std::string errors;      // standard error, cut at the limit
};

// Runs argv[0] (a path, not looked up on PATH) in `folder` with standard input closed.
BoundedRun runBounded(const std::vector<std::string>& argv, const std::string& folder, const RunLimits& limits);

}  // namespace ispdsp::tools::cfg::serve

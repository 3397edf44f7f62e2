// The one way a fuzz target reports a failed check: a message and abort(), which libFuzzer
// records as a finding with its reproducer. Shared by the library's and the tools' targets.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzzsupport {

// Stops the run (a fuzzing finding) with a message when `ok` is false.
inline void require(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

}  // namespace fuzzsupport

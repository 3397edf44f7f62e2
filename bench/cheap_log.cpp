// A cheap host log service for the benchmarks: OSA_logWrite formats the line
// into a stack buffer and drops it. Defined in the executable, it takes the
// place of the reference host's (which builds a std::string under a mutex for
// its sink), so the figures show the driver's cost and not the host's.
#include <cstdarg>
#include <cstdio>

#include <benchmark/benchmark.h>

#include "ispdsp/osa.h"

extern "C" void OSA_logWrite(Int32, Int32, const Char* format, ...) {
    char line[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    benchmark::DoNotOptimize(line);
}

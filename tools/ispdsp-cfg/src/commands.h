// The tool's commands. Each writes its report to `out`, problems to `err`, and returns the
// exit status: 0 ok, 1 findings or warnings, 2 usage or hard errors.
#pragma once

#include <ostream>
#include <string>

#include "selection_rules.h"

namespace ispcfg {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFindings = 1;
inline constexpr int kExitError = 2;

struct BuildOptions {
    std::string source;      // JSON source
    std::string output;      // binary parameter file
    bool stampDate = false;  // replace dateTime by the current UTC time
};
int runBuild(const BuildOptions& options, std::ostream& out, std::ostream& err);

struct DumpOptions {
    std::string input;
    std::string output;  // empty: `out`
};
int runDump(const DumpOptions& options, std::ostream& out, std::ostream& err);

int runCheck(const std::string& input, std::ostream& out, std::ostream& err);

struct SelectOptions {
    std::string input;
    bool all = false;  // every map row instead of one state
    CameraState state;
};
int runSelect(const SelectOptions& options, std::ostream& out, std::ostream& err);

int runDiff(const std::string& a, const std::string& b, std::ostream& out, std::ostream& err);

struct PlotOptions {
    std::string input;
    std::string table;   // PARAM_TABLE_TYPE name
    std::string output;  // SVG file
};
int runPlot(const PlotOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ispcfg

// The tool's commands. Each writes its report to `out`, problems to `err` ("error: ..." when
// the driver rejects the file or the command fails, "warning: ..." when the driver loads it but
// ignores or changes part of it), and returns the exit status of command_io.h.
#pragma once

#include <ostream>
#include <string>

#include "command_io.h"
#include "selection_rules.h"

namespace ispdsp::tools::cfg {

struct BuildOptions {
    std::string source;      // JSON source
    std::string output;      // binary parameter file
    bool stampDate = false;  // replace dateTime by the current UTC time
    bool force = false;      // replace an existing output file
};
int runBuild(const BuildOptions& options, std::ostream& out, std::ostream& err);

struct DumpOptions {
    std::string input;
    std::string output;  // empty: `out`
    bool force = false;
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
    bool force = false;
};
int runPlot(const PlotOptions& options, std::ostream& out, std::ostream& err);

struct ServeOptions {
    std::string input;  // tuning binary or JSON source; empty: the bundled sample
    std::string mono;   // the mono pipe's tables, optional
    int port = 0;       // 0: a free port
    std::string bind = "127.0.0.1";
};
int runServe(const ServeOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ispdsp::tools::cfg

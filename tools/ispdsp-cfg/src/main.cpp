// ispdsp-cfg: the tuning-file tool. Builds binary ISP parameter files from a JSON source,
// dumps them back, checks them against the DSP's ranges, explains the driver's table choice,
// compares two files and plots a table's fusion parameters.
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "commands.h"
#include "diagnostic.h"
#include "hex_text.h"
#include "param_file_image.h"
#include "type_names.h"

namespace {

namespace cfg = ispdsp::tools::cfg;

// The source format, with a real table type name in its example.
std::string sourceFormat() {
    return R"(JSON source format:
  {
    "header": {"ver": 82981.0, "dateTime": "2024-05-06 10:00:00", "subVer": 1.0,
               "archName": "chip", "pdtName": "product"},
    "tables": [
      {"type": ")" + ispdsp::tools::tableTypeName(0) + R"(",          // PARAM_TABLE_TYPE name; each type once
       "ispFusionFlag": 1,
       "fusion": [                          // 16 gain steps, step 0 first
         {"ep_delta": 64, "fusion_hf_ratio": 200, ... 26 scalar fields ...,
          "w_nir": {"ramp": [16, 200]}},
         ...],
       "ispLsmParam": {"aw_left_thr": 64, ...},
       "ispLaeParam": {"plateLaeParam": {...}, "windowLaeParam": {...}},
       ...},                                // one object per stage record (docs/tuning-reference.md)
      ...]
  }
  Fields carry the names of the stored records. Missing fields and records are 0; unknown
  names are errors. Tables are written in the order listed. Comments are allowed.
  w_nir ()" + std::to_string(ispdsp::tuning::kNirPoints) + R"( points, 0..255) is one of:
    [v0, ..., v510]            every point
    {"constant": v}            all points v
    {"ramp": [from, to]}       straight line from point 0 to point 510
    {"knots": [[x, y], ...]}   piecewise linear, x rising in 0..510, flat outside the knots
  (between knots: rounded half away from zero). Header texts are up to 32 bytes of UTF-8, or
  {"hex": "..."} for raw bytes; versions are numbers, or {"bits": ")" + ispdsp::tools::hexText(ispdsp::tools::kExpectedVersionBits, 8) + R"("}.
  Values must fit their field's type; values outside the DSP's range are warnings (`check`).
  A source the driver would reject (no table, a version other than )" + std::to_string(static_cast<long>(ispdsp::tuning::kExpectedVersion)) + R"() is not written.
  Padding bytes are written as 0, so dump/build normalise them.)";
}

constexpr const char* kFooter =
    R"(Messages: "error:" the driver rejects the file (bad checksum, cut short, another version, no
  table) or the command failed; "warning:" the driver loads the file but ignores or changes part
  of it (a value outside its DSP range, padding, a duplicate or invalid table type). On standard
  error each starts with "ispdsp-cfg: " and names the file (FILE:LINE:COLUMN in a JSON source).
Exit status, for every command:
  0  ok
  1  the input has errors or warnings (diff: the files differ); the command still did its work
     where it could
  2  the command could not do its work: usage, an input that cannot be read or is another kind
     of file, an output that cannot be written, a build refused because the driver would
     reject the file
Outputs (-o): "-" is standard output. A file is written to a temporary file beside it and renamed
  into place only when complete; it is never one of the command's inputs; an existing file is
  replaced only with --force. The JSON source format: `ispdsp-cfg build --help`.)";

constexpr const char* kCommands = "build, dump, check, select, diff or plot";
constexpr const char* kForceHelp = "replace the output file if it exists";

// Every command writes its report through std::cout; a full disk or a closed pipe shows here.
bool standardOutputWritten(std::ostream& err) {
    std::cout.flush();
    errno = 0;
    if (std::cout && std::fflush(stdout) == 0 && !std::ferror(stdout)) return true;
    err << ispdsp::tools::plainError("standard output: write failed" +
                                     (errno != 0 ? std::string(": ") + std::strerror(errno) : std::string()));
    return false;
}

// A command-line mistake in our words, with where to look for the right form.
int commandLineMistake(const CLI::App& app, const CLI::ParseError& e, int argc, char** argv, std::ostream& err) {
    const bool unknownCommand = app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-';
    err << ispdsp::tools::plainError((unknownCommand ? "'" + std::string(argv[1]) + "' is not a command: " + kCommands
                                                     : ispdsp::tools::commandLineProblem(e.what(), kCommands)) +
                                     " (ispdsp-cfg --help)");
    return cfg::kExitError;
}

int runTool(int argc, char** argv, std::ostream& err) {
    CLI::App app{"ispdsp-cfg: build, inspect and check ISP parameter files (dsp_isp_para.bin)", "ispdsp-cfg"};
    app.require_subcommand(1);
    app.set_version_flag("--version", "ispdsp-cfg " ISPDSP_VERSION);
    app.footer(kFooter);
    int status = cfg::kExitOk;

    cfg::BuildOptions build;
    auto* buildCmd = app.add_subcommand("build", "JSON source -> binary parameter file");
    buildCmd->add_option("source", build.source, "JSON source")->required();
    buildCmd->add_option("-o,--output", build.output, "binary parameter file to write, - for standard output")
        ->required();
    buildCmd->add_flag("--stamp-date", build.stampDate, "set dateTime to the current UTC time");
    buildCmd->add_flag("--force", build.force, kForceHelp);
    buildCmd->footer(sourceFormat());
    buildCmd->callback([&] { status = cfg::runBuild(build, std::cout, err); });

    cfg::DumpOptions dump;
    auto* dumpCmd = app.add_subcommand("dump", "binary parameter file -> JSON source (build of it is byte-identical)");
    dumpCmd->add_option("file", dump.input, "binary parameter file")->required();
    dumpCmd->add_option("-o,--output", dump.output, "JSON file to write (default and -: standard output)");
    dumpCmd->add_flag("--force", dump.force, kForceHelp);
    dumpCmd->callback([&] { status = cfg::runDump(dump, std::cout, err); });

    std::string checkInput;
    auto* checkCmd = app.add_subcommand(
        "check", "version, checksum, block layout, table types and every field against the DSP's ranges");
    checkCmd->add_option("file", checkInput, "binary parameter file")->required();
    checkCmd->callback([&] { status = cfg::runCheck(checkInput, std::cout, err); });

    cfg::SelectOptions select;
    auto* selectCmd =
        app.add_subcommand("select", "which table a camera state chooses and why (the library's choice, explained)");
    selectCmd->add_option("file", select.input, "binary parameter file")->required();
    auto* all = selectCmd->add_flag("--all", select.all, "every row of the state map");
    selectCmd->add_option("--dnc", select.state.realDncMode, "realDncMode: 0 black-and-white, else colour")
        ->default_val(1)
        ->excludes(all);
    selectCmd->add_option("--hdr", select.state.hdrMode, "hdrMode: 0 linear, 4 WDR, other nonzero HDR")
        ->default_val(0)
        ->excludes(all);
    selectCmd->add_option("--scene-mode", select.state.sceneMode, "sceneMode: 2 night, else day")
        ->default_val(0)
        ->excludes(all);
    selectCmd
        ->add_option("--image-scene", select.state.imageScene,
                     "imageScene: 0 base, 1 traffic, 2 face, 4 IVS, 5..13 other scenes")
        ->default_val(0)
        ->excludes(all);
    selectCmd->callback([&] { status = cfg::runSelect(select, std::cout, err); });

    std::string diffA, diffB;
    auto* diffCmd = app.add_subcommand("diff", "differences between two files by header, table and field");
    diffCmd->add_option("a", diffA, "first file")->required();
    diffCmd->add_option("b", diffB, "second file")->required();
    diffCmd->callback([&] { status = cfg::runDiff(diffA, diffB, std::cout, err); });

    cfg::PlotOptions plot;
    auto* plotCmd = app.add_subcommand("plot", "SVG of one table's fusion parameters and NIR weight curves");
    plotCmd->add_option("file", plot.input, "binary parameter file")->required();
    plotCmd->add_option("--table", plot.table, "PARAM_TABLE_TYPE name, e.g. " + ispdsp::tools::tableTypeName(0))->required();
    plotCmd->add_option("-o,--output", plot.output, "SVG file to write, - for standard output")->required();
    plotCmd->add_flag("--force", plot.force, kForceHelp);
    plotCmd->callback([&] { status = cfg::runPlot(plot, std::cout, err); });

#ifdef ISPDSP_CFG_SERVE
    cfg::ServeOptions serve;
    auto* serveCmd = app.add_subcommand(
        "serve", "the tuning workbench: a local web page that shows, edits, compares and saves a table set");
    serveCmd->add_option("file", serve.input, "tuning binary or JSON source (default: the bundled sample)");
    serveCmd->add_option("--mono", serve.mono, "the mono pipe's tuning file, for the colour/mono pair");
    serveCmd->add_option("--port", serve.port, "port to listen on; 0 (default) picks a free one")
        ->check(CLI::Range(0, 65535));
    serveCmd->add_option("--bind", serve.bind, "address to listen on (default 127.0.0.1; others warn)");
    serveCmd->footer(
        "The first line of standard output is the address to open, with this run's access token.\n"
        "The workbench reads only the files named here and writes only new files in the current folder.\n"
        "Ctrl-C stops it.");
    serveCmd->callback([&] { status = cfg::runServe(serve, std::cout, std::cerr); });
#endif

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() != 0) return commandLineMistake(app, e, argc, argv, err);
        app.exit(e);  // the help or the version
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    ispdsp::tools::ProgramMessages err("ispdsp-cfg");
    int status = cfg::kExitError;
    try {
        status = runTool(argc, argv, err);
    } catch (const std::exception& e) {  // a fault of the tool: no input should end it here
        err << ispdsp::tools::plainError(std::string("internal error: ") + e.what());
        status = cfg::kExitError;
    }
    if (!standardOutputWritten(err)) status = cfg::kExitError;
    return status;
}

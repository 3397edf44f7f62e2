// ispdsp-sim: runs libispdsp.so as a camera host would, on a PC. It loads the
// library with dlopen, gives it the OSA_* services of libispdsp_host and a
// sandboxed device file system, creates a linked colour/mono pipe pair, runs
// the frames of a scenario and shows what reaches the DSP.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <string>

#include "diagnostic.h"
#include "driver_library.h"
#include "options.h"
#include "sim_sandbox.h"

#ifndef ISPDSP_SIM_DEFAULT_LIBRARY
#define ISPDSP_SIM_DEFAULT_LIBRARY "libispdsp.so"
#endif
#ifndef ISPDSP_SIM_SAMPLE_DIR
#define ISPDSP_SIM_SAMPLE_DIR "data/sample"
#endif
#ifndef ISPDSP_SIM_BUILD_DIR
#define ISPDSP_SIM_BUILD_DIR "."
#endif
#ifndef ISPDSP_SIM_INSTALLED_SAMPLE_DIR
#define ISPDSP_SIM_INSTALLED_SAMPLE_DIR "../share/ispdsp/sample"
#endif
#ifndef ISPDSP_VERSION
#define ISPDSP_VERSION "unknown"
#endif

namespace {

std::string sample(const char* name) {
    static const std::string dir =
        ispdsp::tools::sim::sampleDirectory(ISPDSP_SIM_BUILD_DIR, ISPDSP_SIM_SAMPLE_DIR, ISPDSP_SIM_INSTALLED_SAMPLE_DIR);
    return dir + "/" + name;
}

// Ranges in --help and in errors as people write them ("1 to 1000000"), not
// CLI11's default floating-point bounds.
CLI::Validator countRange(int64_t min, int64_t max) {
    const std::string range = std::to_string(min) + " to " + std::to_string(max);
    return CLI::Validator(
        [=](std::string& text) -> std::string {
            int64_t value = 0;
            if (!CLI::detail::lexical_cast(text, value) || value < min || value > max)
                return "'" + text + "' is not a whole number from " + range;
            return std::string();
        },
        "INT in " + range);
}

// One of a few words, said in our words when it is not.
CLI::Validator oneOf(std::vector<std::string> words) {
    std::string list;
    for (const std::string& w : words) list += (list.empty() ? "" : ", ") + w;
    return CLI::Validator(
        [=](std::string& text) -> std::string {
            if (std::find(words.begin(), words.end(), text) != words.end()) return std::string();
            return "'" + text + "' is not one of " + list;
        },
        "one of " + list);
}

constexpr const char* kFooter = R"(
Each frame, for both pipes and operation by operation: OpSetModuleResults (the
scenario's pSwitch), OpInterGainFlags, OpRefreshCfg, OpSetFusion. Every DSP
message is decoded by stage; the fusion curve is summarised (--curves: all 511
points); flag requests, table choices and the driver's log lines are shown too.

Console (--console, --console-every N): type aewDebug commands, for example
"ep_delta 100", "runParam 1" or "w_nir 0" (loads /tmp/nir.txt); each command is
followed by one more frame. "continue" resumes the scenario (--console-every),
"quit" or "exit" end the run, end of input leaves the console.

Outputs (-o, --save-tuning, the console's save): a file is written to a
temporary file beside it and renamed into place only when complete; it is
never one of the run's inputs; an existing file is replaced only with --force
(on the console: save --force FILE).

Messages: "ispdsp-sim: error: FILE:LINE:COLUMN: ..." (the line and column in a
scenario), the same words as ispdsp-cfg's ("error:", "warning:"); bytes from files and
the driver's log are shown with control characters escaped (\x1B). An
interrupted run says so in its summary and in the "end" record ("interrupted").

Exit status: 0 run completed, 1 library/sandbox/driver setup failed (or the
output could not be written), 2 bad command line, scenario or input file (a
directory, unreadable, or a file of another kind), 130 interrupted by SIGINT,
SIGTERM or SIGHUP (the pipes are still stopped and deleted, the temporary
sandbox removed).)";

}  // namespace

int main(int argc, char** argv) {
    ispdsp::tools::sim::Options options;
    CLI::App app{"ispdsp-sim: host simulator for the ISP-DSP driver library (colour/mono fusion pair)", "ispdsp-sim"};
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("ispdsp-sim ") + ISPDSP_VERSION);

    options.scenario = sample("scenarios/gain_sweep.json");
    options.library = ispdsp::tools::sim::defaultLibraryPath(ISPDSP_SIM_DEFAULT_LIBRARY);
    options.tuning = sample("dsp_isp_para.bin");
    std::string calibration = sample("calibration.txt");
    std::string nir = sample("nir.txt");
    std::string rlr;
    std::string root;
    std::string monoTuning;
    std::string output;
    int64_t frames = 0;
    std::string pipe = "color";
    std::string lang = "en";

    app.add_option("scenario", options.scenario, "scenario file (JSON)")->capture_default_str();
    app.add_option("--lib", options.library, "driver library to dlopen")->capture_default_str();
    auto* rootOption = app.add_option("--root", root, "sandbox root; default: a temporary folder");
    app.add_flag("--keep-root", options.keepRoot, "keep the temporary sandbox root");
    app.add_option("--tuning", options.tuning, "parameter file, placed at " + ispdsp::tools::sim::tuningDevicePath())
        ->capture_default_str();
    auto* monoOption = app.add_option("--mono-tuning", monoTuning,
                                      "a second parameter file for the mono pipe: the files go to " +
                                          std::string(ispdsp::tuning::kParamFileDir) + "0/ and " +
                                          ispdsp::tuning::kParamFileDir + "1/ instead");
    auto* calibrationOption = app.add_option("--calibration", calibration,
                                             "registration file, placed at " + ispdsp::tools::sim::calibrationDevicePath())
                                  ->capture_default_str();
    bool withoutCalibration = false;
    auto* noCalibration = app.add_flag("--no-calibration", withoutCalibration, "run without a registration file");
    calibrationOption->excludes(noCalibration);
    app.add_option("--nir", nir, std::string("NIR curve file for the console's w_nir command, placed at ") + ispdsp::tuning::kNirCurvePath)
        ->capture_default_str();
    auto* rlrOption = app.add_option("--rlr", rlr,
                                     std::string("load RLR tables at setup (DRV_loadRlrCfg) from FILE, placed at ") +
                                         ispdsp::tuning::kRlrPath + "; default FILE: the sample")
                          ->expected(0, 1);
    app.add_flag("--stages", options.stages, "also calculate and send the smaller stages from the current table");
    auto* framesOption = app.add_option("--frames", frames, "number of frames (replaces the scenario's count)")
                             ->check(countRange(0, 1000000));
    app.add_flag("--json", options.json, "JSON lines instead of the table");
    app.add_flag("--curves", options.curves, "all 511 NIR curve points");
    app.add_flag("--quiet-log", options.quietLog, "hide the driver's log lines");
    auto* outputOption = app.add_option("-o,--output", output, "write the results to a file (- for standard output)");
    app.add_flag("--force", options.force, "replace the -o and --save-tuning files if they exist");
    app.add_flag("--console", options.console, "read aewDebug commands after the scenario");
    app.add_option("--console-every", options.consoleEvery, "read aewDebug commands every N frames")
        ->check(countRange(1, 1000000));
    std::string saveTuning;
    auto* saveOption = app.add_option("--save-tuning", saveTuning,
                                      "at the end, write the console pipe's tables, with the changes the driver "
                                      "accepted, as tuning.json (for ispdsp-cfg build)");
    app.add_option("--pipe", pipe, "pipe the console commands go to")
        ->check(oneOf({"color", "mono"}))
        ->capture_default_str();
    app.add_option("--lang", lang, "console language: en, or zh for the Chinese menu (langue 1)")
        ->check(oneOf({"en", "zh"}))
        ->capture_default_str();
    bool progressAlways = false;
    bool progressNever = false;
    auto* progressOn = app.add_flag("--progress", progressAlways, "always show the progress bar on stderr");
    auto* progressOff = app.add_flag("--no-progress", progressNever, "never show the progress bar");
    progressOn->excludes(progressOff);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0) return app.exit(e);  // the help or the version
        ispdsp::tools::ProgramMessages("ispdsp-sim")
            << ispdsp::tools::plainError(ispdsp::tools::commandLineProblem(e.what(), "") + " (ispdsp-sim --help)");
        return ispdsp::tools::sim::kExitUsage;
    }

    if (rootOption->count() > 0) options.root = std::filesystem::absolute(root).string();
    if (monoOption->count() > 0) options.monoTuning = monoTuning;
    if (!withoutCalibration) options.calibration = calibration;
    options.nir = nir;
    if (rlrOption->count() > 0) options.rlr = rlr.empty() ? sample("rlr_para.bin") : rlr;
    if (framesOption->count() > 0) options.frames = frames;
    if (outputOption->count() > 0 && output != "-") options.output = output;
    if (saveOption->count() > 0) options.saveTuning = saveTuning;
    options.consolePipe = pipe == "mono" ? ispdsp::tools::sim::kMonoPipe : ispdsp::tools::sim::kColorPipe;
    options.langue = lang == "zh" ? 1 : 0;
    if (progressAlways) options.progress = ispdsp::tools::sim::Options::ProgressMode::On;
    if (progressNever) options.progress = ispdsp::tools::sim::Options::ProgressMode::Off;

    return ispdsp::tools::sim::runSimulation(options);
}

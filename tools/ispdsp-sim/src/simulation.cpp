// One simulator run: scenario, library, sandbox, output, then setup, frames,
// console and teardown of the pipe pair.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "console.h"
#include "diagnostic.h"
#include "dsp_endpoint.h"
#include "driver_library.h"
#include "input_checks.h"
#include "options.h"
#include "output_file.h"
#include "pipe_pair.h"
#include "progress.h"
#include "reporter.h"
#include "scenario.h"
#include "sim_sandbox.h"
#include "stage_sender.h"
#include "stop_signals.h"
#include "text_encoding.h"
#include "tuning_save.h"

namespace ispdsp::tools::sim {

namespace {

// Runs shorter than this finish before a progress bar would help.
constexpr int64_t kProgressMinFrames = 100;

std::string baseName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Standard error: "ispdsp-sim: error: ..." for what went wrong, "ispdsp-sim: ..." for notes.
std::ostream& messages() {
    static ispdsp::tools::ProgramMessages stream("ispdsp-sim");
    return stream;
}
void complain(const std::string& text) { messages() << ispdsp::tools::plainError(text); }
void note(const std::string& text) { messages() << text << "\n"; }

// Where the results go. The original standard output (or the --output file)
// is kept for them, and file descriptor 1 is pointed at stderr: the driver's
// message functions print their rare errors with printf, and those lines must
// not break a stream of JSON lines.
class ResultStream {
public:
    bool open(const std::optional<std::string>& path, const ispdsp::tools::OutputRule& rule) {
        std::fflush(stdout);
        name_ = path ? *path : "standard output";
        if (path) {
            if (!output_.open(*path, rule)) {
                complain(output_.error());
                return false;
            }
            file_ = output_.stream();
            terminal_ = false;
        } else {
            const int fd = dup(STDOUT_FILENO);
            file_ = fd >= 0 ? fdopen(fd, "w") : nullptr;
            if (file_ == nullptr) {
                complain("cannot duplicate standard output");
                return false;
            }
            terminal_ = isatty(fd) != 0;
        }
        dup2(STDERR_FILENO, STDOUT_FILENO);
        return true;
    }
    // Flushes and closes (a file: renames it into place); false, said on stderr, when anything
    // written was lost (a full disk, /dev/full). A reader that went away (closed pipe) gets no
    // message: nobody is reading any more.
    bool close(int earlierErrno = 0) {
        std::FILE* file = file_;
        if (file == nullptr) return true;
        file_ = nullptr;
        if (output_.stream() != nullptr) {
            if (output_.commit(earlierErrno)) return true;
            complain("cannot write the results: " + output_.error());
            return false;
        }
        errno = 0;
        const bool flushed = std::fflush(file) == 0 && std::ferror(file) == 0;
        const int error = earlierErrno != 0 ? earlierErrno : errno;
        const bool closed = std::fclose(file) == 0;
        if (flushed && closed) return true;
        if (error != EPIPE)
            complain("cannot write the results to " + name_ + ": " + (error != 0 ? std::strerror(error) : "write error"));
        return false;
    }
    ~ResultStream() { close(); }
    std::FILE* file() const { return file_; }
    bool terminal() const { return terminal_; }

private:
    std::FILE* file_ = nullptr;
    ispdsp::tools::OutputFile output_;  // the -o file; standard output otherwise
    std::string name_;
    bool terminal_ = false;
};

Event fileEvent(const std::string& path) {
    Event file{{"file", baseName(path)}};
    if (const auto digest = digestFile(path)) {
        char crc[16];
        std::snprintf(crc, sizeof crc, "%08x", digest->crc32);
        file["bytes"] = digest->bytes;
        file["crc32"] = crc;
    }
    return file;
}

Event runEvent(const Options& options, const Scenario& scenario) {
    Event run;
    run["scenario"] = scenario.name;
    run["description"] = scenario.description;
    run["frames"] = scenario.frames.size();
    run["library"] = baseName(options.library);
    run["tuning"] = fileEvent(options.tuning);
    run["monoTuning"] = options.monoTuning ? fileEvent(*options.monoTuning) : Event(nullptr);
    run["calibration"] = options.calibration ? Event(baseName(*options.calibration)) : Event(nullptr);
    run["nir"] = options.nir ? Event(baseName(*options.nir)) : Event(nullptr);
    run["rlr"] = options.rlr ? Event(baseName(*options.rlr)) : Event(nullptr);
    run["stages"] = options.stages;
    // Where every input came from, so a run can be traced to its files (an
    // installed copy to its share/ispdsp/sample, a checkout to data/sample).
    Event paths;
    const auto add = [&](const char* name, const std::optional<std::string>& path) {
        if (path) paths[name] = std::filesystem::absolute(*path).lexically_normal().string();
    };
    add("scenario", options.scenario);
    add("library", options.library);
    add("tuning", options.tuning);
    add("monoTuning", options.monoTuning);
    add("calibration", options.calibration);
    add("nir", options.nir);
    add("rlr", options.rlr);
    run["paths"] = paths;
    return run;
}

void placeFiles(const Options& options, const SimSandbox& sandbox) {
    if (options.monoTuning) {
        // Each pipe reads its own file when the shared one is absent.
        sandbox.place(options.tuning, pipeTuningDevicePath(kColorPipe));
        sandbox.place(*options.monoTuning, pipeTuningDevicePath(kMonoPipe));
    } else {
        sandbox.place(options.tuning, tuningDevicePath());
    }
    if (options.calibration) sandbox.place(*options.calibration, calibrationDevicePath());
    if (options.nir) sandbox.place(*options.nir, kNirDevicePath);
    if (options.rlr) sandbox.place(*options.rlr, kRlrDevicePath);
}

void loadRlr(const DriverApi& api, Reporter& reporter) {
    reporter.beginOperation(-1, "DRV_loadRlrCfg");
    if (api.loadRlrCfg == nullptr) {
        reporter.emit("error", Event{{"message", "the library does not export DRV_loadRlrCfg"}});
        return;
    }
    // The host's own buffer: the loader fills it instead of allocating one.
    CFG_RlrTableParam tables;
    std::memset(&tables, 0, sizeof tables);
    Ptr buffer = &tables;
    const Int32 result = api.loadRlrCfg(&buffer);
    if (result != 0) reporter.countFailure("DRV_loadRlrCfg", result);
    Event payload{{"op", "DRV_loadRlrCfg"}, {"ret", result}};
    if (result == 0) {
        const auto summary = [](const Uint8* table) {
            return byteTableSummary(std::vector<uint8_t>(table, table + RLR_TABLE_ENTRIES), false);
        };
        payload["tables"] = Event{{"day", summary(tables.pDayTable)},
                                  {"dusk", summary(tables.pDuskTable)},
                                  {"night", summary(tables.pNightTable)}};
    }
    reporter.emit("rlr", payload);
}

// Explains a failed setup on stderr with the driver's own log lines.
void explainFailure(const PipePair& pair, const Options& options) {
    complain(pair.failure());
    if (!pair.failureLog().empty()) {
        note("the driver logged:");
        for (const std::string& line : pair.failureLog()) {
            std::string text = line;
            while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
            note("  " + displayText(text));
        }
    }
    if (pair.failure().find("DRV_dspIspCreateX") != std::string::npos)
        note("check the tuning file " + options.tuning + " (placed at " +
             (options.monoTuning ? pipeTuningDevicePath(kColorPipe) : tuningDevicePath()) + ")");
}

// The files the console's save never writes: the inputs and the run's own outputs.
std::vector<std::string> consoleKeeps(const Options& options) {
    std::vector<std::string> files = runInputs(options);
    for (const auto* path : {&options.output, &options.saveTuning})
        if (*path) files.push_back(**path);
    return files;
}

// The parameter file the console pipe loaded.
std::string consoleTuning(const Options& options) {
    return options.monoTuning && options.consolePipe == kMonoPipe ? *options.monoTuning : options.tuning;
}

bool saveAtExit(const PipePair& pair, const Options& options, Reporter& reporter) {
    reporter.context().phase = "save";
    const CFG_DspIspCfgTables* tables = pair.tableSet(options.consolePipe);
    const SaveResult saved = tables != nullptr ? saveTuning(*tables, consoleTuning(options), *options.saveTuning,
                                                            {runInputs(options), options.force})
                                               : SaveResult{false, 0, "cannot save: no table set"};
    reporter.emit(saved.ok ? "saved" : "error",
                  Event{{"message", saved.message}, {"file", *options.saveTuning}, {"changedTables", saved.changedTables}});
    if (!saved.ok) complain(saved.message);
    return saved.ok;
}

}  // namespace

int runSimulation(const Options& options) {
    Scenario scenario;
    try {
        scenario = loadScenario(options.scenario, options.frames);
    } catch (const ScenarioError& e) {
        complain(e.what());
        return kExitUsage;
    }
    if (const auto problem = checkInputFiles(options)) {
        complain(*problem);
        return kExitUsage;
    }
    if (const auto problem = checkOutputFiles(options)) {
        complain(*problem);
        return kExitUsage;
    }

    DriverLibrary library;
    if (!library.open(options.library)) {
        complain(library.error());
        return kExitRunFailed;
    }
    StageSender stageSender;
    if (options.stages && !stageSender.bind(library)) {
        complain(stageSender.error());
        return kExitRunFailed;
    }

    std::unique_ptr<SimSandbox> sandbox;
    try {
        sandbox = std::make_unique<SimSandbox>(options.root, options.keepRoot);
        placeFiles(options, *sandbox);
    } catch (const SandboxError& e) {
        complain(e.what());
        return kExitRunFailed;
    }
    if (options.keepRoot && !options.root) note("sandbox root kept at " + sandbox->root());

    ResultStream results;
    if (!results.open(options.output, {runInputs(options), options.force})) return kExitRunFailed;
    installStopHandlers();
    std::unique_ptr<Formatter> formatter = options.json ? makeJsonFormatter(results.file())
                                                        : makeTableFormatter(results.file(), TableOptions{options.curves});
    Reporter reporter(std::move(formatter), !options.quietLog);
    LogSinkScope logSink(reporter);
    installDspEndpoint(reporter, DspEndpointOptions{options.curves});

    reporter.emit("run", runEvent(options, scenario));
    reporter.emit("phase", Event::object());
    if (options.rlr) loadRlr(library.api(), reporter);

    PipePair pair(library.api(), reporter, options.stages ? &stageSender : nullptr);
    int status = kExitOk;
    int64_t framesRun = 0;
    if (!pair.create() || !pair.startAndLink()) {
        reporter.emit("error", Event{{"message", pair.failure()}});
        reporter.flush();
        explainFailure(pair, options);
        status = kExitRunFailed;
    } else {
        FrameInput last = scenario.defaults;
        const auto runFrame = [&](const FrameInput& input, const char* phase, const char* source) {
            reporter.context().phase = phase;
            pair.runFrame(input, framesRun++, source);
            last = input;
        };
        Console console(pair, reporter, ConsoleOptions{options.consolePipe, options.langue, consoleTuning(options), consoleKeeps(options)},
                        [&] { runFrame(last, "console", "console"); });

        const bool showProgress =
            options.progress == Options::ProgressMode::On ||
            (options.progress == Options::ProgressMode::Auto && !results.terminal() && isatty(STDERR_FILENO) != 0 &&
             static_cast<int64_t>(scenario.frames.size()) >= kProgressMinFrames);
        Progress progress(showProgress, static_cast<int64_t>(scenario.frames.size()));
        bool consoleOpen = options.console || options.consoleEvery > 0;
        bool quit = false;
        for (size_t i = 0; i < scenario.frames.size() && !quit; ++i) {
            if (stopRequested() || reporter.outputFailed()) break;
            runFrame(scenario.frames[i], "frame", "scenario");
            progress.update(static_cast<int64_t>(i + 1));
            const bool pause = options.consoleEvery > 0 && consoleOpen &&
                               (static_cast<int64_t>(i) + 1) % options.consoleEvery == 0 && i + 1 < scenario.frames.size();
            if (!pause) continue;
            progress.finish();
            switch (console.run(/*allowContinue=*/true)) {
                case ConsoleEnd::Quit: quit = true; break;
                case ConsoleEnd::EndOfInput: consoleOpen = false; break;
                case ConsoleEnd::Continue: break;
            }
        }
        progress.finish();
        if (options.console && consoleOpen && !quit) console.run(/*allowContinue=*/false);
        if (stopRequested()) {
            note(std::string("interrupted by ") + stopSignalName() + ": stopping the pipes");
            status = kExitInterrupted;
        } else if (reporter.outputFailed()) {
            status = kExitRunFailed;  // the reader went away (closed pipe)
        } else if (options.saveTuning && !saveAtExit(pair, options, reporter)) {
            status = kExitRunFailed;
        }
    }

    reporter.context() = Context{};
    reporter.context().phase = "teardown";
    reporter.emit("phase", Event::object());
    pair.teardown();
    Event summary = reporter.summary(framesRun);
    summary["interrupted"] = status == kExitInterrupted ? Event(stopSignalName()) : Event(false);
    reporter.emit("end", summary);
    reporter.finish();
    removeDspEndpoint();
    if (!results.close(reporter.outputErrno()) && status == kExitOk) status = kExitRunFailed;
    return status;
}

}  // namespace ispdsp::tools::sim

// Command-line settings of one simulator run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "names.h"

namespace ispdsp::tools::sim {

struct Options {
    std::string scenario;                 // scenario file
    std::optional<int64_t> frames;        // replaces the scenario's frame count
    std::string library;                  // libispdsp.so to dlopen
    std::optional<std::string> root;      // sandbox root; a temporary folder when absent
    bool keepRoot = false;                // keep the temporary root
    std::string tuning;                   // placed at /var/tmp/dsp_isp_para.bin
    std::optional<std::string> monoTuning;  // per-pipe files instead of one shared file
    std::optional<std::string> calibration; // placed at /var/tmp/calibration.txt
    std::optional<std::string> nir;       // placed at /tmp/nir.txt
    std::optional<std::string> rlr;       // placed at /var/custom/rlr_para.bin, loaded at setup
    bool stages = false;                  // also send the smaller stages every frame
    bool json = false;
    bool curves = false;
    bool quietLog = false;
    std::optional<std::string> output;    // results file instead of standard output
    bool force = false;                   // replace existing -o and --save-tuning files
    bool console = false;                 // console after the scenario
    int64_t consoleEvery = 0;             // console every N frames
    int consolePipe = kColorPipe;
    std::optional<std::string> saveTuning;  // tuning.json of the console pipe's tables at the end
    int32_t langue = 0;
    enum class ProgressMode { Auto, On, Off } progress = ProgressMode::Auto;
};

// Exit statuses.
inline constexpr int kExitOk = 0;
inline constexpr int kExitRunFailed = 1;  // library, sandbox or driver setup failed
inline constexpr int kExitUsage = 2;      // bad command line or scenario
inline constexpr int kExitInterrupted = 130;  // SIGINT/SIGTERM/SIGHUP: the run stopped between frames

// Runs the simulator; messages for failures go to stderr.
int runSimulation(const Options& options);

}  // namespace ispdsp::tools::sim

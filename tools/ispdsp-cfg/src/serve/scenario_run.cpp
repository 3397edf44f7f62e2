#include "scenario_run.h"

#include <algorithm>
#include <sstream>

#include "bounded_run.h"
#include "printable_text.h"
#include "private_folder.h"
#include "tables_file.h"

#ifndef ISPDSP_CFG_BUILT_SIM
#define ISPDSP_CFG_BUILT_SIM ""
#endif

namespace ispdsp::tools::cfg::serve {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

// The tables as the simulator reads them.
bool writeTables(const fs::path& path, const ParamFileImage& image) {
    std::string ignored;  // the caller reports the failure in its own words
    return writeFileBytes(path.string(), serializeParamFile(image), ignored);
}

fs::path scenarioFolder() { return sampleFolder() / "scenarios"; }

// The simulator's own words, made safe and cut to the first line.
std::string firstLineOf(const std::string& errors) {
    const std::string line = errors.substr(0, errors.find('\n'));
    return line.empty() ? "" : ": " + printableText(line);
}

}  // namespace

std::vector<std::string> bundledScenarios() {
    std::vector<std::string> names;
    std::error_code ec;
    for (const fs::directory_entry& e : fs::directory_iterator(scenarioFolder(), ec))
        if (e.path().extension() == ".json" && e.is_regular_file(ec)) names.push_back(e.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

fs::path simulatorExecutable() {
    std::error_code ec;
    const fs::path beside = fs::read_symlink("/proc/self/exe", ec).parent_path() / "ispdsp-sim";
    if (!ec && fs::is_regular_file(beside, ec)) return beside;
    const fs::path built = ISPDSP_CFG_BUILT_SIM;
    if (!built.empty() && fs::is_regular_file(built, ec)) return built;
    return {};
}

std::optional<std::vector<json>> runScenario(const std::string& scenario, const ParamFileImage& tables,
                                             const ParamFileImage* mono, std::string& error) {
    const std::vector<std::string> known = bundledScenarios();
    if (std::find(known.begin(), known.end(), scenario) == known.end()) {
        error = "\"" + printableText(scenario) + "\": not one of the bundled scenarios in " + scenarioFolder().string();
        return std::nullopt;
    }
    const std::string scenarioFile = scenario + ".json";
    const fs::path simulator = simulatorExecutable();
    if (simulator.empty()) {
        error = "ispdsp-sim is not installed beside ispdsp-cfg: the scenario cannot be run";
        return std::nullopt;
    }
    const PrivateFolder scratch;
    const fs::path colourFile = scratch.path() / "tables.bin", monoFile = scratch.path() / "mono.bin";
    if (scratch.path().empty() || !writeTables(colourFile, tables) || (mono && !writeTables(monoFile, *mono))) {
        error = "cannot write the tables for the simulator to a temporary folder";
        return std::nullopt;
    }
    std::vector<std::string> argv = {simulator.string(), "--json", "--no-progress", "--quiet-log",
                                     "--root", (scratch.path() / "root").string(), "--tuning", colourFile.string()};
    if (mono) argv.insert(argv.end(), {"--mono-tuning", monoFile.string()});
    argv.push_back((scenarioFolder() / scenarioFile).string());

    const RunLimits limits;
    const BoundedRun run = runBounded(argv, scratch.path().string(), limits);
    if (!run.started) error = scenarioFile + ": cannot start " + simulator.string();
    else if (run.timedOut) error = scenarioFile + ": the simulator took longer than " + std::to_string(limits.time.count() / 1000) + " s; stopped";
    else if (run.tooMuchOutput) error = scenarioFile + ": the simulator printed more than " + std::to_string(limits.outputBytes >> 20) + " MiB; stopped";
    else if (run.exitStatus != 0) error = scenarioFile + ": the simulator failed (exit status " + std::to_string(run.exitStatus) + ")" + firstLineOf(run.errors);
    if (!error.empty()) return std::nullopt;

    std::vector<json> records;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        json record = json::parse(line, nullptr, false);
        if (record.is_discarded() || !record.is_object()) {
            error = scenarioFile + ": the simulator wrote a line that is not a JSON record";
            return std::nullopt;
        }
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace ispdsp::tools::cfg::serve

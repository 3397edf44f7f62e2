// One workbench session: the opened table set held in memory and edited there, the other
// files of the run (the mono pipe's, compared or saved ones) each read once, and the views the
// page asks for. Not thread-safe: the server holds one lock around every call.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "file_access.h"
#include "fusion_blend.h"
#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

struct WorkbenchFiles {
    std::filesystem::path tables;                // opened and edited
    std::optional<std::filesystem::path> mono;   // the mono pipe's tables
    std::filesystem::path startFolder;           // where new files are saved
};

class Workbench {
public:
    static std::unique_ptr<Workbench> open(const WorkbenchFiles& files, std::string& error);

    // File name, header, tables with labels, the files that may be compared or paired.
    nlohmann::json overview() const;
    const nlohmann::json& stateMap() const { return stateMap_; }
    // Every view answers {"error": why} for a request it cannot serve.
    nlohmann::json table(size_t index) const;
    std::optional<std::string> plot(size_t index) const;
    // Checks `text` for a field (allFields() index; `step` for a fusion scalar) and, when
    // `apply` and the check takes it, stores it.
    nlohmann::json edit(size_t tableIndex, size_t field, size_t step, const std::string& text, bool apply);
    nlohmann::json blend(size_t tableIndex, const GainControl& control) const;
    // The mono table comes from `source`: "" for the edited tables, else a readable file's name.
    nlohmann::json pair(size_t colourTable, const std::string& source, size_t monoTable, const GainControl& control);
    // The edited tables against a readable file, as `diff` reports them, and table `tableIndex`
    // side by side with the table `diff` pairs it with.
    nlohmann::json compare(const std::string& name, size_t tableIndex);
    // A bundled scenario run by the simulator on the edited tables (and the --mono file's for the
    // mono pipe), charted for one message field. A run is kept until the next edit.
    nlohmann::json simulate(const std::string& scenario, const std::string& stage, const std::string& field);
    // `name`.json (the source) and `name`.bin (its build) in the start folder.
    nlohmann::json save(const std::string& name, bool replace);

private:
    Workbench(FileAccess access, std::string name) : access_(std::move(access)), name_(std::move(name)) {}
    const ParamFileImage* other(const std::string& name, std::string& error);

    FileAccess access_;
    std::string name_;
    std::string monoName_;  // the --mono file, "" without one
    ParamFileImage tables_;
    nlohmann::json stateMap_;
    std::map<std::string, ParamFileImage> others_;  // read once, by name
    unsigned edits_ = 0;  // edits taken so far: a simulation run belongs to one state of the tables
    struct SimulationRun {
        std::string scenario;
        unsigned edits = 0;
        std::vector<nlohmann::json> records;
    };
    std::optional<SimulationRun> lastRun_;
};

}  // namespace ispdsp::tools::cfg::serve

// The Simulate view's run: a bundled scenario on the tables as edited, by the simulator itself
// (ispdsp-sim --json), so every message value is the driver's and every label the simulator's.
// The tables go to a private temporary folder that is removed after the run.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

// The scenarios in the sample's scenarios folder, by name without ".json", sorted.
std::vector<std::string> bundledScenarios();

// ispdsp-sim beside this executable (an installed bin/), else the one of the build tree; empty
// when neither is there.
std::filesystem::path simulatorExecutable();

// The run's JSON records, one per output line; nothing, with the reason in `error`, when the
// scenario is not a bundled one or the simulator does not finish. `mono`: the mono pipe's
// tables, or null to give both pipes `tables`.
std::optional<std::vector<nlohmann::json>> runScenario(const std::string& scenario, const ParamFileImage& tables,
                                                       const ParamFileImage* mono, std::string& error);

}  // namespace ispdsp::tools::cfg::serve

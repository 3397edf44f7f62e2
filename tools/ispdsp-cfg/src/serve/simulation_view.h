// The Simulate view, from the simulator's records of one run: the message fields that can be
// charted and, for one of them, its value per frame on each pipe, with the values outside the
// DSP range marked and the by-design ones labelled as the simulator labels them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ispdsp::tools::cfg::serve {

// {"scenario", "description", "fields": [{stage, field}], "stage", "field", "svg",
//  "rows": [{frame, pipe, value, note}], "end": the run's closing record}. An unknown or empty
// stage/field charts the first FUSION field with a marked value.
nlohmann::json simulationView(const std::vector<nlohmann::json>& records, const std::string& stage,
                              const std::string& field);

}  // namespace ispdsp::tools::cfg::serve

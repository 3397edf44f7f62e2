// The state map as the page shows it: for each of the camera states (black-and-white or
// colour, linear/HDR/WDR, day or night, image scene) the table the library selects on these
// tables, with the reasoning of `select` when it falls back.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

// Asks the library itself (as `select --all` does) after placing the image in a private
// temporary folder. Nothing, with the reason, when the library does not load it.
std::optional<nlohmann::json> stateMapView(const ParamFileImage& image, std::string& error);

}  // namespace ispdsp::tools::cfg::serve

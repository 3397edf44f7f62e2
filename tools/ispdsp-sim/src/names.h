// Display names of the driver's enumerations: table types, output modes,
// application scenes and pipe kinds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ispdsp::tools::sim {

// The name of a table type (from the tuning description); "?" outside 0..119.
std::string tableTypeName(uint32_t type);

// "DSP_OUTPUT_VIS" and the other DSP_OUTPUT_MODE names; "?" for other values.
const char* outputModeName(uint32_t mode);

// Application scene numbers by name ("base", "traffic", "face", "ivs", ...).
std::optional<int> imageSceneByName(std::string_view name);
const char* imageSceneName(int scene);  // "" when the number has no scene

// The two pipes of the pair.
enum PipeIndex : int { kColorPipe = 0, kMonoPipe = 1, kPipeCount = 2 };
const char* pipeName(int pipe);  // "color", "mono"

}  // namespace ispdsp::tools::sim

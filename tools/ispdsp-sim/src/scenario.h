// Scenarios: a small JSON file that gives the host's per-frame state of the
// colour and the mono pipe (gain position, zoom, day/night, HDR, scenes and
// the mono pipe's standby switch). The file holds defaults and either a list
// of segments (runs of frames; gain, interCoff and zoom may ramp) or a list of
// keyframes (values that hold from their frame on). Values carry forward.
//
//   {
//     "description": "...",
//     "frames": 16,                                   // optional: else from the list
//     "defaults": {"gain": 0, "zoom": 1000, "pSwitch": 1, "mono": {"gain": 6.5}},
//     "segments": [{"frames": 16, "gain": {"from": 0, "to": 15}}]
//   }
//
// Fields (both pipes unless written inside "color": {...} or "mono": {...}):
//   gain            0..15, split into gainStartIndex = floor, gainEndIndex = next, interCoff = rest
//   gainStartIndex, gainEndIndex 0..15, interCoff 0..1 (instead of gain)
//   zoom            int32, the registration zoom position
//   dncMode         int or "color" (1) / "bw" (0)
//   hdrMode         int or "linear" (0) / "hdr" (1) / "wdr" (4)
//   imageScene      0..255 or a scene name ("base", "traffic", "face", "ivs", ...)
//   sceneMode       uint32 or "day" (0) / "night" (2)
//   pSwitch         0..255 or "vis" (0) / "fuse" (1) / "nir_cal" (2); the driver
//                   reads the mono pipe's value
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "names.h"

namespace ispdsp::tools::sim {

struct GainPosition {
    int32_t start = 0;
    int32_t end = 1;
    float coff = 0.0f;
};

// One pipe's run state for one frame.
struct PipeInput {
    GainPosition gain;
    int32_t zoom = -1;
    int32_t dncMode = 1;  // colour
    int32_t hdrMode = 0;  // linear
    int32_t imageScene = 0;
    uint32_t sceneMode = 0;
    int32_t pSwitch = 1;  // fused output
};

struct FrameInput {
    std::array<PipeInput, kPipeCount> pipes;
};

struct Scenario {
    std::string name;  // file name without folders
    std::string description;
    FrameInput defaults;  // the state before the first entry (also for extra console frames)
    std::vector<FrameInput> frames;
};

// A scenario that cannot be read; what() names the file and the line, or the
// entry, the field and the frame.
class ScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads and checks a scenario file. `framesOverride` replaces the frame count
// (extra frames hold the last state).
Scenario loadScenario(const std::string& path, std::optional<int64_t> framesOverride = std::nullopt);

// The same from text; `displayName` stands for the file in messages.
Scenario parseScenario(const std::string& text, const std::string& displayName,
                       std::optional<int64_t> framesOverride = std::nullopt);

}  // namespace ispdsp::tools::sim

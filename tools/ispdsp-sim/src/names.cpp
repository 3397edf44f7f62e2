#include "names.h"

#include <array>

#include "ispdsp/fusion.h"
#include "ispdsp/param_table.h"
#include "tuning/table_types.h"

namespace ispdsp::tools::sim {

std::string tableTypeName(uint32_t type) {
    const ispdsp::tuning::TypeName name = ispdsp::tuning::tableTypeName(static_cast<int32_t>(type));
    return name.text[0] != '\0' ? std::string(name.text) : std::string("?");
}

const char* outputModeName(uint32_t mode) {
    static constexpr std::array<const char*, 7> kNames = {
        "DSP_OUTPUT_FUSE_INVALID", "DSP_OUTPUT_FUSE", "DSP_OUTPUT_FUSE_BEFORE", "DSP_OUTPUT_VIS",
        "DSP_OUTPUT_NIR",          "DSP_OUTPUT_NIR_CAL", "DSP_OUTPUT_OVERLYING"};
    static_assert(DSP_OUTPUT_OVERLYING == 6);
    return mode < kNames.size() ? kNames[mode] : "?";
}

std::optional<int> imageSceneByName(std::string_view name) {
    for (const ispdsp::tuning::SceneBlock& s : ispdsp::tuning::kSceneBlocksInMapOrder)
        if (name == s.name) return static_cast<int>(s.imageScene);
    return std::nullopt;
}

const char* imageSceneName(int scene) {
    for (const ispdsp::tuning::SceneBlock& s : ispdsp::tuning::kSceneBlocksInMapOrder)
        if (static_cast<uint32_t>(scene) == s.imageScene && scene >= 0) return s.name;
    return "";
}

const char* pipeName(int pipe) { return pipe == kColorPipe ? "color" : pipe == kMonoPipe ? "mono" : "?"; }

}  // namespace ispdsp::tools::sim

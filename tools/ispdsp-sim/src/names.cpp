#include "names.h"

#include <array>
#include <vector>

#include "ispdsp/fusion.h"
#include "ispdsp/param_table.h"

namespace ispsim {

namespace {

// The table types follow one pattern: twelve base-scene variants, then nine
// per application scene in the enumeration's scene order.
std::vector<std::string> buildTableTypeNames() {
    std::vector<std::string> names = {
        "MULTICOLOR",       "BLACKWHITE",           "HDR_MULTICOLOR",       "HDR_BLACKWHITE",
        "WDR_MULTICOLOR",   "WDR_BLACKWHITE",       "MULTICOLOR_NIGHT",     "BLACKWHITE_NIGHT",
        "HDR_MULTICOLOR_NIGHT", "HDR_BLACKWHITE_NIGHT", "WDR_MULTICOLOR_NIGHT", "WDR_BLACKWHITE_NIGHT"};
    static constexpr std::array<const char*, 12> kScenes = {
        "TRAFFIC", "FACE", "STROBE", "POLICE", "COMITY", "PEDESTIAN",
        "IVS", "ECOTRAFFIC", "ECOPOLICE", "ENTRANCE_FLASH", "ENTRANCE_STROBE", "EVENT"};
    for (const char* scene : kScenes) {
        const std::string s = scene;
        for (const std::string& variant : {s, s + "_BLACKWHITE", "HDR_" + s, "HDR_" + s + "_BLACKWHITE", "WDR_" + s,
                                           "WDR_" + s + "_BLACKWHITE", s + "_NIGHT", "HDR_" + s + "_NIGHT",
                                           "WDR_" + s + "_NIGHT"})
            names.push_back(variant);
    }
    for (std::string& name : names) name.insert(0, "PARAM_");
    return names;
}

struct SceneName {
    int number;
    const char* name;
};
// imageScene numbers as the state map uses them (3 has no scene).
constexpr std::array<SceneName, 13> kSceneNames = {{{0, "base"},
                                                    {1, "traffic"},
                                                    {2, "face"},
                                                    {4, "ivs"},
                                                    {5, "strobe"},
                                                    {6, "police"},
                                                    {7, "comity"},
                                                    {8, "pedestrian"},
                                                    {9, "ecotraffic"},
                                                    {10, "ecopolice"},
                                                    {11, "entrance_flash"},
                                                    {12, "entrance_strobe"},
                                                    {13, "event"}}};

}  // namespace

std::string tableTypeName(uint32_t type) {
    static const std::vector<std::string> names = buildTableTypeNames();
    static_assert(PARAM_TABLE_TYPE_NUM == 120);
    return type < names.size() ? names[type] : std::string("?");
}

const char* outputModeName(uint32_t mode) {
    static constexpr std::array<const char*, 7> kNames = {
        "DSP_OUTPUT_FUSE_INVALID", "DSP_OUTPUT_FUSE", "DSP_OUTPUT_FUSE_BEFORE", "DSP_OUTPUT_VIS",
        "DSP_OUTPUT_NIR",          "DSP_OUTPUT_NIR_CAL", "DSP_OUTPUT_OVERLYING"};
    static_assert(DSP_OUTPUT_OVERLYING == 6);
    return mode < kNames.size() ? kNames[mode] : "?";
}

std::optional<int> imageSceneByName(std::string_view name) {
    for (const SceneName& s : kSceneNames)
        if (name == s.name) return s.number;
    return std::nullopt;
}

const char* imageSceneName(int scene) {
    for (const SceneName& s : kSceneNames)
        if (scene == s.number) return s.name;
    return "";
}

const char* pipeName(int pipe) { return pipe == kColorPipe ? "color" : pipe == kMonoPipe ? "mono" : "?"; }

}  // namespace ispsim

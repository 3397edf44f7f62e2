#include "state_map_view.h"

#include <filesystem>

#include "library_selection.h"
#include "private_folder.h"
#include "selection_rules.h"
#include "type_names.h"

namespace ispdsp::tools::cfg::serve {

namespace fs = std::filesystem;

namespace {

const char* hdrWord(const MapRow& r) { return r.isHDR ? "HDR" : r.isWDR ? "WDR" : "linear"; }

}  // namespace

std::optional<nlohmann::json> stateMapView(const ParamFileImage& image, std::string& error) {
    const PrivateFolder folder;
    if (folder.path().empty()) {
        error = "cannot create a temporary folder";
        return std::nullopt;
    }
    const fs::path file = folder.path() / "tables.bin";
    if (!writeFileBytes(file.string(), serializeParamFile(image), error)) return std::nullopt;
    auto lib = LibraryTables::load(file.string(), error);
    if (!lib) return std::nullopt;

    const std::array<bool, 120> present = presentTypes(image);
    nlohmann::json rows = nlohmann::json::array();
    for (uint32_t row = 0; row < kMapRows; ++row) {
        const MapRow& r = stateMap()[row];
        const Selection s = explainSelection(stateOfRow(row), present);
        const LibraryChoice c = lib->choose(stateOfRow(row));
        rows.push_back({{"row", row},
                        {"blackWhite", r.isBlackWhite != 0},
                        {"hdr", hdrWord(r)},
                        {"night", r.sceneMode == 2},
                        {"scene", sceneName(static_cast<int32_t>(r.imageScene))},
                        {"imageScene", r.imageScene},
                        {"asks", tableTypeName(r.tableType)},
                        {"present", s.mappedPresent},
                        {"chosen", c.ok ? tableTypeName(static_cast<int32_t>(c.type)) : ""},
                        {"agrees", libraryAgrees(s, c)},
                        {"why", s.mappedPresent ? nlohmann::json::array() : nlohmann::json(s.steps)}});
    }
    return nlohmann::json{{"rows", rows}};
}

}  // namespace ispdsp::tools::cfg::serve

// select: which table a camera state chooses, and why. The library makes the choice; the
// tool's copy of the map and fallback rules explains it, and the two must agree.
#include <cstdio>

#include "commands.h"
#include "library_selection.h"
#include "param_file_image.h"
#include "type_names.h"

namespace ispdsp::tools::cfg {
namespace {

std::string describeLibrary(const LibraryChoice& lib) {
    if (!lib.ok) return "selection failed";
    return "row " + std::to_string(lib.row) + ", " + tableTypeName(static_cast<int32_t>(lib.type)) + " (" +
           std::to_string(lib.type) + ")";
}

std::string fallbackText(const Selection& s) {
    if (!s.rowFound) return "no map row";
    if (s.mappedPresent) return "-";
    if (!s.chosen) return "no suitable table";
    return "rule " + std::to_string(s.rule) + (s.viaPreferenceList ? ", preference list" : ", replacement");
}

}  // namespace

int runSelect(const SelectOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<LoadedParamFile> loaded = loadParamFileFor(o.input, err);
    if (!loaded) return kExitError;
    if (reportRejection(o.input, *loaded, err)) {
        reportError(err, o.input, "the driver loads no table set from this file, so it chooses no table");
        return kExitFindings;
    }
    const std::optional<ParsedFile>& file = loaded->file;
    std::string error;
    auto lib = LibraryTables::load(o.input, error);
    if (!lib) {
        reportError(err, {}, error);
        return kExitError;
    }
    const std::array<bool, 120> present = presentTypes(file->image);
    if (present != lib->registered()) {
        reportError(err, o.input, "the library registered other tables than the file lists");
        return kExitError;
    }

    if (!o.all) {
        const Selection s = explainSelection(o.state, present);
        const LibraryChoice c = lib->choose(o.state);
        for (const std::string& step : s.steps) out << step << "\n";
        if (s.chosen) {
            out << "chosen: " << tableTypeName(s.chosenType) << " (" << s.chosenType << ")\n";
        }
        out << "library: " << describeLibrary(c) << (libraryAgrees(s, c) ? ", agrees\n" : ", DISAGREES\n");
        if (!libraryAgrees(s, c)) {
            reportError(err, {}, "the library's choice differs from the tool's explanation");
            return kExitError;
        }
        return s.chosen ? kExitOk : kExitFindings;
    }

    char line[256];
    std::snprintf(line, sizeof line, "%-4s %-3s %-3s %-3s %-5s %-5s  %-37s %-7s %-37s %s\n", "row", "bw", "hdr", "wdr",
                  "night", "scene", "row names", "present", "chosen", "fallback");
    out << line;
    int disagreements = 0;
    int failures = 0;
    for (uint32_t row = 0; row < kMapRows; ++row) {
        const CameraState state = stateOfRow(row);
        const Selection s = explainSelection(state, present);
        const LibraryChoice c = lib->choose(state);
        const MapRow& r = stateMap()[row];
        std::snprintf(line, sizeof line, "%-4u %-3u %-3u %-3u %-5s %-5u  %-37s %-7s %-37s %s\n", row, r.isBlackWhite,
                      r.isHDR, r.isWDR, r.sceneMode == 2 ? "yes" : "no", r.imageScene,
                      tableTypeName(r.tableType).c_str(), s.mappedPresent ? "yes" : "no",
                      s.chosen ? tableTypeName(s.chosenType).c_str() : "(none)", fallbackText(s).c_str());
        out << line;
        if (!s.chosen) ++failures;
        if (!libraryAgrees(s, c)) {
            ++disagreements;
            reportError(err, {},
                        "row " + std::to_string(row) + ": the tool explains " +
                            (s.chosen ? tableTypeName(s.chosenType) : std::string("a failure")) +
                            ", the library chose " + describeLibrary(c));
        }
    }
    out << "library agrees on " << kMapRows - static_cast<uint32_t>(disagreements) << " of " << kMapRows << " rows; "
        << failures << " rows find no table\n";
    if (disagreements != 0) return kExitError;
    return failures == 0 ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

// plot: one table's fusion parameters as an SVG: a small chart per scalar field over the
// sixteen gain steps, and the sixteen NIR weight curves in one chart, coloured by gain step.
#include "commands.h"
#include "fusion_svg.h"
#include "param_file_image.h"
#include "type_names.h"

namespace ispdsp::tools::cfg {

int runPlot(const PlotOptions& o, std::ostream& out, std::ostream& err) {
    const std::optional<LoadedParamFile> loaded = loadParamFileFor(o.input, err);
    if (!loaded) return kExitError;
    const bool rejected = reportRejection(o.input, *loaded, err);
    if (!loaded->file) return kExitFindings;
    const std::optional<ParsedFile>& file = loaded->file;
    const auto type = tableTypeFromName(o.table);
    if (!type) {
        reportError(err, {}, "\"" + o.table + "\" is not a PARAM_TABLE_TYPE name");
        return kExitError;
    }
    const TableEntry* table = nullptr;  // the last entry of the type: the one the driver uses
    for (const TableEntry& e : file->image.entries) {
        if (e.type == *type) table = &e;
    }
    if (table == nullptr) {
        reportError(err, o.input, "has no " + o.table + " table");
        return kExitError;
    }

    const uint32_t flag = static_cast<uint32_t>(loadField(table->bytes.data(), Scalar::U32));
    const std::string svg = fusionTableSvg(*table, o.table + ": fusion parameters over the 16 gain steps",
                                           o.input + " (ispFusionFlag " + std::to_string(flag) + ")");
    if (!writeOutput(o.output, svg, out, err, {o.input}, o.force)) return kExitError;
    (o.output == "-" ? err : out) << o.output << ": " << o.table << " plotted\n";
    return rejected ? kExitFindings : kExitOk;
}

}  // namespace ispdsp::tools::cfg

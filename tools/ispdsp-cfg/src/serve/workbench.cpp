#include "workbench.h"

#include <algorithm>

#include "file_checks.h"
#include "file_differences.h"
#include "fusion_svg.h"
#include "header_codec.h"
#include "output_file.h"
#include "record_views.h"
#include "scenario_run.h"
#include "simulation_view.h"
#include "state_map_view.h"
#include "tables_file.h"
#include "tuning_codec.h"
#include "type_names.h"

namespace ispdsp::tools::cfg::serve {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

json failure(const std::string& why) { return {{"error", why}}; }

json tableList(const ParamFileImage& image) {
    json tables = json::array();
    const std::vector<std::string> labels = tableLabels(image.entries);
    for (size_t i = 0; i < image.entries.size(); ++i) {
        tables.push_back({{"index", i}, {"label", labels[i]}, {"type", image.entries[i].type}});
    }
    return tables;
}

json findingLines(const Findings& findings) {
    json lines = json::array();
    for (const Finding& f : findings) lines.push_back(std::string(severityWord(severityOf(f.kind))) + ": " + f.text);
    return lines;
}

ParsedFile parsedOf(const ParamFileImage& image) {
    std::string error;
    return *parseParamFile(serializeParamFile(image), error);  // a serialised image always parses
}

}  // namespace

std::unique_ptr<Workbench> Workbench::open(const WorkbenchFiles& files, std::string& error) {
    FileAccess access(files.startFolder);
    const std::string name = files.tables.filename().string();
    access.addInput(name, files.tables);
    if (files.mono) access.addInput(files.mono->filename().string(), *files.mono);
    std::unique_ptr<Workbench> w(new Workbench(std::move(access), name));
    std::optional<ParamFileImage> tables = readTableSet(files.tables, error);
    if (!tables) return nullptr;
    w->tables_ = std::move(*tables);
    w->others_[name] = w->tables_;  // the file as opened, to compare the edits with
    if (files.mono) {
        w->monoName_ = files.mono->filename().string();
        if (!w->other(w->monoName_, error)) return nullptr;
    }
    // Edits change values, never which tables exist: the map is worked out once.
    std::optional<json> map = stateMapView(w->tables_, error);
    if (!map) return nullptr;
    w->stateMap_ = std::move(*map);
    return w;
}

const ParamFileImage* Workbench::other(const std::string& name, std::string& error) {
    if (auto it = others_.find(name); it != others_.end()) return &it->second;
    const std::optional<fs::path> path = access_.readable(name, error);
    if (!path) return nullptr;
    std::optional<ParamFileImage> image = readTableSet(*path, error);
    if (!image) return nullptr;
    return &(others_[name] = std::move(*image));
}

json Workbench::overview() const {
    const FileHeader& h = tables_.header;
    json sources = json::array();
    for (const std::string& n : access_.readableNames()) {
        json entry = {{"name", n}};
        if (auto it = others_.find(n); it != others_.end()) entry["tables"] = tableList(it->second);
        sources.push_back(entry);
    }
    return {{"file", name_},
            {"gainSteps", kGainSteps},
            {"mono", monoName_},
            {"header",
             {{"ver", describeFloat(h.verBits)},
              {"dateTime", describeText(h.dateTime)},
              {"subVer", describeFloat(h.subVerBits)},
              {"archName", describeText(h.archName)},
              {"pdtName", describeText(h.pdtName)}}},
            {"tables", tableList(tables_)},
            {"findings", findingLines(tableFindings(tables_.entries))},
            {"files", sources},
            {"scenarios", bundledScenarios()},
            {"simulator", !simulatorExecutable().empty()}};
}

json Workbench::table(size_t index) const {
    if (index >= tables_.entries.size()) return failure("no table " + std::to_string(index));
    const TableEntry& t = tables_.entries[index];
    return {{"label", tableLabels(tables_.entries)[index]},
            {"stages", stageRecordsView(t)},
            {"fusion", fusionRecordsView(t)}};
}

std::optional<std::string> Workbench::plot(size_t index) const {
    if (index >= tables_.entries.size()) return std::nullopt;
    const std::string label = tableLabels(tables_.entries)[index];
    return fusionTableSvg(tables_.entries[index], label + ": fusion parameters over the " + std::to_string(kGainSteps) + " gain steps",
                          name_ + " as edited in the workbench");
}

json Workbench::edit(size_t tableIndex, size_t field, size_t step, const std::string& text, bool apply) {
    const auto fields = allFields();
    if (tableIndex >= tables_.entries.size() || field >= fields.size() || step >= kGainSteps)
        return failure("no such table, field or gain step");
    const FieldDef& f = fields[field];
    const EditCheck check = checkEdit(f, text);
    const std::string path = fieldPath(f, isFusionField(f) ? static_cast<int>(step) : -1);
    json result = {{"field", path}, {"taken", check.taken}, {"note", check.note}};
    if (check.taken) result["value"] = check.value;
    if (check.taken && apply) {
        storeField(tables_.entries[tableIndex].bytes.data() + tableOffsetOf(f, step), f.type, check.value);
        ++edits_;
        result["stored"] = true;
    }
    return result;
}

json Workbench::blend(size_t tableIndex, const GainControl& control) const {
    if (tableIndex >= tables_.entries.size()) return failure("no table " + std::to_string(tableIndex));
    return blendView(tables_.entries[tableIndex], control);
}

json Workbench::pair(size_t colourTable, const std::string& source, size_t monoTable, const GainControl& control) {
    std::string error;
    const ParamFileImage* mono = source.empty() ? &tables_ : other(source, error);
    if (mono == nullptr) return failure(error);
    if (colourTable >= tables_.entries.size() || monoTable >= mono->entries.size()) return failure("no such table");
    return pairView(tables_.entries[colourTable], mono->entries[monoTable], control);
}

json Workbench::compare(const std::string& name, size_t tableIndex) {
    std::string error;
    const ParamFileImage* theirs = other(name, error);
    if (theirs == nullptr) return failure(error);
    if (tableIndex >= tables_.entries.size()) return failure("no table " + std::to_string(tableIndex));
    const std::string mine = "the edited tables";
    json side = {{"label", tableLabels(tables_.entries)[tableIndex]}, {"fields", json::array()}};
    json changedTables = json::array();  // so the page can offer them for the side-by-side view
    for (size_t i = 0; i < tables_.entries.size(); ++i) {
        const std::optional<size_t> paired = pairedTable(tables_.entries, i, theirs->entries);
        if (!paired) continue;
        const std::vector<FieldPair> fields = tableSideBySide(tables_.entries[i], theirs->entries[*paired]);
        if (std::any_of(fields.begin(), fields.end(), [](const FieldPair& f) { return f.differs; })) changedTables.push_back(i);
        if (i != tableIndex) continue;
        side["otherLabel"] = tableLabels(theirs->entries)[*paired];
        for (const FieldPair& f : fields)
            side["fields"].push_back({{"path", f.path}, {"mine", f.mine}, {"theirs", f.theirs}, {"differs", f.differs}});
    }
    return {{"other", name},
            {"lines", fileDifferences(parsedOf(tables_), parsedOf(*theirs), mine, name)},
            {"changedTables", changedTables},
            {"table", side}};
}

json Workbench::simulate(const std::string& scenario, const std::string& stage, const std::string& field) {
    if (!lastRun_ || lastRun_->scenario != scenario || lastRun_->edits != edits_) {
        lastRun_.reset();
        std::string error;
        const ParamFileImage* mono = nullptr;
        if (!monoName_.empty() && (mono = other(monoName_, error)) == nullptr) return failure(error);
        std::optional<std::vector<json>> records = runScenario(scenario, tables_, mono, error);
        if (!records) return failure(error);
        lastRun_ = SimulationRun{scenario, edits_, std::move(*records)};
    }
    return simulationView(lastRun_->records, stage, field);
}

json Workbench::save(const std::string& name, bool replace) {
    std::string error;
    const std::string jsonName = name + ".json", binName = name + ".bin";
    const auto jsonPath = access_.writable(jsonName, replace, error);
    if (!jsonPath) return failure(error);
    const auto binPath = access_.writable(binName, replace, error);
    if (!binPath) return failure(error);
    // The binary is the build of the saved source, so `ispdsp-cfg build` of it gives the same bytes.
    const std::optional<DumpedJson> source = dumpTuningJson(serializeParamFile(tables_), error);
    if (!source) return failure(error);
    std::vector<std::string> errors;
    const std::optional<BuiltParamFile> built = buildParamFile(source->text, errors);
    if (!built) return failure(errors.empty() ? "the source does not build" : errors.front());
    // FileAccess has decided which files may be written; the tools' one writer puts each in
    // place through a temporary file and a rename.
    const OutputRule rule{{}, replace, "the replace choice"};
    const auto* binBytes = reinterpret_cast<const char*>(built->bytes.data());
    if (!writeOutputFile(jsonPath->string(), std::span<const char>(source->text.data(), source->text.size()), rule,
                         error) ||
        !writeOutputFile(binPath->string(), std::span<const char>(binBytes, built->bytes.size()), rule, error))
        return failure(error);
    access_.wrote(jsonName);
    access_.wrote(binName);
    others_.erase(binName);  // replaced: read afresh when compared
    return {{"json", jsonName}, {"bin", binName}, {"binBytes", built->bytes.size()}, {"warnings", built->warnings}};
}

}  // namespace ispdsp::tools::cfg::serve

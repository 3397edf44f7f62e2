#include "tuning_save.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "input_file.h"
#include "param_file_image.h"
#include "tuning_codec.h"

namespace ispdsp::tools::sim {

namespace {

size_t differingBytes(const uint8_t* live, const ispdsp::tools::TableEntry& entry) {
    size_t count = 0;
    for (size_t i = 0; i < ispdsp::tools::kTableBytes; ++i) count += live[i] != entry.bytes[i] ? 1 : 0;
    return count;
}

// Copies every live table that differs from all source entries of its type
// into the closest of them. Fallback slots point at another type's table
// (the type word in front of the table says which) and are skipped.
int copyLiveTables(const CFG_DspIspCfgTables& tables, ispdsp::tools::ParamFileImage& image) {
    static_assert(sizeof(CFG_DspIspCfgParam) == ispdsp::tools::kTableBytes);
    std::set<const void*> seen;
    int changed = 0;
    for (int32_t type = 0; type < PARAM_TABLE_TYPE_NUM; ++type) {
        const auto* live = reinterpret_cast<const uint8_t*>(tables.paramTables[type]);
        if (live == nullptr || !seen.insert(live).second) continue;
        int32_t storedType = 0;
        std::memcpy(&storedType, live - sizeof storedType, sizeof storedType);
        if (storedType != type) continue;
        ispdsp::tools::TableEntry* closest = nullptr;
        size_t fewest = ispdsp::tools::kTableBytes + 1;
        for (ispdsp::tools::TableEntry& entry : image.entries) {
            if (entry.type != type) continue;
            const size_t differing = differingBytes(live, entry);
            if (differing < fewest) {
                fewest = differing;
                closest = &entry;
            }
        }
        if (closest == nullptr || fewest == 0) continue;
        std::memcpy(closest->bytes.data(), live, ispdsp::tools::kTableBytes);
        ++changed;
    }
    return changed;
}

}  // namespace

SaveResult saveTuning(const CFG_DspIspCfgTables& tables, const std::string& sourceFile, const std::string& jsonPath,
                      const ispdsp::tools::OutputRule& rule) {
    SaveResult result;
    const ispdsp::tools::InputFile source = ispdsp::tools::readInputFile(sourceFile);
    if (!source.ok()) {
        result.message = "cannot save: " + source.error;
        return result;
    }
    std::string error;
    std::optional<ispdsp::tools::ParsedFile> parsed = ispdsp::tools::parseParamFile(source.bytes, error);
    if (!parsed) {
        result.message = "cannot save: " + sourceFile + ": " + error;
        return result;
    }
    result.changedTables = copyLiveTables(tables, parsed->image);
    const std::vector<uint8_t> image = ispdsp::tools::serializeParamFile(parsed->image);
    const std::optional<ispdsp::tools::DumpedJson> json = ispdsp::tools::dumpTuningJson(image, error);
    if (!json) {
        result.message = "cannot save: " + error;
        return result;
    }
    if (!ispdsp::tools::writeOutputFile(jsonPath, json->text, rule, error)) {
        result.message = "cannot save: " + error;
        return result;
    }
    result.ok = true;
    result.message = "saved " + jsonPath + ": " + sourceFile + " with " + std::to_string(result.changedTables) +
                     " changed table" + (result.changedTables == 1 ? "" : "s") +
                     "; build it with: ispdsp-cfg build " + jsonPath + " -o FILE.bin";
    return result;
}

}  // namespace ispdsp::tools::sim

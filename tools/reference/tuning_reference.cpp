// Writes the tuner's reference (docs/tuning-reference.md) from the tuning description: the
// table types and how the driver picks one, every stage and field with its range, unit,
// meaning, the sample's value and the command that sets it, the tuning source format and how a
// console change lands. The build compares its output with the committed copy.
//
//   ispdsp-tuning-reference SAMPLE_PARAM_FILE OUTPUT
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "driver/console.h"
#include "field_table.h"
#include "param_file_image.h"
#include "tuning/tuning_description.h"
#include "tuning_codec.h"
#include "type_names.h"

namespace ispdsp::tools::reference {
namespace {

using tuning::kSceneBlocksInMapOrder;

std::string typeName(Int32 type) { return ispdsp::tools::tableTypeName(type); }

std::string typeOf(std::size_t width, bool isSigned) {
    return std::string(isSigned ? "Int" : "Uint") + std::to_string(8 * width);
}

std::string orDash(const char* text) { return text[0] != '\0' ? text : "—"; }

std::string rangeText(Int64 low, Int64 high) { return std::to_string(low) + " … " + std::to_string(high); }

// "camera state" of a row pattern, in words.
std::string stateWords(const tuning::RowPattern& p) {
    std::string s = p.isBlackWhite ? "black-and-white" : "colour";
    s += p.isHDR ? ", HDR" : p.isWDR ? ", WDR" : ", linear";
    s += p.sceneMode == 2 ? ", night" : ", day";
    return s;
}

// What a console menu line states ("..., fwmin_wt~[0,255]"): the field it names and its range;
// both empty when it states none.
struct MenuClaim {
    std::string field;
    std::string range;
};
MenuClaim menuClaim(const char* text) {
    const std::string t = text != nullptr ? text : "";
    const std::size_t at = t.rfind("~[");
    if (at == std::string::npos) return {};
    const std::size_t from = t.rfind(' ', at);
    return {t.substr(from == std::string::npos ? 0 : from + 1, at - (from == std::string::npos ? 0 : from + 1)),
            t.substr(at + 1)};
}

std::string trimmed(const char* text) {
    std::string t = text != nullptr ? text : "";
    while (!t.empty() && (t.front() == '\t' || t.front() == ' ')) t.erase(t.begin());
    return t;
}

void tableTypes(std::ostream& out) {
    out << "## Table types and how the driver picks one\n\n"
        << "A tuning file holds up to " << tuning::kTableTypes
        << " tables, at most one per table type. The driver picks the current table from the camera "
           "state in two steps: the **state map** names one type for the state; when the file has no "
           "table of that type, the two **fallback rules** name another.\n\n"
        << "### The state map\n\n"
        << "The camera state is black-and-white (`dncMode` 0) or colour, linear (`hdrMode` 0), WDR "
           "(`hdrMode` 4) or HDR (any other `hdrMode`), day or night (`sceneMode` 2), and an application "
           "scene (`imageScene`). Each scene has a block of " << tuning::kRowsPerScene
        << " rows, one per state; the cells give the type the row names. A black-and-white night row "
           "names the black-and-white day type of its scene. A state whose `imageScene` has no block "
           "matches no row: the driver keeps its previous table.\n\n";
    out << "| Scene (`imageScene`) |";
    for (const tuning::RowPattern& p : tuning::kRowPatterns) out << ' ' << stateWords(p) << " |";
    out << "\n|---|";
    for (std::size_t i = 0; i < tuning::kRowsPerScene; ++i) out << "---|";
    out << '\n';
    for (const tuning::SceneBlock& b : kSceneBlocksInMapOrder) {
        out << "| " << b.name << " (" << b.imageScene << ") |";
        for (Int32 t : b.types) out << ' ' << t << " |";
        out << '\n';
    }
    out << "\nThe type numbers and names:\n\n| Type | Name | Type | Name | Type | Name |\n|---|---|---|---|---|---|\n";
    const Int32 rows = (tuning::kTableTypes + 2) / 3;
    for (Int32 r = 0; r < rows; ++r) {
        out << '|';
        for (Int32 c = 0; c < 3; ++c) {
            const Int32 t = r + c * rows;
            if (t < tuning::kTableTypes) out << ' ' << t << " | `" << typeName(t) << "` |";
            else out << " | |";
        }
        out << '\n';
    }
}

void fallbackRules(std::ostream& out) {
    const auto rules = tuning::buildFallbackRules();
    out << "\n### When the named table is missing: the fallback rules\n\n"
        << "The rules are tried in order. Each lists source types and, at the same positions, their "
           "replacements; only the first " << tuning::kFallbackScanLimit
        << " entries of a list are read. When a rule lists the missing type and the file holds its "
           "replacement, that table is chosen. When the replacement is missing too, the rule's whole "
           "replacement list is read from the start and its first type that the file holds is chosen. "
           "When neither rule finds a table, the choice fails and the driver keeps its previous table.\n\n";
    for (std::size_t r = 0; r < rules.size(); ++r) {
        const DRV_SuitableParam& rule = rules[r];
        const Int32 n = std::min(rule.srcArraySize, tuning::kFallbackScanLimit);
        std::vector<std::string> replaced, itself;
        for (Int32 k = 0; k < n; ++k) {
            if (rule.srcArray[k] != rule.dstArray[k]) {
                replaced.push_back("`" + typeName(rule.srcArray[k]) + "` → `" + typeName(rule.dstArray[k]) + "`");
            }
        }
        out << "**Rule " << r << "** lists " << n << (n == 1 ? " type." : " types.");
        if (!replaced.empty()) {
            out << " These stand against another type:";
            for (std::size_t i = 0; i < replaced.size(); ++i) out << (i ? ", " : " ") << replaced[i];
            out << ".";
        }
        if (static_cast<std::size_t>(n) > replaced.size()) {
            out << " Every other listed type stands against itself, so for it the preference list decides.";
        }
        out << " Preference list, in order:";
        const Int32 m = std::min(rule.dstArraySize, tuning::kFallbackScanLimit);
        Int32 shown = 0;
        for (Int32 k = 0; k < m && shown < 12; ++k, ++shown) out << (k ? ", " : " ") << '`' << typeName(rule.dstArray[k]) << '`';
        if (m > shown) out << ", … (" << m << " entries; unset entries are 0, `" << typeName(0) << "`)";
        out << ".\n\n";
    }
}

void selectVersusFrames(std::ostream& out) {
    out << "### What `select` shows and what the driver does each frame\n\n"
           "`ispdsp-cfg select FILE --dnc D --hdr H --scene-mode S --image-scene I` runs the driver's own "
           "choice for exactly that state and explains each step (map row, fallback rule, preference "
           "list). Each frame, though, the driver's configuration refresh (`OpRefreshCfg`) builds its "
           "state with `sceneMode` 0, whatever the host's run parameters say, as existing tuning files "
           "expect. The night rows of the map are therefore never reached by the refresh: a camera at "
           "night runs the day table of its state (for a colour linear base-scene camera `"
        << typeName(kSceneBlocksInMapOrder[0].types[0]) << "`, not `" << typeName(kSceneBlocksInMapOrder[0].types[6])
        << "`). The night tables are chosen only when the host calls the choice itself with "
           "`sceneMode` 2, as `select --scene-mode 2` does.\n\n";
}

void fusionFields(std::ostream& out, const ispdsp::tools::TableEntry& sample) {
    out << "## Fusion: sixteen records per table, one per gain step\n\n"
        << "`ispFusionFlag` switches the per-frame fusion update on (nonzero) or off for the table. "
           "Each table stores " << tuning::kGainSteps
        << " fusion records, one per gain step; every frame the driver blends the two records around "
           "the current gain and holds each field to its range below. The sample column shows gain "
           "step 0 → step " << tuning::kGainSteps - 1 << " of the sample's first table (`" << typeName(sample.type)
        << "`). Each field has a console command of the same name; where the console's menu text "
           "states another range, the range the driver enforces is the one in this table.\n\n"
        << "| Field | Type | Range | Unit | Meaning | Sample | Console command |\n|---|---|---|---|---|---|---|\n";
    for (Int32 i = 0; i < fusion::kScalarFieldCount; ++i) {
        const fusion::ScalarField& f = fusion::kScalarFields[i];
        const ispdsp::tools::FieldDef& def = ispdsp::tools::fusionFields()[static_cast<std::size_t>(i)];
        const auto at = [&](std::size_t step) {
            return ispdsp::tools::loadField(sample.bytes.data() + ispdsp::tools::tableOffsetOf(def, step), def.type);
        };
        std::string command = "—";
        for (const CMD_DrvIspTable* c = drvIspParam; c->name != nullptr; ++c) {
            if (c->id - kCmdFusionFirst != i) continue;
            command = std::string("`") + c->name + " VALUE`";
            const MenuClaim menu = menuClaim(c->descrip);
            const std::string enforced = "[" + std::to_string(f.lo) + "," + std::to_string(f.hi) + "]";
            if (!menu.range.empty() && (menu.range != enforced || menu.field != f.name)) {
                command += "; menu text: “" + trimmed(c->descrip) + "” — the driver holds `" + f.name + "` to " +
                           enforced;
            }
        }
        out << "| `" << f.name << "` | " << typeOf(f.width, f.isSigned) << " | " << rangeText(f.lo, f.hi) << " | "
            << orDash(f.unit) << " | " << f.meaning << " | " << at(0) << " → " << at(tuning::kGainSteps - 1) << " | "
            << command << " |\n";
    }
    out << "| `w_nir` | Uint8[" << tuning::kNirPoints << "] | 0 … 255 each | — | NIR weight curve | — | "
        << "`w_nir 0` loads `" << tuning::kNirCurvePath << "` into the records the gain blends |\n\n";
    out << "### How a console change lands on the gain steps\n\n"
           "A console command (`aewDebug NAME VALUE`, or the simulator's console) changes the current "
           "table only, and in it only the two fusion records the current gain blends: the records of "
           "`gainStartIndex` and `gainEndIndex`. Both get the same value, clamped to the range above "
           "(upper bound first); the other gain steps keep theirs. So a change shows at the current "
           "gain at once and fades as the gain moves to other steps. The change lives in the loaded "
           "tables until the next reload; the simulator's `save FILE` writes the accepted changes as a "
           "new tuning source.\n\n";
}

void stageFields(std::ostream& out, const ispdsp::tools::TableEntry& sample) {
    out << "## Stage records\n\n"
           "Every table stores one record per stage. The host calculates each stage's DSP message from "
           "its record; the calculation holds every field to the range below (a field whose range is "
           "its whole type goes to the DSP unchanged). The debug setter of a stage changes one field by "
           "its id; the console does not reach the stages. Sample values are from the sample's first "
           "table.\n\n";
    for (const tuning::TableStage& stage : tuning::kTableStages) {
        out << "### " << stage.name << " — `" << stage.recordKey << "`\n\n"
            << "Message `" << stage.messageName << "`; calculation `DRV_dspCalculate" << stage.symbolStem
            << "`, setter `DRV_dspdbg" << stage.symbolStem << "`.\n\n"
            << "| Field | Type | Range | Unit | Meaning | Sample | Setter id |\n|---|---|---|---|---|---|---|\n";
        for (const tuning::NamedField& f : stage.storedFields) {
            const tuning::Range r = tuning::enforcedRange(stage, f);
            const std::optional<int> id = tuning::debugIdOf(stage, f);
            const std::size_t at = stage.tableOffset + f.offset;
            const ispdsp::tools::Scalar scalar = f.width == 1   ? (f.isSigned ? ispdsp::tools::Scalar::I8 : ispdsp::tools::Scalar::U8)
                                          : f.width == 2 ? (f.isSigned ? ispdsp::tools::Scalar::I16 : ispdsp::tools::Scalar::U16)
                                                         : (f.isSigned ? ispdsp::tools::Scalar::I32 : ispdsp::tools::Scalar::U32);
            out << "| `" << f.name << "` | " << typeOf(f.width, f.isSigned) << " | " << rangeText(r.low, r.high)
                << " | " << orDash(f.unit) << " | " << f.meaning << " | "
                << ispdsp::tools::loadField(sample.bytes.data() + at, scalar) << " | "
                << (id ? std::to_string(*id) : std::string("—")) << " |\n";
        }
        out << '\n';
    }
}

// A short complete source: checked by building it, so the example cannot go stale. Every table
// holds all sixteen gain steps; here the blur grows with the gain.
std::string exampleSource() {
    std::string steps;
    for (std::size_t step = 0; step < tuning::kGainSteps; ++step) {
        steps += std::string(step ? ",\n" : "") + "       {\"ep_delta\": " + std::to_string(64 + 32 * step) +
                 ", \"fusion_hf_ratio\": 200, \"uv_coef\": 32, \"w_nir\": {\"ramp\": [16, 200]}}";
    }
    return R"({
  "header": {"ver": 82981.0, "dateTime": "2024-05-06 10:00:00", "subVer": 1.0,
             "archName": "chip", "pdtName": "product"},
  "tables": [
    {"type": ")" + typeName(0) + R"(",
     "ispFusionFlag": 1,
     "fusion": [
)" + steps + R"(],
     "ispLaeParam": {"plateLaeParam": {"manual_en": 1, "gbce_level": 2}},
     "ispFusionPlateParam": {"fuse_weight": 50}}
  ]
})";
}

bool sourceFormat(std::ostream& out) {
    std::vector<std::string> errors;
    const std::string example = exampleSource();
    if (!ispdsp::tools::buildParamFile(example, errors)) {
        for (const std::string& e : errors) std::cerr << "example source: " << e << '\n';
        return false;
    }
    out << "## The tuning source (JSON)\n\n"
           "`ispdsp-cfg build SOURCE -o FILE` writes a tuning file from a JSON source and `ispdsp-cfg "
           "dump FILE` writes the source back, byte for byte. A short complete source:\n\n```json\n"
        << example
        << "\n```\n\n"
           "- `header`: the file header. `ver` must be " << tuning::kExpectedVersion
        << " (the driver accepts a difference below " << tuning::kVersionTolerance
        << "); texts are up to " << tuning::kHeaderTextBytes << " bytes of UTF-8, or `{\"hex\": \"...\"}`.\n"
           "- `tables`: one object per table, written in this order; `type` is a type name from the list "
           "above, each type once.\n"
           "- `fusion`: up to " << tuning::kGainSteps
        << " records, gain step 0 first, with the fields of the fusion table above. `w_nir` is a list of "
        << tuning::kNirPoints
        << " points, or `{\"constant\": v}`, `{\"ramp\": [from, to]}` or `{\"knots\": [[x, y], ...]}`.\n"
           "- One object per stage record, named as in the stage sections, with its fields by name; LAE "
           "nests `plateLaeParam` and `windowLaeParam`.\n"
           "- Missing records and fields are 0; unknown names are errors; comments are allowed. A value "
           "outside its range is a warning: the driver holds it to the range.\n\n"
           "The binary file: header fields at bytes " << tuning::kVersionOffset << " (`ver`), "
        << tuning::kDateTimeOffset << " (`dateTime`), " << tuning::kSubVersionOffset << " (`subVer`), "
        << tuning::kArchNameOffset << " (`archName`), " << tuning::kProductNameOffset << " (`pdtName`); the block "
        << "size at " << tuning::kSizeWordOffset << "; the block from " << tuning::kBlockOffset
        << ", entries of a type word and a " << tuning::kTableBytes
        << "-byte table; then the checksum, the XOR of the " << tuning::kHeaderWords
        << " header words and of the block's whole words. The driver reads it from `" << tuning::kParamFileDir
        << "dsp_" << tuning::kParamFileName << "`, else from `" << tuning::kParamFileDir << "<pipe>/dsp_"
        << tuning::kParamFileName << "`.\n\n";
    return true;
}

}  // namespace
}  // namespace ispdsp::tools::reference

int main(int argc, char** argv) {
    using namespace ispdsp::tools::reference;
    if (argc != 3) {
        std::cerr << "usage: ispdsp-tuning-reference SAMPLE_PARAM_FILE OUTPUT\n";
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string error;
    const auto parsed = ispdsp::tools::parseParamFile(bytes, error);
    if (!parsed || parsed->image.entries.empty()) {
        std::cerr << argv[1] << ": " << (error.empty() ? "no table" : error) << '\n';
        return 1;
    }
    const ispdsp::tools::TableEntry& sample = parsed->image.entries.front();
    std::ostringstream out;
    out << "# Tuner's reference\n\n"
           "<!-- Generated from the tuning description (src/tuning) by tools/reference; do not edit. "
           "Rebuild with: cmake --build build/native --target ispdsp-tuning-reference-update -->\n\n"
           "What a tuning file holds, what each value does and the range the driver holds it to, and "
           "how the driver picks the table it runs.\n\n";
    tableTypes(out);
    fallbackRules(out);
    selectVersusFrames(out);
    fusionFields(out, sample);
    stageFields(out, sample);
    if (!sourceFormat(out)) return 1;
    std::ofstream file(argv[2], std::ios::binary);
    file << out.str();
    return file.flush() ? 0 : 1;
}

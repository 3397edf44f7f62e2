#include "scenario.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

#include "input_file.h"
#include "json_place.h"
#include "json_syntax_error.h"
#include "ispdsp/fusion.h"

namespace ispdsp::tools::sim {

namespace {

using nlohmann::json;

// Bounds on the scenario's size: a simulator run, not a soak test.
constexpr int64_t kMaxFrames = 1000000;

enum class FieldId { Gain, GainStart, GainEnd, InterCoff, Zoom, DncMode, HdrMode, ImageScene, SceneMode, PSwitch };

struct NamedValue {
    const char* name;
    int64_t value;
};

// One scenario field: its range, whether it is whole-numbered, whether a
// segment may ramp it, and the names it accepts instead of numbers.
struct FieldRule {
    const char* name;
    FieldId id;
    double min;
    double max;
    bool integer;
    bool rampable;
    std::vector<NamedValue> names;
};

const std::vector<FieldRule>& fieldRules() {
    constexpr double kGainMax = FUSION_GAIN_STEPS - 1;
    static const std::vector<FieldRule> rules = {
        {"gain", FieldId::Gain, 0, kGainMax, false, true, {}},
        {"gainStartIndex", FieldId::GainStart, 0, kGainMax, true, false, {}},
        {"gainEndIndex", FieldId::GainEnd, 0, kGainMax, true, false, {}},
        {"interCoff", FieldId::InterCoff, 0, 1, false, true, {}},
        {"zoom", FieldId::Zoom, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(), true, true,
         {}},
        {"dncMode", FieldId::DncMode, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(), true,
         false, {{"color", 1}, {"bw", 0}}},
        {"hdrMode", FieldId::HdrMode, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(), true,
         false, {{"linear", 0}, {"hdr", 1}, {"wdr", 4}}},
        {"imageScene", FieldId::ImageScene, 0, 255, true, false, {}},  // names through imageSceneByName
        {"sceneMode", FieldId::SceneMode, 0, std::numeric_limits<uint32_t>::max(), true, false,
         {{"day", 0}, {"night", 2}}},
        {"pSwitch", FieldId::PSwitch, 0, 255, true, false, {{"vis", 0}, {"fuse", 1}, {"nir_cal", 2}}},
    };
    return rules;
}

const FieldRule* findRule(const std::string& name) {
    for (const FieldRule& rule : fieldRules())
        if (name == rule.name) return &rule;
    return nullptr;
}

// A checked field value: constant, or a ramp over the frames of a segment.
struct FieldPatch {
    FieldId id;
    double from;
    double to;
};

// The fields one entry sets, for both pipes and per pipe.
struct Patch {
    std::vector<FieldPatch> both;
    std::array<std::vector<FieldPatch>, kPipeCount> perPipe;
};

[[noreturn]] void fail(const std::string& where, const std::string& what) { throw ScenarioError(where + ": " + what); }

double numberOf(const json& value, const FieldRule& rule, const std::string& where, const std::string& field) {
    double number = 0;
    if (value.is_string()) {
        const std::string text = value.get<std::string>();
        std::optional<int64_t> named;
        if (rule.id == FieldId::ImageScene) {
            if (auto scene = imageSceneByName(text)) named = *scene;
        }
        for (const NamedValue& n : rule.names)
            if (text == n.name) named = n.value;
        if (!named) {
            std::string accepted;
            if (rule.id == FieldId::ImageScene) accepted = " (base, traffic, face, ivs, strobe, police, comity, "
                                                           "pedestrian, ecotraffic, ecopolice, entrance_flash, "
                                                           "entrance_strobe, event)";
            for (const NamedValue& n : rule.names) accepted += (accepted.empty() ? " (" : ", ") + std::string(n.name);
            if (!rule.names.empty()) accepted += ")";
            fail(where, "field '" + field + "': unknown name \"" + text + "\"" +
                            (accepted.empty() ? std::string(", expected a number") : ", expected a number or one of" + accepted));
        }
        number = static_cast<double>(*named);
    } else if (value.is_number()) {
        number = value.get<double>();
    } else {
        fail(where, "field '" + field + "': expected a number, got " + std::string(value.type_name()));
    }
    if (!std::isfinite(number) || number < rule.min || number > rule.max) {
        // Whole-numbered fields show their limits as whole numbers (not 2.14748e+09).
        const auto limit = [&](double v) {
            std::ostringstream text;
            if (rule.integer)
                text << static_cast<int64_t>(v);
            else
                text << v;
            return text.str();
        };
        fail(where, "field '" + field + "': " + value.dump() + " is outside " + limit(rule.min) + ".." + limit(rule.max));
    }
    if (rule.integer && number != std::floor(number)) fail(where, "field '" + field + "': expected a whole number, got " + value.dump());
    return number;
}

FieldPatch parseField(const FieldRule& rule, const json& value, bool rampsAllowed, const std::string& where,
                      const std::string& field) {
    if (value.is_object()) {
        if (!rule.rampable) fail(where, "field '" + field + "' cannot ramp (only gain, interCoff and zoom can)");
        if (!rampsAllowed) fail(where, "field '" + field + "': ramps ({\"from\", \"to\"}) are only allowed in segments");
        for (const auto& [key, unused] : value.items()) {
            (void)unused;
            if (key != "from" && key != "to") fail(where, "field '" + field + "': unknown ramp key '" + key + "'");
        }
        if (!value.contains("from") || !value.contains("to"))
            fail(where, "field '" + field + "': a ramp needs both \"from\" and \"to\"");
        return {rule.id, numberOf(value["from"], rule, where, field + ".from"),
                numberOf(value["to"], rule, where, field + ".to")};
    }
    const double number = numberOf(value, rule, where, field);
    return {rule.id, number, number};
}

// The fields of one object ("defaults", a segment, a keyframe, or its
// "color"/"mono" part). `reserved` names keys that the caller handles.
std::vector<FieldPatch> parseFields(const json& object, bool rampsAllowed, const std::string& where,
                                    const std::string& prefix, const std::vector<std::string>& reserved,
                                    Patch* pipes) {
    std::vector<FieldPatch> fields;
    bool hasGain = false;
    bool hasExplicitGain = false;
    for (const auto& [key, value] : object.items()) {
        if (std::find(reserved.begin(), reserved.end(), key) != reserved.end()) continue;
        if (pipes != nullptr && (key == "color" || key == "mono")) {
            if (!value.is_object()) fail(where, "field '" + key + "': expected an object of per-pipe fields");
            const int pipe = key == "color" ? kColorPipe : kMonoPipe;
            pipes->perPipe[pipe] = parseFields(value, rampsAllowed, where, key + ".", {}, nullptr);
            continue;
        }
        const FieldRule* rule = findRule(key);
        if (rule == nullptr) fail(where, "unknown field '" + prefix + key + "'");
        hasGain = hasGain || rule->id == FieldId::Gain;
        hasExplicitGain = hasExplicitGain || rule->id == FieldId::GainStart || rule->id == FieldId::GainEnd ||
                          rule->id == FieldId::InterCoff;
        fields.push_back(parseField(*rule, value, rampsAllowed, where, prefix + key));
    }
    if (hasGain && hasExplicitGain)
        fail(where, "field '" + prefix + "gain' cannot stand beside gainStartIndex/gainEndIndex/interCoff");
    return fields;
}

Patch parsePatch(const json& object, bool rampsAllowed, const std::string& where,
                 const std::vector<std::string>& reserved) {
    if (!object.is_object()) fail(where, "expected an object, got " + std::string(object.type_name()));
    Patch patch;
    patch.both = parseFields(object, rampsAllowed, where, "", reserved, &patch);
    return patch;
}

// Splits a gain 0..15 into the two steps and the coefficient between them.
GainPosition splitGain(double gain) {
    const int32_t last = FUSION_GAIN_STEPS - 1;
    GainPosition position;
    position.start = std::min(static_cast<int32_t>(std::floor(gain)), last);
    position.end = std::min(position.start + 1, last);
    position.coff = static_cast<float>(gain - position.start);
    return position;
}

// Applies one field at position t (0..1) of its segment.
void applyField(PipeInput& pipe, const FieldPatch& field, double t) {
    const double value = field.from + (field.to - field.from) * t;
    switch (field.id) {
        case FieldId::Gain: pipe.gain = splitGain(value); break;
        case FieldId::GainStart: pipe.gain.start = static_cast<int32_t>(value); break;
        case FieldId::GainEnd: pipe.gain.end = static_cast<int32_t>(value); break;
        case FieldId::InterCoff: pipe.gain.coff = static_cast<float>(value); break;
        case FieldId::Zoom: pipe.zoom = static_cast<int32_t>(std::lround(value)); break;
        case FieldId::DncMode: pipe.dncMode = static_cast<int32_t>(value); break;
        case FieldId::HdrMode: pipe.hdrMode = static_cast<int32_t>(value); break;
        case FieldId::ImageScene: pipe.imageScene = static_cast<int32_t>(value); break;
        case FieldId::SceneMode: pipe.sceneMode = static_cast<uint32_t>(value); break;
        case FieldId::PSwitch: pipe.pSwitch = static_cast<int32_t>(value); break;
    }
}

void applyPatch(FrameInput& frame, const Patch& patch, double t) {
    for (int pipe = 0; pipe < kPipeCount; ++pipe) {
        for (const FieldPatch& field : patch.both) applyField(frame.pipes[pipe], field, t);
        for (const FieldPatch& field : patch.perPipe[pipe]) applyField(frame.pipes[pipe], field, t);
    }
}

int64_t frameCountOf(const json& value, const std::string& where, const char* field, int64_t min) {
    if (!value.is_number_integer() && !(value.is_number() && value.get<double>() == std::floor(value.get<double>())))
        fail(where, std::string("field '") + field + "': expected a whole number, got " + value.dump());
    const double number = value.get<double>();
    if (number < static_cast<double>(min) || number > static_cast<double>(kMaxFrames))
        fail(where, std::string("field '") + field + "': " + value.dump() + " is outside " + std::to_string(min) +
                        ".." + std::to_string(kMaxFrames));
    return static_cast<int64_t>(number);
}

std::string frameRange(int64_t first, int64_t count) {
    return count == 1 ? "frame " + std::to_string(first)
                      : "frames " + std::to_string(first) + "-" + std::to_string(first + count - 1);
}

std::string baseName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Step 1, read: the JSON document, with the line and column of a syntax error.
json readDocument(const std::string& text, const std::string& displayName) {
    try {
        // Comments are allowed so bundled scenarios can explain themselves.
        return json::parse(text, nullptr, true, /*ignore_comments=*/true);
    } catch (const json::exception& e) {  // a syntax error, or a number too large (1e400)
        const auto where = ispdsp::tools::findJsonSyntaxError(text).value_or(
            ispdsp::tools::describeJsonSyntaxError(text, 0, e.what()));
        throw ScenarioError(displayName + ":" + std::to_string(where.line) + ":" + std::to_string(where.column) + ": " +
                            where.reason);
    }
}

// Step 2, validate the top level: known keys, one kind of list, the description.
void checkTopLevel(const json& doc, const std::string& top, Scenario& scenario) {
    static const std::vector<std::string> known = {"name", "description", "frames", "defaults", "segments", "keyframes"};
    if (!doc.is_object()) fail(top, "expected a JSON object at the top");
    for (const auto& [key, unused] : doc.items()) {
        (void)unused;
        if (std::find(known.begin(), known.end(), key) == known.end()) fail(top, "unknown top-level field '" + key + "'");
    }
    if (doc.contains("segments") && doc.contains("keyframes"))
        fail(top, "give either \"segments\" or \"keyframes\", not both");
    if (doc.contains("description")) {
        if (!doc["description"].is_string()) fail(top, "field 'description': expected a string");
        scenario.description = doc["description"].get<std::string>();
    }
}

// A checked entry of the list, with the frames it covers.
struct Entry {
    Patch patch;
    int64_t first;
    int64_t count;  // segments: frames of the segment; keyframes: 1
};

const json& listOf(const json& doc, const std::string& top, const char* field) {
    if (!doc[field].is_array()) fail(top, std::string("field '") + field + "': expected an array");
    return doc[field];
}

// Step 3a, validate the segments: each runs for its own frame count.
std::vector<Entry> readSegments(const json& doc, const std::string& top) {
    std::vector<Entry> entries;
    int64_t next = 0;
    const json& list = listOf(doc, top, "segments");
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string index = top + ": segments[" + std::to_string(i) + "]";
        if (!list[i].is_object()) fail(index, "expected an object");
        if (!list[i].contains("frames")) fail(index + " (from frame " + std::to_string(next) + ")", "missing field 'frames'");
        const int64_t count = frameCountOf(list[i]["frames"], index, "frames", 1);
        const std::string where = index + " (" + frameRange(next, count) + ")";
        entries.push_back({parsePatch(list[i], true, where, {"frames"}), next, count});
        next += count;
        if (next > kMaxFrames) fail(where, "the segments hold more than " + std::to_string(kMaxFrames) + " frames");
    }
    return entries;
}

// Step 3b, validate the keyframes: each holds from its frame on, in ascending order.
std::vector<Entry> readKeyframes(const json& doc, const std::string& top) {
    std::vector<Entry> entries;
    int64_t previous = -1;
    const json& list = listOf(doc, top, "keyframes");
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string index = top + ": keyframes[" + std::to_string(i) + "]";
        if (!list[i].is_object()) fail(index, "expected an object");
        if (!list[i].contains("frame")) fail(index, "missing field 'frame'");
        const int64_t frame = frameCountOf(list[i]["frame"], index, "frame", 0);
        const std::string where = index + " (frame " + std::to_string(frame) + ")";
        if (frame <= previous)
            fail(where, "keyframes must be in ascending frame order (previous frame " + std::to_string(previous) + ")");
        previous = frame;
        entries.push_back({parsePatch(list[i], false, where, {"frame"}), frame, 1});
    }
    return entries;
}

// Step 4, the frame count: --frames, else "frames", else the end of the list (at least one).
int64_t frameCountFor(const json& doc, const std::string& top, const std::vector<Entry>& entries,
                      std::optional<int64_t> framesOverride) {
    if (framesOverride) {
        if (*framesOverride < 0 || *framesOverride > kMaxFrames)
            throw ScenarioError("--frames " + std::to_string(*framesOverride) + " is outside 0.." +
                                std::to_string(kMaxFrames));
        return *framesOverride;
    }
    if (doc.contains("frames")) return frameCountOf(doc["frames"], top, "frames", 0);
    return entries.empty() ? 1 : entries.back().first + entries.back().count;
}

// Step 5, expand: every entry applies from its first frame on; a segment ramps
// across its frames and leaves its last values in place.
std::vector<FrameInput> expandFrames(FrameInput state, const std::vector<Entry>& entries, int64_t frames) {
    std::vector<FrameInput> out;
    out.reserve(static_cast<size_t>(frames));
    size_t next = 0;
    const Entry* active = nullptr;
    for (int64_t f = 0; f < frames; ++f) {
        while (next < entries.size() && entries[next].first <= f) active = &entries[next++];
        if (active != nullptr && f < active->first + active->count) {
            const double t = active->count > 1 ? static_cast<double>(f - active->first) / static_cast<double>(active->count - 1) : 0.0;
            applyPatch(state, active->patch, t);
        }
        out.push_back(state);
    }
    return out;
}

// "FILE: segments[1] (frames 2-4): field 'mono.gain': ..." -> "FILE:3:40: segments[1] ...", at
// the value it is about (the entry when the field is not there); as it was when not found.
std::string withPlace(const std::string& text, const std::string& displayName, const std::string& message) {
    const std::string lead = displayName + ": ";
    if (!message.starts_with(lead)) return message;
    const std::string rest = message.substr(lead.size());
    std::vector<std::string> path;
    std::string_view field = rest;
    if (!rest.starts_with("field '")) {
        const size_t colon = rest.find(": ");
        path = ispdsp::tools::jsonPathOf(rest.substr(0, colon));
        field = colon == std::string::npos ? std::string_view() : field.substr(colon + 2);
    }
    if (field.starts_with("field '"))
        for (std::string& step : ispdsp::tools::jsonPathOf(field.substr(7, field.find('\'', 7) - 7))) path.push_back(step);
    std::optional<ispdsp::tools::TextPlace> place;
    while (!path.empty() && !(place = ispdsp::tools::findJsonValue(text, path))) path.pop_back();
    if (!place) return message;
    return displayName + ":" + std::to_string(place->line) + ":" + std::to_string(place->column) + ": " + rest;
}

Scenario readScenario(const std::string& text, const std::string& displayName, std::optional<int64_t> framesOverride) {
    const json doc = readDocument(text, displayName);
    Scenario scenario;
    scenario.name = baseName(displayName);
    checkTopLevel(doc, displayName, scenario);
    if (doc.contains("defaults")) applyPatch(scenario.defaults, parsePatch(doc["defaults"], false, displayName + ": defaults", {}), 0);
    const std::vector<Entry> entries = doc.contains("segments")    ? readSegments(doc, displayName)
                                       : doc.contains("keyframes") ? readKeyframes(doc, displayName)
                                                                   : std::vector<Entry>{};
    scenario.frames = expandFrames(scenario.defaults, entries, frameCountFor(doc, displayName, entries, framesOverride));
    return scenario;
}

}  // namespace

Scenario parseScenario(const std::string& text, const std::string& displayName, std::optional<int64_t> framesOverride) {
    try {
        return readScenario(text, displayName, framesOverride);
    } catch (const ScenarioError& e) {
        throw ScenarioError(withPlace(text, displayName, e.what()));
    }
}

Scenario loadScenario(const std::string& path, std::optional<int64_t> framesOverride) {
    const ispdsp::tools::InputFile file = ispdsp::tools::readInputFileOfKind(path, ispdsp::tools::FileKind::JsonText);
    if (!file.ok()) throw ScenarioError(file.error);
    return parseScenario(std::string(file.bytes.begin(), file.bytes.end()), path, framesOverride);
}

}  // namespace ispdsp::tools::sim

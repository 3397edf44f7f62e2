#include "simulation_view.h"

#include <algorithm>

#include "fusion_svg.h"

namespace ispdsp::tools::cfg::serve {

using nlohmann::json;

namespace {

constexpr const char* kOutsideColour = "#d7191c";
constexpr const char* kExpectedColours[] = {"#e08a00", "#7b3294", "#008080", "#8c510a"};

// What the DSP receives: the messages sent ("set").
bool isSent(const json& r) { return r.value("event", "") == "message" && r.value("dir", "") == "set" && r.contains("fields"); }

std::vector<std::pair<std::string, std::string>> chartableFields(const std::vector<json>& records) {
    std::vector<std::pair<std::string, std::string>> fields;
    for (const json& r : records) {
        if (!isSent(r)) continue;
        for (const auto& [name, value] : r["fields"].items()) {
            const std::pair<std::string, std::string> key{r.value("stage", ""), name};
            if (value.is_number_integer() && std::find(fields.begin(), fields.end(), key) == fields.end())
                fields.push_back(key);
        }
    }
    return fields;
}

bool isOutside(const json& r, const std::string& field) { return r.contains("outOfRange") && r["outOfRange"].contains(field); }

// The simulator's own words for a by-design value of `field` in message `r`; "" for none.
std::string expectedLabel(const json& r, const std::string& field) {
    if (isOutside(r, field)) return r.value("outOfRangeExpected", "");
    return r.value("expected", "");
}

std::pair<std::string, std::string> defaultField(const std::vector<json>& records,
                                                 const std::vector<std::pair<std::string, std::string>>& fields) {
    for (const auto& key : fields)
        for (const json& r : records)
            if (key.first == "FUSION" && isSent(r) && r.value("stage", "") == "FUSION" && isOutside(r, key.second)) return key;
    return fields.empty() ? std::pair<std::string, std::string>{} : fields.front();
}

}  // namespace

json simulationView(const std::vector<json>& records, const std::string& stage, const std::string& field) {
    json view = {{"fields", json::array()}, {"rows", json::array()}, {"end", json::object()}};
    const auto fields = chartableFields(records);
    for (const auto& [s, f] : fields) view["fields"].push_back({{"stage", s}, {"field", f}});
    std::pair<std::string, std::string> chosen{stage, field};
    if (std::find(fields.begin(), fields.end(), chosen) == fields.end()) chosen = defaultField(records, fields);
    view["stage"] = chosen.first;
    view["field"] = chosen.second;

    std::vector<FrameSeries> series = {{"colour pipe", "#2166ac", {}, false}, {"mono pipe", "#222222", {}, true}};
    std::vector<PointMark> marks;
    std::optional<ValueBand> band;
    const auto markOf = [&marks](const std::string& label, const char* colour) {
        for (size_t i = 0; i < marks.size(); ++i)
            if (marks[i].label == label) return static_cast<int>(i);
        marks.push_back({colour, label});
        return static_cast<int>(marks.size() - 1);
    };
    for (const json& r : records) {
        if (r.value("event", "") == "run") {
            view["scenario"] = r.value("scenario", "");
            view["description"] = r.value("description", "");
        }
        if (r.value("event", "") == "end") view["end"] = r;
        if (!isSent(r) || r.value("stage", "") != chosen.first || !r["fields"].contains(chosen.second)) continue;
        const json& value = r["fields"][chosen.second];
        const json frame = r.value("frame", json());
        if (!value.is_number_integer() || !frame.is_number_integer()) continue;
        const bool colour = r.value("pipe", "") == "color";
        const std::string expected = expectedLabel(r, chosen.second);
        const bool outside = isOutside(r, chosen.second);
        std::string note;
        int mark = -1;
        if (!expected.empty()) {
            note = "expected: " + expected;
            mark = markOf(note, kExpectedColours[std::min(marks.size(), std::size(kExpectedColours) - 1)]);
        } else if (outside) {
            note = "! outside the DSP range";
            mark = markOf(note, kOutsideColour);
        }
        if (outside && !band) {
            const json& range = r["outOfRange"][chosen.second];
            band = ValueBand{range.value("min", int64_t{0}), range.value("max", int64_t{0}), ""};
            band->label = "DSP range " + std::to_string(band->low) + " to " + std::to_string(band->high);
        }
        series[colour ? 0 : 1].points.push_back({frame.get<int64_t>(), value.get<int64_t>(), mark});
        view["rows"].push_back({{"frame", frame}, {"pipe", colour ? "colour" : "mono"}, {"value", value}, {"note", note}});
    }
    const std::string title = chosen.first + " " + chosen.second + " sent to the DSP, per frame (" +
                              view.value("scenario", std::string()) + ")";
    view["svg"] = frameSeriesSvg(title, series, marks, band);
    return view;
}

}  // namespace ispdsp::tools::cfg::serve

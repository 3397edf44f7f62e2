#include "record_views.h"

#include <cerrno>
#include <cstdlib>

namespace ispdsp::tools::cfg::serve {

namespace {

nlohmann::json describe(const FieldDef& f, size_t index) {
    return {{"index", index},   {"record", f.record}, {"group", f.group}, {"name", f.name},
            {"low", f.dspLow},  {"high", f.dspHigh},  {"type", typeName(f.type)},
            {"unit", f.unit},   {"meaning", f.meaning}};
}

bool outside(const FieldDef& f, int64_t v) { return v < f.dspLow || v > f.dspHigh; }

}  // namespace

nlohmann::json stageRecordsView(const TableEntry& table) {
    nlohmann::json fields = nlohmann::json::array();
    const auto all = allFields();
    for (size_t i = 0; i < all.size(); ++i) {
        const FieldDef& f = all[i];
        if (isFusionField(f)) continue;
        const int64_t v = loadField(table.bytes.data() + tableOffsetOf(f), f.type);
        nlohmann::json d = describe(f, i);
        d["path"] = fieldPath(f);
        d["value"] = v;
        d["outside"] = outside(f, v);
        fields.push_back(std::move(d));
    }
    return fields;
}

nlohmann::json fusionRecordsView(const TableEntry& table) {
    nlohmann::json fields = nlohmann::json::array();
    const auto all = allFields();
    for (size_t i = 0; i < all.size(); ++i) {
        const FieldDef& f = all[i];
        if (!isFusionField(f)) continue;
        nlohmann::json d = describe(f, i);
        for (size_t step = 0; step < kGainSteps; ++step) {
            const int64_t v = loadField(table.bytes.data() + tableOffsetOf(f, step), f.type);
            d["values"].push_back(v);
            d["outside"].push_back(outside(f, v));
        }
        fields.push_back(std::move(d));
    }
    return fields;
}

EditCheck checkEdit(const FieldDef& f, const std::string& text) {
    EditCheck c;
    const char* begin = text.c_str();
    while (*begin == ' ') ++begin;
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(begin, &end, 10);
    while (end != nullptr && *end == ' ') ++end;
    if (end == begin || *end != '\0') {
        c.note = "\"" + text + "\" is not a number";
        return c;
    }
    if (errno == ERANGE || number < minOf(f.type) || number > maxOf(f.type)) {
        c.note = "\"" + text + "\" does not fit " + typeName(f.type) + " (" + std::to_string(minOf(f.type)) + " to " +
                 std::to_string(maxOf(f.type)) + ")";
        return c;
    }
    c.taken = true;
    c.value = number;
    if (outside(f, number)) {
        const int64_t clamped = number < f.dspLow ? f.dspLow : f.dspHigh;
        c.note = std::to_string(number) + " is outside " + std::to_string(f.dspLow) + " to " + std::to_string(f.dspHigh) +
                 ": it will be clamped to " + std::to_string(clamped);
    }
    return c;
}

}  // namespace ispdsp::tools::cfg::serve

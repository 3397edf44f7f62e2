#include "fusion_codec.h"

#include <cstring>

#include "curve_forms.h"

namespace ispdsp::tools {
namespace {

uint8_t* stepBytes(TableEntry& t, size_t step) { return t.bytes.data() + ispdsp::tuning::fusionFieldOffset(step, 0); }
const uint8_t* stepBytes(const TableEntry& t, size_t step) {
    return t.bytes.data() + ispdsp::tuning::fusionFieldOffset(step, 0);
}

std::vector<std::string> stepKeys() {
    std::vector<std::string> keys;
    for (const FieldDef& f : fusionFields()) keys.emplace_back(f.name);
    keys.emplace_back("w_nir");
    return keys;
}

}  // namespace

OrderedJson encodeFusion(const TableEntry& table) {
    OrderedJson steps = OrderedJson::array();
    for (size_t step = 0; step < kGainSteps; ++step) {
        const uint8_t* rec = stepBytes(table, step);
        OrderedJson s;
        for (const FieldDef& f : fusionFields()) s[f.name] = loadField(rec + f.offset, f.type);
        Curve curve;
        std::memcpy(curve.data(), rec + kNirOffset, kNirPoints);
        s["w_nir"] = encodeCurve(curve);
        steps.push_back(std::move(s));
    }
    return steps;
}

void decodeFusion(const Json& value, TableEntry& table, const std::string& where, Diagnostics& diag) {
    if (!value.is_array() || value.size() != kGainSteps) {
        diag.error(where, "expected an array of 16 gain steps, found " +
                              (value.is_array() ? std::to_string(value.size()) + " steps" : jsonKind(value)));
        return;
    }
    static const std::vector<std::string> keys = stepKeys();
    for (size_t step = 0; step < kGainSteps; ++step) {
        const Json& s = value[step];
        const std::string at = where + "[" + std::to_string(step) + "]";
        if (!s.is_object()) {
            diag.error(at, "expected an object, found " + jsonKind(s));
            continue;
        }
        rejectUnknownKeys(s, keys, at, diag);
        uint8_t* rec = stepBytes(table, step);
        for (const FieldDef& f : fusionFields()) {
            if (!s.contains(f.name)) continue;
            int64_t v = 0;
            if (readInteger(s[f.name], f.type, joinPath(at, f.name), diag, v)) storeField(rec + f.offset, f.type, v);
        }
        if (s.contains("w_nir")) {
            if (auto curve = decodeCurve(s["w_nir"], joinPath(at, "w_nir"), diag)) {
                std::memcpy(rec + kNirOffset, curve->data(), kNirPoints);
            }
        }
    }
}

}  // namespace ispdsp::tools

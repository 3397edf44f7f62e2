#include "json_source.h"

#include <algorithm>
#include <limits>

namespace ispdsp::tools {
namespace {

size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

void Diagnostics::error(const std::string& where, const std::string& what) {
    messages_.push_back(where.empty() ? what : where + ": " + what);
}

std::string jsonKind(const Json& value) {
    switch (value.type()) {
        case Json::value_t::object: return "object";
        case Json::value_t::array: return "array";
        case Json::value_t::string: return "string";
        case Json::value_t::boolean: return "boolean";
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned: return "integer";
        case Json::value_t::number_float: return "number";
        case Json::value_t::null: return "null";
        default: return "value";
    }
}

namespace {

// One integer within [low, high]; `describe` words the complaint about a value outside.
template <class Describe>
bool readBounded(const Json& value, int64_t low, int64_t high, const std::string& where, Diagnostics& diag,
                 int64_t& out, Describe describe) {
    if (!value.is_number_integer()) {  // also false for 1.5 and for true/false
        diag.error(where, "expected an integer, found " + jsonKind(value) +
                              (value.is_number_float() ? " " + value.dump() : std::string()));
        return false;
    }
    if (value.is_number_unsigned()) {
        const auto u = value.get<uint64_t>();
        if (u > static_cast<uint64_t>(high)) {
            diag.error(where, std::to_string(u) + describe());
            return false;
        }
        out = static_cast<int64_t>(u);
        return true;
    }
    const auto v = value.get<int64_t>();
    if (v < low || v > high) {
        diag.error(where, std::to_string(v) + describe());
        return false;
    }
    out = v;
    return true;
}

}  // namespace

bool readIntegerIn(const Json& value, int64_t low, int64_t high, const std::string& where, Diagnostics& diag,
                   int64_t& out) {
    return readBounded(value, low, high, where, diag, out,
                       [&] { return " is out of range " + std::to_string(low) + ".." + std::to_string(high); });
}

bool readInteger(const Json& value, Scalar type, const std::string& where, Diagnostics& diag, int64_t& out) {
    return readBounded(value, minOf(type), maxOf(type), where, diag, out, [&] {
        return std::string(" does not fit ") + typeName(type) + " (" + std::to_string(minOf(type)) + ".." +
               std::to_string(maxOf(type)) + ")";
    });
}

void rejectUnknownKeys(const Json& object, const std::vector<std::string>& known, const std::string& where,
                       Diagnostics& diag) {
    for (const auto& [key, value] : object.items()) {
        if (std::find(known.begin(), known.end(), key) != known.end()) continue;
        std::string hint;
        size_t best = std::numeric_limits<size_t>::max();
        for (const std::string& k : known) {
            const size_t d = editDistance(key, k);
            if (d < best) {
                best = d;
                hint = k;
            }
        }
        std::string message = "unknown field \"" + key + "\"";
        if (!hint.empty() && best <= std::max<size_t>(2, hint.size() / 3))
            message += " (did you mean \"" + hint + "\"?)";
        diag.error(joinPath(where, key), message);
    }
}

std::string joinPath(std::string_view base, std::string_view leaf) {
    if (base.empty() || base.back() == ' ') return std::string(base) + std::string(leaf);
    if (leaf.empty()) return std::string(base);
    return std::string(base) + "." + std::string(leaf);
}

}  // namespace ispdsp::tools

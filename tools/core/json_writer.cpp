#include "json_writer.h"

namespace ispdsp::tools {
namespace {

constexpr size_t kLineWidth = 110;
constexpr size_t kIndent = 2;

std::string inlineForm(const OrderedJson& v) {
    if (v.is_object()) {
        std::string s = "{";
        bool first = true;
        for (const auto& [key, member] : v.items()) {
            if (!first) s += ", ";
            first = false;
            s += OrderedJson(key).dump() + ": " + inlineForm(member);
        }
        return s + "}";
    }
    if (v.is_array()) {
        std::string s = "[";
        for (size_t i = 0; i < v.size(); ++i) {
            if (i != 0) s += ", ";
            s += inlineForm(v[i]);
        }
        return s + "]";
    }
    return v.dump();
}

bool allScalars(const OrderedJson& array) {
    for (const auto& e : array) {
        if (e.is_structured()) return false;
    }
    return true;
}

void write(const OrderedJson& v, size_t indent, size_t used, std::string& out) {
    const std::string flat = inlineForm(v);
    if (!v.is_structured() || v.empty() || used + flat.size() <= kLineWidth) {
        out += flat;
        return;
    }
    const std::string pad(indent + kIndent, ' ');
    if (v.is_array() && allScalars(v)) {  // numbers, wrapped
        out += "[\n" + pad;
        size_t column = pad.size();
        for (size_t i = 0; i < v.size(); ++i) {
            const std::string item = v[i].dump() + (i + 1 < v.size() ? "," : "");
            if (column > pad.size() && column + 1 + item.size() > kLineWidth) {
                out += "\n" + pad;
                column = pad.size();
            } else if (column > pad.size()) {
                out += ' ';
                ++column;
            }
            out += item;
            column += item.size();
        }
        out += "\n" + std::string(indent, ' ') + "]";
        return;
    }
    out += v.is_array() ? "[\n" : "{\n";
    size_t i = 0;
    for (const auto& [key, member] : v.items()) {
        out += pad;
        size_t lead = pad.size();
        if (v.is_object()) {
            const std::string k = OrderedJson(key).dump() + ": ";
            out += k;
            lead += k.size();
        }
        write(member, indent + kIndent, lead, out);
        out += ++i < v.size() ? ",\n" : "\n";
    }
    out += std::string(indent, ' ') + (v.is_array() ? "]" : "}");
}

}  // namespace

std::string writeJson(const OrderedJson& value) {
    std::string out;
    write(value, 0, 0, out);
    return out + "\n";
}

}  // namespace ispdsp::tools

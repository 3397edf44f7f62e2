#include "table_codec.h"

#include <functional>
#include <map>
#include <set>

#include "fusion_codec.h"
#include "json_syntax_error.h"
#include "header_codec.h"
#include "stage_codec.h"
#include "type_names.h"

namespace ispdsp::tools {
namespace {

std::vector<std::string> tableKeys() {
    std::vector<std::string> keys{"type", fusionFlagField().name, "fusion"};
    for (const std::string& k : stageRecordKeys()) keys.push_back(k);
    return keys;
}

// The type of a table object, or nothing (reported).
std::optional<int32_t> decodeType(const Json& table, const std::string& where, Diagnostics& diag) {
    if (!table.contains("type")) {
        diag.error(where, "missing \"type\" (a PARAM_TABLE_TYPE name such as \"" + tableTypeName(0) + "\")");
        return std::nullopt;
    }
    const Json& t = table["type"];
    if (t.is_string()) {
        if (auto type = tableTypeFromName(t.get_ref<const std::string&>())) return type;
        diag.error(where + ".type", "\"" + t.get<std::string>() + "\" is not a PARAM_TABLE_TYPE name");
        return std::nullopt;
    }
    int64_t v = 0;
    if (readIntegerIn(t, 0, kTableTypes - 1, where + ".type", diag, v)) return static_cast<int32_t>(v);
    return std::nullopt;
}

void decodeTable(const Json& value, int32_t type, TableEntry& entry, const std::string& where, Diagnostics& diag) {
    entry.type = type;
    entry.bytes.fill(0);
    static const std::vector<std::string> keys = tableKeys();
    rejectUnknownKeys(value, keys, where + " ", diag);
    const FieldDef& flag = fusionFlagField();
    if (value.contains(flag.name)) {
        int64_t v = 0;
        if (readInteger(value[flag.name], flag.type, where + " " + flag.name, diag, v)) {
            storeField(entry.bytes.data() + flag.offset, flag.type, v);
        }
    }
    if (value.contains("fusion")) decodeFusion(value["fusion"], entry, where + " fusion", diag);
    for (const std::string& key : stageRecordKeys()) {
        if (value.contains(key)) decodeStageRecord(key, value[key], entry, where + " " + key, diag);
    }
}

}  // namespace

OrderedJson encodeTable(const TableEntry& table) {
    OrderedJson t;
    if (table.type >= 0 && table.type < kTableTypes) {
        t["type"] = tableTypeName(table.type);
    } else {
        t["type"] = table.type;  // not a table type: kept as found (build rejects it)
    }
    const FieldDef& flag = fusionFlagField();
    t[flag.name] = loadField(table.bytes.data() + flag.offset, flag.type);
    t["fusion"] = encodeFusion(table);
    encodeStages(table, t);
    return t;
}

OrderedJson encodeDocument(const ParamFileImage& image) {
    OrderedJson doc;
    doc["header"] = encodeHeader(image.header);
    doc["tables"] = OrderedJson::array();
    for (const TableEntry& e : image.entries) doc["tables"].push_back(encodeTable(e));
    return doc;
}

std::optional<ParamFileImage> decodeDocument(const Json& document, Diagnostics& diag) {
    if (!document.is_object()) {
        diag.error("", "expected an object with \"header\" and \"tables\", found " + jsonKind(document));
        return std::nullopt;
    }
    rejectUnknownKeys(document, {"header", "tables"}, "", diag);
    ParamFileImage image;
    if (document.contains("header")) decodeHeader(document["header"], image.header, "header", diag);
    if (!document.contains("tables") || !document["tables"].is_array()) {
        diag.error("tables", document.contains("tables") ? "expected an array, found " + jsonKind(document["tables"])
                                                         : "missing (a list of tables)");
        return std::nullopt;
    }
    std::map<int32_t, size_t> firstIndex;
    const Json& tables = document["tables"];
    for (size_t i = 0; i < tables.size(); ++i) {
        const Json& t = tables[i];
        std::string where = "tables[" + std::to_string(i) + "]";
        if (!t.is_object()) {
            diag.error(where, "expected an object, found " + jsonKind(t));
            continue;
        }
        const auto type = decodeType(t, where, diag);
        if (!type) continue;
        where += " (" + tableTypeName(*type) + ")";
        if (auto [it, inserted] = firstIndex.emplace(*type, i); !inserted) {
            diag.error(where, "duplicate table type: already defined by tables[" + std::to_string(it->second) + "]");
            continue;
        }
        TableEntry entry;
        decodeTable(t, *type, entry, where, diag);
        image.entries.push_back(entry);
    }
    if (!diag.ok()) return std::nullopt;
    return image;
}

namespace {

// Tracks where the parser is, so a key repeated inside one object (which JSON parsers quietly
// resolve to the last value) is reported: in a hand-edited source it is a copy-and-paste slip.
class DuplicateKeyFinder {
public:
    explicit DuplicateKeyFinder(Diagnostics& diag) : diag_(diag) {}

    bool operator()(int, Json::parse_event_t event, Json& parsed) {
        switch (event) {
            case Json::parse_event_t::object_start:
                element();
                frames_.push_back(Frame{false, 0, {}, {}});
                break;
            case Json::parse_event_t::array_start:
                element();
                frames_.push_back(Frame{true, 0, {}, {}});
                break;
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end: frames_.pop_back(); break;
            case Json::parse_event_t::value: element(); break;
            case Json::parse_event_t::key: {
                Frame& top = frames_.back();
                top.key = parsed.get<std::string>();
                if (!top.keys.insert(top.key).second) diag_.error(path(), "duplicate key \"" + top.key + "\"");
                break;
            }
        }
        return true;
    }

private:
    struct Frame {
        bool array;
        size_t elements = 0;  // arrays: elements begun so far
        std::string key;      // objects: the member being read
        std::set<std::string> keys;
    };
    void element() {
        if (!frames_.empty() && frames_.back().array) ++frames_.back().elements;
    }
    std::string path() const {
        std::string p;
        for (const Frame& f : frames_) {
            if (f.array)
                p += "[" + std::to_string(f.elements - 1) + "]";
            else
                p += (p.empty() ? "" : ".") + f.key;
        }
        return p;
    }
    Diagnostics& diag_;
    std::vector<Frame> frames_;
};

}  // namespace

std::optional<Json> parseJsonText(const std::string& text, Diagnostics& diag) {
    try {
        DuplicateKeyFinder duplicates(diag);
        return Json::parse(text, std::ref(duplicates), /*allow_exceptions=*/true, /*ignore_comments=*/true);
    } catch (const Json::exception& e) {  // a syntax error, or a number too large (1e400)
        const auto where = ispdsp::tools::findJsonSyntaxError(text).value_or(
            ispdsp::tools::describeJsonSyntaxError(text, 0, e.what()));
        diag.error("line " + std::to_string(where.line) + ", column " + std::to_string(where.column),
                   "JSON syntax error: " + where.reason);
        return std::nullopt;
    }
}

}  // namespace ispdsp::tools

#include "stage_codec.h"

#include <algorithm>
#include <cstring>

namespace ispdsp::tools {
namespace {

bool inRecord(const FieldDef& f, const std::string& key) { return key == f.record; }

// Direct field names and nested group names of one record, in layout order.
std::vector<std::string> recordMembers(const std::string& key) {
    std::vector<std::string> members;
    for (const FieldDef& f : stageFields()) {
        if (!inRecord(f, key)) continue;
        const std::string member = f.group[0] != '\0' ? f.group : f.name;
        if (std::find(members.begin(), members.end(), member) == members.end()) members.push_back(member);
    }
    return members;
}

std::vector<std::string> groupFields(const std::string& key, const std::string& group) {
    std::vector<std::string> names;
    for (const FieldDef& f : stageFields()) {
        if (inRecord(f, key) && group == f.group) names.emplace_back(f.name);
    }
    return names;
}

void decodeFields(const Json& object, const std::string& key, const std::string& group, TableEntry& table,
                  const std::string& where, Diagnostics& diag) {
    for (const FieldDef& f : stageFields()) {
        if (!inRecord(f, key) || group != f.group || !object.contains(f.name)) continue;
        int64_t v = 0;
        if (readInteger(object[f.name], f.type, joinPath(where, f.name), diag, v)) {
            storeField(table.bytes.data() + f.offset, f.type, v);
        }
    }
}

}  // namespace

const std::vector<std::string>& stageRecordKeys() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> k;
        for (const FieldDef& f : stageFields()) {
            if (k.empty() || k.back() != f.record) k.emplace_back(f.record);
        }
        return k;
    }();
    return keys;
}

void encodeStages(const TableEntry& table, OrderedJson& tableObject) {
    for (const FieldDef& f : stageFields()) {
        const int64_t v = loadField(table.bytes.data() + f.offset, f.type);
        if (f.group[0] != '\0') {
            tableObject[f.record][f.group][f.name] = v;
        } else {
            tableObject[f.record][f.name] = v;
        }
    }
}

void decodeStageRecord(const std::string& key, const Json& value, TableEntry& table, const std::string& where,
                       Diagnostics& diag) {
    if (!value.is_object()) {
        diag.error(where, "expected an object, found " + jsonKind(value));
        return;
    }
    rejectUnknownKeys(value, recordMembers(key), where, diag);
    decodeFields(value, key, "", table, where, diag);
    for (const std::string& member : recordMembers(key)) {
        const std::vector<std::string> nested = groupFields(key, member);
        if (nested.empty() || !value.contains(member)) continue;  // a direct field, or a group left out
        const Json& group = value[member];
        const std::string at = joinPath(where, member);
        if (!group.is_object()) {
            diag.error(at, "expected an object, found " + jsonKind(group));
            continue;
        }
        rejectUnknownKeys(group, nested, at, diag);
        decodeFields(group, key, member, table, at, diag);
    }
}

}  // namespace ispdsp::tools

// Every field comes from the tuning description: the fusion scalars from fusion/fusion_fields.h,
// the stage records' fields and the ranges their calculations enforce from tuning/stage_list.h.
// Nothing about a field is typed here.
#include "field_table.h"

#include <deque>
#include <string_view>
#include <vector>

#include "fusion/fusion_fields.h"
#include "tuning/stage_list.h"

namespace ispdsp::tools {
namespace {

Scalar scalarOf(size_t width, bool isSigned) {
    if (width == 1) return isSigned ? Scalar::I8 : Scalar::U8;
    if (width == 2) return isSigned ? Scalar::I16 : Scalar::U16;
    return isSigned ? Scalar::I32 : Scalar::U32;
}

// A stored field's path ("plateLaeParam.gbce_level") as its group and name; the parts live as
// long as the table.
std::pair<const char*, const char*> splitPath(const char* path) {
    static std::deque<std::string> parts;
    const std::string_view p(path);
    const size_t dot = p.find('.');
    if (dot == std::string_view::npos) return {"", path};
    parts.emplace_back(p.substr(0, dot));
    return {parts.back().c_str(), path + dot + 1};
}

// The table-level flag, the fusion scalars of one gain step, then the stage fields in table order.
std::vector<FieldDef> buildFields() {
    std::vector<FieldDef> fields;
    fields.push_back({"", "", "ispFusionFlag", offsetof(CFG_DspIspCfgParam, ispFusionFlag), Scalar::U32, 0,
                      0xFFFFFFFF, "0/1", "nonzero switches the per-frame fusion update on for the table"});
    for (const ispdsp::fusion::ScalarField& f : ispdsp::fusion::kScalarFields) {
        fields.push_back({"fusion", "", f.name, f.offset, scalarOf(f.width, f.isSigned), f.lo, f.hi,
                          f.unit, f.meaning});
    }
    for (const ispdsp::tuning::TableStage& stage : ispdsp::tuning::kTableStages) {
        for (const ispdsp::tuning::NamedField& f : stage.storedFields) {
            const auto [group, name] = splitPath(f.name);
            const ispdsp::tuning::Range range = ispdsp::tuning::enforcedRange(stage, f);
            fields.push_back({stage.recordKey, group, name, static_cast<uint16_t>(stage.tableOffset + f.offset),
                              scalarOf(f.width, f.isSigned), range.low, range.high, f.unit, f.meaning});
        }
    }
    return fields;
}

const std::vector<FieldDef>& fieldTable() {
    static const std::vector<FieldDef> fields = buildFields();
    return fields;
}

constexpr size_t kFusionScalars = static_cast<size_t>(ispdsp::fusion::kScalarFieldCount);
constexpr size_t kFirstStageField = 1 + kFusionScalars;

}  // namespace

std::span<const FieldDef> allFields() { return fieldTable(); }
std::span<const FieldDef> fusionFields() { return allFields().subspan(1, kFusionScalars); }
std::span<const FieldDef> stageFields() { return allFields().subspan(kFirstStageField); }
const FieldDef& fusionFlagField() { return fieldTable()[0]; }

size_t widthOf(Scalar type) {
    switch (type) {
        case Scalar::U8:
        case Scalar::I8: return 1;
        case Scalar::U16:
        case Scalar::I16: return 2;
        case Scalar::U32:
        case Scalar::I32: return 4;
    }
    return 0;
}

int64_t minOf(Scalar type) {
    switch (type) {
        case Scalar::I8: return INT8_MIN;
        case Scalar::I16: return INT16_MIN;
        case Scalar::I32: return INT32_MIN;
        default: return 0;
    }
}

int64_t maxOf(Scalar type) {
    switch (type) {
        case Scalar::U8: return UINT8_MAX;
        case Scalar::I8: return INT8_MAX;
        case Scalar::U16: return UINT16_MAX;
        case Scalar::I16: return INT16_MAX;
        case Scalar::U32: return UINT32_MAX;
        case Scalar::I32: return INT32_MAX;
    }
    return 0;
}

const char* typeName(Scalar type) {
    switch (type) {
        case Scalar::U8: return "Uint8";
        case Scalar::I8: return "Int8";
        case Scalar::U16: return "Uint16";
        case Scalar::I16: return "Int16";
        case Scalar::U32: return "Uint32";
        case Scalar::I32: return "Int32";
    }
    return "?";
}

int64_t loadField(const uint8_t* bytes, Scalar type) {
    uint32_t raw = 0;
    for (size_t i = 0; i < widthOf(type); ++i) {
        raw |= static_cast<uint32_t>(bytes[i]) << (8 * i);
    }
    switch (type) {
        case Scalar::I8: return static_cast<int8_t>(raw);
        case Scalar::I16: return static_cast<int16_t>(raw);
        case Scalar::I32: return static_cast<int32_t>(raw);
        default: return raw;
    }
}

void storeField(uint8_t* bytes, Scalar type, int64_t value) {
    const auto raw = static_cast<uint32_t>(value);  // low-order bits, two's complement
    for (size_t i = 0; i < widthOf(type); ++i) {
        bytes[i] = static_cast<uint8_t>(raw >> (8 * i));
    }
}

std::string fieldPath(const FieldDef& field, int gainStep) {
    std::string path = field.record;
    if (gainStep >= 0) {
        path += "[" + std::to_string(gainStep) + "]";
    }
    for (const char* part : {field.group, field.name}) {
        if (part[0] != '\0') {
            if (!path.empty()) path += '.';
            path += part;
        }
    }
    return path;
}

bool isFusionField(const FieldDef& field) { return std::strcmp(field.record, "fusion") == 0; }

size_t tableOffsetOf(const FieldDef& field, size_t gainStep) {
    return isFusionField(field) ? ispdsp::tuning::fusionFieldOffset(gainStep, field.offset) : field.offset;
}

const std::array<bool, kTableBytes>& paddingMask() {
    static const std::array<bool, kTableBytes> mask = [] {
        std::array<bool, kTableBytes> m;
        m.fill(true);
        auto cover = [&](size_t offset, size_t width) {
            for (size_t i = 0; i < width; ++i) m[offset + i] = false;
        };
        for (const FieldDef& f : allFields()) {
            for (size_t step = 0; step < (isFusionField(f) ? kGainSteps : 1); ++step) {
                cover(tableOffsetOf(f, step), widthOf(f.type));
            }
        }
        for (size_t step = 0; step < kGainSteps; ++step) {
            cover(nirCurveOffset(step), kNirPoints);
        }
        return m;
    }();
    return mask;
}

}  // namespace ispdsp::tools

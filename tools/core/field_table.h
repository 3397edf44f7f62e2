// Every named value of a parameter table, flattened from the tuning description: where it
// lies, how wide it is and the range the DSP accepts. The JSON codecs, `check`, `diff` and
// `plot` all walk this table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "tuning/file_layout.h"

namespace ispdsp::tools {

enum class Scalar : uint8_t { U8, I8, U16, I16, U32, I32 };

struct FieldDef {
    const char* record;  // JSON key of the record: "" (table level), "fusion" or "ispLaeParam" and the like
    const char* group;   // nested record inside it ("plateLaeParam"), or "" for none
    const char* name;    // field name as in the stored record
    uint16_t offset;     // fusion fields: inside one gain step; all others: inside the table
    Scalar type;
    int64_t dspLow;  // range the DSP accepts; the full width when the DSP takes any value
    int64_t dspHigh;
    const char* unit;     // "" for a plain level or code
    const char* meaning;  // one line for the tuner
};

using ispdsp::tuning::kEntryBytes;
using ispdsp::tuning::kGainSteps;
using ispdsp::tuning::kNirPoints;
using ispdsp::tuning::kTableBytes;
inline constexpr size_t kStepBytes = ispdsp::tuning::kFusionRecordBytes;
inline constexpr size_t kFusionOffset = ispdsp::tuning::kFusionRecordsOffset;
inline constexpr size_t kNirOffset = ispdsp::tuning::kNirCurveOffset;

// Every field in layout order: the table-level flag, the 26 fusion scalars of one gain step,
// then the stage records in table order.
std::span<const FieldDef> allFields();
// The 26 fusion scalars (record "fusion").
std::span<const FieldDef> fusionFields();
// The stage records' fields (everything after the fusion records), in table order.
std::span<const FieldDef> stageFields();
// The table-level flag ispFusionFlag.
const FieldDef& fusionFlagField();

size_t widthOf(Scalar type);
int64_t minOf(Scalar type);
int64_t maxOf(Scalar type);
const char* typeName(Scalar type);  // "Uint16", "Int8", ...

// Little-endian load/store of one field at bytes[offset] (two's complement for signed types).
int64_t loadField(const uint8_t* bytes, Scalar type);
void storeField(uint8_t* bytes, Scalar type, int64_t value);

// True for the scalars of a fusion record (sixteen copies per table, one per gain step).
bool isFusionField(const FieldDef& field);
// Table offset of `field`: in the fusion record of `gainStep` for a fusion scalar, else in the table.
size_t tableOffsetOf(const FieldDef& field, size_t gainStep = 0);
// Table offset of the NIR curve of `gainStep`.
constexpr size_t nirCurveOffset(size_t gainStep) { return ispdsp::tuning::fusionFieldOffset(gainStep, kNirOffset); }

// "ispLaeParam.plateLaeParam.gbce_level", "fusion[3].ep_delta", "ispFusionFlag".
std::string fieldPath(const FieldDef& field, int gainStep = -1);

// True for every table byte that no field covers (the records' padding).
const std::array<bool, kTableBytes>& paddingMask();

}  // namespace ispdsp::tools

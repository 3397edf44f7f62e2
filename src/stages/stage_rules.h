// The rules of one enhancement stage, written as data: how its calculation
// fills the DSP payload, what each debug id changes and how it clamps, and the
// lines the stage logs. One engine (stage_engine.cpp) carries the rules out for
// every stage. Each stage's tables live in its own header (lsm_rules.h, ...) as
// constexpr data, so that host tools hold values to the very same limits.
//
// Tables are built with consteval helpers that reject, at compile time, a
// field that does not fit its width, a bound that the field cannot hold, a
// log line whose conversions do not match its values, and a debug bound that
// differs from the calculation's cap for the same field.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "ispdsp/stages.h"
#include "ispdsp/types.h"

namespace ispdsp::stages {

// Never defined and not constexpr: a table that reaches it does not compile.
void invalidStageTable();

consteval void require(bool condition) {
    if (!condition) invalidStageTable();
}

// An unsigned little-endian integer inside a record, calculation input or payload.
struct Field {
    Uint16 offset;
    Uint8 width;  // bytes: 1, 2 or 4
};

consteval Field fieldAt(std::size_t offset, std::size_t width) {
    require(width == 1 || width == 2 || width == 4);
    require(offset <= 0xFFFF);
    return Field{static_cast<Uint16>(offset), static_cast<Uint8>(width)};
}

consteval Uint64 largestIn(Field field) { return (Uint64{1} << (8 * field.width)) - 1; }

// Names the public types of stage `Name` as In, Payload and Record, which the
// field macros of its tables (INPUT, PAYLOAD, RECORD) refer to.
#define ISPDSP_STAGE_TYPES(Name, Ver)      \
    using In = DSP_##Name##CalculateParam; \
    using Payload = DSP_##Name##Ver;       \
    using Record = CFG_DSP_##Name##Ver

// Field references in a stage file, which names its three types In (calculation
// input), Payload and Record. Offsets and widths come from the public layouts.
#define ISPDSP_STAGE_FIELD(Type, member) \
    ::ispdsp::stages::fieldAt(offsetof(Type, member), sizeof(std::declval<Type&>().member))
#define INPUT(member) ISPDSP_STAGE_FIELD(In, member)
#define PAYLOAD(member) ISPDSP_STAGE_FIELD(Payload, member)
#define RECORD(member) ISPDSP_STAGE_FIELD(Record, member)

// ---- Calculation: one step per payload field, in the order they are written ----

enum class Rule : Uint8 {
    Copy,   // unchanged
    Cap,    // the smaller of the value and `high`
    Range,  // capped at `high`, then raised to `low`
    Flag,   // 1 if nonzero, else 0 (debug_pin, manual switches, enable)
};

struct CalcStep {
    Field to;    // payload field
    Field from;  // calculation input field (the record sits at its start)
    Rule rule;
    Uint32 low;
    Uint32 high;
};

consteval CalcStep copy(Field to, Field from) {
    require(from.width <= to.width);
    return CalcStep{to, from, Rule::Copy, 0, 0};
}
consteval CalcStep cap(Field to, Field from, Uint32 high) {
    require(high <= largestIn(to));
    return CalcStep{to, from, Rule::Cap, 0, high};
}
consteval CalcStep range(Field to, Field from, Uint32 low, Uint32 high) {
    require(low <= high && high <= largestIn(to));
    return CalcStep{to, from, Rule::Range, low, high};
}
consteval CalcStep flag(Field to, Field from) { return CalcStep{to, from, Rule::Flag, 0, 1}; }

// ---- Log lines: a format and the fields whose values it shows, in order ----

inline constexpr std::size_t kMaxLineValues = 8;

// Counts the conversions of a format and requires each to be `conversion`.
consteval std::size_t conversionsOf(const char* format, char conversion) {
    std::size_t count = 0;
    for (const char* c = format; *c != '\0'; ++c) {
        if (*c == '%') {
            require(c[1] == conversion);
            ++count;
        }
    }
    return count;
}

struct LogLine {
    const char* format;  // the full line; every conversion is %d of one value
    Uint8 count;
    std::array<Field, kMaxLineValues> values;
};

template <class... Fields>
consteval LogLine line(const char* format, Fields... values) {
    static_assert(sizeof...(Fields) <= kMaxLineValues, "too many values for one log line");
    require(conversionsOf(format, 'd') == sizeof...(Fields));
    return LogLine{format, static_cast<Uint8>(sizeof...(Fields)), {values...}};
}

// ---- Debug setter: one entry per id, the table index is the id ----

enum class Clamp : Uint8 {
    NoField,    // id accepted: nothing stored, nothing logged
    Range,      // capped at `high`, then raised to `low`
    UpperOnly,  // capped at `high`; a negative value is not raised and keeps its low-order bits
};

struct DebugId {
    Field field;  // record field
    Clamp clamp;
    Int32 low;
    Int32 high;
    const char* line;  // confirmation line, one %u of the stored value; null for NoField
};

consteval DebugId between(Field field, Int32 low, Int32 high, const char* line) {
    require(0 <= low && low <= high && static_cast<Uint64>(high) <= largestIn(field));
    require(conversionsOf(line, 'u') == 1);
    return DebugId{field, Clamp::Range, low, high, line};
}
consteval DebugId atMost(Field field, Int32 high, const char* line) {
    require(0 <= high && static_cast<Uint64>(high) <= largestIn(field));
    require(conversionsOf(line, 'u') == 1);
    return DebugId{field, Clamp::UpperOnly, 0, high, line};
}
// A switch: any positive value stores 1, zero or a negative value stores 0.
consteval DebugId onOff(Field field, const char* line) { return between(field, 0, 1, line); }
consteval DebugId noField() { return DebugId{Field{0, 1}, Clamp::NoField, 0, 0, nullptr}; }

// ---- A whole stage ----

struct StageRules {
    std::span<const CalcStep> calc;
    std::span<const LogLine> setLines;    // logged after the calculation, from the payload
    std::span<const DebugId> ids;         // index = pcmd_id
    std::span<const LogLine> printLines;  // from the record
};

consteval bool fits(Field field, std::size_t size) { return field.offset + field.width <= size; }

constexpr bool writtenByCalc(Field field, std::span<const CalcStep> calc) {
    for (const CalcStep& step : calc) {
        if (step.to.offset == field.offset && step.to.width == field.width) return true;
    }
    return false;
}

// The debug bound of a field must equal what the calculation lets through.
consteval void requireSameBounds(const DebugId& id, std::span<const CalcStep> calc) {
    for (const CalcStep& step : calc) {
        if (step.from.offset != id.field.offset) continue;
        require(step.from.width == id.field.width);
        switch (step.rule) {
            case Rule::Copy: require(static_cast<Uint64>(id.high) == largestIn(id.field)); break;
            case Rule::Cap: require(static_cast<Uint32>(id.high) == step.high && id.low == 0); break;
            case Rule::Range:
                require(id.clamp == Clamp::Range);
                require(static_cast<Uint32>(id.low) == step.low && static_cast<Uint32>(id.high) == step.high);
                break;
            case Rule::Flag: require(id.clamp == Clamp::Range && id.low == 0 && id.high == 1); break;
        }
    }
}

// `In` must start with `Record` (the calculation reads record fields at record offsets).
template <class In, class Payload, class Record>
consteval StageRules stage(std::span<const CalcStep> calc, std::span<const LogLine> setLines,
                           std::span<const DebugId> ids, std::span<const LogLine> printLines) {
    for (const CalcStep& step : calc) require(fits(step.to, sizeof(Payload)) && fits(step.from, sizeof(In)));
    for (const LogLine& l : setLines) {
        for (std::size_t i = 0; i < l.count; ++i) require(writtenByCalc(l.values[i], calc));
    }
    for (const DebugId& id : ids) {
        if (id.clamp == Clamp::NoField) continue;
        require(fits(id.field, sizeof(Record)));
        requireSameBounds(id, calc);
    }
    for (const LogLine& l : printLines) {
        for (std::size_t i = 0; i < l.count; ++i) require(fits(l.values[i], sizeof(Record)));
    }
    return StageRules{calc, setLines, ids, printLines};
}

}  // namespace ispdsp::stages

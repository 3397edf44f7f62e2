// Carries out the stage tables: null checks, capping, clamping, storing and logging.
#include "stages/stage_engine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>

#include "common/log.h"

namespace ispdsp::stages {
namespace {

template <class T>
Uint32 loadAs(const Uint8* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class T>
void storeAs(Uint8* at, Uint32 value) {
    const T narrowed = static_cast<T>(value);  // keeps the low-order bits
    std::memcpy(at, &narrowed, sizeof narrowed);
}

Uint32 load(const Uint8* base, Field field) {
    switch (field.width) {
        case 1: return loadAs<Uint8>(base + field.offset);
        case 2: return loadAs<Uint16>(base + field.offset);
        default: return loadAs<Uint32>(base + field.offset);
    }
}

void store(Uint8* base, Field field, Uint32 value) {
    switch (field.width) {
        case 1: storeAs<Uint8>(base + field.offset, value); break;
        case 2: storeAs<Uint16>(base + field.offset, value); break;
        default: storeAs<Uint32>(base + field.offset, value); break;
    }
}

Uint32 apply(const CalcStep& step, Uint32 value) {
    switch (step.rule) {
        case Rule::Copy: return value;
        case Rule::Cap: return std::min(value, step.high);
        case Rule::Range: return std::max(std::min(value, step.high), step.low);
        case Rule::Flag: return value != 0 ? 1u : 0u;
    }
    return value;
}

Int32 clamp(const DebugId& id, Int32 value) {
    const Int32 capped = std::min(value, id.high);
    return id.clamp == Clamp::Range ? std::max(capped, id.low) : capped;
}

// The error line names the public function, not this engine.
void logNull(CallSite site, const char* name) {
    OSA_logWrite(kLogErrorLevel, kLogErrorCategory, "[DSP_DRV] ERROR  (%s|%d): Input NULL POINT %s!\n",
                 site.function, site.line, name);
}

// Every conversion of a table line is %d: each value goes as the int that C
// would pass for the field (a Uint32 above INT32_MAX shows negative). Every
// slot is always passed; the format converts only the first `count`.
void logLine(const LogLine& line, const Uint8* base) {
    std::array<Int32, kMaxLineValues> v{};
    std::transform(line.values.begin(), line.values.begin() + line.count, v.begin(),
                   [base](Field f) { return static_cast<Int32>(load(base, f)); });
    std::apply([&line](auto... value) { OSA_logWrite(kLogInfoLevel, kLogInfoCategory, line.format, value...); }, v);
}

}  // namespace

Int32 calculate(const StageRules& rules, CallSite site, const void* input, const char* inputName, void* payload) {
    if (input == nullptr) {
        logNull(site, inputName);
        return -1;
    }
    if (payload == nullptr) {
        logNull(site, "param");
        return -1;
    }
    const auto* in = static_cast<const Uint8*>(input);
    auto* out = static_cast<Uint8*>(payload);
    for (const CalcStep& step : rules.calc) store(out, step.to, apply(step, load(in, step.from)));
    for (const LogLine& line : rules.setLines) logLine(line, out);
    return 0;
}

Int32 debugSet(const StageRules& rules, CallSite site, void* record, const char* recordName, Int32 pcmd_id,
               Int32 value) {
    if (record == nullptr) {
        logNull(site, recordName);
        return -1;
    }
    const auto id = static_cast<Uint32>(pcmd_id);  // a negative id is a huge unknown one
    if (id >= rules.ids.size()) return 0;
    const DebugId& entry = rules.ids[id];
    if (entry.clamp == Clamp::NoField) return 0;
    auto* bytes = static_cast<Uint8*>(record);
    store(bytes, entry.field, static_cast<Uint32>(clamp(entry, value)));
    OSA_logWrite(kLogInfoLevel, kLogInfoCategory, entry.line, load(bytes, entry.field));
    return 0;
}

Int32 print(const StageRules& rules, CallSite site, const void* record, const char* recordName) {
    if (record == nullptr) {
        logNull(site, recordName);
        return -1;
    }
    for (const LogLine& line : rules.printLines) logLine(line, static_cast<const Uint8*>(record));
    return 0;
}

}  // namespace ispdsp::stages

// The contract of one enhancement stage as test data: which input field lands
// in which payload field with which values, what each debug id stores for
// values at and beyond its bounds, which ids are silent, and the exact lines
// of a print and of a calculation. stage_family_test.cpp runs the checks;
// each stage_*_test.cpp instantiates them for its stages.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/stages.h"

namespace stage_test {

struct FieldAt {
    size_t offset;
    size_t width;
};
#define STAGE_AT(Type, member) ::stage_test::FieldAt{offsetof(Type, member), sizeof(std::declval<Type&>().member)}

inline uint32_t allOnes(FieldAt f) { return f.width == 4 ? 0xFFFFFFFFu : (1u << (8 * f.width)) - 1u; }

// ---- Calculation: input value -> payload value, per mapped field ----

struct CalcCase {
    uint32_t in;
    uint32_t out;
};
struct CalcRow {
    FieldAt from;  // in the calculation input
    FieldAt to;    // in the payload
    std::vector<CalcCase> cases;
};

inline CalcRow calcRow(FieldAt from, FieldAt to, std::vector<CalcCase> cases) {
    std::erase_if(cases, [&](const CalcCase& c) { return c.in > allOnes(from); });
    return CalcRow{from, to, std::move(cases)};
}
inline CalcRow copied(FieldAt from, FieldAt to) {
    return calcRow(from, to, {{0, 0}, {1, 1}, {allOnes(from), allOnes(from)}});
}
inline CalcRow capped(FieldAt from, FieldAt to, uint32_t cap) {
    return calcRow(from, to, {{0, 0}, {cap - 1, cap - 1}, {cap, cap}, {cap + 1, cap}, {allOnes(from), cap}});
}
inline CalcRow ranged(FieldAt from, FieldAt to, uint32_t low, uint32_t high) {
    return calcRow(from, to,
                   {{0, low}, {low - 1, low}, {low, low}, {high, high}, {high + 1, high}, {allOnes(from), high}});
}
inline CalcRow flagged(FieldAt from, FieldAt to) {
    return calcRow(from, to, {{0, 0}, {1, 1}, {7, 1}, {allOnes(from), 1}});
}

// ---- Debug setter: value -> stored value and its confirmation line ----

struct SetCase {
    int32_t value;
    uint32_t stored;
};
struct IdRow {
    int32_t id;
    FieldAt field;  // in the record
    std::string line;  // format with one %u of the stored value
    std::vector<SetCase> cases;
};

inline IdRow between(int32_t id, FieldAt f, int32_t low, int32_t high, std::string line,
                     std::vector<SetCase> more = {}) {
    std::vector<SetCase> cases = {{low, uint32_t(low)},       {high, uint32_t(high)},  {high + 1, uint32_t(high)},
                                  {INT32_MAX, uint32_t(high)}, {low - 1, uint32_t(low)}, {-1, uint32_t(low)},
                                  {INT32_MIN, uint32_t(low)}};
    cases.insert(cases.end(), more.begin(), more.end());
    return IdRow{id, f, std::move(line), std::move(cases)};
}
// Upper bound only: a negative value keeps its low-order bits.
inline IdRow atMost(int32_t id, FieldAt f, int32_t high, std::string line, std::vector<SetCase> more = {}) {
    std::vector<SetCase> cases = {{0, 0},
                                  {high, uint32_t(high)},
                                  {high + 1, uint32_t(high)},
                                  {INT32_MAX, uint32_t(high)},
                                  {-1, allOnes(f)},
                                  {-2, allOnes(f) - 1},
                                  {INT32_MIN, uint32_t(INT32_MIN) & allOnes(f)}};
    cases.insert(cases.end(), more.begin(), more.end());
    return IdRow{id, f, std::move(line), std::move(cases)};
}

// ---- Exact log lines for one filled record or input ----

struct Assign {
    FieldAt field;
    uint32_t value;
};
struct LinesExample {
    std::vector<Assign> assigns;     // applied to a zeroed record / input
    std::vector<std::string> lines;  // expected, in order
};

// ---- The stage through its public functions ----

struct StageApi {
    const char* name;
    size_t inputSize, payloadSize, recordSize;
    int32_t (*calculate)(void* input, void* payload);
    int32_t (*debugSet)(void* record, int32_t id, int32_t value);
    int32_t (*print)(void* record);
    const char* calculateName;
    const char* debugSetName;
    const char* printName;
    const char* inputParam;
    const char* recordParam;
};

#define STAGE_API(Name, Ver, inputParam, recordParam)                                                   \
    ::stage_test::StageApi {                                                                             \
        #Name, sizeof(DSP_##Name##CalculateParam), sizeof(DSP_##Name##Ver), sizeof(CFG_DSP_##Name##Ver), \
            [](void* in, void* out) {                                                                    \
                return DRV_dspCalculate##Name(static_cast<DSP_##Name##CalculateParam*>(in),             \
                                              static_cast<DSP_##Name##Ver*>(out));                       \
            },                                                                                           \
            [](void* rec, int32_t id, int32_t v) {                                                       \
                return DRV_dspdbg##Name(static_cast<CFG_DSP_##Name##Ver*>(rec), id, v);                  \
            },                                                                                           \
            [](void* rec) { return DRV_dspdbg##Name##Print(static_cast<CFG_DSP_##Name##Ver*>(rec)); }, \
            "DRV_dspCalculate" #Name, "DRV_dspdbg" #Name, "DRV_dspdbg" #Name "Print", inputParam,        \
            recordParam                                                                                  \
    }

struct StageCase {
    StageApi api;
    std::vector<CalcRow> calc;  // every payload field the calculation writes
    std::vector<IdRow> ids;     // every id that stores a value
    int32_t idCount;            // ids at or above are unknown
    std::vector<int32_t> silentIds;  // known ids that store nothing
    LinesExample calculationLines;   // input -> set lines (none for some stages)
    LinesExample printLines;         // record -> print lines
};

class StageContract : public testing::TestWithParam<StageCase> {};

// Failure messages name the stage instead of dumping its bytes.
inline void PrintTo(const StageCase& stage, std::ostream* os) { *os << stage.api.name; }

inline std::string stageName(const testing::TestParamInfo<StageCase>& info) { return info.param.api.name; }

}  // namespace stage_test

// The contract of one enhancement stage as test data: one row per payload field
// the calculation writes (input field, payload field, the documented range, the
// debug id that stores the same record field), and the exact lines of a print
// and of a calculation for generated inputs. stage_test.cpp runs the checks.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"

namespace stage_test {

struct FieldAt {
    size_t offset;
    size_t width;
};
#define STAGE_AT(Type, member) ::stage_test::FieldAt{offsetof(Type, member), sizeof(std::declval<Type&>().member)}

inline uint32_t allOnes(FieldAt f) { return f.width == 4 ? 0xFFFFFFFFu : (1u << (8 * f.width)) - 1u; }

enum class Kind {
    Held,    // unsigned input held to [low, high] (a copy when the range is the whole width)
    Flag,    // 1 for any nonzero input
    Signed,  // signed input held to [low, high]
};

struct Row {
    FieldAt in, out, rec;  // rec: the record field behind debug id `id` (-1: no id)
    int32_t id;
    int32_t low, high;
    Kind kind;
    const char* name;  // as the confirmation line names it
};

// A record field: the calculation input starts with the record, so the input
// field sits at the record field's offset.
#define ROW(recMember, outMember, id, low, high, name) \
    ::stage_test::Row{STAGE_AT(Rec, recMember), STAGE_AT(Out, outMember), STAGE_AT(Rec, recMember), id, low, high, \
                      ::stage_test::Kind::Held, name}
#define FLAG_ROW(recMember, outMember, id, name) \
    ::stage_test::Row{STAGE_AT(Rec, recMember), STAGE_AT(Out, outMember), STAGE_AT(Rec, recMember), id, 0, 1, \
                      ::stage_test::Kind::Flag, name}
// An input the record does not have (debug_pin, scene_mode): no debug id.
#define INPUT_ROW(inMember, outMember, low, high, kind) \
    ::stage_test::Row{STAGE_AT(In, inMember), STAGE_AT(Out, outMember), {0, 1}, -1, low, high, kind, ""}
#define PIN_ROW(outMember) INPUT_ROW(debug_pin, outMember, 0, 1, ::stage_test::Kind::Flag)

struct StageApi {
    const char* name;
    size_t inputSize, payloadSize, recordSize;
    int32_t (*calculate)(void* input, void* payload);
    int32_t (*debugSet)(void* record, int32_t id, int32_t value);
    int32_t (*print)(void* record);
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
            inputParam, recordParam                                                                      \
    }

struct StageCase {
    StageApi api;
    std::vector<Row> rows;  // every payload field the calculation writes, in the stage's order
    int32_t idCount;        // ids at or above are unknown; ids below without a row store nothing
    bool upperOnly;         // the setter of a field with low 0 caps only: a negative value keeps its low bits
    std::string confirmHead, confirmTail;  // "<head><name> is <value><tail>"
    // Row k's input is 2k + 1: the calculation's set lines for it (some stages log none).
    std::vector<std::string> setLines;
    // Debug id 0's field holds all ones, id k's field 10 + k: the print lines for it.
    std::vector<std::string> printLines;
};

inline void PrintTo(const StageCase& stage, std::ostream* os) { *os << stage.api.name; }
inline std::string stageName(const testing::TestParamInfo<StageCase>& info) { return info.param.api.name; }

}  // namespace stage_test

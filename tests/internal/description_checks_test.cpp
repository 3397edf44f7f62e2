// The checks that guard the stage descriptions run at compile time on the one
// valid description we ship, so a check that had stopped refusing anything
// would go unnoticed. Here each meets descriptions that are wrong by one.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "dsp/dsp_stage_table.h"
#include "tuning/stage_list.h"

namespace {

using ispdsp::DspFieldMove;
using ispdsp::DspMove;
using ispdsp::DspStageDesc;
using ispdsp::dspStageFits;

constexpr std::size_t kMessageBytes = sizeof(DSP_AEW_CFG_S);

DspStageDesc stageOf(Uint8 count, DspFieldMove first, DspFieldMove second = {}) {
    return {0, false, false, count, {{first, second}}};
}
DspFieldMove copy(std::size_t messageAt, std::size_t recordAt, std::size_t bytes) {
    return {static_cast<Uint16>(messageAt), static_cast<Uint16>(recordAt), static_cast<Uint16>(bytes), DspMove::Copy};
}

TEST(StageMoveCheck, EachMoveStaysInsideTheRecordAndTheMessage) {
    const DspFieldMove fits = copy(16, 0, 8);
    struct Case {
        const char* what;
        DspStageDesc stage;
        bool fits;
    };
    const Case cases[] = {
        {"no move", stageOf(0, fits), false},
        {"both moves", stageOf(2, fits, fits), true},
        {"more moves than slots", stageOf(3, fits, fits), false},
        {"record end reached", stageOf(1, copy(16, 56, 8)), true},
        {"record end passed", stageOf(1, copy(16, 57, 8)), false},
        {"second move passes the record end", stageOf(2, fits, copy(16, 57, 8)), false},
        {"message end reached", stageOf(1, copy(kMessageBytes - 8, 0, 8)), true},
        {"message end passed", stageOf(1, copy(kMessageBytes - 7, 0, 8)), false},
        // A 16-bit move reads the whole 32-bit source; an address move reads nothing past one byte.
        {"low 16 of the last word", stageOf(1, {16, 60, 2, DspMove::Low16}), true},
        {"low 16 past the end", stageOf(1, {16, 61, 2, DspMove::Low16}), false},
        {"address of the last byte", stageOf(1, {16, 63, 8, DspMove::AddressOf}), true},
        {"address past the end", stageOf(1, {16, 64, 8, DspMove::AddressOf}), false},
        {"output mode of the last word", stageOf(1, {16, 60, 4, DspMove::OutputMode}), true},
        {"output mode past the end", stageOf(1, {16, 61, 4, DspMove::OutputMode}), false},
    };
    for (const Case& c : cases) EXPECT_EQ(dspStageFits(c.stage, 64), c.fits) << c.what;
}

TEST(FieldGroupCheck, TwoPathsShareAGroupOnlyWhenBothAreDirectOrInTheSamePart) {
    using ispdsp::tuning::sameGroup;
    struct Case {
        const char* a;
        const char* b;
        bool same;
    };
    const Case cases[] = {
        {"gamma", "level", true},     {"plate.a", "plate.b", true},  {"plate.a", "window.a", false},
        {"plate.a", "plates.a", false}, {"plates.a", "plate.a", false}, {"plate.a", "plate", false},
        {"plate", "plate.a", false},  {"", "", true},                {"", "plate.a", false},
    };
    for (const Case& c : cases) EXPECT_EQ(sameGroup(c.a, c.b), c.same) << c.a << " / " << c.b;
}

template <typename T>
void expectWholeWidth() {
    const ispdsp::tuning::NamedField f{"f", 0, sizeof(T), std::numeric_limits<T>::is_signed, "", ""};
    const ispdsp::tuning::Range r = ispdsp::tuning::wholeWidth(f);
    EXPECT_EQ(r.low, std::numeric_limits<T>::min()) << sizeof(T);
    EXPECT_EQ(r.high, std::numeric_limits<T>::max()) << sizeof(T);
}

// A field that no calculation step bounds may take every value of its type.
TEST(FieldRange, WithoutACalculationRuleItIsTheWholeType) {
    expectWholeWidth<std::uint8_t>();
    expectWholeWidth<std::int8_t>();
    expectWholeWidth<std::uint16_t>();
    expectWholeWidth<std::int16_t>();
    expectWholeWidth<std::uint32_t>();
    expectWholeWidth<std::int32_t>();
}

}  // namespace

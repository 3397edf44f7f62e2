// The checks that guard the stage descriptions run at compile time on the one
// valid description we ship, so a check that had stopped refusing anything
// would go unnoticed. Here each meets descriptions that are wrong by one.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "dsp/dsp_stage_table.h"
#include "fusion/fusion_fields.h"
#include "tuning/stage_list.h"
#include "tuning/table_types.h"

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
        {"a move of no bytes", stageOf(2, fits, copy(24, 0, 0)), false},
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

// Two records of a made-up table: the first 8 bytes (a 4-byte, two 1-byte
// fields and 2 bytes of padding), the second 4 bytes at offset 8 of a 12-byte table.
TEST(RecordCoverCheck, OnlyAlignmentPaddingMayBeLeftOut) {
    using ispdsp::tuning::NamedField;
    using ispdsp::tuning::TableStage;
    using ispdsp::tuning::storedFieldsCoverTheirRecords;
    struct Case {
        const char* what;
        std::vector<NamedField> first;
        std::size_t firstBytes;
        std::size_t secondAt;
        std::size_t tableEnd;
        bool covered;
    };
    const auto f = [](const char* name, Uint16 offset, Uint8 width) { return NamedField{name, offset, width, false, "", ""}; };
    const std::vector<NamedField> shipped = {f("a", 0, 4), f("b", 4, 1), f("c", 5, 1)};
    const Case cases[] = {
        {"as shipped", shipped, 8, 8, 12, true},
        {"table tail of 3 bytes", shipped, 8, 8, 15, true},
        {"table tail of 4 bytes", shipped, 8, 8, 16, false},
        {"gap of 3 before the next record", shipped, 8, 11, 15, true},
        {"gap of 4 before the next record", shipped, 8, 12, 16, false},
        {"records overlapping", shipped, 8, 7, 11, false},
        {"record end padding of 3", shipped, 9, 9, 13, true},
        {"record end padding of 4", shipped, 10, 10, 14, false},
        {"a byte record with a padding byte", {f("b", 0, 1)}, 2, 2, 6, false},
        {"byte gap before a byte", {f("a", 0, 4), f("b", 4, 1), f("c", 6, 1)}, 8, 8, 12, false},
        {"3-byte gap before a word", {f("b", 0, 1), f("a", 4, 4)}, 8, 8, 12, true},
        {"4-byte gap before a word", {f("b", 0, 1), f("a", 5, 4)}, 12, 12, 16, false},
        {"fields overlapping", {f("a", 0, 4), f("b", 3, 1)}, 4, 4, 8, false},
        // A nested part ends in padding to its own widest field.
        {"a part padded to its word", {f("p.a", 0, 4), f("p.b", 4, 1), f("c", 8, 1)}, 12, 12, 16, true},
        {"a byte gap inside a part", {f("p.a", 0, 2), f("p.b", 3, 1)}, 4, 4, 8, false},
        {"a part padded past its word", {f("p.a", 0, 4), f("p.b", 4, 1), f("c", 9, 1)}, 12, 12, 16, false},
    };
    const auto stageAt = [](std::size_t offset, std::size_t bytes, std::span<const NamedField> fields) {
        TableStage stage{};
        stage.tableOffset = static_cast<Uint16>(offset);
        stage.recordBytes = static_cast<Uint16>(bytes);
        stage.storedFields = fields;
        return stage;
    };
    const std::vector<NamedField> second = {f("d", 0, 2), f("e", 2, 2)};
    for (const Case& c : cases) {
        const TableStage stages[] = {stageAt(0, c.firstBytes, c.first), stageAt(c.secondAt, 4, second)};
        EXPECT_EQ(storedFieldsCoverTheirRecords(stages, 0, c.tableEnd), c.covered) << c.what;
    }
    const TableStage late[] = {stageAt(4, 8, shipped)};
    EXPECT_TRUE(storedFieldsCoverTheirRecords(late, 1, 12)) << "the first record 3 bytes after the table start";
    EXPECT_FALSE(storedFieldsCoverTheirRecords(late, 0, 12)) << "the first record 4 bytes after the table start";
    EXPECT_FALSE(storedFieldsCoverTheirRecords(late, 5, 13)) << "the first record before the table start";
}

// A log line may only show payload fields that a calculation step writes, whole.
TEST(SetLineCheck, AFieldIsWrittenOnlyByAStepToTheSameOffsetAndWidth) {
    using ispdsp::stages::CalcStep;
    using ispdsp::stages::Field;
    using ispdsp::stages::writtenByCalc;
    const CalcStep calc[] = {{{4, 2}, {0, 2}, ispdsp::stages::Rule::Copy, 0, 0},
                             {{8, 1}, {2, 1}, ispdsp::stages::Rule::Copy, 0, 0}};
    EXPECT_TRUE(writtenByCalc({4, 2}, calc));
    EXPECT_TRUE(writtenByCalc({8, 1}, calc));
    EXPECT_FALSE(writtenByCalc({4, 1}, calc)) << "same offset, other width";
    EXPECT_FALSE(writtenByCalc({6, 2}, calc)) << "same width, other offset";
    EXPECT_FALSE(writtenByCalc({0, 2}, calc)) << "an input offset";
}

// Three fields of a made-up 4-byte block: a 16-bit one and two bytes.
TEST(ScalarFieldCheck, FieldsFollowEachOtherWithAWidthOfOneOrTwoAndARange) {
    using ispdsp::fusion::ScalarField;
    const auto field = [](Uint8 offset, Uint8 width, Int32 lo, Int32 hi) {
        ScalarField f{};
        f.offset = offset;
        f.width = width;
        f.lo = lo;
        f.hi = hi;
        return f;
    };
    struct Case {
        const char* what;
        std::vector<ScalarField> fields;
        bool tiles;
    };
    const Case cases[] = {
        {"as described", {field(0, 2, 0, 9), field(2, 1, 5, 5), field(3, 1, 0, 1)}, true},
        {"a gap", {field(0, 2, 0, 9), field(3, 1, 0, 1), field(4, 1, 0, 1)}, false},
        {"short of the block", {field(0, 2, 0, 9), field(2, 1, 0, 1)}, false},
        {"a 4-byte field", {field(0, 4, 0, 9)}, false},
        {"a field of no bytes", {field(0, 2, 0, 9), field(2, 0, 0, 1), field(2, 1, 0, 1), field(3, 1, 0, 1)}, false},
        {"an empty range", {field(0, 2, 0, 9), field(2, 1, 5, 4), field(3, 1, 0, 1)}, false},
    };
    for (const Case& c : cases) EXPECT_EQ(ispdsp::fusion::fieldsTileScalarBytes(c.fields, 4), c.tiles) << c.what;
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

// Each of the 120 types has a name of its own, so each lies in one scene and row;
// a value outside them has none.
TEST(TableTypeNames, EachTypeHasItsOwnNameAndNoOtherValueHasOne) {
    using ispdsp::tuning::tableTypeName;
    std::set<std::string> names;
    for (std::int32_t type = 0; type < ispdsp::tuning::kTableTypes; ++type) {
        const std::string name = tableTypeName(type).text;
        EXPECT_EQ(name.rfind("PARAM_", 0), 0u) << type;
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 120u);
    EXPECT_STREQ(tableTypeName(-1).text, "");
    EXPECT_STREQ(tableTypeName(ispdsp::tuning::kTableTypes).text, "");
}

}  // namespace

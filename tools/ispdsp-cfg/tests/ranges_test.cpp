// The tool's range check flags exactly the values the library would change: fusion fields
// through the gain blend's output limits, stage fields through their debug setters (whose
// bounds are the calculations' caps). The oracle is the library's behaviour, not a table.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "file_checks.h"
#include "ispdsp/fusion.h"
#include "ispdsp/param_table.h"
#include "ispdsp/stages.h"
#include "ispdsp_host/scoped.h"
#include "tool_test_support.h"
#include "tuning/stage_list.h"

namespace {

using namespace ispdsp::tools;

// True when `check`'s range findings flag `value` in `field` of an otherwise clean table.
bool toolFlags(const FieldDef& field, size_t at, int64_t value) {
    static const TableEntry clean = ispcfg_test::sampleImage().entries[0];
    TableEntry table = clean;
    storeField(table.bytes.data() + at, field.type, value);
    const Findings findings = tableFindings({table});
    return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.kind == FindingKind::Range; });
}

// Values at and around the tool's bounds and the type's ends, within the type and [low, high].
std::vector<int64_t> probes(const FieldDef& f, int64_t low, int64_t high) {
    std::vector<int64_t> out;
    for (int64_t v : {minOf(f.type), int64_t{0}, f.dspLow - 1, f.dspLow, f.dspHigh, f.dspHigh + 1, maxOf(f.type)}) {
        if (v >= std::max(minOf(f.type), low) && v <= std::min(maxOf(f.type), high)) out.push_back(v);
    }
    return out;
}

TEST(Ranges, FusionFieldsAreFlaggedWhenTheBlendWouldClampThem) {
    static DSP_FusionCalculateParam input{};  // 8.7 kB: kept off the stack
    DRV_gainInterParam gain{};                // start = end = step 0, coefficient 0
    input.gainInterParam = &gain;
    std::array<Uint8, FUSION_NIR_POINTS> curve{};
    for (const FieldDef& f : fusionFields()) {
        for (int64_t v : probes(f, INT64_MIN, INT64_MAX)) {
            storeField(reinterpret_cast<uint8_t*>(&input.fusionParam[0]) + f.offset, f.type, v);
            DSP_FusionV2722 out{};
            out.fusionParam.w_nir = curve.data();
            ASSERT_EQ(DRV_dspCalculateFusion(&input, &out), 0);
            const bool clamped = loadField(reinterpret_cast<const uint8_t*>(&out.fusionParam) + f.offset, f.type) != v;
            EXPECT_EQ(toolFlags(f, kFusionOffset + f.offset, v), clamped) << f.name << " = " << v;
        }
    }
}

using Setter = Int32 (*)(CFG_DspIspCfgParam&, Int32 id, Int32 value);
// clang-format off
#define STAGE(record, Name) \
    {#record, [](CFG_DspIspCfgParam& t, Int32 id, Int32 v) { return DRV_dspdbg##Name(&t.record, id, v); }}

// Each record's debug setter, called through the public ABI; which id changes which field is
// the rules' own id table (debugIdOf).
const std::map<std::string, Setter> kSetters = {
    STAGE(ispLsmParam, Lsm),     STAGE(ispLaeParam, Lae),   STAGE(ispSbm3dParam, Sbm3d),
    STAGE(ispYuv2yuvParam, Yuv2yuv), STAGE(ispFusionPlateParam, FusionPlate), STAGE(ispFg2cParam, Fg2c),
    STAGE(ispLleParam, Lle),     STAGE(ispYlwdrParam, Ylwdr), STAGE(ispY2dParam, Y2d),
    STAGE(ispDlaeParam, Dlae), STAGE(ispDlcfaParam, Dlcfa), STAGE(ispSadeParam, Sade),
};
// clang-format on

TEST(Ranges, StageFieldsAreFlaggedWhenTheLibraryWouldClampThem) {
    // The setters' confirmation lines are not wanted here.
    const ispdsp::host::ScopedLogSink quiet([](void*, int32_t, int32_t, const char*) {}, nullptr);
    size_t probed = 0, next = 0;
    for (const ispdsp::tuning::TableStage& stage : ispdsp::tuning::kTableStages) {
        for (const ispdsp::tuning::NamedField& stored : stage.storedFields) {
            const FieldDef& f = stageFields()[next++];
            const std::optional<int> found = ispdsp::tuning::debugIdOf(stage, stored);
            if (!found) continue;  // no setter changes this field
            const int id = *found;
            ASSERT_TRUE(kSetters.count(f.record)) << f.record;
            const Setter& set = kSetters.at(f.record);
            // A setter keeps the low bits of a negative value in an unsigned field: no clamp to see.
            for (int64_t v : probes(f, minOf(f.type) < 0 ? INT32_MIN : 0, INT32_MAX)) {
                CFG_DspIspCfgParam table{};
                ASSERT_EQ(set(table, id, static_cast<Int32>(v)), 0);
                const bool clamped = loadField(reinterpret_cast<const uint8_t*>(&table) + f.offset, f.type) != v;
                EXPECT_EQ(toolFlags(f, f.offset, v), clamped) << fieldPath(f) << " (debug id " << id << ") = " << v;
                ++probed;
            }
        }
    }
    EXPECT_EQ(next, stageFields().size());
    EXPECT_GT(probed, 77u * 3);  // every stored stage field, several values each
}

}  // namespace

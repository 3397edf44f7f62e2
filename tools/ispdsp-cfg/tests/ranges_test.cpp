// The tool's one range table agrees with the library: fusion fields through the gain blend's
// output limits, stage fields through their debug setters, whose bounds are the calculations'
// caps (upper bound from INT32_MAX, lower bound from 0).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>

#include "field_table.h"
#include "ispdsp/fusion.h"
#include "ispdsp/param_table.h"
#include "ispdsp/stages.h"
#include "ispdsp_host/host.h"

namespace {

using namespace ispcfg;

// Silences the library's confirmation lines for the duration of a test.
class QuietLog {
public:
    QuietLog() {
        ispdsp_host_get_log_sink(&sink_, &ctx_);
        ispdsp_host_set_log_sink([](void*, int32_t, int32_t, const char*) {}, nullptr);
    }
    ~QuietLog() { ispdsp_host_set_log_sink(sink_, ctx_); }

private:
    ispdsp_host_log_sink sink_ = nullptr;
    void* ctx_ = nullptr;
};

TEST(Ranges, FusionFieldsMatchTheBlendOutputLimits) {
    static DSP_FusionCalculateParam input{};  // 8.7 kB: kept off the stack
    DRV_gainInterParam gain{};
    input.gainInterParam = &gain;  // start = end = step 0, coefficient 0
    std::array<Uint8, FUSION_NIR_POINTS> curve{};
    for (const FieldDef& f : fusionFields()) {
        for (int64_t v : {minOf(f.type), f.dspLow - 1, f.dspLow, f.dspHigh, f.dspHigh + 1, maxOf(f.type)}) {
            if (v < minOf(f.type) || v > maxOf(f.type)) continue;
            auto* rec = reinterpret_cast<uint8_t*>(&input.fusionParam[0]);
            storeField(rec + f.offset, f.type, v);
            DSP_FusionV2722 out{};
            out.fusionParam.w_nir = curve.data();
            ASSERT_EQ(DRV_dspCalculateFusion(&input, &out), 0);
            const int64_t got = loadField(reinterpret_cast<const uint8_t*>(&out.fusionParam) + f.offset, f.type);
            EXPECT_EQ(got, std::clamp(v, f.dspLow, f.dspHigh)) << f.name << " = " << v;
        }
    }
}

using Setter = std::function<Int32(CFG_DspIspCfgParam&, Int32 id, Int32 value)>;

// Each record's debug setter; ids follow the record's field order (DLAE skips id 1).
const std::map<std::string, Setter>& setters() {
    static const std::map<std::string, Setter> s = {
        {"ispLsmParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgLsm(&t.ispLsmParam, id, v); }},
        {"ispLaeParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgLae(&t.ispLaeParam, id, v); }},
        {"ispSbm3dParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgSbm3d(&t.ispSbm3dParam, id, v); }},
        {"ispYuv2yuvParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgYuv2yuv(&t.ispYuv2yuvParam, id, v); }},
        {"ispFusionPlateParam",
         [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgFusionPlate(&t.ispFusionPlateParam, id, v); }},
        {"ispFg2cParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgFg2c(&t.ispFg2cParam, id, v); }},
        {"ispLleParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgLle(&t.ispLleParam, id, v); }},
        {"ispYlwdrParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgYlwdr(&t.ispYlwdrParam, id, v); }},
        {"ispY2dParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgY2d(&t.ispY2dParam, id, v); }},
        {"ispDlaeParam",
         [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgDlae(&t.ispDlaeParam, id == 0 ? 0 : id + 1, v); }},
        {"ispDlcfaParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgDlcfa(&t.ispDlcfaParam, id, v); }},
        {"ispSadeParam", [](auto& t, Int32 id, Int32 v) { return DRV_dspdbgSade(&t.ispSadeParam, id, v); }},
    };
    return s;
}

TEST(Ranges, StageFieldsMatchTheLibraryBounds) {
    QuietLog quiet;
    std::map<std::string, Int32> nextId;
    size_t checked = 0;
    for (const FieldDef& f : stageFields()) {
        const Int32 id = nextId[f.record]++;
        ASSERT_TRUE(setters().count(f.record)) << f.record;
        const Setter& set = setters().at(f.record);
        for (auto [value, expected] : {std::pair<Int32, int64_t>{INT32_MAX, f.dspHigh}, {0, f.dspLow}}) {
            CFG_DspIspCfgParam table{};
            ASSERT_EQ(set(table, id, value), 0);
            const int64_t got = loadField(reinterpret_cast<const uint8_t*>(&table) + f.offset, f.type);
            EXPECT_EQ(got, expected) << fieldPath(f) << " (debug id " << id << ") set to " << value;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 77u);  // every stored stage field
}

}  // namespace

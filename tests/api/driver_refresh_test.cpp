// The configuration refresh behind OpRefreshCfg: the current table is chosen
// again from the host's run state, and the host learns whether it changed.
#include <gtest/gtest.h>

#include "api/driver_host.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::LogKind;
using ispdsp_test::ParamFileBuilder;

// One pipe through a sequence of run states. A refresh without a flag variable
// leaves the change for the next one to report; a failed selection changes
// nothing; the night tables are not chosen through the refresh (its scene mode
// stays 0 whatever runParam.sceneMode says).
TEST(DriverRefresh, ChoosesTheTableAndReportsEachChangeOnce) {
    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
    sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                          .addTable(PARAM_MULTICOLOR)
                                                          .addTable(PARAM_BLACKWHITE)
                                                          .addTable(PARAM_MULTICOLOR_NIGHT)
                                                          .addTable(PARAM_TRAFFIC)
                                                          .build());
    HostPipe pipe(1);
    ASSERT_EQ(pipe.createPipe(), 0);
    CFG_DspIspCfgTables* tables = &pipe.instance()->dspCfgTables;
    struct Step {
        Int32 dncMode;
        Uint32 imageScene, sceneMode;
        bool withFlag;
        Int32 result;
        Int32 changed;  // 7: left as it was
        PARAM_TABLE_TYPE table;
    };
    const Step steps[] = {
        {1, 0, 2, true, 0, 0, PARAM_MULTICOLOR},  // the first refresh lands on row 0: no change
        {1, 0, 0, true, 0, 0, PARAM_MULTICOLOR},
        {0, 0, 0, true, 0, 1, PARAM_BLACKWHITE},
        {0, 0, 0, true, 0, 0, PARAM_BLACKWHITE},
        {1, 1, 0, true, 0, 1, PARAM_TRAFFIC},
        {0, 0, 0, false, 0, 7, PARAM_BLACKWHITE},
        {0, 0, 0, true, 0, 1, PARAM_BLACKWHITE},
        {1, 3, 0, true, -1, 7, PARAM_BLACKWHITE},  // no scene block: no row matches
    };
    for (size_t k = 0; k < std::size(steps); ++k) {
        const Step& s = steps[k];
        pipe.run().dncMode = s.dncMode;
        pipe.run().imageScene = s.imageScene;
        pipe.run().sceneMode = s.sceneMode;
        log.clear();
        Int32 changed = 7;
        EXPECT_EQ(pipe.refresh(s.withFlag ? &changed : nullptr), s.result) << k;
        EXPECT_EQ(changed, s.changed) << k;
        EXPECT_EQ(tables->curTable, tables->paramTables[s.table]) << k;
        EXPECT_EQ(tables->curTableType, static_cast<Uint32>(s.table)) << k;
        EXPECT_EQ(log.count(LogKind::Error, "DRV_ispRefreshCfgX", "DRV_ispChooseCurParam Failed!\n"),
                  s.result == 0 ? 0u : 1u);
    }
    EXPECT_NE(tables->paramTables[PARAM_MULTICOLOR_NIGHT], nullptr);
    EXPECT_EQ(pipe.remove(), 0);
}

}  // namespace

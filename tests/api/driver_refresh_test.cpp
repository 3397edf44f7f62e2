// The configuration refresh behind OpRefreshCfg: the current table is chosen
// again from the host's run state, and the host learns whether it changed.
#include <gtest/gtest.h>

#include "api/driver_host.h"

namespace {

using driver_test::HostPipe;
using ispdsp_test::ParamFileBuilder;

class DriverRefresh : public testing::Test {
protected:
    void SetUp() override {
        sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                              .addTable(PARAM_MULTICOLOR)
                                                              .addTable(PARAM_BLACKWHITE)
                                                              .addTable(PARAM_MULTICOLOR_NIGHT)
                                                              .addTable(PARAM_TRAFFIC)
                                                              .build());
        ASSERT_EQ(pipe.createPipe(), 0);
        tables = &pipe.instance()->dspCfgTables;
    }
    void TearDown() override { EXPECT_EQ(pipe.remove(), 0); }

    ispdsp_test::Sandbox sandbox;
    ispdsp_test::LogCapture log;
    ispdsp_test::DspCapture dsp;
    HostPipe pipe{1};
    CFG_DspIspCfgTables* tables = nullptr;
};

TEST_F(DriverRefresh, FirstRefreshOnRowZeroReportsNoChange) {
    Int32 changed = 9;
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(tables->curTable, tables->paramTables[PARAM_MULTICOLOR]);
    EXPECT_EQ(tables->curTableType, static_cast<Uint32>(PARAM_MULTICOLOR));
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 0);
}

TEST_F(DriverRefresh, DayNightSwitchIsReportedOnce) {
    Int32 changed = 9;
    ASSERT_EQ(pipe.refresh(&changed), 0);
    pipe.run().dncMode = 0;  // black-and-white
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(tables->curTable, tables->paramTables[PARAM_BLACKWHITE]);
    EXPECT_EQ(tables->lastTableIdx, tables->curTableIdx);
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 0);

    pipe.run().dncMode = 1;
    pipe.run().imageScene = 1;  // traffic
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(tables->curTable, tables->paramTables[PARAM_TRAFFIC]);
}

TEST_F(DriverRefresh, RefreshWithoutFlagLeavesTheChangeForTheNext) {
    Int32 changed = 9;
    ASSERT_EQ(pipe.refresh(&changed), 0);
    pipe.run().dncMode = 0;
    EXPECT_EQ(pipe.refresh(nullptr), 0);
    EXPECT_EQ(tables->curTable, tables->paramTables[PARAM_BLACKWHITE]);
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(changed, 1);
}

TEST_F(DriverRefresh, FailingSelectionChangesNothing) {
    Int32 changed = 9;
    ASSERT_EQ(pipe.refresh(&changed), 0);
    CFG_DspIspCfgParam* chosen = tables->curTable;
    pipe.run().imageScene = 3;  // no scene block: no row matches
    log.clear();
    changed = 7;
    EXPECT_EQ(pipe.refresh(&changed), -1);
    EXPECT_EQ(changed, 7);
    EXPECT_EQ(tables->curTable, chosen);
    EXPECT_EQ(driver_test::countErrors(log, "DRV_ispRefreshCfgX", "DRV_ispChooseCurParam Failed!\n"), 1u);
}

// The night tables are not chosen through the refresh: the condition's scene
// mode stays 0, whatever the host's runParam.sceneMode says.
TEST_F(DriverRefresh, NightSceneModeStillChoosesTheDayTable) {
    pipe.run().sceneMode = 2;
    Int32 changed = 9;
    EXPECT_EQ(pipe.refresh(&changed), 0);
    EXPECT_EQ(tables->curTable, tables->paramTables[PARAM_MULTICOLOR]);
    EXPECT_NE(tables->paramTables[PARAM_MULTICOLOR_NIGHT], nullptr);
}

TEST_F(DriverRefresh, NullTableIsRefused) {
    EXPECT_EQ(pipe.ops()->OpRefreshCfg(nullptr, nullptr), -1);
    EXPECT_EQ(driver_test::countNullErrors(log, "DRV_ispRefreshCfgX", "ispOps"), 1u);
}

}  // namespace

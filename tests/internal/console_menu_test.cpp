// The console's menu call, which the library keeps internal: the console
// ignores its result, so its contract (0 after the menu, -1 and a named error
// for a missing table) is checked here. The menu lines themselves are checked
// through the public console in tests/api/driver_console_test.cpp.
#include <gtest/gtest.h>

#include "driver/console.h"
#include "support/log_capture.h"

namespace {

using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;

TEST(ConsoleMenu, ReturnsZeroAfterTheMenuAndRefusesAMissingTable) {
    // A name is shown with at most 30 characters.
    const CMD_DrvIspTable table[] = {{0, "only", nullptr, "\t the only entry", nullptr},
                                     {1, "abcdefghijklmnopqrstuvwxyz0123456789", nullptr, "long", nullptr},
                                     {}};
    LogCapture log;
    EXPECT_EQ(DRV_ispPrintDbgMenu(table, 1), 0);
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"[DSP_DRV] Usage: aewDebug [cmd1][cmd2]=[cmd3]:[cmd4] ... \r\n",
                                                     "[DSP_DRV] \nonly      : \t the only entry\r\n",
                                                     "[DSP_DRV] \nabcdefghijklmnopqrstuvwxyz0123: long\r\n"}));
    EXPECT_EQ(DRV_ispPrintDbgMenu(drvIspParam, 0), 0);
    log.clear();
    EXPECT_EQ(DRV_ispPrintDbgMenu(nullptr, 0), -1);
    EXPECT_TRUE(log.has(LogKind::Error, "DRV_ispPrintDbgMenu", "Input NULL POINT cmd!\n"));
}

}  // namespace

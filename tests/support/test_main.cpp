// The main of every test program linked with the support library: GoogleTest,
// plus a check after each test that every file the library opened (through
// the host layer) was closed again, on the failure paths too.
#include <gtest/gtest.h>

#include "support/mem_guard.h"

namespace {

class OpenFileCheck : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { before_ = ispdsp_test::openFiles(); }
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_EQ(ispdsp_test::openFiles(), before_) << "the test left file handle(s) open";
    }
    uint64_t before_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new OpenFileCheck);
    return RUN_ALL_TESTS();
}

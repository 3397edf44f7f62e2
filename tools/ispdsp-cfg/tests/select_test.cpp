// select: the tool's explanation agrees with the library's choice for every map row, on table
// sets that force each fallback path. (One state's explanation in words: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "library_selection.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

// The sample, or its first table under each of `onlyTypes`.
std::string writeTables(const TempDir& dir, const std::vector<int32_t>& onlyTypes = {}) {
    ParamFileImage image = sampleImage();
    if (!onlyTypes.empty()) {
        const TableEntry model = image.entries.front();
        image.entries.clear();
        for (int32_t t : onlyTypes) image.entries.emplace_back(model).type = t;
    }
    writeBytes(dir.path("tables.bin"), serializeParamFile(image));
    return dir.path("tables.bin");
}

class SelectAgreement : public ::testing::TestWithParam<std::vector<int32_t>> {};

TEST_P(SelectAgreement, EveryRowMatchesTheLibrary) {
    TempDir dir;
    std::string error;
    auto lib = LibraryTables::load(writeTables(dir, GetParam()), error);
    ASSERT_NE(lib, nullptr) << error;
    std::array<bool, 120> present{};
    for (int32_t t : GetParam()) present[static_cast<size_t>(t)] = true;
    ASSERT_EQ(lib->registered(), present);
    for (uint32_t row = 0; row < kMapRows; ++row) {
        const Selection tool = explainSelection(stateOfRow(row), present);
        const LibraryChoice c = lib->choose(stateOfRow(row));
        ASSERT_TRUE(tool.rowFound && tool.row == row) << row;
        EXPECT_EQ(c.ok, tool.chosen) << "row " << row;
        if (c.ok && tool.chosen) {
            EXPECT_EQ(c.row, row);
            EXPECT_EQ(c.type, static_cast<uint32_t>(tool.chosenType)) << "row " << row;
            EXPECT_TRUE(c.tableIsRegistered);
        }
    }
}

// Direct hits, the IVS partners, the preference list, and types no fallback names.
INSTANTIATE_TEST_SUITE_P(
    TableSets, SelectAgreement,
    ::testing::Values(std::vector<int32_t>{PARAM_BLACKWHITE}, std::vector<int32_t>{PARAM_MULTICOLOR, PARAM_BLACKWHITE},
                      std::vector<int32_t>{PARAM_HDR_MULTICOLOR, PARAM_WDR_MULTICOLOR, PARAM_IVS_NIGHT},
                      std::vector<int32_t>{PARAM_WDR_MULTICOLOR, PARAM_TRAFFIC, PARAM_EVENT_NIGHT},
                      std::vector<int32_t>{PARAM_IVS, PARAM_BLACKWHITE_NIGHT, PARAM_WDR_BLACKWHITE_NIGHT},
                      std::vector<int32_t>{PARAM_WDR_TRAFFIC, PARAM_HDR_IVS_BLACKWHITE, PARAM_FACE_NIGHT}));

}  // namespace

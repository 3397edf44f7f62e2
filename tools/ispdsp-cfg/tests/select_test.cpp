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

class SelectAgreement : public ::testing::TestWithParam<std::vector<int32_t>> {};

// The sample's first table under each type of the set.
TEST_P(SelectAgreement, EveryRowMatchesTheLibrary) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    const TableEntry model = image.entries.front();
    image.entries.clear();
    std::array<bool, 120> present{};
    for (int32_t t : GetParam()) {
        image.entries.emplace_back(model).type = t;
        present[static_cast<size_t>(t)] = true;
    }
    writeBytes(dir.path("tables.bin"), serializeParamFile(image));
    std::string error;
    auto lib = LibraryTables::load(dir.path("tables.bin"), error);
    ASSERT_NE(lib, nullptr) << error;
    ASSERT_EQ(lib->registered(), present);
    for (uint32_t row = 0; row < kMapRows; ++row) {
        const Selection tool = explainSelection(stateOfRow(row), present);
        const LibraryChoice c = lib->choose(stateOfRow(row));
        ASSERT_TRUE(tool.rowFound && tool.row == row) << row;
        ASSERT_EQ(c.ok, tool.chosen) << "row " << row;
        if (c.ok) {
            EXPECT_TRUE(c.row == row && c.type == static_cast<uint32_t>(tool.chosenType) && c.tableIsRegistered) << row;
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

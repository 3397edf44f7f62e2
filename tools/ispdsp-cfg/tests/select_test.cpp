// select: the tool's explanation agrees with the library's choice for every map row, on table
// sets that force each fallback path. (One state's explanation in words: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "library_selection.h"
#include "tool_test_support.h"

namespace {

using namespace ispdsp::tools;
using namespace ispdsp::tools::cfg;
using namespace ispcfg_test;

// The sample's first table under each type of a set: direct hits, the IVS partners, the
// preference list, and types no fallback names.
TEST(SelectAgreement, EveryRowMatchesTheLibraryOnEachTableSet) {
    const std::vector<std::vector<int32_t>> sets = {
        {PARAM_BLACKWHITE}, {PARAM_MULTICOLOR, PARAM_BLACKWHITE},
        {PARAM_HDR_MULTICOLOR, PARAM_WDR_MULTICOLOR, PARAM_IVS_NIGHT},
        {PARAM_WDR_MULTICOLOR, PARAM_TRAFFIC, PARAM_EVENT_NIGHT},
        {PARAM_IVS, PARAM_BLACKWHITE_NIGHT, PARAM_WDR_BLACKWHITE_NIGHT},
        {PARAM_WDR_TRAFFIC, PARAM_HDR_IVS_BLACKWHITE, PARAM_FACE_NIGHT}};
    TempDir dir;
    ParamFileImage image = sampleImage();
    const TableEntry model = image.entries.front();
    for (const auto& set : sets) {
        image.entries.clear();
        std::array<bool, 120> present{};
        for (int32_t t : set) {
            image.entries.emplace_back(model).type = t;
            present[static_cast<size_t>(t)] = true;
        }
        std::string error;
        auto lib = LibraryTables::load(dir.write("tables.bin", serializeParamFile(image)), error);
        ASSERT_NE(lib, nullptr) << error;
        ASSERT_EQ(lib->registered(), present);
        for (uint32_t row = 0; row < kMapRows; ++row) {
            const Selection tool = explainSelection(stateOfRow(row), present);
            const LibraryChoice c = lib->choose(stateOfRow(row));
            ASSERT_TRUE(tool.rowFound && tool.row == row) << row;
            ASSERT_EQ(c.ok, tool.chosen) << "row " << row;
            if (c.ok) {
                EXPECT_TRUE(c.row == row && c.type == uint32_t(tool.chosenType) && c.tableIsRegistered) << row;
            }
        }
    }
}

}  // namespace

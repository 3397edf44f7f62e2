// select: the tool's explanation agrees with the library's choice for every map row, on the
// sample and on table sets that force each fallback path; one state's explanation in words.
#include <gtest/gtest.h>

#include <cstdlib>

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

struct Explained {
    CameraState state;  // realDncMode, hdrMode, sceneMode, imageScene
    int status;
    std::vector<std::string> lines;
};

TEST(Select, ExplainsOneStateAsTheLibraryChoosesIt) {
    const Explained cases[] = {
        {{0, 4, 2, 1}, kExitOk,  // black-and-white, WDR, night, traffic
         {"map row 23 names PARAM_WDR_TRAFFIC_BLACKWHITE (17): missing from the file",
          "fallback rule 0: first present entry of the preference list: PARAM_MULTICOLOR (position 0)",
          "library: row 23, PARAM_MULTICOLOR (0), agrees"}},
        {{1, 5, 2, 4}, kExitOk, {"PARAM_HDR_IVS_NIGHT stands against PARAM_HDR_MULTICOLOR (position 70), present"}},
        {{1, 0, 0, 3}, kExitFindings, {"no map row matches this state", "library: selection failed, agrees"}},
    };
    TempDir dir;
    const std::string path = writeTables(dir);
    setenv("ISPDSP_ROOT", dir.path("no-such-root").c_str(), 1);  // a tool's own paths are not sandboxed
    for (const Explained& c : cases) {
        const RunResult r = run([&](auto& out, auto& err) { return runSelect({path, false, c.state}, out, err); });
        EXPECT_EQ(r.status, c.status) << r.err;
        for (const std::string& line : c.lines) EXPECT_NE(r.out.find(line), std::string::npos) << r.out;
    }
    EXPECT_STREQ(std::getenv("ISPDSP_ROOT"), dir.path("no-such-root").c_str());  // restored
    unsetenv("ISPDSP_ROOT");
}

}  // namespace

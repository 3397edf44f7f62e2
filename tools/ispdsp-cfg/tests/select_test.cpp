// select: the tool's explanation agrees with the library's choice for every map row, on the
// sample and on files that force each fallback path.
#include <gtest/gtest.h>

#include <cstdlib>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "library_selection.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

std::string writeSample(const TempDir& dir, const std::vector<int32_t>& onlyTypes = {}) {
    ParamFileImage image = sampleImage();
    if (!onlyTypes.empty()) {
        const TableEntry model = image.entries.front();
        image.entries.clear();
        for (int32_t t : onlyTypes) {
            TableEntry e = model;
            e.type = t;
            image.entries.push_back(e);
        }
    }
    const std::string path = dir.path("tables.bin");
    writeBytes(path, serializeParamFile(image));
    return path;
}

std::array<bool, 120> presentOf(const std::vector<int32_t>& types) {
    std::array<bool, 120> present{};
    for (int32_t t : types) present[static_cast<size_t>(t)] = true;
    return present;
}

TEST(Select, AllRowsAgreeWithTheLibraryOnTheSample) {
    TempDir dir;
    const std::string path = writeSample(dir);
    SelectOptions o;
    o.input = path;
    o.all = true;
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_EQ(r.status, kExitOk) << r.err;
    EXPECT_NE(r.out.find("library agrees on 156 of 156 rows; 0 rows find no table"), std::string::npos) << r.out;
    EXPECT_TRUE(r.err.empty()) << r.err;
}

// Table sets that exercise direct hits, the IVS partners, the preference list and failures.
class SelectAgreement : public ::testing::TestWithParam<std::vector<int32_t>> {};

TEST_P(SelectAgreement, EveryRowMatchesTheLibrary) {
    TempDir dir;
    const std::string path = writeSample(dir, GetParam());
    std::string error;
    auto lib = LibraryTables::load(path, error);
    ASSERT_NE(lib, nullptr) << error;
    const auto present = presentOf(GetParam());
    ASSERT_EQ(lib->registered(), present);
    for (uint32_t row = 0; row < kMapRows; ++row) {
        const CameraState state = stateOfRow(row);
        const Selection tool = explainSelection(state, present);
        const LibraryChoice c = lib->choose(state);
        ASSERT_TRUE(tool.rowFound) << row;
        EXPECT_EQ(tool.row, row);
        EXPECT_EQ(c.ok, tool.chosen) << "row " << row;
        if (c.ok && tool.chosen) {
            EXPECT_EQ(c.row, row);
            EXPECT_EQ(c.type, static_cast<uint32_t>(tool.chosenType)) << "row " << row;
            EXPECT_TRUE(c.tableIsRegistered);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    TableSets, SelectAgreement,
    ::testing::Values(std::vector<int32_t>{PARAM_BLACKWHITE}, std::vector<int32_t>{PARAM_MULTICOLOR, PARAM_BLACKWHITE},
                      std::vector<int32_t>{PARAM_HDR_MULTICOLOR, PARAM_WDR_MULTICOLOR, PARAM_IVS_NIGHT},
                      std::vector<int32_t>{PARAM_WDR_MULTICOLOR, PARAM_TRAFFIC, PARAM_EVENT_NIGHT},
                      // Only types no fallback list names: most states find nothing.
                      std::vector<int32_t>{PARAM_IVS, PARAM_BLACKWHITE_NIGHT, PARAM_WDR_BLACKWHITE_NIGHT},
                      std::vector<int32_t>{PARAM_WDR_TRAFFIC, PARAM_HDR_IVS_BLACKWHITE, PARAM_FACE_NIGHT}));

TEST(Select, OneStateExplainsTheFallback) {
    TempDir dir;
    SelectOptions o;
    o.input = writeSample(dir);
    o.state = CameraState{0, 4, 2, 1};  // black-and-white, WDR, night, traffic: map row 23
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_EQ(r.status, kExitOk) << r.err;
    EXPECT_NE(r.out.find("map row 23 names PARAM_WDR_TRAFFIC_BLACKWHITE (17): missing from the file"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("fallback rule 0: first present entry of the preference list: PARAM_MULTICOLOR (position 0)"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("library: row 23, PARAM_MULTICOLOR (0), agrees"), std::string::npos) << r.out;
}

TEST(Select, IvsStateFallsToItsBasePartner) {
    TempDir dir;
    SelectOptions o;
    o.input = writeSample(dir);
    o.state = CameraState{1, 5, 2, 4};  // colour, HDR (5), night, IVS
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_EQ(r.status, kExitOk);
    EXPECT_NE(r.out.find("PARAM_HDR_IVS_NIGHT stands against PARAM_HDR_MULTICOLOR (position 70), present"),
              std::string::npos)
        << r.out;
}

TEST(Select, StateWithoutMapRowIsAFinding) {
    TempDir dir;
    SelectOptions o;
    o.input = writeSample(dir);
    o.state.imageScene = 3;
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("no map row matches this state"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("library: selection failed, agrees"), std::string::npos) << r.out;
}

// The host layer's sandbox root must not redirect a plain host path.
TEST(Select, WorksWithASandboxRootSet) {
    TempDir dir;
    const std::string path = writeSample(dir);
    setenv("ISPDSP_ROOT", dir.path("no-such-root").c_str(), 1);
    SelectOptions o;
    o.input = path;
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_STREQ(std::getenv("ISPDSP_ROOT"), dir.path("no-such-root").c_str());  // restored
    unsetenv("ISPDSP_ROOT");
    EXPECT_EQ(r.status, kExitOk) << r.err;
    EXPECT_NE(r.out.find("chosen: PARAM_MULTICOLOR (0)"), std::string::npos) << r.out;
}

TEST(Select, FileTheLibraryRejectsIsAnError) {
    TempDir dir;
    std::vector<uint8_t> bytes = serializeParamFile(sampleImage());
    bytes.back() ^= 0x80;  // checksum
    writeBytes(dir.path("bad.bin"), bytes);
    SelectOptions o;
    o.input = dir.path("bad.bin");
    const RunResult r = run([&](auto& out, auto& err) { return runSelect(o, out, err); });
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.err.find("computed (the driver rejects the file)"), std::string::npos) << r.err;
}

}  // namespace

// Error paths: missing files, JSON syntax errors with their line, and source mistakes reported
// with file, table and field; the command line's usage errors.
#include <gtest/gtest.h>

#include "commands.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

RunResult buildText(const TempDir& dir, const std::string& text) {
    writeText(dir.path("src.json"), text);
    return run([&](auto& out, auto& err) {
        return runBuild({dir.path("src.json"), dir.path("out.bin"), false}, out, err);
    });
}

// A source with one PARAM_MULTICOLOR table whose body is `tableBody`.
std::string sourceWithTable(const std::string& tableBody) {
    return "{\"tables\": [{\"type\": \"PARAM_MULTICOLOR\"" + std::string(tableBody.empty() ? "" : ", ") + tableBody +
           "}]}";
}

std::string sixteenSteps(const std::string& stepTwo) {
    std::string steps = "[";
    for (int i = 0; i < 16; ++i) steps += std::string(i ? ", " : "") + (i == 2 ? stepTwo : "{}");
    return steps + "]";
}

TEST(Errors, JsonSyntaxErrorNamesFileLineAndColumn) {
    TempDir dir;
    const RunResult r = buildText(dir, "{\n  \"tables\": [\n    {\"type\": \"PARAM_MULTICOLOR\",}\n  ]\n}\n");
    EXPECT_EQ(r.status, kExitError);
    EXPECT_NE(r.err.find(dir.path("src.json") + ": line 3, column 33: JSON syntax error"), std::string::npos) << r.err;
}

struct SourceMistake {
    std::string table;     // body of the PARAM_MULTICOLOR table
    std::string expected;  // message after "<file>: "
};

class BuildRejects : public ::testing::TestWithParam<SourceMistake> {};

TEST_P(BuildRejects, WithItsLocation) {
    TempDir dir;
    const RunResult r = buildText(dir, sourceWithTable(GetParam().table));
    EXPECT_EQ(r.status, kExitError);
    EXPECT_NE(r.err.find("error: " + dir.path("src.json") + ": " + GetParam().expected), std::string::npos) << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir.path("out.bin")));
}

INSTANTIATE_TEST_SUITE_P(
    Mistakes, BuildRejects,
    ::testing::Values(
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"ep_dleta\": 3}"),
                      "tables[0] (PARAM_MULTICOLOR) fusion[2].ep_dleta: unknown field \"ep_dleta\" (did you mean "
                      "\"ep_delta\"?)"},
        SourceMistake{"\"ispLaeParam\": {\"windowLaeParam\": {\"gbce_levle\": 3}}",
                      "tables[0] (PARAM_MULTICOLOR) ispLaeParam.windowLaeParam.gbce_levle: unknown field"},
        SourceMistake{"\"ispLsmParamm\": {}", "tables[0] (PARAM_MULTICOLOR) ispLsmParamm: unknown field"},
        SourceMistake{"\"ispLsmParam\": {\"aw_left_thr\": 70000}",
                      "tables[0] (PARAM_MULTICOLOR) ispLsmParam.aw_left_thr: 70000 does not fit Uint16 (0..65535)"},
        SourceMistake{"\"ispSadeParam\": {\"nr_level\": 1.5}",
                      "tables[0] (PARAM_MULTICOLOR) ispSadeParam.nr_level: expected an integer, found number 1.5"},
        SourceMistake{"\"fusion\": [{}, {}]",
                      "tables[0] (PARAM_MULTICOLOR) fusion: expected an array of 16 gain steps, found 2 steps"},
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"w_nir\": [1, 2, 3]}"),
                      "tables[0] (PARAM_MULTICOLOR) fusion[2].w_nir: expected 511 points, found 3"},
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"w_nir\": {\"knots\": [[0, 1], [0, 5]]}}"),
                      "tables[0] (PARAM_MULTICOLOR) fusion[2].w_nir.knots[1]: x = 0 does not rise"},
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"w_nir\": {\"ramp\": [0, 300]}}"),
                      "tables[0] (PARAM_MULTICOLOR) fusion[2].w_nir.ramp[1]: 300 does not fit Uint8"},
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"ep_delta\": 3, \"uv_w\": 1, \"ep_delta\": 4}"),
                      "tables[0].fusion[2].ep_delta: duplicate key \"ep_delta\""},
        SourceMistake{"\"ispLaeParam\": {\"plateLaeParam\": {}, \"plateLaeParam\": {}}",
                      "tables[0].ispLaeParam.plateLaeParam: duplicate key \"plateLaeParam\""},
        SourceMistake{"\"fusion\": " + sixteenSteps("{\"nir_a\": -129}"),
                      "tables[0] (PARAM_MULTICOLOR) fusion[2].nir_a: -129 does not fit Int8 (-128..127)"}));

TEST(Errors, TableTypeMistakes) {
    TempDir dir;
    RunResult r = buildText(dir, "{\"tables\": [{\"type\": \"PARAM_MULTICOLOUR\"}]}");
    EXPECT_NE(r.err.find("tables[0].type: \"PARAM_MULTICOLOUR\" is not a PARAM_TABLE_TYPE name"), std::string::npos)
        << r.err;
    r = buildText(dir, "{\"tables\": [{\"type\": \"PARAM_FACE\"}, {\"type\": 21}]}");
    EXPECT_EQ(r.status, kExitError);
    EXPECT_NE(r.err.find("tables[1] (PARAM_FACE): duplicate table type: already defined by tables[0]"),
              std::string::npos)
        << r.err;
    r = buildText(dir, "{\"tables\": [{}]}");
    EXPECT_NE(r.err.find("tables[0]: missing \"type\""), std::string::npos) << r.err;
    r = buildText(dir, "{\"header\": {\"pdtName\": \"123456789012345678901234567890123\"}, \"tables\": []}");
    EXPECT_NE(r.err.find("header.pdtName: text is 33 bytes long; the field holds 32"), std::string::npos) << r.err;
    r = buildText(dir, "{\"table\": []}");
    EXPECT_NE(r.err.find("table: unknown field \"table\" (did you mean \"tables\"?)"), std::string::npos) << r.err;
}

TEST(Errors, MissingFieldsAreZeroAndOutOfRangeValuesAreWarnings) {
    TempDir dir;
    const RunResult r = buildText(dir, sourceWithTable("\"ispFusionFlag\": 1"));
    EXPECT_EQ(r.status, kExitFindings);  // written, with warnings
    EXPECT_NE(r.err.find("warning: " + dir.path("src.json") +
                         ": PARAM_MULTICOLOR fusion[0].ep_delta = 0 (DSP range 1..16383)"),
              std::string::npos)
        << r.err;
    const std::vector<uint8_t> bytes = readBytes(dir.path("out.bin"));
    ASSERT_EQ(bytes.size(), kFileOverhead + kEntryBytes);
    EXPECT_EQ(bytes[kHeaderBytes + 4 + 4], 1);  // ispFusionFlag
}

}  // namespace

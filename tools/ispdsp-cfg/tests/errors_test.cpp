// build: every mistake in a JSON source is an error naming the file, the table and the field
// (with "did you mean"), and no file is written. (Out-of-range values, which are warnings of a
// file that is written: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

RunResult buildText(const TempDir& dir, const std::string& text) {
    writeText(dir.path("src.json"), text);
    return run([&](auto& out, auto& err) { return runBuild({dir.path("src.json"), dir.path("out.bin")}, out, err); });
}

// A source with one PARAM_MULTICOLOR table whose body is `body`; "@" in it stands for the
// fusion array with `step2` as gain step 2 and empty steps around it.
std::string table(std::string body, const std::string& step2 = "{}") {
    std::string steps = "[";
    for (int i = 0; i < 16; ++i) steps += std::string(i ? ", " : "") + (i == 2 ? step2 : "{}");
    if (const size_t at = body.find('@'); at != std::string::npos) body.replace(at, 1, steps + "]");
    return "{\"tables\": [{\"type\": \"PARAM_MULTICOLOR\", " + body + "}]}";
}

const std::string kT0 = "tables[0] (PARAM_MULTICOLOR) ";
// clang-format off
const std::pair<std::string, std::string> kMistakes[] = {  // source, message after "<file>: "
    {"{\n  \"tables\": [\n    {\"type\": \"PARAM_MULTICOLOR\",}\n  ]\n}\n", "line 3, column 33: JSON syntax error"},
    {table("\"fusion\": @", "{\"ep_dleta\": 3}"), kT0 + "fusion[2].ep_dleta: unknown field \"ep_dleta\" (did you mean \"ep_delta\"?)"},
    {table("\"ispLaeParam\": {\"windowLaeParam\": {\"gbce_levle\": 3}}"), kT0 + "ispLaeParam.windowLaeParam.gbce_levle: unknown field"},
    {table("\"ispLsmParamm\": {}"), kT0 + "ispLsmParamm: unknown field"},
    {table("\"ispLsmParam\": {\"aw_left_thr\": 70000}"), kT0 + "ispLsmParam.aw_left_thr: 70000 does not fit Uint16 (0..65535)"},
    {table("\"ispSadeParam\": {\"nr_level\": 1.5}"), kT0 + "ispSadeParam.nr_level: expected an integer, found number 1.5"},
    {table("\"fusion\": [{}, {}]"), kT0 + "fusion: expected an array of 16 gain steps, found 2 steps"},
    {table("\"fusion\": @", "{\"w_nir\": [1, 2, 3]}"), kT0 + "fusion[2].w_nir: expected 511 points, found 3"},
    {table("\"fusion\": @", "{\"w_nir\": {\"knots\": [[0, 1], [0, 5]]}}"), kT0 + "fusion[2].w_nir.knots[1]: x = 0 does not rise"},
    {table("\"fusion\": @", "{\"w_nir\": {\"ramp\": [0, 300]}}"), kT0 + "fusion[2].w_nir.ramp[1]: 300 does not fit Uint8"},
    {table("\"fusion\": @", "{\"ep_delta\": 3, \"uv_w\": 1, \"ep_delta\": 4}"), "tables[0].fusion[2].ep_delta: duplicate key \"ep_delta\""},
    {table("\"ispLaeParam\": {\"plateLaeParam\": {}, \"plateLaeParam\": {}}"), "tables[0].ispLaeParam.plateLaeParam: duplicate key \"plateLaeParam\""},
    {table("\"fusion\": @", "{\"nir_a\": -129}"), kT0 + "fusion[2].nir_a: -129 does not fit Int8 (-128..127)"},
    {"{\"tables\": [{\"type\": \"PARAM_MULTICOLOUR\"}]}", "tables[0].type: \"PARAM_MULTICOLOUR\" is not a PARAM_TABLE_TYPE name"},
    {"{\"tables\": [{\"type\": \"PARAM_FACE\"}, {\"type\": 21}]}", "tables[1] (PARAM_FACE): duplicate table type: already defined by tables[0]"},
    {"{\"tables\": [{}]}", "tables[0]: missing \"type\""},
    {"{\"header\": {\"pdtName\": \"123456789012345678901234567890123\"}, \"tables\": [{\"type\": 0}]}", "header.pdtName: text is 33 bytes long; the field holds 32"},
    {"{\"table\": []}", "table: unknown field \"table\" (did you mean \"tables\"?)"},
    {"{\"header\": {\"ver\": 82981.5}, \"tables\": [{\"type\": 0}]}", "not written: header ver = 82981.5 (the driver reads version 82981 only"},
};
// clang-format on

TEST(BuildErrors, NameTheirPlaceAndWriteNothing) {
    TempDir dir;
    for (const auto& [source, message] : kMistakes) {
        const RunResult r = buildText(dir, source);
        EXPECT_EQ(r.status, kExitError) << source;
        EXPECT_NE(r.err.find("error: " + dir.path("src.json") + ": " + message), std::string::npos) << r.err;
        EXPECT_FALSE(std::filesystem::exists(dir.path("out.bin"))) << source;
    }
}

}  // namespace

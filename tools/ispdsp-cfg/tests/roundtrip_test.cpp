// build -> dump -> build gives the same bytes; the committed sample binary is the build of its
// source; header bytes that are not text and every curve form survive the round trip. Every
// mistake in a JSON source is an error naming the file, the table and the field (with "did you
// mean"), and no file is written. (Out-of-range values are warnings: command_table_test.cpp.)
#include <gtest/gtest.h>

#include <random>

#include "commands.h"
#include "curve_forms.h"
#include "tool_test_support.h"
#include "tuning_codec.h"

namespace {

using namespace ispdsp::tools;
using namespace ispdsp::tools::cfg;
using namespace ispcfg_test;

// Through the executable, both ways on standard output ("-o -").
TEST(RoundTrip, SampleSourceBuildsTheCommittedBinaryAndDumpsBackToIt) {
    TempDir dir;
    const RunResult built = runExe("build " + sampleSourcePath() + " -o -");
    ASSERT_EQ(built.status, kExitOk) << built.err;
    const std::vector<uint8_t> committed = readBytes(sampleBinaryPath());
    EXPECT_EQ(std::vector<uint8_t>(built.out.begin(), built.out.end()), committed)
        << "rebuild it: cmake --build <dir> --target ispdsp-sample-param-file";
    const RunResult dumped = runExe("dump " + sampleBinaryPath() + " -o -");
    ASSERT_EQ(dumped.status, kExitOk) << dumped.err;
    dir.write("dumped.json", dumped.out);
    EXPECT_EQ(runExe("build " + dir.path("dumped.json") + " -o " + dir.path("re.bin")).status, kExitOk);
    EXPECT_EQ(readBytes(dir.path("re.bin")), committed);
}

// In process, through the two functions other tools link (ispdsp_tuning_codec).
TEST(RoundTrip, OddHeadersSurviveAndPaddingIsReportedAndZeroed) {
    ParamFileImage image = sampleImage();
    image.header.subVerBits = 0x7FC00001;       // a NaN: not a JSON number
    image.header.dateTime.fill('7');            // 32 characters, no NUL
    image.header.archName = {0xFF, 0xFE, 'x'};  // not UTF-8
    image.header.pdtName = {'a', 0, 'b'};       // a byte after the NUL
    const std::vector<uint8_t> original = serializeParamFile(image);
    image.entries[0].bytes[8738] = 0x5A;  // padding after ispSbm3dParam
    std::string error;
    const auto dumped = dumpTuningJson(serializeParamFile(image), error);
    ASSERT_TRUE(dumped) << error;
    EXPECT_EQ(dumped->warnings, std::vector<std::string>{"PARAM_MULTICOLOR padding byte at table offset 8738 = 0x5A "
                                                         "(never read; dump and build write 0)"});
    for (const char* text : {"\"subVer\": {\"bits\": \"0x7FC00001\"}", "\"dateTime\": \"77777777777777777777777777777777\"",
                             "\"hex\": \"fffe78"})
        EXPECT_NE(dumped->text.find(text), std::string::npos) << text;
    std::vector<std::string> errors;
    const auto rebuilt = buildParamFile(dumped->text, errors);
    ASSERT_TRUE(rebuilt) << errors.front();
    EXPECT_EQ(rebuilt->bytes, original);
}

// Curves of every shape: constant, ramps, knots, and noise (the plain point list).
TEST(CurveForms, EveryShapeEncodesToItsFormAndDecodesToTheSamePoints) {
    std::mt19937 rng(7);
    auto level = [&] { return static_cast<int>(rng() % 256); };
    for (int i = 0; i < 40; ++i) {
        std::vector<Knot> knots{{0, level()}};
        if (i % 4 == 1) knots.emplace_back(510, level());
        for (int x = 30 + static_cast<int>(rng() % 40); i % 4 == 2 && x < 510; x += 30 + static_cast<int>(rng() % 80))
            knots.emplace_back(x, level());
        Curve curve = curveThroughKnots(knots);
        if (i % 4 == 3) std::generate(curve.begin(), curve.end(), [&] { return static_cast<uint8_t>(rng()); });
        const OrderedJson encoded = encodeCurve(curve);
        Diagnostics diag;
        const auto decoded = decodeCurve(Json::parse(encoded.dump()), "w_nir", diag);
        ASSERT_TRUE(decoded.has_value()) << diag.messages().front();
        EXPECT_EQ(*decoded, curve) << encoded.dump();
        EXPECT_EQ(encoded.contains("constant"), i % 4 == 0);
        EXPECT_EQ(encoded.is_array(), i % 4 == 3);
    }
}

TEST(CurveForms, KnotsInterpolateHalfAwayFromZeroAndHoldOutside) {
    // Between (100, 0) and (104, 2): 0.5 at x = 101 rounds to 1, 1.5 at x = 103 to 2;
    // 2 + 48 * 48 / 96 = 26 at x = 152; 0.5 -> 1 and 127.5 -> 128 on the full ramp.
    const Curve c = curveThroughKnots({{100, 0}, {104, 2}, {200, 50}});
    const Curve ramp = curveThroughKnots({{0, 0}, {510, 255}});
    EXPECT_EQ((std::vector<int>{c[0], c[101], c[102], c[103], c[152], c[510], ramp[1], ramp[255]}),
              (std::vector<int>{0, 1, 1, 2, 26, 50, 1, 128}));
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
const std::pair<std::string, std::string> kMistakes[] = {  // source, "LINE:COLUMN: message" after "<file>:"
    {"{\n  \"tables\": [\n    {\"type\": \"PARAM_MULTICOLOR\",}\n  ]\n}\n", "3:33: JSON syntax error"},
    {table("\"fusion\": @", "{\"ep_dleta\": 3}"), "1:74: " + kT0 + "fusion[2].ep_dleta: unknown field \"ep_dleta\" (did you mean \"ep_delta\"?)"},
    {table("\"ispLaeParam\": {\"windowLaeParam\": {\"gbce_levle\": 3}}"), "1:91: " + kT0 + "ispLaeParam.windowLaeParam.gbce_levle: unknown field"},
    {table("\"ispLsmParam\": {\"aw_left_thr\": 70000}"), "1:73: " + kT0 + "ispLsmParam.aw_left_thr: 70000 does not fit Uint16 (0..65535)"},
    {table("\"ispSadeParam\": {\"nr_level\": 1.5}"), "1:71: " + kT0 + "ispSadeParam.nr_level: expected an integer, found number 1.5"},
    {table("\"fusion\": [{}, {}]"), "1:52: " + kT0 + "fusion: expected an array of 16 gain steps, found 2 steps"},
    {table("\"fusion\": @", "{\"w_nir\": [1, 2, 3]}"), "1:71: " + kT0 + "fusion[2].w_nir: expected 511 points, found 3"},
    {table("\"fusion\": @", "{\"w_nir\": {\"knots\": [[0, 1], [0, 5]]}}"), "1:90: " + kT0 + "fusion[2].w_nir.knots[1]: x = 0 does not rise"},
    {table("\"fusion\": @", "{\"w_nir\": {\"ramp\": [0, 300]}}"), "1:84: " + kT0 + "fusion[2].w_nir.ramp[1]: 300 does not fit Uint8"},
    {table("\"fusion\": @", "{\"ep_delta\": 3, \"uv_w\": 1, \"ep_delta\": 4}"), "1:74: tables[0].fusion[2].ep_delta: duplicate key \"ep_delta\""},
    {table("\"fusion\": @", "{\"nir_a\": -129}"), "1:71: " + kT0 + "fusion[2].nir_a: -129 does not fit Int8 (-128..127)"},
    {"{\"tables\": [{\"type\": \"PARAM_MULTICOLOUR\"}]}", "1:22: tables[0].type: \"PARAM_MULTICOLOUR\" is not a PARAM_TABLE_TYPE name"},
    {"{\"tables\": [{\"type\": \"PARAM_FACE\"}, {\"type\": 21}]}", "1:37: tables[1] (PARAM_FACE): duplicate table type: already defined by tables[0]"},
    {"{\"tables\": [{}]}", "1:13: tables[0]: missing \"type\""},
    {"{\"header\": {\"pdtName\": \"123456789012345678901234567890123\"}, \"tables\": [{\"type\": 0}]}", "1:24: header.pdtName: text is 33 bytes long; the field holds 32"},
    {"{\"table\": []}", "1:11: table: unknown field \"table\" (did you mean \"tables\"?)"},
    {"{\"tables\": [{\"fusion\": [{\"ep_delta\": 1e400}]}]}", "1:38: JSON syntax error: the number '1e400' is too large"},
    {"{\"header\": {\"ver\": 82981.5}, \"tables\": [{\"type\": 0}]}", " not written: header ver = 82981.5 (the driver reads version 82981 only"},
};
// clang-format on

TEST(BuildErrors, NameTheirPlaceAndWriteNothing) {
    TempDir dir;
    for (const auto& [source, message] : kMistakes) {
        dir.write("src.json", source);
        const RunResult r =
            run([&](auto& out, auto& err) { return runBuild({dir.path("src.json"), dir.path("out.bin")}, out, err); });
        EXPECT_EQ(r.status, kExitError) << source;
        EXPECT_NE(r.err.find("error: " + dir.path("src.json") + ":" + message), std::string::npos) << r.err;
        EXPECT_FALSE(std::filesystem::exists(dir.path("out.bin"))) << source;
    }
}

}  // namespace

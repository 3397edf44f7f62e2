// build -> dump -> build gives the same bytes; the committed sample binary is the build of its
// source; header bytes that are not text and every curve form survive the round trip.
#include <gtest/gtest.h>

#include <random>

#include "commands.h"
#include "curve_forms.h"
#include "tool_test_support.h"
#include "tuning_codec.h"

namespace {

using namespace ispcfg;
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
    writeText(dir.path("dumped.json"), dumped.out);
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
    EXPECT_NE(dumped->text.find("\"subVer\": {\"bits\": \"0x7FC00001\"}"), std::string::npos);
    EXPECT_NE(dumped->text.find("\"dateTime\": \"77777777777777777777777777777777\""), std::string::npos);
    EXPECT_NE(dumped->text.find("\"hex\": \"fffe78"), std::string::npos);
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
        Curve curve{};
        std::vector<Knot> knots{{0, level()}};
        if (i % 4 == 1) knots.emplace_back(510, level());
        for (int x = 30 + static_cast<int>(rng() % 40); i % 4 == 2 && x < 510; x += 30 + static_cast<int>(rng() % 80))
            knots.emplace_back(x, level());
        curve = curveThroughKnots(knots);
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

}  // namespace

// build -> dump -> build gives the same bytes; the committed sample binary is the build of its
// source; header bytes that are not text and every curve form survive the round trip.
#include <gtest/gtest.h>

#include <random>

#include "commands.h"
#include "curve_forms.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

// Dumps `binary`, builds the dump, and returns the rebuilt bytes.
std::vector<uint8_t> dumpAndRebuild(const TempDir& dir, const std::string& binary, int buildStatus = kExitOk) {
    const std::string json = dir.path("dumped.json");
    const std::string rebuilt = dir.path("rebuilt.bin");
    const RunResult dumped = run([&](auto& out, auto& err) { return runDump({binary, json}, out, err); });
    EXPECT_EQ(dumped.status, kExitOk) << dumped.err;
    const RunResult built = run([&](auto& out, auto& err) { return runBuild({json, rebuilt, false}, out, err); });
    EXPECT_EQ(built.status, buildStatus) << built.err;
    return readBytes(rebuilt);
}

TEST(RoundTrip, SampleBuildDumpBuildIsByteIdentical) {
    TempDir dir;
    const std::string first = dir.path("first.bin");
    const RunResult built = run([&](auto& out, auto& err) {
        return runBuild({sampleSourcePath(), first, false}, out, err);
    });
    ASSERT_EQ(built.status, kExitOk) << built.err;
    const std::vector<uint8_t> original = readBytes(first);
    ASSERT_EQ(original.size(), kFileOverhead + 10 * kEntryBytes);
    EXPECT_EQ(dumpAndRebuild(dir, first), original);
}

// The binary in data/sample must be rebuilt whenever its source changes.
TEST(RoundTrip, CommittedSampleBinaryIsTheBuildOfItsSource) {
    TempDir dir;
    const std::string built = dir.path("sample.bin");
    ASSERT_EQ(run([&](auto& out, auto& err) {
                  return runBuild({sampleSourcePath(), built, false}, out, err);
              }).status,
              kExitOk);
    EXPECT_EQ(readBytes(built), readBytes(sampleBinaryPath()))
        << "rebuild it: cmake --build <dir> --target ispdsp-sample-param-file";
}

TEST(RoundTrip, HeaderBytesThatAreNotTextAndOddVersionsSurvive) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    image.header.subVerBits = 0x7FC00001;       // a NaN: not a JSON number
    image.header.dateTime.fill('7');            // 32 characters, no NUL
    image.header.archName = {0xFF, 0xFE, 'x'};  // not UTF-8
    image.header.pdtName = {'a', 0, 'b'};       // a byte after the NUL
    const std::string path = dir.path("odd.bin");
    writeBytes(path, serializeParamFile(image));
    EXPECT_EQ(dumpAndRebuild(dir, path), readBytes(path));
    const std::string json = readText(dir.path("dumped.json"));
    EXPECT_NE(json.find("\"bits\": \"0x7FC00001\""), std::string::npos) << json.substr(0, 400);
    EXPECT_NE(json.find("\"dateTime\": \"77777777777777777777777777777777\""), std::string::npos);
    EXPECT_NE(json.find("\"hex\": \"fffe78"), std::string::npos);
}

TEST(RoundTrip, NonZeroPaddingIsReportedAndNormalised) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    image.entries[0].bytes[8738] = 0x5A;  // padding after ispSbm3dParam
    const std::string path = dir.path("padded.bin");
    writeBytes(path, serializeParamFile(image));
    const RunResult dumped = run([&](auto& out, auto& err) { return runDump({path, ""}, out, err); });
    EXPECT_EQ(dumped.status, kExitFindings);
    EXPECT_NE(dumped.err.find("PARAM_MULTICOLOR padding byte at table offset 8738 = 0x5A"), std::string::npos)
        << dumped.err;
    image.entries[0].bytes[8738] = 0;
    writeText(dir.path("dumped.json"), dumped.out);
    ASSERT_EQ(run([&](auto& out, auto& err) {
                  return runBuild({dir.path("dumped.json"), dir.path("rebuilt.bin"), false}, out, err);
              }).status,
              kExitOk);
    EXPECT_EQ(readBytes(dir.path("rebuilt.bin")), serializeParamFile(image));
}

// Curves of every shape: constant, ramps, knots, and noise (the plain point list).
class CurveRoundTrip : public ::testing::TestWithParam<int> {};

TEST_P(CurveRoundTrip, EncodeThenDecodeGivesTheSamePoints) {
    std::mt19937 rng(static_cast<unsigned>(GetParam()));
    Curve curve{};
    switch (GetParam() % 4) {
        case 0: curve = curveThroughKnots({{0, static_cast<int>(rng() % 256)}}); break;
        case 1:
            curve = curveThroughKnots({{0, static_cast<int>(rng() % 256)}, {510, static_cast<int>(rng() % 256)}});
            break;
        case 2: {
            std::vector<Knot> knots{{0, static_cast<int>(rng() % 256)}};
            for (int x = 30 + static_cast<int>(rng() % 40); x < 510; x += 30 + static_cast<int>(rng() % 80)) {
                knots.emplace_back(x, static_cast<int>(rng() % 256));
            }
            curve = curveThroughKnots(knots);
            break;
        }
        default:
            for (auto& v : curve) v = static_cast<uint8_t>(rng());
    }
    const OrderedJson encoded = encodeCurve(curve);
    Diagnostics diag;
    const auto decoded = decodeCurve(Json::parse(encoded.dump()), "w_nir", diag);
    ASSERT_TRUE(decoded.has_value()) << diag.messages().front();
    EXPECT_EQ(*decoded, curve) << encoded.dump();
    if (GetParam() % 4 == 0) {
        EXPECT_TRUE(encoded.contains("constant"));
    }
    if (GetParam() % 4 == 3) {
        EXPECT_TRUE(encoded.is_array());
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, CurveRoundTrip, ::testing::Range(0, 40));

TEST(CurveForms, KnotsInterpolateHalfAwayFromZeroAndHoldOutside) {
    // Between (100, 0) and (104, 2): 0.5 at x = 101 rounds to 1, 1.5 at x = 103 to 2.
    const Curve c = curveThroughKnots({{100, 0}, {104, 2}, {200, 50}});
    EXPECT_EQ(c[0], 0);
    EXPECT_EQ(c[101], 1);
    EXPECT_EQ(c[102], 1);
    EXPECT_EQ(c[103], 2);
    EXPECT_EQ(c[152], 26);  // 2 + 48 * 48 / 96 = 26
    EXPECT_EQ(c[510], 50);
    const Curve ramp = curveThroughKnots({{0, 0}, {510, 255}});
    EXPECT_EQ(ramp[1], 1);      // 0.5 -> 1
    EXPECT_EQ(ramp[255], 128);  // 127.5 -> 128
}

}  // namespace

// Failures an integration engineer meets first: a library that does not load,
// a parameter file the driver refuses (with the driver's own log lines), and
// scenario files with a syntax error or a bad field.
#include <gtest/gtest.h>

#include <fstream>

#include "sim_runner.h"

namespace {

using simtest::Json;

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(Errors, MissingLibraryNamesThePathAndDlerror) {
    simtest::TempDir dir;
    const std::string path = dir.path("no/libispdsp.so");
    const simtest::SimResult run = simtest::runSim({"--lib", path, simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "cannot load the driver library " + path)) << run.err;
    EXPECT_TRUE(contains(run.err, "cannot open shared object file")) << run.err;
    EXPECT_TRUE(run.out.empty());
}

TEST(Errors, LibraryWithoutTheDriverEntryPoints) {
    // A shared object that loads but is not the driver.
    const simtest::SimResult run = simtest::runSim({"--lib", "libm.so.6", simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "does not export DRV_dspIspCreateX")) << run.err;
}

TEST(Errors, BadTuningFileShowsTheDriversLog) {
    simtest::TempDir dir;
    // The sample cut short: its checksum and block no longer hold.
    std::string bytes = simtest::readFile(simtest::samplePath("dsp_isp_para.bin"));
    ASSERT_GT(bytes.size(), 5000u);
    const std::string tuning = dir.write("cut.bin", bytes.substr(0, 5000));
    const simtest::SimResult run =
        simtest::runSim({"--json", "--tuning", tuning, simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "creating the color pipe (aewPipeId 0) failed: DRV_dspIspCreateX returned -1"))
        << run.err;
    EXPECT_TRUE(contains(run.err, "[DSP_DRV] ERROR  (DRV_dspIspCreateX|")) << run.err;
    EXPECT_TRUE(contains(run.err, "DRV_ispCfgLoad /var/tmp/0/dsp_isp_para.bin failed!")) << run.err;
    EXPECT_TRUE(contains(run.err, "check the tuning file " + tuning)) << run.err;
    // The results stream stays JSON and ends with the error and the summary.
    const std::vector<Json> events = simtest::parseLines(run.out);
    EXPECT_EQ(simtest::eventsOf(events, "error").size(), 1u);
    EXPECT_TRUE(simtest::eventsOf(events, "frame").empty());
    EXPECT_EQ(events.back()["event"], "end");
}

TEST(Errors, MissingTuningFile) {
    simtest::TempDir dir;
    const simtest::SimResult run =
        simtest::runSim({"--tuning", dir.path("absent.bin"), simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, dir.path("absent.bin") + ": no such file")) << run.err;
}

struct BadScenario {
    const char* name;
    const char* text;
    const char* message;  // expected after "<file>"
};

class ScenarioErrors : public testing::TestWithParam<BadScenario> {};

TEST_P(ScenarioErrors, NameTheFileAndThePlace) {
    simtest::TempDir dir;
    const std::string file = dir.write("bad.json", GetParam().text);
    const simtest::SimResult run = simtest::runSim({file});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(contains(run.err, "bad scenario: " + file + GetParam().message)) << run.err;
    EXPECT_TRUE(run.out.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Files, ScenarioErrors,
    testing::Values(
        BadScenario{"SyntaxLineAndColumn", "{\n  \"frames\": 3,\n  \"defaults\": {\"gain\": 2,}\n}\n",
                    ":3:26: syntax error"},
        BadScenario{"TruncatedFile", "{\n  \"segments\": [\n", ":3:1: syntax error"},
        BadScenario{"OutOfRangeInASegment",
                    R"({"segments": [{"frames": 2}, {"frames": 3, "mono": {"gain": 17}}]})",
                    ": segments[1] (frames 2-4): field 'mono.gain': 17 is outside 0..15"},
        BadScenario{"UnknownSceneName", R"({"keyframes": [{"frame": 0}, {"frame": 4, "imageScene": "parking"}]})",
                    ": keyframes[1] (frame 4): field 'imageScene': unknown name \"parking\""},
        BadScenario{"UnknownField", R"({"keyframes": [{"frame": 0, "zom": 1}]})",
                    ": keyframes[0] (frame 0): unknown field 'zom'"},
        BadScenario{"KeyframesOutOfOrder", R"({"keyframes": [{"frame": 3}, {"frame": 1}]})",
                    ": keyframes[1] (frame 1): keyframes must be in ascending frame order"},
        BadScenario{"RampInAKeyframe", R"({"keyframes": [{"frame": 0, "gain": {"from": 0, "to": 3}}]})",
                    ": keyframes[0] (frame 0): field 'gain': ramps"},
        BadScenario{"GainBesideIndexes", R"({"defaults": {"gain": 2, "interCoff": 0.5}})",
                    ": defaults: field 'gain' cannot stand beside"},
        BadScenario{"FractionalZoom", R"({"segments": [{"frames": 1, "zoom": 1.5}]})",
                    ": segments[0] (frame 0): field 'zoom': expected a whole number"},
        BadScenario{"SegmentWithoutFrames", R"({"segments": [{"frames": 2}, {"gain": 1}]})",
                    ": segments[1] (from frame 2): missing field 'frames'"}),
    [](const testing::TestParamInfo<BadScenario>& info) { return std::string(info.param.name); });

TEST(Errors, BadCommandLineIsAUsageError) {
    const simtest::SimResult run = simtest::runSim({"--pipe", "left"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(contains(run.err, "--pipe")) << run.err;
}

}  // namespace

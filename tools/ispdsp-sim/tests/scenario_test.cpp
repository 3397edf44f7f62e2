// Every bundled scenario, run once: its JSON output compared line by line with the golden file
// committed under tests/golden/, and what it must show worked out independently of the
// simulator's output: frame counts and inputs from the scenario files, the zoom bands from the
// sample registration file, the output modes of the standby switch, the tables that the sample
// parameter file holds, and the symmetry of the colour/mono combination.
//
// The golden comparison masks the driver's source line numbers inside log lines
// ("(function|123)"), the library's file name (it carries the build's version) and the absolute
// input paths (they name the checkout), so editing the library's sources does not disturb it;
// anything else that changes what reaches the DSP does. After a deliberate change (driver
// messages, sample data, scenarios), regenerate the golden files and review the diff:
//   cmake --build <build dir> --target ispdsp-sim-golden
// or for one scenario (from the source folder):
//   <build dir>/tools/ispdsp-sim/ispdsp-sim --json --no-progress data/sample/scenarios/gain_sweep.json
//       -o tools/ispdsp-sim/tests/golden/gain_sweep.jsonl
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <tuple>

#include "sim_runner.h"

namespace {

using simtest::eventsOf;
using simtest::Json;
using simtest::messagesOf;

// Events of one frame.
std::vector<Json> inFrame(const std::vector<Json>& events, int64_t frame) {
    std::vector<Json> out;
    for (const Json& e : events)
        if (e["frame"] == frame && e["event"] != "frame") out.push_back(e);
    return out;
}

// The DSP output mode that the FSSWITCH message carries for a standby switch.
int outputMode(int pSwitch) { return pSwitch == 0 ? 3 : pSwitch == 1 ? 1 : pSwitch == 2 ? 5 : 0; }

int fieldOf(const Json& message, const char* field) { return message["fields"][field]; }

// Both pipes combine the same difference and mark its range.
void gainSweep(const std::vector<Json>& events) {
    ASSERT_EQ(eventsOf(events, "frame").size(), 16u);
    // Every frame, both pipes: one switch message and one fusion message. (The switch's output
    // mode is checked by the day/night test, the zoom band by the zoom sweep.)
    EXPECT_EQ(messagesOf(events, "FUSION").size(), 32u);
    EXPECT_EQ(messagesOf(events, "FSSWITCH").size(), 32u);
    // Frame 0: the mono pipe has not calculated when the colour pipe combines, so the colour
    // call fails; from then on both calls succeed.
    for (const Json& call : eventsOf(events, "call"))
        EXPECT_TRUE(call["op"] != "OpSetFusion" || call["ret"] == (call["frame"] == 0 && call["pipe"] == "color" ? -1 : 0))
            << call.dump();
    // |colour - mono| is the same seen from either pipe once both have calculated.
    const auto colour = messagesOf(events, "FUSION", "color"), mono = messagesOf(events, "FUSION", "mono");
    for (size_t i = 1; i < colour.size(); ++i) {
        EXPECT_EQ(colour[i]["fields"], mono[i]["fields"]) << "frame " << i;
        EXPECT_EQ(colour[i]["w_nir"], mono[i]["w_nir"]) << "frame " << i;
    }
    // The colour pipe crosses the mono pipe's gain (6.5): the difference shrinks, then grows.
    EXPECT_GT(fieldOf(colour[1], "ep_delta"), fieldOf(colour[6], "ep_delta"));
    EXPECT_LT(fieldOf(colour[7], "ep_delta"), fieldOf(colour[15], "ep_delta"));
    // Values outside the DSP's range are marked with the range (two fields, ranges written here).
    for (const Json& m : messagesOf(events, "FUSION"))
        for (const auto& [field, lo, hi] :
             {std::tuple<const char*, int, int>{"ep_delta", 1, 16383}, {"high_lum_thr", -256, -1}}) {
            const int value = fieldOf(m, field);
            const Json range = {{"value", value}, {"min", lo}, {"max", hi}};
            EXPECT_EQ(m.value("outOfRange", Json::object()).value(field, Json()),
                      value < lo || value > hi ? range : Json()) << m.dump();
        }
    for (const Json& m : eventsOf(events, "message")) EXPECT_FALSE(m.contains("stray")) << m.dump();
}

// IR messages follow the zoom bands.
void zoomSweep(const std::vector<Json>& events) {
    // The zoom positions of the sample registration file, in file order.
    std::vector<int> zooms;
    std::istringstream in(simtest::readFile(simtest::samplePath("calibration.txt")));
    std::smatch match;
    for (std::string line; std::getline(in, line);)
        if (std::regex_search(line, match, std::regex(R"(^ZOOM:\s*(-?[0-9]+))"))) zooms.push_back(std::stoi(match[1]));
    ASSERT_EQ(zooms.size(), 5u);
    // Expected: the first listed position at or above the zoom; beyond the list the band
    // stays; a message only when the band changes.
    std::map<int64_t, int> expected, actual;
    int band = 255, sent = 255;
    for (const Json& frame : eventsOf(events, "frame")) {
        const int zoom = frame["inputs"]["color"]["zoom"];
        const auto at = std::find_if(zooms.begin(), zooms.end(), [&](int z) { return zoom <= z; });
        if (at != zooms.end()) band = static_cast<int>(at - zooms.begin());
        if (band != sent) expected[frame["frame"]] = sent = band;
    }
    for (const Json& m : messagesOf(events, "IR")) {
        EXPECT_EQ(m["pipe"], "color");  // the first pipe to notice sends it
        actual[m["frame"]] = fieldOf(m, "zoomIndex");
    }
    EXPECT_EQ(actual, expected);
    EXPECT_GE(actual.size(), zooms.size());  // every band is visited
}

// Tables and the switch follow the camera state.
void dayNightHdr(const std::vector<Json>& events) {
    ASSERT_EQ(eventsOf(events, "frame").size(), 16u);
    // The refresh hands the driver sceneMode 0: only colour and HDR mode choose.
    const std::map<int, std::string> colourTables = {
        {0, "PARAM_MULTICOLOR"}, {4, "PARAM_WDR_MULTICOLOR"}, {5, "PARAM_HDR_MULTICOLOR"}};
    int64_t previousRow = 0;
    for (const Json& frame : eventsOf(events, "frame")) {
        const int64_t f = frame["frame"];
        const Json& in = frame["inputs"]["color"];
        const std::vector<Json> during = inFrame(events, f);
        const auto refresh = eventsOf(during, "refresh", "color");
        ASSERT_EQ(refresh.size(), 1u);
        const bool blackWhite = in["dncMode"] == 0;
        const int hdr = in["hdrMode"];
        EXPECT_EQ(refresh[0]["table"], blackWhite ? "PARAM_BLACKWHITE" : colourTables.at(hdr == 0 || hdr == 4 ? hdr : 5))
            << "frame " << f;
        EXPECT_EQ(refresh[0]["cfgChanged"], refresh[0]["curTableIdx"] != previousRow ? 1 : 0) << "frame " << f;
        previousRow = refresh[0]["curTableIdx"];
        // The sample's black-and-white table has no fusion: nothing reaches the DSP.
        const auto switches = messagesOf(during, "FSSWITCH");
        EXPECT_EQ(refresh[0]["fusionFlag"], blackWhite ? 0 : 1) << "frame " << f;
        ASSERT_EQ(eventsOf(during, "message").empty(), blackWhite) << "frame " << f;
        ASSERT_EQ(switches.size(), blackWhite ? 0u : 2u) << "frame " << f;
        for (const Json& m : switches)
            EXPECT_EQ(fieldOf(m, "fcswitch"), outputMode(frame["inputs"]["mono"]["pSwitch"]));
    }
}

// Each scene chooses its table or falls back.
void sceneChange(const std::vector<Json>& events) {
    // Scene -> (table in the sample parameter file, state map row); event has none: base
    // colour. Rows: twelve per scene block, blocks in the order 0, 1, 2, 4, 5 ... 13.
    const std::map<int, std::pair<std::string, int>> expected = {{0, {"PARAM_MULTICOLOR", 0}},
                                                                 {1, {"PARAM_TRAFFIC", 12}},
                                                                 {2, {"PARAM_FACE", 24}},
                                                                 {4, {"PARAM_IVS", 36}},
                                                                 {13, {"PARAM_MULTICOLOR", 144}}};
    std::set<int> seen;
    for (const Json& frame : eventsOf(events, "frame")) {
        const int scene = frame["inputs"]["color"]["imageScene"];
        seen.insert(scene);
        for (const Json& refresh : eventsOf(inFrame(events, frame["frame"]), "refresh")) {
            EXPECT_EQ(std::make_pair(refresh["table"].get<std::string>(), refresh["curTableIdx"].get<int>()),
                      expected.at(scene)) << frame.dump();
            EXPECT_EQ(refresh["fusionFlag"], 1);
        }
    }
    EXPECT_EQ(seen, (std::set<int>{0, 1, 2, 4, 13}));
}

std::vector<std::string> maskedLines(const std::string& text) {
    static const std::pair<std::regex, const char*> kMasks[] = {{std::regex(R"(\|[0-9]+\))"), "|#)"},
                                                                {std::regex(R"("library":"[^"]*")"), R"("library":"#")"},
                                                                {std::regex(R"("paths":\{[^}]*\})"), R"("paths":"#")"}};
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line); lines.push_back(line))
        for (const auto& [pattern, mask] : kMasks) line = std::regex_replace(line, pattern, mask);
    return lines;
}

void expectGolden(const std::string& name, const std::string& out) {
    const std::string goldenPath = std::string(ISPDSP_SIM_GOLDEN_DIR) + "/" + name + ".jsonl";
    const std::vector<std::string> expected = maskedLines(simtest::readFile(goldenPath)), actual = maskedLines(out);
    ASSERT_FALSE(expected.empty() || actual.empty()) << "no golden file " << goldenPath << " or no output";
    // A different sample parameter file explains every difference at once.
    ASSERT_EQ(Json::parse(expected.front())["tuning"], Json::parse(actual.front())["tuning"])
        << "data/sample/dsp_isp_para.bin is not the file the golden output was made with; regenerate";
    for (size_t i = 0; i < std::min(expected.size(), actual.size()); ++i)
        ASSERT_EQ(actual[i], expected[i]) << "first difference at line " << i + 1 << " of " << goldenPath;
    EXPECT_EQ(actual.size(), expected.size()) << goldenPath;
}

const std::map<std::string, void (*)(const std::vector<Json>&)> kOracles = {
    {"gain_sweep", gainSweep}, {"zoom_sweep", zoomSweep}, {"day_night_hdr", dayNightHdr}, {"scene_change", sceneChange},
};

class Bundled : public testing::TestWithParam<const char*> {};

TEST_P(Bundled, MatchesTheGoldenFileAndItsOwnOracle) {
    const simtest::SimResult run = simtest::runSim({"--json", "--no-progress", simtest::scenarioPath(GetParam())});
    ASSERT_EQ(run.status, 0) << run.err;
    expectGolden(GetParam(), run.out);
    kOracles.at(GetParam())(simtest::parseLines(run.out));
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Bundled,
                         testing::Values("gain_sweep", "zoom_sweep", "day_night_hdr", "scene_change"));

TEST(Stages, EveryStageIsDecodedWithoutStrayBytes) {
    const auto events = simtest::runJson({simtest::scenarioPath("scene_change"), "--stages", "--frames", "1"});
    for (const char* stage :
         {"LSM", "LAE", "SBM3D", "CSC", "FUSION_PLATE", "FG2C", "LLE", "YLWDR", "Y2D", "DLAE", "DLCFA", "SADE"}) {
        const auto sent = messagesOf(events, stage);
        ASSERT_EQ(sent.size(), 2u) << stage;
        for (const Json& m : sent) {
            EXPECT_FALSE(m.contains("stray") || m["fields"].empty()) << m.dump();
            EXPECT_EQ(m["nId"], m["pipe"] == "color" ? 0 : 1);  // the host's own handle per pipe
            EXPECT_FALSE(m.contains("outOfRange")) << m.dump();  // the calculation held every value to its range
        }
    }
    EXPECT_EQ(events.back()["failedCalls"], 0);  // every calculation and Set call succeeded
}

TEST(TableOutput, ShowsFramesMessagesAndSummary) {
    const simtest::SimResult run = simtest::runSim({"--frames", "2", simtest::scenarioPath("gain_sweep")});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* text : {"-- frame 1 (scenario)", "> FSSWITCH       fcswitch 1  mode DSP_OUTPUT_FUSE",
                             "refresh -> 0  cfgChanged 0  row 0  PARAM_MULTICOLOR (0)  fusion on",
                             "I [DSP_DRV] pswitch=1", "== summary: scenario gain_sweep.json, 2 frames",
                             "! outside the DSP range (expected: colour minus mono, as the driver combines a linked pair)",
                             "FUSION messages outside the DSP range by design (marked \"expected\"): 4\n   -1 results"})
        EXPECT_NE(run.out.find(text), std::string::npos) << text;
    EXPECT_EQ(simtest::runSim({"--frames", "2", "--quiet-log", simtest::scenarioPath("gain_sweep")}).out.find("[DSP_DRV]"),
              std::string::npos);
}

}  // namespace

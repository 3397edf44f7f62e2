// What each bundled scenario must show, worked out independently of the
// simulator's output: frame counts and inputs from the scenario files, the
// zoom bands from the sample registration file, the output modes of the
// standby switch, the tables that the sample parameter file holds, and the
// symmetry of the colour/mono combination.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <tuple>

#include "sim_runner.h"

namespace {

using simtest::Json;

std::vector<Json> runScenario(const std::string& name, std::vector<std::string> extra = {}) {
    extra.insert(extra.begin(), {"--json", simtest::scenarioPath(name)});
    const simtest::SimResult run = simtest::runSim(extra);
    EXPECT_EQ(run.status, 0) << run.err;
    return simtest::parseLines(run.out);
}

// Events of one frame.
std::vector<Json> inFrame(const std::vector<Json>& events, int64_t frame) {
    std::vector<Json> out;
    for (const Json& e : events)
        if (e["frame"] == frame && e["event"] != "frame") out.push_back(e);
    return out;
}

int64_t frameCount(const std::vector<Json>& events) {
    return static_cast<int64_t>(simtest::eventsOf(events, "frame").size());
}

// The DSP output mode that the FSSWITCH message carries for a standby switch.
uint32_t outputMode(int pSwitch) { return pSwitch == 0 ? 3u : pSwitch == 1 ? 1u : pSwitch == 2 ? 5u : 0u; }

TEST(GainSweep, SixteenStepsThroughTheGainRecords) {
    const std::vector<Json> events = runScenario("gain_sweep");
    ASSERT_EQ(frameCount(events), 16);
    for (const Json& frame : simtest::eventsOf(events, "frame")) {
        const int64_t f = frame["frame"];
        const Json& color = frame["inputs"]["color"];
        EXPECT_EQ(color["gainStartIndex"], f);
        EXPECT_EQ(color["gainEndIndex"], std::min<int64_t>(f + 1, 15));
        EXPECT_EQ(color["interCoff"], 0);
        EXPECT_EQ(frame["inputs"]["mono"]["gainStartIndex"], 6);
        EXPECT_EQ(frame["inputs"]["mono"]["interCoff"], 0.5);
    }
    // Every frame, both pipes: one switch message and one fusion message.
    EXPECT_EQ(simtest::messagesOf(events, "FSSWITCH").size(), 32u);
    EXPECT_EQ(simtest::messagesOf(events, "FUSION").size(), 32u);
    for (const Json& m : simtest::messagesOf(events, "FSSWITCH")) EXPECT_EQ(m["fields"]["fcswitch"], outputMode(1));
    // Zoom 1000 is the first calibrated position: one IR (band 0) and one CAL message in the run.
    const auto ir = simtest::messagesOf(events, "IR");
    ASSERT_EQ(ir.size(), 1u);
    EXPECT_EQ(ir[0]["fields"]["zoomIndex"], 0);
    const auto cal = simtest::messagesOf(events, "CAL");
    ASSERT_EQ(cal.size(), 1u);
    EXPECT_EQ(cal[0]["cfg_path_text"], "/var/tmp/calibration.txt");
    EXPECT_EQ(cal[0]["frame"], 0);

    // Frame 0: the mono pipe has not calculated when the colour pipe combines,
    // so the colour call fails; from then on both calls succeed.
    for (const Json& call : simtest::eventsOf(events, "call")) {
        if (call["op"] != "OpSetFusion") continue;
        const bool colourFirst = call["frame"] == 0 && call["pipe"] == "color";
        EXPECT_EQ(call["ret"], colourFirst ? -1 : 0) << call.dump();
    }
    // |colour - mono| is the same seen from either pipe once both have calculated.
    const auto colour = simtest::messagesOf(events, "FUSION", "color");
    const auto mono = simtest::messagesOf(events, "FUSION", "mono");
    for (size_t i = 1; i < colour.size(); ++i) {
        EXPECT_EQ(colour[i]["fields"], mono[i]["fields"]) << "frame " << i;
        EXPECT_EQ(colour[i]["w_nir"], mono[i]["w_nir"]) << "frame " << i;
    }
    // The colour pipe crosses the mono pipe's gain (6.5): the difference shrinks, then grows.
    EXPECT_GT(colour[1]["fields"]["ep_delta"].get<int>(), colour[6]["fields"]["ep_delta"].get<int>());
    EXPECT_LT(colour[7]["fields"]["ep_delta"].get<int>(), colour[15]["fields"]["ep_delta"].get<int>());
    // Values outside the DSP's range are marked with the range (two fields, ranges written here).
    for (const Json& m : simtest::messagesOf(events, "FUSION"))
        for (const auto& [field, lo, hi] :
             {std::tuple<const char*, int, int>{"ep_delta", 1, 16383}, {"high_lum_thr", -256, -1}}) {
            const int value = m["fields"][field];
            const bool outside = value < lo || value > hi;
            ASSERT_EQ(m.contains("outOfRange") && m["outOfRange"].contains(field), outside) << m.dump();
            if (outside) EXPECT_EQ(m["outOfRange"][field], (Json{{"value", value}, {"min", lo}, {"max", hi}}));
        }
    // No message carries bytes outside its fields.
    for (const Json& m : simtest::eventsOf(events, "message")) EXPECT_FALSE(m.contains("stray")) << m.dump();
}

// The zoom positions of the sample registration file, in file order.
std::vector<int> calibrationZooms() {
    std::vector<int> zooms;
    std::istringstream in(simtest::readFile(simtest::samplePath("calibration.txt")));
    std::string line;
    static const std::regex zoomLine(R"(^ZOOM:\s*(-?[0-9]+))");
    std::smatch match;
    while (std::getline(in, line))
        if (std::regex_search(line, match, zoomLine)) zooms.push_back(std::stoi(match[1]));
    return zooms;
}

TEST(ZoomSweep, IrMessagesFollowTheZoomBands) {
    const std::vector<int> zooms = calibrationZooms();
    ASSERT_EQ(zooms.size(), 5u);
    const std::vector<Json> events = runScenario("zoom_sweep");
    // Expected: the first listed position at or above the zoom; beyond the
    // list the band stays; a message only when the band changes.
    std::map<int64_t, int> expected;
    int band = 255;
    int sent = 255;
    for (const Json& frame : simtest::eventsOf(events, "frame")) {
        const int zoom = frame["inputs"]["color"]["zoom"];
        for (size_t i = 0; i < zooms.size(); ++i) {
            if (zoom <= zooms[i]) {
                band = static_cast<int>(i);
                break;
            }
        }
        if (band != sent) expected[frame["frame"]] = sent = band;
    }
    std::map<int64_t, int> actual;
    for (const Json& m : simtest::messagesOf(events, "IR")) {
        EXPECT_EQ(m["pipe"], "color");  // the first pipe to notice sends it
        actual[m["frame"]] = m["fields"]["zoomIndex"];
    }
    EXPECT_EQ(actual, expected);
    EXPECT_GE(actual.size(), zooms.size());  // every band is visited
}

TEST(DayNightHdr, TablesAndSwitchFollowTheCameraState) {
    const std::vector<Json> events = runScenario("day_night_hdr");
    ASSERT_EQ(frameCount(events), 16);
    int64_t previousRow = 0;
    for (const Json& frame : simtest::eventsOf(events, "frame")) {
        const int64_t f = frame["frame"];
        const Json& in = frame["inputs"]["color"];
        const std::vector<Json> during = inFrame(events, f);
        const auto refresh = simtest::eventsOf(during, "refresh", "color");
        ASSERT_EQ(refresh.size(), 1u);
        // The refresh hands the driver sceneMode 0: only colour and HDR mode choose.
        const bool blackWhite = in["dncMode"] == 0;
        const int hdr = in["hdrMode"];
        const std::string table = blackWhite ? "PARAM_BLACKWHITE"
                                  : hdr == 0 ? "PARAM_MULTICOLOR"
                                  : hdr == 4 ? "PARAM_WDR_MULTICOLOR"
                                             : "PARAM_HDR_MULTICOLOR";
        EXPECT_EQ(refresh[0]["table"], table) << "frame " << f;
        EXPECT_EQ(refresh[0]["cfgChanged"], refresh[0]["curTableIdx"] != previousRow ? 1 : 0) << "frame " << f;
        previousRow = refresh[0]["curTableIdx"];
        // The sample's black-and-white table has no fusion: nothing reaches the DSP.
        const auto switches = simtest::messagesOf(during, "FSSWITCH");
        if (blackWhite) {
            EXPECT_EQ(refresh[0]["fusionFlag"], 0);
            EXPECT_TRUE(simtest::eventsOf(during, "message").empty()) << "frame " << f;
        } else {
            ASSERT_EQ(switches.size(), 2u) << "frame " << f;
            for (const Json& m : switches)
                EXPECT_EQ(m["fields"]["fcswitch"], outputMode(frame["inputs"]["mono"]["pSwitch"]));
        }
    }
}

TEST(SceneChange, EachSceneChoosesItsTableOrFallsBack) {
    const std::vector<Json> events = runScenario("scene_change");
    // Scene -> table in the sample parameter file (event has none: base colour).
    const std::map<int, std::string> tables = {
        {0, "PARAM_MULTICOLOR"}, {1, "PARAM_TRAFFIC"}, {2, "PARAM_FACE"}, {4, "PARAM_IVS"}, {13, "PARAM_MULTICOLOR"}};
    // State map rows: twelve per scene block, blocks in the order 0, 1, 2, 4, 5 ... 13.
    const std::map<int, int> blocks = {{0, 0}, {1, 1}, {2, 2}, {4, 3}, {13, 12}};
    std::set<int> seen;
    for (const Json& frame : simtest::eventsOf(events, "frame")) {
        const int scene = frame["inputs"]["color"]["imageScene"];
        seen.insert(scene);
        for (const Json& refresh : simtest::eventsOf(inFrame(events, frame["frame"]), "refresh")) {
            EXPECT_EQ(refresh["table"], tables.at(scene)) << frame.dump();
            EXPECT_EQ(refresh["curTableIdx"], 12 * blocks.at(scene));
            EXPECT_EQ(refresh["fusionFlag"], 1);
        }
    }
    EXPECT_EQ(seen, (std::set<int>{0, 1, 2, 4, 13}));
}

TEST(Stages, EveryStageIsDecodedWithoutStrayBytes) {
    const std::vector<Json> events = runScenario("scene_change", {"--stages", "--frames", "1"});
    const std::set<std::string> stages = {"LSM", "LAE",   "SBM3D", "CSC",  "FUSION_PLATE", "FG2C",
                                          "LLE", "YLWDR", "Y2D",   "DLAE", "DLCFA",        "SADE"};
    for (const std::string& stage : stages) {
        const auto sent = simtest::messagesOf(events, stage);
        ASSERT_EQ(sent.size(), 2u) << stage;
        for (const Json& m : sent) {
            EXPECT_FALSE(m.contains("stray")) << m.dump();
            EXPECT_FALSE(m["fields"].empty()) << stage;
            EXPECT_EQ(m["nId"], m["pipe"] == "color" ? 0 : 1);  // the host's own handle per pipe
            EXPECT_FALSE(m.contains("outOfRange")) << m.dump();  // the calculation held every value to its range
        }
    }
    EXPECT_EQ(events.back()["failedCalls"], 0);  // every calculation and Set call succeeded
}

TEST(TableOutput, ShowsFramesMessagesAndSummary) {
    const simtest::SimResult run = simtest::runSim({"--frames", "2", simtest::scenarioPath("gain_sweep")});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* text :
         {"== ispdsp-sim: scenario gain_sweep.json", "-- frame 1 (scenario)",
          "> FSSWITCH       fcswitch 1  mode DSP_OUTPUT_FUSE", "> FUSION", "w_nir  min",
          "refresh -> 0  cfgChanged 0  row 0  PARAM_MULTICOLOR (0)  fusion on", "flag ISP_SET_FUSION 0 (stop)",
          "I [DSP_DRV] pswitch=1", "how to read it:", "(expected: the start of a linked pair",
          "== summary: scenario gain_sweep.json, 2 frames", "failed calls: none"})
        EXPECT_NE(run.out.find(text), std::string::npos) << text;
    const simtest::SimResult quiet =
        simtest::runSim({"--frames", "2", "--quiet-log", simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(quiet.out.find("[DSP_DRV]"), std::string::npos);
}

}  // namespace

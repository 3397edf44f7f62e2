// The aewDebug console through standard input: each command goes to the chosen pipe's
// OpSetDbgDspParam and is followed by one more frame, whose messages show the change.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>

#include "sim_runner.h"

namespace {

using simtest::Json;

// A pipe's FUSION message of a frame.
Json fusionOf(const std::vector<Json>& events, int64_t frame, const std::string& pipe = "color") {
    for (const Json& m : simtest::messagesOf(events, "FUSION", pipe))
        if (m["frame"] == frame) return m;
    ADD_FAILURE() << "no " << pipe << " FUSION message in frame " << frame;
    return Json::object();
}

// The return codes of the console's OpSetDbgDspParam calls.
std::vector<int> consoleResults(const std::vector<Json>& events) {
    std::vector<int> out;
    for (const Json& call : simtest::eventsOf(events, "call"))
        if (call["op"] == "OpSetDbgDspParam") out.push_back(call["ret"]);
    return out;
}

// Every second frame the console reads commands until "continue"; "exit" ends the run. w_nir 0
// loads the curve of nir.txt (30 .. 215) into the colour pipe: the combined curve of the console's
// frame, whose inputs are those of the frame before, changes. An unknown name is a real failure
// and prints the menu in the chosen language.
TEST(Console, EveryNFramesPausesUntilContinueOrExit) {
    const std::vector<Json> events =
        simtest::runJson({"--frames", "6", "--console-every", "2", "--lang", "zh", simtest::scenarioPath("gain_sweep")},
                         "w_nir 0\ncontinue\nbogus 1\nexit\nep_delta 5\n");
    std::vector<std::string> sources;
    const auto frames = simtest::eventsOf(events, "frame");
    for (const Json& frame : frames) sources.push_back(frame["source"]);
    ASSERT_EQ(sources,
              (std::vector<std::string>{"scenario", "scenario", "console", "scenario", "scenario", "console"}));
    EXPECT_EQ(simtest::eventsOf(events, "console")[0]["frame"], 1);  // after the second frame
    EXPECT_EQ(frames[2]["inputs"], frames[1]["inputs"]);              // the last state holds
    EXPECT_NE(fusionOf(events, 2)["w_nir"], fusionOf(events, 1)["w_nir"]);
    EXPECT_EQ(consoleResults(events), (std::vector<int>{0, -1}));  // nothing after exit
    EXPECT_EQ(events.back()["failedCalls"], 1);
    bool menu = false;
    for (const Json& log : simtest::eventsOf(events, "log"))
        menu = menu || log["text"].get<std::string>().find("ep_delta  : 数据模糊") != std::string::npos;
    EXPECT_TRUE(menu);
}

// One session. The FUSION message carries |colour - mono|. Setting the colour pipe's ep_delta to
// its lower bound and then past its upper bound (clamped) gives M - 1 and 16383 - M for the mono
// pipe's unchanged value M: their sum is 16382 whatever M is. Values the driver reads differently
// are named before they reach it, help is the menu and no failure, and "save" writes a
// tuning.json (replacing a file only as "save --force") that ispdsp-cfg rebuilds into the sample plus exactly the accepted changes. Frame 2
// of the gain sweep blends records 2 and 3.
TEST(Console, TunesWarnsExplainsAndSavesWhatWasTuned) {
    simtest::TempDir dir;
    const std::string saved = dir.path("tuned.json");
    const std::vector<Json> events = simtest::runJson(
        {"--frames", "3", "--console", "--save-tuning", dir.path("end.json"), simtest::scenarioPath("gain_sweep")},
        "ep_delta 1\naewDebug ep_delta 20000\nnir_k abc\nuv_w 7x\nhelp\nsave " + saved + "\nsave " + saved +
            "\nsave --force " + saved + "\n");
    const auto frames = simtest::eventsOf(events, "frame");
    ASSERT_EQ(frames.size(), 7u);  // three scenario frames, one per accepted change
    EXPECT_EQ(frames[3]["source"], "console");
    EXPECT_EQ(frames[3]["inputs"], frames[2]["inputs"]);  // the last state holds
    Json before = fusionOf(events, 2)["fields"], low = fusionOf(events, 3)["fields"];
    EXPECT_EQ(low["ep_delta"].get<int>() + fusionOf(events, 4)["fields"]["ep_delta"].get<int>(), 16382);
    EXPECT_NE(low["ep_delta"], before["ep_delta"]);
    before.erase("ep_delta");
    low.erase("ep_delta");
    EXPECT_EQ(before, low);  // only ep_delta moved
    std::vector<std::string> warnings;
    for (const Json& w : simtest::eventsOf(events, "warning")) warnings.push_back(w["message"]);
    EXPECT_EQ(warnings, (std::vector<std::string>{"ep_delta: 20000 is outside 1 to 16383: it will be clamped to 16383",
                                                  "nir_k: \"abc\" is not a number: the driver reads it as 0",
                                                  "uv_w: the driver reads \"7x\" as 7 (it stops at \"x\")"}));
    // By design: the pair's first fusion call and the menu; nothing failed.
    EXPECT_EQ(consoleResults(events), (std::vector<int>{0, 0, 0, 0, -1}));
    EXPECT_EQ(events.back()["expectedResults"], 2);
    EXPECT_EQ(events.back()["failedCalls"], 0);
    EXPECT_EQ(events.back()["consoleChanges"], 4);  // one flag request per accepted change
    EXPECT_TRUE(simtest::messagesOf(events, "FUSION", "color")[0].contains("expected"));
    // A file is replaced only by the confirming form; every console line names its pipe.
    ASSERT_EQ(simtest::eventsOf(events, "saved").size(), 3u);
    EXPECT_EQ(simtest::eventsOf(events, "error").at(0)["message"],
              "cannot save: " + saved + ": exists; not replaced (save --force " + saved + " replaces it)");
    EXPECT_EQ(simtest::eventsOf(events, "console", "color").size(), simtest::eventsOf(events, "console").size());
    EXPECT_EQ(simtest::readFile(saved), simtest::readFile(dir.path("end.json")));

    const std::string cfg = simtest::quote(ISPDSP_CFG_EXE);
    ASSERT_EQ(tooltest::runShell(cfg + " build " + saved + " -o " + dir.path("tuned.bin")).status, 0);
    std::istringstream diff(
        tooltest::runShell(cfg + " diff " + simtest::samplePath("dsp_isp_para.bin") + " " + dir.path("tuned.bin")).out);
    std::set<std::string> changed;
    for (std::string line; std::getline(diff, line);) {
        std::smatch m;
        if (std::regex_match(line, m, std::regex(R"(PARAM_MULTICOLOR fusion\[([23])\]\.(\w+): -?\d+ -> (-?\d+))")))
            changed.insert(m[1].str() + " " + m[2].str() + " " + m[3].str());
        else
            EXPECT_TRUE(line.rfind("checksum", 0) == 0 || line.find("differences") != std::string::npos) << line;
    }
    EXPECT_EQ(changed, (std::set<std::string>{"2 ep_delta 16383", "3 ep_delta 16383", "2 nir_k 0", "3 nir_k 0",
                                              "2 uv_w 7", "3 uv_w 7"}));
}

}  // namespace

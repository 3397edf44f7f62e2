// Runs the built ispdsp-sim binary as a user would (arguments, standard input) and hands back
// its exit status and both output streams; JSON lines output is parsed line by line.
#pragma once

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "../../ispdsp-cfg/tests/tool_run.h"

namespace simtest {

using Json = nlohmann::ordered_json;

using tooltest::readFile;
using tooltest::TempDir;
using SimResult = tooltest::RunResult;

inline std::string quote(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

inline SimResult runSim(const std::vector<std::string>& args, const std::string& input = "") {
    std::string command = quote(ISPDSP_SIM_EXE);
    for (const std::string& arg : args) command += " " + quote(arg);
    return tooltest::runShell(command, input);
}

inline std::string samplePath(const std::string& name) { return std::string(ISPDSP_SIM_SAMPLE_DIR) + "/" + name; }
inline std::string scenarioPath(const std::string& name) { return samplePath("scenarios/" + name + ".json"); }

// Parses every line; a line that is not a JSON event fails the test.
inline std::vector<Json> parseLines(const std::string& out) {
    std::vector<Json> events;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        events.push_back(Json::parse(line, nullptr, /*allow_exceptions=*/false));
        EXPECT_TRUE(events.back().is_object() && events.back().contains("event")) << "not a JSON event: " << line;
    }
    return events;
}

// The events of one kind, optionally of one pipe; Set messages of one stage.
inline std::vector<Json> eventsOf(const std::vector<Json>& events, const std::string& kind,
                                  const std::string& pipe = "") {
    std::vector<Json> out;
    for (const Json& e : events)
        if (e["event"] == kind && (pipe.empty() || e["pipe"] == pipe)) out.push_back(e);
    return out;
}
inline std::vector<Json> messagesOf(const std::vector<Json>& events, const std::string& stage,
                                    const std::string& pipe = "") {
    std::vector<Json> out;
    for (const Json& e : eventsOf(events, "message", pipe))
        if (e["dir"] == "set" && e["stage"] == stage) out.push_back(e);
    return out;
}

// Runs the simulator with --json and `args`; a non-zero exit fails the test.
inline std::vector<Json> runJson(std::vector<std::string> args, const std::string& input = "") {
    args.insert(args.begin(), "--json");
    const SimResult run = runSim(args, input);
    EXPECT_EQ(run.status, 0) << run.err;
    return parseLines(run.out);
}

}  // namespace simtest

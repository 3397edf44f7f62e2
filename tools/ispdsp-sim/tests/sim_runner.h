// Runs the built ispdsp-sim binary as a user would (arguments, standard input) and hands back
// its exit status and both output streams; JSON lines output is parsed line by line.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace simtest {

using Json = nlohmann::ordered_json;

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

// A fresh folder under the temp dir, removed with its contents.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-sim-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
        dir_ = pattern;
    }
    ~TempDir() { std::filesystem::remove_all(dir_, ec_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

private:
    std::filesystem::path dir_;
    std::error_code ec_;
};

inline std::string quote(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

struct SimResult {
    int status = -1;
    std::string out, err;
};

inline SimResult runSim(const std::vector<std::string>& args, const std::string& input = "") {
    const TempDir io;
    std::string command = quote(ISPDSP_SIM_EXE);
    for (const std::string& arg : args) command += " " + quote(arg);
    const int raw = std::system((command + " <" + quote(io.write("in", input)) + " >" + quote(io.path("out")) +
                                 " 2>" + quote(io.path("err")))
                                    .c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(io.path("out")), readFile(io.path("err"))};
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

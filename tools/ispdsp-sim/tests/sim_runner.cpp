#include "sim_runner.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <fstream>
#include <iterator>
#include <sstream>

namespace simtest {

namespace {

std::string quote(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

}  // namespace

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-sim-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
    dir_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
}

std::string TempDir::write(const std::string& name, const std::string& content) const {
    const std::string file = path(name);
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

SimResult runSim(const std::vector<std::string>& args, const std::string& input) {
    TempDir io;
    const std::string in = io.write("stdin.txt", input);
    std::string command = quote(ISPDSP_SIM_EXE);
    for (const std::string& arg : args) command += " " + quote(arg);
    command += " <" + quote(in) + " >" + quote(io.path("stdout.txt")) + " 2>" + quote(io.path("stderr.txt"));
    const int raw = std::system(command.c_str());
    SimResult result;
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.out = readFile(io.path("stdout.txt"));
    result.err = readFile(io.path("stderr.txt"));
    return result;
}

std::string samplePath(const std::string& name) { return std::string(ISPDSP_SIM_SAMPLE_DIR) + "/" + name; }
std::string scenarioPath(const std::string& name) { return samplePath("scenarios/" + name + ".json"); }

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

std::vector<Json> parseLines(const std::string& out) {
    std::vector<Json> events;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        Json event = Json::parse(line, nullptr, /*allow_exceptions=*/false);
        EXPECT_TRUE(event.is_object() && event.contains("event")) << "not a JSON event: " << line;
        events.push_back(std::move(event));
    }
    return events;
}

std::vector<Json> eventsOf(const std::vector<Json>& events, const std::string& kind, const std::string& pipe) {
    std::vector<Json> out;
    for (const Json& e : events)
        if (e["event"] == kind && (pipe.empty() || e["pipe"] == pipe)) out.push_back(e);
    return out;
}

std::vector<Json> messagesOf(const std::vector<Json>& events, const std::string& stage, const std::string& pipe) {
    std::vector<Json> out;
    for (const Json& e : eventsOf(events, "message", pipe))
        if (e["dir"] == "set" && e["stage"] == stage) out.push_back(e);
    return out;
}

}  // namespace simtest

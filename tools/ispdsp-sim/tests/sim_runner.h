// Runs the built ispdsp-sim binary as a user would (arguments, standard
// input) and hands back its exit status and both output streams; JSON lines
// output is parsed line by line.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace simtest {

using Json = nlohmann::ordered_json;

struct SimResult {
    int status = -1;
    std::string out;
    std::string err;
};

// A fresh folder under the temp dir, removed with its contents.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path dir_;
};

SimResult runSim(const std::vector<std::string>& args, const std::string& input = "");

std::string samplePath(const std::string& name);    // data/sample/<name>
std::string scenarioPath(const std::string& name);  // data/sample/scenarios/<name>.json
std::string readFile(const std::string& path);

// Parses every line; a line that is not a JSON object fails the test.
std::vector<Json> parseLines(const std::string& out);

// The events of one kind, optionally only those of one pipe.
std::vector<Json> eventsOf(const std::vector<Json>& events, const std::string& kind, const std::string& pipe = "");
// Set messages of one stage.
std::vector<Json> messagesOf(const std::vector<Json>& events, const std::string& stage, const std::string& pipe = "");

}  // namespace simtest

// What the tests of both tools need to run a tool as a user would: a scratch folder, whole-file
// reads, and one shell command with its exit status and both output streams.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace tooltest {

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A fresh folder under the system temp dir, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-tool-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
        dir_ = pattern;
    }
    ~TempDir() { std::filesystem::remove_all(dir_, ec_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    // Writes text or bytes to the file `name`; returns its path.
    template <class Content>
    std::string write(const std::string& name, const Content& content) const {
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
        return path(name);
    }

private:
    std::filesystem::path dir_;
    std::error_code ec_;
};

// `text` with every key of `values` replaced by its value ("{d}" -> the test folder).
inline std::string expand(std::string text, const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [key, value] : values)
        for (size_t at; (at = text.find(key)) != std::string::npos;) text.replace(at, key.size(), value);
    return text;
}

struct RunResult {
    int status;
    std::string out, err;
};

// Runs `command` through the shell with `input` on standard input; standard output goes to
// `stdoutTo` when given (e.g. /dev/full), else it is captured.
inline RunResult runShell(const std::string& command, const std::string& input = "", const std::string& stdoutTo = "") {
    const TempDir io;
    const std::string out = stdoutTo.empty() ? io.path("out") : stdoutTo;
    const int raw = std::system((command + " <'" + io.write("in", input) + "' >" + out + " 2>'" + io.path("err") + "'").c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, stdoutTo.empty() ? readFile(out) : "", readFile(io.path("err"))};
}

}  // namespace tooltest

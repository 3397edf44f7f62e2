// Shared helpers of the ispdsp-cfg tests: a temporary folder, the sample as a file image,
// field edits by path, and command runs (in process or through the executable) with their
// output captured.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispcfg_test {

// A fresh folder under the system temp dir, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-cfg-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
        dir_ = pattern;
    }
    ~TempDir() { std::filesystem::remove_all(dir_, ec_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

private:
    std::filesystem::path dir_;
    std::error_code ec_;
};

inline void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}
inline void writeText(const std::string& path, const std::string& text) { writeBytes(path, {text.begin(), text.end()}); }
inline std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
inline std::vector<uint8_t> readBytes(const std::string& path) {
    const std::string text = readText(path);
    return {text.begin(), text.end()};
}

inline std::string sampleDir() { return ISPDSP_SAMPLE_DIR; }
inline std::string sampleSourcePath() { return sampleDir() + "/tuning.json"; }
inline std::string sampleBinaryPath() { return sampleDir() + "/dsp_isp_para.bin"; }

// The committed sample binary, taken apart.
inline ispcfg::ParamFileImage sampleImage() {
    std::string error;
    const auto file = ispcfg::parseParamFile(readBytes(sampleBinaryPath()), error);
    EXPECT_TRUE(file) << error;
    return file ? file->image : ispcfg::ParamFileImage{};
}

// The last entry of a type; fails the test when there is none.
inline ispcfg::TableEntry& tableOf(ispcfg::ParamFileImage& image, int32_t type) {
    for (auto it = image.entries.rbegin(); it != image.entries.rend(); ++it)
        if (it->type == type) return *it;
    ADD_FAILURE() << "no table of type " << type;
    return image.entries.emplace_back();
}

// Stores `value` into the field named by its path ("fusion", step 3, "ep_delta" or
// "ispLaeParam.windowLaeParam", -1, "gbce_level"), wrapped to the field's width.
inline void setField(ispcfg::TableEntry& table, const std::string& record, int step, const std::string& name,
                     int64_t value) {
    for (const ispcfg::FieldDef& f : ispcfg::allFields()) {
        if ((f.group[0] != '\0' ? std::string(f.record) + "." + f.group : f.record) != record || name != f.name)
            continue;
        const size_t at =
            record == "fusion" ? ispcfg::kFusionOffset + static_cast<size_t>(step) * ispcfg::kStepBytes : 0;
        return ispcfg::storeField(table.bytes.data() + at + f.offset, f.type, value);
    }
    ADD_FAILURE() << "no field " << record << "." << name;
}

struct RunResult {
    int status;
    std::string out, err;
};
// Runs one command function with captured streams.
inline RunResult run(const std::function<int(std::ostream&, std::ostream&)>& command) {
    std::ostringstream out, err;
    const int status = command(out, err);
    return {status, out.str(), err.str()};
}
// Runs the built ispdsp-cfg through the shell with `args`; standard output goes to `stdoutTo`
// when given (e.g. /dev/full), else it is captured.
inline RunResult runExe(const std::string& args, const std::string& stdoutTo = "") {
    const TempDir dir;
    const std::string out = stdoutTo.empty() ? dir.path("out") : stdoutTo;
    const int status =
        std::system((std::string(ISPDSP_CFG_EXE) + " " + args + " >" + out + " 2>" + dir.path("err")).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, stdoutTo.empty() ? readText(out) : "",
            readText(dir.path("err"))};
}

}  // namespace ispcfg_test

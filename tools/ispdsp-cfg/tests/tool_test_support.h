// Shared helpers of the ispdsp-cfg tests: a temporary folder, the sample as a file image,
// field edits by path, and command runs (in process or through the executable) with their
// output captured.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispcfg_test {

// A fresh folder under the system temp dir, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir() { std::filesystem::remove_all(dir_, ec_); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

private:
    std::filesystem::path dir_;
    std::error_code ec_;
};

inline std::string sampleDir() { return ISPDSP_SAMPLE_DIR; }
inline std::string sampleSourcePath() { return sampleDir() + "/tuning.json"; }
inline std::string sampleBinaryPath() { return sampleDir() + "/dsp_isp_para.bin"; }
ispcfg::ParamFileImage sampleImage();  // the committed sample binary, taken apart

// The last entry of a type; fails the test when there is none.
ispcfg::TableEntry& tableOf(ispcfg::ParamFileImage& image, int32_t type);
// Stores `value` into the field named by its path ("fusion", step 3, "ep_delta" or
// "ispLaeParam.windowLaeParam", -1, "gbce_level"), wrapped to the field's width.
void setField(ispcfg::TableEntry& table, const std::string& record, int step, const std::string& name, int64_t value);

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes);
void writeText(const std::string& path, const std::string& text);
std::vector<uint8_t> readBytes(const std::string& path);
std::string readText(const std::string& path);

struct RunResult {
    int status;
    std::string out;
    std::string err;
};
// Runs one command function with captured streams.
RunResult run(const std::function<int(std::ostream&, std::ostream&)>& command);
// Runs the built ispdsp-cfg through the shell with `args`; standard output goes to `stdoutTo`
// when given (e.g. /dev/full), else it is captured.
RunResult runExe(const std::string& args, const std::string& stdoutTo = "");

}  // namespace ispcfg_test

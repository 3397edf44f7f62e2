// Shared helpers of the ispdsp-cfg tests: a temporary folder, the sample as a file image,
// field edits by path, and command runs (in process or through the executable) with their
// output captured.
#pragma once

#include <functional>
#include <sstream>
#include <vector>

#include "param_file_image.h"
#include "tool_run.h"

namespace ispcfg_test {

using tooltest::RunResult;
using tooltest::TempDir;

using tooltest::readFile;
inline std::vector<uint8_t> readBytes(const std::string& path) {
    const std::string text = readFile(path);
    return {text.begin(), text.end()};
}

inline std::string sampleDir() { return ISPDSP_SAMPLE_DIR; }
inline std::string sampleSourcePath() { return sampleDir() + "/tuning.json"; }
inline std::string sampleBinaryPath() { return sampleDir() + "/dsp_isp_para.bin"; }

// The committed sample binary, taken apart.
inline ispdsp::tools::ParamFileImage sampleImage() {
    std::string error;
    const auto file = ispdsp::tools::parseParamFile(readBytes(sampleBinaryPath()), error);
    EXPECT_TRUE(file) << error;
    return file ? file->image : ispdsp::tools::ParamFileImage{};
}

// The last entry of a type; fails the test when there is none.
inline ispdsp::tools::TableEntry& tableOf(ispdsp::tools::ParamFileImage& image, int32_t type) {
    for (auto it = image.entries.rbegin(); it != image.entries.rend(); ++it)
        if (it->type == type) return *it;
    ADD_FAILURE() << "no table of type " << type;
    return image.entries.emplace_back();
}

// Stores `value` into the field named by its path ("fusion", step 3, "ep_delta" or
// "ispLaeParam.windowLaeParam", -1, "gbce_level"), wrapped to the field's width.
inline void setField(ispdsp::tools::TableEntry& table, const std::string& record, int step, const std::string& name,
                     int64_t value) {
    for (const ispdsp::tools::FieldDef& f : ispdsp::tools::allFields()) {
        if ((f.group[0] != '\0' ? std::string(f.record) + "." + f.group : f.record) != record || name != f.name)
            continue;
        const size_t at =
            record == "fusion" ? ispdsp::tools::kFusionOffset + static_cast<size_t>(step) * ispdsp::tools::kStepBytes : 0;
        return ispdsp::tools::storeField(table.bytes.data() + at + f.offset, f.type, value);
    }
    ADD_FAILURE() << "no field " << record << "." << name;
}

// Runs one command function with captured streams.
inline RunResult run(const std::function<int(std::ostream&, std::ostream&)>& command) {
    std::ostringstream out, err;
    const int status = command(out, err);
    return {status, out.str(), err.str()};
}
// Runs the built ispdsp-cfg with `args`; standard output goes to `stdoutTo` when given.
inline RunResult runExe(const std::string& args, const std::string& stdoutTo = "") {
    return tooltest::runShell(std::string(ISPDSP_CFG_EXE) + " " + args, "", stdoutTo);
}

}  // namespace ispcfg_test

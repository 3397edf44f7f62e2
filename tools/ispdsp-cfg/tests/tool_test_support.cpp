#include "tool_test_support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace ispcfg_test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-cfg-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    dir_ = pattern;
}

ispcfg::ParamFileImage sampleImage() {
    std::string error;
    const auto file = ispcfg::parseParamFile(readBytes(sampleBinaryPath()), error);
    EXPECT_TRUE(file) << error;
    return file ? file->image : ispcfg::ParamFileImage{};
}

ispcfg::TableEntry& tableOf(ispcfg::ParamFileImage& image, int32_t type) {
    for (auto it = image.entries.rbegin(); it != image.entries.rend(); ++it) {
        if (it->type == type) return *it;
    }
    ADD_FAILURE() << "no table of type " << type;
    return image.entries.emplace_back();
}

void setField(ispcfg::TableEntry& table, const std::string& record, int step, const std::string& name, int64_t value) {
    for (const ispcfg::FieldDef& f : ispcfg::allFields()) {
        if ((f.group[0] != '\0' ? std::string(f.record) + "." + f.group : f.record) != record || name != f.name)
            continue;
        const size_t at =
            record == "fusion" ? ispcfg::kFusionOffset + static_cast<size_t>(step) * ispcfg::kStepBytes : 0;
        return ispcfg::storeField(table.bytes.data() + at + f.offset, f.type, value);
    }
    ADD_FAILURE() << "no field " << record << "." << name;
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(out.good()) << path;
}

void writeText(const std::string& path, const std::string& text) { writeBytes(path, {text.begin(), text.end()}); }

std::vector<uint8_t> readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string readText(const std::string& path) {
    const std::vector<uint8_t> bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

RunResult run(const std::function<int(std::ostream&, std::ostream&)>& command) {
    std::ostringstream out, err;
    const int status = command(out, err);
    return {status, out.str(), err.str()};
}

RunResult runExe(const std::string& args, const std::string& stdoutTo) {
    const TempDir dir;
    const std::string out = stdoutTo.empty() ? dir.path("out") : stdoutTo;
    const int status =
        std::system((std::string(ISPDSP_CFG_EXE) + " " + args + " >" + out + " 2>" + dir.path("err")).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, stdoutTo.empty() ? readText(out) : "",
            readText(dir.path("err"))};
}

}  // namespace ispcfg_test

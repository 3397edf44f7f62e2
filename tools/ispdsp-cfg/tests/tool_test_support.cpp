#include "tool_test_support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "diagnostics.h"
#include "table_codec.h"

namespace ispcfg_test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-cfg-test-XXXXXX").string();
    char* made = mkdtemp(pattern.data());
    if (made == nullptr) throw std::runtime_error("mkdtemp failed");
    dir_ = made;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
}

std::string TempDir::path(const std::string& name) const { return (dir_ / name).string(); }

std::string sampleDir() { return ISPDSP_SAMPLE_DIR; }
std::string sampleSourcePath() { return sampleDir() + "/tuning.json"; }
std::string sampleBinaryPath() { return sampleDir() + "/dsp_isp_para.bin"; }

ispcfg::ParamFileImage sampleImage() {
    ispcfg::Diagnostics diag;
    auto doc = ispcfg::parseJsonText(readText(sampleSourcePath()), diag);
    std::optional<ispcfg::ParamFileImage> image;
    if (doc) image = ispcfg::decodeDocument(*doc, diag);
    EXPECT_TRUE(diag.ok()) << (diag.ok() ? "" : diag.messages().front());
    return image.value_or(ispcfg::ParamFileImage{});
}

ispcfg::TableEntry& tableOf(ispcfg::ParamFileImage& image, int32_t type) {
    for (auto it = image.entries.rbegin(); it != image.entries.rend(); ++it) {
        if (it->type == type) return *it;
    }
    ADD_FAILURE() << "no table of type " << type;
    static ispcfg::TableEntry none;
    return none;
}

namespace {

// The field and its byte offset in the table.
std::pair<const ispcfg::FieldDef*, size_t> locate(const std::string& record, int step, const std::string& name) {
    for (const ispcfg::FieldDef& f : ispcfg::allFields()) {
        const std::string path = f.group[0] != '\0' ? std::string(f.record) + "." + f.group : f.record;
        if (path != record || name != f.name) continue;
        const bool fusion = record == "fusion";
        const size_t at =
            fusion ? ispcfg::kFusionOffset + static_cast<size_t>(step) * ispcfg::kStepBytes + f.offset : f.offset;
        return {&f, at};
    }
    ADD_FAILURE() << "no field " << record << "." << name;
    return {nullptr, 0};
}

}  // namespace

void setField(ispcfg::TableEntry& table, const std::string& record, int step, const std::string& name, int64_t value) {
    const auto [f, at] = locate(record, step, name);
    if (f != nullptr) ispcfg::storeField(table.bytes.data() + at, f->type, value);
}

int64_t getField(const ispcfg::TableEntry& table, const std::string& record, int step, const std::string& name) {
    const auto [f, at] = locate(record, step, name);
    return f != nullptr ? ispcfg::loadField(table.bytes.data() + at, f->type) : 0;
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(out.good()) << path;
}

std::vector<uint8_t> readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeText(const std::string& path, const std::string& text) {
    writeBytes(path, std::vector<uint8_t>(text.begin(), text.end()));
}

std::string readText(const std::string& path) {
    const std::vector<uint8_t> bytes = readBytes(path);
    return std::string(bytes.begin(), bytes.end());
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

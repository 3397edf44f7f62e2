#include "sim_sandbox.h"

#include <stdlib.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace ispdsp::tools::sim {

namespace fs = std::filesystem;

using ispdsp::tuning::kParamFileDir;
using ispdsp::tuning::kParamFileName;

std::string tuningDevicePath() { return std::string(kParamFileDir) + "dsp_" + kParamFileName; }
std::string pipeTuningDevicePath(uint32_t pipeId) {
    return std::string(kParamFileDir) + std::to_string(pipeId) + "/dsp_" + kParamFileName;
}
std::string calibrationDevicePath() {
    return std::string(ispdsp::tuning::kRegistrationDirs[0]) + ispdsp::tuning::kRegistrationFileName;
}

SimSandbox::SimSandbox(const std::optional<std::string>& root, bool keep) {
    std::error_code ec;
    if (root) {
        fs::create_directories(*root, ec);
        if (!fs::is_directory(*root, ec)) throw SandboxError("cannot use " + *root + " as the sandbox root");
        root_ = fs::absolute(*root, ec).string();
    } else {
        std::string pattern = (fs::temp_directory_path(ec) / "ispdsp-sim-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw SandboxError("cannot create a temporary sandbox root in " + pattern);
        root_ = pattern;
        remove_ = !keep;
    }
    for (const char* dir : kWritableDeviceDirs) {
        fs::create_directories(hostPath(dir), ec);
        if (!ec) continue;
        const std::string why = "cannot create " + hostPath(dir) + ": " + ec.message();
        if (remove_) fs::remove_all(root_, ec);  // no destructor runs after a throwing constructor
        throw SandboxError(why);
    }
    rootScope_.emplace(root_);
}

SimSandbox::~SimSandbox() {
    rootScope_.reset();
    if (remove_) {
        std::error_code ec;
        fs::remove_all(root_, ec);
    }
}

std::string SimSandbox::hostPath(const std::string& devicePath) const {
    return root_ + (devicePath.empty() || devicePath.front() != '/' ? "/" : "") + devicePath;
}

void SimSandbox::place(const std::string& hostFile, const std::string& devicePath) const {
    const fs::path target = hostPath(devicePath);
    std::error_code ec;
    if (!fs::is_regular_file(hostFile, ec)) throw SandboxError(hostFile + ": no such file (for " + devicePath + ")");
    fs::create_directories(target.parent_path(), ec);
    fs::copy_file(hostFile, target, fs::copy_options::overwrite_existing, ec);
    if (ec) throw SandboxError("cannot copy " + hostFile + " to " + target.string() + ": " + ec.message());
}

std::optional<FileDigest> digestFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    uint32_t crc = 0xFFFFFFFFu;
    for (char b : bytes) crc = table[(crc ^ static_cast<uint8_t>(b)) & 0xFF] ^ (crc >> 8);
    return FileDigest{bytes.size(), crc ^ 0xFFFFFFFFu};
}

}  // namespace ispdsp::tools::sim

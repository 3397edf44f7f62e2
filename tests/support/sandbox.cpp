#include "support/sandbox.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace fs = std::filesystem;

namespace ispdsp_test {

namespace {
constexpr const char* kRootVariable = "ISPDSP_ROOT";
}

Sandbox::Sandbox() {
    if (const char* old = std::getenv(kRootVariable)) previous_root_ = old;
    std::string pattern = (fs::temp_directory_path() / "ispdsp-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        ADD_FAILURE() << "cannot create a sandbox under " << fs::temp_directory_path();
        return;
    }
    root_ = pattern;
    setenv(kRootVariable, root_.c_str(), 1);
}

Sandbox::~Sandbox() {
    if (previous_root_) {
        setenv(kRootVariable, previous_root_->c_str(), 1);
    } else {
        unsetenv(kRootVariable);
    }
    std::error_code ec;
    if (!root_.empty()) fs::remove_all(root_, ec);
}

std::string Sandbox::hostPath(std::string_view devicePath) const {
    std::string path(devicePath);
    if (path.empty() || path.front() != '/') path.insert(path.begin(), '/');
    return root_ + path;
}

// Never touches the build machine's own files: without a root nothing is written.
void Sandbox::writeFile(std::string_view devicePath, const void* data, size_t size) const {
    ASSERT_FALSE(root_.empty()) << "no sandbox root: refusing to write " << devicePath;
    const fs::path path = hostPath(devicePath);
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    EXPECT_TRUE(out.good()) << "cannot write " << path;
}

void Sandbox::makeDir(std::string_view devicePath) const {
    ASSERT_FALSE(root_.empty()) << "no sandbox root: refusing to create " << devicePath;
    std::error_code ec;
    fs::create_directories(hostPath(devicePath), ec);
    EXPECT_FALSE(ec) << "cannot create " << hostPath(devicePath) << ": " << ec.message();
}

std::vector<uint8_t> Sandbox::readFile(std::string_view devicePath) const {
    std::ifstream in(hostPath(devicePath), std::ios::binary);
    EXPECT_TRUE(in.good()) << "cannot read " << hostPath(devicePath);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool Sandbox::exists(std::string_view devicePath) const {
    std::error_code ec;
    return fs::exists(hostPath(devicePath), ec);
}

bool Sandbox::remove(std::string_view devicePath) const {
    std::error_code ec;
    return !root_.empty() && fs::remove_all(hostPath(devicePath), ec) > 0;
}

}  // namespace ispdsp_test

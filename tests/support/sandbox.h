// A private file system root for one test: a fresh temporary directory that
// ISPDSP_ROOT points at while the object lives, so the driver's absolute device
// paths ("/var/tmp/dsp_isp_para.bin") land inside it. Removed at the end; the
// previous ISPDSP_ROOT comes back.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace ispdsp_test {

class Sandbox {
public:
    Sandbox() {
        if (const char* old = std::getenv("ISPDSP_ROOT")) previousRoot_ = old;
        std::string pattern = (std::filesystem::temp_directory_path() / "ispdsp-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            ADD_FAILURE() << "cannot create a sandbox under " << std::filesystem::temp_directory_path();
            return;
        }
        root_ = pattern;
        setenv("ISPDSP_ROOT", root_.c_str(), 1);
    }
    ~Sandbox() {
        if (previousRoot_) {
            setenv("ISPDSP_ROOT", previousRoot_->c_str(), 1);
        } else {
            unsetenv("ISPDSP_ROOT");
        }
        std::error_code ec;
        if (!root_.empty()) std::filesystem::remove_all(root_, ec);
    }
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    // Where a device path lives on the build machine.
    std::string hostPath(std::string_view devicePath) const {
        return root_ + (devicePath.starts_with('/') ? "" : "/") + std::string(devicePath);
    }

    // Writes the file, creating its parent folders; a failure is a test failure.
    // Never touches the build machine's own files: without a root nothing is written.
    void writeFile(std::string_view devicePath, const void* data, size_t size) const {
        ASSERT_FALSE(root_.empty()) << "no sandbox root: refusing to write " << devicePath;
        const std::filesystem::path path = hostPath(devicePath);
        std::error_code ec;
        std::filesystem::create_directories(path.parent_path(), ec);
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
        EXPECT_TRUE(out.good()) << "cannot write " << path;
    }
    void writeFile(std::string_view devicePath, const std::vector<uint8_t>& bytes) const {
        writeFile(devicePath, bytes.data(), bytes.size());
    }
    void writeFile(std::string_view devicePath, std::string_view text) const { writeFile(devicePath, text.data(), text.size()); }
    // Creates a folder (and its parents).
    void makeDir(std::string_view devicePath) const {
        ASSERT_FALSE(root_.empty()) << "no sandbox root: refusing to create " << devicePath;
        std::error_code ec;
        std::filesystem::create_directories(hostPath(devicePath), ec);
        EXPECT_FALSE(ec) << "cannot create " << hostPath(devicePath) << ": " << ec.message();
    }

    // The whole file; empty when it cannot be read (a test failure).
    std::vector<uint8_t> readFile(std::string_view devicePath) const {
        std::ifstream in(hostPath(devicePath), std::ios::binary);
        EXPECT_TRUE(in.good()) << "cannot read " << hostPath(devicePath);
        return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    bool exists(std::string_view devicePath) const {
        std::error_code ec;
        return std::filesystem::exists(hostPath(devicePath), ec);
    }
    // Removes a file or a folder tree; true when something was removed.
    bool remove(std::string_view devicePath) const {
        std::error_code ec;
        return !root_.empty() && std::filesystem::remove_all(hostPath(devicePath), ec) > 0;
    }

private:
    std::string root_;
    std::optional<std::string> previousRoot_;
};

}  // namespace ispdsp_test

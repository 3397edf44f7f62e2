// A private file system root for one test: a fresh temporary directory that
// ISPDSP_ROOT points at while the object lives, so the driver's absolute device
// paths ("/var/tmp/dsp_isp_para.bin") land inside it. Removed at the end; the
// previous ISPDSP_ROOT comes back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ispdsp_test {

class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    // Where a device path lives on the build machine.
    std::string hostPath(std::string_view devicePath) const;

    // Writes the file, creating its parent folders; a failure is a test failure.
    void writeFile(std::string_view devicePath, const void* data, size_t size) const;
    void writeFile(std::string_view devicePath, const std::vector<uint8_t>& bytes) const {
        writeFile(devicePath, bytes.data(), bytes.size());
    }
    void writeFile(std::string_view devicePath, std::string_view text) const { writeFile(devicePath, text.data(), text.size()); }
    // Creates a folder (and its parents).
    void makeDir(std::string_view devicePath) const;

    // The whole file; empty when it cannot be read (a test failure).
    std::vector<uint8_t> readFile(std::string_view devicePath) const;
    std::string readText(std::string_view devicePath) const {
        const std::vector<uint8_t> bytes = readFile(devicePath);
        return {bytes.begin(), bytes.end()};
    }

    bool exists(std::string_view devicePath) const;
    // Removes a file or a folder tree; true when something was removed.
    bool remove(std::string_view devicePath) const;

private:
    std::string root_;
    std::optional<std::string> previous_root_;
};

}  // namespace ispdsp_test

// The device's file system in a folder: the host layer's sandbox root points at
// it while the simulator runs, and the files the driver reads are placed where
// it looks for them (tuning/device_paths.h).
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "ispdsp_host/scoped.h"
#include "tuning/device_paths.h"

namespace ispdsp::tools::sim {

// Device paths the simulator fills.
std::string tuningDevicePath();
std::string calibrationDevicePath();  // in the first place the driver looks
inline constexpr const char* kNirDevicePath = ispdsp::tuning::kNirCurvePath;
inline constexpr const char* kRlrDevicePath = ispdsp::tuning::kRlrPath;
// Folders the driver writes into but never creates: the RLR flash copy.
inline constexpr const char* kWritableDeviceDirs[] = {ispdsp::tuning::kRlrFlashDir};
// Per-pipe parameter files, used when the pipes get different tunings.
std::string pipeTuningDevicePath(uint32_t pipeId);

class SandboxError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class SimSandbox {
public:
    // A fresh temporary root (removed at the end unless kept), or `root` as
    // given (created if needed, never removed).
    explicit SimSandbox(const std::optional<std::string>& root, bool keep);
    ~SimSandbox();
    SimSandbox(const SimSandbox&) = delete;
    SimSandbox& operator=(const SimSandbox&) = delete;

    const std::string& root() const { return root_; }
    // Copies a host file to a device path; throws SandboxError naming both.
    void place(const std::string& hostFile, const std::string& devicePath) const;
    // The host path of a device path.
    std::string hostPath(const std::string& devicePath) const;

private:
    std::string root_;
    bool remove_ = false;
    std::optional<ispdsp::host::ScopedSandboxRoot> rootScope_;
};

// Size and CRC-32 of a file (for the run header); nullopt when unreadable.
struct FileDigest {
    uint64_t bytes;
    uint32_t crc32;
};
std::optional<FileDigest> digestFile(const std::string& path);

}  // namespace ispdsp::tools::sim

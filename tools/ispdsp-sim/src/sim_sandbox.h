// The device's file system in a folder: ISPDSP_ROOT points the host layer at
// it, and the files the driver reads are placed where it looks for them.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace ispsim {

// Device paths the simulator fills.
inline constexpr const char* kTuningDevicePath = "/var/tmp/dsp_isp_para.bin";
inline constexpr const char* kCalibrationDevicePath = "/var/tmp/calibration.txt";
inline constexpr const char* kNirDevicePath = "/tmp/nir.txt";
inline constexpr const char* kRlrDevicePath = "/var/custom/rlr_para.bin";
// Folders the driver writes into but never creates: the RLR flash copy.
inline constexpr const char* kWritableDeviceDirs[] = {"/mnt/mtd/3A"};
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
    std::optional<std::string> previousRoot_;
};

// Size and CRC-32 of a file (for the run header); nullopt when unreadable.
struct FileDigest {
    uint64_t bytes;
    uint32_t crc32;
};
std::optional<FileDigest> digestFile(const std::string& path);

}  // namespace ispsim

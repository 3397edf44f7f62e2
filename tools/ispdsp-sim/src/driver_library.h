// Loads libispdsp.so the way a camera host does: dlopen with every symbol
// bound at once (RTLD_NOW), so a library whose OSA_* imports the host process
// cannot satisfy fails here with dlerror's explanation, then dlsym of the
// exported functions the simulator calls.
#pragma once

#include <string>

#include "ispdsp/driver.h"
#include "ispdsp/rlr.h"

namespace ispdsp::tools::sim {

// Exported functions of the driver library, by C signature.
struct DriverApi {
    Int32 (*createX)(const DRV_ispXCreateParams*, DRV_ispOpsParams*) = nullptr;
    Int32 (*getXHndlX)(DRV_ispOpsParams*, Ptr*) = nullptr;
    Int32 (*loadRlrCfg)(Ptr*) = nullptr;  // optional
};

class DriverLibrary {
public:
    DriverLibrary() = default;
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    // false with error() set: names the path and what dlopen/dlsym said.
    bool open(const std::string& path);
    const std::string& error() const { return error_; }
    const std::string& path() const { return path_; }
    const DriverApi& api() const { return api_; }

    // Any exported symbol (the stage functions); null when absent.
    void* symbol(const char* name) const;

private:
    void* handle_ = nullptr;
    std::string path_;
    std::string error_;
    DriverApi api_;
};

// The library to load when --lib is not given: libispdsp.so next to the
// executable, else lib/libispdsp.so.0 of an installed tree, else the build
// tree's library.
std::string defaultLibraryPath(const std::string& builtPath);

// The sample data: the source tree's data/sample for the binary in its build
// folder (`buildDir`), else `installedRelative` from the executable's folder
// (bin/../share/ispdsp/sample), so an installed copy never reads the checkout.
std::string sampleDirectory(const std::string& buildDir, const std::string& sourceDir,
                            const std::string& installedRelative);

}  // namespace ispdsp::tools::sim

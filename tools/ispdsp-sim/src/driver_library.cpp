#include "driver_library.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>

namespace ispdsp::tools::sim {

namespace {

template <typename Fn>
bool bind(void* handle, const char* name, Fn& out, std::string& error, const std::string& path) {
    dlerror();
    void* address = dlsym(handle, name);
    if (address == nullptr) {
        const char* why = dlerror();
        error = path + ": the library does not export " + name + (why != nullptr ? std::string(" (") + why + ")" : "");
        return false;
    }
    out = reinterpret_cast<Fn>(address);
    return true;
}

}  // namespace

DriverLibrary::~DriverLibrary() {
    if (handle_ != nullptr) dlclose(handle_);
}

bool DriverLibrary::open(const std::string& path) {
    path_ = path;
    dlerror();
    // RTLD_NOW: unresolved OSA_* imports fail here, not at the first call.
    // RTLD_LOCAL: the driver's symbols stay out of the global scope; its
    // imports still resolve against the executable and libispdsp_host.
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) {
        const char* why = dlerror();
        error_ = "cannot load the driver library " + path + ": " + (why != nullptr ? why : "unknown error");
        return false;
    }
    if (!bind(handle_, "DRV_dspIspCreateX", api_.createX, error_, path_) ||
        !bind(handle_, "DRV_ispGetXHndlX", api_.getXHndlX, error_, path_))
        return false;
    api_.loadRlrCfg = reinterpret_cast<Int32 (*)(Ptr*)>(symbol("DRV_loadRlrCfg"));
    return true;
}

void* DriverLibrary::symbol(const char* name) const { return handle_ != nullptr ? dlsym(handle_, name) : nullptr; }

namespace {
std::filesystem::path executableDir() {
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0) return {};
    self[length] = '\0';
    return std::filesystem::path(self).parent_path();
}
}  // namespace

std::string defaultLibraryPath(const std::string& builtPath) {
    const std::filesystem::path dir = executableDir();
    if (dir.empty()) return builtPath;
    // Beside the executable, then an installed tree (bin/ and lib/ side by side).
    for (const std::filesystem::path& candidate : {dir / "libispdsp.so", dir / ".." / "lib" / "libispdsp.so.0"}) {
        std::error_code ec;
        if (std::filesystem::exists(candidate, ec)) return candidate.lexically_normal().string();
    }
    return builtPath;
}

std::string sampleDirectory(const std::string& buildDir, const std::string& sourceDir,
                            const std::string& installedRelative) {
    const std::filesystem::path dir = executableDir();
    std::error_code ec;
    if (dir.empty() || std::filesystem::equivalent(dir, buildDir, ec)) return sourceDir;
    return (dir / installedRelative).lexically_normal().string();
}

}  // namespace ispdsp::tools::sim

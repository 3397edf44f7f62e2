// A folder of the server's own under the system's temporary folder, removed with everything in it
// when it goes out of scope: where the tables are written for the library or the simulator to read.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <system_error>

namespace ispdsp::tools::cfg::serve {

class PrivateFolder {
public:
    PrivateFolder() {
        std::error_code ec;
        std::string pattern = (std::filesystem::temp_directory_path(ec) / "ispdsp-serve-XXXXXX").string();
        if (!ec && mkdtemp(pattern.data()) != nullptr) path_ = pattern;
    }
    ~PrivateFolder() {
        std::error_code ec;
        if (!path_.empty()) std::filesystem::remove_all(path_, ec);
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    // Empty when the folder could not be made.
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace ispdsp::tools::cfg::serve

// Which files the workbench may touch: the files named on its command line (read, never
// written) and new files in the folder it was started in (written, then readable). A request
// names a file by a plain name only; a path, "..", a hidden name, a percent sign (an encoded
// form) or a symbolic link is refused rather than interpreted.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ispdsp::tools::cfg::serve {

class FileAccess {
public:
    explicit FileAccess(std::filesystem::path startFolder);

    // A command-line file, offered to the page under `name`.
    void addInput(const std::string& name, const std::filesystem::path& path);
    // Names the page may read: the inputs, then the files written in this run.
    std::vector<std::string> readableNames() const;

    // The path behind `name`, or nothing with the reason in `error`.
    std::optional<std::filesystem::path> readable(const std::string& name, std::string& error) const;
    // Where `name` may be written: a new file in the start folder, or one written earlier in this
    // run when `replace` says so. Nothing, with the reason, otherwise.
    std::optional<std::filesystem::path> writable(const std::string& name, bool replace, std::string& error) const;
    void wrote(const std::string& name);

    std::vector<std::string> inputPaths() const;

private:
    std::filesystem::path start_;
    std::map<std::string, std::filesystem::path> inputs_;
    std::vector<std::string> inputOrder_;
    std::set<std::string> written_;
};

// Empty when `name` is a plain file name; else why it is refused.
std::string plainNameProblem(const std::string& name);

}  // namespace ispdsp::tools::cfg::serve

#include "file_access.h"

#include <sys/stat.h>

namespace ispdsp::tools::cfg::serve {

namespace fs = std::filesystem;

std::string plainNameProblem(const std::string& name) {
    if (name.empty()) return "no file name";
    if (name.size() > 200) return "the name is longer than 200 characters";
    if (name.front() == '.') return "\"" + name + "\": a name may not start with a dot";
    for (unsigned char c : name) {
        if (c == '/' || c == '\\') return "\"" + name + "\": a plain file name, no folder";
        if (c == '%') return "\"" + name + "\": no percent sign (encoded names are not decoded)";
        if (c < 0x20 || c == 0x7f) return "a name may not hold control characters";
    }
    return "";
}

FileAccess::FileAccess(fs::path startFolder) : start_(std::move(startFolder)) {}

void FileAccess::addInput(const std::string& name, const fs::path& path) {
    if (inputs_.emplace(name, path).second) inputOrder_.push_back(name);
}

std::vector<std::string> FileAccess::readableNames() const {
    std::vector<std::string> names = inputOrder_;
    for (const std::string& w : written_)
        if (!inputs_.count(w)) names.push_back(w);
    return names;
}

std::vector<std::string> FileAccess::inputPaths() const {
    std::vector<std::string> paths;
    for (const auto& [name, path] : inputs_) paths.push_back(path.string());
    return paths;
}

std::optional<fs::path> FileAccess::readable(const std::string& name, std::string& error) const {
    if (auto it = inputs_.find(name); it != inputs_.end()) return it->second;
    if (written_.count(name)) return start_ / name;
    const std::string problem = plainNameProblem(name);
    error = problem.empty() ? "\"" + name + "\": not a file of this run (only the command line's files and files saved here)"
                            : problem;
    return std::nullopt;
}

std::optional<fs::path> FileAccess::writable(const std::string& name, bool replace, std::string& error) const {
    if (error = plainNameProblem(name); !error.empty()) return std::nullopt;
    const fs::path target = start_ / name;
    struct stat st {};
    if (lstat(target.c_str(), &st) != 0) return target;  // a new file
    if (S_ISLNK(st.st_mode)) {
        error = name + ": is a symbolic link; not followed";
    } else if (!written_.count(name)) {
        error = name + ": was there before; the workbench writes only new files";
    } else if (!replace) {
        error = name + ": exists (saved earlier in this run); choose \"replace\" to write over it";
    } else {
        return target;
    }
    return std::nullopt;
}

void FileAccess::wrote(const std::string& name) { written_.insert(name); }

}  // namespace ispdsp::tools::cfg::serve

#include "output_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace ispdsp::tools {
namespace {

std::string reason(const std::string& what, int error) { return std::string(what) + ": " + std::strerror(error); }

// The same file: one device and inode, or (for names not created yet) one normalised path.
bool sameFile(const std::string& a, const std::string& b) {
    struct stat sa {}, sb {};
    if (::stat(a.c_str(), &sa) == 0 && ::stat(b.c_str(), &sb) == 0)
        return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
    std::error_code ea, eb;
    return std::filesystem::weakly_canonical(a, ea) == std::filesystem::weakly_canonical(b, eb) && !ea && !eb;
}

std::string existsText(const std::string& path, const std::string& howToReplace) {
    return path + ": exists; not replaced (" + howToReplace + " replaces it)";
}

}  // namespace

std::string outputRefusal(const std::string& path, const OutputRule& rule) {
    if (path.empty()) return "\"\": an empty path names no file";
    for (const std::string& input : rule.inputs)
        if (sameFile(path, input)) return path + ": is the input file " + input + "; not overwritten";
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return {};
    if (S_ISDIR(info.st_mode)) return path + ": is a directory, not a file";
    if (S_ISREG(info.st_mode) && !rule.replace) return existsText(path, rule.howToReplace);
    return {};
}

OutputFile::~OutputFile() {
    if (stream_ != nullptr) std::fclose(stream_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool OutputFile::fail(const std::string& why) {
    error_ = path_ + ": " + why;
    return false;
}

bool OutputFile::open(const std::string& path, const OutputRule& rule) {
    path_ = path;
    replace_ = rule.replace;
    howToReplace_ = rule.howToReplace;
    if (std::string refusal = outputRefusal(path, rule); !refusal.empty()) {
        error_ = std::move(refusal);
        return false;
    }
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {  // a device or a pipe
        stream_ = std::fopen(path.c_str(), "w");
        return stream_ != nullptr || fail(reason("cannot open", errno));
    }
    const std::filesystem::path target(path);
    const std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
    std::string pattern = folder + "/." + target.filename().string() + ".XXXXXX";
    const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) return fail(reason("cannot create a temporary file in " + folder, errno));
    temporary_ = pattern;
    const mode_t mask = ::umask(0);  // the permissions a plain create would give
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    stream_ = ::fdopen(fd, "w");
    if (stream_ == nullptr) {
        ::close(fd);
        return fail(reason("cannot open", errno));
    }
    return true;
}

bool OutputFile::commit(int lostErrno) {
    if (stream_ == nullptr) return fail("not open");
    errno = 0;
    bool written = std::fflush(stream_) == 0 && std::ferror(stream_) == 0;
    int error = lostErrno != 0 ? lostErrno : errno;
    if (written && !temporary_.empty() && ::fsync(fileno(stream_)) != 0) written = false, error = errno;
    if (std::fclose(stream_) != 0 && written) written = false, error = errno;
    stream_ = nullptr;
    if (!written) return fail(error != 0 ? reason("write failed", error) : "write failed");
    if (temporary_.empty()) return true;
    // Without the explicit choice, a file that appeared meanwhile is not replaced either.
    int moved = replace_ ? ::rename(temporary_.c_str(), path_.c_str())
                         : ::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE);
    if (moved != 0 && errno == EINVAL && !replace_) {  // a file system without RENAME_NOREPLACE
        moved = ::link(temporary_.c_str(), path_.c_str());
        if (moved == 0) ::unlink(temporary_.c_str());
    }
    if (moved != 0) {
        if (errno == EEXIST) {
            error_ = existsText(path_, howToReplace_);
            return false;
        }
        return fail(reason("cannot rename into place", errno));
    }
    temporary_.clear();
    return true;
}

bool writeOutputFile(const std::string& path, std::span<const char> bytes, const OutputRule& rule, std::string& error) {
    OutputFile file;
    bool ok = file.open(path, rule);
    if (ok) {
        const bool whole = std::fwrite(bytes.data(), 1, bytes.size(), file.stream()) == bytes.size();
        ok = file.commit(whole ? 0 : errno);
    }
    if (!ok) error = file.error();
    return ok;
}

}  // namespace ispdsp::tools

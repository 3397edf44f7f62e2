#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ispdsp::tools {
namespace {

// Closes the descriptor on every path out.
struct Descriptor {
    int fd;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

InputFile failure(const std::string& path, const std::string& reason) { return {{}, path + ": " + reason}; }

}  // namespace

// POSIX calls rather than a stream: a stream opens a directory and then throws on reading it.
InputFile readInputFile(const std::string& path) {
    if (path.empty()) return failure("\"\"", "an empty path names no file");
    Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (file.fd < 0) return failure(path, std::string("cannot open: ") + std::strerror(errno));
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return failure(path, std::string("cannot stat: ") + std::strerror(errno));
    if (S_ISDIR(info.st_mode)) return failure(path, "is a directory, not a file");
    if (S_ISREG(info.st_mode) && static_cast<uint64_t>(info.st_size) > kMaxInputBytes) {
        return failure(path, "is " + std::to_string(info.st_size) +
                                 " bytes long: larger than any file the tool reads (" + std::to_string(kMaxInputBytes) +
                                 ")");
    }
    InputFile in;
    uint8_t chunk[65536];
    for (;;) {  // also pipes and character devices, which have no size up front
        const ssize_t got = ::read(file.fd, chunk, sizeof chunk);
        if (got == 0) break;
        if (got < 0) {
            if (errno == EINTR) continue;
            return failure(path, std::string("read error: ") + std::strerror(errno));
        }
        in.bytes.insert(in.bytes.end(), chunk, chunk + got);
        if (in.bytes.size() > kMaxInputBytes) {
            return failure(
                path, "more than " + std::to_string(kMaxInputBytes) + " bytes: larger than any file the tool reads");
        }
    }
    return in;
}

InputFile readInputFileOfKind(const std::string& path, FileKind expected) {
    InputFile in = readInputFile(path);
    if (!in.ok()) return in;
    const FileKind found = recogniseFileKind(in.bytes);
    if (found != expected) return failure(path, wrongKindReason(found, expected));
    return in;
}

}  // namespace ispdsp::tools

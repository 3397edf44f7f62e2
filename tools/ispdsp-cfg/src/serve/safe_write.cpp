#include "safe_write.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ispdsp::tools::cfg::serve {

bool writeFileSafely(const std::filesystem::path& target, const std::string& bytes, std::string& error) {
    std::string temporary = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
    const int fd = mkstemp(temporary.data());
    if (fd < 0) {
        error = target.string() + ": cannot create a temporary file: " + std::strerror(errno);
        return false;
    }
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    const int writeErrno = done == bytes.size() ? 0 : (errno != 0 ? errno : EIO);
    const bool synced = writeErrno == 0 && ::fsync(fd) == 0 && fchmod(fd, 0644) == 0;
    const int syncErrno = errno;
    ::close(fd);
    if (!synced || std::rename(temporary.c_str(), target.c_str()) != 0) {
        error = target.string() + ": write failed: " + std::strerror(writeErrno != 0 ? writeErrno : syncErrno);
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

}  // namespace ispdsp::tools::cfg::serve

// Files of the reference host: stdio streams behind OSA_FileHandle, with every
// absolute path placed under the sandbox root named by ISPDSP_ROOT.
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"

namespace {

struct HostFile {
    std::FILE* stream;
    uint64_t bytes_read;  // counted against the read limit (fault injection)
};

std::atomic<uint64_t> g_read_limit{UINT64_MAX};

// The root is read at each call so a test can switch sandboxes at run time.
std::string resolve(const char* path) {
    const char* root = std::getenv("ISPDSP_ROOT");
    if (root == nullptr || root[0] == '\0' || path[0] != '/') {
        return path;
    }
    std::string out(root);
    while (!out.empty() && out.back() == '/') {
        out.pop_back();
    }
    return out + path;
}

HostFile* as_file(OSA_FileHandle h) { return static_cast<HostFile*>(h); }

// Int32 results count bytes: one call moves at most INT32_MAX.
size_t clamp_size(Uint32 size) { return size > INT32_MAX ? size_t{INT32_MAX} : size_t{size}; }

}  // namespace

extern "C" {

int ispdsp_host_resolve_path(const char* path, char* out, size_t out_size) {
    if (path == nullptr || out == nullptr || out_size == 0) {
        return -1;
    }
    const std::string resolved = resolve(path);
    if (resolved.size() >= out_size) {
        return -1;
    }
    std::memcpy(out, resolved.c_str(), resolved.size() + 1);
    return 0;
}

void ispdsp_host_limit_file_reads(uint64_t limit) { g_read_limit.store(limit); }

Int32 OSA_fileOpen(const Char* fileName, Int32 mode, OSA_FileHandle* hFile) {
    if (hFile == nullptr) {
        return -1;
    }
    *hFile = nullptr;
    if (fileName == nullptr || (mode != OSA_FILE_MODE_READ && mode != OSA_FILE_MODE_WRITE)) {
        return -1;
    }
    std::FILE* stream = std::fopen(resolve(fileName).c_str(), mode == OSA_FILE_MODE_READ ? "rb" : "wb");
    if (stream == nullptr) {
        return -1;
    }
    *hFile = new HostFile{stream, 0};
    return 0;
}

Int32 OSA_fileClose(OSA_FileHandle hFile) {
    HostFile* file = as_file(hFile);
    if (file == nullptr) {
        return -1;
    }
    const int rc = std::fclose(file->stream);
    delete file;
    return rc == 0 ? 0 : -1;
}

Int32 OSA_fileRead(OSA_FileHandle hFile, Ptr buffer, Uint32 size) {
    HostFile* file = as_file(hFile);
    if (file == nullptr || (buffer == nullptr && size != 0)) {
        return -1;
    }
    size_t want = clamp_size(size);
    const uint64_t limit = g_read_limit.load();
    if (limit != UINT64_MAX) {
        const uint64_t left = file->bytes_read >= limit ? 0 : limit - file->bytes_read;
        want = want < left ? want : static_cast<size_t>(left);
    }
    const size_t got = std::fread(buffer, 1, want, file->stream);
    file->bytes_read += got;
    if (got == 0 && want != 0 && std::ferror(file->stream)) {
        return -1;
    }
    return static_cast<Int32>(got);
}

Int32 OSA_fileWrite(OSA_FileHandle hFile, const void* buffer, Uint32 size) {
    HostFile* file = as_file(hFile);
    if (file == nullptr || (buffer == nullptr && size != 0)) {
        return -1;
    }
    const size_t want = clamp_size(size);
    const size_t put = std::fwrite(buffer, 1, want, file->stream);
    if (put == 0 && want != 0) {
        return -1;
    }
    return static_cast<Int32>(put);
}

Int32 OSA_fileSeek(OSA_FileHandle hFile, Int32 offset, Int32 whence) {
    HostFile* file = as_file(hFile);
    if (file == nullptr) {
        return -1;
    }
    int origin;
    switch (whence) {
        case OSA_SEEK_SET: origin = SEEK_SET; break;
        case OSA_SEEK_CUR: origin = SEEK_CUR; break;
        case OSA_SEEK_END: origin = SEEK_END; break;
        default: return -1;
    }
    // fseeko fails with EINVAL when the target lies before the start; the
    // position is then unchanged.
    return fseeko(file->stream, static_cast<off_t>(offset), origin) == 0 ? 0 : -1;
}

Int32 OSA_fileTell(OSA_FileHandle hFile, Uint32* position) {
    HostFile* file = as_file(hFile);
    if (file == nullptr || position == nullptr) {
        return -1;
    }
    const off_t pos = ftello(file->stream);
    if (pos < 0 || static_cast<uint64_t>(pos) > UINT32_MAX) {
        return -1;  // a position that Uint32 cannot carry is reported as a failure
    }
    *position = static_cast<Uint32>(pos);
    return 0;
}

Int32 OSA_fgets(Char* buffer, Int32 size, OSA_FileHandle hFile) {
    HostFile* file = as_file(hFile);
    if (file == nullptr || buffer == nullptr || size <= 0) {
        return -1;
    }
    return std::fgets(buffer, size, file->stream) != nullptr ? 0 : -1;
}

}  // extern "C"

// Files of the reference host: stdio streams behind OSA_FileHandle, with every
// absolute path placed under the sandbox root named by ISPDSP_ROOT, or memory
// streams over a store of files kept by path (fmemopen / open_memstream).
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct HostFile {
    std::FILE* stream;
    uint64_t read_limit = UINT64_MAX;  // fault injection, fixed at open
    uint64_t bytes_read = 0;           // counted against the read limit
    uint64_t write_limit = UINT64_MAX;  // fault injection, fixed at open
    uint64_t bytes_written = 0;
    std::shared_ptr<const Bytes> data;  // memory file being read: alive while open
    std::string written_path;          // memory file being written, stored at close
    char* written = nullptr;
    size_t written_size = 0;
};

uint64_t g_read_limit = UINT64_MAX;  // guarded by g_mutex, like the two below
std::string g_read_limit_path;       // empty: every file
std::atomic<uint64_t> g_open_files{0};
std::atomic<uint64_t> g_bytes_read{0};
std::atomic<bool> g_open_without_handle{false};
std::atomic<uint64_t> g_write_limit{UINT64_MAX};

std::mutex g_mutex;
bool g_memory_files = false;
std::map<std::string, std::shared_ptr<const Bytes>, std::less<>> g_store;

// A stream over the memory file `name`; nullptr when a read finds no file.
std::FILE* open_memory(const char* name, Int32 mode, HostFile& file) {
    std::lock_guard<std::mutex> lock(g_mutex);
    if (mode == OSA_FILE_MODE_WRITE) {
        g_store[name] = std::make_shared<const Bytes>();  // truncated at open, like "wb"
        file.written_path = name;
        return open_memstream(&file.written, &file.written_size);
    }
    const auto found = g_store.find(std::string_view(name));
    if (found == g_store.end()) {
        return nullptr;
    }
    file.data = found->second;
    static unsigned char empty;
    return fmemopen(file.data->empty() ? &empty : const_cast<unsigned char*>(file.data->data()), file.data->size(), "rb");
}

// The root a program set with ispdsp_host_set_sandbox_root, if any; guarded by g_root_mutex.
bool g_root_set = false;
std::string g_root;
std::mutex g_root_mutex;

// The root is read at each call so a test can switch sandboxes at run time.
std::string resolve(const char* path) {
    std::string out;
    {
        std::lock_guard<std::mutex> lock(g_root_mutex);
        if (g_root_set) {
            out = g_root;
        } else if (const char* env = std::getenv("ISPDSP_ROOT")) {
            out = env;
        }
    }
    if (out.empty() || path[0] != '/') {
        return path;
    }
    while (!out.empty() && out.back() == '/') {
        out.pop_back();
    }
    return out + path;
}

HostFile* as_file(OSA_FileHandle h) { return static_cast<HostFile*>(h); }

// Int32 results count bytes: one call moves at most INT32_MAX.
size_t clamp_size(Uint32 size) { return size > INT32_MAX ? size_t{INT32_MAX} : size_t{size}; }

// How many of `want` bytes a limit lets through after `used` bytes.
size_t allowed(uint64_t limit, uint64_t used, size_t want) {
    const uint64_t left = used >= limit ? 0 : limit - used;
    return want < left ? want : static_cast<size_t>(left);
}

void delivered(HostFile& file, size_t bytes) {
    file.bytes_read += bytes;
    g_bytes_read.fetch_add(bytes);
}

}  // namespace

extern "C" {

void ispdsp_host_set_sandbox_root(const char* root) {
    std::lock_guard<std::mutex> lock(g_root_mutex);
    g_root_set = root != nullptr;
    g_root = root != nullptr ? root : "";
}

int ispdsp_host_get_sandbox_root(char* out, size_t out_size) {
    std::lock_guard<std::mutex> lock(g_root_mutex);
    if (!g_root_set) {
        return 0;
    }
    if (out == nullptr || g_root.size() >= out_size) {
        return -1;
    }
    std::memcpy(out, g_root.c_str(), g_root.size() + 1);
    return 1;
}

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

void ispdsp_host_limit_file_reads_of(const char* path, uint64_t limit) {
    std::lock_guard<std::mutex> lock(g_mutex);
    g_read_limit = limit;
    g_read_limit_path = path != nullptr ? path : "";
}

void ispdsp_host_limit_file_reads(uint64_t limit) { ispdsp_host_limit_file_reads_of(nullptr, limit); }

void ispdsp_host_get_file_stats(ispdsp_host_file_stats* stats) {
    if (stats != nullptr) {
        *stats = ispdsp_host_file_stats{g_open_files.load(), g_bytes_read.load()};
    }
}

void ispdsp_host_limit_file_writes(uint64_t limit) { g_write_limit.store(limit); }

void ispdsp_host_open_without_handle(int on) { g_open_without_handle.store(on != 0); }

void ispdsp_host_use_memory_files(int on) {
    std::lock_guard<std::mutex> lock(g_mutex);
    g_memory_files = on != 0;
    g_store.clear();
}

int ispdsp_host_put_memory_file(const char* path, const void* data, size_t size) {
    if (path == nullptr || (data == nullptr && size != 0)) {
        return -1;
    }
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_store[path] = std::make_shared<const Bytes>(bytes, bytes + size);
    return 0;
}

int64_t ispdsp_host_memory_file_size(const char* path) {
    std::lock_guard<std::mutex> lock(g_mutex);
    const auto found = path != nullptr ? g_store.find(std::string_view(path)) : g_store.end();
    return found == g_store.end() ? -1 : static_cast<int64_t>(found->second->size());
}

Int32 OSA_fileOpen(const Char* fileName, Int32 mode, OSA_FileHandle* hFile) {
    if (hFile == nullptr) {
        return -1;
    }
    *hFile = nullptr;
    if (fileName == nullptr || (mode != OSA_FILE_MODE_READ && mode != OSA_FILE_MODE_WRITE)) {
        return -1;
    }
    if (g_open_without_handle.load()) {
        return 0;  // the faulty platform layer: success, and *hFile stays NULL
    }
    auto file = std::make_unique<HostFile>();
    file->write_limit = g_write_limit.load();
    bool memory;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        memory = g_memory_files;
        if (g_read_limit_path.empty() || g_read_limit_path == fileName) file->read_limit = g_read_limit;
    }
    file->stream = memory ? open_memory(fileName, mode, *file)
                          : std::fopen(resolve(fileName).c_str(), mode == OSA_FILE_MODE_READ ? "rb" : "wb");
    if (file->stream == nullptr) {
        return -1;
    }
    *hFile = file.release();
    g_open_files.fetch_add(1);
    return 0;
}

Int32 OSA_fileClose(OSA_FileHandle hFile) {
    HostFile* file = as_file(hFile);
    if (file == nullptr) {
        return -1;
    }
    const int rc = std::fclose(file->stream);
    if (!file->written_path.empty()) {
        std::lock_guard<std::mutex> lock(g_mutex);
        g_store[file->written_path] = std::make_shared<const Bytes>(file->written, file->written + file->written_size);
        std::free(file->written);
    }
    delete file;
    g_open_files.fetch_sub(1);
    return rc == 0 ? 0 : -1;
}

Int32 OSA_fileRead(OSA_FileHandle hFile, Ptr buffer, Uint32 size) {
    HostFile* file = as_file(hFile);
    if (file == nullptr || (buffer == nullptr && size != 0)) {
        return -1;
    }
    const size_t want = allowed(file->read_limit, file->bytes_read, clamp_size(size));
    const size_t got = std::fread(buffer, 1, want, file->stream);
    delivered(*file, got);
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
    const size_t want = allowed(file->write_limit, file->bytes_written, clamp_size(size));
    const size_t put = want == 0 ? 0 : std::fwrite(buffer, 1, want, file->stream);
    file->bytes_written += put;
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
    // At most size - 1 bytes and what the read limit leaves; nothing left reads as the end.
    const size_t room = allowed(file->read_limit, file->bytes_read, static_cast<size_t>(size) - 1);
    if (room == 0 && size > 1) {
        return -1;
    }
    const off_t before = ftello(file->stream);
    if (std::fgets(buffer, static_cast<int>(room) + 1, file->stream) == nullptr) {
        return -1;
    }
    delivered(*file, static_cast<size_t>(ftello(file->stream) - before));  // a NUL inside the line counts too
    return 0;
}

}  // extern "C"

// The in-memory host of the fuzz targets (see mem_host.h). It stands in for
// libispdsp_host: the targets link the static driver core and this file.
#include "mem_host.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "ispdsp/osa.h"

namespace fuzzhost {
namespace {

std::map<std::string, std::vector<uint8_t>, std::less<>> g_files;

struct MemFile {
    std::string path;
    size_t position;
    uint64_t delivered;  // counted against the read limit
    bool writing;
};

uint64_t g_open_handles = 0;
uint64_t g_bytes_read = 0;
uint64_t g_read_limit = UINT64_MAX;

constexpr uint32_t kLiveMagic = 0x4D454D48u;  // "MEMH"
struct BlockHeader {
    uint32_t magic;
    uint32_t reserved;
    uint64_t size;
};
static_assert(sizeof(BlockHeader) == 16, "keeps malloc's 16-byte alignment for the caller");

uint64_t g_alloc_calls = 0;
uint64_t g_live_blocks = 0;
uint64_t g_live_bytes = 0;
uint64_t g_fail_countdown = 0;

bool g_print_log = std::getenv("ISPDSP_FUZZ_LOG") != nullptr;

MemFile* asFile(OSA_FileHandle handle) { return static_cast<MemFile*>(handle); }

std::vector<uint8_t>* dataOf(const MemFile* file) {
    auto it = g_files.find(file->path);
    return it == g_files.end() ? nullptr : &it->second;
}

void* allocate(Uint32 size, bool zero) {
    ++g_alloc_calls;
    if (g_fail_countdown != 0 && --g_fail_countdown == 0) {
        return nullptr;
    }
    auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + size));
    if (header == nullptr) {
        return nullptr;
    }
    *header = BlockHeader{kLiveMagic, 0, size};
    void* block = header + 1;
    if (zero) {
        std::memset(block, 0, size);
    } else {
        // Garbage, not zeros: code that relies on an uncleared block shows up.
        std::memset(block, 0xA5, size);
    }
    ++g_live_blocks;
    g_live_bytes += size;
    return block;
}

}  // namespace

void resetFiles() { g_files.clear(); }

void putFile(std::string_view path, const uint8_t* data, size_t size) {
    g_files[std::string(path)] = std::vector<uint8_t>(data, data + size);
}

void putFile(std::string_view path, std::string_view text) {
    putFile(path, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

const std::vector<uint8_t>* file(std::string_view path) {
    auto it = g_files.find(path);
    return it == g_files.end() ? nullptr : &it->second;
}

uint64_t openHandles() { return g_open_handles; }
uint64_t bytesRead() { return g_bytes_read; }
uint64_t allocCalls() { return g_alloc_calls; }
uint64_t liveBlocks() { return g_live_blocks; }
uint64_t liveBytes() { return g_live_bytes; }

void failAllocAt(uint64_t k) { g_fail_countdown = k; }
void limitReads(uint64_t limit) { g_read_limit = limit; }

void resetCounters() {
    g_alloc_calls = 0;
    g_bytes_read = 0;
    g_fail_countdown = 0;
    g_read_limit = UINT64_MAX;
}

void require(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

}  // namespace fuzzhost

using namespace fuzzhost;

extern "C" {

Int32 OSA_fileOpen(const Char* fileName, Int32 mode, OSA_FileHandle* hFile) {
    if (hFile == nullptr) return -1;
    *hFile = nullptr;
    if (fileName == nullptr) return -1;
    if (mode == OSA_FILE_MODE_WRITE) {
        g_files[fileName].clear();  // create or truncate
    } else if (mode != OSA_FILE_MODE_READ || g_files.find(std::string_view(fileName)) == g_files.end()) {
        return -1;
    }
    *hFile = new MemFile{fileName, 0, 0, mode == OSA_FILE_MODE_WRITE};
    ++g_open_handles;
    return 0;
}

Int32 OSA_fileClose(OSA_FileHandle hFile) {
    MemFile* file = asFile(hFile);
    if (file == nullptr) return -1;
    delete file;
    --g_open_handles;
    return 0;
}

Int32 OSA_fileRead(OSA_FileHandle hFile, Ptr buffer, Uint32 size) {
    MemFile* file = asFile(hFile);
    if (file == nullptr || (buffer == nullptr && size != 0) || file->writing) return -1;
    const std::vector<uint8_t>* data = dataOf(file);
    if (data == nullptr) return -1;
    size_t want = size > INT32_MAX ? size_t{INT32_MAX} : size_t{size};
    if (g_read_limit != UINT64_MAX) {
        const uint64_t left = file->delivered >= g_read_limit ? 0 : g_read_limit - file->delivered;
        if (want > left) want = static_cast<size_t>(left);
    }
    const size_t available = file->position < data->size() ? data->size() - file->position : 0;
    const size_t got = want < available ? want : available;
    if (got != 0) std::memcpy(buffer, data->data() + file->position, got);
    file->position += got;
    file->delivered += got;
    g_bytes_read += got;
    return static_cast<Int32>(got);
}

Int32 OSA_fileWrite(OSA_FileHandle hFile, const void* buffer, Uint32 size) {
    MemFile* file = asFile(hFile);
    if (file == nullptr || (buffer == nullptr && size != 0) || !file->writing) return -1;
    std::vector<uint8_t>* data = dataOf(file);
    if (data == nullptr) return -1;
    if (data->size() < file->position + size) data->resize(file->position + size);
    if (size != 0) std::memcpy(data->data() + file->position, buffer, size);
    file->position += size;
    return static_cast<Int32>(size);
}

// Like fseeko: a target before the start fails and leaves the position alone;
// one past the end is allowed.
Int32 OSA_fileSeek(OSA_FileHandle hFile, Int32 offset, Int32 whence) {
    MemFile* file = asFile(hFile);
    if (file == nullptr) return -1;
    const std::vector<uint8_t>* data = dataOf(file);
    if (data == nullptr) return -1;
    int64_t base;
    switch (whence) {
        case OSA_SEEK_SET: base = 0; break;
        case OSA_SEEK_CUR: base = static_cast<int64_t>(file->position); break;
        case OSA_SEEK_END: base = static_cast<int64_t>(data->size()); break;
        default: return -1;
    }
    const int64_t target = base + offset;
    if (target < 0) return -1;
    file->position = static_cast<size_t>(target);
    return 0;
}

Int32 OSA_fileTell(OSA_FileHandle hFile, Uint32* position) {
    MemFile* file = asFile(hFile);
    if (file == nullptr || position == nullptr) return -1;
    if (file->position > UINT32_MAX) return -1;
    *position = static_cast<Uint32>(file->position);
    return 0;
}

// fgets: at most size - 1 bytes, up to and including a line feed, then a NUL;
// 0 when at least one byte arrived. The read limit applies too: the file then
// looks cut at that byte.
Int32 OSA_fgets(Char* buffer, Int32 size, OSA_FileHandle hFile) {
    MemFile* file = asFile(hFile);
    if (file == nullptr || buffer == nullptr || size <= 0 || file->writing) return -1;
    const std::vector<uint8_t>* data = dataOf(file);
    if (data == nullptr) return -1;
    Int32 n = 0;
    while (n < size - 1 && file->position < data->size() && file->delivered < g_read_limit) {
        const Char c = static_cast<Char>((*data)[file->position++]);
        buffer[n++] = c;
        ++file->delivered;
        if (c == '\n') break;
    }
    buffer[n] = '\0';
    g_bytes_read += static_cast<uint64_t>(n);
    return n > 0 ? 0 : -1;
}

Ptr OSA_memUAllocAlign(Uint32 size, Uint32 align) {
    (void)align;  // the driver always asks for 0; malloc's alignment is enough
    return allocate(size, false);
}

Ptr OSA_memUCallocAlign(Uint32 size, Uint32 align) {
    (void)align;
    return allocate(size, true);
}

// Freeing a block twice, or one that this host did not hand out, is a finding.
Int32 OSA_memUFree(Ptr ptr) {
    if (ptr == nullptr) return 0;
    BlockHeader* header = static_cast<BlockHeader*>(ptr) - 1;
    require(header->magic == kLiveMagic, "OSA_memUFree of a block that is not live");
    header->magic = 0;
    --g_live_blocks;
    g_live_bytes -= header->size;
    std::free(header);
    return 0;
}

void OSA_logWrite(Int32 level, Int32 category, const Char* format, ...) {
    require(format != nullptr, "OSA_logWrite without a format");
    char line[2048];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    if (g_print_log) std::fprintf(stderr, "[%d,%d] %s", level, category, line);
}

// The RLR writer forces its flash copy to storage; here there is nothing to
// flush, and a real sync() per fuzz run would stall the whole machine.
void sync(void) noexcept {}

}  // extern "C"

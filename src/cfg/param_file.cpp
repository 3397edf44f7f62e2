// The ISP parameter file reader: header, version check, specific block and checksum.
//
// File layout (little-endian): ver, dateTime[32], subVer, archName[32], pdtName[32] (104 bytes),
// the block size S, S bytes of specific block, the checksum word. Anything after it is ignored.
#include <cmath>
#include <cstddef>
#include <cstring>

#include "cfg/param_file_internal.h"
#include "common/log.h"
#include "tuning/file_layout.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "file words are read in host order");

namespace {

constexpr Uint32 kFileOverhead = ISPDSP_PARAM_FILE_OVERHEAD;  // header fields + size word + checksum

// True when exactly `size` bytes arrived.
bool readExact(OSA_FileHandle file, void* dst, Uint32 size) {
    const Int32 got = OSA_fileRead(file, dst, size);
    return Int64{got} == Int64{size};  // a negative status never equals a size
}

// Text fields need not be NUL-terminated: log up to the first NUL or the end of the field.
int textLength(const Char* field, size_t width) {
    const void* nul = std::memchr(field, 0, width);
    return static_cast<int>(nul != nullptr ? static_cast<const Char*>(nul) - field : static_cast<ptrdiff_t>(width));
}

// Closes the file on every return once it is open.
struct OpenFile {
    OSA_FileHandle handle = nullptr;
    OpenFile() = default;
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (handle != nullptr) {
            OSA_fileClose(handle);
        }
    }
};

}  // namespace

Int32 DRV_compareFloat(Float32 a, Float32 b) { return ispdsp::tuning::versionAccepted(a, b) ? 0 : -1; }

Int32 CFG_ispCalcChksum(CFG_IspParamTable* cfg_table, Ptr specParam) {
    if (cfg_table == nullptr) {
        return 0;
    }
    using ispdsp::tuning::xorOfWords;
    Uint32 sum = xorOfWords(reinterpret_cast<const Uint8*>(cfg_table), ispdsp::tuning::kHeaderBytes);
    if (specParam != nullptr) {
        // The size word and the last size % 4 bytes of the block are not covered.
        sum ^= xorOfWords(static_cast<const Uint8*>(specParam), cfg_table->cfg_specParam.size);
    }
    return static_cast<Int32>(sum);
}

Int32 CFG_ispCheckChksum(CFG_IspParamTable* cfg_table, Ptr specParam) {
    if (cfg_table == nullptr || specParam == nullptr) {
        return -1;
    }
    return CFG_ispCalcChksum(cfg_table, specParam) == cfg_table->chksum ? 0 : -1;
}

Int32 DRV_ispCfgReadCheckParam(const Char* cfg_file_path, const Float32 cfg_ver, CFG_IspParamTable* cfg_table,
                               Ptr* cfgBuf) {
    if (cfg_file_path == nullptr || cfg_table == nullptr || cfgBuf == nullptr) {
        ISP_LOG_ERROR("Invalid arg\n");
        return -1;
    }

    OSA_FileHandle handle = nullptr;
    if (OSA_fileOpen(cfg_file_path, OSA_FILE_MODE_READ, &handle) != 0 || handle == nullptr) {
        ISP_LOG_ERROR("Open %s file failed\n", cfg_file_path);
        return -1;
    }
    OpenFile file;
    file.handle = handle;

    Uint32 len = 0;
    if (OSA_fileSeek(handle, 0, OSA_SEEK_END) != 0) {
        ISP_LOG_ERROR("seek %s file to end failed\n", cfg_file_path);
        return -1;
    }
    if (OSA_fileTell(handle, &len) != 0) {
        ISP_LOG_ERROR("filetell %s file failed\n", cfg_file_path);
        return -1;
    }
    if (OSA_fileSeek(handle, 0, OSA_SEEK_SET) != 0) {
        ISP_LOG_ERROR("seek %s file to begin failed\n", cfg_file_path);
        return -1;
    }
    // The format defines no message for a file without a single block byte; we warn so that an
    // empty or truncated file is told apart from a missing one.
    if (len <= kFileOverhead) {
        ISP_LOG_WARN("isp cfg:%s too short: %u bytes, need more than %u\n", cfg_file_path, len, kFileOverhead);
        return -1;
    }

    if (!readExact(handle, &cfg_table->ver, sizeof cfg_table->ver)) {
        ISP_LOG_WARN("read ver from isp cfg:%s failed\n", cfg_file_path);
        return -1;
    }
    if (DRV_compareFloat(cfg_table->ver, cfg_ver) != 0) {
        ISP_LOG_WARN("isp cfg:%s ver not consistent, fromcfg:V%.3f, mustbe:V%.3f\n", cfg_file_path,
                     static_cast<double>(cfg_table->ver), static_cast<double>(cfg_ver));
        return -1;
    }
    ISP_LOG_INFO("the isp cfg ver: %.3f\n", static_cast<double>(cfg_table->ver));

    if (!readExact(handle, cfg_table->dateTime, sizeof cfg_table->dateTime)) {
        ISP_LOG_WARN("read data and time from isp cfg:%s failed\n", cfg_file_path);
        return -1;
    }
    ISP_LOG_INFO("the isp cfg date time is: %.*s\n", textLength(cfg_table->dateTime, sizeof cfg_table->dateTime),
                 cfg_table->dateTime);

    if (!readExact(handle, &cfg_table->subVer, sizeof cfg_table->subVer)) {
        ISP_LOG_WARN("read subVer from isp cfg:%s failed\n", cfg_file_path);
        return -1;
    }
    ISP_LOG_INFO("the isp cfg subVer is: %.3f\n", static_cast<double>(cfg_table->subVer));

    if (!readExact(handle, cfg_table->archName, sizeof cfg_table->archName)) {
        ISP_LOG_WARN("read chipName from isp cfg:%s failed\n", cfg_file_path);
        return -1;
    }
    ISP_LOG_INFO("the isp cfg chipName is: %.*s\n", textLength(cfg_table->archName, sizeof cfg_table->archName),
                 cfg_table->archName);

    if (!readExact(handle, cfg_table->pdtName, sizeof cfg_table->pdtName)) {
        ISP_LOG_WARN("read product name from isp cfg:%s failed\n", cfg_file_path);
        return -1;
    }
    ISP_LOG_INFO("the isp cfg pdtName is: %.*s\n", textLength(cfg_table->pdtName, sizeof cfg_table->pdtName),
                 cfg_table->pdtName);

    // lastSize is what the buffer in *cfgBuf was sized for by an earlier load into this header.
    const Uint32 lastSize = cfg_table->cfg_specParam.size;
    Uint32 size = 0;
    if (!readExact(handle, &size, sizeof size)) {
        ISP_LOG_WARN("read specParam size failed\n");
        return -1;
    }
    // len > kFileOverhead here, so the subtraction cannot wrap. No message for a block longer
    // than the file.
    if (size > len - kFileOverhead) {
        return -1;
    }
    // The new size enters the header only once the block fits the file: the header's size must
    // never exceed the buffer that a later load into the same header would reuse (a truncated
    // or oversized size word would otherwise make that load write past the old buffer).
    cfg_table->cfg_specParam.size = size;

    if (*cfgBuf != nullptr && lastSize < size) {
        OSA_memUFree(*cfgBuf);
        *cfgBuf = nullptr;
    }
    if (*cfgBuf == nullptr) {
        // An empty block asks for 0 bytes; a host that answers null for that fails the load here.
        *cfgBuf = OSA_memUAllocAlign(size, 0);
        if (*cfgBuf == nullptr) {
            ISP_LOG_WARN("Failed to malloc memory for pTable\n");
            return -1;
        }
    }

    std::memset(*cfgBuf, 0, size);
    if (size != 0 && !readExact(handle, *cfgBuf, size)) {
        ISP_LOG_WARN("isp cfg:%s read failed\n", cfg_file_path);
        return -1;
    }
    if (!readExact(handle, &cfg_table->chksum, sizeof cfg_table->chksum)) {
        ISP_LOG_WARN("isp cfg:%s read chksum failed\n", cfg_file_path);
        return -1;
    }
    if (CFG_ispCheckChksum(cfg_table, *cfgBuf) != 0) {
        ISP_LOG_WARN("isp cfg:%s check sum error\n", cfg_file_path);
        return -1;
    }
    ISP_LOG_INFO("OK, use isp cfg:%s\n", cfg_file_path);
    return 0;
}

Int32 DRV_ispCfgLoad(const Char* cfgPath, const Float32 cfgVer, CFG_IspParamTable* pa_cfg, Ptr* cfgBuf) {
    if (cfgPath == nullptr || pa_cfg == nullptr || cfgBuf == nullptr) {
        ISP_LOG_ERROR("Invalid arg\n");
        return -1;
    }
    if (DRV_ispCfgReadCheckParam(cfgPath, cfgVer, pa_cfg, cfgBuf) != 0) {
        ISP_LOG_INFO("DRV_ispCfgReadCheckParam %s failed!\n", cfgPath);
        return -1;
    }
    return 0;
}

// The RLR table file: day, dusk and night byte tables shipped in a custom
// directory, with a copy kept in flash. A load compares the identities (length,
// version, date stamp) of both files and reads the flash copy when they agree;
// otherwise it reads the custom file and rewrites the flash copy from it.
//
// File layout, L being the file length: the three 256-byte tables at offset 0,
// the 3 version bytes at L - 229, the 6 date bytes at L - 226; the rest is not read.
#include "ispdsp/rlr.h"

#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "common/log.h"
#include "tuning/device_paths.h"
#include "ispdsp/osa.h"

namespace {

using namespace ispdsp;

constexpr const Char* kRlrCustomPath = ispdsp::tuning::kRlrPath;
constexpr const Char* kRlrFlashPath = ispdsp::tuning::kRlrFlashPath;

constexpr Uint32 kRlrTableBytes = sizeof(CFG_RlrTableParam);  // 768
constexpr Int32 kRlrInfoFromEnd = 229;                          // version + date, counted from the end
constexpr Uint32 kRlrInfoBytes = sizeof(CFG_RlrTableInfo::versionNum) + sizeof(CFG_RlrTableInfo::data);
static_assert(kRlrInfoBytes == 9);
static_assert(offsetof(CFG_RlrTableInfo, data) ==
              offsetof(CFG_RlrTableInfo, versionNum) + sizeof(CFG_RlrTableInfo::versionNum));

// Information lines of the RLR functions: the identity line, and the rest
// (comparison, read/write confirmations, the loader's decisions).
constexpr Int32 kRlrIdentityLevel = 2, kRlrIdentityCategory = 8;
constexpr Int32 kRlrInfoLevel = 2, kRlrInfoCategory = 9;

// The three read warnings carry neither function nor line.
#define RLR_LOG_WARN_PLAIN(fmt, ...) \
    OSA_logWrite(ispdsp::kLogWarnLevel, ispdsp::kLogWarnCategory, "[DSP_DRV] WARN  : " fmt, __VA_ARGS__)
#define RLR_LOG_INFO(fmt, ...) OSA_logWrite(kRlrInfoLevel, kRlrInfoCategory, "[DSP_DRV] " fmt, __VA_ARGS__)

// The compared parts of an identity, in comparison order; each element is
// `width` bytes wide. The label names the part in the difference line.
struct RlrInfoPart {
    size_t offset;
    Uint32 count;
    Uint32 width;
    const Char* label;
};
constexpr RlrInfoPart kRlrInfoParts[] = {
    {offsetof(CFG_RlrTableInfo, tableSize), 1, sizeof(Uint32), "tableSize"},
    {offsetof(CFG_RlrTableInfo, versionNum), 3, sizeof(Uint8), "versionNum[i]"},
    {offsetof(CFG_RlrTableInfo, data), 6, sizeof(Uint8), "data[i]"},
};

Uint32 readInfoElement(const CFG_RlrTableInfo* info, const RlrInfoPart& part, Uint32 index) {
    const Uint8* bytes = reinterpret_cast<const Uint8*>(info) + part.offset + size_t{index} * part.width;
    if (part.width == sizeof(Uint32)) {
        Uint32 value = 0;
        std::memcpy(&value, bytes, sizeof(value));
        return value;
    }
    return *bytes;
}

}  // namespace

extern "C" {

ISPDSP_API Int32 CFG_aewGetRlrCfgInfo(const char* cfg_file_path, CFG_RlrTableInfo* rlrTableInfo) {
    if (cfg_file_path == nullptr) {
        ISP_LOG_ERROR("read cfg file is failed\n");
        return -1;
    }
    ISP_CHECK_PTR(rlrTableInfo, "rlrTableInfo");

    OSA_FileHandle hFile = nullptr;
    if (OSA_fileOpen(cfg_file_path, OSA_FILE_MODE_READ, &hFile) != 0 || hFile == nullptr) {
        ISP_LOG_ERROR("Open %s file failed\n", cfg_file_path);
        return -1;
    }
    if (OSA_fileSeek(hFile, 0, OSA_SEEK_END) != 0) {
        ISP_LOG_ERROR("seek %s file to end failed\n", cfg_file_path);
        OSA_fileClose(hFile);
        return -1;
    }
    Uint32 length = 0;
    OSA_fileTell(hFile, &length);  // a failed tell leaves the length at 0
    rlrTableInfo->tableSize = length;

    // A file shorter than 229 bytes fails here: the seek would end before its start.
    if (OSA_fileSeek(hFile, -kRlrInfoFromEnd, OSA_SEEK_END) != 0) {
        RLR_LOG_WARN_PLAIN("read %s RLR table info failed,fseek failed !\n", cfg_file_path);
        OSA_fileClose(hFile);
        return -1;
    }
    Uint8 identity[kRlrInfoBytes] = {};
    const Int32 got = OSA_fileRead(hFile, identity, kRlrInfoBytes);
    if (Int64{got} < Int64{kRlrInfoBytes}) {  // a failed read is negative
        RLR_LOG_WARN_PLAIN("read %s RLR table info failed\n", cfg_file_path);
        OSA_fileClose(hFile);
        return -1;
    }
    std::memcpy(rlrTableInfo->versionNum, identity, sizeof(rlrTableInfo->versionNum));
    std::memcpy(rlrTableInfo->data, identity + sizeof(rlrTableInfo->versionNum), sizeof(rlrTableInfo->data));

    const Uint8* v = rlrTableInfo->versionNum;
    const Uint8* d = rlrTableInfo->data;
    OSA_logWrite(kRlrIdentityLevel, kRlrIdentityCategory,
                 "[DSP_DRV] version_num->%d.%d.%d, data->%d/%d/%d %d:%d:%d. %s\n", v[0], v[1], v[2], d[0] + 2000, d[1],
                 d[2], d[3], d[4], d[5], cfg_file_path);
    OSA_fileClose(hFile);
    return 0;
}

// Nonzero when the identities match, 0 at the first difference (which is logged).
// A null argument counts as a difference, so a caller never takes it for a match.
ISPDSP_API Int32 CFG_cmpRlrCfgInfo(CFG_RlrTableInfo* rlrTable3AInfo, CFG_RlrTableInfo* rlrTablePackInfo) {
    if (rlrTable3AInfo == nullptr) {
        ISP_LOG_NULL("rlrTable3AInfo");
        return 0;
    }
    if (rlrTablePackInfo == nullptr) {
        ISP_LOG_NULL("rlrTablePackInfo");
        return 0;
    }
    for (const RlrInfoPart& part : kRlrInfoParts) {
        for (Uint32 i = 0; i < part.count; ++i) {
            const Uint32 flash = readInfoElement(rlrTable3AInfo, part, i);
            const Uint32 custom = readInfoElement(rlrTablePackInfo, part, i);
            if (flash != custom) {
                // Both values are printed as single-precision numbers.
                RLR_LOG_INFO("%s:%s:%.2f %s:%.2f \n", __func__, part.label,
                             static_cast<double>(static_cast<Float32>(flash)), part.label,
                             static_cast<double>(static_cast<Float32>(custom)));
                return 0;
            }
        }
    }
    return 1;
}

// The caller passes valid pointers; null ones are still refused with the
// usual null-argument error rather than dereferenced.
ISPDSP_API Int32 CFG_aewReadRlrCfg(const char* cfg_file_path, CFG_RlrTableParam* cfg_rlrtableparam) {
    ISP_CHECK_PTR(cfg_file_path, "cfg_file_path");
    ISP_CHECK_PTR(cfg_rlrtableparam, "cfg_rlrtableparam");

    OSA_FileHandle hFile = nullptr;
    if (OSA_fileOpen(cfg_file_path, OSA_FILE_MODE_READ, &hFile) != 0 || hFile == nullptr) {
        ISP_LOG_ERROR("Open %s file failed\n", cfg_file_path);
        return -1;
    }
    // Bytes read before a short read stay in the caller's buffer.
    const Int32 got = OSA_fileRead(hFile, cfg_rlrtableparam, kRlrTableBytes);
    if (Int64{got} < Int64{kRlrTableBytes}) {  // a failed read is negative
        RLR_LOG_WARN_PLAIN("read %s RLR table info failed\n", cfg_file_path);
        OSA_fileClose(hFile);
        return -1;
    }
    OSA_fileClose(hFile);
    RLR_LOG_INFO("get %s rlr cfg OK.\n", cfg_file_path);
    return 0;
}

ISPDSP_API Int32 CFG_aewWriteRlrCfg(const char* cfg_file_path, CFG_RlrTableParam* cfg_rlrtableparam) {
    if (cfg_file_path == nullptr) {
        ISP_LOG_ERROR("cfg_file_path is NULL\n");
        return -1;
    }
    ISP_CHECK_PTR(cfg_rlrtableparam, "cfg_rlrtableparam");

    OSA_FileHandle hFile = nullptr;
    if (OSA_fileOpen(cfg_file_path, OSA_FILE_MODE_WRITE, &hFile) != 0 || hFile == nullptr) {
        ISP_LOG_ERROR("Open %s file failed\n", cfg_file_path);
        return -1;
    }
    const Int32 written = OSA_fileWrite(hFile, cfg_rlrtableparam, kRlrTableBytes);
    if (Int64{written} < Int64{kRlrTableBytes}) {  // a failed write is negative
        ISP_LOG_ERROR("write rlr cfg failed,size = %d\n", written);
        OSA_fileClose(hFile);
        return -1;
    }
    OSA_fileClose(hFile);
    sync();  // the flash copy must reach storage before success is reported
    RLR_LOG_INFO("write %s rlr cfg OK.\n", cfg_file_path);
    return 0;
}

ISPDSP_API Int32 DRV_loadRlrCfg(Ptr* cfg_rlrtableparam) {
    ISP_CHECK_PTR(cfg_rlrtableparam, "cfg_rlrtableparam");

    CFG_RlrTableInfo* customInfo = static_cast<CFG_RlrTableInfo*>(OSA_memUAllocAlign(sizeof(CFG_RlrTableInfo), 0));
    if (customInfo == nullptr) {
        ISP_LOG_WARN("Failed to malloc memory for cfg_rlrtableinfo\n");
        return -1;
    }
    std::memset(customInfo, 0, sizeof(*customInfo));

    Int32 ret = 0;
    if (CFG_aewGetRlrCfgInfo(kRlrCustomPath, customInfo) != 0) {
        ISP_LOG_ERROR("Get RlrCfgInfo is failed!\n");
        ret = -1;
    } else {
        CFG_RlrTableInfo flashInfo = {};
        const bool flashRead = CFG_aewGetRlrCfgInfo(kRlrFlashPath, &flashInfo) == 0;
        // Compared in any case: the comparison logs the first difference.
        const bool same = CFG_cmpRlrCfgInfo(&flashInfo, customInfo) != 0;

        if (*cfg_rlrtableparam == nullptr) {
            *cfg_rlrtableparam = OSA_memUCallocAlign(kRlrTableBytes, 0);  // handed to the host for good
        }
        CFG_RlrTableParam* tables = static_cast<CFG_RlrTableParam*>(*cfg_rlrtableparam);
        if (tables == nullptr) {
            ISP_LOG_WARN("Failed to malloc memory for cfg_rlrtableparam\n");
            ret = -1;
        } else if (!flashRead || !same) {
            RLR_LOG_INFO("get rlr table info %s is failed,read from %s.\n", kRlrFlashPath, kRlrCustomPath);
            // Refresh: the outcome of the read and the write does not change the result.
            CFG_aewReadRlrCfg(kRlrCustomPath, tables);
            CFG_aewWriteRlrCfg(kRlrFlashPath, tables);
        } else {
            CFG_aewReadRlrCfg(kRlrFlashPath, tables);
            RLR_LOG_INFO("get rlr table info %s is OK.\n", kRlrFlashPath);
        }
    }
    OSA_memUFree(customInfo);
    return ret;
}

}  // extern "C"

// Reader of the registration file "calibration.txt".
//
// Layout of the file as read here: a header with "ZOOMNUM:" and "REGNUM:",
// then per zoom position a block of at most regNum + 2 lines: a "ZOOM:" line,
// regNum register lines ("0x1f 0x0033") and a closing "TFORM:" line. Lines are
// read 255 characters at a time, so a longer line arrives in pieces, and each
// piece counts as a line.
#include "driver/registration.h"
#include "driver/registration_numbers.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "common/log.h"
#include "tuning/device_paths.h"

// The arrays live as long as the library: a later load that succeeds releases
// and replaces them (DRV_ispGetRegCfg), and nothing else releases them. In
// particular no unload-time destructor does: at process exit it would run
// after the host's own static destructors, and a host's OSA_memUFree may rely
// on one of those; a destructor cannot tell exit from dlclose. So the library
// never calls OSA_* from a destructor; the operating system reclaims the
// arrays at exit (tests/unload/held-until-exit.supp names them for valgrind),
// and a host that unloads the library with dlclose leaves them behind.
DRV_RegistrateParam drvRegistrateParam = {};

namespace {

using namespace ispdsp;

constexpr const Char* kRegistrateFileName = ispdsp::tuning::kRegistrationFileName;
constexpr Int32 kRegistratePathSize = 512;

// The places searched, in order; place number = index + 1.
constexpr const auto& kRegistratePlaceDirs = ispdsp::tuning::kRegistrationDirs;
static_assert(std::size(kRegistratePlaceDirs) == kRegistratePlaceCount);

// Reads one line (or one 255-character piece of a longer line); false at end of file.
bool readLine(Char* buffer, OSA_FileHandle hFile) {
    if (OSA_fgets(buffer, kRegistrateLineSize, hFile) != 0) return false;
    buffer[kRegistrateLineSize - 1] = '\0';  // a host that forgets the terminator cannot make us overrun
    return true;
}

// Both counts positive and within bounds; the sizes are then at most
// 4096 x 4 bytes and 2^20 x 8 bytes, computed in 64 bits.
bool countsInRange(Int32 zoomNum, Int32 regNum) {
    if (zoomNum <= 0 || zoomNum > kRegistrateMaxZoomNum) return false;
    if (regNum <= 0 || regNum > kRegistrateMaxRegNum) return false;
    return Int64{zoomNum} * Int64{regNum} <= kRegistrateMaxPairs;
}

}  // namespace

// Walked, not indexed: no place number, however wrong, can reach past the table.
const Char* DRV_ispRegistratePlaceDir(Int32 place) {
    Int32 number = 0;
    for (const Char* dir : kRegistratePlaceDirs) {
        if (++number == place) return dir;
    }
    return nullptr;
}

Int32 DRV_ispRegistrateCfgLoad(void) {
    for (Int32 place = 1; const Char* dir = DRV_ispRegistratePlaceDir(place); ++place) {
        Char path[kRegistratePathSize];
        std::snprintf(path, sizeof(path), "%s%s", dir, kRegistrateFileName);
        if (DRV_ispGetRegistrateCfg(path, &drvRegistrateParam) == 0) return place;
    }
    ISP_LOG_ERROR("Registrate Cfg Load Failed !\n");
    return -1;
}

Int32 DRV_ispGetRegistrateCfg(const Char* path, DRV_RegistrateParam* pRegistrateParam) {
    ISP_CHECK_PTR(path, "path");
    ISP_CHECK_PTR(pRegistrateParam, "pRegistrateParam");

    OSA_FileHandle hFile = nullptr;
    if (OSA_fileOpen(path, OSA_FILE_MODE_READ, &hFile) != 0) {
        ISP_LOG_WARN("%s open failed\n", path);
        return -1;
    }
    // A null handle with a zero status goes on to the header, which reports it.
    auto closeFile = [&hFile] {
        if (hFile != nullptr) OSA_fileClose(hFile);
    };

    Char* buffer = static_cast<Char*>(OSA_memUAllocAlign(kRegistrateLineSize, 0));
    if (buffer == nullptr) {
        ISP_LOG_WARN("buffer malloc failed\n");
        closeFile();
        return -1;
    }

    Int32 zoomNum = 0;
    Int32 regNum = 0;
    Int32 ret = 0;
    if (DRV_ispGetPropertyCfg(buffer, hFile, &zoomNum, &regNum) != 0) {
        ISP_LOG_WARN("getPropertyCfgNew failed\n");
        ret = -1;
    } else if (DRV_ispGetRegCfg(buffer, hFile, zoomNum, regNum, pRegistrateParam) != 0) {
        ISP_LOG_WARN("getDspRegCfgNew failed\n");
        ret = -1;
    }
    closeFile();
    OSA_memUFree(buffer);
    return ret;
}

Int32 DRV_ispGetPropertyCfg(Char* buffer, OSA_FileHandle hFile, Int32* pZoomNum, Int32* pRegNum) {
    if (buffer == nullptr || hFile == nullptr || pZoomNum == nullptr || pRegNum == nullptr) {
        ISP_LOG_ERROR("param is null!\n");
        return -1;
    }
    Char zoomNumField[] = "ZOOMNUM:";
    Char regNumField[] = "REGNUM:";

    // The first "ZOOMNUM:" line; anything before it, "REGNUM:" included, is ignored.
    Int32 zoomNum = 0;
    bool found = false;
    while (!found) {
        if (!readLine(buffer, hFile)) return -1;
        found = DRV_ispGetLineCfg(buffer, zoomNumField, &zoomNum) == 0;
    }
    // From that same line on, the first "REGNUM:" line.
    Int32 regNum = 0;
    while (DRV_ispGetLineCfg(buffer, regNumField, &regNum) != 0) {
        if (!readLine(buffer, hFile)) return -1;
    }
    *pZoomNum = zoomNum;
    *pRegNum = regNum;
    return 0;
}

Int32 DRV_ispGetRegCfg(Char* buffer, OSA_FileHandle hFile, Int32 zoomNum, Int32 regNum,
                       DRV_RegistrateParam* pRegistrateParam) {
    ISP_CHECK_PTR(buffer, "buffer");
    ISP_CHECK_PTR(hFile, "hFile");
    ISP_CHECK_PTR(pRegistrateParam, "pRegistrateParam");

    // The format gives no bounds: counts that are not positive or exceed the
    // library's limits fail this place instead of asking for a huge or
    // negative allocation.
    if (!countsInRange(zoomNum, regNum)) {
        ISP_LOG_WARN("zoomNum %d regNum %d out of range (1..%d, 1..%d, at most %lld pairs)\n", zoomNum, regNum,
                     kRegistrateMaxZoomNum, kRegistrateMaxRegNum, static_cast<long long>(kRegistrateMaxPairs));
        return -1;
    }
    const Uint64 zoomBytes = Uint64{static_cast<Uint32>(zoomNum)} * sizeof(Int32);
    const Uint64 pairBytes = Uint64{static_cast<Uint32>(zoomNum)} * Uint64{static_cast<Uint32>(regNum)} *
                             sizeof(RegisterParam);

    // Zero-filled, so zoom positions and pairs that a truncated file does not
    // give read as 0 rather than as leftover memory.
    Int32* zoomX = static_cast<Int32*>(OSA_memUCallocAlign(static_cast<Uint32>(zoomBytes), 0));
    if (zoomX == nullptr) {
        ISP_LOG_WARN("zoomx malloc failed!\n");
        return -1;
    }
    RegisterParam* pairs = static_cast<RegisterParam*>(OSA_memUCallocAlign(static_cast<Uint32>(pairBytes), 0));
    if (pairs == nullptr) {
        ISP_LOG_WARN("registerParam malloc failed!\n");
        OSA_memUFree(zoomX);
        return -1;
    }

    Char zoomField[] = "ZOOM:";
    bool ended = false;  // running out of lines is no failure: what was read stays
    for (Int32 i = 0; i < zoomNum && !ended; ++i) {
        bool zoomSeen = false;
        for (Int64 j = 0; j < Int64{regNum} + 2; ++j) {
            if (!readLine(buffer, hFile)) {
                ended = true;
                break;
            }
            if (std::strstr(buffer, "TFORM:") != nullptr) continue;
            if (!zoomSeen) {
                if (DRV_ispGetLineCfg(buffer, zoomField, &zoomX[i]) != 0) continue;
                zoomSeen = true;  // the "ZOOM:" line also goes on as a register line
            }
            Int32 addr = 0;
            Int32 value = 0;
            const Int64 k = j - 1;
            if (DRV_ispGetLineRegCfg(buffer, &addr, &value) == 0 && k >= 0 && k < regNum) {
                RegisterParam& pair = pairs[Int64{i} * regNum + k];
                pair.addr = static_cast<Uint32>(addr);
                pair.data = static_cast<Uint32>(value);
            }
        }
    }

    // The new arrays replace those of an earlier load, which are released so
    // that repeated creations leak nothing.
    DRV_ispReleaseRegistrateCfg(pRegistrateParam);
    pRegistrateParam->zoomNum = zoomNum;
    pRegistrateParam->regNum = regNum;
    pRegistrateParam->zoomX = zoomX;
    pRegistrateParam->registerParam = pairs;
    return 0;
}

Int32 DRV_ispGetLineCfg(Char* buffer, Char* field, Int32* value) {
    ISP_CHECK_PTR(buffer, "buffer");
    ISP_CHECK_PTR(field, "field");
    ISP_CHECK_PTR(value, "value");
    const Char* text = std::strstr(buffer, field);
    if (text == nullptr) return -1;
    text += std::strlen(field);
    // The value is the text up to the first carriage return or line feed.
    *value = registration_numbers::parseDecimal({text, std::strcspn(text, "\r\n")});
    return 0;
}

Int32 DRV_ispGetLineRegCfg(Char* buffer, Int32* addr, Int32* value) {
    ISP_CHECK_PTR(buffer, "buffer");
    ISP_CHECK_PTR(addr, "addr");
    ISP_CHECK_PTR(value, "value");
    // Address: after the first 'x' up to the next blank (a space character).
    const Char* firstX = std::strchr(buffer, 'x');
    if (firstX == nullptr) return -1;
    const Char* addrText = firstX + 1;
    const Char* blank = std::strchr(addrText, ' ');
    if (blank == nullptr) return -1;
    // Value: after the first 'x' behind that blank, up to CR, LF, blank or the end.
    const Char* secondX = std::strchr(blank, 'x');
    if (secondX == nullptr) return -1;
    const Char* valueText = secondX + 1;
    *addr = static_cast<Int32>(registration_numbers::parseHex({addrText, static_cast<size_t>(blank - addrText)}));
    *value = static_cast<Int32>(registration_numbers::parseHex({valueText, std::strcspn(valueText, "\r\n ")}));
    return 0;
}

void DRV_ispReleaseRegistrateCfg(DRV_RegistrateParam* pRegistrateParam) {
    if (pRegistrateParam == nullptr) return;
    if (pRegistrateParam->zoomX != nullptr) OSA_memUFree(pRegistrateParam->zoomX);
    if (pRegistrateParam->registerParam != nullptr) OSA_memUFree(pRegistrateParam->registerParam);
    *pRegistrateParam = DRV_RegistrateParam{};
}

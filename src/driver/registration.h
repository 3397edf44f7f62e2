// The registration file "calibration.txt": calibrated zoom positions and, per
// position, register address/value pairs for the visible/NIR alignment.
// Internal to the library; the driver instance loads it at creation.
#pragma once

#include "ispdsp/osa.h"
#include "ispdsp/registration.h"

// The one registration record of the process, shared by all instances; zero
// until the first successful load. Written without a lock: the host creates
// instances one at a time and never while a fusion operation runs.
extern DRV_RegistrateParam drvRegistrateParam;

namespace ispdsp {

// Number of places searched; place numbers run from 1 to this value.
inline constexpr Int32 kRegistratePlaceCount = 3;

// Upper bounds of the header counts. The format gives none; these keep the
// arrays a few megabytes at most (zoomNum x 4 and zoomNum x regNum x 8 bytes).
inline constexpr Int32 kRegistrateMaxZoomNum = 4096;
inline constexpr Int32 kRegistrateMaxRegNum = 65536;
inline constexpr Int64 kRegistrateMaxPairs = Int64{1} << 20;  // 8 MiB of pairs

// Size of the line buffer: at most 255 characters arrive per read.
inline constexpr Int32 kRegistrateLineSize = 256;

}  // namespace ispdsp

// Looks for "calibration.txt" in "/var/tmp/", "/var/" and "/mnt/mtd/", in this
// order, and loads the first that reads. Returns the place number (1, 2 or 3),
// or -1 when all three fail.
Int32 DRV_ispRegistrateCfgLoad(void);

// Directory of place 1..3 ("/var/tmp/", "/var/", "/mnt/mtd/"); nullptr for
// any other number. Used to rebuild the calibration file's path.
const Char* DRV_ispRegistratePlaceDir(Int32 place);

// Reads one file into the record; 0 on success, -1 on failure (the record then
// keeps its previous contents).
Int32 DRV_ispGetRegistrateCfg(const Char* path, DRV_RegistrateParam* pRegistrateParam);

// Reads the header: the "ZOOMNUM:" line, then from that line on the "REGNUM:" line.
Int32 DRV_ispGetPropertyCfg(Char* buffer, OSA_FileHandle hFile, Int32* pZoomNum, Int32* pRegNum);

// Allocates the arrays, reads the zoomNum blocks and stores everything in the record.
Int32 DRV_ispGetRegCfg(Char* buffer, OSA_FileHandle hFile, Int32 zoomNum, Int32 regNum,
                       DRV_RegistrateParam* pRegistrateParam);

// 0 and the decimal value following `field` when `buffer` contains it, else -1.
Int32 DRV_ispGetLineCfg(Char* buffer, Char* field, Int32* value);

// 0 and the hexadecimal address and value when `buffer` is a register line, else -1.
Int32 DRV_ispGetLineRegCfg(Char* buffer, Int32* addr, Int32* value);

// Releases the record's arrays and clears it; harmless on a zero record. Used
// when a new load replaces the arrays; white-box tests and fuzz targets use it
// to start from zero. Never called at unload (see registration.cpp).
void DRV_ispReleaseRegistrateCfg(DRV_RegistrateParam* pRegistrateParam);

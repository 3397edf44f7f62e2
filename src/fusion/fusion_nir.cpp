// NIR weight curve from the text file /tmp/nir.txt into the two stored fusion
// records of the current blend, for live tuning.
//
// File format: 40 lines; lines 1..39 hold 13 integers, each followed by a
// comma ("%d,%d,...,%d,"), line 40 holds the last 4 ("%d,%d,%d,%d").
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/log.h"
#include "tuning/device_paths.h"
#include "fusion/fusion_fields.h"
#include "ispdsp/fusion.h"

using namespace ispdsp::fusion;

namespace {

constexpr const auto& kNirFilePath = ispdsp::tuning::kNirCurvePath;
constexpr Int32 kNirLines = 40;
constexpr Int32 kNirPointsPerLine = 13;
constexpr Int32 kNirLastLinePoints = 4;
static_assert((kNirLines - 1) * kNirPointsPerLine + kNirLastLinePoints == FUSION_NIR_POINTS);
constexpr Int32 kNirReadSize = 256;  // per OSA_fgets call, line end included
constexpr Uint32 kNirBufferBytes = FUSION_NIR_POINTS * sizeof(Int32);
constexpr Int32 kNirPrintStride = 13;

// Reads up to `count` integers written "n,n,...,n": blanks may precede a
// number, every number but the last must be followed directly by a comma.
// Returns how many were read. Out-of-range numbers saturate to Int32.
Int32 parseNirLine(const Char* line, Int32* out, Int32 count) {
    const Char* p = line;
    for (Int32 k = 0; k < count; ++k) {
        if (k > 0) {
            if (*p != ',') return k;
            ++p;
        }
        Char* end = nullptr;
        const long v = std::strtol(p, &end, 10);
        if (end == p) return k;
        out[k] = static_cast<Int32>(std::clamp<long>(v, INT32_MIN, INT32_MAX));
        p = end;
    }
    return count;
}

}  // namespace

// Reads one line of the curve file and parses up to `count` points into `out`.
// Returns the number of points parsed, or -1 when OSA_fgets delivered no line.
static Int32 readNirLine(OSA_FileHandle file, Int32* out, Int32 count) {
    Char readBuf[kNirReadSize] = {};
    if (OSA_fgets(readBuf, kNirReadSize, file) != 0) {
        return -1;
    }
    return parseNirLine(readBuf, out, count);
}

// Fills buffer[0..510]; true when the file was opened and all 40 lines were
// read. A line holding fewer numbers than its pattern fails the whole
// load (and stops reading), so no point that the file did not supply can reach
// the records.
static bool DRV_ispGetNirCfg(const Char* path, Int32* buffer) {
    OSA_FileHandle file = nullptr;
    if (OSA_fileOpen(path, OSA_FILE_MODE_READ, &file) != 0) {
        ISP_LOG_WARN("%s open failed\n", path);
        return false;
    }

    Int32 next = 0;
    Int32 linesRead = 0;
    bool complete = true;
    for (Int32 line = 1; line < kNirLines; ++line) {
        const Int32 got = readNirLine(file, buffer + next, kNirPointsPerLine);
        if (got < 0) {
            ISP_LOG_ERROR("OSA_fgets error! \n");
            break;
        }
        if (got != kNirPointsPerLine) {
            ISP_LOG_ERROR("%s line %d holds %d of %d points\n", path, line, got, kNirPointsPerLine);
            complete = false;
            break;
        }
        ++linesRead;
        next += kNirPointsPerLine;
    }
    if (complete) {
        // The last line is read even after a failed read; `next` stays within
        // the buffer (at most 507).
        const Int32 got = readNirLine(file, buffer + next, kNirLastLinePoints);
        if (got < 0) {
            ISP_LOG_ERROR("OSA_fgets error! \n");
        } else if (got != kNirLastLinePoints) {
            ISP_LOG_ERROR("%s line %d holds %d of %d points\n", path, linesRead + 1, got, kNirLastLinePoints);
            complete = false;
        } else {
            ++linesRead;
        }
    }
    OSA_fileClose(file);
    return complete && linesRead == kNirLines;
}

// Logs the title, then the curve's points as "%4d " each, kNirPrintStride to a
// line: the file's 40 lines again, the last one short.
static void DRV_dspPrintNir(const Uint8* curve, const Char* title) {
    ISP_LOG_INFO("%s:\n", title);
    for (Int32 row = 0; row < kNirLines; ++row) {
        Char line[kNirPrintStride * sizeof "  255 "] = {};  // "%4d " of a byte is 5 characters
        size_t len = 0;
        const Int32 first = row * kNirPrintStride;
        const Int32 last = std::min(first + kNirPrintStride, FUSION_NIR_POINTS);
        for (Int32 i = first; i < last; ++i) {
            len += static_cast<size_t>(std::snprintf(line + len, sizeof line - len, "%4d ", curve[i]));
        }
        ISP_LOG_INFO("%s \n", line);
    }
}

Int32 DRV_dspdbgFusionNir(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam, Int32 pcmd_id,
                          Int32 value) {
    (void)value;
    ISP_CHECK_PTR(cfgFusionParam, "cfgFusionParam");
    ISP_CHECK_PTR(gainInterParam, "gainInterParam");

    Int32* buffer = static_cast<Int32*>(OSA_memUAllocAlign(kNirBufferBytes, 0));
    if (buffer == nullptr) {
        ISP_LOG_WARN("buffer malloc failed\n");
        return -1;
    }
    if (pcmd_id != 0) {
        OSA_memUFree(buffer);
        return 0;
    }
    // Indexes outside the sixteen records are refused, never clamped.
    if (!gainIndexesValid(*gainInterParam)) {
        ISP_LOG_ERROR("gain index out of range: start %d, end %d\n", gainInterParam->gainStartIndex,
                      gainInterParam->gainEndIndex);
        OSA_memUFree(buffer);
        return -1;
    }
    if (!DRV_ispGetNirCfg(kNirFilePath, buffer)) {
        OSA_memUFree(buffer);
        return -1;
    }

    Uint8* start = cfgFusionParam[gainInterParam->gainStartIndex].w_nir;
    Uint8* end = cfgFusionParam[gainInterParam->gainEndIndex].w_nir;
    for (Int32 i = 0; i < FUSION_NIR_POINTS; ++i) {
        const Int32 v = std::min(buffer[i], 255);
        start[i] = static_cast<Uint8>(v);  // low 8 bits: -1 becomes 255
        end[i] = static_cast<Uint8>(v);
    }
    DRV_dspPrintNir(start, "DRV_dspdbgFusionNir w_nir");

    OSA_memUFree(buffer);
    return 0;
}

// The tuning (ISP parameter) file as bytes, little-endian:
//
//   0    ver        Float32, must be within kVersionTolerance of 82981.0
//   4    dateTime   32 bytes of text
//   36   subVer     Float32
//   40   archName   32 bytes of text
//   72   pdtName    32 bytes of text
//   104  S          size of the block in bytes
//   108  block      S bytes: entries of a type word and one CFG_DspIspCfgParam
//   108+S checksum  XOR of the 26 header words and of floor(S / 4) block words
//
// Anything after the checksum is ignored. Inside a table, the fusion records of
// the sixteen gain steps lie back to back from kFusionRecordsOffset.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>

#include "ispdsp/param_file.h"
#include "ispdsp/param_table.h"

namespace ispdsp::tuning {

inline constexpr std::size_t kVersionOffset = offsetof(CFG_IspParamTable, ver);
inline constexpr std::size_t kDateTimeOffset = offsetof(CFG_IspParamTable, dateTime);
inline constexpr std::size_t kSubVersionOffset = offsetof(CFG_IspParamTable, subVer);
inline constexpr std::size_t kArchNameOffset = offsetof(CFG_IspParamTable, archName);
inline constexpr std::size_t kProductNameOffset = offsetof(CFG_IspParamTable, pdtName);
inline constexpr std::size_t kHeaderTextBytes = sizeof(CFG_IspParamTable::dateTime);
inline constexpr std::size_t kHeaderWords = offsetof(CFG_IspParamTable, cfg_specParam) / sizeof(Uint32);
inline constexpr std::size_t kHeaderBytes = kHeaderWords * sizeof(Uint32);  // the checksummed words
inline constexpr std::size_t kSizeWordOffset = kHeaderBytes;
inline constexpr std::size_t kBlockOffset = ISPDSP_PARAM_FILE_BLOCK_OFFSET;
inline constexpr std::size_t kFileOverhead = ISPDSP_PARAM_FILE_OVERHEAD;  // header + size word + checksum

inline constexpr Float32 kExpectedVersion = ISPDSP_PARAM_FILE_VERSION;
inline constexpr double kVersionTolerance = 1e-6;

inline constexpr std::size_t kTableBytes = sizeof(CFG_DspIspCfgParam);
inline constexpr std::size_t kEntryBytes = CFG_TABLE_ENTRY_SIZE;  // type word + table
inline constexpr std::size_t kGainSteps = FUSION_GAIN_STEPS;
inline constexpr std::size_t kFusionRecordBytes = sizeof(CFG_DSP_FusionV2722);
inline constexpr std::size_t kFusionRecordsOffset = offsetof(CFG_DspIspCfgParam, ispFusionParam);
inline constexpr std::size_t kNirCurveOffset = offsetof(CFG_DSP_FusionV2722, w_nir);
inline constexpr std::size_t kNirPoints = FUSION_NIR_POINTS;

static_assert(kHeaderBytes == 104 && kBlockOffset == kSizeWordOffset + sizeof(Uint32));
static_assert(kFileOverhead == kBlockOffset + sizeof(Uint32), "the checksum word follows the block");
static_assert(kEntryBytes == sizeof(Int32) + kTableBytes);
static_assert(sizeof(CFG_DSP_FusionV2722::w_nir) == kNirPoints);

// Table offset of a field of the fusion record of `gainStep`.
constexpr std::size_t fusionFieldOffset(std::size_t gainStep, std::size_t fieldOffset) {
    return kFusionRecordsOffset + gainStep * kFusionRecordBytes + fieldOffset;
}

// The version comparison: |stored - expected| in single precision, compared in double.
inline bool versionAccepted(Float32 stored, Float32 expected = kExpectedVersion) {
    const Float32 diff = std::fabs(stored - expected);
    return static_cast<double>(diff) < kVersionTolerance;  // NaN is never accepted
}

// XOR of the little-endian words of `bytes` (a trailing partial word is left out).
inline Uint32 xorOfWords(const Uint8* bytes, std::size_t size) {
    Uint32 sum = 0;
    for (std::size_t i = 0; i + sizeof(Uint32) <= size; i += sizeof(Uint32)) {
        Uint32 word;
        std::memcpy(&word, bytes + i, sizeof word);
        sum ^= word;
    }
    return sum;
}

}  // namespace ispdsp::tuning

// Internal helpers of the ISP parameter file reader: version comparison and checksum.
#pragma once

#include "ispdsp/param_file.h"
#include "tuning/file_layout.h"

// Number of 32-bit header words covered by the checksum: ver through pdtName (file bytes 0 to 103).
inline constexpr Uint32 kParamFileHeaderWords = ispdsp::tuning::kHeaderWords;

// 0 when |a - b| (single precision, widened to double) is below 1e-6, -1 otherwise; NaN is never equal.
Int32 DRV_compareFloat(Float32 a, Float32 b);

// XOR of the 26 header words and of the first floor(size / 4) words of the block, all little-endian.
// A null block contributes nothing; a null header gives 0.
Int32 CFG_ispCalcChksum(CFG_IspParamTable* cfg_table, Ptr specParam);

// 0 when the block exists and its checksum equals cfg_table->chksum, -1 otherwise.
Int32 CFG_ispCheckChksum(CFG_IspParamTable* cfg_table, Ptr specParam);

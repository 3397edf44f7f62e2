// Builds ISP parameter file images for tests and host tools.
//
// Layout written (little-endian): ver, dateTime[32], subVer, archName[32], pdtName[32], the block
// size S, S block bytes, the checksum word, then optional trailing bytes. The block is a run of
// 8824-byte entries (Int32 table type + CFG_DspIspCfgParam) unless raw bytes replace it.
//
// The bytes are written by the tuning tool's codec (ispdsp_tuning_codec: header, entries, checksum
// = XOR of the 26 header words and the first floor(S / 4) block words), independent of the
// library, so tests check the reader against the writer that makes the real files; this layer adds
// the faults the tool never writes.
//
// Usage:
//   auto bytes = ispdsp_test::ParamFileBuilder()
//                    .addTable(PARAM_MULTICOLOR)
//                    .addTable(PARAM_TRAFFIC, myTable)
//                    .build();
//   sandbox.writeFile("/var/tmp/dsp_isp_para.bin", bytes);
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <string_view>
#include <vector>

#include "ispdsp/param_table.h"
#include "param_file_image.h"

namespace ispdsp_test {

// A plausible table: fusion enabled, sixteen fusion records that move smoothly with the gain step
// (more blur, less detail and colour, more NIR weight as the gain rises), every value inside the
// DSP's ranges, and mid-range records for the other stages. `variant` (e.g. the table type) shifts
// a few values so that tables of different types differ; the same variant gives the same bytes.
CFG_DspIspCfgParam makeDefaultParamTable(uint32_t variant = 0);

class ParamFileBuilder {
public:
    // Version 82981.0, subVer 1.0, sample texts, no tables (an empty block).
    ParamFileBuilder();

    // Header fields. Texts are cut to 32 bytes and NUL-padded; 32 characters or more leave no NUL.
    ParamFileBuilder& version(float ver) { image_.header.verBits = ispdsp::tools::bitsFromFloat(ver); return *this; }
    ParamFileBuilder& subVersion(float subVer) { image_.header.subVerBits = ispdsp::tools::bitsFromFloat(subVer); return *this; }
    ParamFileBuilder& dateTime(std::string_view text) { image_.header.dateTime = textField(text); return *this; }
    ParamFileBuilder& archName(std::string_view text) { image_.header.archName = textField(text); return *this; }
    ParamFileBuilder& productName(std::string_view text) { image_.header.pdtName = textField(text); return *this; }

    // Appends one entry; the table defaults to makeDefaultParamTable(type). Any type value is
    // written as given (invalid ones included), so registration errors can be tested. The
    // table's padding bytes are written as 0, so the same field values give the same file.
    ParamFileBuilder& addTable(int32_t type);
    ParamFileBuilder& addTable(int32_t type, const CFG_DspIspCfgParam& table);
    // Replaces the whole block (entries added before and after are ignored) by these bytes.
    ParamFileBuilder& rawBlock(std::vector<uint8_t> bytes) { rawBlock_ = std::move(bytes); return *this; }

    // Faults. The size word written instead of the block's real length (the block bytes, the
    // checksum position and the checksum itself stay those of the real block).
    ParamFileBuilder& sizeWordOverride(uint32_t size) { sizeWord_ = size; return *this; }
    // The correct checksum XOR mask (a wrong checksum when mask != 0).
    ParamFileBuilder& corruptChecksum(uint32_t mask = 1u) { chksumMask_ = mask; return *this; }
    // Bytes after the checksum (ignored by the reader).
    ParamFileBuilder& trailingBytes(std::vector<uint8_t> bytes) { trailing_ = std::move(bytes); return *this; }

    // The 104 header bytes (ver through pdtName).
    std::vector<uint8_t> headerBytes() const;
    // The block as written (entries or raw bytes).
    std::vector<uint8_t> blockBytes() const;
    // The whole file image.
    std::vector<uint8_t> build() const;
    // The header record a successful load of build() leaves behind (reserved word 0).
    CFG_IspParamTable expectedHeader() const;

private:
    static ispdsp::tools::TextField textField(std::string_view text);  // cut to 32 bytes and NUL-padded

    ispdsp::tools::ParamFileImage image_;  // header fields and entries, as the tool writes them
    std::optional<std::vector<uint8_t>> rawBlock_;
    std::optional<uint32_t> sizeWord_;
    uint32_t chksumMask_ = 0;
    std::vector<uint8_t> trailing_;
};

}  // namespace ispdsp_test

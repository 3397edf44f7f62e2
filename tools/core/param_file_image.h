// The parameter file as bytes: header fields, table entries, checksum. Reading is lenient (a
// damaged file is still taken apart as far as it goes, so `check` can say what is wrong);
// writing always produces a well-formed file with a correct checksum.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "field_table.h"

namespace ispdsp::tools {

using ispdsp::tuning::kFileOverhead;  // header + size word + checksum word
using ispdsp::tuning::kHeaderBytes;   // ver .. pdtName, the checksummed header words
inline constexpr size_t kTextBytes = ispdsp::tuning::kHeaderTextBytes;
inline constexpr uint32_t kExpectedVersionBits = std::bit_cast<uint32_t>(ispdsp::tuning::kExpectedVersion);

using TextField = std::array<uint8_t, kTextBytes>;

struct FileHeader {
    uint32_t verBits = kExpectedVersionBits;  // Float32 kept as its bit pattern: exact round trip
    TextField dateTime{};
    uint32_t subVerBits = 0;
    TextField archName{};
    TextField pdtName{};
};

struct TableEntry {
    int32_t type = 0;
    std::array<uint8_t, kTableBytes> bytes{};  // CFG_DspIspCfgParam as stored
};

struct ParamFileImage {
    FileHeader header;
    std::vector<TableEntry> entries;  // in block order
};

// What reading found beside the image.
struct ParsedFile {
    ParamFileImage image;
    uint64_t fileLength = 0;
    uint32_t sizeWord = 0;           // S as stored
    uint64_t blockBytesPresent = 0;  // min(S, bytes after the size word)
    std::vector<uint8_t> blockTail;  // an incomplete last entry (block size not a multiple of 8824)
    bool checksumPresent = false;
    int32_t storedChecksum = 0;
    int32_t computedChecksum = 0;  // over the header and the block bytes present
    std::vector<uint8_t> afterChecksum;
};

float floatFromBits(uint32_t bits);
uint32_t bitsFromFloat(float value);

// XOR of the 26 header words and the first floor(blockSize / 4) block words (little-endian).
int32_t fileChecksum(const uint8_t* header104, const uint8_t* block, size_t blockSize);

std::array<uint8_t, kHeaderBytes> headerBytes(const FileHeader& header);

// Takes a file image apart. Fails (message in `error`) only when not even the header and size
// word are there (112 bytes or less, the length the driver rejects).
std::optional<ParsedFile> parseParamFile(const std::vector<uint8_t>& bytes, std::string& error);

// The whole file: header, S = 8824 x entries, the entries, the checksum.
std::vector<uint8_t> serializeParamFile(const ParamFileImage& image);

// Writes a whole file on a host path; false with a message naming the path.
bool writeFileBytes(const std::string& path, const std::vector<uint8_t>& bytes, std::string& error);

}  // namespace ispdsp::tools

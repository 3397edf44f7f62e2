#include "param_file_image.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace ispdsp::tools {
namespace {

using namespace ispdsp::tuning;

uint32_t loadWord(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

void appendWord(std::vector<uint8_t>& out, uint32_t word) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(word >> (8 * i)));
}

void putWord(uint8_t* p, uint32_t word) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(word >> (8 * i));
}

}  // namespace

float floatFromBits(uint32_t bits) { return std::bit_cast<float>(bits); }
uint32_t bitsFromFloat(float value) { return std::bit_cast<uint32_t>(value); }

int32_t fileChecksum(const uint8_t* header104, const uint8_t* block, size_t blockSize) {
    return static_cast<int32_t>(xorOfWords(header104, kHeaderBytes) ^ xorOfWords(block, blockSize));
}

std::array<uint8_t, kHeaderBytes> headerBytes(const FileHeader& h) {
    std::array<uint8_t, kHeaderBytes> out{};
    putWord(out.data() + kVersionOffset, h.verBits);
    std::memcpy(out.data() + kDateTimeOffset, h.dateTime.data(), kTextBytes);
    putWord(out.data() + kSubVersionOffset, h.subVerBits);
    std::memcpy(out.data() + kArchNameOffset, h.archName.data(), kTextBytes);
    std::memcpy(out.data() + kProductNameOffset, h.pdtName.data(), kTextBytes);
    return out;
}

std::optional<ParsedFile> parseParamFile(const std::vector<uint8_t>& bytes, std::string& error) {
    if (bytes.size() <= kFileOverhead) {
        error = "file is " + std::to_string(bytes.size()) + " bytes long: a parameter file needs more than " +
                std::to_string(kFileOverhead) + " (header, size word and checksum)";
        return std::nullopt;
    }
    ParsedFile f;
    f.fileLength = bytes.size();
    const uint8_t* p = bytes.data();
    FileHeader& h = f.image.header;
    h.verBits = loadWord(p + kVersionOffset);
    std::memcpy(h.dateTime.data(), p + kDateTimeOffset, kTextBytes);
    h.subVerBits = loadWord(p + kSubVersionOffset);
    std::memcpy(h.archName.data(), p + kArchNameOffset, kTextBytes);
    std::memcpy(h.pdtName.data(), p + kProductNameOffset, kTextBytes);
    f.sizeWord = loadWord(p + kSizeWordOffset);

    const size_t blockStart = kBlockOffset;
    const uint64_t afterSize = bytes.size() - blockStart;
    f.blockBytesPresent = std::min<uint64_t>(f.sizeWord, afterSize);
    const uint8_t* block = p + blockStart;

    size_t offset = 0;
    for (; offset + kEntryBytes <= f.blockBytesPresent; offset += kEntryBytes) {
        TableEntry entry;
        entry.type = static_cast<int32_t>(loadWord(block + offset));
        std::memcpy(entry.bytes.data(), block + offset + 4, kTableBytes);
        f.image.entries.push_back(entry);
    }
    f.blockTail.assign(block + offset, block + f.blockBytesPresent);

    f.computedChecksum = fileChecksum(p, block, f.blockBytesPresent);
    const uint64_t checksumAt = blockStart + static_cast<uint64_t>(f.sizeWord);
    if (checksumAt + 4 <= bytes.size()) {
        f.checksumPresent = true;
        f.storedChecksum = static_cast<int32_t>(loadWord(p + checksumAt));
        f.afterChecksum.assign(bytes.begin() + static_cast<std::ptrdiff_t>(checksumAt + 4), bytes.end());
    }
    return f;
}

std::vector<uint8_t> serializeParamFile(const ParamFileImage& image) {
    std::vector<uint8_t> out;
    out.reserve(kFileOverhead + image.entries.size() * kEntryBytes);
    const auto header = headerBytes(image.header);
    out.insert(out.end(), header.begin(), header.end());
    appendWord(out, static_cast<uint32_t>(image.entries.size() * kEntryBytes));
    for (const TableEntry& e : image.entries) {
        appendWord(out, static_cast<uint32_t>(e.type));
        out.insert(out.end(), e.bytes.begin(), e.bytes.end());
    }
    const size_t blockSize = out.size() - kBlockOffset;
    appendWord(out, static_cast<uint32_t>(fileChecksum(out.data(), out.data() + kBlockOffset, blockSize)));
    return out;
}

bool writeFileBytes(const std::string& path, const std::vector<uint8_t>& bytes, std::string& error) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) {
        error = path + ": cannot create: " + std::strerror(errno);
        return false;
    }
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        error = path + ": write failed: " + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace ispdsp::tools

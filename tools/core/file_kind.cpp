#include "file_kind.h"

#include <algorithm>
#include <bit>
#include <string_view>

#include "ispdsp/rlr.h"
#include "tuning/file_layout.h"

namespace ispdsp::tools {
namespace {

constexpr uint32_t kParamVersionBits = std::bit_cast<uint32_t>(ispdsp::tuning::kExpectedVersion);
constexpr size_t kParamOverhead = ispdsp::tuning::kFileOverhead;  // header, size word, checksum
constexpr size_t kRlrTableBytes = sizeof(CFG_RlrTableParam);      // three 256-byte tables
constexpr size_t kRlrStampFromEnd = 226;            // six date bytes: year-2000, month, day, h, m, s

uint32_t wordAt(std::span<const uint8_t> b, size_t at) {
    return static_cast<uint32_t>(b[at]) | static_cast<uint32_t>(b[at + 1]) << 8 |
           static_cast<uint32_t>(b[at + 2]) << 16 | static_cast<uint32_t>(b[at + 3]) << 24;
}

// The version word, or a size word that accounts for the whole file (a file of another version).
bool looksLikeParamFile(std::span<const uint8_t> b) {
    if (b.size() >= 4 && wordAt(b, 0) == kParamVersionBits) return true;
    return b.size() >= kParamOverhead && wordAt(b, ispdsp::tuning::kSizeWordOffset) == b.size() - kParamOverhead;
}

bool looksLikeRlrTable(std::span<const uint8_t> b) {
    if (b.size() == kRlrTableBytes) return true;  // the flash copy: tables only
    if (b.size() < kRlrTableBytes) return false;
    const uint8_t* s = b.data() + b.size() - kRlrStampFromEnd;
    return s[1] >= 1 && s[1] <= 12 && s[2] >= 1 && s[2] <= 31 && s[3] < 24 && s[4] < 60 && s[5] < 60;
}

// Text: no NUL and no control characters other than tab, line ends and form feed.
bool isText(std::span<const uint8_t> b) {
    return std::none_of(b.begin(), b.end(), [](uint8_t c) {
        return c == 0x7F || (c < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f');
    });
}

// The first character after blanks, a UTF-8 byte order mark and // or /* */ comments.
char firstToken(std::string_view t) {
    if (t.substr(0, 3) == "\xEF\xBB\xBF") t.remove_prefix(3);
    for (;;) {
        const size_t at = t.find_first_not_of(" \t\r\n\f");
        if (at == std::string_view::npos) return '\0';
        t.remove_prefix(at);
        if (t.substr(0, 2) == "//") {
            const size_t end = t.find('\n');
            if (end == std::string_view::npos) return '\0';
            t.remove_prefix(end);
        } else if (t.substr(0, 2) == "/*") {
            const size_t end = t.find("*/");
            if (end == std::string_view::npos) return '\0';
            t.remove_prefix(end + 2);
        } else {
            return t.front();
        }
    }
}

bool isNumberList(std::string_view t) {
    return t.find(',') != std::string_view::npos &&
           t.find_first_not_of("0123456789,- \t\r\n") == std::string_view::npos;
}

}  // namespace

FileKind recogniseFileKind(std::span<const uint8_t> bytes) {
    if (bytes.empty()) return FileKind::Empty;
    if (looksLikeParamFile(bytes)) return FileKind::ParamFile;
    if (isText(bytes)) {
        const std::string_view t(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const char first = firstToken(t);
        if (first == '{' || first == '[') return FileKind::JsonText;
        if (t.find("ZOOM:") != std::string_view::npos || t.find("REGNUM:") != std::string_view::npos)
            return FileKind::CalibrationText;
        if (isNumberList(t)) return FileKind::NirCurveText;
        return FileKind::OtherText;
    }
    return looksLikeRlrTable(bytes) ? FileKind::RlrTable : FileKind::OtherBinary;
}

const char* describeFileKind(FileKind kind) {
    switch (kind) {
        case FileKind::Empty: return "empty";
        case FileKind::ParamFile: return "an ISP parameter file";
        case FileKind::RlrTable: return "an RLR table file";
        case FileKind::JsonText: return "JSON text";
        case FileKind::CalibrationText: return "calibration text";
        case FileKind::NirCurveText: return "NIR curve text";
        case FileKind::OtherText: return "text";
        case FileKind::OtherBinary: return "binary data of no known kind";
    }
    return "?";
}

std::string wrongKindReason(FileKind found, FileKind expected) {
    const std::string seems =
        found == FileKind::Empty ? "is empty" : std::string("seems to be ") + describeFileKind(found);
    return seems + ", not " + describeFileKind(expected);
}

}  // namespace ispdsp::tools

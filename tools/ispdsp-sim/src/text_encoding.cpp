#include "text_encoding.h"

#include <iconv.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace ispdsp::tools::sim {

namespace {

// Length of the UTF-8 sequence starting at text[i], 0 when it is not valid.
size_t utf8SequenceLength(const std::string& text, size_t i) {
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(i);
    size_t length = 0;
    uint32_t min = 0;
    uint32_t code = 0;
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) {
        length = 2, min = 0x80, code = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, min = 0x800, code = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, min = 0x10000, code = lead & 0x07;
    } else {
        return 0;
    }
    if (i + length > text.size()) return 0;
    for (size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) return 0;
        code = (code << 6) | (byte(i + k) & 0x3F);
    }
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return length;
}

std::string escapeInvalid(const std::string& raw) {
    std::string out;
    for (size_t i = 0; i < raw.size();) {
        const size_t length = utf8SequenceLength(raw, i);
        if (length == 0) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(raw[i]));
            out += hex;
            ++i;
        } else {
            out.append(raw, i, length);
            i += length;
        }
    }
    return out;
}

bool convertFromGbk(const std::string& raw, std::string& out) {
    iconv_t cd = iconv_open("UTF-8", "GBK");
    if (cd == reinterpret_cast<iconv_t>(-1)) return false;
    std::vector<char> input(raw.begin(), raw.end());
    std::vector<char> output(raw.size() * 4 + 16);
    char* in = input.data();
    size_t inLeft = input.size();
    char* outPtr = output.data();
    size_t outLeft = output.size();
    const size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    iconv_close(cd);
    if (result == static_cast<size_t>(-1) || inLeft != 0) return false;
    out.assign(output.data(), output.size() - outLeft);
    return true;
}

}  // namespace

bool isValidUtf8(const std::string& text) {
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8SequenceLength(text, i);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string displayText(const std::string& raw) {
    if (isValidUtf8(raw)) return raw;
    std::string converted;
    if (convertFromGbk(raw, converted)) return converted;
    return escapeInvalid(raw);
}

}  // namespace ispdsp::tools::sim

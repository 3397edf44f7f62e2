#include "printable_text.h"

#include <cstdint>
#include <cstdio>

namespace ispdsp::tools {

std::size_t utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) return 1;
    std::size_t length = 0;
    uint32_t min = 0, code = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2, min = 0x80, code = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, min = 0x800, code = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, min = 0x10000, code = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > text.size()) return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(at + k) & 0xC0) != 0x80) return 0;
        code = (code << 6) | (byte(at + k) & 0x3F);
    }
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return length;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8SequenceLength(text, i);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string printableText(std::string_view text, bool keepLineFeeds) {
    std::string out;
    out.reserve(text.size());
    const auto escape = [&](std::size_t from, std::size_t count) {
        for (std::size_t k = from; k < from + count; ++k) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(text[k]));
            out += hex;
        }
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8SequenceLength(text, i);
        const auto lead = static_cast<unsigned char>(text[i]);
        const bool control = length == 1 && (lead < 0x20 || lead == 0x7F) && lead != '\t' && !(keepLineFeeds && lead == '\n');
        const bool c1 = length == 2 && lead == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (length == 0) {
            escape(i, 1);
            ++i;
            continue;
        }
        if (control || c1)
            escape(i, length);
        else
            out.append(text, i, length);
        i += length;
    }
    return out;
}

}  // namespace ispdsp::tools

#include "header_codec.h"
#include "hex_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace ispdsp::tools {
namespace {

constexpr const char* kHexDigits = "0123456789abcdef";

// Valid UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
bool isUtf8(const uint8_t* s, size_t n) {
    size_t i = 0;
    while (i < n) {
        const uint8_t c = s[i];
        size_t len;
        uint32_t cp;
        if (c < 0x80) {
            ++i;
            continue;
        }
        if ((c & 0xE0) == 0xC0) {
            len = 2;
            cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
            cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
            cp = c & 0x07;
        } else
            return false;
        if (i + len > n) return false;
        for (size_t k = 1; k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        const uint32_t minimum = len == 2 ? 0x80 : len == 3 ? 0x800 : 0x10000;
        if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        i += len;
    }
    return true;
}

// Length of the text when the field is "text, then only NULs"; nothing otherwise.
std::optional<size_t> plainTextLength(const TextField& f) {
    size_t n = 0;
    while (n < f.size() && f[n] != 0) ++n;
    for (size_t i = n; i < f.size(); ++i) {
        if (f[i] != 0) return std::nullopt;
    }
    if (!isUtf8(f.data(), n)) return std::nullopt;
    return n;
}

std::string hexOf(const uint8_t* p, size_t n) {
    std::string s;
    for (size_t i = 0; i < n; ++i) {
        s += kHexDigits[p[i] >> 4];
        s += kHexDigits[p[i] & 15];
    }
    return s;
}

OrderedJson encodeText(const TextField& f) {
    if (auto n = plainTextLength(f)) return std::string(f.begin(), f.begin() + static_cast<std::ptrdiff_t>(*n));
    return OrderedJson{{"hex", hexOf(f.data(), f.size())}};
}

// Shortest decimal that reads back as the same float, stored as the double of that decimal so
// the JSON shows "1.1" rather than 1.100000023841858.
OrderedJson encodeFloat(uint32_t bits) {
    const float v = floatFromBits(bits);
    if (!std::isfinite(v)) {
        return OrderedJson{{"bits", ispdsp::tools::hexText(bits, 8)}};
    }
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, v);
    *result.ptr = '\0';
    return std::strtod(text, nullptr);
}

void decodeText(const Json& v, TextField& out, const std::string& where, Diagnostics& diag) {
    out.fill(0);
    if (v.is_string()) {
        const std::string& s = v.get_ref<const std::string&>();
        if (s.size() > kTextBytes) {
            diag.error(where, "text is " + std::to_string(s.size()) + " bytes long; the field holds " +
                                  std::to_string(kTextBytes));
        } else if (s.find('\0') != std::string::npos) {
            diag.error(where, "text contains a NUL character; use {\"hex\": ...} for raw bytes");
        } else {
            std::copy(s.begin(), s.end(), out.begin());
        }
        return;
    }
    if (v.is_object() && v.size() == 1 && v.contains("hex") && v["hex"].is_string()) {
        const std::string& hex = v["hex"].get_ref<const std::string&>();
        if (hex.size() % 2 != 0 || hex.size() > 2 * kTextBytes) {
            diag.error(where + ".hex",
                       "expected up to 64 hex digits (an even number), found " + std::to_string(hex.size()));
            return;
        }
        for (size_t i = 0; i < hex.size(); i += 2) {
            unsigned byte = 0;
            const auto r = std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
            if (r.ec != std::errc() || r.ptr != hex.data() + i + 2) {
                diag.error(where + ".hex", "\"" + hex.substr(i, 2) + "\" is not a hex byte");
                return;
            }
            out[i / 2] = static_cast<uint8_t>(byte);
        }
        return;
    }
    diag.error(where, "expected a text or {\"hex\": \"...\"}, found " + jsonKind(v));
}

void decodeFloat(const Json& v, uint32_t& bits, const std::string& where, Diagnostics& diag) {
    if (v.is_number()) {
        const double d = v.get<double>();
        if (!std::isfinite(d) || std::fabs(d) > std::numeric_limits<float>::max()) {
            diag.error(where, v.dump() + " is not a finite Float32");
            return;
        }
        bits = bitsFromFloat(static_cast<float>(d));
        return;
    }
    if (v.is_object() && v.size() == 1 && v.contains("bits") && v["bits"].is_string()) {
        const std::string& s = v["bits"].get_ref<const std::string&>();
        const char* begin = s.c_str();
        if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) begin += 2;
        uint32_t value = 0;
        const auto r = std::from_chars(begin, s.c_str() + s.size(), value, 16);
        if (r.ec != std::errc() || r.ptr != s.c_str() + s.size() || begin == s.c_str() + s.size()) {
            diag.error(where + ".bits", "\"" + s + "\" is not a 32-bit hex pattern");
            return;
        }
        bits = value;
        return;
    }
    diag.error(where, "expected a number or {\"bits\": \"0x...\"}, found " + jsonKind(v));
}

}  // namespace

OrderedJson encodeHeader(const FileHeader& h) {
    OrderedJson out;
    out["ver"] = encodeFloat(h.verBits);
    out["dateTime"] = encodeText(h.dateTime);
    out["subVer"] = encodeFloat(h.subVerBits);
    out["archName"] = encodeText(h.archName);
    out["pdtName"] = encodeText(h.pdtName);
    return out;
}

void decodeHeader(const Json& value, FileHeader& h, const std::string& where, Diagnostics& diag) {
    h = FileHeader{};
    if (!value.is_object()) {
        diag.error(where, "expected an object, found " + jsonKind(value));
        return;
    }
    rejectUnknownKeys(value, {"ver", "dateTime", "subVer", "archName", "pdtName"}, where, diag);
    if (value.contains("ver")) decodeFloat(value["ver"], h.verBits, where + ".ver", diag);
    if (value.contains("subVer")) decodeFloat(value["subVer"], h.subVerBits, where + ".subVer", diag);
    if (value.contains("dateTime")) decodeText(value["dateTime"], h.dateTime, where + ".dateTime", diag);
    if (value.contains("archName")) decodeText(value["archName"], h.archName, where + ".archName", diag);
    if (value.contains("pdtName")) decodeText(value["pdtName"], h.pdtName, where + ".pdtName", diag);
}

std::string describeText(const TextField& f) {
    if (auto n = plainTextLength(f))
        return "\"" + std::string(f.begin(), f.begin() + static_cast<std::ptrdiff_t>(*n)) + "\"";
    return "<hex " + hexOf(f.data(), f.size()) + ">";
}

std::string describeFloat(uint32_t bits) {
    const float v = floatFromBits(bits);
    char text[64];
    if (!std::isfinite(v)) {
        std::snprintf(text, sizeof text, "<bits 0x%08X>", bits);
        return text;
    }
    const auto result = std::to_chars(text, text + sizeof text, v);
    return std::string(text, result.ptr);
}

}  // namespace ispdsp::tools

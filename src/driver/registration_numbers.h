// The numbers of a registration file line, read the way strtol(..., 10) and
// sscanf "%x" read them, but from a bounded piece of text: nothing past the
// piece is ever read, and values that do not fit saturate instead of wrapping.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "ispdsp/types.h"

namespace ispdsp::registration_numbers {

inline constexpr std::string_view kSpaces = " \t\n\v\f\r";
inline constexpr std::string_view kDecimalDigits = "0123456789";
inline constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

// The leading run of `digits` in text.
constexpr std::string_view leading(std::string_view text, std::string_view digits) {
    return {text.data(), std::min(text.find_first_not_of(digits), text.size())};
}

// Drops leading white space and an optional sign; true when the sign was '-'.
constexpr bool takeSign(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpaces), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    return negative;
}

// The value of a hexadecimal digit: '0'-'9', then 'a'-'f' in either case.
constexpr Uint32 hexValue(char c) { return static_cast<Uint32>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10); }

// strtol(..., 10): white space, a sign, digits up to the first other character.
// No digits reads as 0; values beyond Int32 hold at its ends.
constexpr Int32 parseDecimal(std::string_view text) {
    const bool negative = takeSign(text);
    const Int64 limit = negative ? -Int64{INT32_MIN} : Int64{INT32_MAX};
    Int64 magnitude = 0;  // held at the limit, so it never overflows while scanning
    for (const char c : leading(text, kDecimalDigits)) magnitude = std::min(magnitude * 10 + (c - '0'), limit);
    return static_cast<Int32>(negative ? -magnitude : magnitude);
}

// sscanf "%x": white space, a sign, a "0x" prefix when a digit follows it, then
// hexadecimal digits. No digits reads as 0; values above 0xFFFFFFFF hold there.
constexpr Uint32 parseHex(std::string_view text) {
    const bool negative = takeSign(text);
    if (text.starts_with("0x") || text.starts_with("0X")) {
        std::string_view rest = text;
        rest.remove_prefix(2);
        if (!leading(rest, kHexDigits).empty()) text = rest;
    }
    Uint64 magnitude = 0;
    for (const char c : leading(text, kHexDigits)) magnitude = std::min<Uint64>(magnitude * 16 + hexValue(c), UINT32_MAX);
    const Uint32 value = static_cast<Uint32>(magnitude);
    return negative ? 0u - value : value;
}

}  // namespace ispdsp::registration_numbers

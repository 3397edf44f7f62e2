#pragma once
// "0x" and upper-case hex digits, zero-padded to `digits`: how the tools show checksums,
// float bit patterns and raw bytes.

#include <cstdint>
#include <cstdio>
#include <string>

namespace ispdsp::tools {

inline std::string hexText(std::uint64_t value, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", digits, static_cast<unsigned long long>(value));
    return text;
}

}  // namespace ispdsp::tools

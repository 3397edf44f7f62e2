// The file header in JSON:
//
//   "header": {"ver": 82981.0, "dateTime": "2024-05-06 10:00:00", "subVer": 1.0,
//              "archName": "...", "pdtName": "..."}
//
// Texts are at most 32 bytes of UTF-8 without NUL, NUL-padded in the file. A field whose bytes
// are not such a text (no NUL terminator needed, but bytes after the first NUL must be NUL and
// the text must be valid UTF-8) is written by `dump` as {"hex": "<64 hex digits>"}, all 32 bytes,
// and read back exactly. Versions are numbers; a NaN or infinity is written as
// {"bits": "0x7FC00000"} (the Float32 bit pattern), which `build` also accepts.
// Missing members default to ver 82981.0, subVer 0 and empty texts.
#pragma once

#include <string>

#include "json_source.h"
#include "param_file_image.h"

namespace ispdsp::tools {

OrderedJson encodeHeader(const FileHeader& header);
void decodeHeader(const Json& value, FileHeader& header, const std::string& where, Diagnostics& diag);

// A text field as shown to people: the text up to its NUL, or <hex ...> when it is not text.
std::string describeText(const TextField& field);
// A Float32 as shown to people: shortest round-trip decimal, or its bit pattern.
std::string describeFloat(uint32_t bits);

}  // namespace ispdsp::tools

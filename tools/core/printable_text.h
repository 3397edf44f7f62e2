// Bytes from a file, made safe to show: a terminal must never receive a control sequence
// that a tuning file, a scenario or the driver's log put there (a product name holding
// ESC [ 3 1 m would recolour the terminal, BEL ring it). Every tool shows such bytes
// through this.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ispdsp::tools {

// Length of the valid UTF-8 sequence starting at text[at]; 0 when none starts there.
std::size_t utf8SequenceLength(std::string_view text, std::size_t at);
bool isValidUtf8(std::string_view text);

// `text` with every byte that is not printable written as \xNN: C0 controls (but tab, and line
// feed when `keepLineFeeds`), DEL, the C1 controls U+0080..U+009F and bytes of invalid UTF-8.
// Valid UTF-8 text otherwise stays as it is.
std::string printableText(std::string_view text, bool keepLineFeeds = false);

}  // namespace ispdsp::tools

#include "json_syntax_error.h"

#include <algorithm>

namespace ispdsp::tools {

JsonSyntaxError describeJsonSyntaxError(std::string_view text, std::size_t byte, std::string_view what) {
    JsonSyntaxError error{1, 1, std::string(what)};
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text.size());
    for (std::size_t i = 0; i < end; ++i) {
        if (text[i] == '\n') {
            ++error.line;
            error.column = 1;
        } else {
            ++error.column;
        }
    }
    // "[json.exception.parse_error.101] parse error at line 1, column 2: <reason>"
    if (const std::size_t colon = error.reason.find(": "); colon != std::string::npos)
        error.reason.erase(0, colon + 2);
    return error;
}

}  // namespace ispdsp::tools

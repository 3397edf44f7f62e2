#pragma once
// Where a JSON parser stopped, told the way people read a file: line and column, and the
// reason in our words, without the parser's exception id and position prefix. Both tools
// report the syntax errors of their JSON inputs (tuning sources, scenarios) through this,
// and a number too large for a double ("1e400") the same way.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ispdsp::tools {

struct JsonSyntaxError {
    std::size_t line;
    std::size_t column;
    std::string reason;
};

// byte: the 1-based position the parser reports (nlohmann's parse_error::byte);
// what: the parser's message (parse_error::what()).
JsonSyntaxError describeJsonSyntaxError(std::string_view text, std::size_t byte, std::string_view what);

// The first place where `text` (comments allowed) is no JSON document, or nothing when it is one.
std::optional<JsonSyntaxError> findJsonSyntaxError(std::string_view text);

}  // namespace ispdsp::tools

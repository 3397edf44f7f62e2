#pragma once
// Where a JSON parser stopped, told the way people read a file: line and column, and the
// parser's own explanation without its exception id and position prefix. Both tools report
// syntax errors in their JSON inputs (tuning sources, scenarios) through this.

#include <cstddef>
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

}  // namespace ispdsp::tools

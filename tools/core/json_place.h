// Where a value stands in a JSON text, so that a complaint about a value (not only a syntax
// error) names its line and column: both tools find their messages' places through this.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ispdsp::tools {

struct TextPlace {
    std::size_t line;
    std::size_t column;
};

// The line and column (1-based, in bytes) where `offset` lies in `text`.
TextPlace placeOf(std::string_view text, std::size_t offset);

// Where the value at `path` (object keys, and array indexes in decimal) starts in `text`, a
// JSON document that parses (comments allowed); nothing when it has no such value.
std::optional<TextPlace> findJsonValue(std::string_view text, const std::vector<std::string>& path);

// The path of a place as the tools word it: "tables[2] (PARAM_FACE) fusion[3].ep_delta" ->
// tables, 2, fusion, 3, ep_delta (what stands in parentheses is a remark, not a step).
std::vector<std::string> jsonPathOf(std::string_view where);

}  // namespace ispdsp::tools

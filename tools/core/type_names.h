// Names of the 120 parameter table types (PARAM_TABLE_TYPE), as used in the JSON source.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ispdsp/param_table.h"

namespace ispdsp::tools {

inline constexpr int32_t kTableTypes = PARAM_TABLE_TYPE_NUM;

// The name of a table type as the tuning description builds it; "type 120" for a value outside 0..119.
std::string tableTypeName(int32_t type);
// The type of a name, or nothing.
std::optional<int32_t> tableTypeFromName(std::string_view name);

}  // namespace ispdsp::tools

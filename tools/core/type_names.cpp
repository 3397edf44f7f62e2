// The names come from the tuning description, which builds them from the state map.
#include "type_names.h"

#include "tuning/table_types.h"

namespace ispdsp::tools {

std::string tableTypeName(int32_t type) {
    const ispdsp::tuning::TypeName name = ispdsp::tuning::tableTypeName(type);
    return name.text[0] != '\0' ? std::string(name.text) : "type " + std::to_string(type);
}

std::optional<int32_t> tableTypeFromName(std::string_view name) {
    for (int32_t type = 0; type < kTableTypes; ++type) {
        if (name == ispdsp::tuning::tableTypeName(type).text) return type;
    }
    return std::nullopt;
}

}  // namespace ispdsp::tools

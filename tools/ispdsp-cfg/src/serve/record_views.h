// A table's records as the page shows them, every fact from the field table (the tuning
// description): name, value, the DSP's range, unit, meaning, and whether the value lies
// outside the range; and the check of an edit before it is taken.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "param_file_image.h"

namespace ispdsp::tools::cfg::serve {

// The table-level flag and every stage record's fields.
nlohmann::json stageRecordsView(const TableEntry& table);
// The 26 fusion scalars with their sixteen gain-step values.
nlohmann::json fusionRecordsView(const TableEntry& table);

// What happens to a typed value, worded as the console words it: refused when it is not a
// number or does not fit the field's type; taken, with a note, when the driver will clamp it.
struct EditCheck {
    bool taken = false;
    int64_t value = 0;
    std::string note;  // empty when taken as typed
};
EditCheck checkEdit(const FieldDef& field, const std::string& text);

}  // namespace ispdsp::tools::cfg::serve

// The stage records of a table in JSON, each under its table field name with its fields by
// name; a record with nested parts (LAE) nests them:
//
//   "ispLsmParam": {"aw_left_thr": 64, "aw_right_thr": 960, "aw_top_thr": 64, "aw_bottom_thr": 960},
//   "ispLaeParam": {"plateLaeParam": {"manual_en": 1, ...}, "windowLaeParam": {"manual_en": 0, ...}},
//
// The records and their fields are those of the tuning description (tuning/stage_list.h).
// Missing records and fields are 0; padding bytes are always written as 0.
#pragma once

#include <string>
#include <vector>

#include "json_source.h"
#include "param_file_image.h"

namespace ispdsp::tools {

// The stage record keys in table order.
const std::vector<std::string>& stageRecordKeys();

// Adds every stage record to `tableObject`.
void encodeStages(const TableEntry& table, OrderedJson& tableObject);
// Decodes one stage record (key must be one of stageRecordKeys()).
void decodeStageRecord(const std::string& key, const Json& value, TableEntry& table, const std::string& where,
                       Diagnostics& diag);

}  // namespace ispdsp::tools

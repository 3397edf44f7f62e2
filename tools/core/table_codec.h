// The whole JSON source: header and tables.
//
//   {
//     "header": { ... see header_codec.h ... },
//     "tables": [
//       {"type": "<table type name>", "ispFusionFlag": 1, "fusion": [ ... ], "ispLsmParam": { ... }, ...},
//       ...
//     ]
//   }
//
// Tables are written to the file in the order listed. "type" is the PARAM_TABLE_TYPE name (a
// number 0..119 is accepted too); a type may appear once. Within a table every member is
// optional and defaults to 0. Unknown member names are errors, reported with their location.
// Comments (// and /* */) are allowed in the source.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "json_source.h"
#include "param_file_image.h"

namespace ispdsp::tools {

OrderedJson encodeTable(const TableEntry& table);
OrderedJson encodeDocument(const ParamFileImage& image);

std::optional<ParamFileImage> decodeDocument(const Json& document, Diagnostics& diag);

// Parses JSON text (comments allowed); a syntax error is reported as "line L, column C: ...".
std::optional<Json> parseJsonText(const std::string& text, Diagnostics& diag);

}  // namespace ispdsp::tools

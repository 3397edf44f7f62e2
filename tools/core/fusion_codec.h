// The sixteen fusion records of a table in JSON:
//
//   "fusion": [ {"ep_delta": 64, "fusion_hf_ratio": 200, ..., "uv_w": 128, "w_nir": {"ramp": [16, 200]}},
//               ... 16 gain steps, step 0 first ]
//
// Each step names its 26 scalar fields as in the stored record; missing fields are 0 and a
// missing "fusion" leaves all sixteen records 0. The curve forms are those of curve_forms.h.
#pragma once

#include <string>

#include "json_source.h"
#include "param_file_image.h"

namespace ispdsp::tools {

OrderedJson encodeFusion(const TableEntry& table);
void decodeFusion(const Json& value, TableEntry& table, const std::string& where, Diagnostics& diag);

}  // namespace ispdsp::tools

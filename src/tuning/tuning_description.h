// The tuning description: what a tuning file holds and how the driver reads it, stated once.
// The library's tables, the host tools and the tuner's reference all read these headers;
// none of them is part of the exported ABI.
//
//   stage_list.h      the stages of a table, their stored and payload fields, ranges, setters
//   table_types.h     the 120 table types, the scenes and the state map
//   fallback_rules.h  the two rules that replace a missing table
//   file_layout.h     the tuning file's bytes: header, block, version tolerance, checksum
//   device_paths.h    where the driver finds its files
//
// The fusion record's scalars are described in fusion/fusion_fields.h, and each stage's fields
// and rules in its own rules file (stages/*_rules.h, fusion/fusion_plate_rules.h).
#pragma once

#include "fusion/fusion_fields.h"
#include "tuning/device_paths.h"
#include "tuning/fallback_rules.h"
#include "tuning/file_layout.h"
#include "tuning/stage_list.h"
#include "tuning/table_types.h"

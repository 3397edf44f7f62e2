// The DSP's range of every decoded message field that has one, taken from the
// library's own tables: the fusion field table for FUSION, each stage's
// calculation steps (a cap, a range, a 0/1 flag) for the stage blocks.
#pragma once

#include "message_decoder.h"
#include "reporter.h"

namespace ispdsp::tools::sim {

// {"field": {"value", "min", "max"}} for each field outside its range; empty
// when every value is inside (or the stage has no ranges).
Event outOfRange(const DecodedMessage& decoded);

}  // namespace ispdsp::tools::sim

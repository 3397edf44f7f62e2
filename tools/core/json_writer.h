// Writes JSON for people: objects one member per line, but anything whose one-line form fits
// the line (short records, curve forms, knot lists) on one line, and long lists of numbers
// wrapped rather than one number per line.
#pragma once

#include <string>

#include "json_source.h"

namespace ispdsp::tools {

std::string writeJson(const OrderedJson& value);

}  // namespace ispdsp::tools

// Text of the driver's log lines for display: the console menu's Chinese
// descriptions are stored in GBK; terminals and JSON want UTF-8.
#pragma once

#include <string>

namespace ispdsp::tools::sim {

// UTF-8 text for display: valid UTF-8 as it is, else converted from GBK with
// iconv, else with every byte that does not decode written as \xNN (the reporter
// then escapes the control characters of every text it shows).
std::string displayText(const std::string& raw);

}  // namespace ispdsp::tools::sim

// What the driver will make of a console line, worked out before the line
// reaches it: the driver reads a value with strtol and clamps it to the
// field's range without a word, so "abc" becomes 0 and 20000 becomes 16383.
// The simulator says so beforehand; the driver keeps its behaviour.
#pragma once

#include <string>
#include <vector>

namespace ispdsp::tools::sim {

// One warning per value that the driver will read or store differently from
// what was typed; empty when every value is taken as written.
std::vector<std::string> consoleValueWarnings(const std::vector<std::string>& args);

}  // namespace ispdsp::tools::sim

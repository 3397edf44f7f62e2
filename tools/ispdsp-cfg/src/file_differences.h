// The differences between two parameter files, one line each, as `diff` prints them
// ("PARAM_MULTICOLOR fusion[3].ep_delta: 64 -> 100"); the workbench's comparison shows the same lines.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "param_file_image.h"

namespace ispdsp::tools::cfg {

// Header fields, tables only in one file (named by nameA/nameB), and every differing field,
// curve and padding byte of the tables both have.
std::vector<std::string> fileDifferences(const ParsedFile& a, const ParsedFile& b, const std::string& nameA,
                                         const std::string& nameB);

// One field of a table in two files, for a side-by-side view: every field, every weight curve
// (its first differing point) and each padding byte that differs. `line` is what `diff` prints
// after the table's name when the two differ.
struct FieldPair {
    std::string path;
    std::string mine;
    std::string theirs;
    bool differs = false;
    std::string line;
};
std::vector<FieldPair> tableSideBySide(const TableEntry& a, const TableEntry& b);

// The table of `b` that `diff` compares with table `index` of `a`: the same type and occurrence.
std::optional<size_t> pairedTable(const std::vector<TableEntry>& a, size_t index, const std::vector<TableEntry>& b);

}  // namespace ispdsp::tools::cfg

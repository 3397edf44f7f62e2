// Findings about a parameter file: what the driver would reject or silently change. `check`
// reports all of them; `build` reports the header and table findings of what it wrote.
#pragma once

#include <string>
#include <vector>

#include "diagnostic.h"
#include "param_file_image.h"

namespace ispdsp::tools {

enum class FindingKind { Truncated, Checksum, IncompleteEntry, Version, NoTables, TableType, Range, Padding };

struct Finding {
    FindingKind kind;
    std::string text;
};
using Findings = std::vector<Finding>;

// An error: the driver rejects the file (or can choose no table from it). A warning: the driver
// loads the file but ignores or changes part of it (the tools' one Severity, diagnostic.h).
Severity severityOf(FindingKind kind);
const char* severityWord(Severity severity);  // "error", "warning"
// True when any finding is an error.
bool hasErrors(const Findings& findings);

// Size word, block length, incomplete entry, checksum.
Findings structureFindings(const ParsedFile& file);
// Version (the driver compares with 82981.0 within 1e-6).
Findings headerFindings(const FileHeader& header);
// Table types (outside 0..119, duplicates), no table at all, fields outside the DSP ranges,
// non-zero padding.
Findings tableFindings(const std::vector<TableEntry>& entries);

// True when the driver accepts this version.
bool versionMatches(uint32_t verBits);

// One label per entry: the type name, with " (entry i)" when the type occurs more than once.
std::vector<std::string> tableLabels(const std::vector<TableEntry>& entries);

}  // namespace ispdsp::tools

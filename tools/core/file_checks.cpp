#include "file_checks.h"

#include <cmath>
#include <cstdio>
#include <map>

#include "header_codec.h"
#include "hex_text.h"
#include "type_names.h"

namespace ispdsp::tools {
namespace {

std::string rangeFinding(const std::string& table, const FieldDef& f, int step, int64_t v) {
    return table + " " + fieldPath(f, step) + " = " + std::to_string(v) + " (DSP range " + std::to_string(f.dspLow) +
           ".." + std::to_string(f.dspHigh) + ")";
}

}  // namespace

Severity severityOf(FindingKind kind) {
    switch (kind) {
        case FindingKind::Truncated:
        case FindingKind::Checksum:
        case FindingKind::Version:
        case FindingKind::NoTables: return Severity::Error;
        default: return Severity::Warning;
    }
}

const char* severityWord(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

bool hasErrors(const Findings& findings) {
    for (const Finding& f : findings) {
        if (severityOf(f.kind) == Severity::Error) return true;
    }
    return false;
}

bool versionMatches(uint32_t verBits) {
    return ispdsp::tuning::versionAccepted(floatFromBits(verBits));  // the driver's own comparison
}

std::vector<std::string> tableLabels(const std::vector<TableEntry>& entries) {
    std::map<int32_t, int> count;
    for (const TableEntry& e : entries) ++count[e.type];
    std::vector<std::string> labels;
    for (size_t i = 0; i < entries.size(); ++i) {
        std::string label = tableTypeName(entries[i].type);
        if (count[entries[i].type] > 1) label += " (entry " + std::to_string(i) + ")";
        labels.push_back(label);
    }
    return labels;
}

Findings structureFindings(const ParsedFile& f) {
    Findings out;
    const uint64_t room = f.fileLength - kFileOverhead;
    if (f.sizeWord > room) {
        out.push_back({FindingKind::Truncated,
                       "block size " + std::to_string(f.sizeWord) + " exceeds the file: only " + std::to_string(room) +
                           " bytes fit between the size word and a checksum (the driver rejects the file)"});
    }
    if (f.sizeWord % kEntryBytes != 0) {
        out.push_back({FindingKind::IncompleteEntry,
                       "block size " + std::to_string(f.sizeWord) + " is not a whole multiple of " +
                           std::to_string(kEntryBytes) + ": trailing incomplete entry of " +
                           std::to_string(f.sizeWord % kEntryBytes) + " bytes (the driver refuses to register it)"});
    } else if (!f.blockTail.empty()) {
        out.push_back({FindingKind::Truncated, "the block ends inside entry " + std::to_string(f.image.entries.size()) +
                                                   " (" + std::to_string(f.blockTail.size()) + " of " +
                                                   std::to_string(kEntryBytes) + " bytes present)"});
    }
    if (!f.checksumPresent) {
        out.push_back({FindingKind::Checksum, "checksum word missing (the file ends inside the block)"});
    } else if (f.storedChecksum != f.computedChecksum) {
        out.push_back({FindingKind::Checksum, "checksum " + ispdsp::tools::hexText(static_cast<uint32_t>(f.storedChecksum), 8) +
                                                  " stored, " + ispdsp::tools::hexText(static_cast<uint32_t>(f.computedChecksum), 8) +
                                                  " computed (the driver rejects the file)"});
    }
    return out;
}

Findings headerFindings(const FileHeader& h) {
    Findings out;
    if (!versionMatches(h.verBits)) {
        out.push_back({FindingKind::Version, "header ver = " + describeFloat(h.verBits) +
                                                 " (the driver reads version " + std::to_string(static_cast<long>(ispdsp::tuning::kExpectedVersion)) +
                                                 " only: it rejects the file)"});
    }
    return out;
}

Findings tableFindings(const std::vector<TableEntry>& entries) {
    Findings out;
    if (entries.empty())
        out.push_back({FindingKind::NoTables,
                       "the block holds no tables (the driver rejects a file of " + std::to_string(kFileOverhead) +
                           " bytes, and can choose no table from an empty block)"});
    const std::vector<std::string> labels = tableLabels(entries);
    std::map<int32_t, size_t> first;
    for (size_t i = 0; i < entries.size(); ++i) {
        const TableEntry& e = entries[i];
        if (e.type < 0 || e.type >= kTableTypes) {
            out.push_back(
                {FindingKind::TableType, "entry " + std::to_string(i) + ": table type " + std::to_string(e.type) +
                                             " is outside 0..119 (the driver stops registering tables here)"});
            continue;
        }
        if (auto [it, inserted] = first.emplace(e.type, i); !inserted) {
            out.push_back({FindingKind::TableType,
                           "entry " + std::to_string(i) + ": duplicate " + tableTypeName(e.type) + " (first at entry " +
                               std::to_string(it->second) + "; the driver uses the later one)"});
        }
    }
    for (size_t i = 0; i < entries.size(); ++i) {
        const TableEntry& e = entries[i];
        const uint8_t* t = e.bytes.data();
        for (const FieldDef& f : allFields()) {
            const bool fusion = isFusionField(f);
            for (size_t step = 0; step < (fusion ? kGainSteps : 1); ++step) {
                const size_t at = tableOffsetOf(f, step);
                const int64_t v = loadField(t + at, f.type);
                if (v < f.dspLow || v > f.dspHigh) {
                    out.push_back(
                        {FindingKind::Range, rangeFinding(labels[i], f, fusion ? static_cast<int>(step) : -1, v)});
                }
            }
        }
        const auto& padding = paddingMask();
        for (size_t b = 0; b < kTableBytes; ++b) {
            if (padding[b] && t[b] != 0) {
                out.push_back({FindingKind::Padding, labels[i] + " padding byte at table offset " + std::to_string(b) +
                                                         " = " + ispdsp::tools::hexText(t[b], 2) + " (never read; dump and build write 0)"});
            }
        }
    }
    return out;
}

}  // namespace ispdsp::tools

// diff: differences between two parameter files, by header field, table and field.
#include <algorithm>
#include <cstdio>
#include <map>

#include "commands.h"
#include "file_differences.h"
#include "header_codec.h"
#include "hex_text.h"
#include "param_file_image.h"
#include "type_names.h"

namespace ispdsp::tools::cfg {
namespace {

// Tables are paired by type and, for a repeated type, by occurrence.
using TableKey = std::pair<int32_t, int>;

std::vector<TableKey> keysOf(const std::vector<TableEntry>& entries) {
    std::map<int32_t, int> seen;
    std::vector<TableKey> keys;
    for (const TableEntry& e : entries) keys.emplace_back(e.type, seen[e.type]++);
    return keys;
}

std::string keyLabel(const TableKey& k) {
    return tableTypeName(k.first) + (k.second > 0 ? " (occurrence " + std::to_string(k.second + 1) + ")" : "");
}

void diffTable(const std::string& label, const TableEntry& a, const TableEntry& b, std::vector<std::string>& out) {
    for (const FieldPair& f : tableSideBySide(a, b))
        if (f.differs) out.push_back(label + " " + f.line);
}

bool checksumMatches(const ParsedFile& f) { return f.checksumPresent && f.storedChecksum == f.computedChecksum; }

// "0x1234ABCD", "0x1234ABCD (does not match the contents: 0x...)" or "missing".
std::string describeChecksum(const ParsedFile& f) {
    if (!f.checksumPresent) return "missing";
    char text[80];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<uint32_t>(f.storedChecksum));
    if (checksumMatches(f)) return text;
    char computed[16];
    std::snprintf(computed, sizeof computed, "0x%08X", static_cast<uint32_t>(f.computedChecksum));
    return std::string(text) + " (does not match the contents: " + computed + ")";
}

void diffHeader(const ParsedFile& a, const ParsedFile& b, std::vector<std::string>& out) {
    const FileHeader& ha = a.image.header;
    const FileHeader& hb = b.image.header;
    if (ha.verBits != hb.verBits)
        out.push_back("header.ver: " + describeFloat(ha.verBits) + " -> " + describeFloat(hb.verBits));
    if (ha.dateTime != hb.dateTime)
        out.push_back("header.dateTime: " + describeText(ha.dateTime) + " -> " + describeText(hb.dateTime));
    if (ha.subVerBits != hb.subVerBits)
        out.push_back("header.subVer: " + describeFloat(ha.subVerBits) + " -> " + describeFloat(hb.subVerBits));
    if (ha.archName != hb.archName)
        out.push_back("header.archName: " + describeText(ha.archName) + " -> " + describeText(hb.archName));
    if (ha.pdtName != hb.pdtName)
        out.push_back("header.pdtName: " + describeText(ha.pdtName) + " -> " + describeText(hb.pdtName));
    if (a.sizeWord != b.sizeWord) {
        out.push_back("block size: " + std::to_string(a.sizeWord) + " -> " + std::to_string(b.sizeWord));
    }
    if (a.storedChecksum != b.storedChecksum || a.checksumPresent != b.checksumPresent ||
        checksumMatches(a) != checksumMatches(b)) {
        out.push_back("checksum: " + describeChecksum(a) + " -> " + describeChecksum(b));
    }
    if (a.blockTail != b.blockTail) out.push_back("incomplete last entry differs");
    if (a.afterChecksum != b.afterChecksum) {
        out.push_back("bytes after the checksum: " + std::to_string(a.afterChecksum.size()) + " -> " +
                      std::to_string(b.afterChecksum.size()) +
                      (a.afterChecksum.size() == b.afterChecksum.size() ? " (content differs)" : ""));
    }
}

}  // namespace

std::vector<FieldPair> tableSideBySide(const TableEntry& a, const TableEntry& b) {
    std::vector<FieldPair> pairs;
    const auto add = [&pairs](std::string path, std::string mine, std::string theirs, std::string detail = "") {
        const bool differs = mine != theirs;
        std::string line = path + ": " + (detail.empty() ? mine + " -> " + theirs : detail);
        pairs.push_back({std::move(path), std::move(mine), std::move(theirs), differs, std::move(line)});
    };
    for (const FieldDef& f : allFields()) {
        const bool fusion = isFusionField(f);
        for (size_t step = 0; step < (fusion ? kGainSteps : 1); ++step) {
            const size_t at = tableOffsetOf(f, step);
            add(fieldPath(f, fusion ? static_cast<int>(step) : -1), std::to_string(loadField(a.bytes.data() + at, f.type)),
                std::to_string(loadField(b.bytes.data() + at, f.type)));
        }
    }
    for (size_t step = 0; step < kGainSteps; ++step) {
        const size_t at = nirCurveOffset(step);
        size_t differing = 0, first = 0;
        for (size_t i = kNirPoints; i-- > 0;) {
            if (a.bytes[at + i] != b.bytes[at + i]) {
                ++differing;
                first = i;
            }
        }
        const std::string path = "fusion[" + std::to_string(step) + "].w_nir";
        const std::string points = std::to_string(kNirPoints) + " points";
        if (differing == 0) {
            add(path, points, points);
            continue;
        }
        const std::string at0 = "[" + std::to_string(first) + "]: ";
        add(path, points + ", " + at0 + std::to_string(a.bytes[at + first]), points + ", " + at0 + std::to_string(b.bytes[at + first]),
            std::to_string(differing) + " of " + points + " differ (first " + at0 + std::to_string(a.bytes[at + first]) +
                " -> " + std::to_string(b.bytes[at + first]) + ")");
    }
    const auto& padding = paddingMask();
    for (size_t i = 0; i < kTableBytes; ++i) {
        if (padding[i] && a.bytes[i] != b.bytes[i]) {
            add("padding byte at table offset " + std::to_string(i), ispdsp::tools::hexText(a.bytes[i], 2),
                ispdsp::tools::hexText(b.bytes[i], 2));
        }
    }
    return pairs;
}

std::optional<size_t> pairedTable(const std::vector<TableEntry>& a, size_t index, const std::vector<TableEntry>& b) {
    const std::vector<TableKey> ka = keysOf(a), kb = keysOf(b);
    if (index >= ka.size()) return std::nullopt;
    const auto it = std::find(kb.begin(), kb.end(), ka[index]);
    if (it == kb.end()) return std::nullopt;
    return static_cast<size_t>(it - kb.begin());
}

std::vector<std::string> fileDifferences(const ParsedFile& a, const ParsedFile& b, const std::string& nameA,
                                         const std::string& nameB) {
    std::vector<std::string> diffs;
    diffHeader(a, b, diffs);

    const std::vector<TableKey> ka = keysOf(a.image.entries);
    const std::vector<TableKey> kb = keysOf(b.image.entries);
    std::map<TableKey, size_t> indexB;
    for (size_t i = 0; i < kb.size(); ++i) indexB[kb[i]] = i;
    std::map<TableKey, size_t> indexA;
    for (size_t i = 0; i < ka.size(); ++i) indexA[ka[i]] = i;

    std::vector<TableKey> commonA, commonB;
    for (const TableKey& k : ka) {
        if (!indexB.count(k))
            diffs.push_back("only in " + nameA + ": " + keyLabel(k));
        else
            commonA.push_back(k);
    }
    for (const TableKey& k : kb) {
        if (!indexA.count(k))
            diffs.push_back("only in " + nameB + ": " + keyLabel(k));
        else
            commonB.push_back(k);
    }
    if (commonA != commonB) diffs.push_back("the tables they share come in a different order");
    for (const TableKey& k : commonA) {
        diffTable(keyLabel(k), a.image.entries[indexA[k]], b.image.entries[indexB[k]], diffs);
    }

    return diffs;
}

int runDiff(const std::string& pathA, const std::string& pathB, std::ostream& out, std::ostream& err) {
    const std::optional<LoadedParamFile> loadedA = loadParamFileFor(pathA, err);
    const std::optional<LoadedParamFile> loadedB = loadParamFileFor(pathB, err);
    if (!loadedA || !loadedB) return kExitError;
    reportRejection(pathA, *loadedA, err);
    reportRejection(pathB, *loadedB, err);
    if (!loadedA->file || !loadedB->file) return kExitFindings;  // nothing to compare
    const std::vector<std::string> diffs = fileDifferences(*loadedA->file, *loadedB->file, pathA, pathB);
    for (const std::string& d : diffs) out << d << "\n";
    out << (diffs.empty() ? "no differences\n" : std::to_string(diffs.size()) + " differences\n");
    return diffs.empty() ? kExitOk : kExitFindings;
}

}  // namespace ispdsp::tools::cfg

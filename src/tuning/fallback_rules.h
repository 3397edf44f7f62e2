// The two fallback rules that replace a table type the file does not hold,
// tried in order. Each rule lists source types and, at the same positions,
// their replacements; the replacement list is also the rule's preference list,
// scanned from the start when the direct replacement is missing too. Only the
// first 120 entries of a list are ever scanned, whatever its size fields say.
#pragma once

#include <algorithm>
#include <array>
#include <iterator>

#include "ispdsp/param_table.h"

namespace ispdsp::tuning {

inline constexpr Uint32 kFallbackRules = 2;
inline constexpr Int32 kFallbackScanLimit = PARAM_TABLE_TYPE_NUM;  // every rule scan stops here

// Rule 0 lists 129 entries in its size fields; only the 120 stored ones are ever scanned.
inline constexpr Int32 kRule0DeclaredSize = 129;
// Head of rule 0: the base types in preference order (7, 9 and 11 are not listed).
inline constexpr auto kRule0BaseHead = std::to_array<Int32>({0, 1, 2, 3, 4, 6, 10, 8, 5});
// Replacements of the IVS types 66 to 74: their base-scene partners.
inline constexpr auto kIvsPartners = std::to_array<Int32>({0, 1, 2, 1, 4, 1, 0, 2, 4});

constexpr std::array<DRV_SuitableParam, kFallbackRules> buildFallbackRules() {
    std::array<DRV_SuitableParam, kFallbackRules> rules{};

    // Rule 0: every listed type stands against itself, except the IVS types; the last three
    // of the 120 entries stay 0.
    DRV_SuitableParam& r0 = rules[0];
    r0.srcArraySize = kRule0DeclaredSize;
    r0.dstArraySize = kRule0DeclaredSize;
    Int32 n = 0;
    for (Int32 type : kRule0BaseHead) {
        r0.srcArray[n] = type;
        r0.dstArray[n] = type;
        ++n;
    }
    for (Int32 type = PARAM_TRAFFIC; type < PARAM_TABLE_TYPE_NUM; ++type) {
        r0.srcArray[n] = type;
        const bool isIvs = type >= PARAM_IVS && type <= PARAM_WDR_IVS_NIGHT;
        r0.dstArray[n] = isIvs ? kIvsPartners[type - PARAM_IVS] : type;
        ++n;
    }

    // Rule 1: a missing PARAM_WDR_TRAFFIC falls to PARAM_WDR_MULTICOLOR, then PARAM_MULTICOLOR.
    DRV_SuitableParam& r1 = rules[1];
    constexpr Int32 kRule1Src[] = {PARAM_WDR_TRAFFIC};
    constexpr Int32 kRule1Dst[] = {PARAM_WDR_MULTICOLOR, PARAM_MULTICOLOR};
    r1.srcArraySize = std::size(kRule1Src);
    std::copy(std::begin(kRule1Src), std::end(kRule1Src), r1.srcArray);
    r1.dstArraySize = std::size(kRule1Dst);
    std::copy(std::begin(kRule1Dst), std::end(kRule1Dst), r1.dstArray);
    return rules;
}

}  // namespace ispdsp::tuning

// A NIR weight curve file as the fusion debug command ("w_nir") loads it from
// /tmp/nir.txt: FUSION_NIR_POINTS values, thirteen a line, value i being
// i * step mod 256. The last value is a single digit (7), so a file cut
// anywhere before its final line feed never reads as a whole curve.
// Header-only: the fuzz targets use it too.
#pragma once

#include <string>

#include "ispdsp/fusion.h"

namespace ispdsp_test {

inline std::string nirCurveText(int step = 5) {
    std::string text;
    for (int i = 0; i < FUSION_NIR_POINTS; ++i) {
        text += std::to_string(i == FUSION_NIR_POINTS - 1 ? 7 : (i * step) % 256);
        text += i == FUSION_NIR_POINTS - 1 ? "\n" : (i % 13 == 12 ? ",\n" : ",");
    }
    return text;
}

}  // namespace ispdsp_test

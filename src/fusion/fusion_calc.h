// The gain blend shared by DRV_dspCalculateFusion and the per-frame update,
// which blends straight from the current table's records (no copy).
#pragma once

#include "ispdsp/fusion.h"

namespace ispdsp::fusion {

// Blends records[gainStartIndex] and records[gainEndIndex] of the sixteen
// stored records by interCoff into out's switch, scalars and the curve behind
// out->fusionParam.w_nir (non-null), holding every scalar to the DSP range.
// An index outside 0..15 is logged and returns -1 with nothing written.
Int32 blendGainSteps(const CFG_DSP_FusionV2722* records, const DRV_gainInterParam& gain, Int32 pSwitch,
                     DSP_FusionV2722* out);

}  // namespace ispdsp::fusion

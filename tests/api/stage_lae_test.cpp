// LAE: the plate and window parts, the payload's own plate field order, the
// window gbce level 1..10, the manual switches and the three print lines.
#include "stage_cases.h"

namespace stage_test {
namespace {

using In = DSP_LaeCalculateParam;
using Out = DSP_LaeV209;
using Rec = CFG_DSP_LaeV209;

#define PLATE_IN(m) STAGE_AT(In, laeParam.plateLaeParam.m)
#define WINDOW_IN(m) STAGE_AT(In, laeParam.windowLaeParam.m)
#define PLATE_OUT(m) STAGE_AT(Out, laeParam.lae_param_plate.m)
#define WINDOW_OUT(m) STAGE_AT(Out, laeParam.lae_param_window.m)
#define PLATE_REC(m) STAGE_AT(Rec, plateLaeParam.m)
#define WINDOW_REC(m) STAGE_AT(Rec, windowLaeParam.m)

StageCase lae() {
    return StageCase{
        STAGE_API(Lae, V209, "laeCalParam", "cfgLaeParam"),
        {
            flagged(PLATE_IN(manual_en), PLATE_OUT(manual_en)),
            capped(PLATE_IN(gbce_lut_index), PLATE_OUT(gbce_lut_index), 11),
            capped(PLATE_IN(gbce_level), PLATE_OUT(gbce_level), 4),
            capped(PLATE_IN(nf_level), PLATE_OUT(nf_level), 100),
            capped(PLATE_IN(ee_level), PLATE_OUT(ee_level), 5),
            capped(PLATE_IN(blue_color_level), PLATE_OUT(blue_color_level), 9),
            copied(PLATE_IN(green_luma_ave_thr), PLATE_OUT(green_luma_ave_thr)),
            capped(PLATE_IN(green_bg_noise_level), PLATE_OUT(green_bg_noise_level), 512),
            capped(PLATE_IN(green_color_level), PLATE_OUT(green_color_level), 9),
            copied(PLATE_IN(blue_binary_thr), PLATE_OUT(blue_binary_thr)),
            copied(PLATE_IN(blue_proc_thr), PLATE_OUT(blue_proc_thr)),
            flagged(STAGE_AT(In, debug_pin), PLATE_OUT(debug_pin)),
            flagged(WINDOW_IN(manual_en), WINDOW_OUT(manual_en)),
            capped(WINDOW_IN(gbce_lut_index), WINDOW_OUT(gbce_lut_index), 11),
            ranged(WINDOW_IN(gbce_level), WINDOW_OUT(window_gbce_level), 1, 10),
            capped(WINDOW_IN(nf_level), WINDOW_OUT(nf_level), 100),
            capped(WINDOW_IN(ee_level), WINDOW_OUT(ee_level), 5),
            flagged(STAGE_AT(In, debug_pin), WINDOW_OUT(debug_pin)),
        },
        {
            between(0, PLATE_REC(manual_en), 0, 1, "[DSP_DRV] lae plate manual_en is %u\n"),
            between(1, PLATE_REC(gbce_level), 0, 4, "[DSP_DRV] lae plate gbce_level is %u\n"),
            between(2, PLATE_REC(gbce_lut_index), 0, 11, "[DSP_DRV] lae plate gbce_lut_index is %u\n"),
            between(3, PLATE_REC(ee_level), 0, 5, "[DSP_DRV] lae plate ee_level is %u\n"),
            between(4, PLATE_REC(nf_level), 0, 100, "[DSP_DRV] lae plate nf_level is %u\n"),
            between(5, PLATE_REC(blue_color_level), 0, 9, "[DSP_DRV] lae plate blue_color_level is %u\n"),
            between(6, PLATE_REC(green_luma_ave_thr), 0, 255, "[DSP_DRV] lae plate green_luma_ave_thr is %u\n"),
            between(7, PLATE_REC(green_bg_noise_level), 0, 512, "[DSP_DRV] lae plate green_bg_noise_level is %u\n"),
            between(8, PLATE_REC(green_color_level), 0, 9, "[DSP_DRV] lae plate green_color_level is %u\n"),
            between(9, PLATE_REC(blue_binary_thr), 0, 255, "[DSP_DRV] lae plate blue_binary_thr is %u\n"),
            between(10, PLATE_REC(blue_proc_thr), 0, 255, "[DSP_DRV] lae plate blue_proc_thr is %u\n"),
            between(11, WINDOW_REC(manual_en), 0, 1, "[DSP_DRV] lae window manual_en is %u\n", {{-3, 0}, {200, 1}}),
            between(12, WINDOW_REC(gbce_level), 1, 10, "[DSP_DRV] lae window gbce_level is %u\n", {{0, 1}}),
            between(13, WINDOW_REC(gbce_lut_index), 0, 11, "[DSP_DRV] lae window gbce_lut_index is %u\n"),
            between(14, WINDOW_REC(ee_level), 0, 5, "[DSP_DRV] lae window ee_level is %u\n"),
            between(15, WINDOW_REC(nf_level), 0, 100, "[DSP_DRV] lae window nf_level is %u\n"),
        },
        16,
        {},
        {{{PLATE_IN(gbce_level), 9}, {STAGE_AT(In, debug_pin), 1}}, {}},  // the calculation logs nothing
        {{{PLATE_REC(manual_en), 1},
          {PLATE_REC(gbce_level), 2},
          {PLATE_REC(gbce_lut_index), 3},
          {PLATE_REC(ee_level), 4},
          {PLATE_REC(nf_level), 5},
          {PLATE_REC(blue_color_level), 6},
          {PLATE_REC(green_luma_ave_thr), 7},
          {PLATE_REC(green_bg_noise_level), 1000},
          {PLATE_REC(green_color_level), 9},
          {PLATE_REC(blue_binary_thr), 10},
          {PLATE_REC(blue_proc_thr), 11},
          {WINDOW_REC(manual_en), 0},
          {WINDOW_REC(gbce_level), 12},
          {WINDOW_REC(gbce_lut_index), 13},
          {WINDOW_REC(ee_level), 14},
          {WINDOW_REC(nf_level), 15}},
         {"[DSP_DRV] [cfg LAE Plate]manual_en=1,gbce_lut_index=3,gbce_level=2,ee_level=4,,nf_level=5\n",
          "[DSP_DRV] [cfg LAE Plate]blue_color_level=6,green_luma_ave_thr=7,green_bg_noise_level=1000,"
          "green_color_level=9,blue_binary_thr=10,blue_proc_thr=11\n",
          "[DSP_DRV] [cfg LAE Window]manual_en=0,gbce_lut_index=13,gbce_level=12,nf_level=15,ee_level=14\n"}},
    };
}

INSTANTIATE_TEST_SUITE_P(Lae, StageContract, testing::Values(lae()), stageName);

}  // namespace
}  // namespace stage_test

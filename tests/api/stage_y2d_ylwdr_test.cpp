// Y2D (fields pass through, window size held to 2..3) and YLWDR (eighteen caps)
// with their upper-bound-only debug setters, whose negative values keep their
// low-order bits.
#include "stage_cases.h"

namespace stage_test {
namespace {

StageCase y2d() {
    using In = DSP_Y2dCalculateParam;
    using Out = DSP_Y2dV5118;
    using Rec = CFG_DSP_Y2dV5118;
#define Y2D_COPIED(m) copied(STAGE_AT(In, y2dParam.m), STAGE_AT(Out, y2dParam.m))
#define Y2D_IN(m) STAGE_AT(In, y2dParam.m)
    return StageCase{
        STAGE_API(Y2d, V5118, "y2dCalParam", "cfgY2dParam"),
        {
            Y2D_COPIED(sd_spe), Y2D_COPIED(sd_de_gau0), Y2D_COPIED(sd_de_gau1), Y2D_COPIED(sd_dark),
            Y2D_COPIED(sd_dark_ra), Y2D_COPIED(sd_bright), Y2D_COPIED(sd_bright_ra), Y2D_COPIED(sd_ee_gau0),
            Y2D_COPIED(sd_sigma), Y2D_COPIED(sd_ee_gau1), Y2D_COPIED(sd_ee_slope),
            ranged(Y2D_IN(win_size), STAGE_AT(Out, y2dParam.win_size), 2, 3),
        },
        {
            atMost(0, STAGE_AT(Rec, sd_spe), 255, "[DSP_DRV] y2d sd_spe is %u\n", {{300, 255}}),
            atMost(1, STAGE_AT(Rec, sd_de_gau0), 255, "[DSP_DRV] y2d sd_de_gau0 is %u\n"),
            atMost(2, STAGE_AT(Rec, sd_de_gau1), 255, "[DSP_DRV] y2d sd_de_gau1 is %u\n"),
            atMost(3, STAGE_AT(Rec, sd_dark), 255, "[DSP_DRV] y2d sd_dark is %u\n"),
            atMost(4, STAGE_AT(Rec, sd_dark_ra), 255, "[DSP_DRV] y2d sd_dark_ra is %u\n"),
            atMost(5, STAGE_AT(Rec, sd_bright), 255, "[DSP_DRV] y2d sd_bright is %u\n"),
            atMost(6, STAGE_AT(Rec, sd_bright_ra), 255, "[DSP_DRV] y2d sd_bright_ra is %u\n"),
            atMost(7, STAGE_AT(Rec, sd_ee_gau0), 255, "[DSP_DRV] y2d sd_ee_gau0 is %u\n"),
            atMost(8, STAGE_AT(Rec, sd_sigma), 65535, "[DSP_DRV] y2d sd_sigma is %u\n", {{70000, 65535}}),
            atMost(9, STAGE_AT(Rec, sd_ee_gau1), 255, "[DSP_DRV] y2d sd_ee_gau1 is %u\n"),
            atMost(10, STAGE_AT(Rec, sd_ee_slope), 255, "[DSP_DRV] y2d sd_ee_slope is %u\n"),
            between(11, STAGE_AT(Rec, win_size), 2, 3, "[DSP_DRV] y2d win_size is %u\n", {{-5, 2}}),
        },
        12,
        {},
        {{{Y2D_IN(sd_spe), 1},
          {Y2D_IN(sd_de_gau0), 2},
          {Y2D_IN(sd_de_gau1), 3},
          {Y2D_IN(sd_dark), 4},
          {Y2D_IN(sd_dark_ra), 5},
          {Y2D_IN(sd_bright), 6},
          {Y2D_IN(sd_bright_ra), 7},
          {Y2D_IN(sd_ee_gau0), 8},
          {Y2D_IN(sd_sigma), 65535},
          {Y2D_IN(sd_ee_gau1), 10},
          {Y2D_IN(sd_ee_slope), 255},
          {Y2D_IN(win_size), 200}},
         {"[DSP_DRV] [set Y2D]sd_spe=1,sd_de_gau0=2,sd_de_gau1=3,sd_dark=4,sd_dark_ra=5,sd_bright=6\n",
          "[DSP_DRV] [set Y2D]sd_bright_ra=7,sd_ee_gau0=8,sd_sigma=65535,sd_ee_gau1=10,sd_ee_slope=255,win_size=3\n"}},
        {{{STAGE_AT(Rec, sd_spe), 11},
          {STAGE_AT(Rec, sd_de_gau0), 12},
          {STAGE_AT(Rec, sd_de_gau1), 13},
          {STAGE_AT(Rec, sd_dark), 14},
          {STAGE_AT(Rec, sd_dark_ra), 15},
          {STAGE_AT(Rec, sd_bright), 16},
          {STAGE_AT(Rec, sd_bright_ra), 17},
          {STAGE_AT(Rec, sd_ee_gau0), 18},
          {STAGE_AT(Rec, sd_sigma), 4000},
          {STAGE_AT(Rec, sd_ee_gau1), 20},
          {STAGE_AT(Rec, sd_ee_slope), 21},
          {STAGE_AT(Rec, win_size), 0}},
         {"[DSP_DRV] [cfg Y2D]sd_spe=11,sd_de_gau0=12,sd_de_gau1=13,sd_dark=14,sd_dark_ra=15,sd_bright=16\n",
          "[DSP_DRV] [cfg Y2D]sd_bright_ra=17,sd_ee_gau0=18,sd_sigma=4000,sd_ee_gau1=20,sd_ee_slope=21,win_size=0\n"}},
    };
#undef Y2D_COPIED
#undef Y2D_IN
}

StageCase ylwdr() {
    using In = DSP_YlwdrCalculateParam;
    using Out = DSP_YlwdrV102;
    using Rec = CFG_DSP_YlwdrV102;
#define YLWDR_CAPPED(m, cap) capped(STAGE_AT(In, ylwdrParam.m), STAGE_AT(Out, ylwdrParam.m), cap)
#define YLWDR_REC(m) STAGE_AT(Rec, m)
    return StageCase{
        STAGE_API(Ylwdr, V102, "ylwdrCalParam", "cfgYlwdrParam"),
        {
            YLWDR_CAPPED(hist_thr, 65535),  YLWDR_CAPPED(scope_thr, 31), YLWDR_CAPPED(lep_alpha, 8192),
            YLWDR_CAPPED(lut_weight, 256),
            copied(STAGE_AT(In, ylwdrParam.yout_thr0), STAGE_AT(Out, ylwdrParam.yout_thr0)),
            copied(STAGE_AT(In, ylwdrParam.yout_thr1), STAGE_AT(Out, ylwdrParam.yout_thr1)),
            YLWDR_CAPPED(alpha1, 16),       YLWDR_CAPPED(alpha2, 16),     YLWDR_CAPPED(alpha31, 63),
            YLWDR_CAPPED(alpha32, 63),      YLWDR_CAPPED(d1_thr1, 31),    YLWDR_CAPPED(d1_thr2, 64),
            YLWDR_CAPPED(d1_thr3, 64),      YLWDR_CAPPED(d2_thr1, 64),    YLWDR_CAPPED(d2_thr2, 64),
            YLWDR_CAPPED(gamma_coef, 63),   YLWDR_CAPPED(uv_thr, 63),     YLWDR_CAPPED(uv_gain, 63),
        },
        {
            atMost(0, YLWDR_REC(hist_thr), 65535, "[DSP_DRV] ylwdr hist_thr is %u\n"),
            atMost(1, YLWDR_REC(scope_thr), 31, "[DSP_DRV] ylwdr scope_thr is %u\n"),
            atMost(2, YLWDR_REC(lep_alpha), 8192, "[DSP_DRV] ylwdr lep_alpha is %u\n"),
            atMost(3, YLWDR_REC(lut_weight), 256, "[DSP_DRV] ylwdr lut_weight is %u\n", {{1000, 256}}),
            atMost(4, YLWDR_REC(yout_thr0), 255, "[DSP_DRV] ylwdr yout_thr0 is %u\n"),
            atMost(5, YLWDR_REC(yout_thr1), 255, "[DSP_DRV] ylwdr yout_thr1 is %u\n"),
            atMost(6, YLWDR_REC(alpha1), 16, "[DSP_DRV] ylwdr alpha1 is %u\n"),
            atMost(7, YLWDR_REC(alpha2), 16, "[DSP_DRV] ylwdr alpha2 is %u\n"),
            atMost(8, YLWDR_REC(alpha31), 63, "[DSP_DRV] ylwdr alpha31 is %u\n"),
            atMost(9, YLWDR_REC(alpha32), 63, "[DSP_DRV] ylwdr alpha32 is %u\n"),
            atMost(10, YLWDR_REC(d1_thr1), 31, "[DSP_DRV] ylwdr d1_thr1 is %u\n"),
            atMost(11, YLWDR_REC(d1_thr2), 64, "[DSP_DRV] ylwdr d1_thr2 is %u\n"),
            atMost(12, YLWDR_REC(d1_thr3), 64, "[DSP_DRV] ylwdr d1_thr3 is %u\n"),
            atMost(13, YLWDR_REC(d2_thr1), 64, "[DSP_DRV] ylwdr d2_thr1 is %u\n"),
            atMost(14, YLWDR_REC(d2_thr2), 64, "[DSP_DRV] ylwdr d2_thr2 is %u\n"),
            atMost(15, YLWDR_REC(gamma_coef), 63, "[DSP_DRV] ylwdr gamma_coef is %u\n"),
            atMost(16, YLWDR_REC(uv_thr), 63, "[DSP_DRV] ylwdr uv_thr is %u\n"),
            atMost(17, YLWDR_REC(uv_gain), 63, "[DSP_DRV] ylwdr uv_gain is %u\n"),
        },
        18,
        {},
        {{{STAGE_AT(In, ylwdrParam.hist_thr), 100000},
          {STAGE_AT(In, ylwdrParam.scope_thr), 1},
          {STAGE_AT(In, ylwdrParam.lep_alpha), 9000},
          {STAGE_AT(In, ylwdrParam.lut_weight), 256},
          {STAGE_AT(In, ylwdrParam.yout_thr0), 255},
          {STAGE_AT(In, ylwdrParam.yout_thr1), 2},
          {STAGE_AT(In, ylwdrParam.alpha1), 3},
          {STAGE_AT(In, ylwdrParam.alpha2), 4},
          {STAGE_AT(In, ylwdrParam.alpha31), 64},
          {STAGE_AT(In, ylwdrParam.alpha32), 5},
          {STAGE_AT(In, ylwdrParam.d1_thr1), 6},
          {STAGE_AT(In, ylwdrParam.d1_thr2), 64},
          {STAGE_AT(In, ylwdrParam.d1_thr3), 7},
          {STAGE_AT(In, ylwdrParam.d2_thr1), 8},
          {STAGE_AT(In, ylwdrParam.d2_thr2), 9},
          {STAGE_AT(In, ylwdrParam.gamma_coef), 10},
          {STAGE_AT(In, ylwdrParam.uv_thr), 11},
          {STAGE_AT(In, ylwdrParam.uv_gain), 12}},
         {"[DSP_DRV] [set YLWDR]hist_thr=65535,scope_thr=1,lep_alpha=8192,lut_weight=256,yout_thr0=255,yout_thr1=2\n",
          "[DSP_DRV] [set YLWDR]alpha1=3,alpha2=4,alpha31=63,alpha32=5,d1_thr1=6,d1_thr2=64,,d1_thr3=7\n",
          "[DSP_DRV] [set YLWDR]d2_thr1=8,d2_thr2=9,gamma_coef=10,uv_thr=11,uv_gain=12\n"}},
        {{{YLWDR_REC(hist_thr), 0xFFFFFFFFu},  // a C %d of the stored word: -1
          {YLWDR_REC(scope_thr), 21},
          {YLWDR_REC(lep_alpha), 22},
          {YLWDR_REC(lut_weight), 23},
          {YLWDR_REC(yout_thr0), 24},
          {YLWDR_REC(yout_thr1), 25},
          {YLWDR_REC(alpha1), 26},
          {YLWDR_REC(alpha2), 27},
          {YLWDR_REC(alpha31), 28},
          {YLWDR_REC(alpha32), 29},
          {YLWDR_REC(d1_thr1), 30},
          {YLWDR_REC(d1_thr2), 31},
          {YLWDR_REC(d1_thr3), 32},
          {YLWDR_REC(d2_thr1), 33},
          {YLWDR_REC(d2_thr2), 34},
          {YLWDR_REC(gamma_coef), 35},
          {YLWDR_REC(uv_thr), 36},
          {YLWDR_REC(uv_gain), 255}},
         {"[DSP_DRV] [cfg YLWDR]hist_thr=-1,scope_thr=21,lep_alpha=22,lut_weight=23,yout_thr0=24,yout_thr1=25\n",
          "[DSP_DRV] [cfg YLWDR]alpha1=26,alpha2=27,alpha31=28,alpha32=29,d1_thr1=30,d1_thr2=31,,d1_thr3=32\n",
          "[DSP_DRV] [cfg YLWDR]d2_thr1=33,d2_thr2=34,gamma_coef=35,uv_thr=36,uv_gain=255\n"}},
    };
#undef YLWDR_CAPPED
#undef YLWDR_REC
}

INSTANTIATE_TEST_SUITE_P(Y2dYlwdr, StageContract, testing::Values(y2d(), ylwdr()), stageName);

}  // namespace
}  // namespace stage_test

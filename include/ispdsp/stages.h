/* The eleven enhancement stages: for each, the stored record (file format),
 * the calculation input, the DSP payload wrapping its firmware block, and the
 * calculation, debug setter, print and message functions. */
#ifndef ISPDSP_STAGES_H
#define ISPDSP_STAGES_H

#include "ispdsp/dsp_config.h"
#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

/* ---- Stored records (file format, natural alignment) ---- */

typedef struct {
    Uint8 fusion_weight;
    Uint16 window_gain;
    Uint8 gamma;
    Uint8 edge;
    Uint8 denoise;
} CFG_DSP_DlaeV101;
ISPDSP_CHECK_SIZE(CFG_DSP_DlaeV101, 8);
ISPDSP_CHECK_OFFSET(CFG_DSP_DlaeV101, window_gain, 2);
ISPDSP_CHECK_OFFSET(CFG_DSP_DlaeV101, denoise, 6);

typedef struct {
    Uint16 ee_level;
    Uint8 gamma;
    Uint8 luma_contrast;
    Uint8 denoise;
    Uint8 fusion_weight;
} CFG_DSP_DlcfaV101;
ISPDSP_CHECK_SIZE(CFG_DSP_DlcfaV101, 6);

typedef struct {
    Uint8 need_win_enhence;
    Uint8 win_fusion_weight;
    Uint8 face_fusion_weight;
    Uint8 face_fusion_pad;
} CFG_DSP_Fg2cV102;
ISPDSP_CHECK_SIZE(CFG_DSP_Fg2cV102, 4);

typedef struct {
    Uint16 window_gain;
    Uint8 gamma;
    Uint8 edge;
    Uint8 denoise;
    Uint8 fusion_weight;
} CFG_DSP_LleV203;
ISPDSP_CHECK_SIZE(CFG_DSP_LleV203, 6);

typedef struct {
    Uint16 aw_left_thr;
    Uint16 aw_right_thr;
    Uint16 aw_top_thr;
    Uint16 aw_bottom_thr;
} CFG_DSP_LsmV112;
ISPDSP_CHECK_SIZE(CFG_DSP_LsmV112, 8);

typedef struct {
    Uint8 model_type;
    Uint8 ee_level;
    Uint8 nr_level;
    Uint8 black_edge;
    Uint8 white_edge;
} CFG_DSP_SadeV113;
ISPDSP_CHECK_SIZE(CFG_DSP_SadeV113, 5);

typedef struct {
    Uint16 sbm3d_threshold;
} CFG_DSP_Sbm3dV113;
ISPDSP_CHECK_SIZE(CFG_DSP_Sbm3dV113, 2);

typedef struct {
    Uint32 enable;
} CFG_DSP_Yuv2yuvV100;
ISPDSP_CHECK_SIZE(CFG_DSP_Yuv2yuvV100, 4);

typedef struct {
    Uint8 manual_en;
    Uint8 gbce_level;
    Uint8 gbce_lut_index;
    Uint8 ee_level;
    Uint8 nf_level;
    Uint8 blue_color_level;
    Uint8 green_luma_ave_thr;
    Uint16 green_bg_noise_level;
    Uint8 green_color_level;
    Uint8 blue_binary_thr;
    Uint8 blue_proc_thr;
} CFG_DSP_Lae_PlateV209;
ISPDSP_CHECK_SIZE(CFG_DSP_Lae_PlateV209, 14);
ISPDSP_CHECK_OFFSET(CFG_DSP_Lae_PlateV209, green_bg_noise_level, 8);
ISPDSP_CHECK_OFFSET(CFG_DSP_Lae_PlateV209, blue_proc_thr, 12);

typedef struct {
    Uint8 manual_en;
    Uint8 gbce_level;
    Uint8 gbce_lut_index;
    Uint8 ee_level;
    Uint8 nf_level;
} CFG_DSP_Lae_WindowV209;
ISPDSP_CHECK_SIZE(CFG_DSP_Lae_WindowV209, 5);

typedef struct {
    CFG_DSP_Lae_PlateV209 plateLaeParam;
    CFG_DSP_Lae_WindowV209 windowLaeParam;
} CFG_DSP_LaeV209;
ISPDSP_CHECK_SIZE(CFG_DSP_LaeV209, 20);
ISPDSP_CHECK_OFFSET(CFG_DSP_LaeV209, windowLaeParam, 14);

typedef struct {
    Uint8 sd_spe;
    Uint8 sd_de_gau0;
    Uint8 sd_de_gau1;
    Uint8 sd_dark;
    Uint8 sd_dark_ra;
    Uint8 sd_bright;
    Uint8 sd_bright_ra;
    Uint8 sd_ee_gau0;
    Uint16 sd_sigma;
    Uint8 sd_ee_gau1;
    Uint8 sd_ee_slope;
    Uint8 win_size;
} CFG_DSP_Y2dV5118;
ISPDSP_CHECK_SIZE(CFG_DSP_Y2dV5118, 14);
ISPDSP_CHECK_OFFSET(CFG_DSP_Y2dV5118, sd_sigma, 8);
ISPDSP_CHECK_OFFSET(CFG_DSP_Y2dV5118, win_size, 12);

typedef struct {
    Uint32 hist_thr;
    Uint16 scope_thr;
    Uint16 lep_alpha;
    Uint16 lut_weight;
    Uint8 yout_thr0;
    Uint8 yout_thr1;
    Uint8 alpha1;
    Uint8 alpha2;
    Uint8 alpha31;
    Uint8 alpha32;
    Uint8 d1_thr1;
    Uint8 d1_thr2;
    Uint8 d1_thr3;
    Uint8 d2_thr1;
    Uint8 d2_thr2;
    Uint8 gamma_coef;
    Uint8 uv_thr;
    Uint8 uv_gain;
} CFG_DSP_YlwdrV102;
ISPDSP_CHECK_SIZE(CFG_DSP_YlwdrV102, 24);
ISPDSP_CHECK_OFFSET(CFG_DSP_YlwdrV102, yout_thr0, 10);
ISPDSP_CHECK_OFFSET(CFG_DSP_YlwdrV102, uv_gain, 23);

/* ---- Calculation inputs: the stored record plus the host's run-time values ---- */

typedef struct { CFG_DSP_DlaeV101 dlaeParam; Uint32 debug_pin; } DSP_DlaeCalculateParam;
typedef struct { CFG_DSP_DlcfaV101 dlcfaParam; Uint32 debug_pin; } DSP_DlcfaCalculateParam;
typedef struct { CFG_DSP_Fg2cV102 fg2cParam; Uint32 debug_pin; } DSP_Fg2cCalculateParam;
typedef struct { CFG_DSP_LleV203 lleParam; Uint32 debug_pin; } DSP_LleCalculateParam;
typedef struct { CFG_DSP_LsmV112 lsmParam; } DSP_LsmCalculateParam;
typedef struct { CFG_DSP_SadeV113 sadeParam; Uint32 debug_pin; Uint32 scene_mode; } DSP_SadeCalculateParam;
typedef struct { CFG_DSP_Sbm3dV113 sbm3dParam; Uint32 debug_pin; } DSP_Sbm3dCalculateParam;
typedef struct { CFG_DSP_Yuv2yuvV100 yuv2yuvParam; } DSP_Yuv2yuvCalculateParam;
typedef struct { CFG_DSP_LaeV209 laeParam; Uint32 debug_pin; } DSP_LaeCalculateParam;
typedef struct { CFG_DSP_Y2dV5118 y2dParam; } DSP_Y2dCalculateParam;
typedef struct { CFG_DSP_YlwdrV102 ylwdrParam; } DSP_YlwdrCalculateParam;
ISPDSP_CHECK_OFFSET(DSP_SadeCalculateParam, debug_pin, 8);
ISPDSP_CHECK_OFFSET(DSP_SadeCalculateParam, scene_mode, 12);
ISPDSP_CHECK_OFFSET(DSP_LaeCalculateParam, debug_pin, 20);

/* ---- DSP payloads: each wraps exactly the block that the message carries ---- */

typedef struct { VORN_HI_DLAE_PARAM_STR dlaeParam; } DSP_DlaeV101;
typedef struct { VORN_HI_DLCFA_PARAM_STR dlcfaParam; } DSP_DlcfaV101;
typedef struct { FG2C_PARAM_ARM fg2cParam; } DSP_Fg2cV102;
typedef struct { VORN_HI_LLE_PARAM_STR lleParam; } DSP_LleV203;
typedef struct { LSM_PARAM_ARM lsmParam; } DSP_LsmV112;
typedef struct { VORN_ARM_SADE_PARAM sadeParam; } DSP_SadeV113;
typedef struct { SBM3D_PARAM_ARM sbm3dParam; } DSP_Sbm3dV113;
typedef struct { Uint32 enable; } DSP_Yuv2yuvV100;
typedef struct { LAE_PARAM_ARM laeParam; } DSP_LaeV209;
typedef struct { Y2D_PARAM_ARM y2dParam; } DSP_Y2dV5118;
typedef struct { YLWDR_PARAM_ARM ylwdrParam; } DSP_YlwdrV102;
ISPDSP_CHECK_SIZE(DSP_DlaeV101, 32);
ISPDSP_CHECK_SIZE(DSP_DlcfaV101, 32);
ISPDSP_CHECK_SIZE(DSP_Fg2cV102, 32);
ISPDSP_CHECK_SIZE(DSP_LleV203, 32);
ISPDSP_CHECK_SIZE(DSP_LsmV112, 30);
ISPDSP_CHECK_SIZE(DSP_SadeV113, 12);
ISPDSP_CHECK_SIZE(DSP_Sbm3dV113, 40);
ISPDSP_CHECK_SIZE(DSP_Yuv2yuvV100, 4);
ISPDSP_CHECK_SIZE(DSP_LaeV209, 116);
ISPDSP_CHECK_SIZE(DSP_Y2dV5118, 44);
ISPDSP_CHECK_SIZE(DSP_YlwdrV102, 56);

/* ---- Functions: calculation, debug setter, print, Set and Get per stage ---- */

#define ISPDSP_DECLARE_STAGE(Name, Ver, calcParam, cfgParam)                                              \
    ISPDSP_API Int32 DRV_dspCalculate##Name(DSP_##Name##CalculateParam* calcParam, DSP_##Name##Ver* param); \
    ISPDSP_API Int32 DRV_dspdbg##Name(CFG_DSP_##Name##Ver* cfgParam, Int32 pcmd_id, Int32 value);          \
    ISPDSP_API Int32 DRV_dspdbg##Name##Print(CFG_DSP_##Name##Ver* cfgParam);                               \
    ISPDSP_API Int32 DRV_dspOpSet##Name(DSP_##Name##Ver* param, DRV_dspIspHandle* dspOps);                 \
    ISPDSP_API Int32 DRV_dspOpGet##Name(DSP_##Name##Ver* param, DRV_dspIspHandle* dspOps);

ISPDSP_DECLARE_STAGE(Dlae, V101, dlaeCalParam, cfgDlaeParam)
ISPDSP_DECLARE_STAGE(Dlcfa, V101, dlcfaCalParam, cfgDlcfaParam)
ISPDSP_DECLARE_STAGE(Fg2c, V102, fg2cCalParam, cfgFg2cParam)
ISPDSP_DECLARE_STAGE(Lle, V203, lleCalParam, cfgLleParam)
ISPDSP_DECLARE_STAGE(Lsm, V112, lsmCalParam, cfgLsmParam)
ISPDSP_DECLARE_STAGE(Sade, V113, sadeCalParam, cfgsadeParam)
ISPDSP_DECLARE_STAGE(Sbm3d, V113, sbm3dCalParam, cfgSbm3dParam)
ISPDSP_DECLARE_STAGE(Yuv2yuv, V100, yuv2yuvCalParam, cfgYuv2yuvParam)
ISPDSP_DECLARE_STAGE(Lae, V209, laeCalParam, cfgLaeParam)
ISPDSP_DECLARE_STAGE(Y2d, V5118, y2dCalParam, cfgY2dParam)
ISPDSP_DECLARE_STAGE(Ylwdr, V102, ylwdrCalParam, cfgYlwdrParam)

#undef ISPDSP_DECLARE_STAGE

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_STAGES_H */

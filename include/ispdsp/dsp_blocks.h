/* Firmware parameter blocks as the DSP reads them: wire formats,
 * little-endian, offsets from the start of the block. */
#ifndef ISPDSP_DSP_BLOCKS_H
#define ISPDSP_DSP_BLOCKS_H

#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

/* ---- Visible/NIR fusion: four layout versions of the DSP block ---- */

typedef struct {
    Uint32 deblock_v;
    Uint32 vis_ygain;
    Uint32 vis_uvgain;
    Uint32 nir_var;
    Uint32 nir_mean;
    Uint32 laplace_ratio;
    Uint32 fusion_ratio;
    Uint32 lap_alpha;
    Uint32 laplace_zoom;
    Uint32 vis_valid_luma;
    Uint32 vis_limit;
    Uint32 dif_limit;
    Uint32 dark_confidence;
    Uint32 adjust_thr;
    Uint32 vis_valid_luma_rep;
    Uint32 limit_valid;
    Int32 dark_confidence_b;
    Uint32 highlight_thr;
    Int32 high_lum_thr;
    Uint32 uvfilter_r;
    Uint32 uv_win_r;
    Uint32 uv_thr;
    Uint32 uv_nir_thr;
    Uint32 uv_coef;
    Uint32 uv_dark;
    Uint32 rep_uv_dark;
    Uint32 uv_level;
    Uint32 color_noise_range;
    Uint32 rgb_noise_level;
    Uint32 rg_noise_level;
    Uint32 gb_noise_level;
    Uint32 rb_noise_level;
    Uint32 r_effect;
    Uint32 g_effect;
    Uint32 b_effect;
    Uint32 diff_thr_r;
    Uint32 diff_thr_g;
    Uint32 diff_thr_b;
    Uint32 uv_a1;
    Uint32 uv_a2;
    Uint32 uv_a3;
    Uint32 uv_a4;
    Uint8 reserved[52];
} FUSION_PARAM_V2_2_16;
ISPDSP_CHECK_SIZE(FUSION_PARAM_V2_2_16, 220);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_2_16, dark_confidence_b, 64);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_2_16, uv_a4, 164);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_2_16, reserved, 168);

typedef struct {
    Uint16 ep_delta;
    Uint16 fusion_hf_ratio;
    Uint8 nir_dw;
    Uint8 vis_dw;
    Uint8 map_t1;
    Uint8 map_t2;
    Uint8 map_rshift;
    Uint8 nir_ext;
    Uint8 fwmin;
    Uint8 fwmax;
    Uint8 fwmin_limit;
    Uint8 fwmax_limit;
    Uint8 fwmin_wt;
    Uint8 uv_level;
    Int16 high_lum_thr;
    Uint16 hf_zoom;
    Uint16 dark_inner;
    Uint16 rep_uv_dark;
    Uint8 p_uv_coef;
    Uint8 copy_en;
    Uint8 reserved[62];
} FUSION_PARAM_V2_6_20;
ISPDSP_CHECK_SIZE(FUSION_PARAM_V2_6_20, 88);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_6_20, high_lum_thr, 16);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_6_20, copy_en, 25);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_6_20, reserved, 26);

/* The block this library sends: the 26 scalars share offsets 0..32 with the
 * stored record CFG_DSP_FusionV2722; the curve travels by address. */
typedef struct {
    Uint16 ep_delta;
    Uint16 fusion_hf_ratio;
    Uint16 fwmin_wt;
    Uint16 nir_k;
    Uint16 hf_zoom;
    Uint16 dark_inner;
    Int16 high_lum_thr;
    Uint8 fwmin_limit;
    Uint8 fwmax_limit;
    Uint8 copy_en;
    Int8 nir_a;
    Int8 vis_b;
    Uint8 nir_min;
    Uint8 uv_coef;
    Uint8 uv_diff_thr;
    Uint8 uv_diff_min;
    Uint8 uv_diff_max;
    Uint8 uv_vlight_min;
    Uint8 uv_vlight_max;
    Uint8 uv_sat_limit;
    Uint8 uv_rsmooth;
    Uint8 uv_gsmooth;
    Uint8 uv_bsmooth;
    Uint8 uv_wmin;
    Uint8 uv_wmax;
    Uint8 uv_w;
    Uint8 reserved1[7];
    void* w_nir;
    Uint8 reserved[16];
} FUSION_PARAM_V2_7_22;
ISPDSP_CHECK_SIZE(FUSION_PARAM_V2_7_22, 64);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, high_lum_thr, 12);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, fwmin_limit, 14);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, nir_a, 17);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, uv_w, 32);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, reserved1, 33);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, w_nir, 40);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_7_22, reserved, 48);

/* Bytes 0..32 of the 2.7.22 block: the scalars that the DSP read-back returns. */
#define FUSION_PARAM_V2_7_22_SCALAR_BYTES 33

typedef struct {
    Uint16 vis_ep_delta;
    Uint16 nir_ep_delta;
    Uint16 hf_ratio;
    Uint16 fwmin_wt;
    Uint16 nir_k;
    Uint16 hf_zoom;
    Uint16 dark_inner;
    Int16 high_lum_thr;
    Uint16 uv_rwmax;
    Uint16 uv_gwmax;
    Uint16 uv_bwmax;
    Uint16 uv_rgb_level;
    Uint16 rgbc_bthr;
    Uint16 rgbc_rthr;
    Uint8 rgbc_range_thr;
    Uint8 fwmin_limit;
    Uint8 fwmax_limit;
    Uint8 copy_en;
    Int8 nir_a;
    Int8 vis_b;
    Uint8 nir_min;
    Uint8 uv_coef;
    Uint8 uv_diff_thr;
    Uint8 uv_diff_min;
    Uint8 uv_diff_max;
    Uint8 uv_vlight_min;
    Uint8 uv_vlight_max;
    Uint8 uv_sat_limit;
    Uint8 uv_thr;
    Uint8 uv_nir_thr;
    Uint8 vscale_w;
    Uint8 vscale_wmin;
    Uint8 vscale_wmax;
    Uint8 uv_rthr;
    Uint8 uv_gthr;
    Uint8 uv_bthr;
    Uint8 debug_pin;
    Uint8 reserved1[5];
    void* w_nir;
    void* wa_ptr;
    Uint8 reserved[16];
} FUSION_PARAM_V2_8_25;
ISPDSP_CHECK_SIZE(FUSION_PARAM_V2_8_25, 88);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_8_25, rgbc_range_thr, 28);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_8_25, debug_pin, 50);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_8_25, w_nir, 56);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_8_25, wa_ptr, 64);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_V2_8_25, reserved, 72);

/* The fusion payload: one of four layout versions, then the version word. */
typedef struct {
    union {
        FUSION_PARAM_V2_2_16 fusion_param_v2_2_16;
        FUSION_PARAM_V2_6_20 fusion_param_v2_6_20;
        FUSION_PARAM_V2_7_22 fusion_param_v2_7_22;
        FUSION_PARAM_V2_8_25 fusion_param_v2_8_25;
        Char reserved[4088];
    };
    Int32 version;
    Int32 reserved1;
} FUSION_PARAM_ARM;
ISPDSP_CHECK_SIZE(FUSION_PARAM_ARM, 4096);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_ARM, version, 4088);
ISPDSP_CHECK_OFFSET(FUSION_PARAM_ARM, reserved1, 4092);

/* ---- Registration (IR zoom band and calibration file) ---- */

typedef struct {
    Uint16 zoomIndex;
    Uint8 reserved[14];
} VORN_HI_ARM_IR_PARAM_ARM;
ISPDSP_CHECK_SIZE(VORN_HI_ARM_IR_PARAM_ARM, 16);

typedef struct {
    Int32 dx;
    Int32 dy;
    Uint8 reserved[8];
} VORN_HI_ARM_IR_CALI_MANUAL;
ISPDSP_CHECK_SIZE(VORN_HI_ARM_IR_CALI_MANUAL, 16);

typedef struct {
    char* cfg_path;
    char* xytable_path;
    Uint16* xytable_base_virtual;
    Uint8 res[4];
    Uint32 input_yuv_w;
    Uint32 input_yuv_h;
    VORN_HI_ARM_IR_CALI_MANUAL manual_param;
    Char xytable_bin_save_flag;
    Char manual_flag;
    Uint8 reserved[30];
} VORN_HI_ARM_IR_CALI_IN_PARAM;
ISPDSP_CHECK_SIZE(VORN_HI_ARM_IR_CALI_IN_PARAM, 88);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CALI_IN_PARAM, res, 24);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CALI_IN_PARAM, input_yuv_w, 28);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CALI_IN_PARAM, manual_param, 36);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CALI_IN_PARAM, xytable_bin_save_flag, 52);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CALI_IN_PARAM, reserved, 54);

typedef struct {
    VORN_HI_ARM_IR_PARAM_ARM irParam;
    VORN_HI_ARM_IR_CALI_IN_PARAM calParam;
} VORN_HI_ARM_IR_CAL_PARAM_ARM;
ISPDSP_CHECK_SIZE(VORN_HI_ARM_IR_CAL_PARAM_ARM, 104);
ISPDSP_CHECK_OFFSET(VORN_HI_ARM_IR_CAL_PARAM_ARM, calParam, 16);

/* ---- Enhancement stages ---- */

typedef struct {
    Uint16 aw_left_thr;
    Uint16 aw_right_thr;
    Uint16 aw_top_thr;
    Uint16 aw_bottom_thr;
    Uint16 aw_wr;
    Uint16 aw_hr;
    Uint16 rep_left;
    Uint16 rep_right;
    Uint16 rep_top;
    Uint16 rep_bottom;
    Uint16 center_x;
    Uint16 center_y;
    Uint16 center_xy;
    Uint16 rep_center_x;
    Uint16 rep_center_y;
} LSM_PARAM_ARM;
ISPDSP_CHECK_SIZE(LSM_PARAM_ARM, 30);
ISPDSP_CHECK_OFFSET(LSM_PARAM_ARM, aw_wr, 8);
ISPDSP_CHECK_OFFSET(LSM_PARAM_ARM, rep_center_y, 28);

typedef struct {
    Uint8 manual_en;
    Uint8 blue_color_level;
    Uint16 green_bg_noise_level;
    Uint8 green_luma_ave_thr;
    Uint8 green_color_level;
    Uint8 blue_binary_thr;
    Uint8 blue_proc_thr;
    Uint8 gbce_level;
    Uint8 nf_level;
    Uint8 gbce_lut_index;
    Uint8 ee_level;
    Uint8 debug_pin;
    Uint8 reserved[31];
} LAE_PARAM_PLATE;
ISPDSP_CHECK_SIZE(LAE_PARAM_PLATE, 44);
ISPDSP_CHECK_OFFSET(LAE_PARAM_PLATE, green_bg_noise_level, 2);
ISPDSP_CHECK_OFFSET(LAE_PARAM_PLATE, debug_pin, 12);

typedef struct {
    Uint8 manual_en;
    Uint8 gbce_lut_index;
    Uint8 window_gbce_level;
    Uint8 nf_level;
    Uint8 ee_level;
    Uint8 debug_pin;
    Uint8 reserved[30];
} LAE_PARAM_WINDOW;
ISPDSP_CHECK_SIZE(LAE_PARAM_WINDOW, 36);

typedef struct {
    LAE_PARAM_PLATE lae_param_plate;
    LAE_PARAM_WINDOW lae_param_window;
    Uint32 ver;
    Uint8 window_en;
    Uint8 plate_type;
    Uint8 reserved[30];
} LAE_PARAM_ARM;
ISPDSP_CHECK_SIZE(LAE_PARAM_ARM, 116);
ISPDSP_CHECK_OFFSET(LAE_PARAM_ARM, lae_param_window, 44);
ISPDSP_CHECK_OFFSET(LAE_PARAM_ARM, ver, 80);
ISPDSP_CHECK_OFFSET(LAE_PARAM_ARM, window_en, 84);
ISPDSP_CHECK_OFFSET(LAE_PARAM_ARM, plate_type, 85);
ISPDSP_CHECK_OFFSET(LAE_PARAM_ARM, reserved, 86);

typedef struct {
    Int32 sbm3d_thr;
    Int32 debug_pin;
    Uint32 ver;
    Uint8 reserved[28];
} SBM3D_PARAM_ARM;
ISPDSP_CHECK_SIZE(SBM3D_PARAM_ARM, 40);

typedef struct {
    Int32 fuse_weight;
    Int32 reserved[32];
} FUSION_PLATE_PARAM;
ISPDSP_CHECK_SIZE(FUSION_PLATE_PARAM, 132);

typedef struct {
    Uint8 vorn_hi_fg2c_need_win_enhence;
    Uint8 vorn_hi_fg2c_win_fusion_weight;
    Uint8 vorn_hi_fg2c_face_fusion_weight;
    Uint8 vorn_hi_fg2c_face_fusion_pad;
    Uint8 vorn_hi_fg2c_debug_pin;
    Uint8 reserved[27];
} FG2C_PARAM_ARM;
ISPDSP_CHECK_SIZE(FG2C_PARAM_ARM, 32);

typedef struct {
    Uint16 vorn_hi_lle_window_gain;
    Uint8 vorn_hi_lle_gamma;
    Uint8 vorn_hi_lle_edge;
    Uint8 vorn_hi_lle_denoise;
    Uint8 vorn_hi_lle_fusion_weight;
    Uint8 vorn_hi_lle_debug_pin;
    Uint8 reserved[25];
} VORN_HI_LLE_PARAM_STR;
ISPDSP_CHECK_SIZE(VORN_HI_LLE_PARAM_STR, 32);
ISPDSP_CHECK_OFFSET(VORN_HI_LLE_PARAM_STR, vorn_hi_lle_debug_pin, 6);

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
    Uint8 reserved[32];
} YLWDR_PARAM_ARM;
ISPDSP_CHECK_SIZE(YLWDR_PARAM_ARM, 56);
ISPDSP_CHECK_OFFSET(YLWDR_PARAM_ARM, yout_thr0, 10);
ISPDSP_CHECK_OFFSET(YLWDR_PARAM_ARM, uv_gain, 23);
ISPDSP_CHECK_OFFSET(YLWDR_PARAM_ARM, reserved, 24);

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
    Uint8 reserved[31];
} Y2D_PARAM_ARM;
ISPDSP_CHECK_SIZE(Y2D_PARAM_ARM, 44);
ISPDSP_CHECK_OFFSET(Y2D_PARAM_ARM, sd_sigma, 8);
ISPDSP_CHECK_OFFSET(Y2D_PARAM_ARM, win_size, 12);
ISPDSP_CHECK_OFFSET(Y2D_PARAM_ARM, reserved, 13);

typedef struct {
    Uint8 vorn_hi_dlae_fusion_weight;
    Uint8 vorn_hi_dlae_debug_pin;
    Uint16 vorn_hi_dlae_window_gain;
    Uint8 vorn_hi_dlae_gamma;
    Uint8 vorn_hi_dlae_edge;
    Uint8 vorn_hi_dlae_denoise;
    Uint8 reserved[25];
} VORN_HI_DLAE_PARAM_STR;
ISPDSP_CHECK_SIZE(VORN_HI_DLAE_PARAM_STR, 32);
ISPDSP_CHECK_OFFSET(VORN_HI_DLAE_PARAM_STR, vorn_hi_dlae_window_gain, 2);
ISPDSP_CHECK_OFFSET(VORN_HI_DLAE_PARAM_STR, reserved, 7);

typedef struct {
    Uint16 vorn_hi_dlcfa_ee_level;
    Uint8 vorn_hi_dlcfa_gamma;
    Uint8 vorn_hi_dlcfa_luma_contrast;
    Uint8 vorn_hi_dlcfa_denoise;
    Uint8 vorn_hi_dlcfa_fusion_weight;
    Uint8 vorn_hi_dlcfa_debug_pin;
    Uint8 reserved[25];
} VORN_HI_DLCFA_PARAM_STR;
ISPDSP_CHECK_SIZE(VORN_HI_DLCFA_PARAM_STR, 32);
ISPDSP_CHECK_OFFSET(VORN_HI_DLCFA_PARAM_STR, vorn_hi_dlcfa_debug_pin, 6);

typedef struct {
    Uint8 vorn_arm_sade_model_type;
    Uint8 vorn_arm_sade_ee_level;
    Uint8 vorn_arm_sade_nr_level;
    Uint8 vorn_arm_sade_black_edge;
    Uint8 vorn_arm_sade_white_edge;
    Uint8 vorn_arm_sade_debug_pin;
    Uint8 vorn_arm_sade_scene_mode;
    Uint8 reserved[5];
} VORN_ARM_SADE_PARAM;
ISPDSP_CHECK_SIZE(VORN_ARM_SADE_PARAM, 12);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_DSP_BLOCKS_H */

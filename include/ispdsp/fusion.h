/* Visible/NIR fusion: stored records per gain step, the gain blend, the
 * colour/mono combination, debug setters, the fusion/IR messages and the
 * fusion plate stage. */
#ifndef ISPDSP_FUSION_H
#define ISPDSP_FUSION_H

#include "ispdsp/dsp_config.h"
#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

#define FUSION_GAIN_STEPS 16
#define FUSION_NIR_POINTS 511

/* One stored fusion record (file format, 544 bytes): the parameter set of one gain step. */
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
    Uint8 w_nir[FUSION_NIR_POINTS];
} CFG_DSP_FusionV2722;
ISPDSP_CHECK_SIZE(CFG_DSP_FusionV2722, 544);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, high_lum_thr, 12);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, fwmin_limit, 14);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, nir_a, 17);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, vis_b, 18);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, uv_w, 32);
ISPDSP_CHECK_OFFSET(CFG_DSP_FusionV2722, w_nir, 33);

/* The calculated record; its curve lives in a caller-owned buffer at fusionParam.w_nir. */
typedef struct {
    UINT32 pSwtich;
    FUSION_PARAM_V2_7_22 fusionParam;
} DSP_FusionV2722;
ISPDSP_CHECK_OFFSET(DSP_FusionV2722, fusionParam, 8);
ISPDSP_CHECK_SIZE(DSP_FusionV2722, 72);

/* The host's per-frame gain interpolation state (head of its run parameters). */
typedef struct {
    Float32 avgGain;
    Uint32 interUpFlag;
    Float32 interCoff;
    Int32 gainStartIndex;
    Int32 gainEndIndex;
    Int32 gainFixIndex;
    Float32 avgSenGain;
    Float32 senInterCoff;
    Int32 senGainStartIndex;
    Int32 senGainEndIndex;
    Int32 senGainFixIndex;
    Uint32 reserved[5];
} DRV_gainInterParam;
ISPDSP_CHECK_SIZE(DRV_gainInterParam, 64);
ISPDSP_CHECK_OFFSET(DRV_gainInterParam, interCoff, 8);
ISPDSP_CHECK_OFFSET(DRV_gainInterParam, gainStartIndex, 12);
ISPDSP_CHECK_OFFSET(DRV_gainInterParam, gainEndIndex, 16);

typedef struct {
    Int32 pSwitch;
    CFG_DSP_FusionV2722 fusionParam[FUSION_GAIN_STEPS];
    DRV_gainInterParam* gainInterParam;
    Uint32 debug_pin;
} DSP_FusionCalculateParam;
ISPDSP_CHECK_OFFSET(DSP_FusionCalculateParam, fusionParam, 4);
ISPDSP_CHECK_OFFSET(DSP_FusionCalculateParam, gainInterParam, 8712);

typedef struct {
    Uint32 aewPipeId;
    DSP_FusionV2722* pstColorFusionParam;
    DSP_FusionV2722* pstMonoFusionParam;
} DSP_DoubleFusionCalculateParam;
ISPDSP_CHECK_SIZE(DSP_DoubleFusionCalculateParam, 24);

/* Values of the FSSWITCH message's fcswitch word. */
typedef enum {
    DSP_OUTPUT_FUSE_INVALID = 0,
    DSP_OUTPUT_FUSE = 1,
    DSP_OUTPUT_FUSE_BEFORE = 2,
    DSP_OUTPUT_VIS = 3,
    DSP_OUTPUT_NIR = 4,
    DSP_OUTPUT_NIR_CAL = 5,
    DSP_OUTPUT_OVERLYING = 6
} DSP_OUTPUT_MODE;

/* Zoom band and calibration file of the IR and CAL messages. */
typedef struct {
    Int32 zoomIndex;
    Char cfg_path[512];
} DSP_IrParam;
ISPDSP_CHECK_SIZE(DSP_IrParam, 516);

/* ---- Fusion plate ---- */

typedef struct {
    Int32 fuse_weight;
} CFG_DSP_FusionPlateV1001;
ISPDSP_CHECK_SIZE(CFG_DSP_FusionPlateV1001, 4);

typedef struct {
    CFG_DSP_FusionPlateV1001 fusionPlateParam;
} DSP_FusionPlateCalculateParam;

typedef struct {
    FUSION_PLATE_PARAM fusionPlateParam;
} DSP_FusionPlateV1001;
ISPDSP_CHECK_SIZE(DSP_FusionPlateV1001, 132);

/* Gain blend of the sixteen stored records into the DSP record. */
ISPDSP_API Int32 DRV_dspCalculateFusion(DSP_FusionCalculateParam* fusionCalParam, DSP_FusionV2722* param);
/* Field-by-field colour/mono combination. */
ISPDSP_API Int32 DRV_dspDoubleCalculateFusion(DSP_DoubleFusionCalculateParam* doubleFusionCalParam,
                                              DSP_FusionV2722* param);

/* Debug setters on the two stored records of the current blend. */
ISPDSP_API Int32 DRV_dspdbgFusion(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam,
                                  Int32 pcmd_id, Int32 value);
ISPDSP_API Int32 DRV_dspdbgFusionPrint(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam);
ISPDSP_API Int32 DRV_dspdbgFusionNir(CFG_DSP_FusionV2722* cfgFusionParam, DRV_gainInterParam* gainInterParam,
                                     Int32 pcmd_id, Int32 value);

/* Fusion, output switch, IR and calibration messages. */
ISPDSP_API Int32 DRV_dspOpSetFusion(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps);
ISPDSP_API Int32 DRV_dspOpGetFusion(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps);
ISPDSP_API Int32 DRV_dspOpSetFSSWITCH(DSP_FusionV2722* param, DRV_dspIspHandle* dspOps);
ISPDSP_API Int32 DRV_dspOpSetIr(DSP_IrParam* param, DRV_dspIspHandle* dspOps);
ISPDSP_API Int32 DRV_dspOpSetCal(DSP_IrParam* param, DRV_dspIspHandle* dspOps);

/* Fusion plate stage. */
ISPDSP_API Int32 DRV_dspCalculateFusionPlate(DSP_FusionPlateCalculateParam* fusionPlateCalParam,
                                             DSP_FusionPlateV1001* param);
ISPDSP_API Int32 DRV_dspdbgFusionPlate(CFG_DSP_FusionPlateV1001* cfgFusionPlateParam, Int32 pcmd_id, Int32 value);
ISPDSP_API Int32 DRV_dspdbgFusionPlatePrint(CFG_DSP_FusionPlateV1001* cfgFusionPlateParam);
ISPDSP_API Int32 DRV_dspOpSetFusionPlate(DSP_FusionPlateV1001* param, DRV_dspIspHandle* dspOps);
ISPDSP_API Int32 DRV_dspOpGetFusionPlate(DSP_FusionPlateV1001* param, DRV_dspIspHandle* dspOps);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_FUSION_H */

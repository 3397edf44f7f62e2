/* The DSP configuration message and its transport: every stage's parameters
 * leave the library as one fixed-size DSP_AEW_CFG_S handed to a host callback. */
#ifndef ISPDSP_DSP_CONFIG_H
#define ISPDSP_DSP_CONFIG_H

#include "ispdsp/dsp_blocks.h"
#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

/* Values of DSP_AEW_CFG_S.u32Type. */
typedef enum {
    DSP_AEW_CFG_TYPE_LSM = 0,
    DSP_AEW_CFG_TYPE_FUSION = 1,
    DSP_AEW_CFG_TYPE_IR = 2,
    DSP_AEW_CFG_TYPE_CAL = 3,
    DSP_AEW_CFG_TYPE_FSSWITCH = 4,
    DSP_AEW_CFG_TYPE_FSSWITCH_FACTORY = 5,
    DSP_AEW_CFG_TYPE_LAE = 6,
    DSP_AEW_CFG_TYPE_SBM3D = 7,
    DSP_AEW_CFG_TYPE_CSC = 8,
    DSP_AEW_CFG_TYPE_FUSION_PLATE = 9,
    DSP_AEW_CFG_TYPE_FG2C = 10,
    DSP_AEW_CFG_TYPE_LLE = 11,
    DSP_AEW_CFG_TYPE_YLWDR = 12,
    DSP_AEW_CFG_TYPE_Y2D = 13,
    DSP_AEW_CFG_TYPE_DLAE = 14,
    DSP_AEW_CFG_TYPE_DLCFA = 15,
    DSP_AEW_CFG_TYPE_RESV = 16,
    DSP_AEW_CFG_TYPE_SADE = 17
} DSP_AEW_CFG_TYPE;

/* The message: 4168 bytes, every byte the sender does not set is zero. */
typedef struct {
    Uint32 u32Type;
    Uint32 res;
    union {
        Ptr pLsmArgs;
        Uint32 fcswitch;
        Uint32 cscEnable;
        Char resv[64];
    } vsfArgs;
    union {
        LSM_PARAM_ARM stLsmArgs;
        FUSION_PARAM_ARM stFusionArgs;
        VORN_HI_ARM_IR_CAL_PARAM_ARM irCalPramArgs;
        LAE_PARAM_ARM stLaeArgs;
        SBM3D_PARAM_ARM stSbm3dArgs;
        FUSION_PLATE_PARAM stFusionPlateArgs;
        FG2C_PARAM_ARM stFg2cArgs;
        VORN_HI_LLE_PARAM_STR stLleArgs;
        YLWDR_PARAM_ARM stYlwdrArgs;
        Y2D_PARAM_ARM stY2dArgs;
        VORN_HI_DLAE_PARAM_STR stDlaeArgs;
        VORN_HI_DLCFA_PARAM_STR stDlcfaArgs;
        VORN_ARM_SADE_PARAM stSadeArgs;
        Char resv[4096];
    } dspArgs;
} DSP_AEW_CFG_S;
ISPDSP_CHECK_SIZE(DSP_AEW_CFG_S, 4168);
ISPDSP_CHECK_OFFSET(DSP_AEW_CFG_S, res, 4);
ISPDSP_CHECK_OFFSET(DSP_AEW_CFG_S, vsfArgs, 8);
ISPDSP_CHECK_OFFSET(DSP_AEW_CFG_S, dspArgs, 72);

/* Control record handed to the callbacks with every message. */
typedef struct {
    Uint32 nId;
    Uint32 reserved[15];
} DRV_dspIspCfgOpsCtrl;
ISPDSP_CHECK_SIZE(DRV_dspIspCfgOpsCtrl, 64);

/* The host declares its callbacks over this record; it shares the leading nId. */
typedef struct {
    Uint32 nId;
    Uint32 reserved[7];
} DRV_aewIspRegOpsCtrl;
ISPDSP_CHECK_SIZE(DRV_aewIspRegOpsCtrl, 32);

typedef Int32 (*OpDspIspCfgctl)(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message);

typedef struct {
    OpDspIspCfgctl OpGetDspConfig;
    OpDspIspCfgctl OpSetDspConfig;
    Ptr reserved[2];
} DRV_dspIspCfgOps;
ISPDSP_CHECK_SIZE(DRV_dspIspCfgOps, 32);

/* Transport handle: whoever passes it owns it; the Set/Get functions only read it. */
typedef struct {
    Uint32 nId;
    DRV_dspIspCfgOps dspIspCfgOps;
} DRV_dspIspHandle;
ISPDSP_CHECK_OFFSET(DRV_dspIspHandle, dspIspCfgOps, 8);
ISPDSP_CHECK_SIZE(DRV_dspIspHandle, 40);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_DSP_CONFIG_H */

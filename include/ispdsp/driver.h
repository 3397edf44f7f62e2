/* The driver instance and the host's records around it: the host creates one
 * instance per image pipe with DRV_dspIspCreateX, hands it the pipe's
 * operation table, and from then on reaches the driver through the eleven
 * slots that creation writes. Every record below is shared with the host and
 * laid out exactly in its field order; the offsets that the driver relies on
 * are pinned with static assertions. */
#ifndef ISPDSP_DRIVER_H
#define ISPDSP_DRIVER_H

#include "ispdsp/dsp_config.h"
#include "ispdsp/fusion.h"
#include "ispdsp/param_file.h"
#include "ispdsp/param_table.h"
#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

/* ---- Constants ---- */

/* Largest ispNum an instance accepts (IspDev holds 8 ids all the same). */
#define ISP_MAX_DEV_NUM 6
/* Length of each of the two NIR weight buffers of an instance. */
#define DRV_ISP_NIR_BUFFER_SIZE FUSION_NIR_POINTS

/* The host's command ids of its operations (an unnamed enumeration running
 * from ISP_SET_H3A_AEWB to ISP_CALLBACKS_ENUM_MAX); the driver only ever
 * sends ISP_SET_FUSION through the flag callback. */
enum { ISP_SET_H3A_AEWB = 0, ISP_SET_FUSION = 145, ISP_CALLBACKS_ENUM_MAX = 193 };

/* Which kind of pipe the reference pipe is (DRV_RefPipeParams.fusionType). */
enum { DRV_ISP_FUSION_COLOR = 0, DRV_ISP_FUSION_MONO = 1, DRV_ISP_FUSION_MAX = 2 };

/* ---- Run parameters (inside the operation table; the host writes, the driver reads) ---- */

typedef struct {
    Float32 d;
    Float32 r;
    Float32 gr;
    Float32 gb;
    Float32 b;
    Uint32 reserved[11];
} DRV_ispWBGain;
ISPDSP_CHECK_SIZE(DRV_ispWBGain, 64);

typedef struct {
    Uint32 awbMode;
    Uint32 reserved1[3];
    struct {
        Uint32 rCustom;
        Uint32 bCustom;
    } awbAppRbCustom;
    struct {
        struct {
            Int32 left;
            Int32 top;
            Int32 right;
            Int32 bottom;
        } awbCustomLocalRect;
        Uint32 reserved[4];
    } awbAppCustomLocal;
    Uint32 reserved2[2];
} DRV_ispWBAppParm;
ISPDSP_CHECK_OFFSET(DRV_ispWBAppParm, awbAppRbCustom, 16);
ISPDSP_CHECK_OFFSET(DRV_ispWBAppParm, awbAppCustomLocal, 24);
ISPDSP_CHECK_OFFSET(DRV_ispWBAppParm, reserved2, 56);
ISPDSP_CHECK_SIZE(DRV_ispWBAppParm, 64);

typedef struct {
    Int32 hdrRatioStartIndex;
    Int32 hdrRatioEndIndex;
    Float32 hdrRatioInterCoff;
    Uint32 hdrRatioUpFlag;
} DRV_hdrRatioInterParam;
ISPDSP_CHECK_SIZE(DRV_hdrRatioInterParam, 16);

typedef struct {
    Int32 raw2dnf1Flag;
    Int32 nr2dFlag;
    Uint8 nr2dLevel;
    Uint8 u8res[3];
} DRV_af2AewbParam;
ISPDSP_CHECK_SIZE(DRV_af2AewbParam, 12);

typedef struct {
    Uint32 PTZUpdateFlag;
    Int32 zoom; /* looked up in the registration file's zoom list */
    Uint8 ktnfFlag;
    Uint8 eeFlag;
    Uint8 cacFlag;
    Uint8 u8res;
    Uint32 zoomValue;
} DRV_ptzUpdateParam;
ISPDSP_CHECK_OFFSET(DRV_ptzUpdateParam, zoom, 4);
ISPDSP_CHECK_SIZE(DRV_ptzUpdateParam, 16);

typedef struct {
    DRV_gainInterParam gainInterParam; /* blended by the fusion calculation */
    DRV_ispWBGain currWBGain;
    DRV_ispWBAppParm appWBParam;
    DRV_hdrRatioInterParam hdrRatioInterParam;
    Int32 dncMode;    /* table choice: 0 black-and-white */
    Int32 hdrMode;    /* table choice: 0 linear, 4 WDR, other HDR */
    Uint32 blcMode;
    Uint32 blcLevel;
    Uint8 defogMode;
    Uint8 camDefogFlag;
    Uint8 imageScene; /* table choice: application scene */
    Uint8 faceExpEnable;
    Int32 neeWdrType;
    DRV_af2AewbParam af2AewbParam;
    DRV_ptzUpdateParam ptzUpdateParam;
    Uint8 antiOverexp;
    Uint8 dbgAntiOverexp;
    Uint8 rlrFlag;
    Uint8 ldcRatio;
    Uint32 sceneMode; /* printed by the console */
    Float32 drLevel;
    Float32 hdrRatio[4];
    Uint8 hdrRatioMode;
    Uint8 vstdStandard;
    Uint8 reserved[2];
    Uint32 normalZoomPos;
} DRV_ispRunParams;
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, gainInterParam, 0);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, currWBGain, 64);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, appWBParam, 128);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, hdrRatioInterParam, 192);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, dncMode, 208);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, hdrMode, 212);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, imageScene, 226);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, neeWdrType, 228);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, af2AewbParam, 232);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, ptzUpdateParam, 244);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, ptzUpdateParam.zoom, 248);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, antiOverexp, 260);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, sceneMode, 264);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, hdrRatio, 272);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, hdrRatioMode, 288);
ISPDSP_CHECK_OFFSET(DRV_ispRunParams, normalZoomPos, 292);
ISPDSP_CHECK_SIZE(DRV_ispRunParams, 296);

/* ---- Module results (OpSetModuleResults; stored whole, only pSwitch is read) ---- */

typedef struct {
    Float32 currGain;
    Float32 currHdrGain[4];
    Float32 currSht;
    Float32 currHdrExpTime[4];
    Uint32 evDefault;
    Uint32 currEv;
    Uint32 avgEv;
    Float32 currMinExpTime;
    Float32 currMaxExpTime;
    Int32 gainIndex[4];
    Int32 shutLines[4];
    Float32 gainStep;
    Float32 currApertDb;
    Float32 currZoomMaxApertDb;
    Float32 maxApertDb;
    Float32 currSnsAgain[4];
    Float32 currSnsDgain[4];
    Uint32 reserved[5];
} DRV_AeResults;
ISPDSP_CHECK_OFFSET(DRV_AeResults, evDefault, 40);
ISPDSP_CHECK_OFFSET(DRV_AeResults, gainIndex, 60);
ISPDSP_CHECK_OFFSET(DRV_AeResults, currSnsAgain, 108);
ISPDSP_CHECK_OFFSET(DRV_AeResults, reserved, 140);
ISPDSP_CHECK_SIZE(DRV_AeResults, 160);

typedef struct {
    Float32 d;
    Float32 r;
    Float32 gr;
    Float32 gb;
    Float32 b;
    Uint32 reserved[11];
} DRV_AwbResults;
ISPDSP_CHECK_SIZE(DRV_AwbResults, 64);

typedef struct {
    Uint8 sensorStandbyMode;
    Uint8 count;
    Uint8 pSwitch; /* the mono pipe's value is the fusion output switch */
    Uint8 reserved[5];
} DRV_sensorStandbyResults;
ISPDSP_CHECK_OFFSET(DRV_sensorStandbyResults, pSwitch, 2);
ISPDSP_CHECK_SIZE(DRV_sensorStandbyResults, 8);

typedef struct {
    DRV_AeResults aeResults;
    DRV_AwbResults awbResults;
    DRV_sensorStandbyResults sensorStandbyParam;
    Uint32 reserved[6];
} DRV_ispModuleResults;
ISPDSP_CHECK_OFFSET(DRV_ispModuleResults, awbResults, 160);
ISPDSP_CHECK_OFFSET(DRV_ispModuleResults, sensorStandbyParam, 224);
ISPDSP_CHECK_OFFSET(DRV_ispModuleResults, reserved, 232);
ISPDSP_CHECK_SIZE(DRV_ispModuleResults, 256);

/* ---- Reference pipe (OpSetRefPipeParams) ---- */

typedef struct {
    DRV_gainInterParam refGainInterParam; /* stored, not read */
    Ptr refXHndl;                         /* the other pipe's instance (its OpGetXHndl) */
    Uint32 fusionType;                    /* DRV_ISP_FUSION_COLOR or DRV_ISP_FUSION_MONO: the other pipe's kind */
    Uint32 reserved[5];
} DRV_RefPipeParams;
ISPDSP_CHECK_OFFSET(DRV_RefPipeParams, refXHndl, 64);
ISPDSP_CHECK_OFFSET(DRV_RefPipeParams, fusionType, 72);
ISPDSP_CHECK_SIZE(DRV_RefPipeParams, 96);

/* ---- Flag callback: asks the host to run (1) or stop (0) its fusion operation ---- */

typedef struct {
    Ptr privData;  /* the creation record's privData */
    Int32 cmdType; /* always ISP_SET_FUSION */
    Uint32 flag;
    Uint32 reserved[5];
} DRV_ispSetDrvFlagParam;
ISPDSP_CHECK_OFFSET(DRV_ispSetDrvFlagParam, cmdType, 8);
ISPDSP_CHECK_OFFSET(DRV_ispSetDrvFlagParam, flag, 12);
ISPDSP_CHECK_OFFSET(DRV_ispSetDrvFlagParam, reserved, 16);
ISPDSP_CHECK_SIZE(DRV_ispSetDrvFlagParam, 40);

/* The record lives on the driver's stack for the duration of the call. */
typedef Int32 (*DRV_ispSetDrvFlagFn)(const DRV_ispSetDrvFlagParam* flagParam);

/* ---- Debug console (OpSetDbgDspParam) ---- */

/* Every argument entry is 8 bytes wide whatever the pointer size. */
typedef union {
    char* pointer;
    Int64 placeHolder;
} DRV_ISP_ARGP_Pointer;
ISPDSP_CHECK_SIZE(DRV_ISP_ARGP_Pointer, 8);

#define DRV_ISP_CMD_MAX_ARGS 33

typedef struct {
    DRV_ISP_ARGP_Pointer argp[DRV_ISP_CMD_MAX_ARGS]; /* the entry after the last argument is null */
    Int32 argc;
    Uint32 reserved[7];
} DRV_ispCmdParam;
ISPDSP_CHECK_OFFSET(DRV_ispCmdParam, argc, 264);
ISPDSP_CHECK_SIZE(DRV_ispCmdParam, 296);

/* One entry of a console command table; a null name ends the table. The texts
 * are never written through these pointers. */
typedef struct cmd_drvIspDes {
    Int32 id;
    const char* name;
    const char* long_name; /* Chinese description (GBK), printed when langue is 1 */
    const char* descrip;   /* English description */
    struct cmd_drvIspDes* sub_cmd;
} CMD_DrvIspTable;
ISPDSP_CHECK_OFFSET(CMD_DrvIspTable, name, 8);
ISPDSP_CHECK_OFFSET(CMD_DrvIspTable, sub_cmd, 32);
ISPDSP_CHECK_SIZE(CMD_DrvIspTable, 40);

/* ---- Host types the driver only names ---- */

/* Opaque host handles. */
typedef Ptr DRV_H3aHndl;
typedef Ptr ALG_ObserverHndl;
typedef Ptr DRV_aewSensorHndl;

/* A host callback whose arguments the driver does not know: the driver never
 * reads or calls it, and the host stores its own function type here. */
typedef void (*DRV_hostCallbackFn)(void);
typedef DRV_hostCallbackFn OpIspNotifyFps;

/* Host records used only through pointers. */
typedef struct DRV_aewHdrRatio DRV_aewHdrRatio;
typedef struct DRV_MappingTableInfo DRV_MappingTableInfo;

/* ---- Creation record (read only during DRV_dspIspCreateX) ---- */

typedef struct {
    DRV_hostCallbackFn OpGetIspRegVal;
    DRV_hostCallbackFn OpSetIspRegVal;
    Ptr reserved[2];
} DRV_aewIspRegOps;
ISPDSP_CHECK_SIZE(DRV_aewIspRegOps, 32);

typedef struct {
    DRV_hostCallbackFn OpInitVinTick;
    DRV_hostCallbackFn OpDeinitVinTick;
    DRV_hostCallbackFn OpGetVinTick;
    Ptr reserved[1];
} DRV_aewVDOps;
ISPDSP_CHECK_SIZE(DRV_aewVDOps, 32);

typedef struct {
    DRV_hostCallbackFn OpSetEnhanceConfig;
    DRV_hostCallbackFn OpSetDspConfig;
    Ptr reserved[2];
} DRV_ispAIOps;
ISPDSP_CHECK_SIZE(DRV_ispAIOps, 32);

typedef struct {
    Ptr priv;
    Int32 (*OpGetAeExposureTimes)(Ptr priv, Float32* expTimes, Uint32* num);
    Int32 (*OpGetAeGainDBs)(Ptr priv, Float32* gainDBs, Uint32* num);
    Int32 (*OpSensorModeSwitchRush)(Ptr priv, Uint32 mode, Uint32 flag);
    Int32 (*OpGetAeFakeLinearState)(Ptr priv, Uint32* state);
    Int32 (*OpGetAeHdrRatio)(Ptr priv, DRV_aewHdrRatio* hdrRatio);
    Int32 (*OpSetCurveMappingTable)(Ptr priv, Uint16* table, DRV_MappingTableInfo* info, Uint8 flag);
    Int32 (*OpGetAeWeightTable)(Ptr priv, Int8* table, Uint32 width, Uint32 height);
} DRV_ispGetAeResultOps;
ISPDSP_CHECK_SIZE(DRV_ispGetAeResultOps, 64);

/* The DSP callbacks; the driver copies both into its transport handle. Their
 * control record begins with the same nId as the host's DRV_aewIspRegOpsCtrl. */
typedef struct {
    OpDspIspCfgctl OpGetDspConfig;
    OpDspIspCfgctl OpSetDspConfig;
    Ptr reserved[2];
} DRV_aewbDspOps;
ISPDSP_CHECK_SIZE(DRV_aewbDspOps, 32);

typedef struct {
    Uint32 chnId;
    Uint32 aewPipeId; /* copied; names the per-pipe parameter file directory */
    Uint32 ispNum;    /* at most ISP_MAX_DEV_NUM */
    Uint32 ispIds[8]; /* copied whole into IspDev */
    DRV_ispSetDrvFlagFn OpSetDrvFlag; /* may be null */
    Ptr privData;                     /* handed back in every flag call */
    Uint32 lensType;
    Uint32 icrAewType;
    Uint32 businessType;
    DRV_aewIspRegOps ispRegOps;
    Uint8 viNum;
    Uint8 viIds[8];
    Uint8 sensorIds[8];
    Int32 chipType;
    DRV_H3aHndl hDrvH3aHndl;
    Ptr notifySensorPriv;
    OpIspNotifyFps notifySensorFpsFunc;
    DRV_aewVDOps ispVDOps;
    DRV_ispAIOps ispAIOps;
    CFG_IspParamTable* commTable; /* not read: the driver loads its own file */
    Ptr specParam;
    DRV_ispGetAeResultOps getAEResultOps;
    ALG_ObserverHndl observerHndl;
    Uint32 h3aIdMask;
    Uint8 isAEDeputy;
    Uint8 awbSnapEnable[8];
    DRV_hostCallbackFn OpSetIrsConfig;
    DRV_hostCallbackFn OpSetMcfParams;
    DRV_hostCallbackFn OpSetLongExp;
    DRV_hostCallbackFn OpExtraRawDataAnalysis;
    Uint8 refGainPipeId;
    DRV_aewbDspOps dspOps; /* the two callbacks become the instance's transport */
    DRV_aewSensorHndl hSensorHndl;
} DRV_ispXCreateParams;
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, aewPipeId, 4);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, ispNum, 8);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, ispIds, 12);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, OpSetDrvFlag, 48);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, privData, 56);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, lensType, 64);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, ispRegOps, 80);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, viNum, 112);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, sensorIds, 121);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, chipType, 132);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, hDrvH3aHndl, 136);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, notifySensorFpsFunc, 152);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, ispVDOps, 160);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, ispAIOps, 192);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, commTable, 224);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, getAEResultOps, 240);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, observerHndl, 304);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, h3aIdMask, 312);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, awbSnapEnable, 317);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, OpSetIrsConfig, 328);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, OpExtraRawDataAnalysis, 352);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, refGainPipeId, 360);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, dspOps, 368);
ISPDSP_CHECK_OFFSET(DRV_ispXCreateParams, hSensorHndl, 400);
ISPDSP_CHECK_SIZE(DRV_ispXCreateParams, 408);

/* ---- Operation table (one per pipe; the host owns it) ---- */

typedef struct DRV_ispOpsParams DRV_ispOpsParams;

/* Host records named by the slots that take one; the driver never looks inside. */
typedef struct DRV_OstridExpMode DRV_OstridExpMode;
typedef struct DRV_RedLightReceiveData DRV_RedLightReceiveData;
typedef struct DRV_ispBLCValue DRV_ispBLCValue;
typedef struct DRV_ispColorGray DRV_ispColorGray;
typedef struct DRV_ispDefogParams DRV_ispDefogParams;
typedef struct DRV_ispDgainParams DRV_ispDgainParams;
typedef struct DRV_ispFixParams DRV_ispFixParams;
typedef struct DRV_ispFusionParams DRV_ispFusionParams;
typedef struct DRV_ispGammaInsertInfo DRV_ispGammaInsertInfo;
typedef struct DRV_ispImageParams DRV_ispImageParams;
typedef struct DRV_ispKtnfParams DRV_ispKtnfParams;
typedef struct DRV_ispLscParam DRV_ispLscParam;
typedef struct DRV_ispMixGammaInfo DRV_ispMixGammaInfo;
typedef struct DRV_ispOpticalDefogParam DRV_ispOpticalDefogParam;
typedef struct DRV_ispOstridParams DRV_ispOstridParams;
typedef struct DRV_ispReduceConGammaParams DRV_ispReduceConGammaParams;
typedef struct DRV_ispRgb2YuvParams DRV_ispRgb2YuvParams;
typedef struct DRV_ispSSAConfigsParams DRV_ispSSAConfigsParams;
typedef struct DRV_ispSenRegInfo DRV_ispSenRegInfo;
typedef struct DRV_ispSyncAERunParam DRV_ispSyncAERunParam;
typedef struct DRV_ispSyncAEWBRunParam DRV_ispSyncAEWBRunParam;
typedef struct DRV_ispYhistParam DRV_ispYhistParam;

/* One typedef per argument shape; every slot takes the table first. */
typedef Int32 (*DRV_ispOpFn)(DRV_ispOpsParams* ispOps);
typedef Int32 (*DRV_ispOpPtrOutFn)(DRV_ispOpsParams* ispOps, Ptr* out);
typedef Int32 (*DRV_ispOpPtrFn)(DRV_ispOpsParams* ispOps, Ptr param);
typedef Int32 (*DRV_ispOpU32Fn)(DRV_ispOpsParams* ispOps, Uint32 value);
typedef Int32 (*DRV_ispOpU32OutFn)(DRV_ispOpsParams* ispOps, Uint32* value);
typedef Int32 (*DRV_ispOpRefreshFn)(DRV_ispOpsParams* ispOps, Int32* cfgChanged);
typedef Int32 (*DRV_ispOpPtrPairFn)(DRV_ispOpsParams* ispOps, Ptr first, Ptr second);
typedef Int32 (*DRV_ispOpCommTableFn)(DRV_ispOpsParams* ispOps, CFG_IspParamTable* commTable, Ptr specParam,
                                      Ptr* ispParam);
typedef Int32 (*DRV_ispOpCmdFn)(DRV_ispOpsParams* ispOps, DRV_ispCmdParam* cmd_param, Int32 langue);

#define DRV_ISP_OPS_SLOT_COUNT 198

/* The driver writes OpReloadCfg, OpStart, OpStop, OpDelete, OpSetModuleResults,
 * OpInterGainFlags, OpRefreshCfg, OpSetFusion, OpSetRefPipeParams, OpGetXHndl
 * and OpSetDbgDspParam, plus hIsp, ispParam and ispXHndl; every other slot
 * stays as the host set it. */
struct DRV_ispOpsParams {
    Handle hIsp;               /* the instance's IspDev array */
    DRV_ispRunParams runParam; /* written by the host before each frame */
    Ptr ispParam;              /* the instance's CFG_DspIspCfgTables */
    Ptr ispXHndl;              /* the instance */
    /* slots 0..9 */
    DRV_ispOpFn OpSetH3aAewb;
    DRV_ispOpFn OpSetBlc;
    DRV_ispOpFn OpSetDpc;
    DRV_ispOpFn OpSetGic;
    DRV_ispOpFn OpSetRaw2DNf1;
    DRV_ispOpFn OpSetRaw2DNf2;
    DRV_ispOpFn OpSetWb;
    DRV_ispOpFn OpSetCfa;
    DRV_ispOpFn OpSetGamma;
    DRV_ispOpFn OpSetToneCurve;
    /* slots 10..19 */
    DRV_ispOpFn OpSetRgb2Yuv;
    DRV_ispOpFn OpSetEe;
    DRV_ispOpFn OpSetOETF;
    DRV_ispOpFn OpSetTM;
    DRV_ispOpFn OpSetCSC;
    DRV_ispOpFn OpSetHist;
    DRV_ispOpFn OpSetCgs;
    DRV_ispOpFn OpSetVnf;
    DRV_ispOpFn OpSetLsc;
    DRV_ispOpFn OpSetLdc;
    /* slots 20..29 */
    DRV_ispOpFn OpGetH3aAewbStat;
    DRV_ispOpFn OpSetNsf;
    DRV_ispOpFn OpSetLe;
    DRV_ispOpFn OpSetY2DNf1;
    DRV_ispOpFn OpSetRawDGain;
    DRV_ispOpFn OpSetRgb2Rgb1;
    DRV_ispOpFn OpSetRgb2Rgb2;
    DRV_ispOpFn OpSetGbce;
    DRV_ispOpFn OpSetBrtCrt;
    DRV_ispOpFn OpSet3DLut;
    /* slots 30..39 */
    DRV_ispOpFn OpSetCa;
    DRV_ispOpFn OpSetWdr;
    DRV_ispOpFn OpSetYuvColr;
    DRV_ispOpFn OpSetYuvCds;
    DRV_ispOpFn OpSetOls;
    DRV_ispOpFn OpSetHdr;
    DRV_ispOpFn OpSetSpc;
    DRV_ispOpFn OpSetDpc2;
    DRV_ispOpFn OpSetVnrCfg;
    DRV_ispOpFn OpSetVnrTable;
    /* slots 40..49 */
    DRV_ispOpFn OpGetKtnfInfo;
    DRV_ispOpFn OpSetVnrParam;
    DRV_ispOpFn OpGetVnrParam;
    DRV_ispOpFn OpGetSpcStat;
    DRV_ispOpFn OpSetEe2;
    DRV_ispOpFn OpSetAntiAlising;
    DRV_ispOpFn OpSetLeakageFilter;
    DRV_ispOpFn OpSetY2DNf2;
    DRV_ispOpFn OpSetNfOrEe;
    DRV_ispOpFn OpSetFpn;
    /* slots 50..59 */
    DRV_ispOpFn OpReloadCfg;
    DRV_ispOpFn OpSetDci;
    DRV_ispOpFn OpSetDefog;
    DRV_ispOpFn OpSetCrossTalk;
    DRV_ispOpFn OpSetCac;
    DRV_ispOpFn OpSetFreeze;
    DRV_ispOpFn OpSetFcc;
    DRV_ispOpFn OpSetBlParam;
    DRV_ispOpFn OpSetColorTone;
    DRV_ispOpPtrOutFn OpGetMaxGainRatio;
    /* slots 60..69 */
    DRV_ispOpPtrOutFn OpGetToneCurveTable;
    DRV_ispOpPtrOutFn OpGetAutoConCfg;
    DRV_ispOpPtrOutFn OpGetMaxDB;
    DRV_ispOpPtrOutFn OpGetAutoColorCfg;
    DRV_ispOpPtrOutFn OpGetAutoNeCfg;
    DRV_ispOpPtrOutFn OpGetModuleRunFlags;
    DRV_ispOpPtrOutFn OpGetFishEyeFlag;
    DRV_ispOpPtrOutFn OpGetUseableWdrType;
    DRV_ispOpPtrOutFn OpGetAutoEvCfg;
    DRV_ispOpPtrOutFn OpGetAutoToneCurveCfg;
    /* slots 70..79 */
    DRV_ispOpPtrOutFn OpGetAutoGammaCfg;
    DRV_ispOpPtrOutFn OpGetTargetY;
    DRV_ispOpPtrOutFn OpGetHistDrCfg;
    DRV_ispOpPtrOutFn OpGetAutoLeCfg;
    DRV_ispOpPtrOutFn OpGetAlgoSelect;
    DRV_ispOpPtrOutFn OpGetCommFixParam;
    DRV_ispOpPtrOutFn OpGetColorStyleParam;
    DRV_ispOpPtrOutFn OpGetImageCaps;
    DRV_ispOpPtrOutFn OpGetRbdDrCfg;
    DRV_ispOpPtrOutFn OpGetLdcCommCfg;
    /* slots 80..89 */
    DRV_ispOpPtrOutFn OpGetLdcPlatCfg;
    DRV_ispOpPtrOutFn OpGetManualLeTable;
    DRV_ispOpPtrOutFn OpGetHdrExpoRatioRange;
    DRV_ispOpPtrOutFn OpGetIrCommonCfg;
    DRV_ispOpPtrOutFn OpGetYhistModuParam;
    DRV_ispOpPtrOutFn OpGetDwdrEvRatioCfg;
    DRV_ispOpPtrOutFn OpGetAutoShadeCfg;
    DRV_ispOpPtrOutFn OpGetSdAutoConCfg;
    DRV_ispOpPtrOutFn OpGetAewRestartFlag;
    DRV_ispOpPtrOutFn OpGetOpticalDefogCfg;
    /* slots 90..99 */
    DRV_ispOpPtrOutFn OpGetApp2dNrFlag;
    DRV_ispOpPtrOutFn OpGetIspAwbCfg;
    DRV_ispOpPtrOutFn OpGetAutoConDefaultOnFlag;
    DRV_ispOpPtrOutFn OpGetIspAeCfg;
    DRV_ispOpPtrOutFn OpGetIspAeAutoShutterRange;
    DRV_ispOpPtrOutFn OpGetCarRecoderFlag;
    DRV_ispOpPtrOutFn OpGetFisheyePlatCfg;
    DRV_ispOpPtrOutFn OpGetQrcodeFlag;
    DRV_ispOpPtrOutFn OpGetPhotoSensitiveParams;
    DRV_ispOpPtrOutFn OpGetIrisCapsParams;
    /* slots 100..109 */
    DRV_ispOpFn OpStart;
    DRV_ispOpFn OpStop;
    DRV_ispOpFn OpDelete;
    DRV_ispOpCommTableFn OpCommTable2Table;
    DRV_ispOpPtrOutFn OpGetAutoConParams;
    DRV_ispOpPtrFn OpSetAutoConParams;
    Int32 (*OpSetModuleResults)(DRV_ispOpsParams* ispOps, DRV_ispModuleResults* moduleResults);
    DRV_ispOpFn OpRegisterAEOps;
    DRV_ispOpFn OpRegisterAWBOps;
    Int32 (*OpSetImgParams)(DRV_ispOpsParams* ispOps, DRV_ispImageParams* param);
    /* slots 110..119 */
    DRV_ispOpU32Fn OpInterToneCurveData;
    DRV_ispOpU32Fn OpSetGamLevel;
    Int32 (*OpSetAppDefogParam)(DRV_ispOpsParams* ispOps, DRV_ispDefogParams* param);
    DRV_ispOpPtrFn OpSetRgb2YuvParams;
    DRV_ispOpPtrFn OpSetCcmParams;
    DRV_ispOpPtrFn OpSetEeParams;
    Int32 (*OpSetAppKtnfParams)(DRV_ispOpsParams* ispOps, DRV_ispKtnfParams* param);
    Int32 (*OpSetFixParams)(DRV_ispOpsParams* ispOps, DRV_ispFixParams* param);
    Int32 (*OpSetColorGray)(DRV_ispOpsParams* ispOps, DRV_ispColorGray* param);
    DRV_ispOpPtrFn OpSetLeParams;
    /* slots 120..129 */
    Int32 (*OpRegisterSensorOps)(DRV_ispOpsParams* ispOps, DRV_ispSenRegInfo* param);
    DRV_ispOpFn OpInterGainFlags;
    DRV_ispOpFn OpInterHdrRatioFlags;
    Int32 (*OpSetDgain)(DRV_ispOpsParams* ispOps, DRV_ispDgainParams* param);
    DRV_ispOpFn OpBlcFlags;
    DRV_ispOpFn OpWbFlags;
    Int32 (*OpYhistModulation)(DRV_ispOpsParams* ispOps, DRV_ispYhistParam* param);
    Int32 (*OpSetLscParams)(DRV_ispOpsParams* ispOps, DRV_ispLscParam* param);
    DRV_ispOpPtrFn OpSetColorLevels;
    DRV_ispOpPtrFn OpSetAutoConCscParams;
    /* slots 130..139 */
    DRV_ispOpPtrFn OpSetDynamicModeParams;
    Int32 (*OpSetOpticalDefogParams)(DRV_ispOpsParams* ispOps, DRV_ispOpticalDefogParam* param);
    DRV_ispOpU32Fn OpCpyCalibGammaTable;
    DRV_ispOpFn OpGammaFilterTableData;
    Int32 (*OpInsertGamma)(DRV_ispOpsParams* ispOps, DRV_ispGammaInsertInfo* param);
    Int32 (*OpMixGammaTableData)(DRV_ispOpsParams* ispOps, DRV_ispMixGammaInfo* param);
    DRV_ispOpU32OutFn OpGammaGetZoomGammaUpFlag;
    DRV_ispOpRefreshFn OpRefreshCfg;
    DRV_ispOpU32Fn OpSetReduceConFlag;
    Int32 (*OpSetReduceConGammaParams)(DRV_ispOpsParams* ispOps, DRV_ispReduceConGammaParams* param);
    /* slots 140..149 */
    DRV_ispOpU32Fn OpSetAppColorType;
    Int32 (*OpSyncAeRun)(DRV_ispOpsParams* ispOps, DRV_ispSyncAERunParam* param);
    DRV_ispOpU32OutFn OpGetIspSSAState;
    DRV_ispOpU32Fn OpSetIspSSAEnable;
    DRV_ispOpU32Fn OpSetFreezeParams;
    Int32 (*OpResumeSSAConfigs)(DRV_ispOpsParams* ispOps, DRV_ispSSAConfigsParams* param);
    Int32 (*OpSetSSAConfigs)(DRV_ispOpsParams* ispOps, DRV_ispSSAConfigsParams* param);
    DRV_ispOpCmdFn OpSetDbgParam;
    DRV_ispOpPtrOutFn OpGetWlCtrlParamsCfg;
    DRV_ispOpPtrOutFn OpGetMultiEyeSkyFlag;
    /* slots 150..159 */
    DRV_ispOpFn OpSetPTZLinkParam;
    DRV_ispOpPtrOutFn OpGetH3aAttrCfg;
    Int32 (*OpGetBLCValue)(DRV_ispOpsParams* ispOps, DRV_ispBLCValue* param);
    DRV_ispOpU32OutFn OpGetStitchStatus;
    DRV_ispOpU32OutFn OpGetIspNoInteruptTime;
    DRV_ispOpFn OpSetFusion;
    DRV_ispOpFn OpSetHR;
    DRV_ispOpPtrFn OpSetHRParams;
    DRV_ispOpPtrOutFn OpGetAeSpeed;
    DRV_ispOpFn OpSetAwe;
    /* slots 160..169 */
    DRV_ispOpFn OpSetLae;
    DRV_ispOpFn OpSetRlr;
    Int32 (*OpSetRlrParams)(DRV_ispOpsParams* ispOps, DRV_RedLightReceiveData* param);
    DRV_ispOpFn OpSetRlrCfg;
    DRV_ispOpPtrFn OpRedlightParam2Table;
    Int32 (*OpSetFusionParams)(DRV_ispOpsParams* ispOps, DRV_ispFusionParams* param);
    Int32 (*OpSetRefPipeParams)(DRV_ispOpsParams* ispOps, DRV_RefPipeParams* refPipeParams);
    DRV_ispOpU32Fn OpSetLdcEnable;
    Int32 (*OpSyncAewbRun)(DRV_ispOpsParams* ispOps, DRV_ispSyncAEWBRunParam* param);
    DRV_ispOpU32OutFn OpGetCurrCfgIndex;
    /* slots 170..179 */
    Int32 (*OpGetRgb2YuvParams)(DRV_ispOpsParams* ispOps, DRV_ispRgb2YuvParams* param);
    Int32 (*OpSetOstridParams)(DRV_ispOpsParams* ispOps, DRV_ispOstridParams* param);
    DRV_ispOpFn OpSetIrsCfg;
    DRV_ispOpFn OpUnRegisterAEOps;
    DRV_ispOpFn OpUnRegisterAWBOps;
    Int32 (*OpUnRegisterSensorOps)(DRV_ispOpsParams* ispOps, DRV_ispSenRegInfo* param);
    DRV_ispOpFn OpSetLsm;
    DRV_ispOpFn OpDymodeFlags;
    DRV_ispOpPtrOutFn OpGetCpcCfg;
    DRV_ispOpPtrFn OpSetPipeCommMgrHndl;
    /* slots 180..189 */
    DRV_ispOpPtrOutFn OpGetXHndl;
    DRV_ispOpCmdFn OpSetDbgDspParam;
    DRV_ispOpFn OpSetSbm3d;
    DRV_ispOpFn OpSetYuv2yuv;
    DRV_ispOpFn OpSetLampSync;
    Int32 (*OpGetOstridExpMode)(DRV_ispOpsParams* ispOps, DRV_OstridExpMode* param);
    DRV_ispOpFn OpSetFusionPlate;
    DRV_ispOpFn OpSetFg2c;
    DRV_ispOpPtrFn OpSetSnapStatControlParams;
    DRV_ispOpPtrOutFn OpGetWdrAutoEvdefaultCfg;
    /* slots 190..197 */
    DRV_ispOpPtrFn OpSetRgbGamma;
    DRV_ispOpPtrOutFn OpGetHwrCfg;
    DRV_ispOpPtrPairFn OpHwrH3aIsp;
    DRV_ispOpFn OpSetYlwdr;
    DRV_ispOpFn OpSetLle;
    DRV_ispOpFn OpSetDlae;
    DRV_ispOpFn OpSetDlcfa;
    DRV_ispOpFn OpSetSade;
};
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, runParam, 8);
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, ispParam, 304);
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, ispXHndl, 312);
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpSetH3aAewb, 320);
ISPDSP_STATIC_ASSERT(offsetof(DRV_ispOpsParams, OpSetSade) - offsetof(DRV_ispOpsParams, OpSetH3aAewb) ==
                         (DRV_ISP_OPS_SLOT_COUNT - 1) * sizeof(void*),
                     "the slot area holds 198 pointers");
ISPDSP_CHECK_SIZE(DRV_ispOpsParams, 320 + DRV_ISP_OPS_SLOT_COUNT * 8);
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpReloadCfg, 720); /* slot 50 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpStart, 1120); /* slot 100 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpStop, 1128); /* slot 101 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpDelete, 1136); /* slot 102 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpSetModuleResults, 1168); /* slot 106 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpInterGainFlags, 1288); /* slot 121 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpRefreshCfg, 1416); /* slot 137 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpSetFusion, 1560); /* slot 155 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpSetRefPipeParams, 1648); /* slot 166 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpGetXHndl, 1760); /* slot 180 */
ISPDSP_CHECK_OFFSET(DRV_ispOpsParams, OpSetDbgDspParam, 1768); /* slot 181 */

/* ---- The instance (allocated and owned by the driver; the host holds it as ispXHndl) ---- */

typedef struct {
    Uint32 reserved;
} DRV_dspStaticParam;
ISPDSP_CHECK_SIZE(DRV_dspStaticParam, 4);

typedef struct {
    Uint32 aewPipeId;
    Uint32 ispNum;
    Uint32 IspDev[8];                     /* hIsp points here */
    CFG_DspIspCfgTables dspCfgTables;     /* ispParam points here */
    DRV_dspStaticParam dspStaticParam;
    DRV_ispModuleResults moduleResults;   /* latest OpSetModuleResults */
    Uint32 quickStart;                    /* non-zero: OpInterGainFlags does nothing */
    DRV_ispSetDrvFlagFn OpSetDrvFlag;
    Ptr privData;
    Int32 registerFlag;                   /* 0 no registration file, 1..3 its place */
    DRV_dspIspHandle dspHandle;           /* transport of the fusion, IR and CAL messages */
    DSP_FusionV2722 pstFusionParam;       /* this pipe's own fusion record */
    DSP_FusionV2722 pstDoubleFusionParam; /* the colour/mono record sent each frame */
    DSP_IrParam pstIrParam;
    DRV_RefPipeParams refPipeParams;
    Uint8* w_nir1; /* DRV_ISP_NIR_BUFFER_SIZE bytes, curve of pstFusionParam */
    Uint8* w_nir2; /* DRV_ISP_NIR_BUFFER_SIZE bytes, curve of pstDoubleFusionParam */
} DRV_aewIspHandleDSP;
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, IspDev, 8);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, dspCfgTables, 40);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, dspStaticParam, 1024);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, moduleResults, 1028);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, quickStart, 1284);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, OpSetDrvFlag, 1288);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, privData, 1296);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, registerFlag, 1304);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, dspHandle, 1312);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, pstFusionParam, 1352);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, pstDoubleFusionParam, 1424);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, pstIrParam, 1496);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, refPipeParams, 2016);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, w_nir1, 2112);
ISPDSP_CHECK_OFFSET(DRV_aewIspHandleDSP, w_nir2, 2120);
ISPDSP_CHECK_SIZE(DRV_aewIspHandleDSP, 2128);

/* ---- Exported functions ---- */

/* Creates one instance for a pipe: loads /var/tmp/dsp_isp_para.bin (else
 * /var/tmp/<aewPipeId>/dsp_isp_para.bin) and the registration file, writes
 * the eleven slots and ispXHndl. 0 on success, -1 on failure; on failure
 * nothing stays allocated and hIsp, ispParam and ispXHndl are null. */
ISPDSP_API Int32 DRV_dspIspCreateX(const DRV_ispXCreateParams* pCreateParams, DRV_ispOpsParams* ispOps);

/* Also the OpGetXHndl slot: stores ispOps->ispXHndl into *xHndl. 0, or -1 on a null argument. */
ISPDSP_API Int32 DRV_ispGetXHndlX(DRV_ispOpsParams* ispOps, Ptr* xHndl);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_DRIVER_H */

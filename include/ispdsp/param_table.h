/* The scene tables of the parameter file and the choice of the current one. */
#ifndef ISPDSP_PARAM_TABLE_H
#define ISPDSP_PARAM_TABLE_H

#include "ispdsp/fusion.h"
#include "ispdsp/param_file.h"
#include "ispdsp/stages.h"
#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

typedef enum {
    PARAM_MULTICOLOR = 0,
    PARAM_BLACKWHITE = 1,
    PARAM_HDR_MULTICOLOR = 2,
    PARAM_HDR_BLACKWHITE = 3,
    PARAM_WDR_MULTICOLOR = 4,
    PARAM_WDR_BLACKWHITE = 5,
    PARAM_MULTICOLOR_NIGHT = 6,
    PARAM_BLACKWHITE_NIGHT = 7,
    PARAM_HDR_MULTICOLOR_NIGHT = 8,
    PARAM_HDR_BLACKWHITE_NIGHT = 9,
    PARAM_WDR_MULTICOLOR_NIGHT = 10,
    PARAM_WDR_BLACKWHITE_NIGHT = 11,
    PARAM_TRAFFIC = 12,
    PARAM_TRAFFIC_BLACKWHITE = 13,
    PARAM_HDR_TRAFFIC = 14,
    PARAM_HDR_TRAFFIC_BLACKWHITE = 15,
    PARAM_WDR_TRAFFIC = 16,
    PARAM_WDR_TRAFFIC_BLACKWHITE = 17,
    PARAM_TRAFFIC_NIGHT = 18,
    PARAM_HDR_TRAFFIC_NIGHT = 19,
    PARAM_WDR_TRAFFIC_NIGHT = 20,
    PARAM_FACE = 21,
    PARAM_FACE_BLACKWHITE = 22,
    PARAM_HDR_FACE = 23,
    PARAM_HDR_FACE_BLACKWHITE = 24,
    PARAM_WDR_FACE = 25,
    PARAM_WDR_FACE_BLACKWHITE = 26,
    PARAM_FACE_NIGHT = 27,
    PARAM_HDR_FACE_NIGHT = 28,
    PARAM_WDR_FACE_NIGHT = 29,
    PARAM_STROBE = 30,
    PARAM_STROBE_BLACKWHITE = 31,
    PARAM_HDR_STROBE = 32,
    PARAM_HDR_STROBE_BLACKWHITE = 33,
    PARAM_WDR_STROBE = 34,
    PARAM_WDR_STROBE_BLACKWHITE = 35,
    PARAM_STROBE_NIGHT = 36,
    PARAM_HDR_STROBE_NIGHT = 37,
    PARAM_WDR_STROBE_NIGHT = 38,
    PARAM_POLICE = 39,
    PARAM_POLICE_BLACKWHITE = 40,
    PARAM_HDR_POLICE = 41,
    PARAM_HDR_POLICE_BLACKWHITE = 42,
    PARAM_WDR_POLICE = 43,
    PARAM_WDR_POLICE_BLACKWHITE = 44,
    PARAM_POLICE_NIGHT = 45,
    PARAM_HDR_POLICE_NIGHT = 46,
    PARAM_WDR_POLICE_NIGHT = 47,
    PARAM_COMITY = 48,
    PARAM_COMITY_BLACKWHITE = 49,
    PARAM_HDR_COMITY = 50,
    PARAM_HDR_COMITY_BLACKWHITE = 51,
    PARAM_WDR_COMITY = 52,
    PARAM_WDR_COMITY_BLACKWHITE = 53,
    PARAM_COMITY_NIGHT = 54,
    PARAM_HDR_COMITY_NIGHT = 55,
    PARAM_WDR_COMITY_NIGHT = 56,
    PARAM_PEDESTIAN = 57,
    PARAM_PEDESTIAN_BLACKWHITE = 58,
    PARAM_HDR_PEDESTIAN = 59,
    PARAM_HDR_PEDESTIAN_BLACKWHITE = 60,
    PARAM_WDR_PEDESTIAN = 61,
    PARAM_WDR_PEDESTIAN_BLACKWHITE = 62,
    PARAM_PEDESTIAN_NIGHT = 63,
    PARAM_HDR_PEDESTIAN_NIGHT = 64,
    PARAM_WDR_PEDESTIAN_NIGHT = 65,
    PARAM_IVS = 66,
    PARAM_IVS_BLACKWHITE = 67,
    PARAM_HDR_IVS = 68,
    PARAM_HDR_IVS_BLACKWHITE = 69,
    PARAM_WDR_IVS = 70,
    PARAM_WDR_IVS_BLACKWHITE = 71,
    PARAM_IVS_NIGHT = 72,
    PARAM_HDR_IVS_NIGHT = 73,
    PARAM_WDR_IVS_NIGHT = 74,
    PARAM_ECOTRAFFIC = 75,
    PARAM_ECOTRAFFIC_BLACKWHITE = 76,
    PARAM_HDR_ECOTRAFFIC = 77,
    PARAM_HDR_ECOTRAFFIC_BLACKWHITE = 78,
    PARAM_WDR_ECOTRAFFIC = 79,
    PARAM_WDR_ECOTRAFFIC_BLACKWHITE = 80,
    PARAM_ECOTRAFFIC_NIGHT = 81,
    PARAM_HDR_ECOTRAFFIC_NIGHT = 82,
    PARAM_WDR_ECOTRAFFIC_NIGHT = 83,
    PARAM_ECOPOLICE = 84,
    PARAM_ECOPOLICE_BLACKWHITE = 85,
    PARAM_HDR_ECOPOLICE = 86,
    PARAM_HDR_ECOPOLICE_BLACKWHITE = 87,
    PARAM_WDR_ECOPOLICE = 88,
    PARAM_WDR_ECOPOLICE_BLACKWHITE = 89,
    PARAM_ECOPOLICE_NIGHT = 90,
    PARAM_HDR_ECOPOLICE_NIGHT = 91,
    PARAM_WDR_ECOPOLICE_NIGHT = 92,
    PARAM_ENTRANCE_FLASH = 93,
    PARAM_ENTRANCE_FLASH_BLACKWHITE = 94,
    PARAM_HDR_ENTRANCE_FLASH = 95,
    PARAM_HDR_ENTRANCE_FLASH_BLACKWHITE = 96,
    PARAM_WDR_ENTRANCE_FLASH = 97,
    PARAM_WDR_ENTRANCE_FLASH_BLACKWHITE = 98,
    PARAM_ENTRANCE_FLASH_NIGHT = 99,
    PARAM_HDR_ENTRANCE_FLASH_NIGHT = 100,
    PARAM_WDR_ENTRANCE_FLASH_NIGHT = 101,
    PARAM_ENTRANCE_STROBE = 102,
    PARAM_ENTRANCE_STROBE_BLACKWHITE = 103,
    PARAM_HDR_ENTRANCE_STROBE = 104,
    PARAM_HDR_ENTRANCE_STROBE_BLACKWHITE = 105,
    PARAM_WDR_ENTRANCE_STROBE = 106,
    PARAM_WDR_ENTRANCE_STROBE_BLACKWHITE = 107,
    PARAM_ENTRANCE_STROBE_NIGHT = 108,
    PARAM_HDR_ENTRANCE_STROBE_NIGHT = 109,
    PARAM_WDR_ENTRANCE_STROBE_NIGHT = 110,
    PARAM_EVENT = 111,
    PARAM_EVENT_BLACKWHITE = 112,
    PARAM_HDR_EVENT = 113,
    PARAM_HDR_EVENT_BLACKWHITE = 114,
    PARAM_WDR_EVENT = 115,
    PARAM_WDR_EVENT_BLACKWHITE = 116,
    PARAM_EVENT_NIGHT = 117,
    PARAM_HDR_EVENT_NIGHT = 118,
    PARAM_WDR_EVENT_NIGHT = 119,
    PARAM_TABLE_TYPE_NUM = 120
} PARAM_TABLE_TYPE;

/* One parameter table: one stored record per stage (file format, used in place). */
typedef struct {
    Uint32 ispFusionFlag;
    CFG_DSP_FusionV2722 ispFusionParam[FUSION_GAIN_STEPS];
    CFG_DSP_LsmV112 ispLsmParam;
    CFG_DSP_LaeV209 ispLaeParam;
    CFG_DSP_Sbm3dV113 ispSbm3dParam;
    CFG_DSP_Yuv2yuvV100 ispYuv2yuvParam;
    CFG_DSP_FusionPlateV1001 ispFusionPlateParam;
    CFG_DSP_Fg2cV102 ispFg2cParam;
    CFG_DSP_LleV203 ispLleParam;
    CFG_DSP_YlwdrV102 ispYlwdrParam;
    CFG_DSP_Y2dV5118 ispY2dParam;
    CFG_DSP_DlaeV101 ispDlaeParam;
    CFG_DSP_DlcfaV101 ispDlcfaParam;
    CFG_DSP_SadeV113 ispSadeParam;
} CFG_DspIspCfgParam;
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispFusionParam, 4);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispLsmParam, 8708);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispLaeParam, 8716);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispSbm3dParam, 8736);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispYuv2yuvParam, 8740);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispFusionPlateParam, 8744);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispFg2cParam, 8748);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispLleParam, 8752);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispYlwdrParam, 8760);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispY2dParam, 8784);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispDlaeParam, 8798);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispDlcfaParam, 8806);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgParam, ispSadeParam, 8812);
ISPDSP_CHECK_SIZE(CFG_DspIspCfgParam, 8820);

/* One entry of the specific block: the table type, then the table. */
#define CFG_TABLE_ENTRY_SIZE 8824u

/* The table set of one driver instance; the pointers point into the file buffer. */
typedef struct {
    CFG_DspIspCfgParam* paramTables[PARAM_TABLE_TYPE_NUM];
    CFG_DspIspCfgParam* curTable;
    Uint32 curTableIdx;
    Uint32 lastTableIdx;
    Uint32 curTableType;
} CFG_DspIspCfgTables;
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgTables, curTable, 960);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgTables, curTableIdx, 968);
ISPDSP_CHECK_OFFSET(CFG_DspIspCfgTables, curTableType, 976);

/* The camera state that drives the choice. */
typedef struct {
    Int32 realDncMode; /* 0 means black-and-white */
    Int32 hdrMode;     /* 0 linear, 4 WDR, any other nonzero value HDR */
    Uint32 sceneMode;  /* 2 means night */
    Int32 imageScene;
    Int32 reserved[4];
} CFG_ispParamCondition;
ISPDSP_CHECK_SIZE(CFG_ispParamCondition, 32);

/* One row of the state map. */
typedef struct {
    Uint32 isBlackWhite;
    Uint32 isHDR;
    Uint32 isWDR;
    Uint32 sceneMode;
    Uint32 imageScene;
    PARAM_TABLE_TYPE tableType;
} Table_TYPE_MAP;
ISPDSP_CHECK_SIZE(Table_TYPE_MAP, 24);

/* One fallback rule: srcArray[k] missing is replaced by dstArray[k]; dstArray is also the preference list. */
typedef struct {
    Int32 srcArraySize;
    Int32 srcArray[PARAM_TABLE_TYPE_NUM];
    Int32 dstArraySize;
    Int32 dstArray[PARAM_TABLE_TYPE_NUM];
} DRV_SuitableParam;
ISPDSP_CHECK_SIZE(DRV_SuitableParam, 968);

/* Registers the block's tables in place in the 120-entry array. */
ISPDSP_API Int32 DRV_ispCommonTable2DspTable(CFG_IspParamTable* commTable, Ptr specParam,
                                             CFG_DspIspCfgParam** dspIspParam);
/* Chooses the current table for a camera state. */
ISPDSP_API Int32 DRV_ispChooseCurParamDSP(CFG_ispParamCondition* cfgConditon, CFG_DspIspCfgTables* dspCfgTables);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_PARAM_TABLE_H */

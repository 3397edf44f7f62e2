/* RLR tables: day, dusk and night byte tables from the custom file, with a
 * flash copy kept in step with it. */
#ifndef ISPDSP_RLR_H
#define ISPDSP_RLR_H

#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

#define RLR_TABLE_ENTRIES 256

typedef struct {
    Uint8 pDayTable[RLR_TABLE_ENTRIES];
    Uint8 pDuskTable[RLR_TABLE_ENTRIES];
    Uint8 pNightTable[RLR_TABLE_ENTRIES];
} CFG_RlrTableParam;
ISPDSP_CHECK_SIZE(CFG_RlrTableParam, 768);

/* Identity of one RLR file, read from its end. */
typedef struct {
    Uint32 tableSize;
    Uint8 versionNum[3];
    Uint8 data[6]; /* year - 2000, month, day, hour, minute, second */
    Uint8 reserved[3];
} CFG_RlrTableInfo;
ISPDSP_CHECK_SIZE(CFG_RlrTableInfo, 16);
ISPDSP_CHECK_OFFSET(CFG_RlrTableInfo, versionNum, 4);
ISPDSP_CHECK_OFFSET(CFG_RlrTableInfo, data, 7);

ISPDSP_API Int32 DRV_loadRlrCfg(Ptr* cfg_rlrtableparam);
ISPDSP_API Int32 CFG_aewGetRlrCfgInfo(const char* cfg_file_path, CFG_RlrTableInfo* rlrTableInfo);
ISPDSP_API Int32 CFG_cmpRlrCfgInfo(CFG_RlrTableInfo* rlrTable3AInfo, CFG_RlrTableInfo* rlrTablePackInfo);
ISPDSP_API Int32 CFG_aewReadRlrCfg(const char* cfg_file_path, CFG_RlrTableParam* cfg_rlrtableparam);
ISPDSP_API Int32 CFG_aewWriteRlrCfg(const char* cfg_file_path, CFG_RlrTableParam* cfg_rlrtableparam);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_RLR_H */

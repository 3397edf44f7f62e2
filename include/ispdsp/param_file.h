/* The ISP parameter file: a versioned, checksummed header followed by the
 * specific parameter block that holds the scene tables. */
#ifndef ISPDSP_PARAM_FILE_H
#define ISPDSP_PARAM_FILE_H

#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

/* Format version this library reads (bit pattern 0x47A21280). */
#define ISPDSP_PARAM_FILE_VERSION 82981.0f
/* Header fields (104 bytes) + size word + checksum word. */
#define ISPDSP_PARAM_FILE_OVERHEAD 112u
/* File offset of the specific block. */
#define ISPDSP_PARAM_FILE_BLOCK_OFFSET 108u

typedef struct {
    Uint32 size;     /* length in bytes of the specific block */
    Uint32 reserved; /* not stored in the file */
} CFG_IspSpecParam;
ISPDSP_CHECK_SIZE(CFG_IspSpecParam, 8);

/* The file header as held in memory. */
typedef struct {
    Float32 ver;
    Char dateTime[32];
    Float32 subVer;
    Char archName[32];
    Char pdtName[32];
    CFG_IspSpecParam cfg_specParam;
    Int32 chksum;
} CFG_IspParamTable;
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, dateTime, 4);
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, subVer, 36);
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, archName, 40);
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, pdtName, 72);
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, cfg_specParam, 104);
ISPDSP_CHECK_OFFSET(CFG_IspParamTable, chksum, 112);
ISPDSP_CHECK_SIZE(CFG_IspParamTable, 116);

/* Reads and checks one parameter file; the block lands in *cfgBuf (reused when large enough). */
ISPDSP_API Int32 DRV_ispCfgLoad(const Char* cfgPath, const Float32 cfgVer, CFG_IspParamTable* pa_cfg, Ptr* cfgBuf);
ISPDSP_API Int32 DRV_ispCfgReadCheckParam(const Char* cfg_file_path, const Float32 cfg_ver,
                                          CFG_IspParamTable* cfg_table, Ptr* cfgBuf);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_PARAM_FILE_H */

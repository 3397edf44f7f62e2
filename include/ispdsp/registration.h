/* Visible/NIR registration data read from "calibration.txt": the calibrated
 * zoom positions and, per position, register address/value pairs. */
#ifndef ISPDSP_REGISTRATION_H
#define ISPDSP_REGISTRATION_H

#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

typedef struct {
    Uint32 addr;
    Uint32 data;
} RegisterParam;
ISPDSP_CHECK_SIZE(RegisterParam, 8);

typedef struct {
    Int32 zoomNum;
    Int32 regNum;
    Int32* zoomX;                 /* zoomNum positions, in file order */
    RegisterParam* registerParam; /* zoomNum x regNum pairs, block after block */
} DRV_RegistrateParam;
ISPDSP_CHECK_SIZE(DRV_RegistrateParam, 24);

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_REGISTRATION_H */

/* Umbrella header of the ispdsp driver library. */
#ifndef ISPDSP_ISPDSP_H
#define ISPDSP_ISPDSP_H

#include "ispdsp/types.h"
#include "ispdsp/osa.h"
#include "ispdsp/dsp_blocks.h"
#include "ispdsp/dsp_config.h"
#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"
#include "ispdsp/param_file.h"
#include "ispdsp/param_table.h"
#include "ispdsp/registration.h"
#include "ispdsp/rlr.h"
#include "ispdsp/driver.h"

#endif /* ISPDSP_ISPDSP_H */

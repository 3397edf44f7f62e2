// Where the driver finds its files on the device.
#pragma once

#include "ispdsp/types.h"

namespace ispdsp::tuning {

// The tuning file: kParamFileDir + "dsp_" + kParamFileName, else kParamFileDir + "<pipe>/dsp_" + kParamFileName.
inline constexpr const Char* kParamFileDir = "/var/tmp/";
inline constexpr const Char* kParamFileName = "isp_para.bin";
// The registration file, looked for in these folders in order.
inline constexpr const Char* kRegistrationFileName = "calibration.txt";
inline constexpr const Char* kRegistrationDirs[] = {"/var/tmp/", "/var/", "/mnt/mtd/"};
// The NIR weight curve of the console's curve command.
inline constexpr Char kNirCurvePath[] = "/tmp/nir.txt";
// The RLR tables and their flash copy (its folder is never created by the driver).
inline constexpr const Char* kRlrPath = "/var/custom/rlr_para.bin";
inline constexpr const Char* kRlrFlashPath = "/mnt/mtd/3A/rlr_para.bin";
inline constexpr const Char* kRlrFlashDir = "/mnt/mtd/3A";

}  // namespace ispdsp::tuning

// Log lines of the driver, through the host's OSA_logWrite. Every line starts
// with "[DSP_DRV] "; errors and warnings name the reporting function and line.
#pragma once

#include "ispdsp/osa.h"

namespace ispdsp {

// (level, category) pairs of the host's logging service.
inline constexpr Int32 kLogErrorLevel = 0, kLogErrorCategory = 1;
inline constexpr Int32 kLogWarnLevel = 1, kLogWarnCategory = 8;
inline constexpr Int32 kLogInfoLevel = 2, kLogInfoCategory = 2;

}  // namespace ispdsp

#define ISP_LOG_ERROR(fmt, ...)                                                                          \
    OSA_logWrite(ispdsp::kLogErrorLevel, ispdsp::kLogErrorCategory, "[DSP_DRV] ERROR  (%s|%d): " fmt, \
                 __func__, __LINE__ __VA_OPT__(, ) __VA_ARGS__)
#define ISP_LOG_WARN(fmt, ...)                                                                        \
    OSA_logWrite(ispdsp::kLogWarnLevel, ispdsp::kLogWarnCategory, "[DSP_DRV] WARN  (%s|%d): " fmt, \
                 __func__, __LINE__ __VA_OPT__(, ) __VA_ARGS__)
#define ISP_LOG_INFO(fmt, ...) \
    OSA_logWrite(ispdsp::kLogInfoLevel, ispdsp::kLogInfoCategory, "[DSP_DRV] " fmt __VA_OPT__(, ) __VA_ARGS__)

// The null-pointer error of every function: names the argument as written in the caller.
#define ISP_LOG_NULL(name) ISP_LOG_ERROR("Input NULL POINT %s!\n", name)

// Checks one pointer argument; logs and returns -1 from the calling function when it is null.
#define ISP_CHECK_PTR(ptr, name)  \
    do {                          \
        if ((ptr) == nullptr) {   \
            ISP_LOG_NULL(name);   \
            return -1;            \
        }                         \
    } while (0)

// What a file seems to be, from its bytes alone, so that a tool refuses a file of another kind
// with one line ("seems to be JSON text") instead of reading it as the kind it expects.
//
//   ParamFile        ISP parameter file (dsp_isp_para.bin): starts with the version word of
//                    82981.0, or its size word matches the file length; damaged ones included,
//                    so that `check` can say what is wrong with them
//   RlrTable         RLR table file (rlr_para.bin): binary, 768 bytes, or longer with a valid
//                    date stamp 226 bytes before the end
//   JsonText         JSON (tuning.json, scenarios): text whose first token is { or [
//   CalibrationText  registration file (calibration.txt): text with ZOOM:/REGNUM: lines
//   NirCurveText     NIR weight curve (nir.txt): text of numbers and commas only
//   OtherText, OtherBinary, Empty
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace ispdsp::tools {

enum class FileKind { Empty, ParamFile, RlrTable, JsonText, CalibrationText, NirCurveText, OtherText, OtherBinary };

FileKind recogniseFileKind(std::span<const uint8_t> bytes);

// "an ISP parameter file", "an RLR table file", "JSON text", "calibration text",
// "NIR curve text", "text", "binary data of no known kind", "empty".
const char* describeFileKind(FileKind kind);

// Why a file of the wrong kind is refused, for "PATH: " + this:
// "seems to be JSON text, not an ISP parameter file", "is empty, not an RLR table file".
std::string wrongKindReason(FileKind found, FileKind expected);

}  // namespace ispdsp::tools

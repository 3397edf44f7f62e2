// The stage table of the DSP transport: for every message the library sends,
// its u32Type, which bytes of the caller's record land where in the message,
// how the control record's nId is chosen and which result the Set returns.
// The common send routine (dsp_transport.h) is driven by this table alone.
#pragma once

#include <array>
#include <cstddef>

#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"

namespace ispdsp {

// Every stage that has a Set function, in the order of the table below.
enum DspStage : Uint8 {
    kDspStageLsm,
    kDspStageFusion,
    kDspStageIr,
    kDspStageCal,
    kDspStageFsSwitch,
    kDspStageLae,
    kDspStageSbm3d,
    kDspStageCsc,
    kDspStageFusionPlate,
    kDspStageFg2c,
    kDspStageLle,
    kDspStageYlwdr,
    kDspStageY2d,
    kDspStageDlae,
    kDspStageDlcfa,
    kDspStageSade,
    kDspStageCount
};

// How one field travels from the caller's record into the message.
enum class DspMove : Uint8 {
    Copy,        // `bytes` bytes copied as they are
    Low16,       // an Int32 of the record, sent as its low 16 bits
    AddressOf,   // the address of the record's field, sent as a 64-bit pointer
    OutputMode,  // the fusion switch (Uint32), sent as its DSP output mode
};

struct DspFieldMove {
    Uint16 messageOffset;  // where the field starts in DSP_AEW_CFG_S
    Uint16 recordOffset;   // where the source starts in the caller's record
    Uint16 bytes;          // bytes written into the message
    DspMove how;
};

struct DspStageDesc {
    Uint32 type;                 // DSP_AEW_CFG_S.u32Type
    bool nIdFromHandle;          // ctrl.nId = handle's nId, else it stays 0
    bool returnsCallbackResult;  // the Set returns the callback's result, else 0
    Uint8 moveCount;
    std::array<DspFieldMove, 2> moves;
};

// DSP output mode of the FSSWITCH message, indexed by the fusion switch 0, 1, 2;
// every other switch value sends DSP_OUTPUT_FUSE_INVALID.
inline constexpr std::array<Uint32, 3> kDspOutputModeBySwitch = {DSP_OUTPUT_VIS, DSP_OUTPUT_FUSE,
                                                                  DSP_OUTPUT_NIR_CAL};

namespace dsp_table_detail {

inline constexpr Uint16 kVsfWord = offsetof(DSP_AEW_CFG_S, vsfArgs);
inline constexpr Uint16 kDspArgs = offsetof(DSP_AEW_CFG_S, dspArgs);

// A whole payload block: the record is exactly the firmware block, copied to dspArgs.
constexpr DspStageDesc block(DSP_AEW_CFG_TYPE type, std::size_t bytes, bool returnsCallbackResult) {
    return {type, true, returnsCallbackResult, 1,
            {{{kDspArgs, 0, static_cast<Uint16>(bytes), DspMove::Copy}, {}}}};
}

}  // namespace dsp_table_detail

inline constexpr std::array<DspStageDesc, kDspStageCount> kDspStageTable = [] {
    using namespace dsp_table_detail;
    constexpr bool kCallback = true, kZero = false;
    std::array<DspStageDesc, kDspStageCount> t{};
    t[kDspStageLsm] = block(DSP_AEW_CFG_TYPE_LSM, sizeof(LSM_PARAM_ARM), kCallback);
    // Switch word unchanged, then the 64-byte 2.7.22 block; `version` stays 0.
    t[kDspStageFusion] = {DSP_AEW_CFG_TYPE_FUSION, true, kZero, 2,
                          {{{kVsfWord, offsetof(DSP_FusionV2722, pSwtich), sizeof(Uint32), DspMove::Copy},
                            {kDspArgs, offsetof(DSP_FusionV2722, fusionParam), sizeof(FUSION_PARAM_V2_7_22),
                             DspMove::Copy}}}};
    t[kDspStageIr] = {DSP_AEW_CFG_TYPE_IR, false, kZero, 1,
                      {{{offsetof(DSP_AEW_CFG_S, dspArgs.irCalPramArgs.irParam.zoomIndex),
                         offsetof(DSP_IrParam, zoomIndex), sizeof(Uint16), DspMove::Low16},
                        {}}}};
    // The path text is not copied: the DSP side reads it through the address.
    t[kDspStageCal] = {DSP_AEW_CFG_TYPE_CAL, false, kZero, 1,
                       {{{offsetof(DSP_AEW_CFG_S, dspArgs.irCalPramArgs.calParam.cfg_path),
                          offsetof(DSP_IrParam, cfg_path), sizeof(char*), DspMove::AddressOf},
                         {}}}};
    t[kDspStageFsSwitch] = {DSP_AEW_CFG_TYPE_FSSWITCH, false, kZero, 1,
                            {{{kVsfWord, offsetof(DSP_FusionV2722, pSwtich), sizeof(Uint32), DspMove::OutputMode},
                              {}}}};
    t[kDspStageLae] = block(DSP_AEW_CFG_TYPE_LAE, sizeof(LAE_PARAM_ARM), kCallback);
    t[kDspStageSbm3d] = block(DSP_AEW_CFG_TYPE_SBM3D, sizeof(SBM3D_PARAM_ARM), kCallback);
    t[kDspStageCsc] = {DSP_AEW_CFG_TYPE_CSC, true, kCallback, 1,
                       {{{kVsfWord, offsetof(DSP_Yuv2yuvV100, enable), sizeof(Uint32), DspMove::Copy}, {}}}};
    t[kDspStageFusionPlate] = block(DSP_AEW_CFG_TYPE_FUSION_PLATE, sizeof(FUSION_PLATE_PARAM), kCallback);
    t[kDspStageFg2c] = block(DSP_AEW_CFG_TYPE_FG2C, sizeof(FG2C_PARAM_ARM), kCallback);
    t[kDspStageLle] = block(DSP_AEW_CFG_TYPE_LLE, sizeof(VORN_HI_LLE_PARAM_STR), kZero);
    t[kDspStageYlwdr] = block(DSP_AEW_CFG_TYPE_YLWDR, sizeof(YLWDR_PARAM_ARM), kZero);
    t[kDspStageY2d] = block(DSP_AEW_CFG_TYPE_Y2D, sizeof(Y2D_PARAM_ARM), kZero);
    t[kDspStageDlae] = block(DSP_AEW_CFG_TYPE_DLAE, sizeof(VORN_HI_DLAE_PARAM_STR), kZero);
    t[kDspStageDlcfa] = block(DSP_AEW_CFG_TYPE_DLCFA, sizeof(VORN_HI_DLCFA_PARAM_STR), kZero);
    t[kDspStageSade] = block(DSP_AEW_CFG_TYPE_SADE, sizeof(VORN_ARM_SADE_PARAM), kZero);
    return t;
}();

// Bytes of the caller's record that a move reads.
constexpr std::size_t dspMoveSourceBytes(const DspFieldMove& m) {
    switch (m.how) {
        case DspMove::Copy: return m.bytes;
        case DspMove::Low16: return sizeof(Int32);
        case DspMove::AddressOf: return 1;  // only the field's address is taken
        case DspMove::OutputMode: return sizeof(Uint32);
    }
    return 0;
}

// True when every move of the stage stays inside a record of `recordBytes`
// and inside the message; checked at compile time for each Set function.
constexpr bool dspStageFits(const DspStageDesc& d, std::size_t recordBytes) {
    if (d.moveCount == 0 || d.moveCount > d.moves.size()) {
        return false;
    }
    for (Uint8 i = 0; i < d.moveCount; ++i) {
        const DspFieldMove& m = d.moves[i];
        // A move of no bytes is a slot the description forgot to fill.
        if (m.bytes == 0 || m.recordOffset + dspMoveSourceBytes(m) > recordBytes ||
            m.messageOffset + m.bytes > sizeof(DSP_AEW_CFG_S)) {
            return false;
        }
    }
    return true;
}

}  // namespace ispdsp

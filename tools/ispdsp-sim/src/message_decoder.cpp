#include "message_decoder.h"

#include <cstring>


namespace ispsim {

namespace {

// A field named by its member path inside the message.
#define MSG_FIELD(label, member, wire) FieldSpec{label, offsetof(DSP_AEW_CFG_S, member), WireType::wire}
#define FUSION_FIELD(name, wire) MSG_FIELD(#name, dspArgs.stFusionArgs.fusion_param_v2_7_22.name, wire)
#define BLOCK_FIELD(block, name, wire) MSG_FIELD(#name, dspArgs.block.name, wire)

std::vector<StageSpec> buildStageTable() {
    std::vector<StageSpec> table;
    table.push_back({DSP_AEW_CFG_TYPE_LSM, "LSM",
                     {BLOCK_FIELD(stLsmArgs, aw_left_thr, U16), BLOCK_FIELD(stLsmArgs, aw_right_thr, U16),
                      BLOCK_FIELD(stLsmArgs, aw_top_thr, U16), BLOCK_FIELD(stLsmArgs, aw_bottom_thr, U16),
                      BLOCK_FIELD(stLsmArgs, aw_wr, U16), BLOCK_FIELD(stLsmArgs, aw_hr, U16),
                      BLOCK_FIELD(stLsmArgs, rep_left, U16), BLOCK_FIELD(stLsmArgs, rep_right, U16),
                      BLOCK_FIELD(stLsmArgs, rep_top, U16), BLOCK_FIELD(stLsmArgs, rep_bottom, U16),
                      BLOCK_FIELD(stLsmArgs, center_x, U16), BLOCK_FIELD(stLsmArgs, center_y, U16),
                      BLOCK_FIELD(stLsmArgs, center_xy, U16), BLOCK_FIELD(stLsmArgs, rep_center_x, U16),
                      BLOCK_FIELD(stLsmArgs, rep_center_y, U16)}});
    table.push_back({DSP_AEW_CFG_TYPE_FUSION,
                     "FUSION",
                     {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32),
                      FUSION_FIELD(ep_delta, U16),
                      FUSION_FIELD(fusion_hf_ratio, U16),
                      FUSION_FIELD(fwmin_wt, U16),
                      FUSION_FIELD(nir_k, U16),
                      FUSION_FIELD(hf_zoom, U16),
                      FUSION_FIELD(dark_inner, U16),
                      FUSION_FIELD(high_lum_thr, S16),
                      FUSION_FIELD(fwmin_limit, U8),
                      FUSION_FIELD(fwmax_limit, U8),
                      FUSION_FIELD(copy_en, U8),
                      FUSION_FIELD(nir_a, S8),
                      FUSION_FIELD(vis_b, S8),
                      FUSION_FIELD(nir_min, U8),
                      FUSION_FIELD(uv_coef, U8),
                      FUSION_FIELD(uv_diff_thr, U8),
                      FUSION_FIELD(uv_diff_min, U8),
                      FUSION_FIELD(uv_diff_max, U8),
                      FUSION_FIELD(uv_vlight_min, U8),
                      FUSION_FIELD(uv_vlight_max, U8),
                      FUSION_FIELD(uv_sat_limit, U8),
                      FUSION_FIELD(uv_rsmooth, U8),
                      FUSION_FIELD(uv_gsmooth, U8),
                      FUSION_FIELD(uv_bsmooth, U8),
                      FUSION_FIELD(uv_wmin, U8),
                      FUSION_FIELD(uv_wmax, U8),
                      FUSION_FIELD(uv_w, U8),
                      FUSION_FIELD(w_nir, Address),
                      MSG_FIELD("version", dspArgs.stFusionArgs.version, S32)},
                     AddressTarget::NirCurve,
                     offsetof(DSP_AEW_CFG_S, dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir)});
    table.push_back({DSP_AEW_CFG_TYPE_IR, "IR", {MSG_FIELD("zoomIndex", dspArgs.irCalPramArgs.irParam.zoomIndex, U16)}});
    table.push_back({DSP_AEW_CFG_TYPE_CAL,
                     "CAL",
                     {MSG_FIELD("cfg_path", dspArgs.irCalPramArgs.calParam.cfg_path, Address),
                      MSG_FIELD("xytable_path", dspArgs.irCalPramArgs.calParam.xytable_path, Address),
                      MSG_FIELD("xytable_base_virtual", dspArgs.irCalPramArgs.calParam.xytable_base_virtual, Address),
                      MSG_FIELD("input_yuv_w", dspArgs.irCalPramArgs.calParam.input_yuv_w, U32),
                      MSG_FIELD("input_yuv_h", dspArgs.irCalPramArgs.calParam.input_yuv_h, U32),
                      MSG_FIELD("dx", dspArgs.irCalPramArgs.calParam.manual_param.dx, S32),
                      MSG_FIELD("dy", dspArgs.irCalPramArgs.calParam.manual_param.dy, S32),
                      MSG_FIELD("xytable_bin_save_flag", dspArgs.irCalPramArgs.calParam.xytable_bin_save_flag, U8),
                      MSG_FIELD("manual_flag", dspArgs.irCalPramArgs.calParam.manual_flag, U8)},
                     AddressTarget::PathText,
                     offsetof(DSP_AEW_CFG_S, dspArgs.irCalPramArgs.calParam.cfg_path)});
    table.push_back({DSP_AEW_CFG_TYPE_FSSWITCH, "FSSWITCH", {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32)}});
    table.push_back(
        {DSP_AEW_CFG_TYPE_FSSWITCH_FACTORY, "FSSWITCH_FACTORY", {MSG_FIELD("fcswitch", vsfArgs.fcswitch, U32)}});
    table.push_back({DSP_AEW_CFG_TYPE_LAE,
                     "LAE",
                     {MSG_FIELD("plate.manual_en", dspArgs.stLaeArgs.lae_param_plate.manual_en, U8),
                      MSG_FIELD("plate.blue_color_level", dspArgs.stLaeArgs.lae_param_plate.blue_color_level, U8),
                      MSG_FIELD("plate.green_bg_noise_level", dspArgs.stLaeArgs.lae_param_plate.green_bg_noise_level, U16),
                      MSG_FIELD("plate.green_luma_ave_thr", dspArgs.stLaeArgs.lae_param_plate.green_luma_ave_thr, U8),
                      MSG_FIELD("plate.green_color_level", dspArgs.stLaeArgs.lae_param_plate.green_color_level, U8),
                      MSG_FIELD("plate.blue_binary_thr", dspArgs.stLaeArgs.lae_param_plate.blue_binary_thr, U8),
                      MSG_FIELD("plate.blue_proc_thr", dspArgs.stLaeArgs.lae_param_plate.blue_proc_thr, U8),
                      MSG_FIELD("plate.gbce_level", dspArgs.stLaeArgs.lae_param_plate.gbce_level, U8),
                      MSG_FIELD("plate.nf_level", dspArgs.stLaeArgs.lae_param_plate.nf_level, U8),
                      MSG_FIELD("plate.gbce_lut_index", dspArgs.stLaeArgs.lae_param_plate.gbce_lut_index, U8),
                      MSG_FIELD("plate.ee_level", dspArgs.stLaeArgs.lae_param_plate.ee_level, U8),
                      MSG_FIELD("plate.debug_pin", dspArgs.stLaeArgs.lae_param_plate.debug_pin, U8),
                      MSG_FIELD("window.manual_en", dspArgs.stLaeArgs.lae_param_window.manual_en, U8),
                      MSG_FIELD("window.gbce_lut_index", dspArgs.stLaeArgs.lae_param_window.gbce_lut_index, U8),
                      MSG_FIELD("window.window_gbce_level", dspArgs.stLaeArgs.lae_param_window.window_gbce_level, U8),
                      MSG_FIELD("window.nf_level", dspArgs.stLaeArgs.lae_param_window.nf_level, U8),
                      MSG_FIELD("window.ee_level", dspArgs.stLaeArgs.lae_param_window.ee_level, U8),
                      MSG_FIELD("window.debug_pin", dspArgs.stLaeArgs.lae_param_window.debug_pin, U8),
                      BLOCK_FIELD(stLaeArgs, ver, U32), BLOCK_FIELD(stLaeArgs, window_en, U8),
                      BLOCK_FIELD(stLaeArgs, plate_type, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_SBM3D,
                     "SBM3D",
                     {BLOCK_FIELD(stSbm3dArgs, sbm3d_thr, S32), BLOCK_FIELD(stSbm3dArgs, debug_pin, S32),
                      BLOCK_FIELD(stSbm3dArgs, ver, U32)}});
    table.push_back({DSP_AEW_CFG_TYPE_CSC, "CSC", {MSG_FIELD("cscEnable", vsfArgs.cscEnable, U32)}});
    table.push_back(
        {DSP_AEW_CFG_TYPE_FUSION_PLATE, "FUSION_PLATE", {BLOCK_FIELD(stFusionPlateArgs, fuse_weight, S32)}});
    table.push_back({DSP_AEW_CFG_TYPE_FG2C,
                     "FG2C",
                     {BLOCK_FIELD(stFg2cArgs, vorn_hi_fg2c_need_win_enhence, U8),
                      BLOCK_FIELD(stFg2cArgs, vorn_hi_fg2c_win_fusion_weight, U8),
                      BLOCK_FIELD(stFg2cArgs, vorn_hi_fg2c_face_fusion_weight, U8),
                      BLOCK_FIELD(stFg2cArgs, vorn_hi_fg2c_face_fusion_pad, U8),
                      BLOCK_FIELD(stFg2cArgs, vorn_hi_fg2c_debug_pin, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_LLE,
                     "LLE",
                     {BLOCK_FIELD(stLleArgs, vorn_hi_lle_window_gain, U16), BLOCK_FIELD(stLleArgs, vorn_hi_lle_gamma, U8),
                      BLOCK_FIELD(stLleArgs, vorn_hi_lle_edge, U8), BLOCK_FIELD(stLleArgs, vorn_hi_lle_denoise, U8),
                      BLOCK_FIELD(stLleArgs, vorn_hi_lle_fusion_weight, U8),
                      BLOCK_FIELD(stLleArgs, vorn_hi_lle_debug_pin, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_YLWDR,
                     "YLWDR",
                     {BLOCK_FIELD(stYlwdrArgs, hist_thr, U32), BLOCK_FIELD(stYlwdrArgs, scope_thr, U16),
                      BLOCK_FIELD(stYlwdrArgs, lep_alpha, U16), BLOCK_FIELD(stYlwdrArgs, lut_weight, U16),
                      BLOCK_FIELD(stYlwdrArgs, yout_thr0, U8), BLOCK_FIELD(stYlwdrArgs, yout_thr1, U8),
                      BLOCK_FIELD(stYlwdrArgs, alpha1, U8), BLOCK_FIELD(stYlwdrArgs, alpha2, U8),
                      BLOCK_FIELD(stYlwdrArgs, alpha31, U8), BLOCK_FIELD(stYlwdrArgs, alpha32, U8),
                      BLOCK_FIELD(stYlwdrArgs, d1_thr1, U8), BLOCK_FIELD(stYlwdrArgs, d1_thr2, U8),
                      BLOCK_FIELD(stYlwdrArgs, d1_thr3, U8), BLOCK_FIELD(stYlwdrArgs, d2_thr1, U8),
                      BLOCK_FIELD(stYlwdrArgs, d2_thr2, U8), BLOCK_FIELD(stYlwdrArgs, gamma_coef, U8),
                      BLOCK_FIELD(stYlwdrArgs, uv_thr, U8), BLOCK_FIELD(stYlwdrArgs, uv_gain, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_Y2D,
                     "Y2D",
                     {BLOCK_FIELD(stY2dArgs, sd_spe, U8), BLOCK_FIELD(stY2dArgs, sd_de_gau0, U8),
                      BLOCK_FIELD(stY2dArgs, sd_de_gau1, U8), BLOCK_FIELD(stY2dArgs, sd_dark, U8),
                      BLOCK_FIELD(stY2dArgs, sd_dark_ra, U8), BLOCK_FIELD(stY2dArgs, sd_bright, U8),
                      BLOCK_FIELD(stY2dArgs, sd_bright_ra, U8), BLOCK_FIELD(stY2dArgs, sd_ee_gau0, U8),
                      BLOCK_FIELD(stY2dArgs, sd_sigma, U16), BLOCK_FIELD(stY2dArgs, sd_ee_gau1, U8),
                      BLOCK_FIELD(stY2dArgs, sd_ee_slope, U8), BLOCK_FIELD(stY2dArgs, win_size, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_DLAE,
                     "DLAE",
                     {BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_fusion_weight, U8),
                      BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_debug_pin, U8),
                      BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_window_gain, U16),
                      BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_gamma, U8), BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_edge, U8),
                      BLOCK_FIELD(stDlaeArgs, vorn_hi_dlae_denoise, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_DLCFA,
                     "DLCFA",
                     {BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_ee_level, U16),
                      BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_gamma, U8),
                      BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_luma_contrast, U8),
                      BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_denoise, U8),
                      BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_fusion_weight, U8),
                      BLOCK_FIELD(stDlcfaArgs, vorn_hi_dlcfa_debug_pin, U8)}});
    table.push_back({DSP_AEW_CFG_TYPE_RESV, "RESV", {}});
    table.push_back({DSP_AEW_CFG_TYPE_SADE,
                     "SADE",
                     {BLOCK_FIELD(stSadeArgs, vorn_arm_sade_model_type, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_ee_level, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_nr_level, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_black_edge, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_white_edge, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_debug_pin, U8),
                      BLOCK_FIELD(stSadeArgs, vorn_arm_sade_scene_mode, U8)}});
    return table;
}

#undef BLOCK_FIELD
#undef FUSION_FIELD
#undef MSG_FIELD

size_t widthOf(WireType type) {
    switch (type) {
        case WireType::U8:
        case WireType::S8: return 1;
        case WireType::U16:
        case WireType::S16: return 2;
        case WireType::U32:
        case WireType::S32: return 4;
        case WireType::Address: return 8;
    }
    return 0;
}

const void* addressAt(std::span<const uint8_t> bytes, size_t offset) {
    const void* address = nullptr;
    std::memcpy(&address, bytes.data() + offset, sizeof address);
    return address;
}

}  // namespace

const std::vector<StageSpec>& stageTable() {
    static const std::vector<StageSpec> table = buildStageTable();
    return table;
}

const StageSpec* findStage(uint32_t type) {
    for (const StageSpec& stage : stageTable())
        if (stage.type == type) return &stage;
    return nullptr;
}

int64_t readField(std::span<const uint8_t> bytes, size_t offset, WireType type) {
    if (offset + widthOf(type) > bytes.size()) return 0;
    const uint8_t* at = bytes.data() + offset;
    switch (type) {
        case WireType::U8: return at[0];
        case WireType::S8: return static_cast<int8_t>(at[0]);
        case WireType::U16: {
            uint16_t v;
            std::memcpy(&v, at, 2);
            return v;
        }
        case WireType::S16: {
            int16_t v;
            std::memcpy(&v, at, 2);
            return v;
        }
        case WireType::U32: {
            uint32_t v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case WireType::S32: {
            int32_t v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case WireType::Address: return addressAt(bytes, offset) != nullptr ? 1 : 0;
    }
    return 0;
}

DecodedMessage decodeMessage(const DSP_AEW_CFG_S& message, bool followAddresses) {
    const std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t*>(&message), sizeof message);
    DecodedMessage out;
    out.type = message.u32Type;
    const StageSpec* stage = findStage(message.u32Type);
    out.stage = stage != nullptr ? stage->name : "?";

    std::vector<bool> covered(bytes.size(), false);
    for (size_t i = 0; i < sizeof message.u32Type; ++i) covered[i] = true;
    if (stage != nullptr) {
        for (const FieldSpec& field : stage->fields) {
            out.fields.push_back(
                {field.name, readField(bytes, field.offset, field.type), field.type == WireType::Address, field.offset});
            for (size_t i = 0; i < widthOf(field.type); ++i) covered[field.offset + i] = true;
        }
        if (followAddresses && stage->target != AddressTarget::None) {
            const void* address = addressAt(bytes, stage->targetOffset);
            if (address != nullptr && stage->target == AddressTarget::NirCurve) {
                // The driver's curve buffer: FUSION_NIR_POINTS bytes, valid during the call.
                const auto* points = static_cast<const uint8_t*>(address);
                out.curve.emplace(points, points + FUSION_NIR_POINTS);
            } else if (address != nullptr && stage->target == AddressTarget::PathText) {
                // The instance's cfg_path: a NUL-terminated text in a 512-byte buffer.
                const auto* text = static_cast<const char*>(address);
                out.pathText.emplace(text, strnlen(text, sizeof(DSP_IrParam::cfg_path)));
            }
        }
    }
    for (size_t i = 0; i < bytes.size(); ++i)
        if (!covered[i] && bytes[i] != 0) ++out.strayBytes;
    return out;
}

}  // namespace ispsim

// The debug console's command table: 28 commands and the end entry. The
// Chinese descriptions are stored in the GBK encoding and printed byte for
// byte; each is written as escaped bytes with its text in the comment above.
// Rows 1 to 26 name the fields of a stored fusion record in field order
// (id - 46 is the debug setter's field id); row 27 loads the NIR curve.
#include "driver/console.h"

const CMD_DrvIspTable drvIspParam[ispdsp::kConsoleTableEntries] = {
    // 0: isp运行参数
    {0, "runParam",
     "isp\xd4\xcb\xd0\xd0\xb2\xce\xca\xfd",
     "\t aew dbg get isp run params, faculative value", nullptr},
    // 1: 数据模糊
    {46, "ep_delta",
     "\xca\xfd\xbe\xdd\xc4\xa3\xba\xfd",
     "\t aew dbg Fusion ep_delta, ep_delta~[1,16383]", nullptr},
    // 2: 高频比例
    {47, "fusion_hf_ratio",
     "\xb8\xdf\xc6\xb5\xb1\xc8\xc0\xfd",
     "\t aew dbg Fusion fusion_hf_ratio, aw_right_thr~[0,256]", nullptr},
    // 3: 差值折线横轴fwmax_limit对应的映射值
    {48, "fwmin_wt",
     "\xb2\xee\xd6\xb5\xd5\xdb\xcf\xdf\xba\xe1\xd6\xe1" "fwmax_limit\xb6\xd4\xd3\xa6\xb5\xc4\xd3\xb3\xc9\xe4\xd6\xb5",
     "\t aew dbg Fusion fwmin_wt, fwmin_wt~[0,255]", nullptr},
    // 4: 红外限制，控制阈值后红外提升幅度
    {49, "nir_k",
     "\xba\xec\xcd\xe2\xcf\xde\xd6\xc6\xa3\xac\xbf\xd8\xd6\xc6\xe3\xd0\xd6\xb5\xba\xf3\xba\xec\xcd\xe2\xcc\xe1\xc9\xfd\xb7\xf9\xb6\xc8",
     "\t aew dbg Fusion nir_k, nir_k~[0,256]", nullptr},
    // 5: 高频缩放比例，越大，清晰度越好
    {50, "hf_zoom",
     "\xb8\xdf\xc6\xb5\xcb\xf5\xb7\xc5\xb1\xc8\xc0\xfd\xa3\xac\xd4\xbd\xb4\xf3\xa3\xac\xc7\xe5\xce\xfa\xb6\xc8\xd4\xbd\xba\xc3",
     "\t aew dbg Fusion hf_zoom, hf_zoom~[0,2047]", nullptr},
    // 6: 最终融合比例映射
    {51, "dark_inner",
     "\xd7\xee\xd6\xd5\xc8\xda\xba\xcf\xb1\xc8\xc0\xfd\xd3\xb3\xc9\xe4",
     "\t aew dbg Fusion dark_inner, dark_inner~[0,65025]", nullptr},
    // 7: 控制高亮区域的高频融合
    {52, "high_lum_thr",
     "\xbf\xd8\xd6\xc6\xb8\xdf\xc1\xc1\xc7\xf8\xd3\xf2\xb5\xc4\xb8\xdf\xc6\xb5\xc8\xda\xba\xcf",
     "\t aew dbg Fusion high_lum_thr, high_lum_thr~[-256,-1]", nullptr},
    // 8: 差值折线横轴最小值
    {53, "fwmin_limit",
     "\xb2\xee\xd6\xb5\xd5\xdb\xcf\xdf\xba\xe1\xd6\xe1\xd7\xee\xd0\xa1\xd6\xb5",
     "\t aew dbg Fusion fwmin_limit, fwmin_limit~[0,255]", nullptr},
    // 9: 差值折线横轴最大值
    {54, "fwmax_limit",
     "\xb2\xee\xd6\xb5\xd5\xdb\xcf\xdf\xba\xe1\xd6\xe1\xd7\xee\xb4\xf3\xd6\xb5",
     "\t aew dbg Fusion fwmax_limit, fwmax_limit~[0,255]", nullptr},
    // 10: 红外输入直接拷贝到输出的使能开关
    {55, "copy_en",
     "\xba\xec\xcd\xe2\xca\xe4\xc8\xeb\xd6\xb1\xbd\xd3\xbf\xbd\xb1\xb4\xb5\xbd\xca\xe4\xb3\xf6\xb5\xc4\xca\xb9\xc4\xdc\xbf\xaa\xb9\xd8",
     "\t aew dbg Fusion copy_en, copy_en~[0,1]", nullptr},
    // 11: (no Chinese text)
    {56, "nir_a",
     "",
     "\t aew dbg Fusion nir_a, nir_a~[-1,1]", nullptr},
    // 12: (no Chinese text)
    {57, "vis_b",
     "",
     "\t aew dbg Fusion vis_b, vis_b~[-1,1]", nullptr},
    // 13: 红外限制阈值，该阈值后红外控制起效
    {58, "nir_min",
     "\xba\xec\xcd\xe2\xcf\xde\xd6\xc6\xe3\xd0\xd6\xb5\xa3\xac\xb8\xc3\xe3\xd0\xd6\xb5\xba\xf3\xba\xec\xcd\xe2\xbf\xd8\xd6\xc6\xc6\xf0\xd0\xa7",
     "\t aew dbg Fusion nir_min, nir_min~[0,255]", nullptr},
    // 14: 饱和度参数,越大整体颜色越鲜艳,定点U3.5
    {59, "uv_coef",
     "\xb1\xa5\xba\xcd\xb6\xc8\xb2\xce\xca\xfd,\xd4\xbd\xb4\xf3\xd5\xfb\xcc\xe5\xd1\xd5\xc9\xab\xd4\xbd\xcf\xca\xd1\xde,\xb6\xa8\xb5\xe3U3.5",
     "\t aew dbg Fusion uv_coef, uv_coef~[0,255]", nullptr},
    // 15: 越小，暗处颜色恢复越弱
    {60, "uv_diff_thr",
     "\xd4\xbd\xd0\xa1\xa3\xac\xb0\xb5\xb4\xa6\xd1\xd5\xc9\xab\xbb\xd6\xb8\xb4\xd4\xbd\xc8\xf5",
     "\t aew dbg Fusion uv_diff_thr, uv_diff_thr~[1,255]", nullptr},
    // 16: uvdiff调整的下限
    {61, "uv_diff_min",
     "uvdiff\xb5\xf7\xd5\xfb\xb5\xc4\xcf\xc2\xcf\xde",
     "\t aew dbg Fusion uv_diff_min, uv_diff_min~[0,255]", nullptr},
    // 17: uvdiff调整的上限
    {62, "uv_diff_max",
     "uvdiff\xb5\xf7\xd5\xfb\xb5\xc4\xc9\xcf\xcf\xde",
     "\t aew dbg Fusion uv_diff_max, uv_diff_max~[0,255]", nullptr},
    // 18: vis_y小于该值,颜色不调整
    {63, "uv_vlight_min",
     "vis_y\xd0\xa1\xd3\xda\xb8\xc3\xd6\xb5,\xd1\xd5\xc9\xab\xb2\xbb\xb5\xf7\xd5\xfb",
     "\t aew dbg Fusion uv_vlight_min, uv_vlight_min~[0,2047]", nullptr},
    // 19: vis_y大于该值,颜色正常调整
    {64, "uv_vlight_max",
     "vis_y\xb4\xf3\xd3\xda\xb8\xc3\xd6\xb5,\xd1\xd5\xc9\xab\xd5\xfd\xb3\xa3\xb5\xf7\xd5\xfb",
     "\t aew dbg Fusion uv_vlight_max, uv_vlight_max~[0,255]", nullptr},
    // 20: 越大，鲜艳的颜色恢复越弱
    {65, "uv_sat_limit",
     "\xd4\xbd\xb4\xf3\xa3\xac\xcf\xca\xd1\xde\xb5\xc4\xd1\xd5\xc9\xab\xbb\xd6\xb8\xb4\xd4\xbd\xc8\xf5",
     "\t aew dbg Fusion uv_sat_limit, uv_sat_limit~[1,255]", nullptr},
    // 21: 越大，红色越平滑，红色越淡
    {66, "uv_rsmooth",
     "\xd4\xbd\xb4\xf3\xa3\xac\xba\xec\xc9\xab\xd4\xbd\xc6\xbd\xbb\xac\xa3\xac\xba\xec\xc9\xab\xd4\xbd\xb5\xad",
     "\t aew dbg Fusion uv_rsmooth, uv_rsmooth~[1,255]", nullptr},
    // 22: 越大，绿色越平滑，绿色越淡
    {67, "uv_gsmooth",
     "\xd4\xbd\xb4\xf3\xa3\xac\xc2\xcc\xc9\xab\xd4\xbd\xc6\xbd\xbb\xac\xa3\xac\xc2\xcc\xc9\xab\xd4\xbd\xb5\xad",
     "\t aew dbg Fusion uv_gsmooth, uv_gsmooth~[1,255]", nullptr},
    // 23: 越大，蓝色越平滑，蓝色越淡
    {68, "uv_bsmooth",
     "\xd4\xbd\xb4\xf3\xa3\xac\xc0\xb6\xc9\xab\xd4\xbd\xc6\xbd\xbb\xac\xa3\xac\xc0\xb6\xc9\xab\xd4\xbd\xb5\xad",
     "\t aew dbg Fusion uv_bsmooth, uv_bsmooth~[1,255]", nullptr},
    // 24: 比例恢复颜色的最小值
    {69, "uv_wmin",
     "\xb1\xc8\xc0\xfd\xbb\xd6\xb8\xb4\xd1\xd5\xc9\xab\xb5\xc4\xd7\xee\xd0\xa1\xd6\xb5",
     "\t aew dbg Fusion uv_wmin, uv_wmin~[0,255]", nullptr},
    // 25: 比例恢复颜色的最大值
    {70, "uv_wmax",
     "\xb1\xc8\xc0\xfd\xbb\xd6\xb8\xb4\xd1\xd5\xc9\xab\xb5\xc4\xd7\xee\xb4\xf3\xd6\xb5",
     "\t aew dbg Fusion uv_wmax, uv_wmax~[0,255]", nullptr},
    // 26: 比例恢复颜色权重,越大颜色越鲜艳
    {71, "uv_w",
     "\xb1\xc8\xc0\xfd\xbb\xd6\xb8\xb4\xd1\xd5\xc9\xab\xc8\xa8\xd6\xd8,\xd4\xbd\xb4\xf3\xd1\xd5\xc9\xab\xd4\xbd\xcf\xca\xd1\xde",
     "\t aew dbg Fusion uv_w, uv_w~[0,255]", nullptr},
    // 27: w_nir曲线
    {72, "w_nir",
     "w_nir\xc7\xfa\xcf\xdf",
     "\t aew dbg Fusion w_nir, w_nir~[0,255]", nullptr},
    // 28: 不支持
    {-1, nullptr,
     "\xb2\xbb\xd6\xa7\xb3\xd6",
     "\tNot support", nullptr},
};

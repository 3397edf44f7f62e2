#include "support/param_file_builder.h"

#include <algorithm>
#include <cstring>

#include "field_table.h"

namespace ispdsp_test {

namespace {

using ispdsp::tools::kHeaderBytes;
using ispdsp::tools::kTextBytes;

void putWord(std::vector<uint8_t>& out, uint32_t word) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(word >> (8 * i)));
}

template <typename T>
T clampTo(long value, long lo, long hi) {
    return static_cast<T>(std::clamp(value, lo, hi));
}

}  // namespace

ispdsp::tools::TextField ParamFileBuilder::textField(std::string_view text) {
    ispdsp::tools::TextField field{};
    std::memcpy(field.data(), text.data(), std::min(text.size(), kTextBytes));
    return field;
}

CFG_DspIspCfgParam makeDefaultParamTable(uint32_t variant) {
    CFG_DspIspCfgParam t;
    std::memset(&t, 0, sizeof t);
    const long v = static_cast<long>(variant % 16);
    t.ispFusionFlag = 1;
    for (long step = 0; step < FUSION_GAIN_STEPS; ++step) {
        CFG_DSP_FusionV2722& f = t.ispFusionParam[step];
        f.ep_delta = clampTo<Uint16>(64 + 96 * step + 4 * v, 1, 16383);
        f.fusion_hf_ratio = clampTo<Uint16>(224 - 8 * step, 0, 256);
        f.fwmin_wt = clampTo<Uint16>(64 + 8 * step, 0, 256);
        f.nir_k = clampTo<Uint16>(128 + 4 * step + v, 0, 256);
        f.hf_zoom = clampTo<Uint16>(1024 - 40 * step, 0, 2047);
        f.dark_inner = clampTo<Uint16>(4096 + 2048 * step, 0, 65025);
        f.high_lum_thr = clampTo<Int16>(-(32 + 8 * step), -256, -1);
        f.fwmin_limit = clampTo<Uint8>(16 + step, 0, 255);
        f.fwmax_limit = clampTo<Uint8>(200 + 2 * step, 0, 255);
        f.copy_en = 0;
        f.nir_a = 1;
        f.vis_b = 0;
        f.nir_min = clampTo<Uint8>(32 + 2 * step, 0, 255);
        f.uv_coef = clampTo<Uint8>(40 - step, 0, 255);  // 3.5 fixed point: 1.25 down to 0.78
        f.uv_diff_thr = clampTo<Uint8>(16 + step, 1, 255);
        f.uv_diff_min = 8;
        f.uv_diff_max = clampTo<Uint8>(64 + 4 * step, 0, 255);
        f.uv_vlight_min = 16;
        f.uv_vlight_max = 96;
        f.uv_sat_limit = clampTo<Uint8>(48 + 2 * step, 1, 255);
        f.uv_rsmooth = clampTo<Uint8>(4 + step / 2, 1, 255);
        f.uv_gsmooth = clampTo<Uint8>(4 + step / 2, 1, 255);
        f.uv_bsmooth = clampTo<Uint8>(4 + step / 2, 1, 255);
        f.uv_wmin = 16;
        f.uv_wmax = 224;
        f.uv_w = clampTo<Uint8>(128 - 4 * step, 0, 255);
        // NIR weight rising with the input level; the curve starts higher as the gain rises.
        const long start = 64 + 8 * step;
        for (long x = 0; x < FUSION_NIR_POINTS; ++x) {
            f.w_nir[x] = clampTo<Uint8>(start + (255 - start) * x / (FUSION_NIR_POINTS - 1), 0, 255);
        }
    }
    t.ispLsmParam = CFG_DSP_LsmV112{64, 960, 64, 960};
    t.ispLaeParam.plateLaeParam = CFG_DSP_Lae_PlateV209{0, 2, 5, 3, 50, 4, 80, 256, 4, 120, 60};
    t.ispLaeParam.windowLaeParam = CFG_DSP_Lae_WindowV209{0, 5, 5, 3, 50};
    t.ispSbm3dParam.sbm3d_threshold = clampTo<Uint16>(4096 + 256 * v, 0, 16384);
    t.ispYuv2yuvParam.enable = 1;
    t.ispFusionPlateParam.fuse_weight = clampTo<Int32>(50 + v, 1, 100);
    t.ispFg2cParam = CFG_DSP_Fg2cV102{1, 4, 4, 10};
    t.ispLleParam = CFG_DSP_LleV203{256, 3, 16, 2, 4};
    t.ispYlwdrParam = CFG_DSP_YlwdrV102{4096, 16, 4096, 128, 16, 235, 8, 8, 32, 32, 16, 32, 48, 24, 40, 32, 16, 32};
    t.ispY2dParam = CFG_DSP_Y2dV5118{32, 8, 16, 40, 64, 200, 64, 8, 1024, 16, 32, 3};
    t.ispDlaeParam = CFG_DSP_DlaeV101{4, 256, 3, 6, 2};
    t.ispDlcfaParam = CFG_DSP_DlcfaV101{256, 3, 6, 2, 4};
    t.ispSadeParam = CFG_DSP_SadeV113{1, 5, 50, 100, 100};
    return t;
}

ParamFileBuilder::ParamFileBuilder() {
    image_.header.verBits = ispdsp::tools::bitsFromFloat(ISPDSP_PARAM_FILE_VERSION);
    image_.header.subVerBits = ispdsp::tools::bitsFromFloat(1.0f);
    image_.header.dateTime = textField("2024-05-17 09:30:00");
    image_.header.archName = textField("ISPDSP-SOC");
    image_.header.pdtName = textField("IPC-NIR-FUSION");
}

ParamFileBuilder& ParamFileBuilder::addTable(int32_t type) {
    return addTable(type, makeDefaultParamTable(static_cast<uint32_t>(type)));
}

// Struct copies need not carry padding: it is written as 0, so the same field values give the same file.
ParamFileBuilder& ParamFileBuilder::addTable(int32_t type, const CFG_DspIspCfgParam& table) {
    static_assert(sizeof table == ispdsp::tools::kTableBytes);
    ispdsp::tools::TableEntry entry;
    entry.type = type;
    std::memcpy(entry.bytes.data(), &table, sizeof table);
    const auto& padding = ispdsp::tools::paddingMask();
    for (size_t i = 0; i < entry.bytes.size(); ++i) entry.bytes[i] = padding[i] ? 0 : entry.bytes[i];
    image_.entries.push_back(entry);
    return *this;
}

std::vector<uint8_t> ParamFileBuilder::headerBytes() const {
    const auto header = ispdsp::tools::headerBytes(image_.header);
    return {header.begin(), header.end()};
}

// The tool's whole file with the entries; its block lies between the size word and the checksum.
std::vector<uint8_t> ParamFileBuilder::blockBytes() const {
    if (rawBlock_) return *rawBlock_;
    const std::vector<uint8_t> file = ispdsp::tools::serializeParamFile(image_);
    return {file.begin() + kHeaderBytes + 4, file.end() - 4};
}

std::vector<uint8_t> ParamFileBuilder::build() const {
    const CFG_IspParamTable header = expectedHeader();
    std::vector<uint8_t> out = headerBytes();
    const std::vector<uint8_t> block = blockBytes();
    putWord(out, header.cfg_specParam.size);
    out.insert(out.end(), block.begin(), block.end());
    putWord(out, static_cast<uint32_t>(header.chksum));
    out.insert(out.end(), trailing_.begin(), trailing_.end());
    return out;
}

CFG_IspParamTable ParamFileBuilder::expectedHeader() const {
    CFG_IspParamTable h{};
    const std::vector<uint8_t> block = blockBytes();
    std::memcpy(&h, headerBytes().data(), kHeaderBytes);
    h.cfg_specParam.size = sizeWord_.value_or(static_cast<uint32_t>(block.size()));
    h.chksum = ispdsp::tools::fileChecksum(headerBytes().data(), block.data(), block.size()) ^ static_cast<int32_t>(chksumMask_);
    return h;
}

}  // namespace ispdsp_test

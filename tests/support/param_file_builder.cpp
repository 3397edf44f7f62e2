#include "support/param_file_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace ispdsp_test {
namespace {

constexpr size_t kHeaderBytes = 104;
constexpr size_t kTextBytes = 32;

void putWord(std::vector<uint8_t>& out, uint32_t word) {
    for (int i = 0; i < 4; ++i) {
        out.push_back(static_cast<uint8_t>(word >> (8 * i)));
    }
}

uint32_t floatBits(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void putText(std::vector<uint8_t>& out, const std::string& text) {
    for (size_t i = 0; i < kTextBytes; ++i) {
        out.push_back(i < text.size() ? static_cast<uint8_t>(text[i]) : 0);
    }
}

uint32_t getWord(const uint8_t* bytes) {
    return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

// Padding bytes of a table, as [begin, end) offsets. Struct copies need not carry padding, so the
// builder writes it as 0 to keep file images byte-for-byte reproducible.
struct Gap {
    size_t begin, end;
};
#define ISPDSP_TOP(field) offsetof(CFG_DspIspCfgParam, field)
#define ISPDSP_END(field) (ISPDSP_TOP(field) + sizeof(CFG_DspIspCfgParam::field))
constexpr Gap kTablePadding[] = {
    {ISPDSP_END(ispSbm3dParam), ISPDSP_TOP(ispYuv2yuvParam)},
    {ISPDSP_END(ispLleParam), ISPDSP_TOP(ispYlwdrParam)},
    {ISPDSP_END(ispSadeParam), sizeof(CFG_DspIspCfgParam)},
    {ISPDSP_TOP(ispDlaeParam) + offsetof(CFG_DSP_DlaeV101, fusion_weight) + 1,
     ISPDSP_TOP(ispDlaeParam) + offsetof(CFG_DSP_DlaeV101, window_gain)},
    {ISPDSP_TOP(ispDlaeParam) + offsetof(CFG_DSP_DlaeV101, denoise) + 1, ISPDSP_END(ispDlaeParam)},
    {ISPDSP_TOP(ispLaeParam) + offsetof(CFG_DSP_Lae_PlateV209, green_luma_ave_thr) + 1,
     ISPDSP_TOP(ispLaeParam) + offsetof(CFG_DSP_Lae_PlateV209, green_bg_noise_level)},
    {ISPDSP_TOP(ispLaeParam) + offsetof(CFG_DSP_LaeV209, windowLaeParam) + sizeof(CFG_DSP_Lae_WindowV209),
     ISPDSP_END(ispLaeParam)},
    {ISPDSP_TOP(ispY2dParam) + offsetof(CFG_DSP_Y2dV5118, win_size) + 1, ISPDSP_END(ispY2dParam)},
};
#undef ISPDSP_TOP
#undef ISPDSP_END
// Every other byte belongs to a field: the gaps plus the fields' sizes make up the table.
constexpr size_t paddingBytes() {
    size_t n = 0;
    for (const Gap& g : kTablePadding) n += g.end - g.begin;
    return n;
}
static_assert(paddingBytes() == 12, "known padding of CFG_DspIspCfgParam: 2 + 2 + 3 top-level, 2 DLAE, 2 LAE, 1 Y2D");

template <typename T>
T clampTo(long value, long lo, long hi) {
    return static_cast<T>(std::clamp(value, lo, hi));
}

}  // namespace

std::string paramTableTypeName(int32_t type) {
    static constexpr std::array<const char*, 12> kBase = {
        "MULTICOLOR",           "BLACKWHITE",           "HDR_MULTICOLOR",       "HDR_BLACKWHITE",
        "WDR_MULTICOLOR",       "WDR_BLACKWHITE",       "MULTICOLOR_NIGHT",     "BLACKWHITE_NIGHT",
        "HDR_MULTICOLOR_NIGHT", "HDR_BLACKWHITE_NIGHT", "WDR_MULTICOLOR_NIGHT", "WDR_BLACKWHITE_NIGHT"};
    // Application scenes in type order, nine types each from 12 on.
    static constexpr std::array<const char*, 12> kScenes = {"TRAFFIC",    "FACE",      "STROBE",         "POLICE",
                                                            "COMITY",     "PEDESTIAN", "IVS",            "ECOTRAFFIC",
                                                            "ECOPOLICE",  "ENTRANCE_FLASH", "ENTRANCE_STROBE", "EVENT"};
    static constexpr std::array<std::array<const char*, 2>, 9> kVariants = {{{"", ""},
                                                                              {"", "_BLACKWHITE"},
                                                                              {"HDR_", ""},
                                                                              {"HDR_", "_BLACKWHITE"},
                                                                              {"WDR_", ""},
                                                                              {"WDR_", "_BLACKWHITE"},
                                                                              {"", "_NIGHT"},
                                                                              {"HDR_", "_NIGHT"},
                                                                              {"WDR_", "_NIGHT"}}};
    if (type >= 0 && type < 12) {
        return std::string("PARAM_") + kBase[static_cast<size_t>(type)];
    }
    if (type >= 12 && type < PARAM_TABLE_TYPE_NUM) {
        const auto scene = static_cast<size_t>(type - 12) / 9;
        const auto variant = static_cast<size_t>(type - 12) % 9;
        return std::string("PARAM_") + kVariants[variant][0] + kScenes[scene] + kVariants[variant][1];
    }
    if (type == PARAM_TABLE_TYPE_NUM) {
        return "PARAM_TABLE_TYPE_NUM";
    }
    return "PARAM_<invalid " + std::to_string(type) + ">";
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

int32_t paramFileChecksum(const uint8_t* header104, const uint8_t* block, size_t blockSize) {
    uint32_t sum = 0;
    for (size_t i = 0; i < kHeaderBytes; i += 4) {
        sum ^= getWord(header104 + i);
    }
    for (size_t i = 0; i + 4 <= blockSize; i += 4) {
        sum ^= getWord(block + i);
    }
    return static_cast<int32_t>(sum);
}

ParamFileBuilder::ParamFileBuilder()
    : ver_(ISPDSP_PARAM_FILE_VERSION),
      subVer_(1.0f),
      dateTime_("2024-05-17 09:30:00"),
      archName_("ISPDSP-SOC"),
      pdtName_("IPC-NIR-FUSION") {}

ParamFileBuilder& ParamFileBuilder::version(float ver) {
    ver_ = ver;
    return *this;
}
ParamFileBuilder& ParamFileBuilder::subVersion(float subVer) {
    subVer_ = subVer;
    return *this;
}
ParamFileBuilder& ParamFileBuilder::dateTime(std::string_view text) {
    dateTime_ = std::string(text.substr(0, kTextBytes));
    return *this;
}
ParamFileBuilder& ParamFileBuilder::archName(std::string_view text) {
    archName_ = std::string(text.substr(0, kTextBytes));
    return *this;
}
ParamFileBuilder& ParamFileBuilder::productName(std::string_view text) {
    pdtName_ = std::string(text.substr(0, kTextBytes));
    return *this;
}

ParamFileBuilder& ParamFileBuilder::addTable(int32_t type) {
    return addTable(type, makeDefaultParamTable(static_cast<uint32_t>(type)));
}

ParamFileBuilder& ParamFileBuilder::addTable(int32_t type, const CFG_DspIspCfgParam& table) {
    putWord(entries_, static_cast<uint32_t>(type));
    const auto* bytes = reinterpret_cast<const uint8_t*>(&table);
    const size_t start = entries_.size();
    entries_.insert(entries_.end(), bytes, bytes + sizeof table);
    for (const Gap& g : kTablePadding) {
        std::fill(entries_.begin() + static_cast<ptrdiff_t>(start + g.begin),
                  entries_.begin() + static_cast<ptrdiff_t>(start + g.end), uint8_t{0});
    }
    return *this;
}

ParamFileBuilder& ParamFileBuilder::rawBlock(std::vector<uint8_t> bytes) {
    rawBlock_ = std::move(bytes);
    return *this;
}
ParamFileBuilder& ParamFileBuilder::sizeWordOverride(uint32_t size) {
    sizeWord_ = size;
    return *this;
}
ParamFileBuilder& ParamFileBuilder::checksumOverride(int32_t chksum) {
    chksumOverride_ = chksum;
    return *this;
}
ParamFileBuilder& ParamFileBuilder::corruptChecksum(uint32_t mask) {
    chksumMask_ = mask;
    return *this;
}
ParamFileBuilder& ParamFileBuilder::trailingBytes(std::vector<uint8_t> bytes) {
    trailing_ = std::move(bytes);
    return *this;
}

std::vector<uint8_t> ParamFileBuilder::headerBytes() const {
    std::vector<uint8_t> out;
    out.reserve(kHeaderBytes);
    putWord(out, floatBits(ver_));
    putText(out, dateTime_);
    putWord(out, floatBits(subVer_));
    putText(out, archName_);
    putText(out, pdtName_);
    return out;
}

std::vector<uint8_t> ParamFileBuilder::blockBytes() const { return rawBlock_ ? *rawBlock_ : entries_; }

int32_t ParamFileBuilder::checksum() const {
    const std::vector<uint8_t> header = headerBytes();
    const std::vector<uint8_t> block = blockBytes();
    return paramFileChecksum(header.data(), block.data(), block.size());
}

std::vector<uint8_t> ParamFileBuilder::build() const {
    std::vector<uint8_t> out = headerBytes();
    const std::vector<uint8_t> block = blockBytes();
    putWord(out, sizeWord_.value_or(static_cast<uint32_t>(block.size())));
    out.insert(out.end(), block.begin(), block.end());
    const uint32_t sum = static_cast<uint32_t>(chksumOverride_.value_or(checksum())) ^ chksumMask_;
    putWord(out, sum);
    out.insert(out.end(), trailing_.begin(), trailing_.end());
    return out;
}

CFG_IspParamTable ParamFileBuilder::expectedHeader() const {
    CFG_IspParamTable h{};
    const std::vector<uint8_t> header = headerBytes();
    std::memcpy(&h, header.data(), kHeaderBytes);
    h.cfg_specParam.size = sizeWord_.value_or(static_cast<uint32_t>(blockBytes().size()));
    h.chksum = static_cast<int32_t>(static_cast<uint32_t>(chksumOverride_.value_or(checksum())) ^ chksumMask_);
    return h;
}

bool ParamFileBuilder::writeTo(const std::string& hostPath) const {
    const std::vector<uint8_t> bytes = build();
    std::FILE* file = std::fopen(hostPath.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

}  // namespace ispdsp_test

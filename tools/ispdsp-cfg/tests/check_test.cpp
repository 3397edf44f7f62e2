// check: findings with their location and severity, on seeded fields and damaged files.
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

RunResult checkImage(const TempDir& dir, const std::vector<uint8_t>& bytes) {
    const std::string path = dir.path("checked.bin");
    writeBytes(path, bytes);
    return run([&](auto& out, auto& err) { return runCheck(path, out, err); });
}

void storeWord(std::vector<uint8_t>& bytes, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes[at + static_cast<size_t>(i)] = static_cast<uint8_t>(v >> (8 * i));
}

TEST(Check, SampleIsClean) {
    TempDir dir;
    const RunResult r = checkImage(dir, serializeParamFile(sampleImage()));
    EXPECT_EQ(r.status, kExitOk) << r.out;
    EXPECT_NE(r.out.find(": 0 errors, 0 warnings\n"), std::string::npos) << r.out;
}

struct SeededField {
    int32_t type;
    const char* record;
    int step;
    const char* name;
    int64_t value;
    const char* expected;
};

class CheckSeededField : public ::testing::TestWithParam<SeededField> {};

TEST_P(CheckSeededField, IsAWarningWithTableStepAndField) {
    const SeededField& p = GetParam();
    TempDir dir;
    ParamFileImage image = sampleImage();
    setField(tableOf(image, p.type), p.record, p.step, p.name, p.value);
    const RunResult r = checkImage(dir, serializeParamFile(image));
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find(std::string("\nwarning: ") + p.expected + "\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(": 0 errors, 1 warning\n"), std::string::npos) << r.out;
}

INSTANTIATE_TEST_SUITE_P(
    Fields, CheckSeededField,
    ::testing::Values(SeededField{PARAM_TRAFFIC, "fusion", 3, "ep_delta", 0,
                                  "PARAM_TRAFFIC fusion[3].ep_delta = 0 (DSP range 1..16383)"},
                      SeededField{PARAM_FACE, "fusion", 15, "high_lum_thr", 3,
                                  "PARAM_FACE fusion[15].high_lum_thr = 3 (DSP range -256..-1)"},
                      SeededField{PARAM_MULTICOLOR, "fusion", 0, "fwmin_wt", 257,
                                  "PARAM_MULTICOLOR fusion[0].fwmin_wt = 257 (DSP range 0..256)"},
                      SeededField{PARAM_IVS, "fusion", 7, "nir_a", -2,
                                  "PARAM_IVS fusion[7].nir_a = -2 (DSP range -1..1)"},
                      SeededField{PARAM_BLACKWHITE, "ispLaeParam.windowLaeParam", -1, "gbce_level", 0,
                                  "PARAM_BLACKWHITE ispLaeParam.windowLaeParam.gbce_level = 0 (DSP range 1..10)"},
                      SeededField{PARAM_HDR_MULTICOLOR, "ispDlaeParam", -1, "window_gain", 600,
                                  "PARAM_HDR_MULTICOLOR ispDlaeParam.window_gain = 600 (DSP range 128..512)"},
                      SeededField{PARAM_WDR_MULTICOLOR, "ispYlwdrParam", -1, "hist_thr", 65536,
                                  "PARAM_WDR_MULTICOLOR ispYlwdrParam.hist_thr = 65536 (DSP range 0..65535)"},
                      SeededField{PARAM_MULTICOLOR_NIGHT, "ispFusionPlateParam", -1, "fuse_weight", -4,
                                  "PARAM_MULTICOLOR_NIGHT ispFusionPlateParam.fuse_weight = -4 (DSP range 1..100)"},
                      SeededField{PARAM_TRAFFIC_BLACKWHITE, "ispY2dParam", -1, "win_size", 1,
                                  "PARAM_TRAFFIC_BLACKWHITE ispY2dParam.win_size = 1 (DSP range 2..3)"}));

// Cuts the last entry to 100 bytes, with a size word and checksum that match the cut block.
std::vector<uint8_t> cutLastEntry(std::vector<uint8_t> bytes) {
    const size_t cut = kEntryBytes - 100;
    bytes.erase(bytes.end() - 4 - static_cast<std::ptrdiff_t>(cut), bytes.end() - 4);
    const uint32_t size = static_cast<uint32_t>(bytes.size() - kFileOverhead);
    storeWord(bytes, kHeaderBytes, size);
    storeWord(bytes, bytes.size() - 4,
              static_cast<uint32_t>(fileChecksum(bytes.data(), bytes.data() + kHeaderBytes + 4, size)));
    return bytes;
}

struct Damage {
    const char* name;
    std::function<std::vector<uint8_t>(ParamFileImage&)> make;
    std::vector<std::string> lines;  // each expected in the report
};

class CheckDamage : public ::testing::TestWithParam<Damage> {};

TEST_P(CheckDamage, IsReportedWithItsSeverity) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    const RunResult r = checkImage(dir, GetParam().make(image));
    EXPECT_EQ(r.status, kExitFindings);
    for (const std::string& line : GetParam().lines) EXPECT_NE(r.out.find(line), std::string::npos) << r.out;
}

INSTANTIATE_TEST_SUITE_P(
    Files, CheckDamage,
    ::testing::Values(
        Damage{"checksum",
               [](auto& image) {
                   auto bytes = serializeParamFile(image);
                   bytes.back() ^= 0x01;
                   return bytes;
               },
               {"\nerror: checksum 0x", " computed (the driver rejects the file)\n", ": 1 error, 0 warnings ("}},
        Damage{"incomplete entry", [](auto& image) { return cutLastEntry(serializeParamFile(image)); },
               {"\nwarning: block size 79516 is not a whole multiple of 8824: trailing incomplete entry of 100 bytes",
                "9 tables", ": 0 errors, 1 warning\n"}},
        Damage{"size word beyond the file",
               [](auto& image) {
                   auto bytes = serializeParamFile(image);
                   storeWord(bytes, kHeaderBytes, 11 * kEntryBytes);
                   return bytes;
               },
               {"error: block size 97064 exceeds the file", "error: checksum word missing"}},
        Damage{"duplicate and unknown types",
               [](auto& image) {
                   image.entries.push_back(image.entries[6]);  // a second PARAM_TRAFFIC
                   image.entries.push_back(image.entries[0]);
                   image.entries.back().type = 120;
                   setField(image.entries[10], "fusion", 2, "ep_delta", 0);
                   return serializeParamFile(image);
               },
               {"warning: entry 10: duplicate PARAM_TRAFFIC (first at entry 6; the driver uses the later one)",
                "warning: entry 11: table type 120 is outside 0..119",
                "warning: PARAM_TRAFFIC (entry 10) fusion[2].ep_delta = 0"}},
        Damage{"version and padding",
               [](auto& image) {
                   image.header.verBits = 0x47A21281;  // 82981.0078125, the next float
                   image.entries[2].bytes[8817] = 1;
                   return serializeParamFile(image);
               },
               {"error: header ver = 82981.01 (the driver reads version 82981 only: it rejects the file)",
                "warning: PARAM_HDR_MULTICOLOR padding byte at table offset 8817 = 0x01"}},
        Damage{"too short", [](auto&) { return std::vector<uint8_t>(112, 0); },
               {"error: ", "112 bytes long", ": 1 error, 0 warnings\n"}}),
    [](const auto& info) {
        std::string name = info.param.name;
        for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        return name;
    });

// The padding the codecs zero is exactly the records' padding bytes.
TEST(FieldTable, PaddingIsTheRecordsPadding) {
    std::vector<size_t> padding;
    for (size_t i = 0; i < kTableBytes; ++i) {
        if (paddingMask()[i]) padding.push_back(i);
    }
    const size_t lae = offsetof(CFG_DspIspCfgParam, ispLaeParam);
    const size_t dlae = offsetof(CFG_DspIspCfgParam, ispDlaeParam);
    const size_t y2d = offsetof(CFG_DspIspCfgParam, ispY2dParam);
    std::vector<size_t> expected = {lae + 7,  lae + 13, lae + 19, 8738, 8739, 8758, 8759,
                                    y2d + 13, dlae + 1, dlae + 7, 8817, 8818, 8819};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(padding, expected);
}

}  // namespace

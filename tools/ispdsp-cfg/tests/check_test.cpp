// check: findings with their location, and the structural faults of a damaged file.
#include <gtest/gtest.h>

#include "commands.h"
#include "field_table.h"
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
    EXPECT_NE(r.out.find("0 warnings"), std::string::npos);
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

TEST_P(CheckSeededField, IsReportedWithTableStepAndField) {
    const SeededField& p = GetParam();
    TempDir dir;
    ParamFileImage image = sampleImage();
    setField(tableOf(image, p.type), p.record, p.step, p.name, p.value);
    const RunResult r = checkImage(dir, serializeParamFile(image));
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find(std::string("warning: ") + p.expected + "\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(" 1 warning\n"), std::string::npos) << r.out;
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

TEST(Check, BadChecksumIsReported) {
    TempDir dir;
    std::vector<uint8_t> bytes = serializeParamFile(sampleImage());
    bytes.back() ^= 0x01;
    const RunResult r = checkImage(dir, bytes);
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("error: checksum 0x"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("the driver rejects the file"), std::string::npos);
}

TEST(Check, TruncatedBlockReportsTheIncompleteEntry) {
    TempDir dir;
    const ParamFileImage image = sampleImage();
    std::vector<uint8_t> bytes = serializeParamFile(image);
    // Cut the last entry to 100 bytes, with a size word and checksum that match the cut block.
    const size_t cut = kEntryBytes - 100;
    bytes.erase(bytes.end() - 4 - static_cast<std::ptrdiff_t>(cut), bytes.end() - 4);
    const uint32_t size = static_cast<uint32_t>(image.entries.size() * kEntryBytes - cut);
    storeWord(bytes, kHeaderBytes, size);
    storeWord(bytes, bytes.size() - 4,
              static_cast<uint32_t>(fileChecksum(bytes.data(), bytes.data() + kHeaderBytes + 4, size)));
    const RunResult r = checkImage(dir, bytes);
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("is not a whole multiple of 8824: trailing incomplete entry of 100 bytes"), std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("9 tables"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("checksum"), std::string::npos) << r.out;  // the checksum itself is right
}

TEST(Check, SizeWordBeyondTheFileIsReported) {
    TempDir dir;
    std::vector<uint8_t> bytes = serializeParamFile(sampleImage());
    storeWord(bytes, kHeaderBytes, 11 * kEntryBytes);
    const RunResult r = checkImage(dir, bytes);
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("exceeds the file"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("checksum word missing"), std::string::npos) << r.out;
}

TEST(Check, DuplicateAndUnknownTypesAreReported) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    image.entries.push_back(image.entries[6]);  // a second PARAM_TRAFFIC
    TableEntry invalid = image.entries[0];
    invalid.type = 120;
    image.entries.push_back(invalid);
    setField(image.entries[10], "fusion", 2, "ep_delta", 0);
    const RunResult r = checkImage(dir, serializeParamFile(image));
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("entry 10: duplicate PARAM_TRAFFIC (first at entry 6; the driver uses the later one)"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("entry 11: table type 120 is outside 0..119"), std::string::npos) << r.out;
    // Findings inside a repeated type name the entry.
    EXPECT_NE(r.out.find("PARAM_TRAFFIC (entry 10) fusion[2].ep_delta = 0"), std::string::npos) << r.out;
}

TEST(Check, WrongVersionAndPaddingAreReported) {
    TempDir dir;
    ParamFileImage image = sampleImage();
    image.header.verBits = 0x47A21281;  // 82981.0078125, the next float
    image.entries[2].bytes[8817] = 1;
    const RunResult r = checkImage(dir, serializeParamFile(image));
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("error: header ver = 82981.01 (the driver reads version 82981 only: it rejects the file)"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("PARAM_HDR_MULTICOLOR padding byte at table offset 8817 = 0x01"), std::string::npos);
}

TEST(Check, FileTooShortForAHeaderIsAFinding) {
    TempDir dir;
    const RunResult r = checkImage(dir, std::vector<uint8_t>(112, 0));
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("112 bytes long"), std::string::npos) << r.out;
}

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

// diff: header fields, tables present in one file only, changed fields and curves.
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

RunResult diffImages(const TempDir& dir, const ParamFileImage& a, const ParamFileImage& b) {
    writeBytes(dir.path("a.bin"), serializeParamFile(a));
    writeBytes(dir.path("b.bin"), serializeParamFile(b));
    return run([&](auto& out, auto& err) { return runDiff(dir.path("a.bin"), dir.path("b.bin"), out, err); });
}

TEST(Diff, IdenticalFilesHaveNoDifferences) {
    TempDir dir;
    const RunResult r = diffImages(dir, sampleImage(), sampleImage());
    EXPECT_EQ(r.status, kExitOk);
    EXPECT_EQ(r.out, "no differences\n");
}

TEST(Diff, FindsAChangedFieldByTableAndField) {
    TempDir dir;
    const ParamFileImage a = sampleImage();
    ParamFileImage b = a;
    TableEntry& traffic = tableOf(b, PARAM_TRAFFIC);
    const int64_t before = getField(traffic, "fusion", 3, "ep_delta");
    setField(traffic, "fusion", 3, "ep_delta", before + 5);
    setField(tableOf(b, PARAM_FACE), "ispLaeParam.plateLaeParam", -1, "nf_level", 77);
    const RunResult r = diffImages(dir, a, b);
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("PARAM_TRAFFIC fusion[3].ep_delta: " + std::to_string(before) + " -> " +
                         std::to_string(before + 5) + "\n"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("PARAM_FACE ispLaeParam.plateLaeParam.nf_level: 40 -> 77\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("3 differences"), std::string::npos) << r.out;  // the two fields and the checksum
}

TEST(Diff, ReportsHeaderCurvesAndTablesInOneFileOnly) {
    TempDir dir;
    ParamFileImage a = sampleImage();
    ParamFileImage b = a;
    b.header.pdtName = {'n', 'e', 'w'};
    b.entries.erase(b.entries.begin() + 8);  // PARAM_FACE
    TableEntry extra = a.entries[0];
    extra.type = PARAM_EVENT;
    b.entries.push_back(extra);
    b.entries[0].bytes[kFusionOffset + 2 * kStepBytes + kNirOffset + 100] ^= 0x10;
    const RunResult r = diffImages(dir, a, b);
    EXPECT_EQ(r.status, kExitFindings);
    EXPECT_NE(r.out.find("header.pdtName: \"dual-sensor-nir-bullet\" -> \"new\""), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("only in " + dir.path("a.bin") + ": PARAM_FACE"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("only in " + dir.path("b.bin") + ": PARAM_EVENT"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("PARAM_MULTICOLOR fusion[2].w_nir: 1 of 511 points differ (first [100]"), std::string::npos)
        << r.out;
}

}  // namespace

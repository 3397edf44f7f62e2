// diff: header fields, tables present in one file only, changed fields and curves.
// (Checksums: command_table_test.cpp.)
#include <gtest/gtest.h>

#include "commands.h"
#include "ispdsp/param_table.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

RunResult diffFiles(const TempDir& dir, const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    writeBytes(dir.path("a.bin"), a);
    writeBytes(dir.path("b.bin"), b);
    return run([&](auto& out, auto& err) { return runDiff(dir.path("a.bin"), dir.path("b.bin"), out, err); });
}

TEST(Diff, NamesTheTableAndFieldOfEachChange) {
    TempDir dir;
    ParamFileImage a = sampleImage();
    setField(tableOf(a, PARAM_TRAFFIC), "fusion", 3, "ep_delta", 700);
    ParamFileImage b = a;
    setField(tableOf(b, PARAM_TRAFFIC), "fusion", 3, "ep_delta", 705);
    setField(tableOf(b, PARAM_FACE), "ispLaeParam.plateLaeParam", -1, "nf_level", 77);
    b.header.pdtName = {'n', 'e', 'w'};
    b.entries.erase(b.entries.begin() + 8);  // PARAM_FACE
    b.entries.push_back(a.entries[0]);
    b.entries.back().type = PARAM_EVENT;
    b.entries[0].bytes[kFusionOffset + 2 * kStepBytes + kNirOffset + 100] ^= 0x10;
    const RunResult r = diffFiles(dir, serializeParamFile(a), serializeParamFile(b));
    EXPECT_EQ(r.status, kExitFindings);
    for (const std::string& line :
         {std::string("PARAM_TRAFFIC fusion[3].ep_delta: 700 -> 705\n"),
          std::string("header.pdtName: \"dual-sensor-nir-bullet\" -> \"new\"\n"),
          "only in " + dir.path("a.bin") + ": PARAM_FACE\n", "only in " + dir.path("b.bin") + ": PARAM_EVENT\n",
          std::string("PARAM_MULTICOLOR fusion[2].w_nir: 1 of 511 points differ (first [100]")}) {
        EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
    }
}

}  // namespace

// The JSON output of every bundled scenario, compared line by line with the
// golden file committed under tests/golden/. The driver's source line numbers
// inside log lines ("(function|123)"), the library's file name (it carries
// the build's version) and the absolute input paths (they name the checkout) are masked, so editing the library's
// sources does not disturb the comparison; anything else that changes what reaches the DSP does.
//
// After a deliberate change (driver messages, sample data, scenarios),
// regenerate the golden files and review the diff:
//   cmake --build <build dir> --target ispdsp-sim-golden
// or for one scenario (from the source folder):
//   <build dir>/tools/ispdsp-sim/ispdsp-sim --json --no-progress data/sample/scenarios/gain_sweep.json
//       -o tools/ispdsp-sim/tests/golden/gain_sweep.jsonl
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "sim_runner.h"

namespace {

using simtest::Json;

std::vector<std::string> maskedLines(const std::string& text) {
    static const std::regex sourceLine(R"(\|[0-9]+\))");
    static const std::regex libraryName(R"("library":"[^"]*")");
    static const std::regex paths(R"("paths":\{[^}]*\})");
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        lines.push_back(std::regex_replace(
            std::regex_replace(std::regex_replace(line, sourceLine, "|#)"), libraryName, R"("library":"#")"), paths,
            R"("paths":"#")"));
    return lines;
}

class ScenarioGolden : public testing::TestWithParam<const char*> {};

TEST_P(ScenarioGolden, JsonOutputMatchesTheGoldenFile) {
    const std::string name = GetParam();
    const simtest::SimResult run = simtest::runSim({"--json", "--no-progress", simtest::scenarioPath(name)});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<Json> events = simtest::parseLines(run.out);
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front()["event"], "run");
    EXPECT_EQ(events.back()["event"], "end");

    const std::string goldenPath = std::string(ISPDSP_SIM_GOLDEN_DIR) + "/" + name + ".jsonl";
    const std::string golden = simtest::readFile(goldenPath);
    ASSERT_FALSE(golden.empty()) << "no golden file " << goldenPath
                                 << "; create it with: cmake --build <build dir> --target ispdsp-sim-golden";
    const std::vector<std::string> expected = maskedLines(golden);
    const std::vector<std::string> actual = maskedLines(run.out);

    // A different sample parameter file explains every difference at once.
    const Json goldenRun = Json::parse(expected.front());
    ASSERT_EQ(goldenRun["tuning"], events.front()["tuning"])
        << "data/sample/dsp_isp_para.bin is not the file the golden output was made with; regenerate with "
           "cmake --build <build dir> --target ispdsp-sim-golden";

    for (size_t i = 0; i < std::min(expected.size(), actual.size()); ++i)
        ASSERT_EQ(actual[i], expected[i]) << "first difference at line " << i + 1 << " of " << goldenPath;
    EXPECT_EQ(actual.size(), expected.size()) << goldenPath;
}

INSTANTIATE_TEST_SUITE_P(Bundled, ScenarioGolden,
                         testing::Values("gain_sweep", "zoom_sweep", "day_night_hdr", "scene_change"));

}  // namespace

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
    static const std::pair<std::regex, const char*> kMasks[] = {{std::regex(R"(\|[0-9]+\))"), "|#)"},
                                                                {std::regex(R"("library":"[^"]*")"), R"("library":"#")"},
                                                                {std::regex(R"("paths":\{[^}]*\})"), R"("paths":"#")"}};
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line); lines.push_back(line))
        for (const auto& [pattern, mask] : kMasks) line = std::regex_replace(line, pattern, mask);
    return lines;
}

class ScenarioGolden : public testing::TestWithParam<const char*> {};

TEST_P(ScenarioGolden, JsonOutputMatchesTheGoldenFile) {
    const simtest::SimResult run = simtest::runSim({"--json", "--no-progress", simtest::scenarioPath(GetParam())});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string goldenPath = std::string(ISPDSP_SIM_GOLDEN_DIR) + "/" + GetParam() + ".jsonl";
    const std::vector<std::string> expected = maskedLines(simtest::readFile(goldenPath));
    const std::vector<std::string> actual = maskedLines(run.out);
    ASSERT_FALSE(expected.empty() || actual.empty()) << "no golden file " << goldenPath << " or no output";
    // A different sample parameter file explains every difference at once.
    ASSERT_EQ(Json::parse(expected.front())["tuning"], Json::parse(actual.front())["tuning"])
        << "data/sample/dsp_isp_para.bin is not the file the golden output was made with; regenerate";
    for (size_t i = 0; i < std::min(expected.size(), actual.size()); ++i)
        ASSERT_EQ(actual[i], expected[i]) << "first difference at line " << i + 1 << " of " << goldenPath;
    EXPECT_EQ(actual.size(), expected.size()) << goldenPath;
}

INSTANTIATE_TEST_SUITE_P(Bundled, ScenarioGolden,
                         testing::Values("gain_sweep", "zoom_sweep", "day_night_hdr", "scene_change"));

}  // namespace

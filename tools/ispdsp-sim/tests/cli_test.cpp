// The command line as a user meets it: every case is (arguments, scenario text) -> (exit
// status, a fragment of stderr or stdout). In the arguments, {tmp} is a fresh folder, {sample}
// the sample data, {scenario} the gain sweep. Then what the table cannot show: a tuning file
// the driver refuses, SIGHUP during a run, the installed tool.
#include <gtest/gtest.h>

#include "sim_runner.h"

namespace {

using namespace std::string_literals;
using simtest::Json;

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string expand(const std::string& arg, const simtest::TempDir& tmp) {
    return tooltest::expand(arg, {{"{tmp}", tmp.path("")},
                                  {"{sample}", simtest::samplePath("")},
                                  {"{scenario}", simtest::scenarioPath("gain_sweep")}});
}

struct CliCase {
    std::vector<std::string> args;
    int status;
    std::string text;                // expected in stderr or stdout
    const char* scenario = nullptr;  // text of {tmp}s.json, for scenario errors
};

// A scenario with an error: the message names the file, the line and column, and the place.
CliCase bad(const char* text, const std::string& where) {
    return {{"{tmp}s.json"}, 2, "ispdsp-sim: error: {tmp}s.json" + where, text};
}

// clang-format off
const CliCase kCases[] = {
    {{"{tmp}"}, 2, "ispdsp-sim: error: {tmp}: is a directory, not a file"},
    {{"--tuning", "{tmp}", "{scenario}"}, 2, "--tuning {tmp}: is a directory, not a file"},
    {{"--tuning", "{tmp}no.bin"}, 2, "--tuning {tmp}no.bin: cannot open: No such file"},
    {{"--rlr", "{sample}dsp_isp_para.bin"}, 2, "--rlr {sample}dsp_isp_para.bin: seems to be an ISP parameter file, not an RLR table file"},
    {{"--tuning", "{sample}tuning.json"}, 2, "seems to be JSON text, not an ISP parameter file"},
    {{"--calibration", "{sample}nir.txt"}, 2, "seems to be NIR curve text"},
    {{"--console-every", "0"}, 2, "'0' is not a whole number from 1 to 1000000"},
    {{"--frames", "-1"}, 2, "from 0 to 1000000"},
    {{"--pipe", "left"}, 2, "ispdsp-sim: error: --pipe: 'left' is not one of color, mono"},
    // An output is never an input, and replaces an existing file only with --force.
    {{"{tmp}s.json", "-o", "{tmp}s.json"}, 2, "-o {tmp}s.json: is the input file {tmp}s.json; not overwritten", "{}"},
    {{"{tmp}s.json", "--save-tuning", "{tmp}s.json", "--force"}, 2, "--save-tuning {tmp}s.json: is the input file", "{}"},
    {{"--frames", "0", "-o", "{tmp}s.json"}, 2, "-o {tmp}s.json: exists; not replaced (--force replaces it)", "{}"},
    {{"--frames", "0", "-o", "{tmp}s.json", "--force"}, 0, "", "{}"},
    {{"--frames", "1", "-o", "/dev/full"}, 1, "cannot write the results: /dev/full: write failed: No space left on device"},
    {{"--frames", "0", "--json", "-o", "-"}, 0, "{\"event\":\"run\""},
    {{"--version"}, 0, "ispdsp-sim "},
    {{"--lib", "{tmp}libispdsp.so"}, 1, "cannot load the driver library {tmp}libispdsp.so: "},
    {{"--lib", "libm.so.6"}, 1, "does not export DRV_dspIspCreateX"},
    {{"--rlr", "--frames", "0"}, 0, "write /mnt/mtd/3A/rlr_para.bin rlr cfg OK"},
    bad("{\n  \"frames\": 3,\n  \"defaults\": {\"gain\": 2,}\n}\n", ":3:26: syntax error"),
    bad("{\n  \"segments\": [\n", ":3:1: syntax error"),
    bad("", ": is empty"),
    bad(R"({"segments": [{"frames": 2}, {"frames": 3, "mono": {"gain": 17}}]})", ":1:61: segments[1] (frames 2-4): field 'mono.gain': 17 is outside 0..15"),
    bad(R"({"keyframes": [{"frame": 0}, {"frame": 4, "imageScene": "parking"}]})", ":1:57: keyframes[1] (frame 4): field 'imageScene': unknown name \"parking\""),
    bad(R"({"keyframes": [{"frame": 0, "zom": 1}]})", ":1:16: keyframes[0] (frame 0): unknown field 'zom'"),
    bad(R"({"keyframes": [{"frame": 3}, {"frame": 1}]})", ":1:30: keyframes[1] (frame 1): keyframes must be in ascending frame order"),
    bad(R"({"keyframes": [{"frame": 0, "gain": {"from": 0, "to": 3}}]})", ":1:37: keyframes[0] (frame 0): field 'gain': ramps"),
    bad(R"({"defaults": {"gain": 2, "interCoff": 0.5}})", ":1:23: defaults: field 'gain' cannot stand beside"),
    bad(R"({"segments": [{"frames": 1, "zoom": 1.5}]})", ":1:37: segments[0] (frame 0): field 'zoom': expected a whole number"),
    bad(R"({"defaults": {"zoom": 3e9}})", ":1:23: defaults: field 'zoom': 3000000000.0 is outside -2147483648..2147483647"),
    bad(R"({"frames": 1e400})", ":1:12: the number '1e400' is too large"),
    bad(R"({"segments": [{"frames": 2}, {"gain": 1}]})", ":1:30: segments[1] (from frame 2): missing field 'frames'"),
};
// clang-format on

TEST(Cli, ExitStatusAndMessage) {
    for (const CliCase& c : kCases) {
        simtest::TempDir tmp;
        if (c.scenario != nullptr) tmp.write("s.json", std::string(c.scenario));
        std::vector<std::string> args;
        for (const std::string& arg : c.args) args.push_back(expand(arg, tmp));
        const simtest::SimResult run = simtest::runSim(args);
        EXPECT_EQ(run.status, c.status) << c.args[0] << "\n" << run.err;
        EXPECT_TRUE(contains(run.err + run.out, expand(c.text, tmp))) << c.text << "\n" << run.err;
        EXPECT_FALSE(std::filesystem::exists(tmp.path("-")));
    }
}

TEST(Errors, BadTuningFileShowsTheDriversLog) {
    simtest::TempDir dir;
    // The sample cut short: its checksum and block no longer hold.
    const std::string tuning =
        dir.write("cut.bin", simtest::readFile(simtest::samplePath("dsp_isp_para.bin")).substr(0, 5000));
    const simtest::SimResult run = simtest::runSim({"--json", "--tuning", tuning, simtest::scenarioPath("gain_sweep")});
    EXPECT_EQ(run.status, 1);
    for (const std::string& part : {std::string("DRV_dspIspCreateX returned -1"),
                                    std::string("DRV_ispCfgLoad /var/tmp/0/dsp_isp_para.bin failed!"),
                                    "check the tuning file " + tuning})
        EXPECT_TRUE(contains(run.err, part)) << run.err;
    // The results stream stays JSON and ends with the error and the summary.
    const std::vector<Json> events = simtest::parseLines(run.out);
    EXPECT_EQ(simtest::eventsOf(events, "error").size(), 1u);
    EXPECT_TRUE(simtest::eventsOf(events, "frame").empty());
    EXPECT_EQ(events.back()["event"], "end");
}

// A closed terminal (SIGHUP) while the console waits: the run stops like on Ctrl-C, says so at
// its end, and the temporary sandbox (under TMPDIR) is gone.
TEST(Signals, HangUpRemovesTheSandbox) {
    simtest::TempDir tmp;
    const std::string script =
        tmp.write("hup.sh",
                  // The console waits on a FIFO that the script holds open, so the simulator is
                  // the script's own child and the signal, not the end of its input, stops it.
                  "export TMPDIR=\"$1\"; mkfifo \"$1/in\"\n"
                  "\"$2\" --console --frames 1 --json -o \"$1/out\" <\"$1/in\" >/dev/null 2>&1 & sim=$!; exec 3>\"$1/in\"\n"
                  "for i in $(seq 100); do ls \"$1\" | grep -q ispdsp-sim- && break; sleep 0.1; done\n"
                  "sleep 0.5; kill -HUP $sim; wait $sim; echo $? >\"$1/status\"; exec 3>&-; rm \"$1/in\" \"$1/hup.sh\"\n"s);
    ASSERT_EQ(std::system(("bash '" + script + "' '" + tmp.path("") + "' '" + ISPDSP_SIM_EXE + "'").c_str()), 0);
    EXPECT_EQ(simtest::readFile(tmp.path("status")), "130\n");
    EXPECT_EQ(simtest::parseLines(simtest::readFile(tmp.path("out"))).back()["interrupted"], "SIGHUP");
    std::filesystem::remove(tmp.path("status"));
    std::filesystem::remove(tmp.path("out"));
    EXPECT_TRUE(std::filesystem::is_empty(tmp.path(""))) << "a sandbox is left";
}

// Bytes from a file reach the terminal escaped: a product name holding ESC [ 3 1 m and BEL, as
// the driver logs it, in the table and in JSON lines.
TEST(Printable, ControlBytesFromTheTuningFileAreEscaped) {
    simtest::TempDir tmp;
    std::string source = simtest::readFile(simtest::samplePath("tuning.json"));
    source.replace(source.find("\"dual-sensor-nir-bullet\""), 24, R"({"hex": "411b5b33316d0742"})");
    const std::string build = simtest::quote(ISPDSP_CFG_EXE) + " build " + tmp.write("t.json", source) + " -o " +
                              tmp.path("t.bin");
    ASSERT_EQ(tooltest::runShell(build).status, 0);
    for (const char* format : {"--curves", "--json"}) {
        const simtest::SimResult run = simtest::runSim({format, "--frames", "1", "--tuning", tmp.path("t.bin")});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out.find_first_of("\x1b\x07"), std::string::npos) << format;
        EXPECT_TRUE(contains(run.out, "x1B[31m")) << format;  // JSON doubles the backslash
    }
}

// The installed tool stands alone: install, copy the prefix elsewhere, remove the original,
// run the copy from another folder. Every input it reports must come from the copy.
TEST(Install, InstalledToolUsesItsOwnSampleData) {
    simtest::TempDir tmp;
    for (const char* component : {"runtime", "host"}) {
        const std::string install = std::string("'") + ISPDSP_CMAKE_COMMAND + "' --install '" + ISPDSP_BUILD_ROOT +
                                    "' --prefix '" + tmp.path("staged") + "' --component " + component + " >/dev/null";
        ASSERT_EQ(std::system(install.c_str()), 0) << install;
    }
    std::filesystem::copy(tmp.path("staged"), tmp.path("moved"),
                          std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
    std::filesystem::remove_all(tmp.path("staged"));
    const std::string command = "cd '" + tmp.path("") + "' && moved/bin/ispdsp-sim --json --frames 2 --rlr >out.jsonl";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::vector<Json> events = simtest::parseLines(simtest::readFile(tmp.path("out.jsonl")));
    ASSERT_FALSE(events.empty());
    const Json& paths = events.front()["paths"];
    EXPECT_EQ(paths.size(), 6u) << paths.dump();  // scenario, library, tuning, calibration, nir, rlr
    for (const auto& [name, path] : paths.items())
        EXPECT_EQ(path.get<std::string>().rfind(tmp.path("moved/"), 0), 0u) << name << " " << path;
    EXPECT_EQ(events.back()["failedCalls"], 0);
}

}  // namespace

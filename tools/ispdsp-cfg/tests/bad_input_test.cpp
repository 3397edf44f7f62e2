// Every subcommand against every kind of bad input, through the executable: the exit status
// (0 ok, 1 errors or warnings in the input, 2 the command could not do its work) and the one
// line that says what is wrong. No input ends the tool on an exception.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "commands.h"
#include "tool_test_support.h"

namespace {

using namespace ispcfg;
using namespace ispcfg_test;

struct BadInput {
    std::string args;  // {d} is the test folder, {s} the sample folder
    int status;
    std::string line;      // expected in standard output or error
    std::string stdoutTo;  // "" captures it
};

std::string expand(std::string text, const TempDir& dir) {
    for (auto [key, value] : {std::pair<std::string, std::string>{"{d}", dir.path("")}, {"{s}", sampleDir() + "/"}}) {
        for (size_t at; (at = text.find(key)) != std::string::npos;) text.replace(at, key.size(), value);
    }
    return text;
}

// The inputs: a good file and source, a folder, damaged files, files of other kinds.
void prepare(const TempDir& dir) {
    std::filesystem::create_directory(dir.path("folder"));
    const std::vector<uint8_t> good = serializeParamFile(sampleImage());
    writeBytes(dir.path("s.bin"), good);
    writeText(dir.path("s.json"), readText(sampleSourcePath()));
    std::vector<uint8_t> bad = good;
    bad.back() ^= 0x80;
    writeBytes(dir.path("bad.bin"), bad);
    writeBytes(dir.path("cut.bin"), std::vector<uint8_t>(good.begin(), good.begin() + 5000));
    writeText(dir.path("empty.json"), "{\"tables\": []}");
    writeText(dir.path("zero"), "");
    writeText(dir.path("notes.txt"), "tuning notes\n");
    std::vector<uint8_t> junk(300);
    for (size_t i = 0; i < junk.size(); ++i) junk[i] = static_cast<uint8_t>(i * 7);
    writeBytes(dir.path("junk.bin"), junk);
}

const char* const kFolder = "is a directory, not a file";
const char* const kRejected = "computed (the driver rejects the file)";
const char* const kFull = "error: standard output: write failed";

const BadInput kCases[] = {
    {"check {d}folder", 2, kFolder},
    {"dump {d}folder", 2, kFolder},
    {"select {d}folder", 2, kFolder},
    {"plot {d}folder --table PARAM_FACE -o {d}x.svg", 2, kFolder},
    {"diff {d}s.bin {d}folder", 2, kFolder},
    {"build {d}folder -o {d}x.bin", 2, kFolder},
    {"check {d}missing.bin", 2, "error: {d}missing.bin: cannot open: No such file or directory"},
    {"dump {d}s.bin/x", 2, "error: {d}s.bin/x: cannot open: Not a directory"},
    {"check {s}tuning.json", 2, "error: {s}tuning.json: seems to be JSON text, not an ISP parameter file"},
    {"dump {s}rlr_para.bin", 2, "seems to be an RLR table file, not an ISP parameter file"},
    {"select {s}calibration.txt", 2, "seems to be calibration text, not an ISP parameter file"},
    {"diff {s}nir.txt {d}s.bin", 2, "seems to be NIR curve text, not an ISP parameter file"},
    {"plot {d}zero --table PARAM_FACE -o {d}x.svg", 2, "error: {d}zero: is empty, not an ISP parameter file"},
    {"check {d}notes.txt", 2, "seems to be text, not an ISP parameter file"},
    {"check {d}junk.bin", 2, "seems to be binary data of no known kind, not an ISP parameter file"},
    {"build {d}s.bin -o {d}x.bin", 2, "seems to be an ISP parameter file, not JSON text"},
    {"check {d}bad.bin", 1, "\nerror: checksum 0x"},
    {"plot {d}bad.bin --table PARAM_FACE -o {d}x.svg", 1, kRejected},
    {"select {d}bad.bin", 1, "the driver loads no table set from this file, so it chooses no table"},
    {"diff {d}bad.bin {d}s.bin", 1, kRejected},
    {"dump {d}cut.bin", 1, "error: {d}cut.bin: block size 88240 exceeds the file"},
    {"check {d}cut.bin", 1, "(the driver rejects the file)\n"},
    {"plot {d}s.bin --table PARAM_NOPE -o {d}x.svg", 2, "\"PARAM_NOPE\" is not a PARAM_TABLE_TYPE name"},
    {"plot {d}s.bin --table PARAM_EVENT -o {d}x.svg", 2, "has no PARAM_EVENT table"},
    {"build {d}empty.json -o {d}x.bin", 2, "not written: the block holds no tables"},
    {"build {d}s.json -o {d}s.json", 2, "error: {d}s.json: is the input file {d}s.json; not overwritten"},
    {"dump {d}s.bin", 2, kFull, "/dev/full"},
    {"check {d}s.bin", 2, kFull, "/dev/full"},
    {"select {d}s.bin --all", 2, kFull, "/dev/full"},
    {"build {d}s.json -o -", 2, kFull, "/dev/full"},
    {"dump {d}s.bin -o /dev/full", 2, "error: /dev/full: write failed: No space left on device"},
    {"", 2, "A subcommand is required"},
    {"build {d}s.json", 2, "--output is required"},
    {"select {d}s.bin --all --dnc 0", 2, "--all excludes --dnc"},
    {"--version", 0, "ispdsp-cfg " ISPDSP_VERSION "\n"},
    {"--help", 0, "Exit status, for every command:"},
};

TEST(BadInput, EachCommandSaysWhatIsWrongAndExitsByTheRule) {
    TempDir dir;
    prepare(dir);
    for (const BadInput& c : kCases) {
        const RunResult r = runExe(expand(c.args, dir), c.stdoutTo);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
        EXPECT_NE((r.out + r.err).find(expand(c.line, dir)), std::string::npos) << c.args << "\n" << r.out << r.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir.path("x.bin")));  // nothing the driver rejects is written
    EXPECT_EQ(readText(dir.path("s.json")), readText(sampleSourcePath()));
}

// Damaged parameter files of every length, in process: each command answers with a status.
TEST(BadInput, DamagedFilesNeverThrow) {
    TempDir dir;
    const std::vector<uint8_t> good = serializeParamFile(sampleImage());
    std::mt19937 rng(12);
    for (int round = 0; round < 40; ++round) {
        std::vector<uint8_t> bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(rng() % good.size()));
        for (int flips = 0; flips < 4 && !bytes.empty(); ++flips) bytes[rng() % bytes.size()] ^= 1u << (rng() % 8);
        const std::string path = dir.path("damaged.bin");
        writeBytes(path, bytes);
        for (const auto& command : std::vector<std::function<int(std::ostream&, std::ostream&)>>{
                 [&](auto& o, auto& e) { return runCheck(path, o, e); },
                 [&](auto& o, auto& e) { return runDump({path, dir.path("d.json")}, o, e); },
                 [&](auto& o, auto& e) { return runDiff(path, path, o, e); },
                 [&](auto& o, auto& e) { return runSelect({path, true, {}}, o, e); },
                 [&](auto& o, auto& e) { return runPlot({path, "PARAM_MULTICOLOR", dir.path("p.svg")}, o, e); }}) {
            int status = -1;
            EXPECT_NO_THROW(status = run(command).status) << "length " << bytes.size();
            EXPECT_TRUE(status >= 0 && status <= 2) << status;
        }
    }
}

}  // namespace

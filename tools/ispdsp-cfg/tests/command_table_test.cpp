// Every subcommand against good, damaged and wrong inputs, through the executable: the exit
// status (0 ok, 1 errors or warnings in the input, 2 the command could not do its work) and a
// line it must print. No input ends the tool on an exception.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "commands.h"
#include "tool_test_support.h"

namespace {

using namespace ispdsp::tools;
using namespace ispdsp::tools::cfg;
using namespace ispcfg_test;

struct CommandCase {
    std::string args;  // {d} is the test folder, {s} the sample folder
    int status;
    std::vector<std::string> lines;  // each expected in standard output or error
    std::string stdoutTo = {};       // empty: captured
};

std::string expand(const std::string& text, const TempDir& dir) {
    return tooltest::expand(text, {{"{d}", dir.path("")}, {"{s}", sampleDir() + "/"}});
}

// The inputs: a good file and source, a folder, damaged files, files of other kinds.
void prepare(const TempDir& dir) {
    std::filesystem::create_directory(dir.path("folder"));
    ParamFileImage image = sampleImage();
    const std::vector<uint8_t> good = serializeParamFile(image);
    auto head = [&](size_t size) { return std::vector<uint8_t>(good.begin(), good.begin() + static_cast<long>(size)); };
    // The last entry cut to 100 bytes, with a size word and checksum that match.
    std::vector<uint8_t> trail = head(good.size() - (kEntryBytes - 100)), stale = good, bad = good, junk(300);
    storeField(trail.data() + kHeaderBytes, Scalar::U32, static_cast<int64_t>(trail.size() - kFileOverhead));
    storeField(trail.data() + trail.size() - 4, Scalar::U32,
               fileChecksum(trail.data(), trail.data() + kHeaderBytes + 4, trail.size() - kFileOverhead));
    stale[200] ^= 0x01;  // contents changed, checksum kept
    bad.back() ^= 0x80;
    for (size_t i = 0; i < junk.size(); ++i) junk[i] = static_cast<uint8_t>(i * 7);
    image.entries.push_back(image.entries[6]);  // a second PARAM_TRAFFIC
    image.entries.push_back(image.entries[0]);
    image.entries.back().type = 120;
    image.header.verBits = 0x47A21281;  // 82981.0078125, the next float
    image.entries[2].bytes[8817] = 1;   // padding
    for (const auto& [name, bytes] : std::initializer_list<std::pair<const char*, std::vector<uint8_t>>>{
             {"trail.bin", trail}, {"short.bin", std::vector<uint8_t>(112, 0)}, {"odd.bin", serializeParamFile(image)},
             {"nosum.bin", head(good.size() - 2)}, {"stale.bin", stale}, {"s.bin", good}, {"bad.bin", bad},
             {"cut.bin", head(5000)}, {"junk.bin", junk}})
        dir.write(name, bytes);
    for (const auto& [name, text] : std::initializer_list<std::pair<const char*, std::string>>{
             {"s.json", readFile(sampleSourcePath())}, {"empty.json", "{\"tables\": []}"},
             {"flag.json", "{\"tables\": [{\"type\": \"PARAM_MULTICOLOR\", \"ispFusionFlag\": 1}]}"}, {"zero", ""},
             {"notes.txt", "tuning notes\n"}})
        dir.write(name, text);
    std::filesystem::create_symlink(dir.path("s.bin"), dir.path("link.bin"));
}

const char* const kRejected = "computed (the driver rejects the file)";
const char* const kFull = "error: standard output: write failed";

// clang-format off
const CommandCase kCases[] = {
    // Every command reads its inputs through one reader (the rows below show each command's use of it).
    {"check {d}folder", 2, {"is a directory, not a file"}},
    {"check {d}missing.bin", 2, {"error: {d}missing.bin: cannot open: No such file or directory"}},
    {"dump {d}s.bin/x", 2, {"error: {d}s.bin/x: cannot open: Not a directory"}},
    {"check {s}tuning.json", 2, {"error: {s}tuning.json: seems to be JSON text, not an ISP parameter file"}},
    {"dump {s}rlr_para.bin", 2, {"seems to be an RLR table file, not an ISP parameter file"}},
    {"select {s}calibration.txt", 2, {"seems to be calibration text, not an ISP parameter file"}},
    {"diff {s}nir.txt {d}s.bin", 2, {"seems to be NIR curve text, not an ISP parameter file"}},
    {"plot {d}zero --table PARAM_FACE -o {d}x.svg", 2, {"error: {d}zero: is empty, not an ISP parameter file"}},
    {"check {d}notes.txt", 2, {"seems to be text, not an ISP parameter file"}},
    {"check {d}junk.bin", 2, {"seems to be binary data of no known kind, not an ISP parameter file"}},
    {"build {d}s.bin -o {d}x.bin", 2, {"seems to be an ISP parameter file, not JSON text"}},
    {"check {d}s.bin", 0, {"{d}s.bin: 0 errors, 0 warnings\n"}},
    {"select {d}s.bin --all", 0, {"library agrees on 156 of 156 rows; 0 rows find no table"}},
    {"diff {s}dsp_isp_para.bin {d}s.bin", 0, {"no differences\n"}},
    {"select {d}s.bin --dnc 0 --hdr 4 --scene-mode 2 --image-scene 1", 0,
     {"fallback rule 0: first present entry of the preference list: PARAM_MULTICOLOR (position 0)\n", "library: row 23, PARAM_MULTICOLOR (0), agrees"}},
    {"select {d}s.bin --hdr 5 --scene-mode 2 --image-scene 4", 0, {"PARAM_HDR_IVS_NIGHT stands against PARAM_HDR_MULTICOLOR (position 70), present"}},
    {"select {d}s.bin --image-scene 3", 1, {"no map row matches this state (imageScene must be 0..13 without 3)"}},
    {"diff {d}nosum.bin {d}stale.bin", 1, {"checksum: missing -> 0x", " (does not match the contents: 0x", "error: {d}nosum.bin: checksum word missing"}},
    {"check {d}bad.bin", 1, {"\nerror: {d}bad.bin: checksum 0x", ": 1 error, 0 warnings (the driver rejects the file)\n"}},
    {"check {d}trail.bin", 1, {"\nwarning: {d}trail.bin: block size 79516 is not a whole multiple of 8824: trailing incomplete entry of 100 bytes", ": 9 tables:"}},
    {"check {d}short.bin", 1, {"error: {d}short.bin: file is 112 bytes long"}},
    {"check {d}cut.bin", 1, {"\nerror: {d}cut.bin: checksum word missing", "{d}cut.bin: no tables\n"}},
    {"check {d}odd.bin", 1, {"\nwarning: {d}odd.bin: entry 10: duplicate PARAM_TRAFFIC (first at entry 6; the driver uses the later one)\n",
                             "\nwarning: {d}odd.bin: entry 11: table type 120 is outside 0..119",
                             "\nerror: {d}odd.bin: header ver = 82981.01 (the driver reads version 82981 only: it rejects the file)\n",
                             "\nwarning: {d}odd.bin: PARAM_HDR_MULTICOLOR padding byte at table offset 8817 = 0x01"}},
    {"dump {d}odd.bin -o {d}odd.json", 1, {"error: {d}odd.bin: header ver = 82981.01"}},
    {"plot {d}bad.bin --table PARAM_FACE -o {d}x.svg", 1, {kRejected}},
    {"select {d}bad.bin", 1, {"the driver loads no table set from this file, so it chooses no table"}},
    {"diff {d}bad.bin {d}s.bin", 1, {kRejected}},
    {"dump {d}cut.bin", 1, {"error: {d}cut.bin: block size 88240 exceeds the file"}},
    {"plot {d}s.bin --table PARAM_NOPE -o {d}x.svg", 2, {"\"PARAM_NOPE\" is not a PARAM_TABLE_TYPE name"}},
    {"plot {d}s.bin --table PARAM_EVENT -o {d}x.svg", 2, {"has no PARAM_EVENT table"}},
    {"build {d}flag.json -o {d}flag.bin", 1, {"warning: {d}flag.json: PARAM_MULTICOLOR fusion[0].ep_delta = 0 (DSP range 1..16383)\n"}},
    {"dump {d}flag.bin", 0, {"\"type\": \"PARAM_MULTICOLOR\",\n      \"ispFusionFlag\": 1,\n"}},  // missing fields are 0
    {"build {d}empty.json -o {d}x.bin", 2, {"not written: the block holds no tables"}},
    {"build {d}s.json -o {d}s.json", 2, {"error: {d}s.json: is the input file {d}s.json; not overwritten"}},
    {"dump {d}s.bin", 2, {kFull}, "/dev/full"},
    {"select {d}s.bin --all", 2, {kFull}, "/dev/full"},
    {"build {d}s.json -o -", 2, {kFull}, "/dev/full"},
    {"dump {d}s.bin -o /dev/full", 2, {"error: /dev/full: write failed: No space left on device"}},
    {"", 2, {"ispdsp-cfg: error: a command is required: build, dump, check, select, diff or plot"}},
    {"bogus", 2, {"ispdsp-cfg: error: 'bogus' is not a command: build, dump, check, select, diff or plot"}},
    {"build {d}s.json", 2, {"ispdsp-cfg: error: --output is missing"}},
    {"select {d}s.bin --all --dnc 0", 2, {"--all and --dnc cannot be used together"}},
    // An output: never an input (through a link either), an existing file only with --force.
    {"build {d}s.json -o {d}s.bin", 2, {"error: {d}s.bin: exists; not replaced (--force replaces it)"}},
    {"build {d}s.json -o {d}s.bin --force", 0, {"{d}s.bin: 10 tables, 88352 bytes"}},
    {"dump {d}s.bin -o {d}link.bin --force", 2, {"error: {d}link.bin: is the input file {d}s.bin; not overwritten"}},
    {"--version", 0, {"ispdsp-cfg " ISPDSP_VERSION "\n"}},
    {"--help", 0, {"Exit status, for every command:"}},
};
// clang-format on

TEST(CommandTable, EachCommandSaysWhatIsWrongAndExitsByTheRule) {
    TempDir dir;
    prepare(dir);
    setenv("ISPDSP_ROOT", dir.path("no-such-root").c_str(), 1);  // the driver's sandbox is not for a tool's paths
    for (const CommandCase& c : kCases) {
        const RunResult r = runExe(expand(c.args, dir), c.stdoutTo);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
        for (const std::string& line : c.lines)
            EXPECT_NE((r.out + r.err).find(expand(line, dir)), std::string::npos) << c.args << "\n" << r.out << r.err;
    }
    unsetenv("ISPDSP_ROOT");
    EXPECT_FALSE(std::filesystem::exists(dir.path("x.bin")));  // nothing the driver rejects is written
    EXPECT_EQ(readFile(dir.path("s.json")), readFile(sampleSourcePath()));
}

// Damaged parameter files of every length, in process: each command answers with a status.
TEST(CommandTable, DamagedFilesNeverThrow) {
    TempDir dir;
    const std::vector<uint8_t> good = serializeParamFile(sampleImage());
    std::mt19937 rng(12);
    for (int round = 0; round < 40; ++round) {
        std::vector<uint8_t> bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(rng() % good.size()));
        for (int flips = 0; flips < 4 && !bytes.empty(); ++flips) bytes[rng() % bytes.size()] ^= 1u << (rng() % 8);
        const std::string path = dir.write("damaged.bin", bytes);
        std::ostringstream out, err;
        EXPECT_NO_THROW(for (int status : {runCheck(path, out, err), runDump({path, dir.path("d.json")}, out, err),
                                           runDiff(path, path, out, err), runSelect({path, true, {}}, out, err),
                                           runPlot({path, "PARAM_MULTICOLOR", dir.path("p.svg")}, out, err)})
                            EXPECT_TRUE(status >= 0 && status <= 2) << status)
            << "length " << bytes.size();
    }
}

}  // namespace

// Every validity check of the exported functions and operation slots, pinned at
// its last accepted and its first refused value (both ends of a two-sided
// range): one row per rule. An accepted value must have its effect and log no
// error or warning; a refused one gives the rule's result and its one line, and
// (unless the row says otherwise) changes nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "api/driver_host.h"
#include "ispdsp/ispdsp.h"
#include "support/nir_curve_text.h"

namespace {

using driver_test::ConsoleArgs;
using driver_test::HostPipe;
using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using ispdsp_test::LogLine;
using ispdsp_test::ParamFileBuilder;
using ispdsp_test::Sandbox;

struct Outcome {
    Int32 result;
    bool applied;  // the effect that an accepted value has
};

// What a refused value gives. `function` null: `line` is the whole text (lines
// without function and source line). A null `line`: no error or warning at all.
// "[Line:*] " at the start of `line` stands for the source line that some
// table functions repeat inside the text.
struct Refusal {
    Int32 result;
    LogKind kind;
    const char* function;
    std::function<std::string(int64_t)> line;
    bool touchesNothing = true;
};

struct Rule {
    std::string name;                                 // function and parameter
    std::vector<std::pair<int64_t, int64_t>> edges;   // {last valid, first invalid}
    std::function<Outcome(int64_t, Sandbox&, LogCapture&)> call;  // clears the log right before the call
    Refusal refusal;
};

std::string format(const char* pattern, int64_t a, int64_t b = 0) {
    char text[256];
    std::snprintf(text, sizeof text, pattern, static_cast<long long>(a), static_cast<long long>(b));
    return text;
}

bool matches(const LogLine& l, LogKind kind, const char* function, const std::string& message) {
    if (function == nullptr) {
        return l.level == ispdsp_test::kLogKindShapes[static_cast<int>(kind)].level && l.text == message;
    }
    static const std::string kAnyLine = "[Line:*] ";
    if (!message.starts_with(kAnyLine)) return ispdsp_test::isDriverLine(l, kind, function, message);
    const size_t at = l.text.find("): [Line:");
    const size_t close = l.text.find("] ", at == std::string::npos ? 0 : at);
    if (at == std::string::npos || close == std::string::npos) return false;
    return ispdsp_test::isDriverLine(l, kind, function, l.text.substr(at + 3, close + 2 - at - 3) + message.substr(kAnyLine.size()));
}

// ---- Gain-step indexes of the four fusion functions ----

enum class GainUser { Calculate, Set, Print, LoadCurve };

Outcome gainIndexCall(GainUser user, bool endIndex, int64_t v, Sandbox& sandbox, LogCapture& log) {
    auto records = std::make_unique<std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS>>();
    std::memset(records.get(), 0, sizeof *records);
    const auto before = *records;
    DRV_gainInterParam gain{};
    gain.gainStartIndex = gain.gainEndIndex = 7;
    (endIndex ? gain.gainEndIndex : gain.gainStartIndex) = static_cast<Int32>(v);
    auto changed = [&] { return std::memcmp(records.get(), &before, sizeof before) != 0; };
    switch (user) {
        case GainUser::Calculate: {
            auto in = std::make_unique<DSP_FusionCalculateParam>();
            std::memset(in.get(), 0, sizeof *in);
            in->pSwitch = 5;
            in->gainInterParam = &gain;
            std::array<Uint8, FUSION_NIR_POINTS> curve{};
            DSP_FusionV2722 out{};
            out.pSwtich = 77;
            out.fusionParam.w_nir = curve.data();
            log.clear();
            const Int32 r = DRV_dspCalculateFusion(in.get(), &out);
            return {r, out.pSwtich == 5};
        }
        case GainUser::Set: {
            log.clear();
            const Int32 r = DRV_dspdbgFusion(records->data(), &gain, 0, 100);
            return {r, changed()};
        }
        case GainUser::Print: {
            log.clear();
            const Int32 r = DRV_dspdbgFusionPrint(records->data(), &gain);
            return {r, log.count(LogKind::Info) == 4};
        }
        case GainUser::LoadCurve: {
            sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());
            log.clear();
            const Int32 r = DRV_dspdbgFusionNir(records->data(), &gain, 0, 0);
            return {r, changed()};
        }
    }
    return {-2, false};
}

void addGainIndexRules(std::vector<Rule>& rules) {
    const std::pair<GainUser, const char*> users[] = {{GainUser::Calculate, "DRV_dspCalculateFusion"},
                                                      {GainUser::Set, "DRV_dspdbgFusion"},
                                                      {GainUser::Print, "DRV_dspdbgFusionPrint"},
                                                      {GainUser::LoadCurve, "DRV_dspdbgFusionNir"}};
    for (const auto& [user, function] : users) {
        for (bool endIndex : {false, true}) {
            rules.push_back(
                {std::string(function) + (endIndex ? " gainEndIndex" : " gainStartIndex"),
                 {{0, -1}, {FUSION_GAIN_STEPS - 1, FUSION_GAIN_STEPS}},
                 [user, endIndex](int64_t v, Sandbox& s, LogCapture& l) { return gainIndexCall(user, endIndex, v, s, l); },
                 {-1, LogKind::Error, function, [endIndex](int64_t v) {
                      return format("gain index out of range: start %lld, end %lld\n", endIndex ? 7 : v, endIndex ? v : 7);
                  }}});
        }
    }
}

// ---- Debug command ids: unknown ids are accepted with 0 and change nothing ----

template <class Record>
Outcome debugIdCall(Int32 (*setter)(Record*, Int32, Int32), int64_t v, LogCapture& log) {
    Record record;
    std::memset(&record, 0, sizeof record);
    const Record before = record;
    log.clear();
    const Int32 r = setter(&record, static_cast<Int32>(v), 1);  // 1 changes every field of a zero record
    return {r, std::memcmp(&record, &before, sizeof record) != 0};
}

void addDebugIdRules(std::vector<Rule>& rules) {
    const Refusal silent{0, LogKind::Warn, nullptr, nullptr};
    // Stage, payload version and the number of debug ids (0 .. count - 1).
#define ISPDSP_DEBUG_IDS(X) \
    X(Dlae, V101, 6)        \
    X(Dlcfa, V101, 5)       \
    X(Fg2c, V102, 4)        \
    X(Lle, V203, 5)         \
    X(Lsm, V112, 4)         \
    X(Sade, V113, 5)        \
    X(Sbm3d, V113, 1)       \
    X(Yuv2yuv, V100, 1)     \
    X(Lae, V209, 16)        \
    X(Y2d, V5118, 12)       \
    X(Ylwdr, V102, 18)      \
    X(FusionPlate, V1001, 1)
#define ISPDSP_DEBUG_ID_RULE(Name, Ver, count)                                                                    \
    rules.push_back({"DRV_dspdbg" #Name " pcmd_id",                                                              \
                     {{0, -1}, {(count) - 1, (count)}},                                                           \
                     [](int64_t v, Sandbox&, LogCapture& log) { return debugIdCall(&DRV_dspdbg##Name, v, log); }, \
                     silent});
    ISPDSP_DEBUG_IDS(ISPDSP_DEBUG_ID_RULE)
#undef ISPDSP_DEBUG_ID_RULE
#undef ISPDSP_DEBUG_IDS

    rules.push_back({"DRV_dspdbgFusion pcmd_id",
                     {{0, -1}, {25, 26}},
                     [](int64_t v, Sandbox&, LogCapture& log) {
                         std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> records{};
                         DRV_gainInterParam gain{};
                         log.clear();
                         const Int32 r = DRV_dspdbgFusion(records.data(), &gain, static_cast<Int32>(v), 100);
                         return Outcome{r, records[0].ep_delta == 100 || records[0].uv_w == 100};
                     },
                     silent});
    rules.push_back({"DRV_dspdbgFusionNir pcmd_id",
                     {{0, -1}, {0, 1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());
                         std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> records{};
                         DRV_gainInterParam gain{};
                         log.clear();
                         const Int32 r = DRV_dspdbgFusionNir(records.data(), &gain, static_cast<Int32>(v), 0);
                         return Outcome{r, records[0].w_nir[1] != 0};
                     },
                     silent});
}

// ---- Table types and entry sizes of a parameter block ----

constexpr int64_t kEntry = CFG_TABLE_ENTRY_SIZE;

// Registers a block of the given types, handing over `size` bytes of it (zero bytes
// behind the entries). Applied: the last type is registered at its entry.
Outcome registerBlock(const std::vector<Int32>& types, Uint32 size, LogCapture& log) {
    ParamFileBuilder builder;
    for (Int32 type : types) builder.addTable(type);
    std::vector<uint8_t> bytes = builder.blockBytes();
    bytes.resize(std::max<size_t>(bytes.size(), size), 0);
    auto* block = static_cast<Uint8*>(OSA_memUAllocAlign(static_cast<Uint32>(bytes.size()), 0));
    std::memcpy(block, bytes.data(), bytes.size());
    CFG_IspParamTable header{};
    header.cfg_specParam.size = size;
    CFG_DspIspCfgTables set{};
    log.clear();
    const Int32 r = DRV_ispCommonTable2DspTable(&header, block, set.paramTables);
    const size_t last = types.size() - 1;
    const Int32 type = std::clamp<Int32>(types[last], 0, PARAM_TABLE_TYPE_NUM - 1);
    const bool applied = set.paramTables[type] == reinterpret_cast<CFG_DspIspCfgParam*>(block + last * kEntry + 4);
    OSA_memUFree(block);
    return {r, applied};
}

void addTableRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_ispCommonTable2DspTable table type",
                     {{0, -1}, {PARAM_TABLE_TYPE_NUM - 1, PARAM_TABLE_TYPE_NUM}},
                     [](int64_t v, Sandbox&, LogCapture& log) { return registerBlock({static_cast<Int32>(v)}, kEntry, log); },
                     {-1, LogKind::Error, "DRV_ispCommonTable2DspTable",
                      [](int64_t v) { return format("[Line:*] index is invalid:%lld!\n", v); }}});
    // Whole entries only: one byte less or more than two entries is refused (the
    // first entry, before the cut, stays registered).
    rules.push_back({"DRV_ispCommonTable2DspTable block size",
                     {{2 * kEntry, 2 * kEntry - 1}, {2 * kEntry, 2 * kEntry + 1}},
                     [](int64_t v, Sandbox&, LogCapture& log) {
                         return registerBlock({PARAM_MULTICOLOR, PARAM_TRAFFIC}, static_cast<Uint32>(v), log);
                     },
                     {-1, LogKind::Error, "DRV_ispCommonTable2DspTable",
                      [](int64_t v) {
                          const int64_t at = v / kEntry * kEntry;
                          return format("[Line:*] table entry at %lld is incomplete: %lld bytes left!\n", at, v - at);
                      },
                      false}});
}

// ---- Driver creation, registration file, console and fusion operation ----

void writeDeviceFiles(Sandbox& sandbox, bool calibration = true) {
    sandbox.writeFile(driver_test::kCommonParamFile,
                      ParamFileBuilder()
                          .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(1))
                          .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(2))
                          .build());
    if (calibration) sandbox.writeFile("/var/tmp/calibration.txt", driver_test::registrationText({100, 200}));
}

// Creates a pipe from the device files; the registration file is `calibration` when given.
Outcome createPipe(Sandbox& sandbox, LogCapture& log, Uint32 ispNum, const std::string* calibration = nullptr) {
    writeDeviceFiles(sandbox, calibration == nullptr);
    if (calibration != nullptr) sandbox.writeFile("/var/tmp/calibration.txt", *calibration);
    HostPipe pipe(1);
    pipe.create.ispNum = ispNum;
    log.clear();
    const Int32 r = pipe.createPipe();
    const bool registered = pipe.instance() != nullptr && pipe.instance()->registerFlag == 1;
    const bool created = pipe.xHndl() != nullptr;
    if (created) pipe.remove();
    return {r, calibration != nullptr ? registered : created};
}

// A registration file with these counts and one zoom block (a truncated block section is fine).
Rule registrationRule(const char* name, std::vector<std::pair<int64_t, int64_t>> edges, bool varyZoomNum, int64_t other) {
    return {std::string("DRV_dspIspCreateX calibration.txt ") + name, std::move(edges),
            [varyZoomNum, other](int64_t v, Sandbox& sandbox, LogCapture& log) {
                const int64_t zoomNum = varyZoomNum ? v : other, regNum = varyZoomNum ? other : v;
                const std::string text = format("ZOOMNUM:%lld\nREGNUM:%lld\nZOOM:5\n0x1 0x2\n", zoomNum, regNum);
                return createPipe(sandbox, log, 1, &text);
            },
            {0, LogKind::Warn, "DRV_ispGetRegCfg", [varyZoomNum, other](int64_t v) {
                 return format("zoomNum %lld regNum %lld out of range (1..4096, 1..65536, at most 1048576 pairs)\n",
                               varyZoomNum ? v : other, varyZoomNum ? other : v);
             }}};
}

// The console of a created pipe after its first refresh; the gain blends records 0 and 1.
struct ConsolePipe {
    explicit ConsolePipe(Sandbox& sandbox) {
        writeDeviceFiles(sandbox);
        created = pipe.createPipe() == 0 && pipe.refresh(nullptr) == 0;
    }
    ~ConsolePipe() { pipe.remove(); }
    CFG_DSP_FusionV2722& record0() { return pipe.instance()->dspCfgTables.curTable->ispFusionParam[0]; }
    ispdsp_test::DspCapture dsp;
    HostPipe pipe{1};
    bool created = false;
};

void addDriverRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_dspIspCreateX ispNum",
                     {{ISP_MAX_DEV_NUM, ISP_MAX_DEV_NUM + 1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         return createPipe(sandbox, log, static_cast<Uint32>(v));
                     },
                     {-1, LogKind::Error, "DRV_dspIspCreateX",
                      [](int64_t v) { return format("ispNum %lld is above ISP_MAX_DEV_NUM %lld!\n", v, ISP_MAX_DEV_NUM); }}});
    rules.push_back(registrationRule("ZOOMNUM", {{1, 0}, {4096, 4097}}, true, 1));
    rules.push_back(registrationRule("REGNUM", {{1, 0}, {65536, 65537}}, false, 1));
    rules.push_back(registrationRule("pairs by REGNUM at ZOOMNUM 4096", {{256, 257}}, false, 4096));
    rules.push_back(registrationRule("pairs by ZOOMNUM at REGNUM 65536", {{16, 17}}, true, 65536));

    const Refusal needParm{0, LogKind::Warn, "DRV_ispSetDbgDspParam", [](int64_t) { return std::string("uv_w need parm\r\n"); }};
    // The value of the last command is read only inside argc.
    rules.push_back({"OpSetDbgDspParam argc",
                     {{2, 1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         ConsolePipe console(sandbox);
                         ConsoleArgs cmd({"uv_w", "9"});
                         cmd.record.argc = static_cast<Int32>(v);
                         log.clear();
                         const Int32 r = console.pipe.console(&cmd.record, 0);
                         return Outcome{console.created ? r : -2, console.record0().uv_w == 9};
                     },
                     needParm});
    // ...and only inside the record's 33 entries, whatever argc says. A value
    // follows its name at an odd index: 31 is the last one inside, 33 the first outside.
    rules.push_back({"OpSetDbgDspParam index of a command's value",
                     {{DRV_ISP_CMD_MAX_ARGS - 2, DRV_ISP_CMD_MAX_ARGS}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         ConsolePipe console(sandbox);
                         std::vector<const char*> args;
                         while (static_cast<int64_t>(args.size()) < v - 1) args.insert(args.end(), {"uv_w", "1"});
                         args.insert(args.end(), {"uv_w", "9"});
                         ConsoleArgs cmd(args);
                         log.clear();
                         const Int32 r = console.pipe.console(&cmd.record, 0);
                         return Outcome{console.created ? r : -2, console.record0().uv_w == 9};
                     },
                     needParm});

    // The reference pipe's kind: colour (0) or mono (1).
    rules.push_back({"OpSetFusion refPipeParams.fusionType",
                     {{DRV_ISP_FUSION_MONO, DRV_ISP_FUSION_MAX}, {DRV_ISP_FUSION_COLOR, -1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         writeDeviceFiles(sandbox);
                         ispdsp_test::DspCapture dsp;
                         HostPipe colour(1), mono(2);
                         Outcome out{-2, false};
                         // The mono pipe's first frame gives it a curve buffer for the colour pipe to read.
                         if (colour.createPipe() == 0 && mono.createPipe() == 0 && colour.refresh(nullptr) == 0 &&
                             mono.refresh(nullptr) == 0 && colour.start() == 0 && mono.start() == 0) {
                             driver_test::linkPipes(colour, mono);
                             mono.fusion();
                             DRV_RefPipeParams ref;
                             std::memset(&ref, 0, sizeof ref);
                             ref.refXHndl = mono.xHndl();
                             ref.fusionType = static_cast<Uint32>(v);
                             if (colour.refPipe(&ref) == 0) {
                                 log.clear();
                                 out.result = colour.fusion();
                                 out.applied = log.contains("[DSP_DRV] pswitch=");
                             }
                         }
                         colour.remove();
                         mono.remove();
                         return out;
                     },
                     {0, LogKind::Error, "DRV_ispSetFusionParam",
                      [](int64_t v) { return format("error fusionType:%lld \n", static_cast<Int32>(v)); }}});
}

// ---- Files: parameter file, RLR tables, NIR curve ----

constexpr const char* kParamPath = "/var/tmp/p.bin";

Outcome readParamFile(const ParamFileBuilder& builder, Sandbox& sandbox, LogCapture& log) {
    sandbox.writeFile(kParamPath, builder.build());
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    log.clear();
    const Int32 r = DRV_ispCfgReadCheckParam(kParamPath, 82981.0f, &header, &buffer);
    const bool loaded = buffer != nullptr;
    if (loaded) OSA_memUFree(buffer);
    return {r, loaded};
}

float versionStep(int64_t ulps) {
    float ver = 82981.0f;
    for (int64_t k = 0; k < (ulps < 0 ? -ulps : ulps); ++k) ver = std::nextafter(ver, ulps < 0 ? 0.0f : 1e9f);
    return ver;
}

std::vector<uint8_t> rlrFile(int64_t length) {
    std::vector<uint8_t> bytes(static_cast<size_t>(length));
    for (size_t n = 0; n < bytes.size(); ++n) bytes[n] = static_cast<uint8_t>(n * 7 + 1);
    return bytes;
}

void addFileRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_ispCfgReadCheckParam file length",
                     {{113, 112}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         return readParamFile(ParamFileBuilder().rawBlock(std::vector<uint8_t>(v - 112, 0x42)), sandbox, log);
                     },
                     {-1, LogKind::Warn, "DRV_ispCfgReadCheckParam", [](int64_t v) {
                          return format("isp cfg:/var/tmp/p.bin too short: %lld bytes, need more than %lld\n", v, 112);
                      }}});
    // The block may reach the checksum's end, not a byte further (no message).
    rules.push_back({"DRV_ispCfgReadCheckParam block size word",
                     {{8, 9}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         return readParamFile(ParamFileBuilder().rawBlock(std::vector<uint8_t>(8, 0x42)).sizeWordOverride(static_cast<uint32_t>(v)),
                                              sandbox, log);
                     },
                     {-1, LogKind::Warn, nullptr, nullptr}});
    // The version must be 82981.0 itself: one single-precision step either way is another version.
    rules.push_back({"DRV_ispCfgReadCheckParam ver (single-precision steps from 82981.0)",
                     {{0, 1}, {0, -1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         return readParamFile(ParamFileBuilder().rawBlock({1, 2, 3, 4}).version(versionStep(v)), sandbox, log);
                     },
                     {-1, LogKind::Warn, "DRV_ispCfgReadCheckParam", [](int64_t v) {
                          char text[160];
                          std::snprintf(text, sizeof text, "isp cfg:/var/tmp/p.bin ver not consistent, fromcfg:V%.3f, mustbe:V82981.000\n",
                                        static_cast<double>(versionStep(v)));
                          return std::string(text);
                      }}});

    rules.push_back({"CFG_aewGetRlrCfgInfo file length",
                     {{229, 228}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         sandbox.writeFile("/var/custom/rlr_para.bin", rlrFile(v));
                         CFG_RlrTableInfo info;
                         std::memset(&info, 0xA5, sizeof info);
                         log.clear();
                         const Int32 r = CFG_aewGetRlrCfgInfo("/var/custom/rlr_para.bin", &info);
                         return Outcome{r, int64_t{info.tableSize} == v && info.versionNum[0] == 1};
                     },
                     {-1, LogKind::Warn, nullptr, [](int64_t) {
                          return std::string("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed,fseek failed !\n");
                      }}});
    // A short file's bytes do reach the tables; only the last table byte tells.
    rules.push_back({"CFG_aewReadRlrCfg file length",
                     {{768, 767}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         const std::vector<uint8_t> file = rlrFile(v);
                         sandbox.writeFile("/var/custom/rlr_para.bin", file);
                         CFG_RlrTableParam tables;
                         std::memset(&tables, 0xEE, sizeof tables);
                         log.clear();
                         const Int32 r = CFG_aewReadRlrCfg("/var/custom/rlr_para.bin", &tables);
                         return Outcome{r, tables.pNightTable[255] == static_cast<uint8_t>(767 * 7 + 1)};
                     },
                     {-1, LogKind::Warn, nullptr, [](int64_t) {
                          return std::string("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed\n");
                      }}});

    // A curve line, with its line end, fits the 255 characters of one read.
    rules.push_back({"DRV_dspdbgFusionNir curve line length",
                     {{255, 256}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         std::string text = ispdsp_test::nirCurveText();
                         text.insert(0, std::string(static_cast<size_t>(v) - (text.find('\n') + 1), ' '));
                         sandbox.writeFile("/tmp/nir.txt", text);
                         std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS> records{};
                         DRV_gainInterParam gain{};
                         log.clear();
                         const Int32 r = DRV_dspdbgFusionNir(records.data(), &gain, 0, 0);
                         return Outcome{r, records[0].w_nir[1] != 0};
                     },
                     {-1, LogKind::Error, "DRV_ispGetNirCfg",
                      [](int64_t) { return std::string("/tmp/nir.txt line 2 holds 0 of 13 points\n"); }}});
}

std::vector<Rule> allRules() {
    std::vector<Rule> rules;
    addGainIndexRules(rules);
    addDebugIdRules(rules);
    addTableRules(rules);
    addDriverRules(rules);
    addFileRules(rules);
    return rules;
}

void PrintTo(const Rule& rule, std::ostream* os) { *os << rule.name; }

class ValidityBoundary : public testing::TestWithParam<Rule> {};

TEST_P(ValidityBoundary, LastValidIsAcceptedFirstInvalidIsRefusedWithItsLine) {
    const Rule& rule = GetParam();
    for (const auto& [valid, invalid] : rule.edges) {
        {
            SCOPED_TRACE(testing::Message() << rule.name << " = " << valid << " (last valid)");
            Sandbox sandbox;
            LogCapture log;
            const Outcome got = rule.call(valid, sandbox, log);
            EXPECT_EQ(got.result, 0);
            EXPECT_TRUE(got.applied);
            EXPECT_EQ(log.count(LogKind::Error) + log.count(LogKind::Warn), 0u) << testing::PrintToString(log.texts());
        }
        {
            SCOPED_TRACE(testing::Message() << rule.name << " = " << invalid << " (first invalid)");
            Sandbox sandbox;
            LogCapture log;
            const Outcome got = rule.call(invalid, sandbox, log);
            const Refusal& refusal = rule.refusal;
            EXPECT_EQ(got.result, refusal.result);
            if (refusal.touchesNothing) {
                EXPECT_FALSE(got.applied);
            }
            if (!refusal.line) {
                EXPECT_EQ(log.count(LogKind::Error) + log.count(LogKind::Warn), 0u);
                continue;
            }
            const std::string line = refusal.line(invalid);
            size_t hits = 0;
            for (const LogLine& l : log.lines()) hits += matches(l, refusal.kind, refusal.function, line);
            EXPECT_EQ(hits, 1u) << line;
        }
    }
}

std::string ruleName(const testing::TestParamInfo<Rule>& info) {
    std::string name = std::to_string(info.index) + "_";
    for (char c : info.param.name) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Rules, ValidityBoundary, testing::ValuesIn(allRules()), ruleName);

}  // namespace

// Every validity check of the exported functions and operation slots, pinned at
// its last accepted and its first refused value (both ends of a two-sided
// range): one row per rule. An accepted value has its effect and logs no error
// or warning; a refused one gives the rule's result and its one line, and has
// no effect.
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

using driver_test::HostPipe;
using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;
using ispdsp_test::ParamFileBuilder;
using ispdsp_test::Sandbox;

struct Outcome {
    Int32 result;
    bool applied;  // the effect that an accepted value has
};
using Call = std::function<Outcome(int64_t, Sandbox&, LogCapture&)>;  // clears the log right before the call
using Line = std::function<std::string(int64_t)>;

struct Rule {
    std::string name;                                // function and parameter
    std::vector<std::pair<int64_t, int64_t>> edges;  // {last valid, first invalid}
    Call call;
    Int32 refused;         // the result for the first invalid value
    LogKind kind;          // and its one line: `function` null means `line` is the whole text,
    const char* function;  // "[Line:*] " stands for the source line that table functions repeat;
    Line line;             // a null `line` means no error or warning at all
};

std::string format(const char* pattern, int64_t a, int64_t b = 0) {
    char text[256];
    std::snprintf(text, sizeof text, pattern, static_cast<long long>(a), static_cast<long long>(b));
    return text;
}
Line fixed(std::string text) {
    return [text](int64_t) { return text; };
}

bool matches(const ispdsp_test::LogLine& l, const Rule& rule, std::string message) {
    if (rule.function == nullptr) return l.level == ispdsp_test::kLogKindShapes[int(rule.kind)].level && l.text == message;
    const size_t at = l.text.find("): [Line:"), close = l.text.find("] ", at);
    if (message.starts_with("[Line:*] ") && close != std::string::npos) message.replace(0, 9, l.text.substr(at + 3, close - at - 1));
    return ispdsp_test::isDriverLine(l, rule.kind, rule.function, message);
}

using Records = std::array<CFG_DSP_FusionV2722, FUSION_GAIN_STEPS>;
bool zero(const Records& r) {
    return std::all_of(reinterpret_cast<const uint8_t*>(&r), reinterpret_cast<const uint8_t*>(&r + 1), [](uint8_t b) { return b == 0; });
}

// ---- Gain-step indexes of the four fusion functions ----

enum class GainUser { Calculate, Set, Print, LoadCurve };

Outcome gainIndexCall(GainUser user, bool endIndex, int64_t v, Sandbox& sandbox, LogCapture& log) {
    auto in = std::make_unique<DSP_FusionCalculateParam>();  // zeroed: its records are the ones changed
    Records& records = *reinterpret_cast<Records*>(in->fusionParam);
    DRV_gainInterParam gain{};
    gain.gainStartIndex = gain.gainEndIndex = 7;
    (endIndex ? gain.gainEndIndex : gain.gainStartIndex) = static_cast<Int32>(v);
    in->pSwitch = 5;
    in->gainInterParam = &gain;
    std::array<Uint8, FUSION_NIR_POINTS> curve{};
    DSP_FusionV2722 out{};
    out.fusionParam.w_nir = curve.data();
    sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());
    log.clear();
    switch (user) {
        case GainUser::Calculate: return {DRV_dspCalculateFusion(in.get(), &out), out.pSwtich == 5};
        case GainUser::Set: return {DRV_dspdbgFusion(in->fusionParam, &gain, 0, 100), !zero(records)};
        case GainUser::Print: return {DRV_dspdbgFusionPrint(in->fusionParam, &gain), log.count(LogKind::Info) == 4};
        case GainUser::LoadCurve: return {DRV_dspdbgFusionNir(in->fusionParam, &gain, 0, 0), !zero(records)};
    }
    return {-2, false};
}

void addGainIndexRules(std::vector<Rule>& rules) {
    const std::pair<GainUser, const char*> users[] = {{GainUser::Calculate, "DRV_dspCalculateFusion"},
                                                      {GainUser::Set, "DRV_dspdbgFusion"},
                                                      {GainUser::Print, "DRV_dspdbgFusionPrint"},
                                                      {GainUser::LoadCurve, "DRV_dspdbgFusionNir"}};
    for (const auto& [user, function] : users) {
        for (bool end : {false, true}) {
            rules.push_back({std::string(function) + (end ? " gainEndIndex" : " gainStartIndex"),
                             {{0, -1}, {FUSION_GAIN_STEPS - 1, FUSION_GAIN_STEPS}},
                             [user, end](int64_t v, Sandbox& s, LogCapture& l) { return gainIndexCall(user, end, v, s, l); },
                             -1, LogKind::Error, function, [end](int64_t v) {
                                 return format("gain index out of range: start %lld, end %lld\n", end ? 7 : v, end ? v : 7);
                             }});
        }
    }
}

// ---- Debug command ids: an unknown id is accepted with 0, changes nothing and says nothing ----

template <class Record>
Outcome debugIdCall(Int32 (*setter)(Record*, Int32, Int32), int64_t v, LogCapture& log) {
    Record record{};
    log.clear();
    const Int32 r = setter(&record, static_cast<Int32>(v), 1);  // 1 changes every field of a zero record
    const Record zeroRecord{};
    return {r, std::memcmp(&record, &zeroRecord, sizeof record) != 0};
}

void addDebugIdRules(std::vector<Rule>& rules) {
    // Stage, record version and the number of debug ids (0 .. count - 1).
#define ISPDSP_DEBUG_IDS(X) \
    X(Dlae, V101, 6) X(Dlcfa, V101, 5) X(Fg2c, V102, 4) X(Lle, V203, 5) X(Lsm, V112, 4) X(Sade, V113, 5) \
    X(Sbm3d, V113, 1) X(Yuv2yuv, V100, 1) X(Lae, V209, 16) X(Y2d, V5118, 12) X(Ylwdr, V102, 18) X(FusionPlate, V1001, 1)
#define ISPDSP_DEBUG_ID_RULE(Name, Ver, count)                                                               \
    rules.push_back({"DRV_dspdbg" #Name " pcmd_id", {{0, -1}, {(count) - 1, (count)}},                      \
                     [](int64_t v, Sandbox&, LogCapture& l) { return debugIdCall(&DRV_dspdbg##Name, v, l); }, \
                     0, LogKind::Warn, nullptr, nullptr});
    ISPDSP_DEBUG_IDS(ISPDSP_DEBUG_ID_RULE)
#undef ISPDSP_DEBUG_ID_RULE
#undef ISPDSP_DEBUG_IDS

    const auto fusionId = [](bool curve) {
        return [curve](int64_t v, Sandbox& sandbox, LogCapture& log) {
            sandbox.writeFile("/tmp/nir.txt", ispdsp_test::nirCurveText());
            Records records{};
            DRV_gainInterParam gain{};
            log.clear();
            const Int32 r = curve ? DRV_dspdbgFusionNir(records.data(), &gain, static_cast<Int32>(v), 0)
                                  : DRV_dspdbgFusion(records.data(), &gain, static_cast<Int32>(v), 100);
            return Outcome{r, !zero(records)};
        };
    };
    rules.push_back({"DRV_dspdbgFusion pcmd_id", {{0, -1}, {25, 26}}, fusionId(false), 0, LogKind::Warn, nullptr, nullptr});
    rules.push_back({"DRV_dspdbgFusionNir pcmd_id", {{0, -1}, {0, 1}}, fusionId(true), 0, LogKind::Warn, nullptr, nullptr});
}

// ---- Table types and the whole entries of a parameter block ----

constexpr int64_t kEntry = CFG_TABLE_ENTRY_SIZE;

// Hands over `size` bytes of a block of these types. Applied: the last type is registered at its entry.
Outcome registerBlock(const std::vector<Int32>& types, int64_t size, LogCapture& log) {
    ParamFileBuilder builder;
    for (Int32 type : types) builder.addTable(type);
    const std::vector<uint8_t> bytes = builder.blockBytes();
    auto* block = static_cast<Uint8*>(OSA_memUAllocAlign(static_cast<Uint32>(bytes.size()), 0));
    std::memcpy(block, bytes.data(), bytes.size());
    CFG_IspParamTable header{};
    header.cfg_specParam.size = static_cast<Uint32>(size);
    CFG_DspIspCfgTables set{};
    log.clear();
    const Int32 r = DRV_ispCommonTable2DspTable(&header, block, set.paramTables);
    const Int32 last = std::clamp<Int32>(types.back(), 0, PARAM_TABLE_TYPE_NUM - 1);
    const bool applied = set.paramTables[last] == reinterpret_cast<CFG_DspIspCfgParam*>(block + (types.size() - 1) * kEntry + 4);
    OSA_memUFree(block);
    return {r, applied};
}

void addTableRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_ispCommonTable2DspTable table type", {{0, -1}, {PARAM_TABLE_TYPE_NUM - 1, PARAM_TABLE_TYPE_NUM}},
                     [](int64_t v, Sandbox&, LogCapture& log) { return registerBlock({static_cast<Int32>(v)}, kEntry, log); },
                     -1, LogKind::Error, "DRV_ispCommonTable2DspTable",
                     [](int64_t v) { return format("[Line:*] index is invalid:%lld!\n", v); }});
    rules.push_back({"DRV_ispCommonTable2DspTable block size", {{2 * kEntry, 2 * kEntry - 1}},
                     [](int64_t v, Sandbox&, LogCapture& log) { return registerBlock({PARAM_MULTICOLOR, PARAM_TRAFFIC}, v, log); },
                     -1, LogKind::Error, "DRV_ispCommonTable2DspTable",
                     fixed("[Line:*] table entry at 8824 is incomplete: 8823 bytes left!\n")});
}

// ---- Driver creation, registration file, console and fusion operation ----

void writeDeviceFiles(Sandbox& sandbox, const std::string& calibration = driver_test::registrationText({100, 200})) {
    sandbox.writeFile(driver_test::kCommonParamFile, ParamFileBuilder()
                                                          .addTable(PARAM_MULTICOLOR, driver_test::fusionTable(1))
                                                          .addTable(PARAM_BLACKWHITE, driver_test::fusionTable(2))
                                                          .build());
    sandbox.writeFile("/var/tmp/calibration.txt", calibration);
}

// Creates and deletes a pipe. Applied: created, or with a registration file of
// one's own, that file was taken.
Outcome createPipe(Sandbox& sandbox, LogCapture& log, Uint32 ispNum, const std::string* calibration = nullptr) {
    calibration != nullptr ? writeDeviceFiles(sandbox, *calibration) : writeDeviceFiles(sandbox);
    HostPipe pipe(1);
    pipe.create.ispNum = ispNum;
    log.clear();
    const Int32 r = pipe.createPipe();
    const bool applied = calibration != nullptr ? pipe.instance() != nullptr && pipe.instance()->registerFlag == 1
                                                : pipe.xHndl() != nullptr;
    if (pipe.xHndl() != nullptr) pipe.remove();
    return {r, applied};
}

// A registration file with these counts and one zoom block (a truncated block section is fine).
Rule registrationRule(const char* name, std::vector<std::pair<int64_t, int64_t>> edges, bool zoomNum, int64_t other) {
    return {std::string("DRV_dspIspCreateX calibration.txt ") + name, std::move(edges),
            [zoomNum, other](int64_t v, Sandbox& sandbox, LogCapture& log) {
                const std::string text = format("ZOOMNUM:%lld\nREGNUM:%lld\nZOOM:5\n0x1 0x2\n", zoomNum ? v : other, zoomNum ? other : v);
                return createPipe(sandbox, log, 1, &text);
            },
            0, LogKind::Warn, "DRV_ispGetRegCfg", [zoomNum, other](int64_t v) {
                return format("zoomNum %lld regNum %lld out of range (1..4096, 1..65536, at most 1048576 pairs)\n",
                              zoomNum ? v : other, zoomNum ? other : v);
            }};
}

// The console of a pipe after its first refresh (the gain blends records 0 and 1)
// with these arguments and argc. Applied: uv_w of record 0 became 9.
Outcome console(Sandbox& sandbox, LogCapture& log, const std::vector<const char*>& args, Int32 argc) {
    writeDeviceFiles(sandbox);
    HostPipe pipe(1);
    Outcome out{-2, false};
    if (pipe.createPipe() == 0 && pipe.refresh(nullptr) == 0) {
        driver_test::ConsoleArgs cmd(args);
        cmd.record.argc = argc;
        log.clear();
        out.result = pipe.console(&cmd.record, 0);
        out.applied = pipe.instance()->dspCfgTables.curTable->ispFusionParam[0].uv_w == 9;
    }
    if (pipe.xHndl() != nullptr) pipe.remove();
    return out;
}

// Links a colour and a mono pipe, gives the mono pipe a first frame (its curve
// buffer), then runs the colour pipe's frame with the reference pipe's kind `v`.
Outcome fusionFrame(int64_t v, Sandbox& sandbox, LogCapture& log) {
    writeDeviceFiles(sandbox);
    ispdsp_test::DspCapture dsp;
    HostPipe colour(1), mono(2);
    Outcome out{-2, false};
    if (colour.createPipe() == 0 && mono.createPipe() == 0 && colour.refresh(nullptr) == 0 && mono.refresh(nullptr) == 0 &&
        colour.start() == 0 && mono.start() == 0) {
        driver_test::linkPipes(colour, mono);
        mono.fusion();
        DRV_RefPipeParams ref{};
        ref.refXHndl = mono.xHndl();
        ref.fusionType = static_cast<Uint32>(v);
        colour.refPipe(&ref);
        log.clear();
        out = {colour.fusion(), log.contains("[DSP_DRV] pswitch=")};
    }
    for (HostPipe* pipe : {&colour, &mono}) {
        if (pipe->xHndl() != nullptr) pipe->remove();
    }
    return out;
}

void addDriverRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_dspIspCreateX ispNum", {{ISP_MAX_DEV_NUM, ISP_MAX_DEV_NUM + 1}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) { return createPipe(sandbox, log, static_cast<Uint32>(v)); },
                     -1, LogKind::Error, "DRV_dspIspCreateX",
                     [](int64_t v) { return format("ispNum %lld is above ISP_MAX_DEV_NUM %lld!\n", v, ISP_MAX_DEV_NUM); }});
    rules.push_back(registrationRule("ZOOMNUM", {{1, 0}, {4096, 4097}}, true, 1));
    rules.push_back(registrationRule("REGNUM", {{1, 0}, {65536, 65537}}, false, 1));
    rules.push_back(registrationRule("pairs by REGNUM at ZOOMNUM 4096", {{256, 257}}, false, 4096));
    rules.push_back(registrationRule("pairs by ZOOMNUM at REGNUM 65536", {{16, 17}}, true, 65536));

    // A command's value is read only inside argc...
    rules.push_back({"OpSetDbgDspParam argc", {{2, 1}},
                     [](int64_t v, Sandbox& s, LogCapture& l) { return console(s, l, {"uv_w", "9"}, static_cast<Int32>(v)); },
                     0, LogKind::Warn, "DRV_ispSetDbgDspParam", fixed("uv_w need parm\r\n")});
    // ...and inside the record's 33 entries, whatever argc says. A value follows
    // its name at an odd index: 31 is the last one inside, 33 the first outside.
    rules.push_back({"OpSetDbgDspParam index of a command's value", {{DRV_ISP_CMD_MAX_ARGS - 2, DRV_ISP_CMD_MAX_ARGS}},
                     [](int64_t v, Sandbox& s, LogCapture& l) {
                         std::vector<const char*> args;
                         while (static_cast<int64_t>(args.size()) < v - 1) args.insert(args.end(), {"uv_w", "1"});
                         args.insert(args.end(), {"uv_w", "9"});
                         return console(s, l, args, static_cast<Int32>(args.size()));
                     },
                     0, LogKind::Warn, "DRV_ispSetDbgDspParam", fixed("uv_w need parm\r\n")});
    // The reference pipe is colour (0) or mono (1).
    rules.push_back({"OpSetFusion refPipeParams.fusionType", {{DRV_ISP_FUSION_MONO, DRV_ISP_FUSION_MAX}, {DRV_ISP_FUSION_COLOR, -1}},
                     fusionFrame, 0, LogKind::Error, "DRV_ispSetFusionParam",
                     [](int64_t v) { return format("error fusionType:%lld \n", static_cast<Int32>(v)); }});
}

// ---- Files: parameter file, RLR tables, NIR curve ----

Outcome readParamFile(const ParamFileBuilder& builder, Sandbox& sandbox, LogCapture& log) {
    sandbox.writeFile("/var/tmp/p.bin", builder.build());
    CFG_IspParamTable header{};
    Ptr buffer = nullptr;
    log.clear();
    const Int32 r = DRV_ispCfgReadCheckParam("/var/tmp/p.bin", 82981.0f, &header, &buffer);
    if (buffer != nullptr) OSA_memUFree(buffer);
    return {r, buffer != nullptr};
}

float version(int64_t steps) {  // single-precision steps from 82981.0
    return steps == 0 ? 82981.0f : std::nextafter(82981.0f, steps < 0 ? 0.0f : 1e9f);
}

Outcome rlrFile(int64_t length, Sandbox& sandbox, LogCapture& log, bool tables) {
    std::vector<uint8_t> bytes(static_cast<size_t>(length));
    for (size_t n = 0; n < bytes.size(); ++n) bytes[n] = static_cast<uint8_t>(n * 7 + 1);
    sandbox.writeFile("/var/custom/rlr_para.bin", bytes);
    CFG_RlrTableInfo info;
    CFG_RlrTableParam table;
    std::memset(&info, 0xA5, sizeof info);
    std::memset(&table, 0xEE, sizeof table);
    log.clear();
    if (!tables) {
        const Int32 r = CFG_aewGetRlrCfgInfo("/var/custom/rlr_para.bin", &info);
        return {r, int64_t{info.tableSize} == length && info.versionNum[0] == 1};
    }
    // A short file's bytes do reach the tables: only the last table byte tells.
    const Int32 r = CFG_aewReadRlrCfg("/var/custom/rlr_para.bin", &table);
    return {r, table.pNightTable[255] == static_cast<uint8_t>(767 * 7 + 1)};
}

void addFileRules(std::vector<Rule>& rules) {
    rules.push_back({"DRV_ispCfgReadCheckParam file length", {{113, 112}},
                     [](int64_t v, Sandbox& s, LogCapture& l) {
                         return readParamFile(ParamFileBuilder().rawBlock(std::vector<uint8_t>(v - 112, 0x42)), s, l);
                     },
                     -1, LogKind::Warn, "DRV_ispCfgReadCheckParam",
                     fixed("isp cfg:/var/tmp/p.bin too short: 112 bytes, need more than 112\n")});
    // The block may end where the checksum begins, not a byte later (no message).
    rules.push_back({"DRV_ispCfgReadCheckParam block size word", {{8, 9}},
                     [](int64_t v, Sandbox& s, LogCapture& l) {
                         return readParamFile(ParamFileBuilder().rawBlock(std::vector<uint8_t>(8, 0x42)).sizeWordOverride(uint32_t(v)), s, l);
                     },
                     -1, LogKind::Warn, nullptr, nullptr});
    rules.push_back({"DRV_ispCfgReadCheckParam ver in single-precision steps from 82981.0", {{0, 1}, {0, -1}},
                     [](int64_t v, Sandbox& s, LogCapture& l) {
                         return readParamFile(ParamFileBuilder().rawBlock({1, 2, 3, 4}).version(version(v)), s, l);
                     },
                     -1, LogKind::Warn, "DRV_ispCfgReadCheckParam", [](int64_t v) {
                         char text[160];
                         std::snprintf(text, sizeof text, "isp cfg:/var/tmp/p.bin ver not consistent, fromcfg:V%.3f, mustbe:V82981.000\n",
                                       static_cast<double>(version(v)));
                         return std::string(text);
                     }});
    rules.push_back({"CFG_aewGetRlrCfgInfo file length", {{229, 228}},
                     [](int64_t v, Sandbox& s, LogCapture& l) { return rlrFile(v, s, l, false); }, -1, LogKind::Warn, nullptr,
                     fixed("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed,fseek failed !\n")});
    rules.push_back({"CFG_aewReadRlrCfg file length", {{768, 767}},
                     [](int64_t v, Sandbox& s, LogCapture& l) { return rlrFile(v, s, l, true); }, -1, LogKind::Warn, nullptr,
                     fixed("[DSP_DRV] WARN  : read /var/custom/rlr_para.bin RLR table info failed\n")});
    // A curve line, with its line end, fits the 255 characters of one read.
    rules.push_back({"DRV_dspdbgFusionNir curve line length", {{255, 256}},
                     [](int64_t v, Sandbox& sandbox, LogCapture& log) {
                         std::string text = ispdsp_test::nirCurveText();
                         sandbox.writeFile("/tmp/nir.txt", text.insert(0, size_t(v) - (text.find('\n') + 1), ' '));
                         Records records{};
                         DRV_gainInterParam gain{};
                         log.clear();
                         return Outcome{DRV_dspdbgFusionNir(records.data(), &gain, 0, 0), !zero(records)};
                     },
                     -1, LogKind::Error, "DRV_ispGetNirCfg", fixed("/tmp/nir.txt line 2 holds 0 of 13 points\n")});
}

std::vector<Rule> allRules() {
    std::vector<Rule> rules;
    for (auto add : {addGainIndexRules, addDebugIdRules, addTableRules, addDriverRules, addFileRules}) add(rules);
    return rules;
}

void PrintTo(const Rule& rule, std::ostream* os) { *os << rule.name; }

class ValidityBoundary : public testing::TestWithParam<Rule> {};

TEST_P(ValidityBoundary, LastValidIsAcceptedFirstInvalidIsRefusedWithItsLine) {
    const Rule& rule = GetParam();
    for (const auto& [valid, invalid] : rule.edges) {
        for (const int64_t v : {valid, invalid}) {
            SCOPED_TRACE(testing::Message() << rule.name << " = " << v << (v == valid ? " (last valid)" : " (first invalid)"));
            Sandbox sandbox;
            LogCapture log;
            const Outcome got = rule.call(v, sandbox, log);
            EXPECT_EQ(got.result, v == valid ? 0 : rule.refused);
            EXPECT_EQ(got.applied, v == valid);
            if (v == valid || !rule.line) {
                EXPECT_EQ(log.count(LogKind::Error) + log.count(LogKind::Warn), 0u) << testing::PrintToString(log.texts());
                continue;
            }
            const std::string line = rule.line(v);
            const auto lines = log.lines();
            EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [&](const auto& l) { return matches(l, rule, line); }), 1)
                << line << testing::PrintToString(log.texts());
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

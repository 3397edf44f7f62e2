// The readable table: one block per phase or frame, one line per observation,
// indented under the pipe it belongs to.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string>

#include "reporter.h"

namespace ispdsp::tools::sim {

namespace {

constexpr size_t kLineWidth = 112;
constexpr size_t kPipeColumns = 10;                     // "  color   "
constexpr size_t kFieldColumn = kPipeColumns + 17;      // behind "> FSSWITCH       "
const std::string kIndent(kFieldColumn, ' ');           // continuation lines

constexpr const char* kLegend =
    "   how to read it: \"-- frame N (scenario|console)\" starts a frame, with each pipe's run state (gain\n"
    "   start..end c=interCoff, zoom, dncMode, hdrMode, imageScene, sceneMode, pSwitch); under the pipe,\n"
    "   \"> STAGE\" is a message sent to the DSP, \"< STAGE read-back\" the driver reading the DSP's values,\n"
    "   \"refresh -> 0 row R TABLE\" the table the camera state chose, \"flag ISP_SET_FUSION 1/0\" the driver\n"
    "   asking the host to run/stop its fusion operation, \"I/W/E ...\" the driver's log lines;\n"
    "   \"(expected: ...)\" marks what the driver does by design; a summary closes the run.\n";

std::string valueText(const Event& value) {
    if (value.is_null()) return "-";  // not known or not set: readable output never says "null"
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_float()) {
        char text[32];
        std::snprintf(text, sizeof text, "%.3f", value.get<double>());
        return text;
    }
    return value.dump();
}

// "name value" pairs, wrapped at the line width with the continuation indent.
std::string wrapPairs(const Event& fields, size_t firstColumn) {
    std::string out;
    size_t column = firstColumn;
    bool first = true;
    for (const auto& [name, value] : fields.items()) {
        const std::string item = name + " " + valueText(value);
        if (!first && column + 2 + item.size() > kLineWidth) {
            out += "\n";
            out += kIndent;
            column = kIndent.size();
        } else if (!first) {
            out += "  ";
            column += 2;
        }
        out += item;
        column += item.size();
        first = false;
    }
    return out;
}

std::string stripLineEnd(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

char levelLetter(int level) { return level == 0 ? 'E' : level == 1 ? 'W' : level == 2 ? 'I' : '?'; }

class TableFormatter : public Formatter {
public:
    TableFormatter(std::FILE* out, TableOptions options) : out_(out), options_(options) {}

    void write(const Event& e) override {
        const std::string kind = e.value("event", "");
        if (kind == "run") return run(e);
        if (kind == "frame") return frame(e);
        if (kind == "phase") return phase(e);
        if (kind == "message") return message(e);
        if (kind == "refresh") return refresh(e);
        if (kind == "flag") return line(e, "flag " + e.value("cmd", std::string("?")) + " " + valueText(e["flag"]) +
                                                (e["flag"] == 1 ? " (run)" : e["flag"] == 0 ? " (stop)" : ""));
        if (kind == "call") return call(e);
        if (kind == "log") return log(e);
        if (kind == "console") return console(e);
        if (kind == "rlr") return rlr(e);
        if (kind == "end") return end(e);
        if (kind == "error") return line(e, "error: " + e.value("message", std::string()));
        if (kind == "warning" || kind == "note") return line(e, kind + ": " + e.value("message", std::string()));
        if (kind == "saved") return line(e, e.value("message", std::string()));
        line(e, e.dump());
    }
    void flush() override { std::fflush(out_); }
    bool failed() const override { return std::ferror(out_) != 0; }

private:
    std::string pipeColumn(const Event& e) const {
        char text[16];
        std::snprintf(text, sizeof text, "  %-7s", e["pipe"].is_string() ? e["pipe"].get<std::string>().c_str() : "");
        return text;
    }
    void line(const Event& e, const std::string& text) { std::fprintf(out_, "%s %s\n", pipeColumn(e).c_str(), text.c_str()); }

    void run(const Event& e) {
        std::fprintf(out_, "== ispdsp-sim: scenario %s", valueText(e["scenario"]).c_str());
        if (!e.value("description", std::string()).empty())
            std::fprintf(out_, " - %s", e["description"].get<std::string>().c_str());
        std::fprintf(out_, "\n   %s frames; library %s; tuning %s", valueText(e["frames"]).c_str(),
                     valueText(e["library"]).c_str(), fileText(e["tuning"]).c_str());
        if (!e["monoTuning"].is_null()) std::fprintf(out_, "; mono tuning %s", fileText(e["monoTuning"]).c_str());
        std::fprintf(out_, "; calibration %s\n", e["calibration"].is_null() ? "none" : valueText(e["calibration"]).c_str());
        std::fputs(kLegend, out_);
        scenario_ = valueText(e["scenario"]);
        plannedFrames_ = valueText(e["frames"]);
    }

    static std::string fileText(const Event& file) {
        return valueText(file["file"]) + " (" + valueText(file["bytes"]) + " bytes, crc32 " + valueText(file["crc32"]) + ")";
    }

    void phase(const Event& e) { std::fprintf(out_, "-- %s\n", valueText(e["phase"]).c_str()); }

    void frame(const Event& e) {
        ++framesBySource_[valueText(e["source"])];
        std::fprintf(out_, "-- frame %s (%s)\n", valueText(e["frame"]).c_str(), valueText(e["source"]).c_str());
        for (const auto& [pipe, in] : e["inputs"].items()) {
            char text[256];
            std::snprintf(text, sizeof text,
                          "gain %d..%d c=%.3f  zoom %d  dncMode %d  hdrMode %d  imageScene %d  sceneMode %u  pSwitch %d",
                          in["gainStartIndex"].get<int>(), in["gainEndIndex"].get<int>(), in["interCoff"].get<double>(),
                          in["zoom"].get<int>(), in["dncMode"].get<int>(), in["hdrMode"].get<int>(),
                          in["imageScene"].get<int>(), in["sceneMode"].get<unsigned>(), in["pSwitch"].get<int>());
            std::fprintf(out_, "  %-7s  %s\n", pipe.c_str(), text);
        }
    }

    void refresh(const Event& e) {
        std::string text = "refresh -> " + valueText(e["ret"]);
        if (e.contains("cfgChanged")) text += "  cfgChanged " + valueText(e["cfgChanged"]);
        if (e.contains("table"))
            text += "  row " + valueText(e["curTableIdx"]) + "  " + valueText(e["table"]) + " (" +
                    valueText(e["curTableType"]) + ")" +
                    (e.contains("fusionFlag") ? (e["fusionFlag"] == 0 ? "  fusion off" : "  fusion on") : "");
        line(e, text);
    }

    void message(const Event& e) {
        const std::string prefix = pipeColumn(e) + " ";
        if (e.value("dir", "") == "get") {
            // The answer is the simulated DSP's own (its last FUSION, or zeros):
            // the fields are in the JSON output.
            std::fprintf(out_, "%s< %s read-back\n", prefix.c_str(), e.value("stage", std::string("?")).c_str());
            return;
        }
        std::string head = "> " + e.value("stage", std::string("?"));
        head.resize(std::max<size_t>(head.size(), kFieldColumn - prefix.size() - 1), ' ');
        Event fields = e["fields"];
        if (e.contains("mode")) fields["mode"] = e["mode"];
        if (e.contains("nId") && e["nId"] != 0) fields["nId"] = e["nId"];
        if (e.contains("cfg_path_text")) fields["cfg_path"] = "\"" + e["cfg_path_text"].get<std::string>() + "\"";
        if (e.contains("stray")) fields["stray_bytes"] = e["stray"];
        std::fprintf(out_, "%s%s %s\n", prefix.c_str(), head.c_str(),
                     wrapPairs(fields, prefix.size() + head.size() + 1).c_str());
        if (e.contains("w_nir")) curve(e["w_nir"]);
        if (e.contains("outOfRange")) {
            Event outside;
            for (const auto& [name, r] : e["outOfRange"].items())
                outside[name] = valueText(r["value"]) + " (" + valueText(r["min"]) + ".." + valueText(r["max"]) + ")";
            const std::string head = e.contains("outOfRangeExpected")
                                         ? "! outside the DSP range (expected: " +
                                               e["outOfRangeExpected"].get<std::string>() + "): "
                                         : "! outside the DSP range: ";
            std::fprintf(out_, "%s%s%s\n", kIndent.c_str(), head.c_str(),
                         wrapPairs(outside, kIndent.size() + head.size()).c_str());
        }
        if (e.contains("expected")) std::fprintf(out_, "%s%s\n", kIndent.c_str(), expectedText(e).substr(2).c_str());
    }

    void curve(const Event& c) {
        std::string text = "w_nir  min " + valueText(c["min"]) + "  max " + valueText(c["max"]) + "  mean " +
                           valueText(c["mean"]);
        if (!options_.curves) {
            text += "  first";
            for (const auto& p : c["first"]) text += " " + valueText(p);
            std::fprintf(out_, "%s%s\n", kIndent.c_str(), text.c_str());
            return;
        }
        std::fprintf(out_, "%s%s\n", kIndent.c_str(), text.c_str());
        std::string row;
        size_t n = 0;
        for (const auto& p : c["points"]) {
            char cell[8];
            std::snprintf(cell, sizeof cell, "%4d", p.get<int>());
            row += cell;
            if (++n % 16 == 0) {
                std::fprintf(out_, "%s%s\n", kIndent.c_str(), row.c_str());
                row.clear();
            }
        }
        if (!row.empty()) std::fprintf(out_, "%s%s\n", kIndent.c_str(), row.c_str());
    }

    void call(const Event& e) {
        // Calls that succeed are shown only for the operations an engineer looks for.
        static const std::set<std::string> always = {"DRV_dspIspCreateX", "OpSetFusion", "OpSetDbgDspParam"};
        const std::string op = e.value("op", std::string("?"));
        if (e["ret"] == 0 && always.count(op) == 0) return;
        line(e, op + " -> " + valueText(e["ret"]) + expectedText(e));
    }

    // Lines with line feeds inside (the console menu) go on under the first.
    void log(const Event& e) {
        const int level = e.value("level", -1);
        const std::string text = stripLineEnd(e.value("text", std::string()));
        size_t start = 0;
        for (bool first = true;; first = false) {
            const size_t end = text.find('\n', start);
            const std::string piece = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
            line(e, (first ? std::string("  ") + levelLetter(level) + " " : std::string("    ")) + stripLineEnd(piece));
            if (end == std::string::npos) break;
            start = end + 1;
        }
        if (e.contains("expected")) std::fprintf(out_, "%s%s\n", kIndent.c_str(), expectedText(e).substr(2).c_str());
    }

    void console(const Event& e) {
        std::fprintf(out_, "-- console %s> %s\n", valueText(e["pipe"]).c_str(), valueText(e["line"]).c_str());
    }

    void rlr(const Event& e) {
        line(e, "DRV_loadRlrCfg -> " + valueText(e["ret"]));
        if (!e.contains("tables")) return;
        for (const auto& [name, t] : e["tables"].items())
            std::fprintf(out_, "%s%-6s min %s  max %s  mean %s\n", kIndent.c_str(), name.c_str(), valueText(t["min"]).c_str(),
                         valueText(t["max"]).c_str(), valueText(t["mean"]).c_str());
    }

    // The closing summary: what ran, what reached the DSP, what failed for a
    // real reason (the driver's by-design -1 results are counted apart).
    void end(const Event& e) {
        std::string frames;
        for (const auto& [source, count] : framesBySource_)
            frames += (frames.empty() ? "" : ", ") + std::to_string(count) + " " + source;
        std::fprintf(out_, "== summary: scenario %s, %s frames%s\n", scenario_.c_str(), valueText(e["frames"]).c_str(),
                     frames.empty() ? "" : (" (" + frames + ")").c_str());
        std::string sent;
        for (const auto& [stage, count] : e["messages"].items()) sent += "  " + stage + " " + valueText(count);
        std::fprintf(out_, "   messages sent to the DSP:%s\n", sent.empty() ? " none" : sent.c_str());
        if (e.value("consoleChanges", 0) > 0)
            std::fprintf(out_, "   console changes accepted by the driver: %s\n", valueText(e["consoleChanges"]).c_str());
        if (e.value("expectedOutOfRange", 0) > 0)
            std::fprintf(out_, "   FUSION messages outside the DSP range by design (marked \"expected\"): %s\n",
                         valueText(e["expectedOutOfRange"]).c_str());
        if (e.value("expectedResults", 0) > 0)
            std::fprintf(out_, "   -1 results by design (marked \"expected\"): %s\n", valueText(e["expectedResults"]).c_str());
        std::fprintf(out_, "   failed calls: %s\n", e["failedCalls"] == 0 ? "none" : valueText(e["failedCalls"]).c_str());
        for (const auto& f : e["failures"])
            std::fprintf(out_, "     %s  %s  %s -> %s\n",
                         f["frame"].is_null() ? "setup" : ("frame " + valueText(f["frame"])).c_str(),
                         valueText(f["pipe"]).c_str(), valueText(f["op"]).c_str(), valueText(f["ret"]).c_str());
        if (e["interrupted"].is_string())
            std::fprintf(out_, "   INTERRUPTED by %s after %s of %s frames: the run did not complete\n",
                         valueText(e["interrupted"]).c_str(), valueText(e["frames"]).c_str(), plannedFrames_.c_str());
    }

    static std::string expectedText(const Event& e) {
        return e.contains("expected") ? "  (expected: " + e["expected"].get<std::string>() + ")" : std::string();
    }

    std::FILE* out_;
    TableOptions options_;
    std::string scenario_;
    std::string plannedFrames_;
    std::map<std::string, int64_t> framesBySource_;
};

}  // namespace

std::unique_ptr<Formatter> makeTableFormatter(std::FILE* out, TableOptions options) {
    return std::make_unique<TableFormatter>(out, options);
}

}  // namespace ispdsp::tools::sim

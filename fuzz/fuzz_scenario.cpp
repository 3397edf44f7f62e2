// Fuzz target: the scenario reader of ispdsp-sim. Any text is a scenario or is refused with a
// ScenarioError that names the file; no other exception, and no parser's own words. An odd
// length also sets --frames (the override skips the file's frame count).
#include <cstdint>
#include <string>

#include "fuzz_check.h"
#include "scenario.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::optional<int64_t> frames = size % 2 == 1 ? std::optional<int64_t>(size % 64) : std::nullopt;
    try {
        const ispdsp::tools::sim::Scenario scenario = ispdsp::tools::sim::parseScenario(text, "fuzz.json", frames);
        require(!frames || static_cast<int64_t>(scenario.frames.size()) == *frames, "--frames not applied");
    } catch (const ispdsp::tools::sim::ScenarioError& e) {
        const std::string message = e.what();
        require(message.starts_with("fuzz.json") || message.starts_with("--frames"), "an error that names no file");
        require(text.find("[json.") != std::string::npos || message.find("[json.exception") == std::string::npos,
                "parser words in a message");
    }
    return 0;
}

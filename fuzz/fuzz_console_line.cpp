// Fuzz target: the simulator's console line reader. A line splits into words without blanks
// (a comment or a blank line into none, a leading "aewDebug" dropped), every word gets its
// value check, and the line as the console echoes it is printable: valid UTF-8 without
// control characters.
#include <cstdint>
#include <string>

#include "fuzz_check.h"
#include "console.h"
#include "console_checks.h"
#include "printable_text.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> args = ispdsp::tools::sim::splitCommandLine(line);
    for (const std::string& word : args) {
        require(!word.empty(), "an empty word");
        require(word.find_first_of(" \t\n\v\f\r") == std::string::npos, "a blank inside a word");
    }
    require(args.empty() || args.front() != "aewDebug" || line.find("aewDebug") != line.rfind("aewDebug"),
            "the command name kept");
    (void)ispdsp::tools::sim::consoleValueWarnings(args);
    const std::string shown = ispdsp::tools::printableText(line);
    require(ispdsp::tools::isValidUtf8(shown), "an echo that is not UTF-8");
    for (unsigned char c : shown) require(c == '\t' || (c >= 0x20 && c != 0x7F), "a control character echoed");
    return 0;
}

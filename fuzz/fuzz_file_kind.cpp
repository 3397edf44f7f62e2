// Fuzz target: what a file seems to be (the tools' refusal of a file of another kind), and
// the JSON error finder that both tools' readers use. Every kind has its words; a file that
// seems to be JSON text either parses or has one syntax error at a line and column inside it.
#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include "fuzz_check.h"
#include "file_kind.h"
#include "json_syntax_error.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using ispdsp::tools::FileKind;
    const FileKind kind = ispdsp::tools::recogniseFileKind(std::span<const uint8_t>(data, size));
    require(std::string_view(ispdsp::tools::describeFileKind(kind)) != "?", "a kind without words");
    require((kind == FileKind::Empty) == (size == 0), "empty is not the empty file");
    if (kind == FileKind::JsonText || size < 4096) {
        const std::string_view text(reinterpret_cast<const char*>(data), size);
        if (const auto error = ispdsp::tools::findJsonSyntaxError(text)) {
            const size_t lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
            require(error->line >= 1 && error->line <= lines && error->column >= 1, "a place outside the text");
            require(!error->reason.empty() && !error->reason.starts_with("[json.exception"), "parser words");
        }
    }
    return 0;
}

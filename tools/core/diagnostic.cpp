#include "diagnostic.h"

#include <cstdio>
#include <vector>

#include "printable_text.h"

namespace ispdsp::tools {

std::string diagnosticText(const Diagnostic& d) {
    std::string text = d.severity == Severity::Error ? "error: " : "warning: ";
    if (!d.file.empty()) {
        text += d.file;
        if (d.line > 0) text += ":" + std::to_string(d.line) + (d.column > 0 ? ":" + std::to_string(d.column) : "");
        text += ": ";
    }
    return printableText(text + d.message);
}

ProgramMessages::ProgramMessages(std::string program) : std::ostream(&lines_), lines_(std::move(program)) {}
ProgramMessages::~ProgramMessages() = default;

ProgramMessages::Lines::~Lines() {
    if (!line_.empty()) emitLine();
}

void ProgramMessages::Lines::emitLine() {
    const std::string text = program_ + ": " + printableText(line_) + "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    line_.clear();
}

ProgramMessages::Lines::int_type ProgramMessages::Lines::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char ch = traits_type::to_char_type(c);
    return xsputn(&ch, 1) == 1 ? c : traits_type::eof();
}

std::streamsize ProgramMessages::Lines::xsputn(const char* text, std::streamsize count) {
    for (std::streamsize i = 0; i < count; ++i) {
        if (text[i] == '\n')
            emitLine();
        else
            line_ += text[i];
    }
    return count;
}

namespace {

// The parser's sentences, "PREFIX {1} INFIX {2} SUFFIX", and ours.
struct Rewording {
    std::string_view prefix, infix, suffix;
    std::string_view ours;  // {1}, {2}: the parser's words; {commands}: the tool's commands
};
constexpr Rewording kRewordings[] = {
    {"A subcommand is required", "", "", "a command is required: {commands}"},
    {"The following argument was not expected: ", "", "", "unexpected argument '{1}'"},
    {"The following arguments were not expected: ", "", "", "unexpected arguments: {1}"},
    {"", " excludes ", "", "{1} and {2} cannot be used together"},
    {"", " requires ", "", "{1} needs {2}"},
    {"", ": 1 required ", " missing", "{1} needs a value"},
    {"Could not convert: ", " = ", "", "{1}: '{2}' is not a number"},
    {"", " is required", "", "{1} is missing"},
};

std::string replaced(std::string text, std::string_view key, std::string_view value) {
    for (size_t at = 0; (at = text.find(key, at)) != std::string::npos; at += value.size())
        text.replace(at, key.size(), value);
    return text;
}

}  // namespace

std::string commandLineProblem(std::string_view parserText, std::string_view commands) {
    std::string_view text = parserText.substr(0, parserText.find_last_not_of(" \n") + 1);
    for (const Rewording& r : kRewordings) {
        if (!text.starts_with(r.prefix) || !text.ends_with(r.suffix) || text.size() < r.prefix.size() + r.suffix.size())
            continue;
        const std::string_view words = text.substr(r.prefix.size(), text.size() - r.prefix.size() - r.suffix.size());
        const size_t split = r.infix.empty() ? words.size() : words.find(r.infix);
        if (split == std::string_view::npos) continue;
        const std::string_view second = r.infix.empty() ? "" : words.substr(split + r.infix.size());
        return replaced(replaced(replaced(std::string(r.ours), "{1}", words.substr(0, split)), "{2}", second),
                        "{commands}", commands);
    }
    return std::string(text);
}

}  // namespace ispdsp::tools

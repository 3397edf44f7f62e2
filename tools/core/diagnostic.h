// One way for every host tool to say what went wrong, with the words `ispdsp-cfg --help`
// states: "error:" (the work could not be done, or the driver would reject the file),
// "warning:" (it was done, but part of the input is ignored or changed). A message names the
// file it is about and, in a text file, the line and column; every byte of it is printable.
// On standard error each line starts with the tool's name: "ispdsp-sim: error: s.json:3:26: ...".
#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace ispdsp::tools {

enum class Severity { Error, Warning };

struct Diagnostic {
    Severity severity = Severity::Error;
    std::string file;         // empty: not about a file (the command line)
    std::size_t line = 0;     // 1-based; 0 when the place is no text position
    std::size_t column = 0;
    std::string message;
};

// An error about no file in particular (the command line, the driver library, a failed run).
inline Diagnostic plainError(std::string message) { return {Severity::Error, {}, 0, 0, std::move(message)}; }

// "error: FILE:LINE:COLUMN: message", the parts that are not known left out.
std::string diagnosticText(const Diagnostic& d);
inline std::ostream& operator<<(std::ostream& out, const Diagnostic& d) { return out << diagnosticText(d) << "\n"; }

// Standard error of a tool: every line written to it goes out as "PROGRAM: line", escaped,
// as soon as it is complete.
class ProgramMessages : public std::ostream {
public:
    explicit ProgramMessages(std::string program);
    ~ProgramMessages() override;

private:
    class Lines : public std::streambuf {
    public:
        explicit Lines(std::string program) : program_(std::move(program)) {}
        ~Lines() override;

    protected:
        int_type overflow(int_type c) override;
        std::streamsize xsputn(const char* text, std::streamsize count) override;

    private:
        void emitLine();
        std::string program_;
        std::string line_;
    } lines_;
};

// A command-line parser's complaint in our words ("'bogus' is not a command"); `commands`
// lists the tool's commands, empty for a tool without them.
std::string commandLineProblem(std::string_view parserText, std::string_view commands);

}  // namespace ispdsp::tools

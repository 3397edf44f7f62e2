// The host's "aewDebug" console: reads command lines (GNU readline on a
// terminal when it was found at configure time, plain lines otherwise), splits
// them into arguments and hands them to the chosen pipe's OpSetDbgDspParam;
// after every command one more frame runs so the change shows in the next
// frame's messages.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "pipe_pair.h"
#include "reporter.h"

namespace ispdsp::tools::sim {

struct ConsoleOptions {
    int pipe = kColorPipe;
    Int32 langue = 0;  // 1: the driver prints its Chinese menu texts
    std::optional<std::string> tuningSource;  // the console pipe's parameter file, for "save FILE"
    std::vector<std::string> runInputs;       // files "save" never writes
};

// The simulator's own console commands (the rest go to the driver).
inline constexpr const char* kConsoleCommandsHelp =
    "simulator commands: save FILE (the tuning with the accepted changes, as tuning.json; "
    "save --force FILE replaces an existing file), "
    "continue (resume the scenario with --console-every), quit or exit, help (this and the driver's menu)";

enum class ConsoleEnd {
    Quit,        // "quit" or "exit": the run ends
    Continue,    // "continue" between frames: the scenario goes on
    EndOfInput,  // no more lines
};

// Splits a command line at white space; a leading "aewDebug" (the host's
// command name) is dropped. Empty for blank lines and lines starting with '#'.
std::vector<std::string> splitCommandLine(const std::string& line);

class Console {
public:
    // `nextFrame` runs the extra frame after each command.
    Console(PipePair& pair, Reporter& reporter, ConsoleOptions options, std::function<void()> nextFrame);

    // Reads and runs commands until quit, end of input or, when
    // `allowContinue`, a "continue" line.
    ConsoleEnd run(bool allowContinue);

private:
    bool readLine(std::string& line);
    void execute(const std::string& line, const std::vector<std::string>& args);
    void showMenu(const std::string& line);
    void save(const std::string& line, const std::vector<std::string>& args);

    PipePair& pair_;
    Reporter& reporter_;
    ConsoleOptions options_;
    std::function<void()> nextFrame_;
    bool interactive_;
};

}  // namespace ispdsp::tools::sim

#include "console.h"

#include "console_checks.h"
#include "stop_signals.h"
#include "tuning_save.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#ifdef ISPDSP_SIM_HAVE_READLINE
#include <readline/history.h>
#include <readline/readline.h>
#endif

namespace ispdsp::tools::sim {

namespace {
// argp has 33 entries and the one after the last argument must be null.
constexpr size_t kMaxArguments = DRV_ISP_CMD_MAX_ARGS - 1;

#ifdef ISPDSP_SIM_HAVE_READLINE
// readline handles Ctrl-C itself and goes on reading; this ends the line so
// the console can see the stop request.
int endLineOnStop() {
    if (stopRequested()) rl_done = 1;
    return 0;
}
#endif
}  // namespace

std::vector<std::string> splitCommandLine(const std::string& line) {
    std::vector<std::string> args;
    std::istringstream in(line);
    std::string word;
    while (in >> word) args.push_back(word);
    if (!args.empty() && args.front().front() == '#') return {};
    if (!args.empty() && args.front() == "aewDebug") args.erase(args.begin());
    return args;
}

Console::Console(PipePair& pair, Reporter& reporter, ConsoleOptions options, std::function<void()> nextFrame)
    : pair_(pair),
      reporter_(reporter),
      options_(options),
      nextFrame_(std::move(nextFrame)),
      interactive_(isatty(STDIN_FILENO) != 0) {}

bool Console::readLine(std::string& line) {
    reporter_.flush();
    if (stopRequested() || reporter_.outputFailed()) return false;
    const std::string prompt = std::string("aewDebug ") + pipeName(options_.pipe) + "> ";
#ifdef ISPDSP_SIM_HAVE_READLINE
    if (interactive_) {
        rl_outstream = stderr;  // the prompt stays out of the results
        rl_signal_event_hook = &endLineOnStop;
        char* text = readline(prompt.c_str());
        if (text == nullptr || stopRequested()) {
            std::free(text);
            return false;
        }
        line = text;
        if (!line.empty()) add_history(text);
        std::free(text);
        return true;
    }
#endif
    if (interactive_) {
        std::fputs(prompt.c_str(), stderr);
        std::fflush(stderr);
    }
    return static_cast<bool>(std::getline(std::cin, line)) && !stopRequested();
}

void Console::execute(const std::string& line, const std::vector<std::string>& args) {
    Context& context = reporter_.context();
    context.phase = "console";
    context.pipe = options_.pipe;
    reporter_.emit("console", Event{{"line", line}, {"args", args}, {"langue", options_.langue}});
    if (args.size() > kMaxArguments) {
        reporter_.emit("error", Event{{"message", "too many arguments: at most " + std::to_string(kMaxArguments)}});
        return;
    }
    for (const std::string& warning : consoleValueWarnings(args)) reporter_.emit("warning", Event{{"message", warning}});
    pair_.console(options_.pipe, args, options_.langue);
    nextFrame_();
}

// "help" is no driver command: the driver answers any unknown name with its
// menu and -1, which is what the user asked for here, so it is not a failure.
void Console::showMenu(const std::string& line) {
    reporter_.context().pipe = options_.pipe;
    reporter_.emit("console", Event{{"line", line}, {"args", {"help"}}, {"langue", options_.langue}});
    pair_.console(options_.pipe, {"help"}, options_.langue, "the driver's menu, as asked");
    reporter_.emit("note", Event{{"message", kConsoleCommandsHelp}});
}

// "save FILE" writes a new file; only "save --force FILE" replaces one.
void Console::save(const std::string& line, const std::vector<std::string>& args) {
    reporter_.context().pipe = options_.pipe;
    reporter_.emit("console", Event{{"line", line}, {"args", args}, {"langue", options_.langue}});
    const bool force = args.size() == 3 && args[1] == "--force";
    const CFG_DspIspCfgTables* tables = pair_.tableSet(options_.pipe);
    if ((args.size() != 2 && !force) || tables == nullptr || !options_.tuningSource) {
        reporter_.emit("error", Event{{"message", tables != nullptr && options_.tuningSource
                                                      ? "usage: save FILE, or save --force FILE to replace it"
                                                      : "no tuning to save"}});
        return;
    }
    const std::string& file = args.back();
    const SaveResult saved =
        saveTuning(*tables, *options_.tuningSource, file, {options_.runInputs, force, "save --force " + file});
    reporter_.emit(saved.ok ? "saved" : "error",
                   Event{{"message", saved.message}, {"file", file}, {"changedTables", saved.changedTables}});
}

ConsoleEnd Console::run(bool allowContinue) {
    std::string line;
    while (readLine(line)) {
        const std::vector<std::string> args = splitCommandLine(line);
        if (args.empty()) continue;
        if (args.size() == 1 && (args[0] == "quit" || args[0] == "exit")) return ConsoleEnd::Quit;
        if (allowContinue && args.size() == 1 && args[0] == "continue") return ConsoleEnd::Continue;
        if (args.size() == 1 && args[0] == "help") {
            showMenu(line);
        } else if (args[0] == "save") {
            save(line, args);
        } else {
            execute(line, args);
        }
    }
    return ConsoleEnd::EndOfInput;
}

}  // namespace ispdsp::tools::sim

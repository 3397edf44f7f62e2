#include "bounded_run.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ispdsp::tools::cfg::serve {

namespace {

using Clock = std::chrono::steady_clock;

// Only async-signal-safe calls between fork and exec: the server has other threads.
[[noreturn]] void becomeChild(char* const* argv, const char* folder, int out, int err) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);  // the server blocks its stop signals; the child must not
    const int in = open("/dev/null", O_RDONLY);
    if (in < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0 || chdir(folder) != 0) _exit(127);
    execv(argv[0], argv);
    _exit(127);
}

// Appends what `fd` has to `to`; false at end of file.
bool drain(int fd, std::string& to) {
    char buffer[65536];
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n > 0) to.append(buffer, static_cast<size_t>(n));
    return n > 0 || (n < 0 && errno == EINTR);
}

}  // namespace

BoundedRun runBounded(const std::vector<std::string>& argv, const std::string& folder, const RunLimits& limits) {
    BoundedRun run;
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0) return run;
    if (pipe2(err, O_CLOEXEC) != 0) {
        close(out[0]);
        close(out[1]);
        return run;
    }
    const pid_t pid = fork();
    if (pid == 0) becomeChild(args.data(), folder.c_str(), out[1], err[1]);
    close(out[1]);
    close(err[1]);
    run.started = pid > 0;
    const Clock::time_point deadline = Clock::now() + limits.time;
    bool outOpen = run.started, errOpen = run.started;
    while (outOpen || errOpen) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            run.timedOut = true;
            break;
        }
        pollfd fds[2] = {{outOpen ? out[0] : -1, POLLIN, 0}, {errOpen ? err[0] : -1, POLLIN, 0}};
        if (poll(fds, 2, static_cast<int>(left)) < 0 && errno != EINTR) break;
        if (fds[0].revents != 0) outOpen = drain(out[0], run.output);
        if (fds[1].revents != 0) errOpen = drain(err[0], run.errors);
        if (run.output.size() > limits.outputBytes) {
            run.tooMuchOutput = true;
            break;
        }
        if (run.errors.size() > limits.errorBytes) run.errors.resize(limits.errorBytes);
    }
    close(out[0]);
    close(err[0]);
    if (!run.started) return run;
    // Past a bound, or closed its output but still running at the deadline: stopped (the files it
    // leaves go with the caller's folder).
    int status = -1;  // not an exit status, until waitpid gives one
    pid_t waited = 0;
    while (!outOpen && !errOpen && (waited = waitpid(pid, &status, WNOHANG)) == 0 && Clock::now() < deadline)
        usleep(5000);
    if (waited == 0) {
        run.timedOut = run.timedOut || !run.tooMuchOutput;
        kill(pid, SIGKILL);
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (!run.timedOut && !run.tooMuchOutput && WIFEXITED(status)) run.exitStatus = WEXITSTATUS(status);
    return run;
}

}  // namespace ispdsp::tools::cfg::serve

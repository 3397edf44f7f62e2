// serve: the tuning workbench, a local web page on the table set that shows and edits it with
// the library's own calculations. Prints the address to open (with this run's token) as the
// first line of standard output and serves until SIGINT, SIGTERM or SIGHUP.
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <thread>

#include "commands.h"
#include "serve/access_guard.h"
#include "serve/tables_file.h"
#include "serve/workbench_routes.h"

namespace ispdsp::tools::cfg {

namespace {

// Waits for a stop signal on its own thread (blocked everywhere else), then stops the server.
class StopOnSignal {
public:
    explicit StopOnSignal(httplib::Server& server) {
        sigemptyset(&signals_);
        for (int s : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) sigaddset(&signals_, s);
        pthread_sigmask(SIG_BLOCK, &signals_, nullptr);  // before the server starts its threads
        waiter_ = std::thread([this, &server] {
            int signal = 0;
            sigwait(&signals_, &signal);
            received_ = signal;
            server.stop();
        });
    }
    ~StopOnSignal() {
        if (received_ == 0) pthread_kill(waiter_.native_handle(), SIGUSR1);  // the server stopped first
        waiter_.join();
        pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
    }
    int received() const { return received_; }

private:
    sigset_t signals_;
    std::thread waiter_;
    std::atomic<int> received_{0};
};

bool isLoopback(const std::string& address) { return address == "127.0.0.1" || address == "::1" || address == "localhost"; }

}  // namespace

int runServe(const ServeOptions& o, std::ostream& out, std::ostream& err) {
    namespace fs = std::filesystem;
    serve::WorkbenchFiles files;
    files.tables = o.input.empty() ? serve::sampleParamFile() : fs::path(o.input);
    if (!o.mono.empty()) files.mono = fs::path(o.mono);
    files.startFolder = fs::current_path();
    std::string error;
    std::unique_ptr<serve::Workbench> workbench = serve::Workbench::open(files, error);
    if (!workbench) {
        err << "error: " << error << "\n";
        return kExitError;
    }
    const std::string token = serve::newAccessToken();
    if (token.empty()) {
        err << "error: cannot read the system's random source for the access token\n";
        return kExitError;
    }

    httplib::Server server;
    // Each answer leaves at once: the gain control redraws on every move, and waiting for the
    // page's acknowledgement of the headers before sending the body costs 40 ms. Set before
    // binding: the accepted connections take it from the listening socket.
    server.set_tcp_nodelay(true);
    const int port = o.port == 0 ? server.bind_to_any_port(o.bind)
                                 : (server.bind_to_port(o.bind, o.port) ? o.port : -1);
    if (port <= 0) {
        err << "error: cannot listen on " << o.bind << ":" << o.port << "\n";
        return kExitError;
    }
    const std::string hostPort = (o.bind.find(':') != std::string::npos ? "[" + o.bind + "]" : o.bind) + ":" +
                                 std::to_string(port);
    const serve::AccessGuard guard(hostPort, token);
    std::mutex lock;
    serve::addWorkbenchRoutes(server, *workbench, guard, lock);

    out << "http://" << hostPort << "/?token=" << token << std::endl;
    if (!isLoopback(o.bind)) {
        err << "warning: --bind " << o.bind << ": the workbench is reachable from other machines; anyone who has "
            << "the address above can read and change the tables\n";
    }
    err << "ispdsp-cfg serve: " << files.tables.string() << (files.mono ? " with mono " + files.mono->string() : "")
        << "; saves go to " << files.startFolder.string() << "; Ctrl-C stops\n";
    int received = 0;
    {
        StopOnSignal stopper(server);
        server.listen_after_bind();
        received = stopper.received();
    }
    err << "ispdsp-cfg serve: stopped" << (received != 0 ? std::string(" (") + strsignal(received) + ")" : "") << "\n";
    return kExitOk;
}

}  // namespace ispdsp::tools::cfg

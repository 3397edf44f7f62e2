// Who may talk to the workbench: a request must name the printed host:port in its Host header
// (a page from another site that rebinds its name to 127.0.0.1 sends its own name there), and a
// request that changes the tables or returns their contents must carry the run's token, which
// only the printed address holds.
#pragma once

#include <string>

namespace ispdsp::tools::cfg::serve {

class AccessGuard {
public:
    // `hostPort`: what the Host header must say, e.g. "127.0.0.1:8080".
    AccessGuard(std::string hostPort, std::string token);

    bool hostAllowed(const std::string& hostHeader) const;
    // The token from the X-Workbench-Token header, or the "token" query value.
    bool tokenMatches(const std::string& presented) const;
    const std::string& token() const { return token_; }
    const std::string& hostPort() const { return hostPort_; }

private:
    std::string hostPort_;
    std::string token_;
};

// 32 hex digits from the system's random source; empty when it cannot be read.
std::string newAccessToken();

}  // namespace ispdsp::tools::cfg::serve

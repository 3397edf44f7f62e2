#include "access_guard.h"

#include <cstdio>
#include <fstream>

namespace ispdsp::tools::cfg::serve {

AccessGuard::AccessGuard(std::string hostPort, std::string token)
    : hostPort_(std::move(hostPort)), token_(std::move(token)) {}

bool AccessGuard::hostAllowed(const std::string& hostHeader) const { return hostHeader == hostPort_; }

bool AccessGuard::tokenMatches(const std::string& presented) const {
    if (presented.size() != token_.size() || token_.empty()) return false;
    unsigned char differ = 0;  // every byte compared: the time does not tell how much was right
    for (size_t i = 0; i < token_.size(); ++i) differ |= static_cast<unsigned char>(presented[i] ^ token_[i]);
    return differ == 0;
}

std::string newAccessToken() {
    std::ifstream random("/dev/urandom", std::ios::binary);
    unsigned char bytes[16];
    if (!random.read(reinterpret_cast<char*>(bytes), sizeof bytes)) return "";
    std::string token;
    for (unsigned char b : bytes) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", b);
        token += hex;
    }
    return token;
}

}  // namespace ispdsp::tools::cfg::serve

// A progress bar on stderr for long runs whose results go to a file or pipe.
#pragma once

#include <cstdint>

namespace ispdsp::tools::sim {

class Progress {
public:
    Progress(bool enabled, int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void update(int64_t done);
    void finish();

private:
    bool enabled_;
    int64_t total_;
    int shown_ = -1;  // percent last drawn
};

}  // namespace ispdsp::tools::sim

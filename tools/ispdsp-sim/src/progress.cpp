#include "progress.h"

#include <cstdio>

namespace ispdsp::tools::sim {

namespace {
constexpr int kBarWidth = 40;
}

Progress::Progress(bool enabled, int64_t total) : enabled_(enabled && total > 0), total_(total) {}

Progress::~Progress() { finish(); }

void Progress::update(int64_t done) {
    if (!enabled_) return;
    const int percent = static_cast<int>(done * 100 / total_);
    if (percent == shown_) return;  // redraw only when the figure moves
    shown_ = percent;
    char bar[kBarWidth + 1];
    const int filled = percent * kBarWidth / 100;
    for (int i = 0; i < kBarWidth; ++i) bar[i] = i < filled ? '#' : '.';
    bar[kBarWidth] = '\0';
    std::fprintf(stderr, "\r[%s] %3d%%  %lld/%lld frames", bar, percent, static_cast<long long>(done),
                 static_cast<long long>(total_));
    std::fflush(stderr);
}

void Progress::finish() {
    if (!enabled_) return;
    std::fputc('\n', stderr);
    enabled_ = false;
}

}  // namespace ispdsp::tools::sim

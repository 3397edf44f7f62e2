// The floating-point settings a host thread may call the library with: the
// four IEEE rounding modes, and flush-to-zero with denormals-are-zero (x86-64
// MXCSR FTZ/DAZ, AArch64 FPCR.FZ) under round-to-nearest. A ScopedFpEnvironment
// sets one and puts the previous settings back.
#pragma once

#include <cfenv>
#include <cstdint>
#include <ostream>
#include <vector>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace ispdsp_test {

struct FpEnvironment {
    const char* name;
    int rounding;        // FE_TONEAREST, FE_DOWNWARD, FE_UPWARD or FE_TOWARDZERO
    bool flushToZero;    // denormal inputs and results taken as zero
};

inline void PrintTo(const FpEnvironment& environment, std::ostream* out) { *out << environment.name; }

inline std::vector<FpEnvironment> fpEnvironments() {
    return {{"ToNearest", FE_TONEAREST, false},
            {"Downward", FE_DOWNWARD, false},
            {"Upward", FE_UPWARD, false},
            {"TowardZero", FE_TOWARDZERO, false},
            {"FlushToZero", FE_TONEAREST, true}};
}

#if defined(__x86_64__)
inline constexpr uint32_t kFlushBits = 0x8040;  // MXCSR FTZ | DAZ
inline uint64_t flushControl() { return _mm_getcsr(); }
inline void setFlushControl(uint64_t value) { _mm_setcsr(static_cast<unsigned>(value)); }
#elif defined(__aarch64__)
inline constexpr uint64_t kFlushBits = uint64_t{1} << 24;  // FPCR.FZ
inline uint64_t flushControl() {
    uint64_t fpcr;
    __asm__ __volatile__("mrs %0, fpcr" : "=r"(fpcr));
    return fpcr;
}
inline void setFlushControl(uint64_t value) { __asm__ __volatile__("msr fpcr, %0" : : "r"(value)); }
#endif

class ScopedFpEnvironment {
public:
    explicit ScopedFpEnvironment(const FpEnvironment& environment) {
        std::fegetenv(&saved_);
        std::fesetround(environment.rounding);
        if (environment.flushToZero) setFlushControl(flushControl() | kFlushBits);
    }
    ~ScopedFpEnvironment() { std::fesetenv(&saved_); }
    ScopedFpEnvironment(const ScopedFpEnvironment&) = delete;
    ScopedFpEnvironment& operator=(const ScopedFpEnvironment&) = delete;

private:
    std::fenv_t saved_{};
};

}  // namespace ispdsp_test

// What a host does for the smaller stages each frame: take the stage's stored
// record from the current table, calculate its payload with the exported
// calculation and send it with the stage's exported Set function through a
// transport handle of its own. Optional in the simulator (--stages).
#pragma once

#include <string>
#include <vector>

#include "driver_library.h"
#include "ispdsp/param_table.h"
#include "reporter.h"

namespace ispdsp::tools::sim {

class StageSender {
public:
    // Binds the calculation and Set function of every stage; false with the
    // missing symbols in error().
    bool bind(const DriverLibrary& library);
    const std::string& error() const { return error_; }

    // Sends every stage of `table` for one pipe; results are reported as call events.
    void sendAll(Reporter& reporter, int pipe, const CFG_DspIspCfgParam& table, DRV_dspIspHandle& handle) const;

private:
    // Called through generic pointer types: every stage function takes two
    // pointers and returns Int32, so the C ABI call is the same.
    using CalculateFn = Int32 (*)(void* input, void* payload);
    using SetFn = Int32 (*)(void* payload, DRV_dspIspHandle* handle);
    struct Bound {
        const char* name;
        CalculateFn calculate;
        SetFn set;
        std::string calculateName;
        std::string setName;
        size_t tableOffset;
        size_t recordSize;
        size_t inputSize;
    };
    std::vector<Bound> stages_;
    std::string error_;
};

}  // namespace ispdsp::tools::sim

#include "stage_sender.h"

#include <array>
#include <cstring>

#include "tuning/stage_list.h"

namespace ispdsp::tools::sim {

namespace {

// Large enough for every payload and calculation input.
constexpr size_t kScratchBytes = 4096;

}  // namespace

bool StageSender::bind(const DriverLibrary& library) {
    stages_.clear();
    std::string missing;
    for (const ispdsp::tuning::TableStage& row : ispdsp::tuning::kTableStages) {
        Bound bound{row.symbolStem,
                    nullptr,
                    nullptr,
                    std::string("DRV_dspCalculate") + row.symbolStem,
                    std::string("DRV_dspOpSet") + row.symbolStem,
                    row.tableOffset,
                    row.recordBytes,
                    row.inputBytes};
        bound.calculate = reinterpret_cast<CalculateFn>(library.symbol(bound.calculateName.c_str()));
        bound.set = reinterpret_cast<SetFn>(library.symbol(bound.setName.c_str()));
        // The scratch buffers hold the whole calculation input, record first.
        if (row.inputBytes > kScratchBytes || row.recordBytes > row.inputBytes) missing += " (" + bound.calculateName + " input size)";
        if (bound.calculate == nullptr) missing += " " + bound.calculateName;
        if (bound.set == nullptr) missing += " " + bound.setName;
        stages_.push_back(std::move(bound));
    }
    if (!missing.empty()) error_ = library.path() + ": the library does not export" + missing;
    return missing.empty();
}

void StageSender::sendAll(Reporter& reporter, int pipe, const CFG_DspIspCfgParam& table,
                          DRV_dspIspHandle& handle) const {
    for (const Bound& stage : stages_) {
        // Cleared buffers: a calculation writes only the payload fields it maps.
        std::array<uint8_t, kScratchBytes> input{};
        std::array<uint8_t, kScratchBytes> payload{};
        std::memcpy(input.data(), reinterpret_cast<const uint8_t*>(&table) + stage.tableOffset, stage.recordSize);

        reporter.beginOperation(pipe, stage.calculateName);
        const Int32 calculated = stage.calculate(input.data(), payload.data());
        if (calculated != 0) reporter.countFailure(stage.calculateName, calculated);
        reporter.emit("call", Event{{"op", stage.calculateName}, {"ret", calculated}});

        reporter.beginOperation(pipe, stage.setName);
        const Int32 sent = stage.set(payload.data(), &handle);
        if (sent != 0) reporter.countFailure(stage.setName, sent);
        reporter.emit("call", Event{{"op", stage.setName}, {"ret", sent}});
    }
}

}  // namespace ispdsp::tools::sim

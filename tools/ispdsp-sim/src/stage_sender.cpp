#include "stage_sender.h"

#include <array>
#include <cstring>

#include "ispdsp/fusion.h"
#include "ispdsp/stages.h"

namespace ispsim {

namespace {

struct StageRow {
    const char* name;  // symbol stem: DRV_dspCalculate<name>, DRV_dspOpSet<name>
    size_t tableOffset;
    size_t recordSize;
    size_t inputSize;  // the stored record first, then run-time values the host leaves 0
};

#define STAGE_ROW(Name, field, Record, Input) \
    StageRow { #Name, offsetof(CFG_DspIspCfgParam, field), sizeof(Record), sizeof(Input) }

// In the order of the table record.
const std::array<StageRow, 12> kStages = {{
    STAGE_ROW(Lsm, ispLsmParam, CFG_DSP_LsmV112, DSP_LsmCalculateParam),
    STAGE_ROW(Lae, ispLaeParam, CFG_DSP_LaeV209, DSP_LaeCalculateParam),
    STAGE_ROW(Sbm3d, ispSbm3dParam, CFG_DSP_Sbm3dV113, DSP_Sbm3dCalculateParam),
    STAGE_ROW(Yuv2yuv, ispYuv2yuvParam, CFG_DSP_Yuv2yuvV100, DSP_Yuv2yuvCalculateParam),
    STAGE_ROW(FusionPlate, ispFusionPlateParam, CFG_DSP_FusionPlateV1001, DSP_FusionPlateCalculateParam),
    STAGE_ROW(Fg2c, ispFg2cParam, CFG_DSP_Fg2cV102, DSP_Fg2cCalculateParam),
    STAGE_ROW(Lle, ispLleParam, CFG_DSP_LleV203, DSP_LleCalculateParam),
    STAGE_ROW(Ylwdr, ispYlwdrParam, CFG_DSP_YlwdrV102, DSP_YlwdrCalculateParam),
    STAGE_ROW(Y2d, ispY2dParam, CFG_DSP_Y2dV5118, DSP_Y2dCalculateParam),
    STAGE_ROW(Dlae, ispDlaeParam, CFG_DSP_DlaeV101, DSP_DlaeCalculateParam),
    STAGE_ROW(Dlcfa, ispDlcfaParam, CFG_DSP_DlcfaV101, DSP_DlcfaCalculateParam),
    STAGE_ROW(Sade, ispSadeParam, CFG_DSP_SadeV113, DSP_SadeCalculateParam),
}};

#undef STAGE_ROW

// Large enough for every payload and calculation input.
constexpr size_t kScratchBytes = 4096;

}  // namespace

bool StageSender::bind(const DriverLibrary& library) {
    stages_.clear();
    std::string missing;
    for (const StageRow& row : kStages) {
        Bound bound{row.name, nullptr, nullptr, std::string("DRV_dspCalculate") + row.name,
                    std::string("DRV_dspOpSet") + row.name, row.tableOffset, row.recordSize, row.inputSize};
        bound.calculate = reinterpret_cast<CalculateFn>(library.symbol(bound.calculateName.c_str()));
        bound.set = reinterpret_cast<SetFn>(library.symbol(bound.setName.c_str()));
        // The scratch buffers hold the whole calculation input, record first.
        if (row.inputSize > kScratchBytes || row.recordSize > row.inputSize) missing += " (" + bound.calculateName + " input size)";
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

}  // namespace ispsim

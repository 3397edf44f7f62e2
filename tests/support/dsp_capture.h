// A test double for the host's DSP configuration callbacks.
//
// The callback type OpDspIspCfgctl carries no context pointer, so the double
// works through a "current capture": constructing a DspCapture makes it the
// one that the callbacks record into, destroying it brings back the capture
// that was current before (captures nest; one thread at a time).
//
//   ispdsp_test::DspCapture dsp;
//   DRV_dspIspHandle handle = dsp.handle(5);     // nId 5, both callbacks
//   dsp.setSetResult(-3);                         // what OpSetDspConfig returns
//   DRV_dspOpSetLae(&payload, &handle);
//   ASSERT_EQ(dsp.sets().size(), 1u);
//   dsp.sets()[0].ctrl.nId;                       // control record as received
//   dsp.sets()[0].bytes()[72];                    // message bytes as received
//
// Set calls: every OpSetDspConfig call is recorded as a copy of the 64-byte
// control record and of the 4168-byte message, taken during the call.
//
// Get calls: every OpGetDspConfig call is recorded the same way (the message
// as the driver handed it in, before the double writes its reply). The double
// then writes the programmed fusion block into the message and returns the
// programmed result. The reply is written whatever the result, so a test can
// check that a failed read-back leaves the caller's record untouched.
//
// Addresses inside messages (the CAL path and the fusion curve) are valid only
// during the call. With followAddresses(true) the double copies what they
// point at into the recorded call (calPath, curve); leave it off when a test
// sends made-up addresses.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ispdsp/dsp_config.h"
#include "ispdsp/fusion.h"

namespace ispdsp_test {

// Message bytes [begin, end).
struct ByteRange {
    size_t begin;
    size_t end;
};

// One callback call as the double saw it.
struct DspCall {
    DRV_dspIspCfgOpsCtrl ctrl;
    DSP_AEW_CFG_S message;
    // Filled only with followAddresses(true):
    std::string calPath;       // CAL: the text behind calParam.cfg_path
    std::vector<Uint8> curve;  // FUSION: FUSION_NIR_POINTS bytes behind w_nir

    // The message as raw wire bytes (4168).
    std::span<const Uint8> bytes() const { return {reinterpret_cast<const Uint8*>(&message), sizeof message}; }
    Uint32 type() const { return message.u32Type; }
    // The Uint32 at message offset `offset` (little-endian, unaligned is fine).
    Uint32 word(size_t offset) const {
        Uint32 value = 0;
        if (offset + sizeof value <= sizeof message) std::memcpy(&value, bytes().data() + offset, sizeof value);
        return value;
    }
    // The offset of the first nonzero message byte that lies outside every
    // given [begin, end) range and outside the u32Type word (offsets 0..3);
    // nullopt when all those bytes are zero, as in a cleared message.
    std::optional<size_t> firstNonZeroExcept(std::initializer_list<ByteRange> filled) const {
        const auto b = bytes();
        for (size_t i = sizeof(Uint32); i < b.size(); ++i) {
            const bool inFilled =
                std::any_of(filled.begin(), filled.end(), [i](const ByteRange& r) { return i >= r.begin && i < r.end; });
            if (!inFilled && b[i] != 0) return i;
        }
        return std::nullopt;
    }
    // True when every byte of the control record behind nId is zero.
    bool ctrlReservedZero() const {
        return std::all_of(std::begin(ctrl.reserved), std::end(ctrl.reserved), [](Uint32 w) { return w == 0; });
    }
};

// The four lines that the message functions print to standard output.
enum class DspPrint {
    NullPointer,  // red "Input NULL POINT <argument>!"
    SetMissing,   // yellow "Set dsp cfg failed!"
    GetMissing,   // yellow "Get dsp cfg failed!"
    GetError,     // red "OpGetDspConfig error! "
};

// Success when `printed` (e.g. from testing::internal::GetCapturedStdout) is
// exactly one such line, colour escapes included, naming `function` and any
// decimal source line; `argument` is the name in a NullPointer line.
testing::AssertionResult isDspPrint(const std::string& printed, DspPrint kind, const std::string& function,
                                    const std::string& argument = "");

class DspCapture {
public:
    DspCapture() : previous_(current_) { current_ = this; }
    ~DspCapture() { current_ = previous_; }
    DspCapture(const DspCapture&) = delete;
    DspCapture& operator=(const DspCapture&) = delete;

    // A transport handle with the given nId and both callbacks of the double.
    DRV_dspIspHandle handle(Uint32 nId = 0) const {
        DRV_dspIspHandle h{};
        h.nId = nId;
        h.dspIspCfgOps.OpGetDspConfig = &DspCapture::onGet;
        h.dspIspCfgOps.OpSetDspConfig = &DspCapture::onSet;
        return h;
    }
    // The double's callbacks, to build handles or creation records by hand.
    static OpDspIspCfgctl setCallback() { return &DspCapture::onSet; }
    static OpDspIspCfgctl getCallback() { return &DspCapture::onGet; }

    // What OpSetDspConfig / OpGetDspConfig return from now on (default 0).
    void setSetResult(Int32 result) { setResult_ = result; }
    void setGetResult(Int32 result) { getResult_ = result; }
    // The 64-byte 2.7.22 block that OpGetDspConfig writes at the start of
    // dspArgs on every call from now on.
    void setGetFusionReply(const FUSION_PARAM_V2_7_22& block) { fusionReply_ = block; }

    void followAddresses(bool on) { followAddresses_ = on; }

    const std::vector<DspCall>& sets() const { return sets_; }
    const std::vector<DspCall>& gets() const { return gets_; }
    // The Set calls whose u32Type is `type`, in call order.
    std::vector<DspCall> setsOfType(Uint32 type) const {
        std::vector<DspCall> out;
        std::copy_if(sets_.begin(), sets_.end(), std::back_inserter(out), [type](const DspCall& c) { return c.type() == type; });
        return out;
    }
    // The recorded u32Type of every Set call, in call order.
    std::vector<Uint32> setTypes() const {
        std::vector<Uint32> out;
        for (const DspCall& c : sets_) out.push_back(c.type());
        return out;
    }
    // Forgets the recorded calls (results and replies stay programmed).
    void clearCalls() {
        sets_.clear();
        gets_.clear();
    }

private:
    static Int32 onSet(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) { return onCall(true, ctrl, message); }
    static Int32 onGet(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) { return onCall(false, ctrl, message); }
    static Int32 onCall(bool isSet, DRV_dspIspCfgOpsCtrl* ctrl, Ptr message);
    DspCall record(const DRV_dspIspCfgOpsCtrl* ctrl, const void* message) const;

    static inline DspCapture* current_ = nullptr;  // the capture the callbacks record into
    DspCapture* previous_ = nullptr;
    Int32 setResult_ = 0;
    Int32 getResult_ = 0;
    bool followAddresses_ = false;
    std::optional<FUSION_PARAM_V2_7_22> fusionReply_;
    std::vector<DspCall> sets_;
    std::vector<DspCall> gets_;
};

}  // namespace ispdsp_test

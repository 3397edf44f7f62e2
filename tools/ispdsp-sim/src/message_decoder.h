// Decoding of DSP_AEW_CFG_S messages: a table from stage id to the stage's
// name and its fields (name, message offset, wire type), and the two payload
// addresses that point back into the sender's memory (the NIR weight curve of
// the fusion block and the calibration path of the CAL message), which must be
// read while the callback runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ispdsp/dsp_config.h"
#include "ispdsp/fusion.h"

namespace ispdsp::tools::sim {

enum class WireType { U8, S8, U16, S16, U32, S32, Address };

struct FieldSpec {
    const char* name;
    size_t offset;  // from the start of the message
    WireType type;
};

// What an address field points at, read during the callback.
enum class AddressTarget { None, NirCurve, PathText };

struct StageSpec {
    uint32_t type;     // u32Type
    const char* name;  // "FUSION", "FSSWITCH", "LAE", ...
    std::vector<FieldSpec> fields;
    AddressTarget target = AddressTarget::None;
    size_t targetOffset = 0;  // message offset of the address that target follows
};

// The stage table, indexed by nothing: look up with findStage.
const std::vector<StageSpec>& stageTable();
const StageSpec* findStage(uint32_t type);

// One message as seen by the DSP callback.
struct DecodedField {
    const char* name;
    int64_t value;
    bool isAddress;
    size_t offset;  // in the message
};
struct DecodedMessage {
    uint32_t type = 0;
    std::string stage;  // "?" for an unknown id
    std::vector<DecodedField> fields;
    // Nonzero bytes outside u32Type and the stage's fields (reserved areas
    // included): the transport clears the message, so these point at a sender
    // that copied more than its payload or a caller that left data behind.
    size_t strayBytes = 0;
    std::optional<std::vector<uint8_t>> curve;  // the 511 NIR points, when the address was set
    std::optional<std::string> pathText;        // the calibration path, when the address was set
};

// Decodes a 4168-byte message. Called inside the callback: with
// `followAddresses`, the curve and path addresses in the payload are read
// (bounded reads) while the sender's memory is valid.
DecodedMessage decodeMessage(const DSP_AEW_CFG_S& message, bool followAddresses);

// Field value as the wire holds it (little-endian host).
int64_t readField(std::span<const uint8_t> bytes, size_t offset, WireType type);

}  // namespace ispdsp::tools::sim

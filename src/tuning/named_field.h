// A named integer field of a record or of a DSP payload block: what a tuner,
// the tuning codec and the message decoder call it, where it lies, how wide
// and signed it is, and for stored fields its unit and meaning.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "ispdsp/types.h"

namespace ispdsp::tuning {

struct NamedField {
    const char* name;  // record path ("gamma", "plateLaeParam.gbce_level") or message label
    Uint16 offset;     // inside the record or payload block
    Uint8 width;       // bytes: 1, 2 or 4
    bool isSigned;
    const char* unit;     // "" when the value is a plain level or code
    const char* meaning;  // one line for the tuner's reference; "" for payload fields
};

}  // namespace ispdsp::tuning

#define ISPDSP_NAMED_FIELD(Type, label, member, unit, meaning)                                            \
    ::ispdsp::tuning::NamedField {                                                                        \
        label, static_cast<Uint16>(offsetof(Type, member)),                                               \
            static_cast<Uint8>(sizeof(std::declval<Type&>().member)),                                     \
            std::is_signed_v<std::remove_cvref_t<decltype(std::declval<Type&>().member)>>, unit, meaning \
    }

// In a stage's rules file (types named Record and Payload): a stored record
// field with its unit and meaning, and a payload field with its message label.
#define STORED(member, unit, meaning) ISPDSP_NAMED_FIELD(Record, #member, member, unit, meaning)
#define WIRE(label, member) ISPDSP_NAMED_FIELD(Payload, label, member, "", "")

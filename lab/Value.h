/// The value of an object: its type and its BER encoding, ready to be copied into an answer.
#pragma once

#include "lab/Ber.h"

#include <string>

namespace Lab {

struct Value {
    std::uint8_t tag = Tag::null;
    Bytes contents;

    /// Tag, length and contents.
    [[nodiscard]] Bytes encoded() const { return encodeElement(tag, contents); }

    /// What a manager shows of the value: an octet string's bytes as they are, numbers in decimal, an address and an
    /// OID dotted (the OID with a leading dot), NULL as an empty text.
    [[nodiscard]] std::string text() const;

    bool operator==(const Value&) const = default;
};

} // namespace Lab

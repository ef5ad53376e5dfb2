/// A message of any version taken apart, so that each of its parts can be spoilt and it can be put together again.
#pragma once

#include "lab/Ber.h"

namespace Lab {

struct Packet {
    /// Whole elements, as all parts are.
    struct Binding {
        Bytes oid;
        Bytes value;
    };

    /// What stands before the last element of each of the nested sequences around the PDU: version and community in
    /// versions 1 and 2c; version, header and security, and then the context, in version 3.
    std::vector<Bytes> fronts;
    std::uint8_t pdu = 0; ///< its tag
    Bytes requestId;
    Bytes errorStatus;
    Bytes errorIndex;
    std::vector<Binding> bindings;

    /// Nothing when `message` is not well-formed or is encrypted.
    static std::optional<Packet> read(ByteView message);

    [[nodiscard]] Bytes encoded() const;

    /// The OID of the first binding; nothing when there is none.
    [[nodiscard]] std::optional<Oid> oid() const;
};

} // namespace Lab

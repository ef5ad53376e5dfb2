/// SNMPv3 messages without authentication and privacy (RFC 3412, section 6; RFC 3414, section 2.4): the little of
/// version 3 that this program speaks.
///
/// A request is hostile input: one that is not well-formed is no request. Plain values; safe from any thread.
#pragma once

#include "lab/Ber.h"

namespace Lab {

/// Flags of a message.
namespace V3Flag {
constexpr std::uint8_t authenticated = 1;
constexpr std::uint8_t encrypted = 2;
constexpr std::uint8_t reportable = 4;
} // namespace V3Flag

/// Counters of reports (RFC 3414, section 3.2, and RFC 3412, section 7.2).
namespace V3Report {
inline const Oid unsupportedSecurityLevels{1, 3, 6, 1, 6, 3, 15, 1, 1, 1, 0};
inline const Oid notInTimeWindows{1, 3, 6, 1, 6, 3, 15, 1, 1, 2, 0};
inline const Oid unknownUserNames{1, 3, 6, 1, 6, 3, 15, 1, 1, 3, 0};
inline const Oid unknownEngineIds{1, 3, 6, 1, 6, 3, 15, 1, 1, 4, 0};
inline const Oid unknownContexts{1, 3, 6, 1, 6, 3, 12, 1, 5, 0};
} // namespace V3Report

struct V3Message {
    std::int32_t messageId = 0;
    std::uint8_t flags = 0;
    Bytes engine;
    std::int64_t boots = 0;
    std::int64_t time = 0;
    Bytes user;
    Bytes contextEngine;
    Bytes context;
    Bytes pdu; ///< the whole element; empty when it is encrypted

    /// Reads a datagram of the user-based security model. What stands for authentication and privacy is passed over.
    static std::optional<V3Message> read(ByteView datagram);

    [[nodiscard]] Bytes encoded() const;

    /// A report of `counter` from `engine` in answer to this request.
    [[nodiscard]] V3Message report(const Oid& counter, Bytes engine) const;
};

} // namespace Lab

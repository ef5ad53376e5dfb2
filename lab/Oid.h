/// Object identifiers: arcs as numbers, dotted text, and the contents octets of their BER encoding.
///
/// `Oid` compares arc by arc as numbers, a prefix before what continues it, which is the order of SNMP's get-next
/// (RFC 3416, section 4.2.2). Plain functions over values; safe from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Lab {

using Oid = std::vector<std::uint32_t>;
using Arcs = std::span<const std::uint32_t>;
using ByteView = std::span<const std::uint8_t>;
using Bytes = std::vector<std::uint8_t>;

/// The most arcs that an OID may have in SNMP (RFC 2578, section 3.5).
constexpr std::size_t maximumArcs = 128;

/// Reads "1.3.6.1": 2 to 128 decimal arcs below 2^32 without a leading dot, the first one 0, 1 or 2, the second one
/// below 40 after 0 and 1, and the first two together (40 times the first plus the second) below 2^32. Nothing when
/// `text` is anything else. Throws only `std::bad_alloc`.
std::optional<Oid> parseOid(std::string_view text);

/// The dotted text of `arcs` with a leading dot.
std::string formatOid(Arcs arcs);

/// The contents octets (no tag, no length) of an OID that `parseOid` accepts.
Bytes encodeOidContents(Arcs arcs);

/// Appends the arcs that `contents` encodes to `arcs`. False, with `arcs` as it was, when `contents` is empty, ends
/// within an arc, pads an arc with leading zeros, holds an arc of more than 32 bits or more than 128 arcs.
bool decodeOidContents(ByteView contents, Oid& arcs);

/// True when `arcs` begins with all of `prefix`.
bool startsWith(Arcs arcs, Arcs prefix);

} // namespace Lab

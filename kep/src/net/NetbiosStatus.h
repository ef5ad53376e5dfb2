/// The packets of a NetBIOS node status query (RFC 1002, sections 4.2.17 and 4.2.18).
///
/// Pure functions: any thread, no lock, no system call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace Kep::Net {

constexpr std::size_t nodeStatusRequestSize = 50;

/// The request for all names of a node (the name "*").
std::array<std::uint8_t, nodeStatusRequestSize> nodeStatusRequest(std::uint16_t transactionId);

/// The machine name in a reply: the first unique name with suffix 0x00, or else the first with suffix 0x20, without
/// the blanks and NULs at its end; empty when the node has neither or answers with an error. Nothing when `packet` is
/// no whole, well-formed answer to the request with `transactionId`. Throws only `std::bad_alloc`.
std::optional<std::string> readNodeStatus(std::span<const std::uint8_t> packet, std::uint16_t transactionId);

} // namespace Kep::Net

/// Object identifiers.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kep::Snmp {

/// A value; ordered as agents order their objects (RFC 3416, section 2: arc by arc, a prefix first).
class Oid {
public:
    static constexpr std::size_t maxArcs = 128; ///< RFC 2578, section 3.5

    Oid() = default;
    explicit Oid(std::vector<std::uint32_t> arcs) : arcs_(std::move(arcs)) {}

    /// Reads decimal arcs with a dot before each: 2 to 128 arcs of 32 bits unsigned, the first 0 to 2, the second at
    /// most 39 below 0 and 1. Nothing when `text` is anything else.
    static std::optional<Oid> parse(std::string_view text);

    /// The dotted form with a leading dot.
    std::string text() const;

    const std::vector<std::uint32_t>& arcs() const noexcept { return arcs_; }
    auto operator<=>(const Oid&) const = default;

private:
    std::vector<std::uint32_t> arcs_;
};

} // namespace Kep::Snmp

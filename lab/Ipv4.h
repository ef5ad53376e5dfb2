/// IPv4 addresses as numbers (first octet most significant) and the blocks of the loopback network that a farm fills.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Lab {

using Address = std::uint32_t;

/// A strict dotted quad: four decimal numbers from 0 to 255 without superfluous zeros. Nothing otherwise.
std::optional<Address> parseIpv4(std::string_view text);
std::string formatIpv4(Address address);

/// True for 127.0.0.0/8.
bool isLoopback(Address address);

/// A block of loopback addresses. Addresses ending in .0 or .255 are not among its places: they are commonly network
/// and broadcast addresses, and discovery tools pass them over.
class Network {
public:
    /// Reads "127.77.0.0/24": the base within 127.0.0.0/8, the prefix length 8 to 32, no bit set after the prefix.
    /// Throws `Error` otherwise.
    static Network parse(std::string_view text);

    [[nodiscard]] std::string text() const;

    /// How many places it has.
    [[nodiscard]] std::uint32_t places() const;

    /// The `index`-th place in ascending order; `index` below `places()`.
    [[nodiscard]] Address place(std::uint32_t index) const;

private:
    Network(Address base, unsigned prefixLength) : _base(base), _prefixLength(prefixLength) {}

    Address _base;
    unsigned _prefixLength;
};

} // namespace Lab

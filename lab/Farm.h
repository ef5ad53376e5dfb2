/// The devices of a simulated network, by address.
#pragma once

#include "lab/Device.h"
#include "lab/ProfileLibrary.h"

#include <optional>
#include <vector>

namespace Lab {

/// Immutable once built; safe from any thread.
class Farm {
public:
    /// Takes the devices in any order; no address may occur twice.
    explicit Farm(std::vector<Device> devices);

    /// The device at `address`; null where there is none. Owned by the farm.
    [[nodiscard]] const Device* at(Address address) const;

    /// In ascending order of their addresses.
    [[nodiscard]] const std::vector<Device>& devices() const { return _devices; }

    [[nodiscard]] std::size_t printers() const;

private:
    std::vector<Device> _devices;
};

/// What to spread over a network.
struct Spread {
    std::uint32_t devices = 0;
    /// How many of them are printers; without it the profiles follow one another, printers and others alike.
    std::optional<std::uint32_t> printers;
    Individuality individuality = Individuality::ByAddress;
};

/// Spreads devices evenly over the places of `network`: device i of n stands at place floor(i * places / n). Printers
/// are spread evenly among the devices, and the profiles of each kind take turns in the order of their names, so the
/// same arguments always give the same farm. Throws `Error` when the network has too few places, when there are more
/// printers than devices, or when the library lacks a kind that is wanted.
Farm spreadFarm(const Network& network, const ProfileLibrary& library, const Spread& spread);

/// Reads a plan: a line a device, `ADDRESS PROFILE` with a blank between; empty lines and those that begin with `#`
/// are passed over. Throws `Error` with file and line for anything else, an address outside 127.0.0.0/8, an address
/// given twice or an unknown profile, and when there is no device at all.
Farm readPlan(const std::string& file, std::string_view text, const ProfileLibrary& library,
              Individuality individuality);

} // namespace Lab

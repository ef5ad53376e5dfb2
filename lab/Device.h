/// One simulated device: a profile at an address.
///
/// Two devices of a kind differ in their physical addresses and serial numbers. Unless told to be verbatim, a device
/// therefore replaces these of its profile's values:
/// - a physical address (ifPhysAddress) of 6 bytes keeps its first two; the third becomes the interface's number
///   (its low 8 bits), the others the second to fourth octet of the device's address;
/// - a serial number that is a text gets a hyphen and the second to fourth octet of the address, as six upper-case
///   hexadecimal digits, appended, unless it is empty;
/// - a serial number that is an INTEGER gets the address's low 24 bits added, modulo 2^31.
#pragma once

#include "lab/Ipv4.h"
#include "lab/Profile.h"

#include <utility>
#include <vector>

namespace Lab {

enum class Individuality { Verbatim, ByAddress };

/// The value that the device at `address` has for `record`.
Value individualValue(const Record& record, Address address);

/// Immutable once built; safe from any thread.
class Device {
public:
    Device(ProfilePtr profile, Address address, Individuality individuality);

    [[nodiscard]] Address address() const { return _address; }
    [[nodiscard]] const Profile& profile() const { return *_profile; }

    /// The value of one of the profile's records, and its BER encoding, which the device or its profile owns.
    [[nodiscard]] Value value(const Record& record) const;
    [[nodiscard]] ByteView encodedValue(const Record& record) const;

private:
    ProfilePtr _profile;
    Address _address;
    Individuality _individuality;
    std::vector<std::pair<const Record*, Bytes>> _own;
};

} // namespace Lab

#include "lab/Farm.h"

#include "lab/Error.h"
#include "lab/Identity.h"
#include "lab/TextLines.h"

#include <algorithm>
#include <set>

namespace Lab {
namespace {

/// The profiles of one kind, which take turns.
class Turns {
public:
    void add(ProfilePtr profile) { _profiles.push_back(std::move(profile)); }

    [[nodiscard]] bool empty() const { return _profiles.empty(); }

    const ProfilePtr& next() { return _profiles[_next++ % _profiles.size()]; }

private:
    std::vector<ProfilePtr> _profiles;
    std::size_t _next = 0;
};

struct Kinds {
    Turns all;
    Turns printers;
    Turns others;
};

Kinds sortProfiles(const ProfileLibrary& library)
{
    Kinds kinds;
    for (const auto& [name, profile] : library) {
        kinds.all.add(profile);
        (isPrinter(*profile) ? kinds.printers : kinds.others).add(profile);
    }
    return kinds;
}

void checkSpread(const Network& network, const Kinds& kinds, const Spread& spread)
{
    if (spread.devices > network.places())
        throw Error("expected at most " + std::to_string(network.places()) + " devices, the places of " +
                    network.text() + ", found " + std::to_string(spread.devices));
    if (!spread.printers)
        return;
    if (*spread.printers > spread.devices)
        throw Error("expected at most as many printers as devices (" + std::to_string(spread.devices) + "), found " +
                    std::to_string(*spread.printers));
    if (*spread.printers > 0 && kinds.printers.empty())
        throw Error("expected a printer among the profiles, found none");
    if (*spread.printers < spread.devices && kinds.others.empty())
        throw Error("expected a device other than printers among the profiles, found none");
}

/// `index * share / whole` without overflow.
std::uint32_t proportion(std::uint32_t index, std::uint32_t share, std::uint32_t whole)
{
    return static_cast<std::uint32_t>(std::uint64_t{index} * share / whole);
}

const ProfilePtr& nextProfile(Kinds& kinds, const Spread& spread, std::uint32_t index)
{
    if (!spread.printers)
        return kinds.all.next();
    const bool isPrinterPlace =
        proportion(index + 1, *spread.printers, spread.devices) > proportion(index, *spread.printers, spread.devices);
    return isPrinterPlace ? kinds.printers.next() : kinds.others.next();
}

Device readDevice(std::string_view line, const ProfileLibrary& library, Individuality individuality)
{
    const std::size_t blank = line.find(' ');
    const auto address = parseIpv4(line.substr(0, blank));
    if (!address || !isLoopback(*address) || blank == std::string_view::npos)
        throw Error("expected ADDRESS PROFILE with an address within 127.0.0.0/8");
    return {findProfile(library, std::string(line.substr(blank + 1))), *address, individuality};
}

} // namespace

Farm::Farm(std::vector<Device> devices) : _devices(std::move(devices))
{
    std::sort(_devices.begin(), _devices.end(),
              [](const Device& left, const Device& right) { return left.address() < right.address(); });
}

const Device* Farm::at(Address address) const
{
    const auto found = std::lower_bound(_devices.begin(), _devices.end(), address,
                                        [](const Device& device, Address wanted) { return device.address() < wanted; });
    return found == _devices.end() || found->address() != address ? nullptr : &*found;
}

std::size_t Farm::printers() const
{
    return static_cast<std::size_t>(std::count_if(_devices.begin(), _devices.end(),
                                                  [](const Device& device) { return isPrinter(device.profile()); }));
}

Farm spreadFarm(const Network& network, const ProfileLibrary& library, const Spread& spread)
{
    Kinds kinds = sortProfiles(library);
    checkSpread(network, kinds, spread);
    std::vector<Device> devices;
    devices.reserve(spread.devices);
    for (std::uint32_t i = 0; i < spread.devices; ++i) {
        const Address address = network.place(proportion(i, network.places(), spread.devices));
        devices.emplace_back(nextProfile(kinds, spread, i), address, spread.individuality);
    }
    return Farm(std::move(devices));
}

Farm readPlan(const std::string& file, std::string_view text, const ProfileLibrary& library,
              Individuality individuality)
{
    std::vector<Device> devices;
    std::set<Address> taken;
    forEachLine(file, text, [&](std::string_view line, std::size_t) {
        if (line.starts_with('#'))
            return;
        devices.push_back(readDevice(line, library, individuality));
        if (!taken.insert(devices.back().address()).second)
            throw Error("expected an address that is not taken yet");
    });
    if (devices.empty())
        throw Error(file + ": expected at least one line ADDRESS PROFILE, found none");
    return Farm(std::move(devices));
}

} // namespace Lab

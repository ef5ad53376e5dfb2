#include "snmp/Wire.h"

#include "Kep/Net.h"
#include "Kep/Snmp/Exception.h"
#include "base/Immortal.h"
#include "settings/HostSettings.h"
#include "snmp/Failure.h"
#include "snmp/PacketPacer.h"

#include <memory>
#include <system_error>
#include <thread>

namespace Kep::Snmp {

namespace {

constexpr std::size_t largestDatagram = 65535;

// One for all packets of the process.
PacketPacer& pacer()
{
    static Immortal<PacketPacer> instance;
    return *instance;
}

// Sleeps until the next packet may be sent; for how long.
Wire::Clock::duration waitForTurn()
{
    const auto now = Wire::Clock::now();
    const auto turn = pacer().next(hostSettings().snmpRate, now);
    if (turn <= now)
        return {};
    std::this_thread::sleep_until(turn);
    return Wire::Clock::now() - now;
}

std::uint32_t parseAddress(const std::string& address)
{
    unsigned long number = 0;
    if (!Net::parseIpAddress(address, number))
        throw Exception("\"" + address + "\" is no IPv4 address");
    return static_cast<std::uint32_t>(number);
}

Failure failureOf(const std::string& peer, const std::system_error& error)
{
    using Host::Outcome;
    if (error.code() == std::errc::connection_refused)
        return {Outcome::PortClosed, peer, "the port is closed"};
    const bool isUnreachable = error.code() == std::errc::host_unreachable ||
                               error.code() == std::errc::network_unreachable ||
                               error.code() == std::errc::network_down;
    return {isUnreachable ? Outcome::Unreachable : Outcome::Failed, peer, error.code().message()};
}

template <class Action> auto reported(const std::string& peer, Action action)
{
    try {
        return action();
    } catch (const std::system_error& error) {
        throw failureOf(peer, error);
    }
}

} // namespace

// The tool takes the initialisers of a constructor with a handler for part of it.
// cppcheck-suppress uninitMemberVar
Wire::Wire(const std::string& address, std::uint16_t port)
try : peer_(address + ":" + std::to_string(port)), socket_(parseAddress(address), port) {
} catch (const std::system_error& error) {
    throw failureOf(address + ":" + std::to_string(port), error);
}

void Wire::send(std::span<const unsigned char> packet)
{
    held_ += waitForTurn();
    reported(peer_, [&] { socket_->send(packet); });
}

bool Wire::receive(Clock::time_point deadline, const Reader& read)
{
    while (reported(peer_, [&] { return socket_->waitReadable(deadline); })) {
        // Not before there is something: most addresses never answer, and waiting for them takes no buffer.
        const auto buffer = std::make_unique_for_overwrite<unsigned char[]>(largestDatagram);
        const std::span room(buffer.get(), largestDatagram);
        if (const auto size = reported(peer_, [&] { return socket_->receive(room); })) {
            read(room.first(*size));
            return true;
        }
    }
    return false;
}

} // namespace Kep::Snmp

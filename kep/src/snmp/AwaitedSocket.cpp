#include "snmp/AwaitedSocket.h"

#include "base/Immortal.h"
#include "snmp/DescriptorLine.h"

namespace Kep::Snmp {

namespace {

DescriptorLine& descriptorLine()
{
    static Immortal<DescriptorLine> line;
    return *line;
}

} // namespace

AwaitedSocket::AwaitedSocket(std::uint32_t address, std::uint16_t port)
{
    descriptorLine().open([this, address, port] { return tryOpen(address, port); });
}

AwaitedSocket::~AwaitedSocket()
{
    socket_.reset();
    descriptorLine().freed();
}

bool AwaitedSocket::tryOpen(std::uint32_t address, std::uint16_t port)
{
    try {
        socket_.emplace(address, port);
        return true;
    } catch (const std::system_error& error) {
        if (!Net::isShortage(error.code()))
            throw;
        return false;
    }
}

} // namespace Kep::Snmp

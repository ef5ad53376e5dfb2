#include "tests/unit/kep/net/UdpResponder.h"

#include <string_view>
#include <utility>

namespace Kep::Testing {

UdpResponder::UdpResponder(Script script) : script_(std::move(script)), thread_([this] { serve(); }) {}

UdpResponder::~UdpResponder()
{
    ending_ = true;
    thread_.join();
}

std::vector<Bytes> UdpResponder::requests()
{
    const MutexLock lock(mutex_);
    return requests_;
}

void UdpResponder::serve()
{
    int number = 0;
    while (!ending_) {
        if (!socket_.waitReadable(10)) {
            continue;
        }
        TestSupport::Place peer;
        const std::string datagram = socket_.receive(peer);
        const Bytes request(datagram.begin(), datagram.end());
        {
            const MutexLock lock(mutex_);
            requests_.push_back(request);
        }
        for (const Bytes& reply : script_(request, number++)) {
            socket_.send({reinterpret_cast<const char*>(reply.data()), reply.size()}, peer);
        }
    }
}

std::uint16_t closedPort()
{
    return TestSupport::TestSocket().port();
}

} // namespace Kep::Testing

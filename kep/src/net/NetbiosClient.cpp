#include "net/NetbiosClient.h"

#include "net/NetbiosStatus.h"
#include "net/UdpSocket.h"

#include <array>
#include <chrono>
#include <random>

namespace Kep::Net {
namespace {

constexpr int tries = 2;
constexpr std::chrono::milliseconds timeout{500};
constexpr std::size_t largestReply = 1500; // a node keeps to 576 bytes (RFC 1002, section 4.2)

// The id is all that keeps a reply from being guessed.
std::uint16_t randomId()
{
    return static_cast<std::uint16_t>(std::random_device()());
}

// Waits for the reply to a request. `timeout` when only other datagrams arrive.
UdpSocket::Outcome awaitReply(UdpSocket& socket, std::uint16_t id, std::string& name)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::array<std::uint8_t, largestReply> buffer;
    for (;;) {
        std::size_t size = 0;
        const auto outcome = socket.receive(buffer, deadline, size);
        if (outcome != UdpSocket::Outcome::done) {
            return outcome;
        }
        if (auto answer = readNodeStatus({buffer.data(), size}, id)) {
            name = std::move(*answer);
            return UdpSocket::Outcome::done;
        }
    }
}

} // namespace

std::string askNodeStatus(std::uint32_t address, std::uint16_t port)
{
    UdpSocket socket(address, port);
    const std::uint16_t id = randomId();
    const auto request = nodeStatusRequest(id);
    std::string name;
    for (int attempt = 0; attempt < tries; ++attempt) {
        auto outcome = socket.send(request);
        if (outcome == UdpSocket::Outcome::done) {
            outcome = awaitReply(socket, id, name);
        }
        if (outcome != UdpSocket::Outcome::timeout) {
            break;
        }
    }
    return name;
}

} // namespace Kep::Net

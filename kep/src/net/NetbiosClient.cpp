#include "net/NetbiosClient.h"

#include "Kep/Exception.h"
#include "net/NetbiosStatus.h"
#include "net/UdpSocket.h"

#include <array>
#include <chrono>
#include <random>
#include <utility>

namespace Kep::Net {
namespace {

using std::chrono::steady_clock;

constexpr int tries = 2;
constexpr std::chrono::milliseconds timeout{500};
constexpr std::size_t largestReply = 1500; // a node keeps to 576 bytes (RFC 1002, section 4.2)

// The id is all that keeps a reply from being guessed.
std::uint16_t randomId()
{
    return static_cast<std::uint16_t>(std::random_device()());
}

// Waits for the reply to a request; nothing when there is none in time.
std::optional<std::string> awaitReply(UdpSocket& socket, std::uint16_t id)
{
    const auto deadline = steady_clock::now() + timeout;
    std::array<std::uint8_t, largestReply> buffer;
    while (steady_clock::now() < deadline && socket.waitReadable(deadline)) {
        if (const auto size = socket.receive(buffer)) {
            if (auto name = readNodeStatus({buffer.data(), *size}, id)) {
                return name;
            }
        }
    }
    return std::nullopt;
}

std::string ask(UdpSocket& socket)
{
    const std::uint16_t id = randomId();
    const auto request = nodeStatusRequest(id);
    for (int attempt = 0; attempt < tries; ++attempt) {
        socket.send(request);
        if (auto name = awaitReply(socket, id)) {
            return std::move(*name);
        }
    }
    return {};
}

} // namespace

std::string askNodeStatus(std::uint32_t address, std::uint16_t port)
{
    try {
        UdpSocket socket(address, port);
        return ask(socket);
    } catch (const std::system_error& error) {
        if (isShortage(error.code())) {
            throw GenericException("no socket for a NetBIOS query: " + error.code().message());
        }
        return {}; // the node or the way to it is closed
    }
}

} // namespace Kep::Net

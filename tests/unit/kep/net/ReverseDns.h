/// A name server that a test scripts, and look-ups that ask it.
#pragma once

#include "net/ReverseLookup.h"
#include "tests/unit/kep/net/UdpResponder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace Kep::Testing {

constexpr std::uint32_t address = 0xC0000207; // 192.0.2.7, which no host file has

inline Bytes encodedName(std::string_view name)
{
    Bytes bytes;
    while (!name.empty()) {
        const auto label = name.substr(0, name.find('.'));
        bytes.push_back(static_cast<std::uint8_t>(label.size()));
        bytes.insert(bytes.end(), label.begin(), label.end());
        name.remove_prefix(std::min(label.size() + 1, name.size()));
    }
    bytes.push_back(0);
    return bytes;
}

// The request with flags and an answer section of `answers` records.
inline Bytes replyTo(const Bytes& request, std::uint8_t code, std::uint8_t answers, const Bytes& section)
{
    Bytes reply(request.begin(), request.begin() + 12);
    reply[2] = 0x84;
    reply[3] = code;
    reply[7] = answers;
    reply[11] = 0;
    const Bytes question = encodedName("7.2.0.192.in-addr.arpa");
    StatusReply::append(reply, question);
    StatusReply::append(reply, {0, 12, 0, 1});
    StatusReply::append(reply, section);
    return reply;
}

inline Bytes pointerRecord(const Bytes& target)
{
    Bytes record{0xC0, 0x0C, 0, 12, 0, 1, 0, 0, 0, 60};
    StatusReply::put16(record, static_cast<int>(target.size()));
    StatusReply::append(record, target);
    return record;
}

class ReverseDns : public testing::Test {
protected:
    static std::string ask(const std::string& servers) { return Kep::Net::reverseLookup(address, servers); }

    static std::string at(std::uint16_t port) { return "127.0.0.1:" + std::to_string(port); }

    static std::string ask(const UdpResponder& server) { return ask(at(server.port())); }

    static UdpResponder::Script answering(const Bytes& target)
    {
        return [target](const Bytes& request, int) { return Replies{replyTo(request, 0, 1, pointerRecord(target))}; };
    }
};

} // namespace Kep::Testing

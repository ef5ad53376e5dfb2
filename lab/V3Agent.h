/// What an SNMP agent does with a request of version 3: the user-based security model without authentication and
/// privacy, for one user.
///
/// An agent keeps buffers between requests, so it belongs to one thread.
#pragma once

#include "lab/Agent.h"
#include "lab/V3Message.h"

namespace Lab {

class V3Agent {
public:
    /// Answers this user, and no other.
    explicit V3Agent(std::string user) : _user(std::move(user)), _agent(_user) {}

    /// Answers as `device`: writes the answer to the front of `out` and returns its size; 0 when the datagram is no
    /// well-formed request of version 3 or the answer is larger than `out`. Objects are answered as in version 2c.
    /// Another engine, another user, a security level with authentication and a context with a name are answered with
    /// the reports that tell so, if the request asks for reports.
    std::size_t answer(ByteView datagram, const Device& device, std::span<std::uint8_t> out);

    /// The ID of a device's engine: the address, in the form of RFC 3411, section 5.
    static Bytes engineIdOf(const Device& device);

private:
    std::optional<V3Message> answerTo(const V3Message& request, const Device& device);
    [[nodiscard]] const Oid* objectionTo(const V3Message& request, const Bytes& engine) const;

    std::string _user;
    Agent _agent;
    Bytes _pdu;
};

} // namespace Lab

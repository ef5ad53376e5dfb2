/// What an SNMP agent does with a request: look its objects up and answer.
///
/// An agent keeps buffers between requests, so it belongs to one thread.
#pragma once

#include "lab/Device.h"
#include "lab/Message.h"

namespace Lab {

class Agent {
public:
    /// Answers requests of this community, and no others.
    explicit Agent(std::string community) : _community(std::move(community)) {}

    /// Answers as `device`: writes the answer to the front of `out` and returns its size. 0 means silence: the
    /// datagram is no well-formed get or get-next request of version 1 or 2c, its community is another, or the answer
    /// is larger than `out`. An object that does not exist is answered with noSuchName and the request's varbinds in
    /// version 1, with noSuchInstance (get) or endOfMibView (get-next) in its varbind in version 2c. Version 1 knows
    /// no Counter64: get finds none, get-next passes it over (RFC 2576, section 4.1.2).
    std::size_t answer(ByteView datagram, const Device& device, std::span<std::uint8_t> out);

private:
    [[nodiscard]] bool isOfCommunity() const;
    const Record* lookUp(const Device& device, std::size_t index) const;
    bool collect(const Device& device, std::size_t index);

    std::string _community;
    Request _request;
    std::vector<Varbind> _answers;
};

} // namespace Lab

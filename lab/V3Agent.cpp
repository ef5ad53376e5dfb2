#include "lab/V3Agent.h"

#include <algorithm>
#include <array>

namespace Lab {
namespace {

constexpr std::int64_t engineBoots = 1;
constexpr std::int64_t engineTime = 1;
constexpr std::size_t largestAnswer = 65507;

ByteView bytesOf(const std::string& text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The same PDU in a message of version 2c, which the other agent answers.
Bytes asVersion2c(const Bytes& pdu, const std::string& community)
{
    return encodeElement(Tag::sequence, concatenate({integerElement(static_cast<int>(Version::V2c)),
                                                     encodeElement(Tag::octetString, bytesOf(community)), pdu}));
}

Bytes pduOf(ByteView message)
{
    BerReader outer(message);
    BerReader reader(outer.next().value().contents);
    reader.next(); // version
    reader.next(); // community
    const BerElement pdu = reader.next().value();
    return {pdu.whole.begin(), pdu.whole.end()};
}

} // namespace

Bytes V3Agent::engineIdOf(const Device& device)
{
    constexpr std::array<std::uint8_t, 5> enterpriseAndForm{0x80, 0x01, 0x86, 0x3D, 0x01};
    const Address address = device.address();
    const std::array<std::uint8_t, 4> octets{
        static_cast<std::uint8_t>(address >> 24), static_cast<std::uint8_t>(address >> 16),
        static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address)};
    return concatenate({enterpriseAndForm, octets});
}

/// What a report says instead of an answer; null when there is nothing to object to.
const Oid* V3Agent::objectionTo(const V3Message& request, const Bytes& engine) const
{
    if (request.engine != engine)
        return &V3Report::unknownEngineIds;
    if (!std::ranges::equal(request.user, bytesOf(_user)))
        return &V3Report::unknownUserNames;
    if ((request.flags & (V3Flag::authenticated | V3Flag::encrypted)) != 0)
        return &V3Report::unsupportedSecurityLevels;
    if (!request.context.empty() || request.contextEngine != engine)
        return &V3Report::unknownContexts;
    return nullptr;
}

std::optional<V3Message> V3Agent::answerTo(const V3Message& request, const Device& device)
{
    const Bytes engine = engineIdOf(device);
    if (const Oid* const objection = objectionTo(request, engine))
        return (request.flags & V3Flag::reportable) != 0 ? std::optional(request.report(*objection, engine))
                                                         : std::nullopt;
    _pdu.resize(largestAnswer);
    const std::size_t size = _agent.answer(asVersion2c(request.pdu, _user), device, _pdu);
    if (size == 0)
        return std::nullopt;
    V3Message answer = request;
    answer.flags = 0;
    answer.pdu = pduOf(ByteView(_pdu).first(size));
    return answer;
}

std::size_t V3Agent::answer(ByteView datagram, const Device& device, std::span<std::uint8_t> out)
{
    const auto request = V3Message::read(datagram);
    auto answer = request ? answerTo(*request, device) : std::nullopt;
    if (!answer)
        return 0;
    answer->boots = engineBoots;
    answer->time = engineTime;
    const Bytes bytes = answer->encoded();
    if (bytes.size() > out.size())
        return 0;
    std::ranges::copy(bytes, out.begin());
    return bytes.size();
}

} // namespace Lab

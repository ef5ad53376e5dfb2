#include "lab/Agent.h"

#include <algorithm>
#include <array>

namespace Lab {
namespace {

constexpr std::array<std::uint8_t, 2> noSuchInstance{Tag::noSuchInstance, 0};
constexpr std::array<std::uint8_t, 2> endOfMibView{Tag::endOfMibView, 0};

bool isKnownTo(Version version, const Record& record)
{
    return version == Version::V2c || record.value.tag != Tag::counter64;
}

} // namespace

bool Agent::isOfCommunity() const
{
    const ByteView given = _request.community();
    return std::equal(given.begin(), given.end(), _community.begin(), _community.end(),
                      [](std::uint8_t byte, char c) { return byte == static_cast<std::uint8_t>(c); });
}

const Record* Agent::lookUp(const Device& device, std::size_t index) const
{
    const Profile& profile = device.profile();
    const Arcs oid = _request.oid(index);
    const Record* record = _request.isGetNext() ? profile.findNext(oid) : profile.find(oid);
    while (record != nullptr && !isKnownTo(_request.version(), *record))
        record = _request.isGetNext() ? profile.findNext(record->oid) : nullptr;
    return record;
}

/// False when the object does not exist and the version has no other way to say so than to fail the whole request.
bool Agent::collect(const Device& device, std::size_t index)
{
    const Record* record = lookUp(device, index);
    if (record == nullptr && _request.version() == Version::V1)
        return false;
    if (record == nullptr)
        _answers.push_back({_request.varbinds()[index].oid, _request.isGetNext() ? endOfMibView : noSuchInstance});
    else
        _answers.push_back({record->encodedOid, device.encodedValue(*record)});
    return true;
}

std::size_t Agent::answer(ByteView datagram, const Device& device, std::span<std::uint8_t> out)
{
    if (!_request.read(datagram) || !isOfCommunity())
        return 0;
    _answers.clear();
    for (std::size_t i = 0; i < _request.varbinds().size(); ++i) {
        if (!collect(device, i))
            return AnswerWriter(_request, _request.varbinds(), ErrorStatus::NoSuchName, i + 1).write(out);
    }
    return AnswerWriter(_request, _answers, ErrorStatus::NoError, 0).write(out);
}

} // namespace Lab

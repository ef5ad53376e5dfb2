#include "lab/WellKnownOids.h"
#include "lab/hostile/Packet.h"
#include "lab/hostile/Tricks.h"

namespace Lab {
namespace {

constexpr std::chrono::milliseconds slowly{900};
constexpr std::uint32_t firstRowBackwards = 1000;
const Oid deviceProcessor{1, 3, 6, 1, 2, 1, 25, 3, 1, 3};

/// The row to answer with when a walk of the device types has come to `row`; 0 is before the first.
using NextRow = std::uint32_t (*)(std::uint32_t row);

/// Where a walk of the device types has come to; nothing when the request is none.
std::optional<std::uint32_t> rowAsked(ByteView request)
{
    const auto packet = Packet::read(request);
    const auto oid = packet && packet->pdu == Tag::getNextRequest ? packet->oid() : std::nullopt;
    if (!oid || !startsWith(*oid, WellKnown::deviceTypeColumn))
        return std::nullopt;
    return oid->size() > WellKnown::deviceTypeColumn.size() ? oid->back() : 0;
}

Bytes answerWithRow(ByteView honest, std::uint32_t row)
{
    Packet packet = Packet::read(honest).value();
    Oid oid = WellKnown::deviceTypeColumn;
    oid.push_back(row);
    packet.bindings = {{encodeElement(Tag::objectId, encodeOidContents(oid)),
                        encodeElement(Tag::objectId, encodeOidContents(deviceProcessor))}};
    packet.errorStatus = packet.errorIndex = integerElement(0);
    return packet.encoded();
}

/// A device table of processors whose rows follow each other as `next` says; all else is answered honestly.
template <NextRow next, std::chrono::milliseconds::rep delay = 0> Trick table()
{
    return [](const Occasion& occasion) {
        const auto row = rowAsked(occasion.request);
        const Bytes honest(occasion.honest.begin(), occasion.honest.end());
        return std::vector{Reply{row ? answerWithRow(honest, next(*row)) : honest, std::chrono::milliseconds(delay)}};
    };
}

std::uint32_t following(std::uint32_t row)
{
    return row + 1;
}

std::uint32_t alwaysTheFirst(std::uint32_t /*row*/)
{
    return 1;
}

std::uint32_t before(std::uint32_t row)
{
    return row == 0 ? firstRowBackwards : row - 1;
}

std::uint32_t theOtherOfTwo(std::uint32_t row)
{
    return row == 1 ? 2 : 1;
}

constexpr NamedTrick tableTrickList[] = {
    {"endless-table-fast", table<following>},    {"endless-table-slow", table<following, slowly.count()>},
    {"repeating-table", table<alwaysTheFirst>},  {"backward-table", table<before>},
    {"alternating-table", table<theOtherOfTwo>},
};

} // namespace

std::span<const NamedTrick> tableTricks()
{
    return tableTrickList;
}

} // namespace Lab

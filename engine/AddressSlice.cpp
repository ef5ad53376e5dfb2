#include "engine/AddressSlice.h"

#include "Kep/Net.h"

#include <cstdint>

namespace PrinterDiscoveryPlugin {
namespace {

bool isNeverProbed(std::uint32_t address)
{
    const std::uint32_t lastOctet = address & 0xff;
    return lastOctet == 0 || lastOctet == 0xff;
}

class Slice {
public:
    Slice(int limit, const std::function<void(const std::string&)>& queue) : limit_(limit), queue_(queue) {}

    void add(const IpRange& range)
    {
        if (isFull())
            leave(range);
        else if (range.from <= range.to)
            walk(range);
    }

    std::vector<IpRangeText> takeLeftover() { return std::move(leftover_); }

private:
    bool isFull() const { return queued_ >= limit_; }

    void leave(const IpRange& range)
    {
        leftover_.push_back({Kep::Net::formatIpAddress(range.from), Kep::Net::formatIpAddress(range.to)});
    }

    void walk(const IpRange& range)
    {
        std::uint32_t address = range.from;
        do {
            if (isNeverProbed(address))
                continue;
            if (isFull() && address != range.to) {
                leave({address, range.to});
                return;
            }
            ++queued_;
            queue_(Kep::Net::formatIpAddress(address));
        } while (++address <= range.to);
    }

    const int limit_;
    const std::function<void(const std::string&)>& queue_;
    int queued_ = 0;
    std::vector<IpRangeText> leftover_;
};

} // namespace

std::vector<IpRangeText> queueSlice(const std::vector<IpRange>& ranges, int limit,
                                    const std::function<void(const std::string&)>& queue)
{
    Slice slice(limit, queue);
    for (const IpRange& range : ranges)
        slice.add(range);
    return slice.takeLeftover();
}

} // namespace PrinterDiscoveryPlugin

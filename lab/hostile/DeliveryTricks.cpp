#include "lab/hostile/Packet.h"
#include "lab/hostile/Tricks.h"

#include <utility>

namespace Lab {
namespace {

constexpr std::chrono::milliseconds late{1500};
constexpr std::chrono::milliseconds tooLate{6000};
constexpr std::size_t copies = 3;

Reply honestReply(const Occasion& occasion)
{
    return {Bytes(occasion.honest.begin(), occasion.honest.end())};
}

template <std::chrono::milliseconds::rep delay> Trick delayed()
{
    return [](const Occasion& occasion) {
        Reply reply = honestReply(occasion);
        reply.delay = std::chrono::milliseconds(delay);
        return std::vector{reply};
    };
}

template <Reply::From from> Trick sentFrom()
{
    return [](const Occasion& occasion) {
        Reply reply = honestReply(occasion);
        reply.from = from;
        return std::vector{reply};
    };
}

Trick duplicated()
{
    return [](const Occasion& occasion) { return std::vector(copies, honestReply(occasion)); };
}

/// Every other answer is held back and sent after the next one.
Trick reordered()
{
    return [held = std::vector<Reply>()](const Occasion& occasion) mutable {
        std::vector<Reply> replies;
        if (held.empty()) {
            held.push_back(honestReply(occasion));
            return replies;
        }
        replies.push_back(honestReply(occasion));
        replies.push_back(std::move(held.back()));
        held.clear();
        return replies;
    };
}

Trick everyThird()
{
    return [number = std::size_t{0}](const Occasion& occasion) mutable {
        return ++number % 3 == 0 ? std::vector{honestReply(occasion)} : std::vector<Reply>();
    };
}

bool isGetOfAnObject(ByteView request)
{
    const auto packet = Packet::read(request);
    return packet && packet->pdu == Tag::getRequest && !packet->bindings.empty();
}

Trick silentToGets()
{
    return [](const Occasion& occasion) {
        return isGetOfAnObject(occasion.request) ? std::vector<Reply>() : std::vector{honestReply(occasion)};
    };
}

constexpr NamedTrick deliveryTrickList[] = {
    {"replies-from-other-address", sentFrom<Reply::From::OtherAddress>},
    {"replies-from-other-port", sentFrom<Reply::From::OtherPort>},
    {"duplicated-replies", duplicated},
    {"late-replies", delayed<late.count()>},
    {"reordered-replies", reordered},
    {"replies-to-every-third", everyThird},
    {"replies-after-time-out", delayed<tooLate.count()>},
    {"silent-after-walk", silentToGets},
};

} // namespace

std::span<const NamedTrick> deliveryTricks()
{
    return deliveryTrickList;
}

} // namespace Lab

#include "lab/V3Message.h"
#include "lab/hostile/Tricks.h"

#include <limits>

namespace Lab {
namespace {

constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();

using Answer = std::function<V3Message(const V3Message& request, const V3Message& honest)>;

Trick answering(Answer answer)
{
    return [answer = std::move(answer)](const Occasion& occasion) {
        const auto request = V3Message::read(occasion.request);
        const auto honest = V3Message::read(occasion.honest);
        if (!request || !honest)
            return std::vector{Reply{Bytes(occasion.honest.begin(), occasion.honest.end())}};
        return std::vector{Reply{answer(*request, *honest).encoded()}};
    };
}

/// Whatever is asked, its time is out of the agent's window, and the agent's clock is another one each time.
Trick reportLoop()
{
    return answering([boots = std::int64_t{1}](const V3Message& request, const V3Message& honest) mutable {
        if (request.engine != honest.engine)
            return honest; // tells its engine first
        V3Message report = request.report(V3Report::notInTimeWindows, honest.engine);
        report.boots = ++boots;
        report.time = 1;
        return report;
    });
}

/// The agent is another engine with every message.
Trick engineLoop()
{
    return answering([turn = std::uint8_t{0}](const V3Message& request, const V3Message& honest) mutable {
        Bytes engine = honest.engine;
        engine.push_back(++turn);
        return request.report(V3Report::unknownEngineIds, engine);
    });
}

template <std::int64_t number> Trick clockAt()
{
    return answering([](const V3Message& /*request*/, const V3Message& honest) {
        V3Message answer = honest;
        answer.boots = answer.time = number;
        return answer;
    });
}

Trick emptyEngineId()
{
    return answering([](const V3Message& request, const V3Message& /*honest*/) {
        return request.report(V3Report::unknownEngineIds, {});
    });
}

constexpr NamedTrick v3TrickList[] = {
    {"v3-report-loop", reportLoop},       {"v3-engine-loop", engineLoop},        {"v3-clock-at-limit", clockAt<limit>},
    {"v3-clock-below-zero", clockAt<-1>}, {"v3-empty-engine-id", emptyEngineId},
};

} // namespace

std::span<const NamedTrick> v3Tricks()
{
    return v3TrickList;
}

} // namespace Lab

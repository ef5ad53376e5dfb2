#include "ScriptedAgent.h"

namespace {

constexpr std::uint32_t otherLoopbackAddress = 0x7F000002;

void sendAnswer(const TestSocket& agent, const Answer& answer, Place peer)
{
    if (answer.from == Answer::From::agent)
        return agent.send(answer.bytes, peer);
    const TestSocket other(answer.from == Answer::From::otherPort ? Place{} : Place{otherLoopbackAddress, 0});
    other.send(answer.bytes, peer);
}

} // namespace

ScriptedAgent::ScriptedAgent(Script script) : script_(std::move(script)), thread_([this] { serve(); }) {}

ScriptedAgent::~ScriptedAgent()
{
    stop_ = true;
    thread_.join();
}

std::vector<Ber::Bytes> ScriptedAgent::requests() const
{
    const Kep::MutexLock lock(mutex_);
    return requests_;
}

std::size_t ScriptedAgent::note(const Ber::Bytes& request)
{
    const Kep::MutexLock lock(mutex_);
    requests_.push_back(request);
    return requests_.size();
}

void ScriptedAgent::serve()
{
    while (!stop_) {
        if (!socket_.waitReadable(5))
            continue;
        Place peer;
        const Ber::Bytes request = socket_.receive(peer);
        for (const Answer& answer : script_(request, note(request)))
            sendAnswer(socket_, answer, peer);
    }
}

std::uint16_t closedPort()
{
    return TestSupport::unusedPort();
}

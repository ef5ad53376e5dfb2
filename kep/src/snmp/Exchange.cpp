#include "snmp/Exchange.h"

#include "settings/HostSettings.h"

#include <algorithm>

namespace Kep::Snmp {

namespace {

using Clock = Wire::Clock;

class Exchange {
public:
    Exchange(Wire& wire, Security& security, const Question& question, Clock::time_point limit)
        : wire_(wire), request_(security, question), settings_(hostSettings()), limit_(limit)
    {}

    Answer run()
    {
        send();
        for (int tries = 1; !waitOneTry(); ++tries) {
            if (tries > settings_.snmpRetries || Clock::now() >= limit_)
                return unanswered(tries);
            request_.renew();
            send();
        }
        return request_.reply();
    }

private:
    // Besides the answer: answers to somebody else, and what is no message.
    enum class Heard { nothing, others, nonsense };

    Clock::time_point deadline() const { return std::min(Clock::now() + settings_.snmpTimeout, limit_); }

    // The time that the packet waits for its turn is not the agent's.
    void send()
    {
        const auto heldBefore = wire_.held();
        wire_.send(request_.packet());
        if (limit_ != Clock::time_point::max())
            limit_ += wire_.held() - heldBefore;
    }

    // Whether the answer came.
    bool waitOneTry()
    {
        auto until = deadline();
        auto progress = Request::Progress::waiting;
        const auto read = [&](std::span<const unsigned char> datagram) { progress = request_.read(datagram); };
        while (wire_.receive(until, read)) {
            if (progress == Request::Progress::done)
                return true;
            if (progress == Request::Progress::refused)
                throw Failure(request_.refusal().outcome, wire_.peer(), request_.refusal().text);
            if (progress == Request::Progress::resend) {
                send();
                until = deadline();
            }
            heard_ = std::max(heard_, progress == Request::Progress::unreadable ? Heard::nonsense : Heard::others);
            if (Clock::now() >= until)
                return false; // whatever else is there: an agent that never stops talking gets no more time than others
        }
        return false;
    }

    const char* missing() const
    {
        if (heard_ == Heard::nonsense)
            return "no readable answer";
        if (heard_ == Heard::others)
            return "no matching answer";
        return wire_.reportedUnreachable() ? "reported unreachable: no answer" : "no answer";
    }

    Host::Outcome outcome() const
    {
        if (heard_ != Heard::nothing)
            return Host::Outcome::Failed;
        return wire_.reportedUnreachable() ? Host::Outcome::Unreachable : Host::Outcome::Silent;
    }

    Failure unanswered(int tries) const
    {
        return {outcome(), wire_.peer(),
                std::string(missing()) + " in " + std::to_string(tries) + (tries == 1 ? " try of " : " tries of ") +
                    std::to_string(settings_.snmpTimeout.count()) + " ms"};
    }

    Wire& wire_;
    Request request_;
    const HostSettings settings_;
    Clock::time_point limit_;
    Heard heard_ = Heard::nothing;
};

} // namespace

Reply takeReply(Answer&& answer)
{
    if (const auto* const failure = std::get_if<Failure>(&answer))
        throw Failure(*failure);
    return std::get<Reply>(std::move(answer));
}

Answer exchange(Wire& wire, Security& security, const Question& question, Clock::time_point limit)
{
    return Exchange(wire, security, question, limit).run();
}

} // namespace Kep::Snmp

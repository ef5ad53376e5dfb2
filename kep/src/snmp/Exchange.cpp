#include "snmp/Exchange.h"

#include "Kep/Snmp/Exception.h"
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
                throw Exception(wire_.peer() + ": " + request_.refusal());
            if (progress == Request::Progress::resend) {
                send();
                until = deadline();
            }
            heardNonsense_ = heardNonsense_ || progress == Request::Progress::unreadable;
            if (Clock::now() >= until)
                return false; // whatever else is there: an agent that never stops talking gets no more time than others
        }
        return false;
    }

    Exception unanswered(int tries) const
    {
        const std::string what = heardNonsense_ ? "no readable answer" : "no answer";
        return Exception(wire_.peer() + ": " + what + " in " + std::to_string(tries) +
                         (tries == 1 ? " try of " : " tries of ") + std::to_string(settings_.snmpTimeout.count()) +
                         " ms");
    }

    Wire& wire_;
    Request request_;
    const HostSettings settings_;
    Clock::time_point limit_;
    bool heardNonsense_ = false;
};

} // namespace

Reply takeReply(Answer answer)
{
    if (const auto* const failure = std::get_if<Exception>(&answer))
        throw Exception(*failure);
    return std::get<Reply>(std::move(answer));
}

Answer exchange(Wire& wire, Security& security, const Question& question, Clock::time_point limit)
{
    return Exchange(wire, security, question, limit).run();
}

} // namespace Kep::Snmp

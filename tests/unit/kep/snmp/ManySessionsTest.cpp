#include "Sessions.h"
#include "SmallStackThreads.h"

#include <atomic>

using namespace Kep::Snmp;
using namespace std::chrono_literals;

namespace {

std::shared_ptr<Profile> userProfile(std::uint16_t port)
{
    auto profile = std::make_shared<ProfileV3>();
    profile->port = port;
    profile->userName = "user";
    profile->authProtocol = 3;
    profile->privacyProtocol = 4;
    profile->authPassword = profile->privacyPassword = "password";
    return profile;
}

} // namespace

TEST(ManySessions, WaitForSilentAgentsSideBySide)
{
    const ChosenSettings settings(500ms, 1);
    const SilentPort silent;
    std::atomic<int> unanswered = 0;
    onSmallStacks(1000, [&](std::size_t number) {
        const bool user = number % 2 != 0;
        const auto session = newSession(user ? userProfile(silent.port()) : communityProfile(1, silent.port()));
        try {
            session->open("127.0.0.1");
            Kep::Variant value;
            session->get(".1.3.6.1.2.1.1.1.0", value);
        } catch (const Exception& exception) {
            unanswered += std::string(exception.what()).ends_with("no answer in 2 tries of 500 ms") ? 1 : 0;
        }
    });
    EXPECT_EQ(unanswered, 1000);
}

TEST(ManySessions, TalkSideBySide)
{
    const ChosenSettings settings(20s, 1);
    ScriptedAgent agent([](const Ber::Bytes& bytes, std::size_t) {
        auto message = Ber::Message::decode(bytes);
        message.pdu.tag = Ber::responseTag;
        message.pdu.bindings = {Ber::binding(message.pdu.firstOid(), Ber::octets(message.pdu.firstOid()))};
        return std::vector<Answer>{message.encoded()};
    });
    std::atomic<int> right = 0;
    onSmallStacks(100, [&](std::size_t number) {
        const auto session = openSession(communityProfile(static_cast<long>(number % 2), agent.port()));
        for (std::size_t i = 0; i < 10; ++i) {
            const std::string oid = ".1.3.6." + std::to_string(number) + "." + std::to_string(i);
            Kep::Variant value;
            session->get(oid, value);
            right += std::string(value) == oid ? 1 : 0;
        }
    });
    EXPECT_EQ(right, 1000);
}

// Sessions with agents that play the lab's tricks. Whatever comes, a session ends with a value or an exception, asks no
// more than it may, and leaves nothing behind in the library; the sanitizers see the rest.
#include "Sessions.h"

#include "lab/Farm.h"
#include "lab/V3Agent.h"
#include "lab/hostile/HostileProfiles.h"
#include "snmp/Library.h"

#include <gmock/gmock.h>

using namespace Kep::Snmp;

namespace {

constexpr const char* deviceTypes = ".1.3.6.1.2.1.25.3.2.1.2";
constexpr const char* description = ".1.3.6.1.2.1.25.3.2.1.3.1";
constexpr std::size_t mostRequests = 2 * (4096 + 4); // two tries each of a whole walk, of what comes before and after

// A hostile printer of the lab, on the port of a scripted agent. It answers at once, whatever delay its trick wants.
class HostilePrinter {
public:
    explicit HostilePrinter(const std::string& profile)
        : device_(Lab::findProfile(Lab::hostileProfiles(), profile), Lab::parseIpv4("127.0.0.1").value(),
                  Lab::Individuality::Verbatim),
          trick_(device_.profile().makeTrick())
    {}

    std::uint16_t port() const { return agent_.port(); }
    std::size_t requests() const { return agent_.requests().size(); }

private:
    static Lab::Bytes labBytes(const Ber::Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

    static Answer answerOf(const Lab::Reply& reply)
    {
        using From = Lab::Reply::From;
        const auto from = reply.from == From::OtherPort      ? Answer::From::otherPort
                          : reply.from == From::OtherAddress ? Answer::From::otherAddress
                                                             : Answer::From::agent;
        return {Ber::Bytes(reply.datagram.begin(), reply.datagram.end()), from};
    }

    std::vector<Answer> answers(const Ber::Bytes& bytes)
    {
        const Lab::Bytes request = labBytes(bytes);
        Lab::Bytes honest(65507);
        std::size_t size = communityAgent_.answer(request, device_, honest);
        if (size == 0)
            size = v3Agent_.answer(request, device_, honest);
        std::vector<Answer> result;
        if (size == 0)
            return result;
        honest.resize(size);
        for (const Lab::Reply& reply : trick_({request, honest}))
            result.push_back(answerOf(reply));
        return result;
    }

    Lab::Device device_;
    Lab::Agent communityAgent_{testCommunity};
    Lab::V3Agent v3Agent_{testCommunity};
    Lab::Trick trick_;
    ScriptedAgent agent_{[this](const Ber::Bytes& request, std::size_t) { return answers(request); }};
};

std::shared_ptr<Profile> visitor(std::uint16_t port)
{
    auto profile = std::make_shared<ProfileV3>();
    profile->port = port;
    profile->userName = testCommunity;
    return profile;
}

// The agent knows no password: this one gets reports at best.
std::shared_ptr<Profile> userWithPasswords(std::uint16_t port)
{
    const auto profile = std::dynamic_pointer_cast<ProfileV3>(visitor(port));
    profile->authProtocol = 3;
    profile->privacyProtocol = 4;
    profile->authPassword = "authsecret";
    profile->privacyPassword = "privsecret";
    return profile;
}

std::vector<std::string> hostileNames()
{
    std::vector<std::string> names;
    for (const auto& [name, profile] : Lab::hostileProfiles())
        names.push_back(name);
    return names;
}

class HostileAgents : public testing::TestWithParam<std::string> {
protected:
    // As a probe does it: a walk of the device types, and then what it wants to know.
    static void probe(const std::shared_ptr<Profile>& profile)
    {
        problemOf([&] {
            const auto session = openSession(profile);
            walk(*session);
            Kep::Variant value;
            for (const char* oid : {description, ".1.3.6.1.2.1.2.2.1.6.1", ".1.3.6.1.2.1.43.5.1.1.17.1"})
                problemOf([&] { session->get(oid, value); });
        });
    }

    static void walk(Session& session)
    {
        problemOf([&] {
            std::string current = deviceTypes;
            std::string previous;
            Kep::Variant value;
            while (current != previous && current.starts_with(deviceTypes)) {
                previous = current;
                session.getNext(previous, current, value);
            }
        });
    }

    const ChosenSettings settings_{std::chrono::milliseconds(40), 1};
};

INSTANTIATE_TEST_SUITE_P(Tricks, HostileAgents, testing::ValuesIn(hostileNames()), [](const auto& trick) {
    std::string name = trick.param;
    std::erase(name, '-');
    return name;
});

} // namespace

TEST_P(HostileAgents, AreDoneWithAndLeaveNothing)
{
    const std::vector<std::function<std::shared_ptr<Profile>(std::uint16_t)>> profiles = {
        [](std::uint16_t port) { return communityProfile(0, port); },
        [](std::uint16_t port) { return communityProfile(1, port); }, visitor, userWithPasswords};
    for (const auto& profile : profiles) {
        const HostilePrinter printer(GetParam());
        probe(profile(printer.port()));
        EXPECT_GT(printer.requests(), 0U);
        EXPECT_LE(printer.requests(), mostRequests);
    }
    const Kep::MutexLock lock(libraryMutex);
    EXPECT_EQ(usm_get_userList(), nullptr);
}

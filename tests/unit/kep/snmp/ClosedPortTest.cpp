#include "Sessions.h"

#include <gmock/gmock.h>

using namespace Kep::Snmp;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

// The tries would take hours.
class ClosedPorts : public testing::Test {
protected:
    ChosenSettings settings_{1h, 5};
    std::uint16_t port_ = closedPort();
    Kep::Variant value_;
    std::string next_;
};

} // namespace

TEST_F(ClosedPorts, EndARequestAtOnce)
{
    for (const long version : {0L, 1L}) {
        const auto session = openSession(communityProfile(version, port_));
        EXPECT_THAT(problemOf([&] { session->get(".1.3.6.1", value_); }), HasSubstr("the port is closed"));
        EXPECT_THAT(problemOf([&] { session->getNext(".1.3.6.1", next_, value_); }), HasSubstr("the port is closed"));
    }
}

TEST_F(ClosedPorts, EndTheSearchForAnEngineAtOnce)
{
    const auto profile = std::make_shared<ProfileV3>();
    profile->port = port_;
    profile->userName = "user";
    const auto session = newSession(profile);
    EXPECT_THAT(problemOf([&] { session->open("127.0.0.1"); }), HasSubstr("the port is closed"));
}

#include "Kep/Net.h"

#include "net/ReverseLookup.h"
#include "settings/HostSettings.h"
#include "tasks/TaskThreads.h"
#include "tests/unit/kep/net/UdpResponder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace {

constexpr unsigned long elsewhere = 0x7F123456; // an address of the loopback network that no host file has

class HostNames : public testing::Test {
protected:
    ~HostNames() override { Kep::applyHostSettings({}); }

    static void switchOff(const char* key) { Kep::applyHostSettings({{key, "off"}}); }
};

TEST_F(HostNames, NetbiosIsNotAskedWhenSwitchedOff)
{
    switchOff("host.names.netbios");
    EXPECT_EQ(Kep::Net::ipToHostNameNetbios(elsewhere), "");
}

TEST_F(HostNames, ANodeWithoutNetbiosHasNoSuchName)
{
    EXPECT_EQ(Kep::Net::ipToHostNameNetbios(elsewhere), "");
}

TEST_F(HostNames, DnsIsNotAskedWhenSwitchedOff)
{
    switchOff("host.names.dns");
    EXPECT_EQ(Kep::Net::ipToHostNameDns(0x7F000001), "") << "the hosts file has a name for it";
}

TEST_F(HostNames, LookUpsFitOnTheStackOfATaskThread)
{
    Kep::Testing::UdpResponder silent([](const auto&, int) { return Kep::Testing::Replies{}; });
    const std::string server = "127.0.0.1:" + std::to_string(silent.port());
    std::promise<std::string> names;
    Kep::SystemTaskThreads threads;
    ASSERT_TRUE(threads.start([&] {
        names.set_value(Kep::Net::ipToHostNameNetbios(elsewhere) +
                        Kep::Net::reverseLookup(static_cast<std::uint32_t>(elsewhere), server));
    }));
    EXPECT_EQ(names.get_future().get(), "");
}

} // namespace

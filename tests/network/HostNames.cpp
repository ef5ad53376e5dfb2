/// Host names of printers from real name services: Samba's NetBIOS name server, a DNS server, the hosts file.
#include "tests/network/Devices.h"
#include "tests/network/harness/NameServer.h"
#include "tests/network/harness/Nmbd.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/Snmpd.h"
#include "tests/network/harness/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace NetworkTests;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr char netBiosPrinter[] = "127.0.0.2";
constexpr char dnsPrinter[] = "127.0.0.3";
constexpr char hostsFilePrinter[] = "127.0.0.4";
constexpr char namelessPrinter[] = "127.0.0.5";
constexpr char addressNamedPrinter[] = "127.0.0.6";
constexpr char nameServerAddress[] = "127.0.0.53";

/// Printers on port 161 of a network of its own, and name services for some of them.
class HostNames : public testing::Test {
protected:
    void SetUp() override
    {
        SKIP_UNLESS(TestNetwork::permitted(), "host names: no right to make a network");
        network_ = std::make_unique<TestNetwork>(TestNetwork::Files{
            {"/etc/resolv.conf", std::string("nameserver ") + nameServerAddress + "\n"},
            {"/etc/hosts", std::string("127.0.0.1 localhost\n") + hostsFilePrinter + " printer-of-the-hosts-file\n"},
            {"/etc/nsswitch.conf", "hosts: files dns\n"}});
    }

    void startPrinter(const std::string& address)
    {
        printers_.push_back(std::make_unique<Snmpd>(Endpoint{address, 161}, fullPrinter(address).data,
                                                    std::vector{v2c()}, network_.get()));
    }

    void startNetBios(const std::string& address, const std::string& name)
    {
        netBios_ = std::make_unique<Nmbd>(*network_, address, name);
    }

    void startDns(const std::map<std::string, std::string>& names)
    {
        dns_ = std::make_unique<NameServer>(*network_, nameServerAddress, names);
    }

    std::vector<std::string> askedOfDns() const { return dns_->asked(); }

    /// The host name that a sweep of one address gives.
    std::string hostNameOf(const std::string& address, bool names = true) const
    {
        const Document document = discover({.arguments = {address}, .names = names, .network = network_.get()});
        Document expected = fullPrinter(address).record;
        expected["hostname"] = document.at("printers").at(0).at("hostname");
        EXPECT_EQ(document, finishedSweep(1, {expected}));
        return expected["hostname"];
    }

private:
    std::unique_ptr<TestNetwork> network_;
    std::vector<std::unique_ptr<Snmpd>> printers_;
    std::unique_ptr<Nmbd> netBios_;
    std::unique_ptr<NameServer> dns_;
};

TEST_F(HostNames, NetBiosNameIsTakenAndDnsNotAsked)
{
    startPrinter(netBiosPrinter);
    startPrinter(dnsPrinter);
    startNetBios(netBiosPrinter, "LASERJET7");
    startDns({{netBiosPrinter, "dns-name-of-it.example"}, {dnsPrinter, "second-floor.example"}});
    EXPECT_EQ(hostNameOf(netBiosPrinter), "LASERJET7");
    EXPECT_THAT(askedOfDns(), Not(Contains(netBiosPrinter)));
    EXPECT_EQ(hostNameOf(dnsPrinter), "second-floor.example");
    EXPECT_THAT(askedOfDns(), Contains(dnsPrinter)) << "the list of questions would show a question";
}

TEST_F(HostNames, NetBiosNameOfFifteenCharactersIsWhole)
{
    startPrinter(netBiosPrinter);
    startNetBios(netBiosPrinter, "FIFTEENLETTERS7");
    EXPECT_EQ(hostNameOf(netBiosPrinter), "FIFTEENLETTERS7");
}

TEST_F(HostNames, HostsFileCountsAsDns)
{
    startPrinter(hostsFilePrinter);
    EXPECT_EQ(hostNameOf(hostsFilePrinter), "printer-of-the-hosts-file");
}

TEST_F(HostNames, PrinterWithoutAnyNameHasAnEmptyOne)
{
    startPrinter(namelessPrinter);
    startDns({});
    EXPECT_EQ(hostNameOf(namelessPrinter), "");
    EXPECT_THAT(askedOfDns(), Contains(namelessPrinter));
}

TEST_F(HostNames, DnsNameThatIsTheAddressItselfCountsAsNone)
{
    startPrinter(addressNamedPrinter);
    startDns({{addressNamedPrinter, addressNamedPrinter}});
    EXPECT_EQ(hostNameOf(addressNamedPrinter), "");
    EXPECT_THAT(askedOfDns(), Contains(addressNamedPrinter));
}

TEST_F(HostNames, SilentNameServerLeavesTheNameEmpty)
{
    startPrinter(dnsPrinter);
    startDns({{dnsPrinter, ""}});
    EXPECT_EQ(hostNameOf(dnsPrinter), "");
    EXPECT_THAT(askedOfDns(), Contains(dnsPrinter));
}

TEST_F(HostNames, SwitchedOffNoServiceIsAsked)
{
    startPrinter(netBiosPrinter);
    startNetBios(netBiosPrinter, "LASERJET7");
    startDns({{netBiosPrinter, "dns-name-of-it.example"}});
    EXPECT_EQ(hostNameOf(netBiosPrinter, false), "");
    EXPECT_THAT(askedOfDns(), IsEmpty());
}

} // namespace

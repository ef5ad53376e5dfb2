#include "Kep/Host/Settings.h"

#include "settings/HostSettings.h"
#include "tests/unit/kep/base/Messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using Kep::applyHostSettings;
using Kep::hostSettings;
using Kep::Host::checkSetting;

namespace {

class Settings : public testing::Test {
protected:
    ~Settings() override { applyHostSettings({}); }

    static void accepts(std::string_view key, const std::vector<std::string>& values)
    {
        for (const std::string& value : values) {
            EXPECT_NO_THROW(checkSetting(key, value)) << key << " " << value;
        }
    }

    static void refuses(std::string_view key, const std::vector<std::string>& values)
    {
        for (const std::string& value : values) {
            EXPECT_THROW(checkSetting(key, value), Kep::GenericException) << key << " \"" << value << "\"";
        }
    }
};

void expectSame(const Kep::HostSettings& left, const Kep::HostSettings& right)
{
    EXPECT_EQ(left.snmpTimeout, right.snmpTimeout);
    EXPECT_EQ(left.snmpRetries, right.snmpRetries);
    EXPECT_EQ(left.snmpRate, right.snmpRate);
    EXPECT_EQ(left.taskLimit, right.taskLimit);
    EXPECT_EQ(left.netbiosNames, right.netbiosNames);
    EXPECT_EQ(left.dnsNames, right.dnsNames);
}

TEST_F(Settings, AreListedWithTheirKeysOnce)
{
    std::vector<std::string_view> keys;
    for (const auto& setting : Kep::Host::settings()) {
        keys.push_back(setting.key);
        EXPECT_FALSE(setting.meaning.empty());
        EXPECT_FALSE(setting.accepted.empty());
        EXPECT_FALSE(setting.effect.empty());
    }
    EXPECT_EQ(keys, (std::vector<std::string_view>{"host.snmp.timeout", "host.snmp.retries", "host.snmp.rate",
                                                   "host.tasks.limit", "host.names.netbios", "host.names.dns",
                                                   "host.history.runs", "services.PrinterDiscovery.macAddressOids",
                                                   "services.PrinterDiscovery.oidDeviceType",
                                                   "services.PrinterDiscovery.oidDeviceTypePrinter"}));
}

TEST_F(Settings, DefaultsAreAcceptedAndAreTheOnesInForce)
{
    std::map<std::string, std::string> defaults;
    for (const auto& setting : Kep::Host::settings()) {
        EXPECT_NO_THROW(checkSetting(setting.key, setting.defaultValue)) << setting.key;
        defaults.emplace(setting.key, setting.defaultValue);
    }
    expectSame(hostSettings(), Kep::HostSettings{});
    applyHostSettings(defaults);
    expectSame(hostSettings(), Kep::HostSettings{});
}

TEST_F(Settings, TimeoutIsInSecondsWithFractions)
{
    const std::string key = "host.snmp.timeout";
    accepts(key, {"0.05", "1", "2.5", "60", "60.0"});
    refuses(key, {"", "0", "0.049", "60.001", "-1", "+1", "1e1", " 1", "1 ", "1s", "0x1", "inf", "nan", "1,5", ".5"});
    applyHostSettings({{key, "0.25"}});
    EXPECT_EQ(hostSettings().snmpTimeout, 250ms);
    applyHostSettings({{key, "60"}});
    EXPECT_EQ(hostSettings().snmpTimeout, 60s);
}

TEST_F(Settings, CountsHaveTheirLimits)
{
    accepts("host.snmp.retries", {"0", "10"});
    refuses("host.snmp.retries", {"", "-1", "11", "1.5", "one", "99999999999999999999", "1 "});
    accepts("host.snmp.rate", {"0", "1", "1000000"});
    refuses("host.snmp.rate", {"", "-1", "1000001", "5000.5", "fast", "5k", "auto"});
    accepts("host.tasks.limit", {"1", "65536", "auto"});
    refuses("host.tasks.limit", {"", "0", "65537", "-5", "4k", "automatic"});
    accepts("host.history.runs", {"0", "1", "1000"});
    refuses("host.history.runs", {"", "-1", "1001", "1.5", "all", "on"});
    applyHostSettings({{"host.snmp.retries", "0"}, {"host.snmp.rate", "0"}, {"host.tasks.limit", "65536"}});
    EXPECT_EQ(hostSettings().snmpRetries, 0);
    EXPECT_EQ(hostSettings().snmpRate, 0);
    EXPECT_EQ(hostSettings().taskLimit, 65536u);
}

TEST_F(Settings, TaskLimitCanBeLeftToTheHost)
{
    EXPECT_FALSE(hostSettings().taskLimit.has_value());
    applyHostSettings({{"host.tasks.limit", "7"}});
    EXPECT_EQ(hostSettings().taskLimit, 7u);
    applyHostSettings({{"host.tasks.limit", "auto"}});
    EXPECT_FALSE(hostSettings().taskLimit.has_value());
}

TEST_F(Settings, NamesAreSwitchedEachOnItsOwn)
{
    for (const std::string key : {"host.names.netbios", "host.names.dns"}) {
        accepts(key, {"on", "off"});
        refuses(key, {"", "On", "true", "1", "on "});
    }
    applyHostSettings({{"host.names.netbios", "off"}});
    EXPECT_FALSE(hostSettings().netbiosNames);
    EXPECT_TRUE(hostSettings().dnsNames);
    applyHostSettings({{"host.names.dns", "off"}});
    EXPECT_TRUE(hostSettings().netbiosNames) << "what is not named is back at its default";
    EXPECT_FALSE(hostSettings().dnsNames);
}

TEST_F(Settings, AnObjectIdentifierIsDottedWithALeadingDot)
{
    const std::string key = "services.PrinterDiscovery.oidDeviceType";
    accepts(key, {".1.3", ".1.3.6.1.2.1.25.3.2.1.2", ".0.0", ".2.999", ".1.3.4294967295"});
    refuses(key, {"", ".", ".1", "1.3.6", ".1.3.", ".1..3", ".1.3.x", ".1.3 ", ".3.1", ".1.40", ".1.3.4294967296",
                  ".1.3.-6", ".1.3,.1.4", "sysDescr"});
}

TEST_F(Settings, AnObjectIdentifierHasAtMost128Numbers)
{
    std::string oid = ".1.3";
    for (int arcs = 2; arcs < 128; ++arcs) {
        oid += ".7";
    }
    accepts("services.PrinterDiscovery.oidDeviceType", {oid});
    refuses("services.PrinterDiscovery.oidDeviceType", {oid + ".7"});
}

TEST_F(Settings, ListsAreJoinedByOneSeparator)
{
    for (const std::string key :
         {"services.PrinterDiscovery.macAddressOids", "services.PrinterDiscovery.oidDeviceTypePrinter"}) {
        accepts(key, {".1.3", ".1.3,.1.4", ".1.3;.1.4", ".1.3 .1.4", ".1.3,.1.4;.1.5 .1.6"});
        refuses(key, {"", ",", ".1.3,", ",.1.3", ".1.3, .1.4", ".1.3,,.1.4", ".1.3-.1.4", ".1.3,x", ".1.3\n.1.4"});
    }
}

TEST_F(Settings, ARefusalNamesKeyAndAcceptedValuesButNotTheValue)
{
    const std::string message = messageOf([] { checkSetting("host.names.dns", "s3cret"); });
    EXPECT_EQ(message, "setting \"host.names.dns\": accepted is on or off");
}

TEST_F(Settings, AnUnknownKeyIsNamedWithTheKnownOnes)
{
    for (const std::string key : {"", "host", "host.", "host.snmp", "host.snmp.timeouts", "Host.snmp.timeout"}) {
        const std::string message = messageOf([&] { checkSetting(key, "1"); });
        EXPECT_EQ(message.rfind("there is no setting \"" + key + "\"; the settings are host.snmp.timeout, ", 0), 0u)
            << message;
    }
}

TEST_F(Settings, ApplyingIgnoresKeysOfOthers)
{
    applyHostSettings({{"services.PrinterDiscovery.oidDeviceType", "nonsense"}, {"hosts", "x"}, {"", ""}});
    expectSame(hostSettings(), Kep::HostSettings{});
}

TEST_F(Settings, ARefusedValueChangesNothing)
{
    applyHostSettings({{"host.snmp.retries", "7"}});
    EXPECT_THROW(applyHostSettings({{"host.names.dns", "off"}, {"host.snmp.retries", "many"}}), Kep::GenericException);
    EXPECT_THROW(applyHostSettings({{"host.names.dns", "off"}, {"host.x", ""}}), Kep::GenericException);
    EXPECT_EQ(hostSettings().snmpRetries, 7);
    EXPECT_TRUE(hostSettings().dnsNames);
}

TEST_F(Settings, ReadersNeverSeeHalfAChange)
{
    std::vector<std::thread> threads;
    threads.emplace_back([] {
        for (int round = 0; round < 300; ++round) {
            applyHostSettings({{"host.snmp.retries", "3"}, {"host.tasks.limit", "3"}});
            applyHostSettings({{"host.snmp.retries", "5"}, {"host.tasks.limit", "5"}});
        }
    });
    for (int reader = 0; reader < 2; ++reader) {
        threads.emplace_back([] {
            for (int round = 0; round < 300; ++round) {
                const auto settings = hostSettings();
                EXPECT_TRUE(static_cast<std::size_t>(settings.snmpRetries) == settings.taskLimit ||
                            !settings.taskLimit.has_value());
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

} // namespace

#include "platform/Configuration.h"

#include "Kep/Host/DataStore.h"
#include "tests/unit/kep/base/Messages.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using Kep::readConfiguration;
using Values = std::map<std::string, std::string>;

namespace {

std::string problemOf(const std::string& document)
{
    return messageOf([&document] { readConfiguration(document); });
}

TEST(ConfigurationDocument, MayBeEmpty)
{
    for (const std::string document : {"", "{}", R"({"settings":{}})"}) {
        const auto configuration = readConfiguration(document);
        EXPECT_EQ(configuration.dataStorePath, "");
        EXPECT_EQ(configuration.settings, Values{});
    }
}

TEST(ConfigurationDocument, NamesTheDataStoreAndHostSettings)
{
    const auto configuration = readConfiguration(R"({"dataStore":"/var/lib/\u00e4.db","settings":{
        "host.snmp.timeout":0.5,"host.snmp.retries":3,"host.names.dns":false,"host.names.netbios":true,
        "host.tasks.limit":"17"}})");
    EXPECT_EQ(configuration.dataStorePath, "/var/lib/\xC3\xA4.db");
    EXPECT_EQ(configuration.settings, (Values{{"host.snmp.timeout", "0.5"},
                                              {"host.snmp.retries", "3"},
                                              {"host.names.dns", "off"},
                                              {"host.names.netbios", "on"},
                                              {"host.tasks.limit", "17"}}));
}

TEST(ConfigurationDocument, IsRefusedWhenMalformed)
{
    EXPECT_EQ(problemOf("{\"settings\":\"s3cret"), "malformed JSON at line 1, column 20: text without closing quote");
    EXPECT_EQ(problemOf(" "), "malformed JSON at line 1, column 2: unexpected end");
}

TEST(ConfigurationDocument, IsRefusedWhenAMemberIsOfAnotherKind)
{
    EXPECT_EQ(problemOf("[]"), "document: expected object, found list");
    EXPECT_EQ(problemOf("null"), "document: expected object, found nothing");
    EXPECT_EQ(problemOf(R"({"dataStore":5})"), "member \"dataStore\": expected text, found number");
    EXPECT_EQ(problemOf(R"({"dataStore":null})"), "member \"dataStore\": expected text, found nothing");
    EXPECT_EQ(problemOf(R"({"settings":[]})"), "member \"settings\": expected object, found list");
    EXPECT_EQ(problemOf(R"({"settings":{"host.names.dns":null}})"),
              "member \"host.names.dns\": expected text, found nothing (in \"settings\")");
}

TEST(ConfigurationDocument, UnknownMembersAreNamed)
{
    EXPECT_EQ(problemOf(R"({"datastore":"x"})"),
              "unknown member \"datastore\"; known are \"dataStore\" and \"settings\"");
}

TEST(ConfigurationDocument, SettingsMustFitAndBeTheHosts)
{
    EXPECT_EQ(problemOf(R"({"settings":{"host.snmp.retries":11}})"),
              "setting \"host.snmp.retries\": accepted is a number from 0 to 10");
    EXPECT_EQ(problemOf(R"({"settings":{"host.snmp.retries":true}})"),
              "setting \"host.snmp.retries\": accepted is a number from 0 to 10");
    EXPECT_EQ(problemOf(R"({"settings":{"host.speed":1}})").rfind("there is no setting \"host.speed\"; ", 0), 0u);
    EXPECT_EQ(problemOf(R"({"settings":{"host.names.dns\u0000":"on"}})").rfind("there is no setting ", 0), 0u);
    for (const std::string key : {"services.PrinterDiscovery.oidDeviceType", "hosts.x", ""}) {
        EXPECT_EQ(problemOf(R"({"settings":{")" + key + R"(":".1.3"}})"),
                  "setting \"" + key + "\": only settings of the host, which begin with \"host.\", are accepted here");
    }
}

TEST(EffectiveSettings, TheDocumentGoesBeforeTheDataStore)
{
    const TestSupport::TemporaryFolder folder;
    const std::string path = folder.file("store.db");
    Kep::Host::DataStore store(path);
    store.set("host.snmp.retries", "2");
    store.set("host.snmp.timeout", "9");
    store.set("hosts.other", "x");
    store.set("services.PrinterDiscovery.oidDeviceType", ".1.3");
    EXPECT_EQ(Kep::effectiveHostSettings({path, {{"host.snmp.retries", "5"}}}),
              (Values{{"host.snmp.retries", "5"}, {"host.snmp.timeout", "9"}}));
    EXPECT_EQ(Kep::effectiveHostSettings({path, {}}), (Values{{"host.snmp.retries", "2"}, {"host.snmp.timeout", "9"}}));
    EXPECT_EQ(Kep::effectiveHostSettings({"", {{"host.snmp.retries", "5"}}}), (Values{{"host.snmp.retries", "5"}}));
    EXPECT_EQ(Kep::effectiveHostSettings({folder.file("missing.db"), {}}), Values{});
}

} // namespace

#include "Kep/Platform/Plugin.h"

#include "Kep/Exception.h"
#include "Kep/Host/DataStore.h"
#include "Kep/Json.h"
#include "Kep/Platform/Proxy/DataStore.h"
#include "Kep/Platform/StartableService.h"
#include "settings/HostSettings.h"
#include "tests/unit/kep/base/Messages.h"
#include "tests/unit/kep/platform/FakeTasks.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

using Kep::Variant;
using Kep::Platform::Plugin;
using testing::HasSubstr;

namespace {

class PlainService : public Kep::Platform::Service {
public:
    explicit PlainService(const std::string& reference)
    {
        setReference(reference);
        addOperation("echo", [](const std::string& params) { return Variant(params); });
        addOperation("fail", [](const std::string&) -> Variant { throw std::invalid_argument("no good"); });
    }
};

// Enters its starts and stops into the events.
class LoggedService : public Kep::Platform::StartableService {
public:
    explicit LoggedService(const std::string& reference)
    {
        setReference(reference);
        dependencies_ = {"PrintService"};
        addOperation("where", [this](const std::string&) { return subtree(); });
    }
    ~LoggedService() override { events() += "gone:" + reference() + " "; }

    void onStart() override
    {
        events() += "start:" + reference() + " ";
        if (startFailure) {
            startFailure();
        }
    }
    void onStop() override
    {
        events() += "stop:" + reference() + " ";
        if (failStop) {
            throw std::runtime_error("cannot stop " + reference());
        }
    }
    void onConfigure(const Variant&) override {}

    std::function<void()> startFailure;
    bool failStop = false;

private:
    Variant subtree()
    {
        return plugin().serviceLocator().get<Kep::Platform::Proxy::DataStore::Proxy>()->begin()->getKeySubtree("a");
    }
};

class PluginObject : public testing::Test {
protected:
    PluginObject()
    {
        events().clear();
        plugin->setName("Name");
        plugin->setDescription("What it does");
        plugin->setConfigured();
        plugin->addService(plain);
        plugin->addService(first);
        plugin->addService(second);
    }
    ~PluginObject() override { Kep::applyHostSettings({}); }

    std::string init(const std::string& document) { return plugin->init(document).toJson(); }

    static std::string withStore(const std::string& path) { return R"({"dataStore":")" + path + R"("})"; }

    std::shared_ptr<Plugin> plugin = std::make_shared<Plugin>();
    std::shared_ptr<PlainService> plain = std::make_shared<PlainService>("Plain");
    std::shared_ptr<LoggedService> first = std::make_shared<LoggedService>("First");
    std::shared_ptr<LoggedService> second = std::make_shared<LoggedService>("Second");
    TestSupport::TemporaryFolder folder;
};

TEST_F(PluginObject, InitStartsTheServicesAndDescribesThem)
{
    const std::string startable = R"("error":null,"dependencies":["PrintService"],"operations":["where"]})";
    EXPECT_EQ(init(""), R"({"name":"Name","description":"What it does","services":[)"
                        R"({"reference":"Plain","state":"started","error":null,"dependencies":[],)"
                        R"("operations":["echo","fail"]},)"
                        R"({"reference":"First","state":"started",)" +
                            startable + R"(,{"reference":"Second","state":"started",)" + startable +
                            R"(],"error":null})");
    EXPECT_EQ(events(), "open start:First start:Second ");
}

TEST_F(PluginObject, AServiceThatCannotStartIsReportedAndKeepsNoOtherFromIt)
{
    first->startFailure = [] { throw std::runtime_error("no \"queue\""); };
    const std::string answer = init("{}");
    EXPECT_THAT(answer, HasSubstr(R"({"reference":"First","state":"failed","error":"no \"queue\"",)"));
    EXPECT_THAT(answer, HasSubstr(R"({"reference":"Second","state":"started","error":null,)"));
    EXPECT_THAT(answer, HasSubstr(R"(],"error":null})"));
    EXPECT_EQ(static_cast<std::string>(first->getServiceConfig()["state"]), "stopped");
}

TEST_F(PluginObject, NoExceptionOfAStartLeavesInit)
{
    first->startFailure = [] { throw 5; };
    second->startFailure = [] { throw std::runtime_error(""); };
    const std::string answer = init("");
    EXPECT_THAT(answer, HasSubstr(R"({"reference":"First","state":"failed","error":"no reason given",)"));
    EXPECT_THAT(answer, HasSubstr(R"({"reference":"Second","state":"failed","error":"no reason given",)"));
}

TEST_F(PluginObject, ADocumentThatCannotBeUsedStartsNothing)
{
    Kep::Host::DataStore(folder.file("bad.db")).set("host.snmp.retries", "lots");
    const std::string path = folder.path().string();
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{\"dataStore\":\"s3cret", "malformed JSON at line 1, column 21: text without closing quote"},
        {R"({"dataStores":"x"})", R"(unknown member \"dataStores\"; known are \"dataStore\" and \"settings\")"},
        {R"({"settings":{"host.names.dns":"maybe"}})", R"(setting \"host.names.dns\": accepted is on or off)"},
        {R"({"dataStore":")" + path + R"("})", "data store \\\"" + path + "\\\": it is a folder"},
        {R"({"dataStore":")" + path + R"(/bad.db"})",
         R"(setting \"host.snmp.retries\": accepted is a number from 0 to 10)"},
    };
    for (const auto& [document, reason] : cases) {
        const std::string answer = init(document);
        const std::string error = "\"error\":\"configuration: " + reason + "\"";
        EXPECT_THAT(answer, HasSubstr("]," + error + "}"));
        EXPECT_THAT(answer, HasSubstr(R"({"reference":"Plain","state":"failed",)" + error + ","));
        EXPECT_THAT(answer, HasSubstr(R"({"reference":"First","state":"failed",)" + error + ","));
        EXPECT_THAT(answer, testing::Not(HasSubstr("s3cret")));
    }
    EXPECT_THAT(events(), testing::Not(HasSubstr("start")));
}

TEST_F(PluginObject, StartsNothingBeforeItIsConfigured)
{
    const auto unfinished = std::make_shared<Plugin>();
    unfinished->addService(first);
    const std::string answer = unfinished->init("").toJson();
    EXPECT_THAT(answer, HasSubstr(R"(],"error":"the plug-in is not configured"})"));
    EXPECT_EQ(static_cast<std::string>(first->getServiceConfig()["state"]), "stopped");
    first->setPlugin(*plugin);
}

TEST_F(PluginObject, InitPutsTheHostSettingsInForce)
{
    const std::string path = folder.file("store.db");
    Kep::Host::DataStore(path).set("host.snmp.retries", "2");
    Kep::Host::DataStore(path).set("host.tasks.limit", "9");
    init(R"({"dataStore":")" + path + R"(","settings":{"host.snmp.retries":5}})");
    EXPECT_EQ(Kep::hostSettings().snmpRetries, 5);
    EXPECT_EQ(Kep::hostSettings().taskLimit, 9u);
    EXPECT_TRUE(Kep::hostSettings().dnsNames);
    init("{}");
    EXPECT_EQ(Kep::hostSettings().snmpRetries, 1);
    EXPECT_FALSE(Kep::hostSettings().taskLimit.has_value());
}

TEST_F(PluginObject, AFailedInitLeavesTheSettingsInForce)
{
    init(R"({"settings":{"host.snmp.retries":5}})");
    init(R"({"settings":{"host.snmp.retries":99}})");
    EXPECT_EQ(Kep::hostSettings().snmpRetries, 5);
}

TEST_F(PluginObject, ServicesReachTheDataStoreOfTheLatestInit)
{
    const std::string one = folder.file("one.db");
    const std::string two = folder.file("two.db");
    Kep::Host::DataStore(one).set("a.x", "1");
    Kep::Host::DataStore(two).set("a.x", "2");
    EXPECT_EQ(plugin->call("First", "where", "").toJson(), "{}") << "before init there is none";
    init(withStore(one));
    EXPECT_EQ(plugin->call("First", "where", "").toJson(), R"({".x":"1"})");
    init(withStore(two));
    EXPECT_EQ(plugin->call("First", "where", "").toJson(), R"({".x":"2"})");
    init("");
    EXPECT_EQ(plugin->call("First", "where", "").toJson(), "{}");
}

TEST_F(PluginObject, AStartHookReachesTheDataStoreOfItsInit)
{
    const std::string path = folder.file("store.db");
    Kep::Host::DataStore(path).set("a.x", "1");
    std::string seen;
    first->startFailure = [this, &seen] { seen = first->call("where", "").toJson(); };
    init(withStore(path));
    EXPECT_EQ(seen, R"({".x":"1"})");
}

TEST_F(PluginObject, RoutesCallsByServiceAndOperation)
{
    EXPECT_EQ(static_cast<std::string>(plugin->call("Plain", "echo", R"({"a":1})")), R"({"a":1})");
    EXPECT_THROW(plugin->call("Plain", "fail", ""), std::invalid_argument);
    EXPECT_EQ(plugin->call("First", "startService", "").toJson(), R"({"success":true})");
    EXPECT_EQ(static_cast<std::string>(plugin->call("First", "getServiceConfig", "")["state"]), "started");
}

TEST_F(PluginObject, WhatIsMissingIsNamed)
{
    EXPECT_THROW(plugin->call("Nobody", "echo", ""), Kep::NotFoundException);
    EXPECT_THROW(plugin->call("Plain", "sing", ""), Kep::NotFoundException);
    EXPECT_EQ(messageOf([this] { plugin->call("Nobody", "echo", "s3cret"); }), "no service \"Nobody\"");
    EXPECT_EQ(messageOf([this] { plugin->call("", "", ""); }), "no service \"\"");
    EXPECT_EQ(messageOf([this] { plugin->call("plain", "echo", ""); }), "no service \"plain\"");
    EXPECT_EQ(messageOf([this] { plugin->call("Plain", "sing", "s3cret"); }),
              "the service \"Plain\" has no operation \"sing\"");
    EXPECT_EQ(messageOf([this] { plugin->call("Plain", "", ""); }), "the service \"Plain\" has no operation \"\"");
}

TEST_F(PluginObject, DeinitStopsTheServicesInReverseThenWaitsForTheTasks)
{
    init("");
    events().clear();
    plugin->deinit();
    EXPECT_EQ(events(), "stop:Second stop:First close ");
}

TEST_F(PluginObject, ASecondDeinitStopsNothing)
{
    init("");
    plugin->deinit();
    events().clear();
    plugin->deinit();
    EXPECT_THAT(events(), testing::Not(HasSubstr("stop")));
}

TEST_F(PluginObject, AFailingStopHookIsToldAfterTheRest)
{
    init("");
    events().clear();
    first->failStop = true;
    second->failStop = true;
    try {
        plugin->deinit();
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "cannot stop Second");
    }
    EXPECT_EQ(events(), "stop:Second stop:First close ");
}

TEST_F(PluginObject, InitAfterDeinitWorksAgain)
{
    init("");
    plugin->deinit();
    events().clear();
    EXPECT_THAT(init(""), HasSubstr(R"("reference":"First","state":"started")"));
    EXPECT_EQ(events(), "open start:First start:Second ");
}

TEST_F(PluginObject, AServiceStartedByACallIsStoppedByDeinit)
{
    plugin->call("First", "startService", "");
    plugin->deinit();
    EXPECT_THAT(events(), HasSubstr("stop:First close "));
}

TEST_F(PluginObject, ItsEndIsADeinitThatTellsNobody)
{
    init("");
    first->failStop = true;
    events().clear();
    first.reset();
    second.reset();
    EXPECT_NO_THROW(plugin.reset());
    EXPECT_THAT(events(), testing::StartsWith("stop:Second stop:First close "));
    EXPECT_THAT(events(), HasSubstr("gone:First "));
    EXPECT_THAT(events(), HasSubstr("gone:Second "));
}

TEST_F(PluginObject, KnowsItsOwnerAndItsShareOfTheHost)
{
    EXPECT_EQ(plugin->shared_from_this(), plugin);
    EXPECT_NE(plugin->callbacks(), nullptr);
    EXPECT_EQ(plugin->callbacks(), plugin->callbacks());
    EXPECT_EQ(&plugin->serviceCaller(), &plugin->serviceCaller());
}

TEST_F(PluginObject, CallsComeFromManyThreads)
{
    init("");
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller) {
        callers.emplace_back([this] {
            for (int round = 0; round < 100; ++round) {
                EXPECT_EQ(static_cast<std::string>(plugin->call("Plain", "echo", "x")), "x");
                EXPECT_EQ(plugin->call("First", "where", "").toJson(), "{}");
                plugin->call("First", "getServiceConfig", "");
            }
        });
    }
    for (auto& caller : callers) {
        caller.join();
    }
}

} // namespace

// What the operations answer to a foreign host, errors included.
#include "entry/Host.h"

#include <filesystem>
#include <fstream>

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

auto isError(const std::string& code, const std::string& part)
{
    return AllOf(StartsWith(R"({"code":")" + code + R"(","message":")"), HasSubstr(part),
                 testing::EndsWith(R"(,"data":null,"operation":{"service":"","operation":"","params":null}})"));
}

class Operations : public WithHost {
protected:
    Operations() { initReply = init(); }

    json validStart(const std::string& cookie = "c") const
    {
        return startParameters(cookie, "127.20.0.1", "127.20.0.2", port);
    }

    // The reply to a start whose parameters were changed.
    template <class Change> std::string startChanged(Change change, const char* operation = "startDiscovery") const
    {
        json params = validStart();
        change(params);
        return call(operation, params.dump());
    }

    void damageDataStore() const { std::ofstream(dataStore()) << std::string(4096, 'x'); }

    const std::uint16_t port = System::closedPort();
    std::string initReply;
};

// What a JSON text says about a member by its name.
std::string naming(const std::string& member)
{
    return member + R"(\")";
}

TEST_F(Operations, InitDescribesThePluginAndItsService)
{
    const json reply = json::parse(initReply);
    EXPECT_EQ(reply.at("name"), "PrinterDiscovery");
    EXPECT_EQ(reply.at("description"), "Discovers printers using snmp");
    EXPECT_TRUE(reply.at("error").is_null());
    ASSERT_EQ(reply.at("services").size(), 1U);
    const json& service = reply.at("services").at(0);
    EXPECT_EQ(service.at("reference"), "PrinterDiscovery");
    EXPECT_EQ(service.at("state"), "started");
    EXPECT_TRUE(service.at("error").is_null());
    EXPECT_EQ(service.at("dependencies"), json({"PrintService"}));
    EXPECT_EQ(service.at("operations"),
              json({"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"}));
}

TEST_F(Operations, AnUnusableConfigurationIsReportedAndStartsNothing)
{
    driver.deinit();
    const json reply = json::parse(init("{no json"));
    EXPECT_TRUE(reply.at("error").is_string());
    EXPECT_EQ(reply.at("services").at(0).at("state"), "failed");
    EXPECT_EQ(status("c"), refusal("getPdExecutor"));
}

TEST_F(Operations, ADamagedDataStoreIsReportedByInit)
{
    driver.deinit();
    damageDataStore();
    const json reply = json::parse(init());
    EXPECT_THAT(reply.at("error").get<std::string>(), HasSubstr(dataStore()));
    EXPECT_EQ(reply.at("services").at(0).at("state"), "failed");
    EXPECT_THAT(reply.at("services").at(0).at("error").get<std::string>(), HasSubstr(dataStore()));
    EXPECT_EQ(stop("c"), refusal("checkTimeouts"));
}

TEST_F(Operations, ADamagedDataStoreKeepsTheServiceFromStarting)
{
    call("stopService");
    damageDataStore();
    EXPECT_THAT(call("startService"), isError("internalServerError", dataStore()));
    EXPECT_THAT(call("getServiceConfig"), HasSubstr(R"("state":"stopped")"));
    EXPECT_EQ(stop("c"), refusal("checkTimeouts"));
    std::filesystem::remove(dataStore());
    EXPECT_EQ(call("startService"), success);
    EXPECT_EQ(stop("c"), success);
}

TEST_F(Operations, ARunIsStartedFollowedAndCollectedOnce)
{
    EXPECT_EQ(start("c", "127.20.0.0", "127.20.0.9", port), success);
    EXPECT_EQ(finish("c"), json::parse(R"({"step":9,"total":9,"state":1,"cookie":"c","printers":[]})"));
    EXPECT_EQ(status("c"), unknownStatus("c"));
}

TEST_F(Operations, TheStatusTextIsPassedOnByteForByte)
{
    EXPECT_EQ(status("c \"\\\xc3\xa4\n/", 3), unknownStatus("c \"\\\xc3\xa4\n/"));
    EXPECT_EQ(call("getStatus", R"({"cookie":"\u00e4","firstIdx":-1})"), unknownStatus("\xc3\xa4"));
}

TEST_F(Operations, ABlockingStartAnswersWhenTheRunHasFinished)
{
    EXPECT_EQ(call("startDiscoveryBlocking", validStart().dump()), success);
    EXPECT_EQ(status("c"), R"({"step":2,"total":2,"state":1,"cookie":"c","printers":[]})");
}

TEST_F(Operations, ARunWithoutAddressesIsFinishedAtOnce)
{
    const auto reply = startChanged([](json& params) { params["config"].erase("includeRanges"); });
    EXPECT_EQ(reply, success);
    EXPECT_EQ(status("c"), unknownStatus("c"));
    EXPECT_EQ(startChanged([](json& params) { params["config"]["includeRanges"] = nullptr; }), success);
    EXPECT_EQ(startChanged([](json& params) { params["config"]["includeRanges"] = json::array(); }), success);
}

TEST_F(Operations, AStopSucceedsForKnownAndUnknownCookies)
{
    start("c", "127.20.0.1", "127.20.0.9", port);
    EXPECT_EQ(stop("c"), success);
    EXPECT_EQ(status("c"), unknownStatus("c"));
    EXPECT_EQ(stop("c"), success);
    EXPECT_EQ(stop("nobody"), success);
}

TEST_F(Operations, AnUnknownServiceIsNotFound)
{
    EXPECT_THAT(callService("Printerdiscovery", "getStatus", "{}"), isError("notFound", naming("Printerdiscovery")));
}

TEST_F(Operations, AnUnknownOperationIsNotFound)
{
    EXPECT_THAT(call("getstatus"), isError("notFound", naming("getstatus")));
}

TEST_F(Operations, TextsOfNoLengthAreTakenAsTheyAre)
{
    EXPECT_THAT(callService("", "", ""), isError("notFound", R"(\"\")"));
    EXPECT_THAT(call("", "{}"), isError("notFound", R"(\"\")"));
    EXPECT_THAT(call("getStatus", ""), isError("internalServerError", "line 1"));
    char* result = nullptr;
    std::size_t size = 0;
    driver.call(nullptr, 0, nullptr, 0, nullptr, 0, &result, &size);
    EXPECT_THAT(std::string(result, size - 1), isError("notFound", R"(\"\")"));
    driver.release(result);
}

TEST_F(Operations, AMalformedDocumentIsAnErrorThatDoesNotQuoteIt)
{
    for (const char* operation : {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"}) {
        const std::string reply = call(operation, R"({"cookie": "c", "authPwd": "hush hush" oops})");
        EXPECT_THAT(reply, isError("internalServerError", "line 1"));
        EXPECT_THAT(reply, testing::Not(HasSubstr("hush")));
    }
    EXPECT_THAT(call("stopDiscovery", "[\"c\"]"), isError("internalServerError", "expected object"));
    EXPECT_THAT(call("stopDiscovery", std::string(100'000, '[')), isError("internalServerError", "line 1"));
    EXPECT_THAT(call("stopDiscovery", std::string("{\"cookie\":\"c\"}\0", 15)), isError("internalServerError", ""));
}

TEST_F(Operations, AMissingKeyIsNamed)
{
    EXPECT_THAT(call("stopDiscovery"), isError("internalServerError", naming("cookie")));
    EXPECT_THAT(call("getStatus", R"({"cookie":"c"})"), isError("internalServerError", naming("firstIdx")));
    EXPECT_THAT(call("getStatus", R"({"firstIdx":0})"), isError("internalServerError", naming("cookie")));
    for (const char* operation : {"startDiscovery", "startDiscoveryBlocking"}) {
        EXPECT_THAT(call(operation), isError("internalServerError", "config"));
        for (const char* key : {"pingTimeout", "snmpTimeout", "usePing", "snmpProfile"})
            EXPECT_THAT(startChanged([key](json& params) { params["config"].erase(key); }, operation),
                        isError("internalServerError", key));
        for (const char* key : {"snmpVersion", "communityRead", "communityWrite"})
            EXPECT_THAT(startChanged([key](json& params) { params["config"]["snmpProfile"].erase(key); }, operation),
                        isError("internalServerError", key));
        for (const char* key : {"from", "to"})
            EXPECT_THAT(
                startChanged([key](json& params) { params["config"]["includeRanges"][0].erase(key); }, operation),
                isError("internalServerError", naming(key)));
        EXPECT_THAT(startChanged([](json& params) { params.erase("cookie"); }, operation),
                    isError("internalServerError", naming("cookie")));
    }
}

TEST_F(Operations, AMissingKeyOfAVersion3ProfileIsNamed)
{
    for (const char* key : {"usm", "authProtocol", "authPwd", "privacyProtocol", "privacyPwd", "context"}) {
        const auto reply = startChanged([key](json& params) {
            params["config"]["snmpProfile"] = {{"snmpVersion", 3},
                                               {"usm", "user"},
                                               {"authProtocol", "SHA1"},
                                               {"authPwd", "hush hush"},
                                               {"privacyProtocol", "DES"},
                                               {"privacyPwd", "hush hush"},
                                               {"context", ""}};
            params["config"]["snmpProfile"].erase(key);
        });
        EXPECT_THAT(reply, isError("internalServerError", naming(key)));
        EXPECT_THAT(reply, testing::Not(HasSubstr("hush")));
    }
}

TEST_F(Operations, AValueOfTheWrongKindIsNamed)
{
    EXPECT_THAT(call("stopDiscovery", R"({"cookie":7})"), isError("internalServerError", naming("cookie")));
    EXPECT_THAT(call("getStatus", R"({"cookie":"c","firstIdx":"0"})"),
                isError("internalServerError", naming("firstIdx")));
    EXPECT_THAT(call("getStatus", R"({"cookie":"c","firstIdx":1.5})"),
                isError("internalServerError", naming("firstIdx")));
    EXPECT_THAT(call("getStatus", R"({"cookie":"c","firstIdx":4294967296})"),
                isError("internalServerError", naming("firstIdx")));
    const auto wrong = [this](const char* key, const json& value) {
        return startChanged([&](json& params) { params["config"][key] = value; });
    };
    EXPECT_THAT(wrong("pingTimeout", "500"), isError("internalServerError", naming("pingTimeout")));
    EXPECT_THAT(wrong("snmpTimeout", true), isError("internalServerError", naming("snmpTimeout")));
    EXPECT_THAT(wrong("usePing", 1), isError("internalServerError", naming("usePing")));
    EXPECT_THAT(wrong("includeRanges", "127.20.0.1"), isError("internalServerError", "includeRanges"));
    EXPECT_THAT(wrong("excludeRanges", 7), isError("internalServerError", "excludeRanges"));
    EXPECT_THAT(wrong("snmpProfile", "public"), isError("internalServerError", "snmpProfile"));
}

TEST_F(Operations, AnSnmpVersionOtherThan1To3IsNamed)
{
    for (const json& version : {json(4), json(0), json(-1), json(nullptr)})
        EXPECT_THAT(startChanged([&](json& params) { params["config"]["snmpProfile"]["snmpVersion"] = version; }),
                    isError("internalServerError", "snmpVersion"));
}

TEST_F(Operations, AStartThatFailsLeavesNoRunBehind)
{
    // A cookie from before a restart names the run with the id 1 of the new count: the next one, if none is there.
    start("old", "127.20.0.0", "127.20.0.0", port);
    call("stopService");
    call("startService");
    startChanged([](json& params) { params.erase("cookie"); });
    startChanged([](json& params) { params["config"]["snmpProfile"]["snmpVersion"] = 4; });
    startChanged([](json& params) { params["config"].erase("snmpProfile"); }, "startDiscoveryBlocking");
    call("startDiscovery", "{");
    EXPECT_EQ(status("c"), unknownStatus("c"));

    call("startDiscoveryBlocking", validStart("new").dump());
    EXPECT_EQ(status("old"), R"({"step":2,"total":2,"state":1,"cookie":"old","printers":[]})");
}

TEST_F(Operations, AStoppedServiceRefusesAndStartsAgain)
{
    start("c", "127.20.0.1", "127.20.0.9", port);
    EXPECT_EQ(call("stopService"), success);
    EXPECT_EQ(call("startDiscovery", validStart().dump()), refusal("createPdExecutor"));
    EXPECT_EQ(call("startDiscoveryBlocking", validStart().dump()), refusal("checkTimeouts"));
    EXPECT_EQ(stop("nobody"), refusal("checkTimeouts"));
    EXPECT_EQ(status("c"), refusal("getPdExecutor"));
    EXPECT_EQ(status("nobody"), refusal("getPdExecutor"));
    EXPECT_THAT(call("getStatus", "{}"), isError("internalServerError", naming("firstIdx")));
    EXPECT_EQ(call("stopService"), success);

    EXPECT_EQ(call("startService"), success);
    EXPECT_EQ(call("startService"), success);
    EXPECT_EQ(status("c"), unknownStatus("c")) << "its run went with the registry";
    EXPECT_EQ(call("startDiscovery", validStart().dump()), success);
    EXPECT_EQ(finish("c").at("total"), 2);
}

TEST_F(Operations, CookiesOutliveARestartAndMayNameANewRun)
{
    start("old", "127.20.0.1", "127.20.0.3", port);
    call("stopService");
    call("startService");
    call("startDiscoveryBlocking", validStart("new").dump());
    EXPECT_EQ(status("old"), R"({"step":2,"total":2,"state":1,"cookie":"old","printers":[]})");
}

TEST_F(Operations, TheServiceTellsItsConfiguration)
{
    EXPECT_EQ(call("getServiceConfig"),
              R"({"reference":"PrinterDiscovery","state":"started","dependencies":["PrintService"],)"
              R"("operations":["startDiscovery","startDiscoveryBlocking","stopDiscovery","getStatus"]})");
    call("stopService");
    EXPECT_THAT(call("getServiceConfig"), HasSubstr(R"("state":"stopped")"));
}

TEST_F(Operations, AStartOfTheServiceReadsTheSettingsFromTheDataStore)
{
    const std::string defaultColumn = "\x2b\x06\x01\x02\x01\x19\x03\x02\x01\x02";
    const std::string ownColumn("\x2b\x06\x01\x04\x01\x07\x09", 7);
    {
        const System::SilentHosts host(1);
        start("c", "127.20.0.1", "127.20.0.1", host.port());
        EXPECT_THAT(host.receive(), HasSubstr(defaultColumn));
    }
    set("services.PrinterDiscovery.oidDeviceType", ".1.3.6.1.4.1.7.9");
    {
        const System::SilentHosts host(1);
        start("c", "127.20.0.1", "127.20.0.1", host.port());
        EXPECT_THAT(host.receive(), HasSubstr(defaultColumn)) << "before a restart nothing changes";
    }
    call("stopService");
    call("startService");
    const System::SilentHosts host(1);
    start("c", "127.20.0.1", "127.20.0.1", host.port());
    EXPECT_THAT(host.receive(), HasSubstr(ownColumn));
}

TEST_F(Operations, AfterDeinitThePluginCanBeInitialisedAgain)
{
    start("c", "127.20.0.1", "127.20.0.9", port);
    driver.deinit();
    EXPECT_EQ(status("c"), refusal("getPdExecutor"));
    EXPECT_EQ(json::parse(init()).at("services").at(0).at("state"), "started");
    EXPECT_EQ(call("startDiscoveryBlocking", validStart().dump()), success);
}

TEST_F(Operations, DeinitMayBeCalledTwice)
{
    driver.deinit();
    driver.deinit();
    EXPECT_EQ(status("c"), refusal("getPdExecutor"));
}

} // namespace

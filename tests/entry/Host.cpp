#include "entry/Host.h"

#include <chrono>
#include <thread>

using nlohmann::json;

std::string configurationOf(const std::string& dataStore, const std::string& timeout)
{
    return json{{"dataStore", dataStore},
                {"settings", {{"host.snmp.timeout", timeout}, {"host.snmp.retries", 0}, {"host.names.netbios", false}}}}
        .dump();
}

json startParameters(const std::string& cookie, const std::string& from, const std::string& to, std::uint16_t port)
{
    return {{"cookie", cookie},
            {"config",
             {{"pingTimeout", 500},
              {"snmpTimeout", 500},
              {"usePing", false},
              {"includeRanges", {{{"from", from}, {"to", to}}}},
              {"snmpProfile",
               {{"snmpVersion", 2}, {"snmpPort", port}, {"communityRead", "public"}, {"communityWrite", ""}}}}}};
}

std::string errorDocument(const std::string& code, const std::string& message)
{
    return R"({"code":)" + json(code).dump() + R"(,"message":)" + json(message).dump() +
           R"(,"data":null,"operation":{"service":"","operation":"","params":null}})";
}

std::string refusal(const std::string& operation)
{
    return errorDocument("internalServerError", "Invalid operation occurred in the function: " + operation);
}

std::string unknownStatus(const std::string& cookie)
{
    return R"({"step":0,"total":0,"state":1,"cookie":)" + json(cookie).dump() + R"(,"printers":[]})";
}

WithHost::WithHost()
{
    load();
}

WithHost::~WithHost()
{
    if (driver.handle != nullptr) {
        driver.deinit();
        unload();
    }
}

void WithHost::load()
{
    if (driverLoad(&driver, PD_LIBRARY) != 0)
        throw std::runtime_error("the library cannot be loaded");
}

void WithHost::unload()
{
    EXPECT_EQ(driverUnload(&driver), 0);
}

std::string WithHost::init(const std::string& configuration)
{
    char* reply = driver.init(configuration.c_str());
    const std::string text = reply;
    driver.release(reply);
    return text;
}

std::string WithHost::callService(const std::string& service, const std::string& operation,
                                  const std::string& params) const
{
    char* result = nullptr;
    std::size_t size = 0;
    driver.call(service.data(), service.size(), operation.data(), operation.size(), params.data(), params.size(),
                &result, &size);
    EXPECT_GE(size, 1U);
    EXPECT_EQ(result[size - 1], '\0');
    const std::string text(result, size - 1);
    driver.release(result);
    return text;
}

std::string WithHost::status(const std::string& cookie, int firstIdx) const
{
    return call("getStatus", json{{"cookie", cookie}, {"firstIdx", firstIdx}}.dump());
}

std::string WithHost::stop(const std::string& cookie) const
{
    return call("stopDiscovery", json{{"cookie", cookie}}.dump());
}

json WithHost::finish(const std::string& cookie) const
{
    while (true) {
        const json document = json::parse(status(cookie));
        if (document.at("state") == 1)
            return document;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void WithHost::set(const std::string& key, const std::string& value) const
{
    ASSERT_EQ(System::run({PD_SET_SETTING, dataStore(), key, value}, 60), 0);
}

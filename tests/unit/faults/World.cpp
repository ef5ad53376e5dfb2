#include "World.h"

#include "Allocations.h"
#include "HostFakes.h"
#include "Kep/CoTaskMem.h"
#include "Kep/Net.h"
#include "plugin/Attach.h"
#include "plugin/include/PrinterDiscovery.h"
#include "tasks/TaskQueue.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>

using nlohmann::json;

namespace PrinterDiscoveryPlugin {

std::shared_ptr<Kep::Platform::Plugin> g_plugin;

} // namespace PrinterDiscoveryPlugin

namespace Faults {
namespace {

constexpr auto patience = std::chrono::seconds(60);

std::string taken(char* text, std::size_t size)
{
    const std::unique_ptr<char, decltype(&CoTaskMemFree)> block(text, [](void* memory) { CoTaskMemFree(memory); });
    const Spared spared; // the host's own
    return {text, size};
}

std::vector<json> sortedByAddress(const json& printers)
{
    std::vector<json> sorted(printers.begin(), printers.end());
    const auto number = [](const json& printer) {
        unsigned long address = 0;
        Kep::Net::parseIpAddress(printer.at("ip").get<std::string>(), address);
        return address;
    };
    std::sort(sorted.begin(), sorted.end(), [&](const json& a, const json& b) { return number(a) < number(b); });
    return sorted;
}

std::string configurationOf(const std::string& dataStore)
{
    const Spared spared; // the host's own
    const json settings = {{"host.names.dns", false}, {"host.snmp.rate", 0}, {"host.tasks.limit", 8}};
    return json{{"dataStore", dataStore}, {"settings", settings}}.dump();
}

json credentials(int version)
{
    if (version == 3)
        return {{"snmpVersion", 3}, {"usm", "user"},         {"authProtocol", ""}, {"authPwd", ""},
                {"context", ""},    {"privacyProtocol", ""}, {"privacyPwd", ""}};
    return {{"snmpVersion", version}, {"communityRead", "public"}, {"communityWrite", ""}};
}

} // namespace

bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

WithWorld::WithWorld()
{
    PrinterDiscoveryPlugin::attach();
    EXPECT_THAT(init(), testing::HasSubstr(R"("state":"started")"));
}

WithWorld::~WithWorld()
{
    refuseThreads(false);
    failSubmission(0);
    dakPluginDeinit();
    PrinterDiscoveryPlugin::detach();
    EXPECT_TRUE(drains());
    EXPECT_EQ(openSockets(), 0U);
}

std::string WithWorld::init(const std::string& dataStore)
{
    const std::string configuration = configurationOf(dataStore);
    char* const reply = dakPluginInit(configuration.c_str());
    return taken(reply, std::char_traits<char>::length(reply));
}

std::string WithWorld::call(const std::string& operation, const std::string& params)
{
    constexpr std::string_view service = "PrinterDiscovery";
    char* result = nullptr;
    std::size_t size = 0;
    dakPluginCall(service.data(), service.size(), operation.data(), operation.size(), params.data(), params.size(),
                  &result, &size);
    return taken(result, size - 1);
}

std::string WithWorld::runOf(const std::string& cookie, int addresses, int version)
{
    const auto last = firstAddress + static_cast<std::uint32_t>(addresses) - 1;
    const json range = {{"from", Kep::Net::formatIpAddress(firstAddress)}, {"to", Kep::Net::formatIpAddress(last)}};
    return json{{"cookie", cookie},
                {"config",
                 {{"pingTimeout", 1},
                  {"snmpTimeout", 1},
                  {"usePing", false},
                  {"includeRanges", {range}},
                  {"snmpProfile", credentials(version)}}}}
        .dump();
}

std::string WithWorld::ask(const std::string& cookie, int firstIdx)
{
    return json{{"cookie", cookie}, {"firstIdx", firstIdx}}.dump();
}

json WithWorld::status(const std::string& cookie)
{
    return json::parse(call("getStatus", ask(cookie)));
}

json WithWorld::finish(const std::string& cookie)
{
    std::string reply;
    EXPECT_TRUE(eventually([&] {
        reply = call("getStatus", ask(cookie));
        return reply.find(R"("state":1)") != std::string::npos;
    }));
    json last = json::parse(reply);
    last["printers"] = sortedByAddress(last.at("printers"));
    return last;
}

json WithWorld::complete(const std::string& cookie, int addresses)
{
    int probed = 0;
    json printers = json::array();
    for (std::uint32_t address = firstAddress; address < firstAddress + static_cast<std::uint32_t>(addresses);
         ++address) {
        const std::uint32_t last = address & 0xFF;
        if (last == 0 || last == 0xFF)
            continue;
        ++probed;
        if (isPrinter(address))
            printers.push_back(json::parse(printerDocument(address)));
    }
    return {{"cookie", cookie}, {"state", 1}, {"step", probed}, {"total", probed}, {"printers", printers}};
}

json WithWorld::unknown(const std::string& cookie)
{
    return {{"cookie", cookie}, {"state", 1}, {"step", 0}, {"total", 0}, {"printers", json::array()}};
}

bool WithWorld::drains()
{
    return eventually([] { return Kep::TaskQueue::process().figures().pending == 0; });
}

void WithWorld::expectSound()
{
    auto elsewhere = std::async(std::launch::async, [] { return status("nobody's"); });
    ASSERT_EQ(elsewhere.wait_for(patience), std::future_status::ready) << "a lock is held";
    EXPECT_TRUE(drains());
    EXPECT_EQ(call("stopService"), success);
    EXPECT_EQ(call("startService"), success);
    EXPECT_EQ(start("sound", 4), success);
    EXPECT_EQ(finish("sound"), complete("sound", 4));
    EXPECT_EQ(stop("sound"), success);
}

} // namespace Faults

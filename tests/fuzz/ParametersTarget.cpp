// The parameter document of an operation, through `dakPluginCall`: the reply is one of the documents that there are,
// quotes no secret, and leaves a plug-in that answers the next call.
#include "fuzz/Target.h"

#include "Kep/CoTaskMem.h"
#include "engine/IdentificationSettings.h"
#include "fakes/FakeNames.h"
#include "fakes/FakeSnmp.h"
#include "fakes/FakeTaskQueue.h"
#include "fakes/FakeTime.h"
#include "fakes/Journal.h"
#include "plugin/Attach.h"
#include "plugin/include/PrinterDiscovery.h"
#include "registry/CookieTable.h"
#include "unit/plugin/FakePlugin.h"
#include "unit/plugin/FakeProxies.h"

#include <nlohmann/json.hpp>

#include <array>

namespace PrinterDiscoveryPlugin {

std::shared_ptr<Kep::Platform::Plugin> g_plugin;

} // namespace PrinterDiscoveryPlugin

namespace {

using nlohmann::json;

// Never part of an error, whatever the document is.
constexpr std::string_view secret = "s3cr3t-pw";

constexpr std::array<const char*, 8> operations = {"startDiscovery",   "startDiscoveryBlocking", "stopDiscovery",
                                                   "getStatus",        "startService",           "stopService",
                                                   "getServiceConfig", "noSuchOperation"};

constexpr int probesRun = 4;
constexpr int slicesSwept = 2;

// The plug-in as it is after its start, with fakes of the host around it.
class World {
public:
    World()
    {
        PrinterDiscoveryPlugin::identificationSettings() = {};
        fakePlugin() = {};
        fakeTaskProxies() = {queue_, {}, 0};
        PrinterDiscoveryPlugin::attach();
        fakePlugin().call = [](const std::string&, const std::string& operation, const std::string& params) {
            return fakePlugin().services.at(0)->call(operation, params);
        };
        FakeDataStore::offer(PrinterDiscoveryPlugin::g_plugin->serviceLocator(), store_);
        snmp_.agent("10.0.0.1").isPrinter();
        // Whoever waits for a run is the only thread there is, so the run's work ends while it sleeps.
        journal_.during("sleep 2 s", [this] { queue_->withdrawAll(); });
        journal_.during("sleep 200 ms", [this] { queue_->withdrawAll(); });
        Fuzz::require(call("startService", "{}") == success, "the service starts");
    }

    ~World()
    {
        call("stopService", "{}");
        fakePlugin() = {};
        PrinterDiscoveryPlugin::detach();
        const Kep::MutexLock lock(PrinterDiscoveryPlugin::cookieTable().mutex);
        PrinterDiscoveryPlugin::cookieTable().runs.clear();
    }

    World(const World&) = delete;
    World& operator=(const World&) = delete;

    static constexpr auto success = R"({"success":true})";

    static std::string call(const std::string& operation, const std::string& params)
    {
        constexpr std::string_view service = "PrinterDiscovery";
        char* result = nullptr;
        std::size_t size = 0;
        dakPluginCall(service.data(), service.size(), operation.data(), operation.size(), params.data(), params.size(),
                      &result, &size);
        Fuzz::require(size > 0 && result[size - 1] == '\0', "a reply ends with a NUL that counts");
        std::string reply(result, size - 1);
        CoTaskMemFree(result);
        return reply;
    }

    // Some of the work that there is, of each kind.
    void work()
    {
        for (int probe = 0; probe < probesRun && !queue_->waiting().empty(); ++probe)
            queue_->complete(queue_->waiting().front());
        for (int slice = 0; slice < slicesSwept && !queue_->waiting().empty(); ++slice)
            queue_->complete(queue_->waiting().back());
    }

private:
    Fakes::Journal journal_;
    Fakes::FakeTime time_;
    Fakes::FakeSnmp snmp_;
    Fakes::FakeNames names_;
    std::shared_ptr<Fakes::FakeTaskQueue> queue_ = std::make_shared<Fakes::FakeTaskQueue>();
    std::shared_ptr<FakeDataStore> store_ = std::make_shared<FakeDataStore>();
};

bool isStatus(const json& reply)
{
    return reply.size() == 5 && reply.at("step").is_number_integer() && reply.at("total").is_number_integer() &&
           (reply.at("state") == 1 || reply.at("state") == 2) && reply.at("cookie").is_string() &&
           reply.at("printers").is_array();
}

void requireReply(const std::string& operation, const std::string& text)
{
    const json reply = json::parse(text, nullptr, false);
    Fuzz::require(reply.is_object(), "a reply is a JSON object");
    if (reply.contains("code")) {
        const auto expected = operation == "noSuchOperation" ? "notFound" : "internalServerError";
        Fuzz::require(reply.at("code") == expected, "an error has the code of its kind");
        Fuzz::require(!reply.at("message").get<std::string>().empty(), "an error has words");
        Fuzz::require(text.find(secret) == std::string::npos, "an error does not quote the document");
    } else if (operation == "getStatus") {
        Fuzz::require(isStatus(reply), "a status is complete");
    } else if (operation != "getServiceConfig") {
        Fuzz::require(text == World::success, "any other operation says that it succeeded");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view params = Fuzz::textOf(data, size);
    const std::string operation = operations.at(Fuzz::takeChoice(params) % operations.size());
    World world;
    requireReply(operation, World::call(operation, std::string(params)));
    world.work();
    World::call("startService", "{}");
    requireReply("getStatus", World::call("getStatus", R"({"cookie":"c","firstIdx":0})"));
    requireReply("stopDiscovery", World::call("stopDiscovery", R"({"cookie":"c"})"));
    return 0;
}

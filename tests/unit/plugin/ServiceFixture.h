/// The plug-in as `createPlugin` builds it, with fakes of the host around it.
#pragma once

#include "FakePlugin.h"
#include "FakeProxies.h"
#include "engine/IdentificationSettings.h"
#include "fakes/FakeNames.h"
#include "fakes/FakeSnmp.h"
#include "fakes/FakeTaskQueue.h"
#include "fakes/FakeTime.h"
#include "fakes/Journal.h"
#include "plugin/CreatePlugin.h"
#include "plugin/PrinterDiscoveryService.h"
#include "registry/CookieTable.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

class WithPlugin : public testing::Test {
protected:
    static constexpr std::int64_t second = 10'000'000;

    WithPlugin()
    {
        fakePlugin() = {};
        fakeTaskProxies() = {queue, {}, 0};
        identificationSettings() = {};
        forgetCookies();
        plugin = createPlugin();
        service = std::static_pointer_cast<PrinterDiscoveryService>(fakePlugin().services.at(0));
        FakeDataStore::offer(plugin->serviceLocator(), store);
    }

    ~WithPlugin() override
    {
        queue->withdrawAll();
        service->stopService();
        service.reset();
        plugin.reset();
        fakePlugin() = {};
        fakeTaskProxies() = {};
    }

    static void forgetCookies()
    {
        CookieTable& table = cookieTable();
        const Kep::MutexLock lock(table.mutex);
        table.runs.clear();
    }

    static std::optional<std::int32_t> named(const std::string& cookie)
    {
        CookieTable& table = cookieTable();
        const Kep::MutexLock lock(table.mutex);
        const auto entry = table.runs.find(cookie);
        return entry == table.runs.end() ? std::nullopt : std::optional(entry->second);
    }

    void start() { service->startService(); }
    void stop() { service->stopService(); }

    Kep::Variant call(const std::string& operation, const std::string& params)
    {
        return service->call(operation, params);
    }

    // The text of a successful answer.
    std::string answer(const std::string& operation, const std::string& params)
    {
        return call(operation, params).toJson();
    }

    // The message of what a call throws.
    template <class Error> std::string failure(const std::string& operation, const std::string& params)
    {
        try {
            call(operation, params);
        } catch (const Error& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    std::string status(const std::string& cookie, int firstIdx = 0)
    {
        const Kep::Variant reply =
            call("getStatus", R"({"cookie":")" + cookie + R"(","firstIdx":)" + std::to_string(firstIdx) + "}");
        EXPECT_EQ(reply.type(), 10);
        return static_cast<std::string>(reply);
    }

    static std::string startOf(const std::string& cookie, const std::string& from, const std::string& to)
    {
        return R"({"cookie":")" + cookie + R"(","config":{"pingTimeout":1,"snmpTimeout":2,"usePing":false,)" +
               R"("includeRanges":[{"from":")" + from + R"(","to":")" + to + R"("}],)" +
               R"("snmpProfile":{"snmpVersion":2,"communityRead":"public","communityWrite":"private"}}})";
    }

    std::size_t entered(const std::string& text) const
    {
        const std::vector<std::string> texts = journal.texts();
        return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
    }

    // Whether work begun on another thread waits for something.
    template <class Result> static bool isHeldUp(const std::future<Result>& work)
    {
        return work.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout;
    }

    Fakes::Journal journal;
    Fakes::FakeTime time;
    Fakes::FakeSnmp snmp;
    Fakes::FakeNames names;
    std::shared_ptr<Fakes::FakeTaskQueue> queue = std::make_shared<Fakes::FakeTaskQueue>();
    std::shared_ptr<FakeDataStore> store = std::make_shared<FakeDataStore>();
    std::shared_ptr<Kep::Platform::Plugin> plugin;
    std::shared_ptr<PrinterDiscoveryService> service;
};

} // namespace PrinterDiscoveryPlugin

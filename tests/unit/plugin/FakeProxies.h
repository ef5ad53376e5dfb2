/// Stand-ins for the plug-in's clients of the host, linked in place of the framework's.
#pragma once

#include "Kep/Platform/Proxy/DataStore.h"
#include "Kep/Platform/Proxy/Tasks.h"
#include "Kep/ServiceLocator.h"
#include "Kep/Tasks/IManager.h"

#include <memory>
#include <string>
#include <vector>

/// How one proxy of the task queue was made.
struct TaskProxyArguments {
    const Kep::Platform::IServiceCaller* caller = nullptr;
    const Kep::Platform::CallbacksService* callbacks = nullptr;
    std::string service;
};

/// The task queue behind all proxies, and the proxies there were and are. Reset it at the start of a test.
struct FakeTaskProxies {
    std::shared_ptr<Kep::Tasks::IManager> queue;
    std::vector<TaskProxyArguments> made;
    int alive = 0;
};

FakeTaskProxies& fakeTaskProxies();

/// A data store that holds one subtree, and records what is asked of it.
class FakeDataStore final : public Kep::Platform::Proxy::DataStore::Proxy {
public:
    std::unique_ptr<Kep::Platform::Proxy::DataStore::Transaction> begin() override;

    /// Has `locator` make proxies that are `store`.
    static void offer(Kep::ServiceLocator& locator, const std::shared_ptr<FakeDataStore>& store);

    Kep::Variant::Object subtree;    ///< what is under every prefix
    std::string failing;             ///< the event to throw at, if any
    std::vector<std::string> events; ///< begin, getKeySubtree PREFIX, commit, destroyed
    void record(const std::string& event);
};

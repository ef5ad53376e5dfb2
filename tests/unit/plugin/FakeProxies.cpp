#include "FakeProxies.h"

#include "Kep/Exception.h"

#include <utility>

FakeTaskProxies& fakeTaskProxies()
{
    static FakeTaskProxies proxies;
    return proxies;
}

namespace Kep::Platform::Proxy {
namespace Tasks {

struct Proxy::Impl {
    std::shared_ptr<CallbacksService> callbacks;
};

Proxy::Proxy(IServiceCaller& caller, std::shared_ptr<CallbacksService> callbacks, const std::string& service)
{
    fakeTaskProxies().made.push_back({&caller, callbacks.get(), service});
    ++fakeTaskProxies().alive;
    impl_ = std::make_unique<Impl>(Impl{std::move(callbacks)});
}

Proxy::~Proxy()
{
    --fakeTaskProxies().alive;
}

std::uint32_t Proxy::submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string& group, int priority)
{
    return fakeTaskProxies().queue->submit(task, group, priority);
}

} // namespace Tasks

namespace DataStore {

Transaction::~Transaction() = default;
Proxy::~Proxy() = default;

} // namespace DataStore
} // namespace Kep::Platform::Proxy

namespace {

class FakeTransaction final : public Kep::Platform::Proxy::DataStore::Transaction {
public:
    explicit FakeTransaction(FakeDataStore& store) : store_(store) {}
    ~FakeTransaction() override { store_.events.emplace_back("destroyed"); }

    Kep::Variant getKeySubtree(std::string_view prefix) override
    {
        store_.record("getKeySubtree " + std::string(prefix));
        return Kep::Variant(store_.subtree);
    }

    void commit() override { store_.record("commit"); }

private:
    FakeDataStore& store_;
};

} // namespace

std::unique_ptr<Kep::Platform::Proxy::DataStore::Transaction> FakeDataStore::begin()
{
    record("begin");
    return std::make_unique<FakeTransaction>(*this);
}

void FakeDataStore::offer(Kep::ServiceLocator& locator, const std::shared_ptr<FakeDataStore>& store)
{
    locator.registerFactory<Kep::Platform::Proxy::DataStore::Proxy>([store] { return store; });
}

void FakeDataStore::record(const std::string& event)
{
    if (!failing.empty() && event.starts_with(failing))
        throw Kep::GenericException("the data store cannot " + failing);
    events.push_back(event);
}

#include "datastore/DataStoreProxy.h"

#include "datastore/StoreTransaction.h"

#include <utility>

namespace Kep {
namespace Platform::Proxy::DataStore {

Transaction::~Transaction() = default;
Proxy::~Proxy() = default;

} // namespace Platform::Proxy::DataStore

namespace {

class ReadingTransaction final : public Platform::Proxy::DataStore::Transaction {
public:
    explicit ReadingTransaction(const std::string& path) : store_(path, StoreTransaction::Access::read) {}

    Variant getKeySubtree(std::string_view prefix) override
    {
        Variant::Object members;
        for (auto& [key, value] : store_.list(std::string(prefix) + ".")) {
            members.emplace_back(key.substr(prefix.size()), Variant(std::move(value)));
        }
        return Variant(std::move(members));
    }

    void commit() override { store_.commit(); }

private:
    StoreTransaction store_;
};

class FileProxy final : public Platform::Proxy::DataStore::Proxy {
public:
    explicit FileProxy(std::string path) : path_(std::move(path)) {}

    std::unique_ptr<Platform::Proxy::DataStore::Transaction> begin() override
    {
        return std::make_unique<ReadingTransaction>(path_);
    }

private:
    const std::string path_;
};

} // namespace

std::shared_ptr<Platform::Proxy::DataStore::Proxy> makeDataStoreProxy(std::string path)
{
    return std::make_shared<FileProxy>(std::move(path));
}

} // namespace Kep

#include "datastore/StoreTransaction.h"

#include "Kep/Exception.h"
#include "datastore/Schema.h"
#include "datastore/StoreFile.h"

namespace Kep {
namespace {

bool canBeOpened(const std::string& path, StoreTransaction::Access access)
{
    if (path.find('\0') != std::string::npos) {
        throw GenericException("the path of the data store holds a NUL byte");
    }
    if (access == StoreTransaction::Access::read) {
        return !path.empty() && storeFileExists(path);
    }
    if (path.empty()) {
        throw GenericException("there is no data store to write to");
    }
    makeStoreFile(path);
    return storeFileExists(path);
}

} // namespace

StoreTransaction::StoreTransaction(const std::string& path, Access access)
{
    if (!canBeOpened(path, access)) {
        return;
    }
    connection_.emplace(path);
    connection_->execute(access == Access::write ? "BEGIN IMMEDIATE" : "BEGIN");
    hasStore_ = hasStore(*connection_);
    if (!hasStore_ && access == Access::write) {
        createStore(*connection_);
        hasStore_ = true;
    }
}

std::map<std::string, std::string> StoreTransaction::list(std::string_view prefix)
{
    std::map<std::string, std::string> found;
    if (!hasStore_) {
        return found;
    }
    Statement rows(*connection_, "SELECT key, value FROM setting WHERE key >= ?1 ORDER BY key", {prefix});
    while (rows.next()) {
        std::string key = rows.text(0);
        if (!key.starts_with(prefix)) {
            break;
        }
        found.emplace_hint(found.end(), std::move(key), rows.text(1));
    }
    return found;
}

std::optional<std::string> StoreTransaction::get(std::string_view key)
{
    if (!hasStore_) {
        return std::nullopt;
    }
    Statement rows(*connection_, "SELECT value FROM setting WHERE key = ?1", {key});
    return rows.next() ? std::optional(rows.text(0)) : std::nullopt;
}

void StoreTransaction::set(std::string_view key, std::string_view value)
{
    Statement(*connection_, "INSERT OR REPLACE INTO setting (key, value) VALUES (?1, ?2)", {key, value}).next();
}

void StoreTransaction::unset(std::string_view key)
{
    Statement(*connection_, "DELETE FROM setting WHERE key = ?1", {key}).next();
}

void StoreTransaction::commit()
{
    if (connection_) {
        connection_->execute("COMMIT");
    }
}

} // namespace Kep

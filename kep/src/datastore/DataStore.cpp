#include "Kep/Host/DataStore.h"

#include "Kep/Exception.h"
#include "datastore/StoreTransaction.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Kep::Host {
namespace {

using Access = StoreTransaction::Access;

bool isWordCharacter(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '_' || character == '-';
}

// One or more words, joined by single dots.
bool isKey(std::string_view text)
{
    const bool dotsInside = !text.empty() && text.front() != '.' && text.back() != '.';
    return dotsInside && text.find("..") == std::string_view::npos &&
           std::all_of(text.begin(), text.end(), [](char each) { return each == '.' || isWordCharacter(each); });
}

void requireKey(const std::string& key)
{
    if (!isKey(key)) {
        throw GenericException("data store key \"" + key +
                               "\": expected words of letters, digits, \"-\" and \"_\", joined by dots");
    }
}

} // namespace

DataStore::DataStore(std::string path) : path_(std::move(path)) {}
DataStore::~DataStore() = default;
DataStore::DataStore(DataStore&&) noexcept = default;
DataStore& DataStore::operator=(DataStore&&) noexcept = default;

std::map<std::string, std::string> DataStore::list(const std::string& prefix) const
{
    return StoreTransaction(path_, Access::read).list(prefix);
}

std::optional<std::string> DataStore::get(const std::string& key) const
{
    return StoreTransaction(path_, Access::read).get(key);
}

void DataStore::set(const std::string& key, const std::string& value)
{
    change({{key, value}});
}

void DataStore::change(const Changes& changes)
{
    for (const auto& [key, value] : changes) {
        requireKey(key);
    }
    StoreTransaction transaction(path_, Access::write);
    for (const auto& [key, value] : changes) {
        value ? transaction.set(key, *value) : transaction.unset(key);
    }
    transaction.commit();
}

bool DataStore::unset(const std::string& key)
{
    if (!get(key)) {
        return false; // and no file is made
    }
    StoreTransaction transaction(path_, Access::write);
    const bool known = transaction.get(key).has_value();
    transaction.unset(key);
    transaction.commit();
    return known;
}

} // namespace Kep::Host

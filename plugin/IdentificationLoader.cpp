#include "plugin/IdentificationLoader.h"

#include "Kep/Platform/Proxy/DataStore.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <utility>
#include <vector>

namespace PrinterDiscoveryPlugin {
namespace {

namespace DataStore = Kep::Platform::Proxy::DataStore;

Kep::Variant readSubtree(const std::string& prefix, const Kep::ServiceLocator& locator)
{
    const std::shared_ptr<DataStore::Proxy> store = locator.get<DataStore::Proxy>();
    const std::unique_ptr<DataStore::Transaction> transaction = store->begin();
    Kep::Variant subtree = transaction->getKeySubtree(prefix);
    transaction->commit();
    return subtree;
}

// Separators side by side, or at an end, stand around an empty item.
std::vector<std::string> splitList(const std::string& text)
{
    std::vector<std::string> items;
    if (!text.empty())
        boost::algorithm::split(items, text, boost::algorithm::is_any_of(",;- "), boost::algorithm::token_compress_off);
    return items;
}

void applyList(const Kep::Variant& subtree, const char* key, std::vector<std::string>& setting)
{
    Kep::Variant value;
    if (!subtree.contains(key, value))
        return;
    std::vector<std::string> items = splitList(static_cast<std::string>(value));
    if (!items.empty())
        setting = std::move(items);
}

void applyText(const Kep::Variant& subtree, const char* key, std::string& setting)
{
    Kep::Variant value;
    if (subtree.contains(key, value))
        setting = static_cast<std::string>(value);
}

} // namespace

void loadIdentificationSettings(const std::string& reference, const Kep::ServiceLocator& locator,
                                IdentificationSettings& settings)
{
    const Kep::Variant subtree = readSubtree("services." + reference, locator);
    applyList(subtree, ".macAddressOids", settings.macAddressOids);
    applyText(subtree, ".oidDeviceType", settings.oidDeviceType);
    applyList(subtree, ".oidDeviceTypePrinter", settings.oidDeviceTypePrinter);
}

} // namespace PrinterDiscoveryPlugin

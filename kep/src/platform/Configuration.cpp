#include "platform/Configuration.h"

#include "Kep/Exception.h"
#include "Kep/Host/DataStore.h"
#include "Kep/Host/Settings.h"
#include "Kep/Json.h"
#include "base/VariantMembers.h"

#include <string_view>

namespace Kep {
namespace {

constexpr std::string_view hostPrefix = "host.";

void refuseUnknownMembers(const Variant& document)
{
    for (const std::string& key : VariantMembers::keysOf(document)) {
        if (key != "dataStore" && key != "settings") {
            throw GenericException("unknown member \"" + key + "\"; known are \"dataStore\" and \"settings\"");
        }
    }
}

std::string settingText(const Variant& value)
{
    switch (static_cast<VariantType>(value.type())) {
    case VariantType::boolean:
        return static_cast<bool>(value) ? "on" : "off";
    case VariantType::integer:
    case VariantType::real:
        return value.toJson();
    default:
        return static_cast<std::string>(value);
    }
}

std::map<std::string, std::string> readSettings(const Variant& members)
{
    std::map<std::string, std::string> settings;
    for (const std::string& key : VariantMembers::keysOf(members)) {
        if (!key.starts_with(hostPrefix)) {
            throw GenericException("setting \"" + key +
                                   "\": only settings of the host, which begin with \"host.\", are accepted here");
        }
        Variant value;
        members.contains(key, value);
        const std::string text = settingText(value);
        Host::checkSetting(key, text);
        settings.emplace(key, text);
    }
    return settings;
}

} // namespace

Configuration readConfiguration(const std::string& document)
{
    Configuration configuration;
    if (document.empty()) {
        return configuration;
    }
    const Variant root = Json::parse(document);
    refuseUnknownMembers(root);
    Variant member;
    if (root.contains("dataStore", member)) {
        configuration.dataStorePath = static_cast<std::string>(member);
    }
    if (root.contains("settings", member)) {
        configuration.settings = readSettings(member);
    }
    return configuration;
}

std::map<std::string, std::string> effectiveHostSettings(const Configuration& configuration)
{
    auto settings = configuration.settings;
    settings.merge(Host::DataStore(configuration.dataStorePath).list(std::string(hostPrefix)));
    return settings;
}

} // namespace Kep

#include "documents/DiscoveryConfig.h"

#include "documents/SnmpProfile.h"

namespace PrinterDiscoveryPlugin {
namespace {

std::vector<IpRangeText> parseRangeList(const Kep::Variant& list)
{
    std::vector<IpRangeText> ranges;
    if (list.isNull())
        return ranges;
    const Kep::VariantIterator end = list.end();
    for (Kep::VariantIterator element = list.begin(); element != end; ++element)
        ranges.push_back(parseIpRangeText(element.value()));
    return ranges;
}

} // namespace

DiscoveryConfig parseDiscoveryConfig(const Kep::Variant& config)
{
    DiscoveryConfig result;
    result.pingTimeout = static_cast<int>(config["pingTimeout"]);
    result.snmpTimeout = static_cast<int>(config["snmpTimeout"]);
    result.usePing = static_cast<bool>(config["usePing"]);
    result.includeRanges = parseRangeList(config["includeRanges"]);
    result.excludeRanges = parseRangeList(config["excludeRanges"]);
    result.snmpProfile = parseSnmpProfile(config["snmpProfile"]);
    return result;
}

IpRangeText parseIpRangeText(const Kep::Variant& range)
{
    return {static_cast<std::string>(range["from"]), static_cast<std::string>(range["to"])};
}

} // namespace PrinterDiscoveryPlugin

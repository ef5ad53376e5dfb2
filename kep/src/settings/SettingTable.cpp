#include "settings/SettingTable.h"

#include "Kep/Exception.h"
#include "settings/SettingValues.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Kep {
namespace {

constexpr std::string_view atInit = "at the next start of the program";
constexpr std::string_view atServiceStart = "at the next start of the service PrinterDiscovery";
constexpr std::string_view automatic = "auto";
constexpr std::string_view onOrOff = "on or off";
constexpr std::string_view oid = "an object identifier, dotted, with a leading dot";
constexpr std::string_view oidList =
    "object identifiers, dotted, with a leading dot, joined by one comma, semicolon or blank";

// Stores what was read, if anything was.
template <class Target, class Read> bool put(Target& target, const Read& read)
{
    if (read) {
        target = static_cast<Target>(*read);
    }
    return read.has_value();
}

bool takeTimeout(HostSettings& settings, std::string_view value)
{
    const auto seconds = readDecimal(value, 0.05, 60);
    if (seconds) {
        settings.snmpTimeout = std::chrono::milliseconds(std::llround(*seconds * 1000));
    }
    return seconds.has_value();
}

bool takeRetries(HostSettings& settings, std::string_view value)
{
    return put(settings.snmpRetries, readInteger(value, 0, 10));
}

bool takeRate(HostSettings& settings, std::string_view value)
{
    return put(settings.snmpRate, readInteger(value, 0, 1'000'000));
}

bool takeTaskLimit(HostSettings& settings, std::string_view value)
{
    const auto limit = readInteger(value, 1, 65536);
    if (!limit && value != automatic) {
        return false;
    }
    settings.taskLimit = limit;
    return true;
}

bool takeNetbios(HostSettings& settings, std::string_view value)
{
    return put(settings.netbiosNames, readSwitch(value));
}

bool takeDns(HostSettings& settings, std::string_view value)
{
    return put(settings.dnsNames, readSwitch(value));
}

// Of no concern to the framework's own parts.
bool takeHistory(HostSettings&, std::string_view value)
{
    return readInteger(value, 0, 1000).has_value();
}

bool takeOid(HostSettings&, std::string_view value)
{
    return isOid(value);
}

bool takeOidList(HostSettings&, std::string_view value)
{
    return isOidList(value);
}

std::string allKeys()
{
    std::string keys;
    for (const SettingEntry& entry : settingTable()) {
        keys += keys.empty() ? "" : ", ";
        keys += entry.shown.key;
    }
    return keys;
}

} // namespace

const std::vector<SettingEntry>& settingTable()
{
    static const std::vector<SettingEntry> table = {
        {{"host.snmp.timeout", "1", "How long one SNMP request waits for its answer, in seconds.",
          "seconds from 0.05 to 60, fractions allowed", atInit},
         takeTimeout},
        {{"host.snmp.retries", "1", "How often an unanswered SNMP request is sent again.", "a number from 0 to 10",
          atInit},
         takeRetries},
        {{"host.snmp.rate", "5000", "How many SNMP packets are sent in a second at most; 0 is no limit.",
          "a number from 0 to 1000000", atInit},
         takeRate},
        {{"host.tasks.limit", automatic,
          "How many addresses are probed at once at most; auto is what the rate can use and the machine can give.",
          "auto, or a number from 1 to 65536", atInit},
         takeTaskLimit},
        {{"host.names.netbios", "on", "Whether printers are asked for their NetBIOS name.", onOrOff, atInit},
         takeNetbios},
        {{"host.names.dns", "on", "Whether printers' names are looked up in the DNS.", onOrOff, atInit}, takeDns},
        {{"host.history.runs", "0", "How many finished runs the web console keeps, the newest; 0 is none.",
          "a number from 0 to 1000", atInit},
         takeHistory},
        {{"services.PrinterDiscovery.macAddressOids", ".1.3.6.1.2.1.2.2.1.6.1,.1.3.6.1.2.1.2.2.1.6.2",
          "The objects that hold a printer's MAC addresses.", oidList, atServiceStart},
         takeOidList},
        {{"services.PrinterDiscovery.oidDeviceType", ".1.3.6.1.2.1.25.3.2.1.2",
          "The column of device types that tells what a device is.", oid, atServiceStart},
         takeOid},
        {{"services.PrinterDiscovery.oidDeviceTypePrinter", ".1.3.6.1.2.1.25.3.1.5",
          "The device types that count as a printer.", oidList, atServiceStart},
         takeOidList},
    };
    return table;
}

void takeSetting(HostSettings& settings, std::string_view key, std::string_view value)
{
    const auto& table = settingTable();
    const auto entry =
        std::find_if(table.begin(), table.end(), [key](const auto& each) { return each.shown.key == key; });
    const std::string quotedKey = "\"" + std::string(key) + "\"";
    if (entry == table.end()) {
        throw GenericException("there is no setting " + quotedKey + "; the settings are " + allKeys());
    }
    if (!entry->take(settings, value)) {
        throw GenericException("setting " + quotedKey + ": accepted is " + std::string(entry->shown.accepted));
    }
}

} // namespace Kep

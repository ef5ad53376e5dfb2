#include "documents/StatusDocument.h"

#include "documents/JsonWriter.h"

#include <cstdint>

namespace PrinterDiscoveryPlugin {
namespace {

void addCount(Kep::Json::Object& object, const char* key, std::uint32_t value)
{
    addInt(object, key, static_cast<std::int32_t>(value));
}

} // namespace

std::string printerToJson(const PrinterRecord& printer)
{
    Kep::Json::Array mac;
    for (const std::string& address : printer.mac)
        addArrayString(mac, address);
    Kep::Json::Object object;
    addString(object, "hostname", printer.hostname);
    addString(object, "ip", printer.ip);
    addArray(object, "mac", mac);
    addString(object, "name", printer.name);
    addString(object, "sn", printer.sn);
    return object;
}

std::string statusToJson(const DiscoveryStatus& status)
{
    Kep::Json::Array printers;
    for (const PrinterRecord& printer : status.printers)
        printers.addJson(printerToJson(printer));
    Kep::Json::Object object;
    addCount(object, "step", status.step);
    addCount(object, "total", status.total);
    addCount(object, "state", status.state);
    addString(object, "cookie", status.cookie);
    addArray(object, "printers", printers);
    return object;
}

} // namespace PrinterDiscoveryPlugin

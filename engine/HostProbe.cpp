#include "engine/HostProbe.h"

#include "Kep/Snmp/Exception.h"
#include "Kep/Snmp/Factory.h"
#include "Kep/Snmp/V3Engine.h"
#include "Kep/Variant.h"
#include "engine/HostName.h"
#include "engine/IdentificationSettings.h"
#include "engine/ValueReader.h"

#include <algorithm>
#include <cstddef>

namespace PrinterDiscoveryPlugin {
namespace {

constexpr std::size_t macAddressLength = 6;

bool tryOpen(Kep::Snmp::Session& session, const std::string& address)
{
    try {
        session.open(address);
        return true;
    } catch (const Kep::Snmp::Exception&) {
        return false;
    }
}

bool isPrinterType(const Kep::Variant& value)
{
    if (value.type() != static_cast<int>(Kep::VariantType::text))
        return false;
    const std::vector<std::string>& types = identificationSettings().oidDeviceTypePrinter;
    return std::find(types.begin(), types.end(), static_cast<std::string>(value)) != types.end();
}

bool walkFindsPrinter(Kep::Snmp::Session& session)
{
    const std::string& column = identificationSettings().oidDeviceType;
    std::string current = column;
    std::string previous;
    do {
        previous = current;
        Kep::Variant value;
        session.getNext(previous, current, value);
        if (!current.starts_with(column))
            return false;
        if (isPrinterType(value))
            return true;
    } while (current != previous);
    return false;
}

std::vector<std::string> readMacAddresses(Kep::Snmp::Session& session, const std::vector<std::string>& oids)
{
    std::vector<std::string> addresses;
    for (const std::string& oid : oids) {
        std::string bytes;
        if (getFirstValue(session, {oid}, bytes) && bytes.size() == macAddressLength)
            addresses.push_back(formatMac(bytes));
    }
    return addresses;
}

PrinterRecord readPrinter(Kep::Snmp::Session& session, const std::string& address,
                          const std::vector<std::string>& macAddressOids)
{
    const IdentificationSettings& settings = identificationSettings();
    PrinterRecord printer;
    printer.ip = address;
    getFirstValue(session, {settings.oidDeviceDescr}, printer.name);
    printer.mac = readMacAddresses(session, macAddressOids);
    getFirstValue(session, settings.serialNumberOids, printer.sn);
    printer.hostname = findHostName(address);
    return printer;
}

} // namespace

std::optional<PrinterRecord> probeHost(const std::string& address, const std::shared_ptr<Kep::Snmp::Profile>& profile,
                                       const std::vector<std::string>& macAddressOids)
{
    Kep::Snmp::Factory factory(Kep::Snmp::V3Engine::get());
    const std::shared_ptr<Kep::Snmp::Session> session = factory.create(profile);
    if (!tryOpen(*session, address) || !isPrinterByDeviceTable(*session))
        return std::nullopt;
    return readPrinter(*session, address, macAddressOids);
}

bool isPrinterByDeviceTable(Kep::Snmp::Session& session)
{
    try {
        return walkFindsPrinter(session);
    } catch (const Kep::Snmp::Exception&) {
        return false;
    }
}

std::string formatMac(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (!text.empty())
            text += '-';
        text += digits[value >> 4];
        text += digits[value & 0xf];
    }
    return text;
}

} // namespace PrinterDiscoveryPlugin

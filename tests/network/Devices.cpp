#include "tests/network/Devices.h"

namespace NetworkTests {
namespace {

constexpr char systemDescription[] = ".1.3.6.1.2.1.1.1.0";
constexpr char typeColumn[] = ".1.3.6.1.2.1.25.3.2.1.2";
constexpr char description[] = ".1.3.6.1.2.1.25.3.2.1.3.1";
constexpr char firstPhysicalAddress[] = ".1.3.6.1.2.1.2.2.1.6.1";
constexpr char secondPhysicalAddress[] = ".1.3.6.1.2.1.2.2.1.6.2";
constexpr char printerMibSerial[] = ".1.3.6.1.2.1.43.5.1.1.17.1";
constexpr char secondSerial[] = ".1.3.6.1.4.1.1347.43.5.1.1.28.1";
constexpr char thirdSerial[] = ".1.3.6.1.4.1.367.3.2.1.2.1.4.0";

const std::string printerType = ".1.3.6.1.2.1.25.3.1.5";
const std::string processorType = ".1.3.6.1.2.1.25.3.1.3";
const std::string networkType = ".1.3.6.1.2.1.25.3.1.4";

std::string typeOfRow(int row)
{
    return typeColumn + std::string(".") + std::to_string(row);
}

} // namespace

Device fullPrinter(const std::string& address)
{
    return {{{systemDescription, octets("a printer")},
             {typeOfRow(1), objectId(printerType)},
             {description, octets("Loop \"Laser\" 5\\T, färbt")},
             {firstPhysicalAddress, octets({'\x00', '\x1b', '\xa9', '\x0c', '\x33', '\x7e'})},
             {secondPhysicalAddress, octets({'\x02', '\x00', '\x00', '\x00', '\x00', '\xff'})},
             {printerMibSerial, octets("LL5-000123")},
             {secondSerial, octets("not asked for")}},
            printerRecord(address, "Loop \"Laser\" 5\\T, färbt",
                          Document::array({"00-1B-A9-0C-33-7E", "02-00-00-00-00-FF"}), "LL5-000123")};
}

Device secondRowPrinter(const std::string& address)
{
    return {{{typeOfRow(1), objectId(networkType)},
             {typeOfRow(2), objectId(printerType)},
             {description, octets("Second Row")},
             {firstPhysicalAddress, octets("8 bytes!")},
             {secondPhysicalAddress, octets("")},
             {printerMibSerial, octets("")},
             {secondSerial, integer(-4711)}},
            printerRecord(address, "Second Row", Document::array(), "-4711")};
}

Device barePrinter(const std::string& address)
{
    return {{{typeOfRow(1), objectId(printerType)}}, printerRecord(address, "", Document::array(), "")};
}

Device latin1Printer(const std::string& address)
{
    return {{{typeOfRow(1), objectId(printerType)},
             {description, octets("Caf\xe9 Printer")},
             {secondPhysicalAddress, octets("ABCDEF")},
             {thirdSerial, octets("R-7")}},
            printerRecord(address, "Café Printer", Document::array({"41-42-43-44-45-46"}), "R-7")};
}

Device server()
{
    return {{{systemDescription, octets("a server")},
             {typeOfRow(1), objectId(processorType)},
             {typeOfRow(2), objectId(networkType)},
             {description, octets("no printer")},
             {printerMibSerial, octets("S-1")}},
            nullptr};
}

Device printerInColumn20(const std::string& address)
{
    return {{{typeColumn + std::string("0.1"), objectId(printerType)}},
            printerRecord(address, "", Document::array(), "")};
}

Device tablelessDevice()
{
    return {{{systemDescription, octets("a switch")}, {printerMibSerial, octets("S-2")}}, nullptr};
}

} // namespace NetworkTests

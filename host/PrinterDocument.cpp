#include "host/PrinterDocument.h"

namespace Host {

JsonValue documentOf(const Printer& printer)
{
    return {{"hostname", printer.hostname},
            {"ip", printer.ip},
            {"mac", printer.mac},
            {"name", printer.name},
            {"sn", printer.sn}};
}

Printer printerOf(const JsonValue& document)
{
    return {document.at("hostname").get<std::string>(), document.at("ip").get<std::string>(),
            document.at("mac").get<std::vector<std::string>>(), document.at("name").get<std::string>(),
            document.at("sn").get<std::string>()};
}

} // namespace Host

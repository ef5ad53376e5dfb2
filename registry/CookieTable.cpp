#include "registry/CookieTable.h"

namespace PrinterDiscoveryPlugin {

CookieTable& cookieTable()
{
    static CookieTable table;
    return table;
}

} // namespace PrinterDiscoveryPlugin

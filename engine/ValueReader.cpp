#include "engine/ValueReader.h"

#include "Kep/Snmp/Exception.h"
#include "Kep/Variant.h"
#include "engine/Time.h"

namespace PrinterDiscoveryPlugin {
namespace {

constexpr int maxAttempts = 3;

bool tryGet(Kep::Snmp::Session& session, const std::string& oid, Kep::Variant& value)
{
    try {
        session.get(oid, value);
        return true;
    } catch (const Kep::Snmp::Exception&) {
        return false;
    }
}

bool getWithRetries(Kep::Snmp::Session& session, const std::string& oid, Kep::Variant& value)
{
    for (int attempt = 1; !tryGet(session, oid, value); ++attempt) {
        if (attempt == maxAttempts)
            return false;
        Time::sleepBeforeRetry();
    }
    return true;
}

bool isEmptyText(const Kep::Variant& value)
{
    return value.type() == static_cast<int>(Kep::VariantType::text) && value.empty();
}

} // namespace

bool getFirstValue(Kep::Snmp::Session& session, const std::vector<std::string>& oids, std::string& out)
{
    for (const std::string& oid : oids) {
        Kep::Variant value;
        if (!getWithRetries(session, oid, value) || isEmptyText(value))
            continue;
        out = static_cast<std::string>(value);
        return true;
    }
    return false;
}

} // namespace PrinterDiscoveryPlugin

#include "snmp/CommunitySecurity.h"

#include <algorithm>
#include <span>
#include <utility>

namespace Kep::Snmp {

CommunitySecurity::CommunitySecurity(long version, std::string community)
    : version_(version), community_(std::move(community))
{}

void CommunitySecurity::describe(netsnmp_session& settings)
{
    settings.version = version_;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): octets are characters
    settings.community = reinterpret_cast<u_char*>(community_.data());
    settings.community_len = community_.size();
}

bool CommunitySecurity::complete(netsnmp_pdu& /*request*/)
{
    return true;
}

bool CommunitySecurity::accepts(const netsnmp_pdu& response) const
{
    return std::ranges::equal(std::span(response.community, response.community_len), community_,
                              [](u_char octet, char character) { return octet == static_cast<u_char>(character); });
}

ReportVerdict CommunitySecurity::onReport(netsnmp_pdu& /*report*/)
{
    return ReportVerdict::ignored; // these versions have no reports
}

} // namespace Kep::Snmp

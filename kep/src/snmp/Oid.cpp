#include "snmp/Oid.h"

#include <charconv>

namespace Kep::Snmp {

namespace {

constexpr std::uint32_t arcsBelowFirst = 40; // BER codes the first two arcs as first * 40 + second

bool encodable(const std::vector<std::uint32_t>& arcs)
{
    if (arcs.size() < 2 || arcs[0] > 2)
        return false;
    const std::uint32_t highest = UINT32_MAX - 2 * arcsBelowFirst;
    return arcs[0] == 2 ? arcs[1] <= highest : arcs[1] < arcsBelowFirst;
}

} // namespace

std::optional<Oid> Oid::parse(std::string_view text)
{
    std::vector<std::uint32_t> arcs;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        std::uint32_t arc = 0;
        if (*at != '.' || arcs.size() == maxArcs)
            return std::nullopt;
        const auto [next, error] = std::from_chars(at + 1, end, arc);
        if (error != std::errc())
            return std::nullopt;
        arcs.push_back(arc);
        at = next;
    }
    return encodable(arcs) ? std::optional(Oid(std::move(arcs))) : std::nullopt;
}

std::string Oid::text() const
{
    std::string result;
    for (const std::uint32_t arc : arcs_)
        result.append(1, '.').append(std::to_string(arc));
    return result;
}

} // namespace Kep::Snmp

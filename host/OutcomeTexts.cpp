#include "host/OutcomeTexts.h"

namespace Host {

namespace {

std::string several(std::uint64_t count, const char* one, const char* many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string addresses(std::uint64_t count)
{
    return several(count, "address", "addresses");
}

/// A count with its words; empty for none.
std::string part(const OutcomeCounts& counts, AddressOutcome outcome, const char* one, const char* many)
{
    return counts[outcome] == 0 ? std::string() : several(counts[outcome], one, many);
}

std::string answeredAdvice(const OutcomeCounts& counts)
{
    return several(counts[AddressOutcome::NotPrinter], "device answers and lists no printer",
                   "devices answer and list no printer") +
           " in the device table (HOST-RESOURCES-MIB). A printer among them may hide the table from these credentials, "
           "or have none.";
}

std::string credentialsAdvice(const OutcomeCounts& counts, const RunUse& use)
{
    const std::string refused = several(counts[AddressOutcome::WrongCredentials], "device refuses", "devices refuse") +
                                " the credentials: check ";
    return refused + (use.users ? "user name, level, passwords and their protocols, and context."
                                : "what the device lets this community read.");
}

std::string failedAdvice(const OutcomeCounts& counts)
{
    return several(counts[AddressOutcome::Failed], "device", "devices") +
           " began to answer and failed; the list of outcomes says why. Slow devices need a longer time-out.";
}

std::string closedAdvice(const OutcomeCounts& counts, const RunUse& use)
{
    return several(counts[AddressOutcome::PortClosed], "host has", "hosts have") + " UDP port " +
           std::to_string(use.port) + " closed: SNMP is switched off there, or listens at another port.";
}

std::string unreachableAdvice(const OutcomeCounts& counts)
{
    return addresses(counts[AddressOutcome::Unreachable]) +
           " cannot be reached, says the network: is it switched on, and is there a route to it?";
}

std::string silentAdvice(const OutcomeCounts& counts, const RunUse& use)
{
    std::string text = addresses(counts[AddressOutcome::Silent]) +
                       (counts[AddressOutcome::Silent] == 1 ? " is silent." : " are silent.") +
                       " A device that is off, SNMP that is switched off, and a firewall that drops UDP port " +
                       std::to_string(use.port) + " look like that";
    text += use.communities ? ", and so does a wrong community." : ".";
    if (use.communities && !use.users)
        text += " Devices set to version 3 alone are silent to other versions too.";
    return text;
}

} // namespace

RunUse useOf(const std::vector<JsonValue>& profiles)
{
    RunUse use;
    for (const JsonValue& profile : profiles) {
        use.port = profile.at("snmpPort").get<int>();
        (profile.at("snmpVersion").get<int>() == 3 ? use.users : use.communities) = true;
    }
    return use;
}

std::string countsText(const OutcomeCounts& counts)
{
    const bool found = counts[AddressOutcome::Printer] > 0;
    std::string text;
    for (const std::string& each :
         {part(counts, AddressOutcome::Printer, "printer", "printers"),
          part(counts, AddressOutcome::NotPrinter, found ? "other device answered" : "device answered",
               found ? "other devices answered" : "devices answered"),
          part(counts, AddressOutcome::Failed, "failed", "failed"),
          part(counts, AddressOutcome::WrongCredentials, "wrong credentials", "wrong credentials"),
          part(counts, AddressOutcome::PortClosed, "port closed", "port closed"),
          part(counts, AddressOutcome::Unreachable, "unreachable", "unreachable"),
          part(counts, AddressOutcome::Silent, "silent", "silent"),
          part(counts, AddressOutcome::NotProbed, "not probed", "not probed")})
        if (!each.empty())
            text += (text.empty() ? "" : ", ") + each;
    return addresses(counts.total()) + (text.empty() ? "" : ": ") + text;
}

std::vector<std::string> adviceFor(const OutcomeCounts& counts, const RunUse& use)
{
    std::vector<std::string> advice;
    if (counts[AddressOutcome::Printer] > 0)
        return advice;
    if (counts[AddressOutcome::WrongCredentials] > 0)
        advice.push_back(credentialsAdvice(counts, use));
    if (counts[AddressOutcome::Failed] > 0)
        advice.push_back(failedAdvice(counts));
    if (counts[AddressOutcome::NotPrinter] > 0)
        advice.push_back(answeredAdvice(counts));
    if (counts[AddressOutcome::PortClosed] > 0)
        advice.push_back(closedAdvice(counts, use));
    if (counts[AddressOutcome::Unreachable] > 0)
        advice.push_back(unreachableAdvice(counts));
    if (counts[AddressOutcome::Silent] > 0)
        advice.push_back(silentAdvice(counts, use));
    return advice;
}

} // namespace Host

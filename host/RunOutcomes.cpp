#include "host/RunOutcomes.h"

#include "host/DisplayText.h"

#include <algorithm>
#include <numeric>

namespace Host {

namespace {

constexpr std::array<std::string_view, AddressOutcomes> names = {
    "notProbed", "silent", "unreachable", "portClosed", "wrongCredentials", "failed", "notPrinter", "printer"};

AddressOutcome outcomeOf(Kep::Host::Outcome observed)
{
    using Kep::Host::Outcome;
    switch (observed) {
    case Outcome::Unreachable:
        return AddressOutcome::Unreachable;
    case Outcome::PortClosed:
        return AddressOutcome::PortClosed;
    case Outcome::WrongCredentials:
        return AddressOutcome::WrongCredentials;
    case Outcome::Failed:
        return AddressOutcome::Failed;
    case Outcome::Answered:
        return AddressOutcome::NotPrinter;
    case Outcome::Silent:
        break;
    }
    return AddressOutcome::Silent;
}

/// The others mean the same at every address.
bool hasProblem(AddressOutcome outcome)
{
    return outcome == AddressOutcome::Failed || outcome == AddressOutcome::WrongCredentials;
}

constexpr std::uint32_t blockOf(std::uint32_t address)
{
    return address >> 8U;
}

constexpr std::uint32_t octetOf(std::uint32_t address)
{
    return address & 0xFFU;
}

constexpr bool isProbed(std::uint32_t address)
{
    return octetOf(address) != 0 && octetOf(address) != 255;
}

} // namespace

std::string_view nameOf(AddressOutcome outcome)
{
    return names.at(static_cast<std::size_t>(outcome));
}

std::optional<AddressOutcome> outcomeNamed(std::string_view name)
{
    const auto place = std::ranges::find(names, name);
    if (place == names.end())
        return std::nullopt;
    return static_cast<AddressOutcome>(place - names.begin());
}

std::uint64_t OutcomeCounts::total() const
{
    return std::accumulate(of.begin(), of.end(), std::uint64_t{0});
}

RunOutcomes::RunOutcomes(const AddressRanges& ranges) : ranges_(ranges)
{
    counts_.of[static_cast<std::size_t>(AddressOutcome::NotProbed)] = countProbed(ranges);
}

void RunOutcomes::observe(const Kep::Host::Observation& observation) noexcept
{
    try {
        const Kep::MutexLock lock(mutex_);
        take(observation.address, outcomeOf(observation.outcome), observation.problem);
    } catch (const std::exception&) {
        return; // no memory: the address counts as not probed
    }
}

void RunOutcomes::addPrinter(std::string_view ip)
{
    const auto address = parseAddress(ip);
    if (!address)
        return;
    const Kep::MutexLock lock(mutex_);
    take(*address, AddressOutcome::Printer, {});
}

OutcomeCounts RunOutcomes::counts() const
{
    const Kep::MutexLock lock(mutex_);
    return counts_;
}

std::vector<RunOutcomes::Entry> RunOutcomes::list(std::uint32_t from, std::size_t most,
                                                  const std::function<bool(AddressOutcome)>& wanted) const
{
    std::vector<Entry> entries;
    const Kep::MutexLock lock(mutex_);
    for (auto block = blocks_.lower_bound(blockOf(from)); block != blocks_.end() && entries.size() < most; ++block)
        for (std::uint32_t octet = block->first == blockOf(from) ? octetOf(from) : 0;
             octet < block->second.size() && entries.size() < most; ++octet)
            if (const AddressOutcome outcome = block->second.at(octet);
                outcome != AddressOutcome::NotProbed && wanted(outcome))
                entries.push_back(entryAt((block->first << 8U) + octet, outcome));
    return entries;
}

void RunOutcomes::take(std::uint32_t address, AddressOutcome outcome, std::string_view problem)
{
    if (!isProbed(address) || !holdAddress(ranges_, address))
        return;
    AddressOutcome& known = blocks_[blockOf(address)].at(octetOf(address));
    if (outcome <= known)
        return;
    --counts_.of[static_cast<std::size_t>(known)];
    ++counts_.of[static_cast<std::size_t>(outcome)];
    known = outcome;
    problems_.erase(address);
    if (hasProblem(outcome))
        keepProblem(address, problem);
}

void RunOutcomes::keepProblem(std::uint32_t address, std::string_view problem)
{
    if (problems_.size() < MostProblems)
        problems_[address] = printable(problem.substr(0, LongestProblem));
}

RunOutcomes::Entry RunOutcomes::entryAt(std::uint32_t address, AddressOutcome outcome) const
{
    const auto problem = problems_.find(address);
    return {address, outcome, problem == problems_.end() ? std::string() : problem->second};
}

} // namespace Host
